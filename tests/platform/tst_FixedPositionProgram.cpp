#include "DirectoryWatcher.h"
#include "IniFileManager.h"
#include "MediaWatcher.h"
#include "RecursiveFileSearchWorkerThread.h"
#include "TestCase.h"

#if defined(__PIC__) || defined(__PIE__)
#error "This program is to be compiled without -fPIC and -fPIE."
#endif

// A position-dependent program: taking the address of a library function yields an address in the
// program itself, which the library must use as well.
class tst_FixedPositionProgram : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void signalsConnectByPointer();
    void cleanUpFunctionsAreFoundByPointer();
};

void tst_FixedPositionProgram::signalsConnectByPointer()
{
    DirectoryWatcher directories{QStringList()};
    QVERIFY(connect(&directories, &DirectoryWatcher::directoryChanged, this, [] {}));
    MediaWatcher media(nullptr);
    QVERIFY(connect(&media, &MediaWatcher::filesFound, this, [] {}));
    RecursiveFileSearchWorkerThread worker(directory(), QStringList());
    bool isFinished = false;
    QVERIFY(connect(&worker, &RecursiveFileSearchWorkerThread::searchFinished, this,
                    [&isFinished] { isFinished = true; }));
    worker.run();
    QVERIFY(isFinished);
}

void tst_FixedPositionProgram::cleanUpFunctionsAreFoundByPointer()
{
    QCOMPARE(IniFileManager::sm_CleanUpFunctions.removeAll(&IniFileManager::cleanUpListSeperators),
             1);
    QCOMPARE(IniFileManager::sm_CleanUpFunctions.removeAll(&IniFileManager::cleanUpComments), 1);
}

QTEST_GUILESS_MAIN(tst_FixedPositionProgram)
#include "tst_FixedPositionProgram.moc"
