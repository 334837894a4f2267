#include "LiteralVersion.h"
#include "TestCase.h"
#include "VersionManager.h"

#include <QtCore/QRandomGenerator>

#include <type_traits>

// Applications may derive from the class and delete objects through a base pointer.
static_assert(std::is_polymorphic<VersionManager>::value, "has virtual functions");
static_assert(std::has_virtual_destructor<VersionManager>::value,
              "may be deleted through a base pointer");
static_assert(std::is_constructible<VersionManager, const QString&>::value,
              "can be constructed from a version");
static_assert(std::is_copy_constructible<VersionManager>::value &&
                  std::is_copy_assignable<VersionManager>::value,
              "is a value");
static_assert(std::is_same<decltype(&VersionManager::getRegularExpressionVersion),
                           const QString& (*)()>::value,
              "is static and returns a reference");

namespace {

constexpr char dotsSignature[] = "bool VersionManager::isOldVersion(const QString&)";
constexpr char oldSignature[] = "void VersionManager::initializeVersionsOld(const QString&)";

QStringList words(const char* spaceSeparated)
{
    return QString::fromUtf8(spaceSeparated).split(QLatin1Char(' '));
}

template <typename T, int N>
const T& pick(QRandomGenerator& random, const T (&choices)[N])
{
    return choices[random.bounded(N)];
}

QString anyNumber(QRandomGenerator& random)
{
    const int digits = random.bounded(5);
    QString number;
    for (int i = 0; i < digits; ++i) {
        number += QLatin1Char(char('0' + random.bounded(10)));
    }
    return number;
}

// A text similar to a version: numbers separated by dots, with a random prefix and suffix.
QString versionLike(QRandomGenerator& random)
{
    static const char* const before[] = {"", "", "V", "V", "v", "VV", "x", " ", "a b", "-", "V "};
    static const char* const suffixes[] = {"", "", "-", "-", "--", " ", "x", "\n", " - "};
    static const int dotCounts[] = {0, 1, 2, 2, 2, 2, 3, 4, 4, 4, 5, 6};
    QString version = QLatin1String(pick(random, before)) + anyNumber(random);
    for (int dots = pick(random, dotCounts); dots > 0; --dots) {
        version += QLatin1Char('.') + anyNumber(random);
    }
    version += QLatin1String(pick(random, suffixes)) + anyNumber(random);
    if (random.bounded(3) == 0) {
        version += QLatin1String(pick(random, suffixes)) + "g1a2b";
    }
    return version;
}

// Random text with many dots.
QString scramble(QRandomGenerator& random)
{
    static const QString pieces[] = {
        ".",
        ".",
        ".",
        ".",
        "1",
        "2",
        "12",
        "345",
        "0",
        "-",
        "-",
        "V",
        "v",
        "x",
        "A",
        " ",
        "\t",
        "\n",
        QStringLiteral("\v"),
        QStringLiteral("\f"),
        "\r",
        QStringLiteral("\u0663"),
        QStringLiteral("\uFF11"),
        QStringLiteral("\u00A0"),
        QStringLiteral("\u2003"),
        QStringLiteral("\u00E4"),
        QString(QChar::Null),
        QString(QChar(0xD800)),
        QString(QChar(0xDC00)),
        "_",
    };
    QString version;
    for (int count = random.bounded(14); count > 0; --count) {
        version += pick(random, pieces);
    }
    return version;
}

} // namespace

class tst_VersionManager : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void oldFormatIsParsed_data();
    void oldFormatIsParsed();
    void oldFormatWithoutMatchWarns_data();
    void oldFormatWithoutMatchWarns();
    void newFormatIsParsed_data();
    void newFormatIsParsed();
    void unsupportedDotCountWarns_data();
    void unsupportedDotCountWarns();
    void nullVersionHasNullParts();

    void gettersOfTheOtherFormatWarn();
    void isOldVersionCountsDots_data();
    void isOldVersionCountsDots();
    void isOldVersionIgnoresTheFields();
    void initializeVersionsOldKeepsOtherParts();
    void initializeVersionsNewKeepsOtherParts();
    void initializeVersionsKeepsOtherParts();
    void copiesAreIndependent();
    void expressionIsConstant();
    void randomVersionsMatchTheLiteralVersion();

