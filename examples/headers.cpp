// The code that the public headers show.

#include <HardwareIdentification.h>
#include <HardwareInfo.h>
#include <HardwareInfoReader.h>
#include <IniFileManager.h>
#include <QProcessHandler.h>
#include <RecorderUrlHashHandling.h>
#include <RecursiveFileSearchWorkerThread.h>
#include <TextFileParser.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QThreadPool>

#include <cstdio>

namespace {

void use(const QString& text)
{
    std::printf("%s\n", qPrintable(text.trimmed()));
}

void iniFileManager(const QString& path)
{
    IniFileManager::cleanUp(path); // optional: "%23" becomes "#", commas become blanks
    IniFileManager settings(path, "UTF-8");
    const int port = settings.getValueInteger(QStringLiteral("Net"), QStringLiteral("Port"), 80);
    std::printf("port %d\n", port);
}

void hardwareIdentification()
{
    const HardwareIdentification id(QStringLiteral("1234567891234567"));
    id.getProductGroupNumber(); // "123456", and then "78", "912", "345", "67"
    use(id.getProductGroupNumber() + QLatin1Char(' ') + id.getBasicTypeSupplement() +
        QLatin1Char(' ') + id.getDocumentTypeCountingNumber() + QLatin1Char(' ') +
        id.getCustomerVersion() + QLatin1Char(' ') + id.getPartsListSales());
}

void hardwareInfoReader(const QString& path)
{
    HardwareInfo board;
    HardwareInfoReader reader(nullptr);
    if (reader.readHardwareInfoFromSysFs(QStringLiteral("/tmp/hwinfo.XXXXXX"), path, board)) {
        use(board.typeName());
    }
}

void qProcessHandler()
{
    QProcessHandler handler;
    handler.setWaitForFinishedTimeout(5000);
    if (handler.startProcess(QStringLiteral("uname"), {QStringLiteral("-s")}) == 0) {
        use(handler.getStandardOutput());
    }
}

void recorderUrlHashHandling(const QByteArray& url)
{
    const QString id = RecorderUrlHashHandling::buildUUIDFromByteArray(
        RecorderUrlHashHandling::createUrlHash(url)); // "d41d8cd9-8f00-b204-e980-0998ecf8427e"
    use(id);
}

class Import : public QObject
{
public:
    void search(const QString& path)
    {
        auto* worker = new RecursiveFileSearchWorkerThread(path, {QStringLiteral("*.csv")});
        connect(worker, &RecursiveFileSearchWorkerThread::searchFinished, this, &Import::offer);
        QThreadPool::globalInstance()->start(worker); // deletes the worker afterwards
    }

    void offer(const QStringList& files) { use(files.join(QLatin1Char(' '))); }
};

void textFileParser()
{
    TextFileParser osRelease(QStringLiteral("/etc/os-release"));
    const QString id = osRelease.match(QRegularExpression(QStringLiteral("\\bID=(\\w+)")));
    std::printf("%s\n", id.isEmpty() ? "no ID" : "an ID");
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    iniFileManager(QStringLiteral("settings.ini"));
    hardwareIdentification();
    hardwareInfoReader(QStringLiteral("eeprom.bin"));
    qProcessHandler();
    recorderUrlHashHandling(QByteArray());
    Import import;
    import.search(QDir::currentPath());
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents(); // the signal comes from another thread
    textFileParser();
    return 0;
}
