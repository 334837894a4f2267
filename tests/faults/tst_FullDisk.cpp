#include "DeviceRoot.h"
#include "IniFileManager.h"
#include "TestCase.h"

#include <QtCore/QDir>

#include <sys/mount.h>

namespace {

constexpr int pageSize = 4096;

// A disk of 64 KiB during the life of the object.
class TinyDisk
{
public:
    explicit TinyDisk(const QString& directory) : m_directory(QFile::encodeName(directory))
    {
        QDir().mkpath(directory);
        if (mount("none", m_directory.constData(), "tmpfs", 0, "size=64k,nr_inodes=16") != 0) {
            qFatal("cannot mount a tmpfs");
        }
    }

    ~TinyDisk() { umount2(m_directory.constData(), MNT_DETACH); }

    Q_DISABLE_COPY(TinyDisk)

private:
    const QByteArray m_directory;
};

} // namespace

// What happens to files on a full disk.
class tst_FullDisk : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanUp_data();
    void cleanUp();
    void cleanUpWithoutFreeInodesKeepsTheFile();
    void setAndSync_data();
    void setAndSync();

private:
    QString disk() const { return path("disk"); }
    QString file() const { return disk() + "/settings.ini"; }
    void fillUp(int freePages);
    QStringList entries() const
    {
        return QDir(disk()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

// Fills the disk except for this many pages.
void tst_FullDisk::fillUp(int freePages)
{
    QFile filling(disk() + "/filling");
    QVERIFY(filling.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray page(pageSize, 'f');
    int pages = 0;
    while (filling.write(page) == page.size()) {
        ++pages;
    }
    QVERIFY(pages >= freePages);
    QVERIFY(filling.resize((pages - freePages) * pageSize));
}

void tst_FullDisk::cleanUp_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("freePages");
    QTest::addColumn<bool>("isCleaned");
    QTest::newRow("nothing free") << 100 << 0 << false;
    QTest::newRow("enough free") << 100 << 1 << true;
    QTest::newRow("one page too few") << 5 * pageSize << 4 << false;
    QTest::newRow("as many pages as needed") << 5 * pageSize << 5 << true;
    QTest::newRow("almost the entire disk") << 12 * pageSize << 4 << false;
}

void tst_FullDisk::cleanUp()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(int, size);
    QFETCH(int, freePages);
    QFETCH(bool, isCleaned);
    const TinyDisk tinyDisk(disk());
    writeFile("disk/settings.ini", QByteArray(size, ','));
    fillUp(freePages);

    IniFileManager::cleanUp(file());

    QCOMPARE(readFile(file()), QByteArray(size, isCleaned ? ' ' : ','));
    QCOMPARE(entries(), QStringList({QStringLiteral("filling"), QStringLiteral("settings.ini")}));
}

void tst_FullDisk::cleanUpWithoutFreeInodesKeepsTheFile()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    const TinyDisk tinyDisk(disk());
    writeFile("disk/settings.ini", "k=1,2\n");
    int files = 0;
    for (bool isRoom = true; isRoom; ++files) {
        QFile another(disk() + QLatin1Char('/') + QString::number(files));
        isRoom = another.open(QIODevice::WriteOnly);
    }
    QVERIFY(files > 1);

    messages().expectWarning("IniFileManager",
                             QStringLiteral("Can not open file: \"%1\"").arg(file()));
    IniFileManager::cleanUp(file());
    QCOMPARE(readFile(file()), QByteArray("k=1,2\n"));
}

void tst_FullDisk::setAndSync_data()
{
    QTest::addColumn<int>("freePages");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing free") << 0 << QByteArray("[Net]\nPort=80\n");
    // The lock uses the last page. QSaveFile of Qt 5.15 does not detect that the data which it
    // buffers until it is closed was not written, and replaces the old file by an empty one.
    QTest::newRow("one page free") << 1 << QByteArray("");
    QTest::newRow("enough free") << 2 << QByteArray("[Net]\nPort=8080\n");
}

void tst_FullDisk::setAndSync()
{
    MISCTOOLS_NEED_DEVICE_ROOT();
    QFETCH(int, freePages);
    QFETCH(QByteArray, content);
    const TinyDisk tinyDisk(disk());
    writeFile("disk/settings.ini", "[Net]\nPort=80\n");
    fillUp(freePages);
    IniFileManager manager(file(), nullptr);
    manager.setValue("Net", "Port", 8080);
    manager.sync();
    QCOMPARE(readFile(file()), content);
    QCOMPARE(entries(), QStringList({QStringLiteral("filling"), QStringLiteral("settings.ini")}));

    // No value is lost: the next sync with free space writes all of them.
    QVERIFY(QFile::remove(disk() + "/filling"));
    manager.setValue("Net", "Name", 1);
    manager.sync();
    QCOMPARE(readFile(file()), QByteArray("[Net]\nName=1\nPort=8080\n"));
}

QTEST_GUILESS_MAIN(tst_FullDisk)
#include "tst_FullDisk.moc"