private:
    void expectWarning(const QString& text, const char* signature);
    void expectNewGetterWarnings();
    void expectOldGetterWarnings();
    QStringList takeTexts();
};

void tst_VersionManager::expectWarning(const QString& text, const char* signature)
{
    messages().expectWarning("VersionManager", text).function(signature);
}

void tst_VersionManager::expectNewGetterWarnings()
{
    expectWarning(QLatin1String(onlyOldTest), "QString VersionManager::getTestIndex() const");
}

void tst_VersionManager::expectOldGetterWarnings()
{
    expectWarning(QLatin1String(onlyNewPatch), "QString VersionManager::getPatchVersion() const");
    expectWarning(QLatin1String(onlyNewBuild), "QString VersionManager::getBuildNumber() const");
    expectWarning(QLatin1String(onlyNewHash), "QString VersionManager::getGitHash() const");
}

QStringList tst_VersionManager::takeTexts()
{
    QStringList texts;
    for (const Message& message : messages().take()) {
        texts += message.text;
    }
    return texts;
}

void tst_VersionManager::oldFormatIsParsed_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QStringList>("components"); // main version to test index

    const auto row = [](const char* situation, const char* version, const char* components) {
        QTest::newRow(situation) << QString::fromUtf8(version) << words(components);
    };
    row("all parts", "V8.12.3-45", "<8.12.3> <8> <12> <3> <45>");
    row("leading zeros", "V1.02.03", "<1.02.03> <1> <02> <03> null");
    row("no V", "1.2.3-7", "<1.2.3> <1> <2> <3> <7>");
    row("three digits of test index", "1.2.3-123", "<1.2.3> <1> <2> <3> <123>");
    row("at most three digits of test index", "1.2.3-1234", "<1.2.3> <1> <2> <3> <123>");
    row("dash without a test index", "1.2.3-", "<1.2.3> <1> <2> <3> null");
    row("two dashes", "1.2.3--7", "<1.2.3> <1> <2> <3> null");
    row("letters after the dash", "1.2.3-rc1", "<1.2.3> <1> <2> <3> null");
    row("test index without a dash", "1.2.345", "<1.2.34> <1> <2> <34> <5>");
    row("many digits without a dash", "1.2.3456789", "<1.2.34> <1> <2> <34> <567>");
    row("two digits and a test index", "1.22.33-444", "<1.22.33> <1> <22> <33> <444>");
    row("space before the test index", "1.2.3 -4", "<1.2.3> <1> <2> <3> null");
    row("long base number", "123456.2.3", "<123456.2.3> <123456> <2> <3> null");
    row("base number is any text without spaces", "x1.2.3", "<x1.2.3> <x1> <2> <3> null");
    row("lowercase v", "v1.2.3", "<v1.2.3> <v1> <2> <3> null");
    row("two V, the second is part of the base number", "VV1.2.3", "<V1.2.3> <V1> <2> <3> null");
    row("dashes in the base number", "a-b-1.2.3-4", "<a-b-1.2.3> <a-b-1> <2> <3> <4>");
    row("no base number", ".1.2", "<.1.2> <> <1> <2> null");
    row("V without a base number", "V.1.2", "<.1.2> <> <1> <2> null");
    row("trailing letter", "1.2.3x", "<1.2.3> <1> <2> <3> null");
    row("non-Latin script in the base number", "\xD9\xA3.2.3",
        "<\xD9\xA3.2.3> <\xD9\xA3> <2> <3> null");
    row("non-Latin digits as test index", "1.2.3-\xD9\xA3", "<1.2.3> <1> <2> <3> null");

    // The first match counts, at any position.
    row("leading text", "Release V1.2.3-4", "<1.2.3> <1> <2> <3> <4>");
    row("trailing text", "1.2.3-4 of today", "<1.2.3> <1> <2> <3> <4>");
    row("space in the base number", "1 2.3.4", "<2.3.4> <2> <3> <4> null");
    row("leading line feed", "first\n1.2.3", "<1.2.3> <1> <2> <3> null");
    row("trailing line feed", "1.2.3\n", "<1.2.3> <1> <2> <3> null");
    row("line feed before the test index", "1.2.3\n-4", "<1.2.3> <1> <2> <3> null");
    row("leading tab", "\t1.2.3", "<1.2.3> <1> <2> <3> null");

    // Without Unicode properties only ASCII white space counts.
    QTest::newRow("no-break space in the base number")
        << QStringLiteral("a\u00A0b.1.2")
        << QStringList({QStringLiteral("<a\u00A0b.1.2>"), QStringLiteral("<a\u00A0b>"), "<1>",
                        "<2>", "null"});
    const QString withNul = QStringLiteral("a%1b").arg(QChar(QChar::Null));
    QTest::newRow("NUL in the base number")
        << withNul + ".1.2"
        << QStringList({QLatin1Char('<') + withNul + ".1.2>",
                        QLatin1Char('<') + withNul + QLatin1Char('>'), "<1>", "<2>", "null"});
}

