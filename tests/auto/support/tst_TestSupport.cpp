#include "ChildProcess.h"
#include "TestCase.h"

#include <csignal>
#include <unistd.h>

Q_DECLARE_METATYPE(ExpectedMessage)

// The tests' own tools: a recorder that misses a message would make every other test worthless.
class tst_TestSupport : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void announcedMessagesPass();
    void unannouncedMessageIsAProblem();
    void missingMessageIsAProblem();
    void differencesAreNamed_data();
    void differencesAreNamed();
    void orderMatters();
    void rowsHaveFreshFolders_data();
    void rowsHaveFreshFolders();
    void childProcessReportsItsEnd();
    void ordinaryUserIsStoppedByPermissions();
};

void tst_TestSupport::announcedMessagesPass()
{
    messages().expect(QtWarningMsg, "first 1");
    messages().expect(QtDebugMsg, "second");
    qWarning() << "first" << 1;
    qDebug() << "second";
    QCOMPARE(messages().takeProblems(), QStringList());
}

void tst_TestSupport::unannouncedMessageIsAProblem()
{
    qWarning() << "surprise";
    const QStringList problems = messages().takeProblems();
    QCOMPARE(problems.size(), 1);
    QVERIFY(problems.first().startsWith(QLatin1String("not announced: warning <surprise>")));
}

void tst_TestSupport::missingMessageIsAProblem()
{
    messages().expect(QtCriticalMsg, "promise");
    QCOMPARE(messages().takeProblems(),
             QStringList("announced and never came: critical <promise>"));
}

void tst_TestSupport::differencesAreNamed_data()
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
    QTest::newRow("all pinned, all right") << ExpectedMessage(QtWarningMsg, text)
                                                  .file("Source")
                                                  .function("void f()")
                                                  .category("default")
                                           << QString();
}

void tst_TestSupport::differencesAreNamed()
{
    QFETCH(ExpectedMessage, expected);
    QFETCH(QString, problem);

    QMessageLogger("Source", 7, "void f()").warning() << "text";
    const QVector<Message> taken = messages().take();
    QCOMPARE(taken.size(), 1);
    QCOMPARE(taken.first().line, 7);
    QCOMPARE(expected.difference(taken.first()), problem);
}

void tst_TestSupport::orderMatters()
{
    messages().expect(QtWarningMsg, "a");
    messages().expect(QtWarningMsg, "b");
    qWarning() << "b";
    qWarning() << "a";
    QCOMPARE(messages().takeProblems().size(), 2);
}

void tst_TestSupport::rowsHaveFreshFolders_data()
{
    QTest::addColumn<int>("row");
    QTest::newRow("first") << 1;
    QTest::newRow("second") << 2;
}

void tst_TestSupport::rowsHaveFreshFolders()
{
    QVERIFY(QDir(folder()).isEmpty());
    QCOMPARE(readFile(writeFile(QStringLiteral("left-over"), "content")), QByteArray("content"));
}

void tst_TestSupport::childProcessReportsItsEnd()
{
    const ChildResult exited = ChildProcess::run([] {
        fprintf(stderr, "to be seen");
        return 7;
    });
    QVERIFY(exited.exited);
    QCOMPARE(exited.exitCode, 7);
    QCOMPARE(exited.output, QByteArray("to be seen"));

    const ChildResult killed = ChildProcess::run([] {
        raise(SIGKILL);
        return 0;
    });
    QVERIFY(!killed.exited);
    QCOMPARE(killed.signal, SIGKILL);
}

void tst_TestSupport::ordinaryUserIsStoppedByPermissions()
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
