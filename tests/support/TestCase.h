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
 * The base of every test class: each row has its own directory and message recorder, and fails if
 * an unexpected message was logged or an expected one is missing.
 */
class TestCase : public QObject
{
    Q_OBJECT

protected:
    // The row's recorder.
    MessageRecorder& messages() { return *m_recorder; }

    // The row's directory, and the path of a file in it.
    QString directory() const { return m_directory->path(); }
    QString path(const QString& name) const { return m_directory->filePath(name); }

    // Writes a file into the row's directory; returns its path.
    QString writeFile(const QString& name, const QByteArray& content) const;

    // Whether script/emulated runs the test for another processor, which takes about ten times as
    // long.
    static bool isEmulated();

    // The number of rounds of a test with random input: the usual number, or the value of the
    // environment variable MISCTOOLS_DIFFERENTIAL_ROUNDS. Under an emulator, a tenth of the usual
    // number.
    static int rounds(int usual);

    // The number of rounds of a stress test: that of a quick run, or that of a full run if the
    // environment variable MISCTOOLS_STRESS is "full". Under an emulator, a tenth of a quick run.
    static int stressRounds(int quickRounds, int fullRounds);

    // The content of a file; a null array if it cannot be read.
    static QByteArray readFile(const QString& filePath);

private Q_SLOTS:
    void init();
    void cleanup();

private:
    QScopedPointer<QTemporaryDir> m_directory;
    QScopedPointer<MessageRecorder> m_recorder;
};

/*
 * Skips the rest of the test function if the machine cannot run it. In continuous integration,
 * where CI is set and not empty, every test can run, so a skip is a failure.
 */
#define MISCTOOLS_SKIP(reason)                                                                     \
    do {                                                                                           \
        if (!qEnvironmentVariableIsEmpty("CI")) {                                                  \
            QFAIL("must not be skipped where CI is set: " reason);                                 \
        }                                                                                          \
        QSKIP(reason, ); /* clang requires an argument for "..." of the macro */                   \
    } while (false)

#endif