void tst_VersionManager::oldFormatIsParsed()
{
    QFETCH(QString, version);
    QFETCH(QStringList, components);
    const VersionManager manager(version);
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(manager), QStringList("old") + components + words("null null null"));
}

void tst_VersionManager::oldFormatWithoutMatchWarns_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("shownVersion"); // as QDebug shows it

    const auto row = [](const char* situation, const QString& version) {
        QTest::newRow(situation) << version << version;
    };
    row("letters", "A.B.C");
    row("three digits of major index", "1.123.4");
    row("only dots", "..");
    row("no minor index", "1.2.");
    row("no major index", "1..2");
    row("space in the major index", "1.2 .3");
    row("space before the minor index", "1.2. 3");
    row("dash instead of a dot", "1.2-3.");
    row("negative minor index", "1.2.-3");
    row("Arabic-Indic digit", QStringLiteral("1.\u0663.4"));
    row("fullwidth digit", QStringLiteral("1.2.\uFF13"));
    QTest::newRow("line feed between the parts") << "1.2\n.3"
                                                 << "1.2\\n.3";
    // With half a surrogate pair the expression cannot match the text at all.
    QTest::newRow("half a surrogate pair")
        << QChar(0xD800) + QStringLiteral(" 1.2.3") << QStringLiteral("\\uD800 1.2.3");
}

void tst_VersionManager::oldFormatWithoutMatchWarns()
{
    QFETCH(QString, version);
    QFETCH(QString, shownVersion);
    expectWarning(QStringLiteral("Can not convert the following version: \"%1\"").arg(shownVersion),
                  oldSignature);
    const VersionManager manager(version);
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(manager), words("old null null null null null null null null"));
}

void tst_VersionManager::newFormatIsParsed_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QStringList>("components"); // main version to minor index, patch to git hash

    const auto row = [](const char* situation, const char* version, const char* components) {
        QTest::newRow(situation) << QString::fromUtf8(version) << words(components);
    };
    row("all parts", "8.100.2.7.1234-g1a2b3c",
        "<8.100.2.7.1234> <8> <100> <2> <7> <1234> <g1a2b3c>");
    row("no git hash", "1.2.3.4.5", "<1.2.3.4.5> <1> <2> <3> <4> <5> null");
    row("dash without a git hash", "1.2.3.4.5-", "<1.2.3.4.5> <1> <2> <3> <4> <5> null");
    row("dash in the git hash", "1.2.3.4.5-abc-def", "<1.2.3.4.5> <1> <2> <3> <4> <5> <abc-def>");
    row("dashes around the git hash", "1.2.3.4.5--a--b-",
        "<1.2.3.4.5> <1> <2> <3> <4> <5> <-a--b->");
    row("V is part of the base number", "V1.2.3.4.5", "<V1.2.3.4.5> <V1> <2> <3> <4> <5> null");
    row("widths are not checked", "1.0222.33333.4.555555555",
        "<1.0222.33333.4.555555555> <1> <0222> <33333> <4> <555555555> null");
    row("letters", "a.b.c.d.e-f", "<a.b.c.d.e> <a> <b> <c> <d> <e> <f>");
    row("only dots", "....", "<....> <> <> <> <> <> null");
    row("only dots and a dash", "....-", "<....> <> <> <> <> <> null");
    row("dots after the dash are counted", "1.2.3-4.5.6", "<1.2.3> <1> <2> <3> null null <4.5.6>");
    row("all dots after the dash", "x-1.2.3.4.5", "<x> <x> null null null null <1.2.3.4.5>");
    row("leading dash", "-1.2.3.4.5", "<> <> null null null null <1.2.3.4.5>");
    row("negative part", "1.-2.3.4.5", "<1.> <1> <> null null null <2.3.4.5>");
    row("trailing line feed", "1.2.3.4.5\n", "<1.2.3.4.5\n> <1> <2> <3> <4> <5\n> null");
    row("non-Latin digits", "\xD9\xA3.2.3.4.5",
        "<\xD9\xA3.2.3.4.5> <\xD9\xA3> <2> <3> <4> <5> null");
    QTest::newRow("spaces are kept")
        << " 1 . 2.3.4.5 - g "
        << QStringList({"< 1 . 2.3.4.5 >", "< 1 >", "< 2>", "<3>", "<4>", "<5 >", "< g >"});
}

