#include "RecursiveFileSearchWorkerThread.h"
#include "TestCase.h"
#include "WildcardFilter.h"

#include <QtCore/QDir>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <memory>
#include <type_traits>

static_assert(std::is_base_of<QObject, RecursiveFileSearchWorkerThread>::value &&
                  std::is_base_of<QRunnable, RecursiveFileSearchWorkerThread>::value,
              "a task with signals");

namespace {

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

class tst_RecursiveFileSearchWorkerThread : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void newWorkerIsDeletedAutomatically();
    void directRunFindsFiles_data();
    void directRunFindsFiles();
    void resultIsInFileSystemOrder();
    void everyRunSearchesAgain();
    void argumentsAreCopied();
    void poolDeletesTheWorker();
    void poolKeepsTheWorkerWithoutAutoDelete();
    void workersMayRunInParallel();
    void workerMayBeDeletedAsQRunnable();

private:
    void addTree();
};

void tst_RecursiveFileSearchWorkerThread::addTree()
{
    QVERIFY(QDir(directory()).mkpath("sub/deeper.csv"));
    QVERIFY(QDir(directory()).mkpath("empty"));
    QVERIFY(QFile::link("sub/deeper.csv", path("link")));
    for (const char* name :
         {"b.csv", "A.CSV", "c.txt", ".hidden.csv", "sub/d.csv", "sub/deeper.csv/e.csv"}) {
        writeFile(QString::fromLatin1(name), "");
    }
}

void tst_RecursiveFileSearchWorkerThread::metaObject()
{
    const QMetaObject& type = RecursiveFileSearchWorkerThread::staticMetaObject;
    QCOMPARE(type.className(), "RecursiveFileSearchWorkerThread");
    QCOMPARE(type.superClass(), &QObject::staticMetaObject);
    QCOMPARE(type.methodCount() - type.methodOffset(), 1);
    QCOMPARE(type.propertyCount(), type.propertyOffset());

    const QMetaMethod finished = type.method(type.methodOffset());
    QCOMPARE(finished.methodSignature(), QByteArray("searchFinished(QStringList)"));
    QCOMPARE(finished.methodType(), QMetaMethod::Signal);
    QCOMPARE(finished.parameterNames(), QList<QByteArray>({"result"}));
}

void tst_RecursiveFileSearchWorkerThread::newWorkerIsDeletedAutomatically()
{
    const RecursiveFileSearchWorkerThread worker(directory(), {});
    QCOMPARE(worker.metaObject(), &RecursiveFileSearchWorkerThread::staticMetaObject);
    QVERIFY(worker.autoDelete());
    QVERIFY(worker.parent() == nullptr);
    // QObject is the first base class.
    QCOMPARE(static_cast<const void*>(static_cast<const QObject*>(&worker)),
             static_cast<const void*>(&worker));
}

void tst_RecursiveFileSearchWorkerThread::directRunFindsFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QStringList>("expected"); // sorted

    QTest::newRow("files and directories at every depth")
        << QString() << words("*.csv")
        << words("A.CSV b.csv sub/d.csv sub/deeper.csv sub/deeper.csv/e.csv");
    QTest::newRow("several patterns")
        << QString() << words("?.txt e.*") << words("c.txt sub/deeper.csv/e.csv");
    QTest::newRow("no pattern") << "sub" << QStringList()
                                << words(". . ../ d.csv deeper.csv deeper.csv deeper.csv/e.csv");
    QTest::newRow("trailing slash") << "sub/" << words("d*") << words("d.csv deeper.csv");
    // ".." after a link is the parent of the link's target, not the directory of the link.
    QTest::newRow("parent of a link")
        << "link/.." << words("[de]*") << words("d.csv deeper.csv deeper.csv/e.csv");
    QTest::newRow("no match") << QString() << words("*.ogg") << QStringList();
    QTest::newRow("empty directory") << "empty" << words("*.csv") << QStringList();
    QTest::newRow("missing directory") << "missing" << QStringList() << QStringList();
    QTest::newRow("file") << "b.csv" << QStringList() << QStringList();
}

void tst_RecursiveFileSearchWorkerThread::directRunFindsFiles()
{
    QFETCH(QString, name);
    QFETCH(QStringList, patterns);
    QFETCH(QStringList, expected);
    addTree();

    RecursiveFileSearchWorkerThread worker(path(name), patterns);
    worker.setAutoDelete(false);
    QSignalSpy finished(&worker, &RecursiveFileSearchWorkerThread::searchFinished);
    worker.run();
    QCOMPARE(finished.count(), 1);
    QCOMPARE(sorted(finished.first().first().toStringList()), expected);
}

void tst_RecursiveFileSearchWorkerThread::resultIsInFileSystemOrder()
{
    for (int i = 0; i < 100; ++i) {
        writeFile(QStringLiteral("%1.csv").arg(i * 37 % 100), "");
    }
    const QStringList patterns("*.csv");
    QStringList expected;
    searchFilesOnPathRecursive(directory(), patterns, expected);
    QVERIFY(expected != sorted(expected));

    RecursiveFileSearchWorkerThread worker(directory(), patterns);
    QSignalSpy finished(&worker, &RecursiveFileSearchWorkerThread::searchFinished);
    worker.run();
    QCOMPARE(finished.first().first().toStringList(), expected);
}

