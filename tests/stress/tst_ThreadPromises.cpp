#include "BootInformationHelper.h"
#include "DeviceRoot.h"
#include "DirectoryWatcher.h"
#include "DragIndicator.h"
#include "EepromImage.h"
#include "ErrorContainer.h"
#include "ExportFileNameCreator.h"
#include "HardwareIdentification.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "HashGenerator.h"
#include "KernelCommandLineDefinition.h"
#include "KernelCommandLineParser.h"
#include "MediaWatcher.h"
#include "OrvalisVersionInfoIniManager.h"
#include "QProcessHandler.h"
#include "RaucSystemConfigIniManager.h"
#include "RecorderUrlHashHandling.h"
#include "RecursiveFileSearchWorkerThread.h"
#include "TestCase.h"
#include "TextFileParser.h"
#include "Threads.h"
#include "VariantConversionTools.h"
#include "VersionFileIniManager.h"
#include "VersionManager.h"
#include "WildcardFilter.h"

#include <QtCore/QEventLoop>
#include <QtCore/QRegularExpression>
#include <QtCore/QThread>

#include <memory>
#include <vector>

/*
 * Tests the guarantees of docs/threads.md, row by row, with the thread sanitizer. IniFileManager,
 * UniqueIdGenerator and WildcardFilter have their own tests. Each thread has its own files and
 * values, so that state shared by mistake also causes an incorrect result.
 */
class tst_ThreadPromises : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fixedLocationReadersMayBeShared();
    void kernelCommandLineMayBeShared();
    void versionGettersMayBeShared();
    void bootInformationMayBeShared();
    void freeAndStaticFunctionsMayBeCalledFromAnyThread();
    void functionsThatReadFilesMayBeCalledFromAnyThread();
    void searchesMayBeCalledFromAnyThread();
    void typesMayBeRegisteredFromAnyThread();
    void directoryWatcherRunsInTheThreadOfItsEventLoop();
    void mediaWatcherRunsInTheCallingThread();
    void searchWorkersReportAcrossThreads();
    void separateReadersAreIndependent();
    void separateValuesAreIndependent();
    void separateProcessesAreIndependent();

private:
    static int calls() { return stressRounds(50, 1000); }
    // For calls that use no file and take microseconds, so that calls overlap.
    static int quickCalls() { return stressRounds(5000, 100000); }

    // A separate directory per thread, with a file of the same name.
    QString addDirectory(int number) const;
};

namespace {

// The number of correct calls of all threads.
int all(int calls)
{
    return threadCount * calls;
}

} // namespace

QString tst_ThreadPromises::addDirectory(int number) const
{
    const QString name = QString::number(number);
    QDir(directory()).mkdir(name);
    writeFile(name + "/file" + name, name.toLatin1());
    return path(name);
}

void tst_ThreadPromises::fixedLocationReadersMayBeShared()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::writeFile("/orvalis/VersionFile.ini",
                          "[MainVersion]\nVersionString=V8.12.3\nVersionStringHash=ab12\n");
    DeviceRoot::writeFile(
        "/orvalis/etc/OrvalisVersionInfo.ini",
        "[%General]\nCreationDate=2026\n[ApplicationVersion]\nVersion=1.2\nProductCode=3\n");
    DeviceRoot::writeFile("/etc/rauc/system.conf", "[system]\ncompatible=7\n");
    const VersionFileIniManager versions;
    const OrvalisVersionInfoIniManager application;
    const RaucSystemConfigIniManager configuration;
    const auto isRight = [&versions, &application, &configuration](int) {
        return versions.getMainVersionVersionString() == "V8.12.3" &&
               versions.getVersionStringHash() == "ab12" &&
               application.getApplicationVersion() == "1.2" &&
               application.getProductCode() == "3" && application.getCreationDate() == "2026" &&
               configuration.getDeviceIndex() == "7";
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
}

void tst_ThreadPromises::kernelCommandLineMayBeShared()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::setCommandLine("key0=0 key1=1 key2=2 key3=3 key4=4 key5=5 key6=6 key7=7 quiet\n");
    const KernelCommandLineParser parser;
    const auto isRight = [&parser](int number) {
        const QString key = QStringLiteral("key%1").arg(number);
        return parser.contains(key) && parser.getValue(key) == QString::number(number) &&
               parser.findKey(key) == QStringLiteral("key%1=%1").arg(number);
    };
    QCOMPARE(correctCallsInManyThreads(quickCalls(), isRight), all(quickCalls()));
}

void tst_ThreadPromises::versionGettersMayBeShared()
{
    const VersionManager version("8.1.2.3.4-g1a2b");
    const auto isRight = [&version](int) {
        return !version.isOldVersion() && version.getMainVersion() == "8.1.2.3.4" &&
               version.getBaseNumber() == "8" && version.getMajorIndex() == "1" &&
               version.getMinorIndex() == "2" && version.getPatchVersion() == "3" &&
               version.getBuildNumber() == "4" && version.getGitHash() == "g1a2b";
    };
    QCOMPARE(correctCallsInManyThreads(quickCalls(), isRight), all(quickCalls()));
}

