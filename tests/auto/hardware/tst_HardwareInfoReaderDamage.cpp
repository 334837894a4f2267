#include "EepromImage.h"
#include "HardwareInfo.h"
#include "HardwareInfoReader.h"
#include "ReaderSamples.h"
#include "TestCase.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QScopedPointer>
#include <QtCore/QtEndian>

using namespace ReaderSamples;

namespace {

// A block with the board's text, of a length that a 16-bit checksum protects well.
QByteArray guardedBlock()
{
    return boardText.leftJustified(100, ' ', true);
}

quint32 word(const QByteArray& image, int address)
{
    return qFromLittleEndian<quint32>(image.constData() + address);
}

// A simple implementation of the reader's checks: the warning for an image; empty if it is valid.
QString warningOf(const QByteArray& image, const QString& filePath)
{
    if (image.size() < EepromImage::headerEnd) {
        return shortHeader(qMax(0, image.size() - EepromImage::headerAddress), filePath);
    }
    const quint32 startAddress = word(image, EepromImage::headerAddress + 4);
    const quint32 length = word(image, EepromImage::headerAddress + 8);
    if (length > 65535) {
        return tooLong(length, filePath);
    }
    const QByteArray block =
        startAddress < quint32(image.size()) ? image.mid(int(startAddress), int(length)) : "";
    if (quint32(block.size()) != length) {
        return shortBlock(filePath);
    }
    const quint32 checksum = word(image, EepromImage::headerAddress + 12);
    return EepromImage::crc(block) == quint16(checksum & 0xFFFF) ? QString()
                                                                 : invalidChecksum(filePath);
}

} // namespace

/*
 * Reads damaged images. Either the reader rejects the image with one message and does not change
 * the record, or the damage does not affect the record.
 */
class tst_HardwareInfoReaderDamage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void everyPrefixIsRejected();
    void everyFlippedBitIsDetectedOrIgnored();
    void everyTwoFlippedBitsOfTheBlockAreDetected();
    void everyTwoFlippedBitsOfTheHeaderAreDetectedOrIgnored();
    void erasedImagesAreValidOnlyIfZero_data();
    void erasedImagesAreValidOnlyIfZero();
    void randomImagesAreRejectedOrValid();

private:
    void store(const QByteArray& image);
    void flip(int bit);
    // Reads the stored image and returns whether that succeeded. The test fails if the messages or
    // the record differ from the expected ones.
    bool isRead(const QString& warning);
    bool isRead() { return isRead(warningOf(m_image, m_file->fileName())); }

    QByteArray m_image;
    QScopedPointer<QFile> m_file; // always open
    HardwareInfoReader m_reader{nullptr};
    HardwareInfo m_info;
};

void tst_HardwareInfoReaderDamage::store(const QByteArray& image)
{
    m_image = image;
    m_file.reset(new QFile(path("eeprom")));
    QVERIFY(m_file->open(QIODevice::ReadWrite | QIODevice::Truncate | QIODevice::Unbuffered));
    QCOMPARE(m_file->write(image), qint64(image.size()));
}

// Flips a bit of the stored image; a second call restores the bit.
void tst_HardwareInfoReaderDamage::flip(int bit)
{
    const int address = bit / 8;
    m_image[address] = char(m_image.at(address) ^ (1 << bit % 8));
    if (!m_file->seek(address) || m_file->write(m_image.constData() + address, 1) != 1) {
        qFatal("cannot change the image");
    }
}

bool tst_HardwareInfoReaderDamage::isRead(const QString& warning)
{
    m_info = usedRecord();
    const bool isRead =
        m_reader.readHardwareInfoFromSysFs(path("hwinfo.XXXXXX"), m_file->fileName(), m_info);
    const QVector<Message> taken = messages().take();
    const bool isAsExpected = isRead ? warning.isEmpty()
                                     : taken.size() == 1 && taken.first().text == warning &&
                                           taken.first().level == QtWarningMsg &&
                                           values(m_info) == untouched;
    if (!isAsExpected) {
        const QString report = "image %1: result %2, %3 messages: %4";
        QTest::qFail(
            qPrintable(report.arg(QString::fromLatin1(m_image.toHex()), QVariant(isRead).toString(),
                                  QString::number(taken.size()),
                                  taken.isEmpty() ? QString() : taken.first().text)),
            __FILE__, __LINE__);
    }
    return isRead;
}

