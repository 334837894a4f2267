#ifndef TESTS_TESTCASE_H
#define TESTS_TESTCASE_H

#include "MessageRecorder.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QScopedPointer>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

/*
 * The base of every test class: each row gets a folder of its own and a message recorder, and fails
 * when a message came that it did not announce, or one that it announced did not come.
 */
class TestCase : public QObject
{
    Q_OBJECT

protected:
    // The row's recorder.
    MessageRecorder& messages() { return *m_recorder; }

    // The row's folder, and the path of the file name in it.
    QString folder() const { return m_folder->path(); }
    QString path(const QString& name) const { return m_folder->filePath(name); }

    // Writes a file into the row's folder; gives its path.
    QString writeFile(const QString& name, const QByteArray& content) const;

    // Whether script/emulated runs this for another processor, which takes some ten times as long.
    static bool isEmulated();

    // How often a test with random input is to try: usually so often, or as the environment
    // variable MISCTOOLS_DIFFERENTIAL_ROUNDS says. Under an emulator, a tenth of the usual rounds.
    static int rounds(int usual);

    // How much a stress test does: usually the short form, the full one where the environment
    // variable MISCTOOLS_STRESS is "full". Under an emulator, a tenth of the short form.
    static int stressRounds(int shortForm, int fullForm);

    // The whole content of a file; a null array when it cannot be read.
    static QByteArray readFile(const QString& filePath);

private Q_SLOTS:
    void init();
    void cleanup();

private:
    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<MessageRecorder> m_recorder;
};

/*
 * Skips the rest of the test function where the machine cannot run it. In continuous integration
 * everything can be run, so there, where CI is set to anything, it is a failure.
 */
#define MISCTOOLS_SKIP(reason)                                                                     \
    do {                                                                                           \
        if (!qEnvironmentVariableIsEmpty("CI")) {                                                  \
            QFAIL("must not be skipped where CI is set: " reason);                                 \
        }                                                                                          \
        QSKIP(reason, ); /* clang wants something for the dots of Qt's macro, if nothing */        \
    } while (false)

#endif