void tst_ThreadPromises::bootInformationMayBeShared()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::setCommandLine("orvalismode=factoryreset quiet\n");
    const BootInformationHelper helper;
    const auto isRight = [&helper](int) {
        return !helper.isHardReset() && helper.isFactoryReset() &&
               helper.getCurrentBootMode() == BootInformationHelper::BootModeFactoryReset;
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
}

void tst_ThreadPromises::freeAndStaticFunctionsMayBeCalledFromAnyThread()
{
    const auto isRight = [](int number) {
        const QString text = QString::number(number);
        const QByteArray bytes(10 * (number + 1), char('0' + number));
        const QByteArray md5 = QCryptographicHash::hash(bytes, QCryptographicHash::Md5);
        const uint hash = (2166136261u ^ uint('0' + number)) * 16777619u;
        const bool isOdd = number % 2 != 0;
        bool flag = !isOdd;
        QString converted;
        const QString mode = KernelCommandLineDefinition::getKeyOrvalisMode() +
                             KernelCommandLineDefinition::getValueOrvalisModeFactoryReset() +
                             KernelCommandLineDefinition::getFilePath();
        return RecorderUrlHashHandling::createUrlHash(bytes) == md5 &&
               RecorderUrlHashHandling::createUrlHash(bytes.left(7), bytes.mid(7), QByteArray()) ==
                   md5 &&
               RecorderUrlHashHandling::buildUUIDFromByteArray(md5).remove(QLatin1Char('-')) ==
                   QString::fromLatin1(md5.toHex()) &&
               hashFromString(text.toUtf8().constData()) == hash &&
               hashFromString(QVariant(number)) == hash &&
               VariantConversionTools::toBool(QVariant(number % 2), flag) && flag == isOdd &&
               VariantConversionTools::toString(QVariant(number), converted) && converted == text &&
               concatenatePaths(text, text) == text + QLatin1Char('/') + text &&
               mode == "orvalismodefactoryreset/proc/cmdline";
    };
    QCOMPARE(correctCallsInManyThreads(quickCalls(), isRight), all(quickCalls()));
}

void tst_ThreadPromises::functionsThatReadFilesMayBeCalledFromAnyThread()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    DeviceRoot::writeFile("/etc/rauc/system.conf", "[system]\ncompatible=7\n");
    const auto isRight = [this](int number) {
        const QString text = QString::number(number);
        const QByteArray bytes(1000 * (number + 1), char('0' + number));
        const QString exported = ExportFileNameCreator::create(text);
        return HashGenerator::createHashFromFile(writeFile(text, bytes), QCryptographicHash::Md5) ==
                   QCryptographicHash::hash(bytes, QCryptographicHash::Md5) &&
               exported.startsWith("V7_") && exported.endsWith(QLatin1Char('.') + text);
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
}

