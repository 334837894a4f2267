#include "TestCase.h"

#include <QtCore/QFile>

QString TestCase::writeFile(const QString& name, const QByteArray& content) const
{
    const QString filePath = path(name);
    QFile file(filePath);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(filePath));
    }
    return filePath;
}

QByteArray TestCase::readFile(const QString& filePath)
{
    QFile file(filePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool TestCase::isEmulated()
{
    return qEnvironmentVariableIsSet("QEMU_LD_PREFIX");
}

int TestCase::rounds(int usual)
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("MISCTOOLS_DIFFERENTIAL_ROUNDS", &isGiven);
    return isGiven ? given : isEmulated() ? usual / 10 : usual;
}

int TestCase::stressRounds(int quickRounds, int fullRounds)
{
    if (qgetenv("MISCTOOLS_STRESS") == "full") {
        return fullRounds;
    }
    return isEmulated() ? quickRounds / 10 : quickRounds;
}

void TestCase::init()
{
    m_directory.reset(new QTemporaryDir);
    QVERIFY2(m_directory->isValid(), qPrintable(m_directory->errorString()));
    m_recorder.reset(new MessageRecorder);
}

void TestCase::cleanup()
{
    const QStringList problems = m_recorder->takeProblems();
    m_recorder.reset();
    m_directory.reset();
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join("\n   ")));
}
