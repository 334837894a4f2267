#include "ChildProcess.h"
#include "TestCase.h"

#include <csignal>
#include <unistd.h>

Q_DECLARE_METATYPE(ExpectedMessage)

// Tests the test support: if the recorder missed a message, no other test would detect it.
class tst_TestSupport : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void expectedMessagesPass();
    void unexpectedMessageIsReported();
    void missingMessageIsReported();
    void differencesAreReported_data();
    void differencesAreReported();
    void wrongOrderIsReported();
    void everyRowHasANewDirectory_data();
    void everyRowHasANewDirectory();
    void childProcessReportsExitCodeOrSignal();
    void permissionsApplyToOrdinaryUser();
};

void tst_TestSupport::expectedMessagesPass()
{
    messages().expect(QtWarningMsg, "first 1");
    messages().expect(QtDebugMsg, "second");
    qWarning() << "first" << 1;
    qDebug() << "second";
    QCOMPARE(messages().takeProblems(), QStringList());
}

void tst_TestSupport::unexpectedMessageIsReported()
{
    qWarning() << "surprise";
    const QStringList problems = messages().takeProblems();
    QCOMPARE(problems.size(), 1);
    QVERIFY(problems.first().startsWith(QLatin1String("unexpected: warning <surprise>")));
}

void tst_TestSupport::missingMessageIsReported()
{
    messages().expect(QtCriticalMsg, "promise");
    QCOMPARE(messages().takeProblems(), QStringList("expected but not logged: critical <promise>"));
}

void tst_TestSupport::differencesAreReported_data()
{
    QTest::addColumn<ExpectedMessage>("expected");
    QTest::addColumn<QString>("problem");

    const QString text = "text";
    QTest::newRow("none") << ExpectedMessage(QtWarningMsg, text) << QString();
    QTest::newRow("level") << ExpectedMessage(QtCriticalMsg, text)
                           << "level is <warning> instead of <critical>";
    QTest::newRow("text") << ExpectedMessage(QtWarningMsg, "other")
                          << "text is <text> instead of <other>";
    QTest::newRow("file") << ExpectedMessage(QtWarningMsg, text).file("Other")
                          << "file is <Source> instead of <Other>";
#if defined(Q_CC_GNU) && !defined(Q_CC_CLANG)
    QTest::newRow("function") << ExpectedMessage(QtWarningMsg, text).function("void g()")
                              << "function is <void f()> instead of <void g()>";
#endif
    QTest::newRow("category") << ExpectedMessage(QtWarningMsg, text).category("other")
                              << "category is <default> instead of <other>";
    QTest::newRow("all specified and equal") << ExpectedMessage(QtWarningMsg, text)
                                                    .file("Source")
                                                    .function("void f()")
                                                    .category("default")
                                             << QString();
}

void tst_TestSupport::differencesAreReported()
{
    QFETCH(ExpectedMessage, expected);
    QFETCH(QString, problem);

    QMessageLogger("Source", 7, "void f()").warning() << "text";
    const QVector<Message> taken = messages().take();
    QCOMPARE(taken.size(), 1);
    QCOMPARE(taken.first().line, 7);
    QCOMPARE(expected.difference(taken.first()), problem);
}

void tst_TestSupport::wrongOrderIsReported()
{
    messages().expect(QtWarningMsg, "a");
    messages().expect(QtWarningMsg, "b");
    qWarning() << "b";
    qWarning() << "a";
    QCOMPARE(messages().takeProblems().size(), 2);
}

void tst_TestSupport::everyRowHasANewDirectory_data()
{
    QTest::addColumn<int>("row");
    QTest::newRow("first") << 1;
    QTest::newRow("second") << 2;
}

void tst_TestSupport::everyRowHasANewDirectory()
{
    QVERIFY(QDir(directory()).isEmpty());
    QCOMPARE(readFile(writeFile(QStringLiteral("left-over"), "content")), QByteArray("content"));
}

void tst_TestSupport::childProcessReportsExitCodeOrSignal()
{
    const ChildResult exited = ChildProcess::run([] {
        fprintf(stderr, "visible");
        return 7;
    });
    QVERIFY(exited.exited);
    QCOMPARE(exited.exitCode, 7);
    QCOMPARE(exited.output, QByteArray("visible"));

    const ChildResult killed = ChildProcess::run([] {
        raise(SIGKILL);
        return 0;
    });
    QVERIFY(!killed.exited);
    QCOMPARE(killed.signal, SIGKILL);
}

void tst_TestSupport::permissionsApplyToOrdinaryUser()
{
    const QByteArray secret = writeFile("secret", "x").toLocal8Bit();
    QVERIFY(QFile::setPermissions(QString::fromLocal8Bit(secret), QFileDevice::Permissions()));
    const ChildResult result = ChildProcess::runAsOrdinaryUser(
        [&secret] { return access(secret.constData(), R_OK) == 0 ? 1 : 0; });
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_TestSupport)
#include "tst_TestSupport.moc"
