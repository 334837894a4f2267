#include "HardwareIdentification.h"
#include "LiteralHardwareId.h"
#include "TestCase.h"

#include <QtCore/QRandomGenerator>

#include <type_traits>

// Applications may derive from the class and delete objects through a base pointer.
static_assert(std::is_polymorphic<HardwareIdentification>::value, "has virtual functions");
static_assert(std::has_virtual_destructor<HardwareIdentification>::value, "may be derived from");
static_assert(std::is_constructible<HardwareIdentification, const QString&>::value,
              "can be constructed from an ID");
static_assert(std::is_copy_constructible<HardwareIdentification>::value &&
                  std::is_copy_assignable<HardwareIdentification>::value,
              "is a value");

using LiteralHardwareId::Outcome;
using LiteralHardwareId::Parts;
using LiteralHardwareId::partsOf;

namespace {

constexpr char divideSignature[] = "void HardwareIdentification::divideHardwareID(const QString&)";

const QString validId = "1234567891234567";

QString anyDigit(QRandomGenerator& random)
{
    return QString(QLatin1Char(char('0' + (random.bounded(2) == 0 ? 0 : random.bounded(10)))));
}

// One character, or a surrogate pair, that could be mistaken for part of an ID.
QString anyCharacter(QRandomGenerator& random)
{
    const auto oneOf = [&random](uint first, int count) {
        const uint character = first + uint(random.bounded(count));
        return QString::fromUcs4(&character, 1);
    };
    switch (random.bounded(12)) {
    case 0:
        return oneOf(0x0660, 10); // Arabic-Indic digits
    case 1:
        return oneOf(0x0966, 10); // Devanagari digits
    case 2:
        return oneOf(0xFF10, 10); // fullwidth digits
    case 3:
        return oneOf(0x2070, 10); // superscripts
    case 4:
        return oneOf(0x1D7CE, 50); // mathematical digits, which are surrogate pairs
    case 5:
        return QString(QChar(0xD800 + random.bounded(0x800))); // half of a pair
    case 6:
        return oneOf('A', 58); // letters and the characters between them
    case 7:
        return oneOf(' ', 16); // space and punctuation, just below the digits
    case 8:
        return oneOf(':', 7); // just above the digits
    case 9:
        return oneOf(0, 0x20); // control characters, including NUL
    case 10:
        return oneOf(0xA0, 0x60);
    default:
        return anyDigit(random);
    }
}

QString anyId(QRandomGenerator& random)
{
    const int length = random.bounded(3) == 0 ? random.bounded(14, 19) : 16;
    // Texts of three kinds: only digits, mostly digits, or random characters.
    static const int othersOf[] = {0, 0, 0, 4, 50};
    const int others = othersOf[random.bounded(5)];
    QString id;
    while (id.length() < length) {
        id += random.bounded(100) < others ? anyCharacter(random) : anyDigit(random);
    }
    return id;
}

} // namespace

class tst_HardwareIdentification : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void validIdIsParsed_data();
    void validIdIsParsed();
    void invalidIdLeavesPartsEmpty_data();
    void invalidIdLeavesPartsEmpty();
    void failureClearsThePreviousId_data();
    void failureClearsThePreviousId();
    void validIdReplacesThePreviousId();
    void validIdIsParsedAfterAnInvalidOne();
    void gettersReturnCopies();
    void containsSixteenDigits_data();
    void containsSixteenDigits();
    void randomIdsMatchTheLiteralVersion();
};

void tst_HardwareIdentification::validIdIsParsed_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QStringList>("texts");

    const auto row = [](const char* situation, const char* id, const char* texts) {
        QTest::newRow(situation) << QString::fromLatin1(id)
                                 << QString::fromLatin1(texts).split(QLatin1Char(' '));
    };
    row("all different", "1234567891234567", "123456 78 912 345 67");
    row("customer version 000", "1234567891200067", "123456 78 912 000 67");
    row("basic type supplement 00", "1234560091234567", "123456 00 912 345 67");
    row("product group number 000000", "0000007891234567", "000000 78 912 345 67");
    row("zeros wherever they are allowed", "0000000000100001", "000000 00 001 000 01");
    row("zeros around the document type", "1234500010045607", "123450 00 100 456 07");
    row("000 from digit 8 on", "1234567000145617", "123456 70 001 456 17");
    row("000 from digit 10 on", "1234567810005617", "123456 78 100 056 17");
    row("document type 010", "1234567801034567", "123456 78 010 345 67");
    row("00 from digit 14 on", "1234567891234007", "123456 78 912 340 07");
    row("parts list 10", "1234567891234510", "123456 78 912 345 10");
    row("largest", "9999999999999999", "999999 99 999 999 99");
}