void tst_ThreadPromises::searchesMayBeCalledFromAnyThread()
{
    for (int number = 0; number < threadCount; ++number) {
        addDirectory(number);
    }
    const auto isRight = [this](int number) {
        const QString name = QStringLiteral("file%1").arg(number);
        QStringList paths;
        searchFilesOnPathRecursive(path(QString::number(number)), {"file*"}, paths);
        QFileInfoList files;
        searchFilesOnPathRecursive(directory(), {name}, QDir::Files, files);
        return paths == QStringList(name) && files.size() == 1 &&
               files.constFirst().fileName() == name;
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
}

void tst_ThreadPromises::typesMayBeRegisteredFromAnyThread()
{
    const auto isRight = [](int number) {
        ErrorContainer::registerTypes();
        ErrorContainer error;
        error.setError(-number - 1, QString::number(number));
        const auto copy = QVariant::fromValue(error).value<ErrorContainer>();
        return copy.getErrorCode() == -number - 1 &&
               copy.getErrorMessage() == QString::number(number);
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
}

void tst_ThreadPromises::directoryWatcherRunsInTheThreadOfItsEventLoop()
{
    std::vector<QStringList> changed(threadCount);
    std::vector<std::unique_ptr<QThread>> threads;
    for (int number = 0; number < threadCount; ++number) {
        const QString directory = addDirectory(number);
        QStringList& ownChanged = changed.at(size_t(number));
        // Qt can watch files only in a QThread.
        threads.emplace_back(QThread::create([directory, &ownChanged] {
            DirectoryWatcher watcher(directory);
            watcher.setDelayInMs(1);
            QEventLoop events;
            connect(&watcher, &DirectoryWatcher::directoryChanged, &events,
                    [&events, &ownChanged](const QStringList& directories) {
                        ownChanged = directories;
                        events.quit();
                    });
            QTimer::singleShot(10000, &events, [&events] { events.quit(); });
            QDir(directory).mkdir("new");
            events.exec();
        }));
        threads.back()->start();
    }
    for (const auto& thread : threads) {
        QVERIFY(thread->wait(60000));
    }
    for (int number = 0; number < threadCount; ++number) {
        QCOMPARE(changed.at(size_t(number)), QStringList(path(QString::number(number))));
    }
}

void tst_ThreadPromises::mediaWatcherRunsInTheCallingThread()
{
    for (int number = 0; number < threadCount; ++number) {
        addDirectory(number);
    }
    QObject receiver;
    int received = 0; // in this thread, through its event loop
    const auto isRight = [this, &receiver, &received](int number) {
        QStringList found;
        MediaWatcher watcher(nullptr);
        watcher.setRecursive(number % 2 != 0);
        watcher.setFileMatchPatternList({"file*"});
        connect(&watcher, &MediaWatcher::filesFound, [&found](const QFileInfoList& files) {
            for (const QFileInfo& file : files) {
                found.append(file.fileName());
            }
        });
        connect(
            &watcher, &MediaWatcher::filesFound, &receiver,
            [&received](const QFileInfoList& files) { received += files.size(); },
            Qt::QueuedConnection);
        watcher.mediumMounted(path(QString::number(number)));
        return found == QStringList(QStringLiteral("file%1").arg(number));
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
    QTRY_COMPARE(received, all(calls()));
}

// Not in Qt's pool: the sanitizer does not see how the pool hands over a task.
void tst_ThreadPromises::searchWorkersReportAcrossThreads()
{
    QObject receiver;
    QStringList found;
    std::vector<std::unique_ptr<RecursiveFileSearchWorkerThread>> workers;
    for (int number = 0; number < threadCount; ++number) {
        workers.push_back(std::make_unique<RecursiveFileSearchWorkerThread>(addDirectory(number),
                                                                            QStringList("file*")));
        connect(workers.back().get(), &RecursiveFileSearchWorkerThread::searchFinished, &receiver,
                [&found](const QStringList& paths) { found += paths; });
    }
    callInManyThreads([&workers](int number) {
        for (int i = 0; i < calls(); ++i) {
            workers.at(size_t(number))->run();
        }
    });
    QCOMPARE(found, QStringList());
    QTRY_COMPARE(found.size(), all(calls()));
    for (int number = 0; number < threadCount; ++number) {
        QCOMPARE(found.count(QStringLiteral("file%1").arg(number)), calls());
    }
}

void tst_ThreadPromises::separateReadersAreIndependent()
{
    const auto isRight = [this](int number) {
        const QString name = addDirectory(number);
        const QByteArray value = QByteArray::number(number);
        const QString image = writeFile("image" + QString::fromLatin1(value),
                                        EepromImage("Type=" + value +
                                                    "\nTypeName=a\nVersion=1\n"
                                                    "CompatibilityIndex=2\nLP-ID=3\n")
                                            .bytes());
        HardwareInfo info;
        HardwareInfoReader reader(nullptr);
        const bool isRead = reader.readHardwareInfoFromSysFs(name + "/hw.XXXXXX", image, info) &&
                            info.type() == QString::number(number);
        TextFileParser parser(name + QStringLiteral("/file%1").arg(number));
        const QRegularExpression anything("(\\d)");
        return isRead && parser.match(anything) == QString::number(number) &&
               parser.multiMatch(anything) == QStringList(QString::number(number));
    };
    QCOMPARE(correctCallsInManyThreads(calls(), isRight), all(calls()));
}

void tst_ThreadPromises::separateValuesAreIndependent()
{
    const auto isRight = [](int number) {
        DragIndicator indicator;
        indicator.compute(number);
        indicator.compute(number + 10);
        DragIndicator copy;
        const bool isImported = copy.fromJsonArray(indicator.asJsonArray());
        const HardwareIdentification identification(
            QStringLiteral("12345678912345%1").arg(number + 10));
        const VersionManager oldVersion(QStringLiteral("V%1.2.3-4").arg(number));
        const VersionManager newVersion(QStringLiteral("8.1.2.3.%1-g1a2b").arg(number));
        return isImported && copy.getMinValue(DragIndicator::ResettableInstance) == number &&
               copy.getMaxValue(DragIndicator::PermanentInstance) == number + 10 &&
               identification.isHardwareIDValid() &&
               identification.getPartsListSales() == QString::number(number + 10) &&
               oldVersion.getBaseNumber() == QString::number(number) &&
               newVersion.getBuildNumber() == QString::number(number);
    };
    QCOMPARE(correctCallsInManyThreads(quickCalls(), isRight), all(quickCalls()));
}

void tst_ThreadPromises::separateProcessesAreIndependent()
{
    const auto isRight = [](int number) {
        QProcessHandler handler;
        const QString command = QStringLiteral("echo %1; echo %1 >&2; exit %1").arg(number);
        return handler.startProcess("/bin/sh", {"-c", command}) == number &&
               handler.getStandardOutput() == QStringLiteral("%1\n").arg(number) &&
               handler.getStandardError() == QStringLiteral("%1\n").arg(number);
    };
    QCOMPARE(correctCallsInManyThreads(5, isRight), all(5));
}

QTEST_GUILESS_MAIN(tst_ThreadPromises)
#include "tst_ThreadPromises.moc"