void tst_VersionManager::newFormatIsParsed()
{
    QFETCH(QString, version);
    QFETCH(QStringList, components);
    const VersionManager manager(version);
    components.insert(4, "null");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), QStringList(QStringLiteral("new")) + components);
}

void tst_VersionManager::unsupportedDotCountWarns_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<int>("dots");
    QTest::addColumn<QStringList>("components"); // main version to git hash

    const auto row = [](const char* situation, const char* version, int dots,
                        const char* components) {
        QTest::newRow(situation) << QString::fromUtf8(version) << dots << words(components);
    };
    row("empty", "", 0, "<> <> null null null null null null");
    row("letters", "abc", 0, "<abc> <abc> null null null null null null");
    row("only a dash", "-", 0, "<> <> null null null null null null");
    row("letters and git hash", "abc-def", 0, "<abc> <abc> null null null null null <def>");
    row("one dot", "1.2", 1, "<1.2> <1> <2> null null null null null");
    row("one dot and git hash", "1.2-3", 1, "<1.2> <1> <2> null null null null <3>");
    row("three dots", "1.2.3.4", 3, "<1.2.3.4> <1> <2> <3> null <4> null null");
    row("three dots, one of them after the dash", "V1.2.3-4.5", 3,
        "<V1.2.3> <V1> <2> <3> null null null <4.5>");
    row("five dots: the sixth part is ignored", "1.2.3.4.5.6", 5,
        "<1.2.3.4.5.6> <1> <2> <3> null <4> <5> null");
    row("six dots", "1.2.3.4.5.6.7-8", 6, "<1.2.3.4.5.6.7> <1> <2> <3> null <4> <5> <8>");
    row("similar characters are not dots", "a\xE3\x80\x82x", 0,
        "<a\xE3\x80\x82x> <a\xE3\x80\x82x> null null null null null null");
}

void tst_VersionManager::unsupportedDotCountWarns()
{
    QFETCH(QString, version);
    QFETCH(int, dots);
    QFETCH(QStringList, components);
    expectWarning(QStringLiteral("Number of dots %1 in version not allowed: \"%2\"")
                      .arg(QString::number(dots), version),
                  dotsSignature);
    const VersionManager manager(version);
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), QStringList(QStringLiteral("new")) + components);
}

void tst_VersionManager::nullVersionHasNullParts()
{
    // The warning shows an empty text, but every component is null.
    expectWarning("Number of dots 0 in version not allowed: \"\"", dotsSignature);
    const VersionManager manager{QString()};
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new null null null null null null null null"));
}