void tst_HardwareIdentification::validIdIsParsed()
{
    QFETCH(QString, id);
    QFETCH(QStringList, texts);
    const Parts expected = {true, texts};
    const HardwareIdentification identification(id);
    QCOMPARE(partsOf(identification), expected);
}

void tst_HardwareIdentification::invalidIdLeavesPartsEmpty_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("warning");

    const auto size = [](const char* situation, const QString& id, int length) {
        QTest::newRow(situation) << id
                                 << QStringLiteral("Size of hardware ID is invalid %1").arg(length);
    };
    size("null", QString(), 0);
    size("empty", "", 0);
    size("one digit", "1", 1);
    size("14 digits", "12345678912345", 14);
    size("15 digits", "123456789123456", 15);
    size("17 digits", "12345678912345678", 17);
    size("32 digits", validId + validId, 32);
    size("trailing line feed", validId + QLatin1Char('\n'), 17);
    size("trailing NUL", validId + QChar(QChar::Null), 17);
    size("only letters", "abc", 3);
    size("length counts UTF-16 units", QString::fromUtf8("\xF0\x9D\x9F\x8E").repeated(7), 14);

    // The ID as QDebug shows it.
    const auto numbers = [](const char* situation, const QString& id, const QString& shown) {
        QTest::newRow(situation) << id
                                 << "Hardware ID contains not only numbers \"" + shown +
                                        QLatin1Char('"');
    };
    const auto plain = [&numbers](const char* situation, const char* id) {
        numbers(situation, QString::fromUtf8(id), QString::fromUtf8(id));
    };
    plain("leading letter", "A234567891234567");
    plain("letter inside", "12345678912E4567");
    plain("trailing letter", "123456789123456x");
    plain("hexadecimal digits", "12345678ABCDEF12");
    plain("leading space", " 123456789123456");
    plain("trailing space", "123456789123456 ");
    plain("minus", "-123456789123456");
    plain("plus", "+123456789123456");
    plain("period", "1234567.91234567");
    plain("slash, just below the digits", "1234567/91234567");
    plain("colon, just above the digits", "1234567:91234567");
    plain("only spaces", "                ");
    plain("a letter before 000", "A234567800034500");
    numbers("15 digits and a trailing line feed", "123456789123456\n", "123456789123456\\n");
    numbers("NUL inside",
            QStringLiteral("1234567891") + QChar(QChar::Null) + QStringLiteral("34567"),
            "1234567891\\u000034567");
    const QString arabic = QString::fromUtf8("\xD9\xA1").repeated(16);
    numbers("Arabic-Indic digits", arabic, arabic);
    const QString devanagari = QString::fromUtf8("\xE0\xA5\xA7").repeated(16);
    numbers("Devanagari digits", devanagari, devanagari);
    const QString fullwidth = QString::fromUtf8("\xEF\xBC\x91").repeated(16);
    numbers("fullwidth digits", fullwidth, fullwidth);
    const QString superscript = validId.left(15) + QChar(0xB2);
    numbers("one superscript", superscript, superscript);
    const QString mathematical = QString::fromUtf8("\xF0\x9D\x9F\x8F").repeated(8);
    numbers("digits of two UTF-16 units", mathematical, mathematical);

    // Two spaces: the trailing one of the message and the one that QDebug inserts between items.
    const QString documentType = "Document type count number is invalid  \"000\"";
    QTest::newRow("document type 000") << "1234560000000167" << documentType;
    QTest::newRow("only document type 000") << "1234567800034567" << documentType;
    QTest::newRow("document type before the parts list") << "1234567800034500" << documentType;
    QTest::newRow("all zeros") << QString(16, QLatin1Char('0')) << documentType;
    QTest::newRow("parts list 00") << "1234567812345600"
                                   << "Parts list paragrpah is invalid  \"00\"";
}

void tst_HardwareIdentification::invalidIdLeavesPartsEmpty()
{
    QFETCH(QString, id);
    QFETCH(QString, warning);
    messages().expectWarning("HardwareIdentification", warning).function(divideSignature);
    const HardwareIdentification identification(id);
    QCOMPARE(partsOf(identification), Parts());
}

void tst_HardwareIdentification::failureClearsThePreviousId_data()
{
    invalidIdLeavesPartsEmpty_data();
}

void tst_HardwareIdentification::failureClearsThePreviousId()
{
    QFETCH(QString, id);
    QFETCH(QString, warning);
    HardwareIdentification identification(validId);
    QVERIFY(identification.isHardwareIDValid());
    messages().expectWarning("HardwareIdentification", warning).function(divideSignature);
    identification.divideHardwareID(id);
    QCOMPARE(partsOf(identification), Parts());
}