void tst_RecursiveFileSearchWorkerThread::everyRunSearchesAgain()
{
    RecursiveFileSearchWorkerThread worker(directory(), {"*.csv"});
    QSignalSpy finished(&worker, &RecursiveFileSearchWorkerThread::searchFinished);
    worker.run();
    writeFile("a.csv", "");
    worker.run();
    worker.run();
    QCOMPARE(finished.count(), 3);
    QCOMPARE(finished.at(0).first().toStringList(), QStringList());
    QCOMPARE(finished.at(1).first().toStringList(), words("a.csv"));
    QCOMPARE(finished.at(2).first().toStringList(), words("a.csv"));
    QVERIFY(worker.autoDelete());
}

void tst_RecursiveFileSearchWorkerThread::argumentsAreCopied()
{
    writeFile("a.csv", "");
    QString searchPath = directory();
    QStringList patterns("*.csv");
    RecursiveFileSearchWorkerThread worker(searchPath, patterns);
    searchPath.clear();
    patterns.clear();
    QSignalSpy finished(&worker, &RecursiveFileSearchWorkerThread::searchFinished);
    worker.run();
    QCOMPARE(finished.first().first().toStringList(), words("a.csv"));
}

void tst_RecursiveFileSearchWorkerThread::poolDeletesTheWorker()
{
    addTree();
    auto* const worker = new RecursiveFileSearchWorkerThread(directory(), {"?.csv"});
    const QPointer<RecursiveFileSearchWorkerThread> guard(worker);
    QStringList result;
    int resultCount = 0;
    QThread* receivedIn = nullptr;
    QThread* emittedIn = nullptr;
    QObject receiver;
    connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, &receiver,
            [&](const QStringList& paths) {
                ++resultCount;
                result = paths;
                receivedIn = QThread::currentThread();
            });
    connect(
        worker, &RecursiveFileSearchWorkerThread::searchFinished, &receiver,
        [&emittedIn] { emittedIn = QThread::currentThread(); }, Qt::DirectConnection);

    QThreadPool pool;
    pool.start(worker);
    QVERIFY(pool.waitForDone(10000));
    QVERIFY(guard.isNull());
    QVERIFY(emittedIn != nullptr);
    QVERIFY(emittedIn != QThread::currentThread());
    // The queued signal is delivered by this thread's event loop even after the sender was deleted.
    QCOMPARE(resultCount, 0);
    QTRY_COMPARE(resultCount, 1);
    QCOMPARE(receivedIn, QThread::currentThread());
    QCOMPARE(sorted(result), words("A.CSV b.csv sub/d.csv sub/deeper.csv/e.csv"));
}

void tst_RecursiveFileSearchWorkerThread::poolKeepsTheWorkerWithoutAutoDelete()
{
    RecursiveFileSearchWorkerThread worker(directory(), {"*.csv"});
    worker.setAutoDelete(false);
    QVERIFY(!worker.autoDelete());
    QSignalSpy destroyed(&worker, &QObject::destroyed);
    QStringList results;
    QObject receiver;
    connect(&worker, &RecursiveFileSearchWorkerThread::searchFinished, &receiver,
            [&results](const QStringList& paths) { results.append(paths.join(QLatin1Char(' '))); });
    QThreadPool pool;
    pool.start(&worker);
    QVERIFY(pool.waitForDone(10000));
    writeFile("a.csv", "");
    pool.start(&worker);
    QVERIFY(pool.waitForDone(10000));
    QCOMPARE(destroyed.count(), 0);
    QTRY_COMPARE(results, QStringList({QString(), "a.csv"}));
}

void tst_RecursiveFileSearchWorkerThread::workersMayRunInParallel()
{
    constexpr int workerCount = 50;

    addTree();
    int correct = 0;
    QObject receiver;
    QThreadPool pool;
    pool.setMaxThreadCount(8);
    for (int i = 0; i < workerCount; ++i) {
        auto* const worker = new RecursiveFileSearchWorkerThread(directory(), {"?.csv"});
        connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, &receiver,
                [&correct](const QStringList& paths) {
                    if (sorted(paths) == words("A.CSV b.csv sub/d.csv sub/deeper.csv/e.csv")) {
                        ++correct;
                    }
                });
        pool.start(worker);
    }
    QTRY_COMPARE(correct, workerCount);
}

void tst_RecursiveFileSearchWorkerThread::workerMayBeDeletedAsQRunnable()
{
    auto* const worker = new RecursiveFileSearchWorkerThread(directory(), {});
    const QPointer<RecursiveFileSearchWorkerThread> guard(worker);
    QSignalSpy destroyed(worker, &QObject::destroyed);
    std::unique_ptr<QRunnable> task(worker);
    task->run();
    task.reset();
    QCOMPARE(destroyed.count(), 1);
    QVERIFY(guard.isNull());
}

QTEST_GUILESS_MAIN(tst_RecursiveFileSearchWorkerThread)

#include "tst_RecursiveFileSearchWorkerThread.moc"
