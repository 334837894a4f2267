#include "HostileText.h"
#include "TestCase.h"
#include "common/Text.h"
#include "common/TextPieces.h"

#include <IniFileManager.h>

#include <QtCore/QBuffer>
#include <QtCore/QRandomGenerator>

// Texts read in pieces are those that Qt reads as a whole.
class tst_TextPieces : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void randomTextsAsAWhole();
    void largeTexts_data();
    void largeTexts();
};

namespace {

// What Qt makes of a file that is opened as text.
QByteArray literalBytes(QByteArray content)
{
    QBuffer file(&content);
    file.open(QIODevice::ReadOnly | QIODevice::Text);
    return file.readAll();
}

QString literalText(const QByteArray& content)
{
    return Text::fromBytes(literalBytes(content));
}

void cleanUp(QString& text)
{
    for (const auto function : qAsConst(IniFileManager::sm_CleanUpFunctions)) {
        function(text);
    }
}

struct Result
{
    QString text;
    QByteArray cleanedUp;
    bool isCut = false;
    int pieces = 0;
};

Result inPieces(QByteArray content, int readSize)
{
    QBuffer file(&content);
    file.open(QIODevice::ReadOnly);
    TextPieces pieces(file, readSize);
    Result result;
    while (pieces.next()) {
        QString text;
        pieces.appendTo(text);
        result.text += text;
        cleanUp(text);
        result.cleanedUp += text.toUtf8();
        ++result.pieces;
    }
    result.isCut = pieces.isCut();
    return result;
}

} // namespace

void tst_TextPieces::randomTextsAsAWhole()
{
    QRandomGenerator random(1);
    int inSeveralPieces = 0;
    const int count = rounds(50000);
    for (int i = 0; i < count; ++i) {
        const QByteArray content = hostileText(random);
        QString expected = literalText(content);
        const Result result = inPieces(content, 1 + random.bounded(12));
        const QByteArray shown =
            "round " + QByteArray::number(i) + ": " + content.toPercentEncoding();
        QVERIFY2(result.text == expected, shown.constData());
        QVERIFY2(result.isCut == literalBytes(content).contains('\0'), shown.constData());
        cleanUp(expected);
        QVERIFY2(result.cleanedUp == expected.toUtf8(), shown.constData());
        inSeveralPieces += result.pieces > 2 ? 1 : 0;
    }
    QVERIFY(inSeveralPieces > count / 4);
}

void tst_TextPieces::largeTexts_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("isInPieces");
    QTest::newRow("ASCII") << QByteArray("colour=%23ff0000,1\n") << true;
    QTest::newRow("carriage returns") << QByteArray("a=1\r\r\r\n") << true;
    QTest::newRow("all carriage returns") << QByteArray("\r") << false;
    QTest::newRow("reads of carriage returns alone")
        << "a=1\n" + QByteArray(64 * 1024, '\r') + "b=2\n"
        << true;
    QTest::newRow("UTF-8") << QByteArray("\xC3\xA4=\xE2\x82\xAC\n") << true;
    QTest::newRow("not UTF-8") << QByteArray("\xFF=\xC3\n") << true;
    QTest::newRow("no place to part") << QByteArray("\xC3\xA4") << false;
    QTest::newRow("digits only") << QByteArray("23") << false;
}

void tst_TextPieces::largeTexts()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, isInPieces);
    const QByteArray content = line.repeated(200000 / line.size());
    QString expected = literalText(content);
    const Result result = inPieces(content, 32 * 1024);
    QCOMPARE(result.text, expected);
    QCOMPARE(result.pieces > 1, isInPieces);
    cleanUp(expected);
    QCOMPARE(result.cleanedUp, expected.toUtf8());
}

QTEST_GUILESS_MAIN(tst_TextPieces)
#include "tst_TextPieces.moc"