void tst_HardwareIdentification::validIdReplacesThePreviousId()
{
    HardwareIdentification identification(validId);
    const HardwareIdentification copy(identification);
    identification.divideHardwareID("0000000000100001");
    const Parts expected = {true, {"000000", "00", "001", "000", "01"}};
    QCOMPARE(partsOf(identification), expected);
    QCOMPARE(partsOf(copy), partsOf(HardwareIdentification(validId)));
}

void tst_HardwareIdentification::validIdIsParsedAfterAnInvalidOne()
{
    messages()
        .expectWarning("HardwareIdentification", "Size of hardware ID is invalid 3")
        .function(divideSignature);
    HardwareIdentification identification("123");
    identification.divideHardwareID(validId);
    QCOMPARE(partsOf(identification), partsOf(HardwareIdentification(validId)));
}

void tst_HardwareIdentification::gettersReturnCopies()
{
    const HardwareIdentification identification(validId);
    QString part = identification.getProductGroupNumber();
    part[0] = QLatin1Char('x');
    QCOMPARE(identification.getProductGroupNumber(), QStringLiteral("123456"));
}

void tst_HardwareIdentification::containsSixteenDigits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("contains");

    QTest::newRow("null") << QString() << false;
    QTest::newRow("15 digits") << validId.left(15) << false;
    QTest::newRow("16 digits") << validId << true;
    QTest::newRow("16 zeros") << QString(16, QLatin1Char('0')) << true;
    QTest::newRow("17 digits") << validId + QLatin1Char('8') << true;
    QTest::newRow("many digits") << validId.repeated(100) << true;
    QTest::newRow("16 digits after letters") << "ID " + validId << true;
    QTest::newRow("16 digits before letters") << validId + " is it" << true;
    QTest::newRow("16 digits between other characters") << "1 22 333 x" + validId + "x4" << true;
    QTest::newRow("16 digits in the second line") << "a\n" + validId << true;
    QTest::newRow("16 digits after a NUL") << QString(1, QChar::Null) + validId << true;
    QTest::newRow("twice 15 digits")
        << validId.left(15) + QLatin1Char(' ') + validId.left(15) << false;
    QTest::newRow("15 digits and a non-Latin one") << validId.left(15) + QChar(0x0661) << false;
    QTest::newRow("16 non-Latin digits") << QString(16, QChar(0x0661)) << false;
    QTest::newRow("the library's expression") << "[0-9]{16,16}" << false;
}

void tst_HardwareIdentification::containsSixteenDigits()
{
    QFETCH(QString, text);
    QFETCH(bool, contains);
    const HardwareIdentification identification(validId);
    QCOMPARE(identification.containsHardwareIDOnlyNumbers(text), contains);
    // The check does not change the object's ID and logs nothing.
    QCOMPARE(partsOf(identification), partsOf(HardwareIdentification(validId)));
}

void tst_HardwareIdentification::randomIdsMatchTheLiteralVersion()
{
    const int ids = rounds(40000);

    const auto takeTexts = [this] {
        QStringList texts;
        for (const Message& message : messages().take()) {
            texts += message.text;
        }
        return texts;
    };
    QRandomGenerator random(1);
    HardwareIdentification reused(validId);
    int outcomes[LiteralHardwareId::outcomeCount] = {};
    int longer = 0; // texts that contain sixteen digits
    for (int i = 0; i < ids; ++i) {
        const QString id = anyId(random);
        Parts parts;
        const Outcome outcome = LiteralHardwareId::divide(id, parts);
        const bool contains = LiteralHardwareId::containsOnlyNumbers(id);
        const QStringList texts = takeTexts();
        ++outcomes[int(outcome)];
        longer += id.length() != 16 && contains ? 1 : 0;

        const HardwareIdentification fresh(id);
        const bool same = partsOf(fresh) == parts && takeTexts() == texts &&
                          fresh.containsHardwareIDOnlyNumbers(id) == contains;
        reused.divideHardwareID(id);
        const bool sameAgain = partsOf(reused) == parts && takeTexts() == texts;
        QVERIFY2(same && sameAgain,
                 qPrintable(QStringLiteral("number %1: ").arg(i) +
                            QString::fromLatin1(id.toUtf8().toPercentEncoding())));
    }
    for (const int outcome : outcomes) {
        QVERIFY(outcome >= ids / 200);
    }
    QVERIFY(longer >= ids / 200);
}

QTEST_GUILESS_MAIN(tst_HardwareIdentification)
#include "tst_HardwareIdentification.moc"