void tst_VersionManager::gettersOfTheOtherFormatWarn()
{
    // Each of these getters warns on every call; the other getters log nothing in either format.
    const VersionManager oldVersion("V8.12.3-45");
    const VersionManager newVersion("8.100.2.7.1234-g1a2b3c");
    const auto takeOne = [this](const char* text) {
        return takeTexts() == QStringList(QLatin1String(text));
    };
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(oldVersion.getTestIndex(), QStringLiteral("45"));
        QCOMPARE(newVersion.getPatchVersion(), QStringLiteral("7"));
        QCOMPARE(newVersion.getBuildNumber(), QStringLiteral("1234"));
        QCOMPARE(newVersion.getGitHash(), QStringLiteral("g1a2b3c"));
        for (const VersionManager* version : {&oldVersion, &newVersion}) {
            version->getMainVersion();
            version->getBaseNumber();
            version->getMajorIndex();
            version->getMinorIndex();
            version->isOldVersion();
        }
        QCOMPARE(takeTexts(), QStringList());

        QVERIFY(newVersion.getTestIndex().isNull());
        QVERIFY(takeOne(onlyOldTest));
        QVERIFY(oldVersion.getPatchVersion().isNull());
        QVERIFY(takeOne(onlyNewPatch));
        QVERIFY(oldVersion.getBuildNumber().isNull());
        QVERIFY(takeOne(onlyNewBuild));
        QVERIFY(oldVersion.getGitHash().isNull());
        QVERIFY(takeOne(onlyNewHash));
    }
}

void tst_VersionManager::isOldVersionCountsDots_data()
{
    QTest::addColumn<int>("dots");
    for (int dots = 0; dots <= 7; ++dots) {
        QTest::addRow("%d", dots) << dots;
    }
}

void tst_VersionManager::isOldVersionCountsDots()
{
    QFETCH(int, dots);
    const QString version = QStringLiteral(".").repeated(dots);
    VersionManager oldVersion("1.2.3");
    if (dots != 2 && dots != 4) {
        expectWarning(QStringLiteral("Number of dots %1 in version not allowed: \"%2\"")
                          .arg(QString::number(dots), version),
                      dotsSignature);
    }
    QCOMPARE(oldVersion.isOldVersion(version), dots == 2);
}

void tst_VersionManager::isOldVersionIgnoresTheFields()
{
    VersionManager oldVersion("1.2.3");
    VersionManager newVersion("1.2.3.4.5");
    expectOldGetterWarnings();
    const QStringList oldComponents = componentsOf(oldVersion);
    expectNewGetterWarnings();
    const QStringList newComponents = componentsOf(newVersion);

    for (VersionManager* version : {&oldVersion, &newVersion}) {
        QVERIFY(version->isOldVersion("a.b.c"));
        QVERIFY(!version->isOldVersion("a.b.c.d.e"));
    }
    QVERIFY(oldVersion.isOldVersion());
    QVERIFY(!newVersion.isOldVersion());
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(oldVersion), oldComponents);
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(newVersion), newComponents);
}

void tst_VersionManager::initializeVersionsOldKeepsOtherParts()
{
    // The function parses any text, keeps the detected format, and does not change the parts that
    // only the new format has.
    VersionManager manager("1.2.3.4.5-g");
    manager.initializeVersionsOld("V6.7.8-9");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new <6.7.8> <6> <7> <8> <9> <4> <5> <g>"));

    // The base number is as long as possible.
    manager.initializeVersionsOld("1.2.3.4.5-6");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new <1.2.3.4.5> <1.2.3> <4> <5> <6> <4> <5> <g>"));

    // A missing test index clears the previous one.
    manager.initializeVersionsOld("1.2.3");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new <1.2.3> <1> <2> <3> null <4> <5> <g>"));

    // A text that does not match changes nothing.
    expectWarning("Can not convert the following version: \"1.2\"", oldSignature);
    manager.initializeVersionsOld("1.2");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new <1.2.3> <1> <2> <3> null <4> <5> <g>"));
}

void tst_VersionManager::initializeVersionsNewKeepsOtherParts()
{
    // The function does not count dots, keeps the detected format, and does not change the part
    // that only the old format has.
    VersionManager manager("1.2.3-45");
    manager.initializeVersionsNew("6.7.8.9.10-g");
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(manager), words("old <6.7.8.9.10> <6> <7> <8> <45> <9> <10> <g>"));

    // Missing parts keep their previous value, except for the git hash.
    manager.initializeVersionsNew("a.b");
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(manager), words("old <a.b> <a> <b> <8> <45> <9> <10> null"));

    manager.initializeVersionsNew("...-");
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(manager), words("old <...> <> <> <> <45> <> <10> null"));
}