void tst_HardwareInfoReaderDamage::everyPrefixIsRejected()
{
    const QByteArray image = EepromImage(boardText).bytes();
    for (int size = 0; size < image.size(); ++size) {
        store(image.left(size));
        QVERIFY(!isRead() && !QTest::currentTestFailed());
    }
    store(image);
    QVERIFY(isRead());
    QCOMPARE(values(m_info), boardRecord);
}

void tst_HardwareInfoReaderDamage::everyFlippedBitIsDetectedOrIgnored()
{
    store(EepromImage(guardedBlock()).bytes());
    QVERIFY(isRead());
    const QStringList record = values(m_info);
    int reads = 0;
    for (int bit = 0; bit < m_image.size() * 8; ++bit) {
        flip(bit);
        if (isRead()) {
            QCOMPARE(values(m_info), record);
            ++reads;
        }
        QVERIFY(!QTest::currentTestFailed());
        flip(bit);
    }
    // The reader ignores the bytes before the header, its first word, and half of its last word.
    QCOMPARE(reads, (20 + 4 + 2) * 8);
}

void tst_HardwareInfoReaderDamage::everyTwoFlippedBitsOfTheBlockAreDetected()
{
    store(EepromImage(guardedBlock()).bytes());
    const QString warning = invalidChecksum(m_file->fileName());
    // Under an emulator, a tenth of the pairs.
    const int step = isEmulated() ? 10 : 1;
    int pairs = 0;
    for (int first = EepromImage::headerEnd * 8; first < m_image.size() * 8; ++first) {
        flip(first);
        for (int second = first + 1; second < m_image.size() * 8; second += step) {
            flip(second);
            QVERIFY(!isRead(warning) && !QTest::currentTestFailed());
            flip(second);
            ++pairs;
        }
        flip(first);
    }
    QCOMPARE(pairs, isEmulated() ? 32320 : 319600);
}

void tst_HardwareInfoReaderDamage::everyTwoFlippedBitsOfTheHeaderAreDetectedOrIgnored()
{
    store(EepromImage(guardedBlock()).bytes());
    QVERIFY(isRead());
    const QStringList record = values(m_info);
    const int begin = EepromImage::headerAddress * 8;
    const int end = EepromImage::headerEnd * 8;
    int reads = 0;
    for (int first = begin; first < end; ++first) {
        flip(first);
        for (int second = first + 1; second < end; ++second) {
            flip(second);
            if (isRead()) {
                QCOMPARE(values(m_info), record);
                ++reads;
            }
            QVERIFY(!QTest::currentTestFailed());
            flip(second);
        }
        flip(first);
    }
    // The reads that succeed are those with both bits among the 48 ignored ones.
    QCOMPARE(reads, 48 * 47 / 2);
}

void tst_HardwareInfoReaderDamage::erasedImagesAreValidOnlyIfZero_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<bool>("isAccepted");
    for (const int size : {0, 20, 35, 36, 37, 256, 2048, 65536}) {
        // The checksum of zero bytes is zero, so the header describes a valid, empty block.
        QTest::addRow("%d zeros", size) << QByteArray(size, '\0') << (size >= 36);
        QTest::addRow("%d bytes of 0xFF", size) << QByteArray(size, '\xFF') << false;
    }
}

void tst_HardwareInfoReaderDamage::erasedImagesAreValidOnlyIfZero()
{
    QFETCH(QByteArray, image);
    QFETCH(bool, isAccepted);
    store(image);
    QCOMPARE(isRead(), isAccepted);
    QCOMPARE(values(m_info), isAccepted ? sixEmptyTexts : untouched);
}

void tst_HardwareInfoReaderDamage::randomImagesAreRejectedOrValid()
{
    QRandomGenerator random(20240229);
    const int images = rounds(20000);
    for (int i = 0; i < images; ++i) {
        QByteArray image(random.bounded(300), Qt::Uninitialized);
        for (char& byte : image) {
            byte = char(random.bounded(256));
        }
        // Addresses and lengths with few nonzero bytes pass more checks than random ones.
        for (const int address : {24, 28}) {
            if (random.bounded(4) != 0 && address + 4 <= image.size()) {
                qToLittleEndian(quint32(random.bounded(1 << random.bounded(1, 18))),
                                image.data() + address);
            }
        }
        store(image);
        isRead();
        QVERIFY(!QTest::currentTestFailed());
    }
}

QTEST_GUILESS_MAIN(tst_HardwareInfoReaderDamage)
#include "tst_HardwareInfoReaderDamage.moc"