void tst_VersionManager::initializeVersionsKeepsOtherParts()
{
    VersionManager manager("1.2.3-45");
    manager.initializeVersions("6.7.8.9.10-g");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new <6.7.8.9.10> <6> <7> <8> <45> <9> <10> <g>"));

    manager.initializeVersions("V1.2.3");
    expectOldGetterWarnings();
    QCOMPARE(componentsOf(manager), words("old <1.2.3> <1> <2> <3> null <9> <10> <g>"));

    expectWarning("Number of dots 1 in version not allowed: \"a.b\"", dotsSignature);
    manager.initializeVersions("a.b");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(manager), words("new <a.b> <a> <b> <3> null <9> <10> null"));

    expectWarning("Can not convert the following version: \"..\"", oldSignature);
    manager.initializeVersions("..");
    QVERIFY(manager.isOldVersion());
}

void tst_VersionManager::copiesAreIndependent()
{
    const VersionManager original("1.2.3.4.5-g");
    VersionManager copy(original);
    VersionManager assigned("V9.9.9-9");
    assigned = original;
    const QStringList components = words("new <1.2.3.4.5> <1> <2> <3> null <4> <5> <g>");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(copy), components);
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(assigned), components);

    copy.initializeVersions("6.7.8.9.10");
    expectNewGetterWarnings();
    QCOMPARE(componentsOf(original), components);
}

void tst_VersionManager::expressionIsConstant()
{
    const QString& text = VersionManager::getRegularExpressionVersion();
    QCOMPARE(text, QStringLiteral("V?((\\S*)\\.(\\d{1,2})\\.(\\d{1,2}))\\-?(\\d{1,3})?"));
    QCOMPARE(&VersionManager::getRegularExpressionVersion(), &text);
}

void tst_VersionManager::randomVersionsMatchTheLiteralVersion()
{
    const int versions = rounds(25000);

    QRandomGenerator random(1);
    LiteralVersion literalReused;
    literalReused.read("1.2.3");
    VersionManager reused("1.2.3");
    int dotCounts[7] = {};
    int withTestIndex = 0;
    int withoutTestIndex = 0;
    int withoutMatch = 0;
    int withGitHash = 0;
    for (int i = 0; i < versions; ++i) {
        const QString version = random.bounded(3) == 0 ? scramble(random) : versionLike(random);

        LiteralVersion literal;
        literal.read(version);
        QStringList expected = componentsOf(literal);
        literalReused.read(version);
        expected += componentsOf(literalReused);
        expected += takeTexts();

        const VersionManager fresh(version);
        QStringList actual = componentsOf(fresh);
        reused.initializeVersions(version);
        actual += componentsOf(reused);
        actual += takeTexts();
        QVERIFY2(actual == expected,
                 qPrintable(QStringLiteral("number %1, %2:\n   library %3\n   literal %4")
                                .arg(QString::number(i), version, actual.join(QLatin1Char('|')),
                                     expected.join(QLatin1Char('|')))));

        ++dotCounts[qMin(version.count(QLatin1Char('.')), 6)];
        if (literal.isOld) {
            withoutMatch += literal.mainVersion.isNull() ? 1 : 0;
            withTestIndex += literal.testIndex.isNull() ? 0 : 1;
            withoutTestIndex += !literal.mainVersion.isNull() && literal.testIndex.isNull() ? 1 : 0;
        } else {
            withGitHash += literal.gitHash.isNull() ? 0 : 1;
        }
    }
    for (const int count : dotCounts) {
        QVERIFY(count >= versions / 100);
    }
    for (const int count : {withTestIndex, withoutTestIndex, withoutMatch, withGitHash}) {
        QVERIFY(count >= versions / 100);
    }
}

QTEST_GUILESS_MAIN(tst_VersionManager)
#include "tst_VersionManager.moc"
