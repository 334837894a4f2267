#include "CpuTime.h"
#include "TestCase.h"
#include "WildcardFilter.h"

#include <memory>
#include <type_traits>

static_assert(std::has_virtual_destructor<WildcardFilter>::value,
              "filters may be deleted through a base pointer");
static_assert(std::is_copy_constructible<WildcardFilter>::value &&
                  std::is_copy_assignable<WildcardFilter>::value,
              "filters are values");

Q_DECLARE_METATYPE(QDir::Filters)

namespace {

constexpr char emptyNameText[] = "Can't match filter to empty file name: \"\"";
constexpr char matchesFiltersSignature[] =
    "bool WildcardFilter::matchesFilters(const QString&) const";

} // namespace

class tst_WildcardFilter : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheFlagDecidesCaseSensitivity_data();
    void onlyTheFlagDecidesCaseSensitivity();
    void patternsMatchWholeNames_data();
    void patternsMatchWholeNames();
    void manyStarsOnTheLongestName_data();
    void manyStarsOnTheLongestName();
    void anyMatchingPatternIsEnough_data();
    void anyMatchingPatternIsEnough();
    void emptyNameWarnsAndDoesNotMatch_data();
    void emptyNameWarnsAndDoesNotMatch();
    void everyEmptyNameWarns();
    void filterMayBeUsedAgain();
    void filterKeepsItsPatterns();
    void copiesAreIndependent();
    void destructorIsVirtual();
};

void tst_WildcardFilter::onlyTheFlagDecidesCaseSensitivity_data()
{
    QTest::addColumn<QDir::Filters>("filters");
    QTest::addColumn<bool>("isCaseSensitive");

    const auto row = [](const char* name, QDir::Filters filters, bool isCaseSensitive) {
        QTest::newRow(name) << filters << isCaseSensitive;
    };
    row("no flag", QDir::Filters(), false);
    row("CaseSensitive", QDir::CaseSensitive, true);
    row("the flag's value", QDir::Filters(QFlag(0x800)), true);
    row("NoFilter contains CaseSensitive", QDir::NoFilter, true);
    row("CaseSensitive and other flags", QDir::Files | QDir::CaseSensitive | QDir::Hidden, true);
    row("all other flags", QDir::Filters(QFlag(int(QDir::NoFilter) & ~int(QDir::CaseSensitive))),
        false);
    row("Dirs", QDir::Dirs, false);
    row("Files", QDir::Files, false);
    row("Drives", QDir::Drives, false);
    row("NoSymLinks", QDir::NoSymLinks, false);
    row("AllEntries", QDir::AllEntries, false);
    row("Readable", QDir::Readable, false);
    row("Writable", QDir::Writable, false);
    row("Executable", QDir::Executable, false);
    row("Modified", QDir::Modified, false);
    row("Hidden", QDir::Hidden, false);
    row("System", QDir::System, false);
    row("AllDirs", QDir::AllDirs, false);
    row("NoDot", QDir::NoDot, false);
    row("NoDotDot", QDir::NoDotDot, false);
}

void tst_WildcardFilter::onlyTheFlagDecidesCaseSensitivity()
{
    QFETCH(QDir::Filters, filters);
    QFETCH(bool, isCaseSensitive);

    const WildcardFilter filter({"*.TXT"}, filters);
    QVERIFY(filter.matchesFilters("A.TXT"));
    QCOMPARE(filter.matchesFilters(QStringLiteral("a.txt")), !isCaseSensitive);
    QCOMPARE(filter.matchesFilters(QStringLiteral("a.Txt")), !isCaseSensitive);
    QVERIFY(!filter.matchesFilters("a.bin"));
    // Flags for entry types do not affect a filter for names.
    QVERIFY(filter.matchesFilters(".HIDDEN.TXT"));
}

void tst_WildcardFilter::patternsMatchWholeNames_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("fits");

    const auto row = [](const char* rowName, const char* pattern, const QString& name, bool fits) {
        QTest::newRow(rowName) << QString::fromUtf8(pattern) << name << fits;
    };
    const auto text = [](const char* utf8) { return QString::fromUtf8(utf8); };

    row("end of the name", "*.gz", text("archive.tar.gz"), true);
    row("middle of the name", "*.tar", text("archive.tar.gz"), false);
    row("start of the name", "archive*", text("archive.tar.gz"), true);
    row("only the start", "archive", text("archive.tar.gz"), false);
    row("star at both ends", "*tar*", text("archive.tar.gz"), true);
    row("complete name", "archive.tar.gz", text("archive.tar.gz"), true);
    row("more than the name", "archive.tar.gz?", text("archive.tar.gz"), false);
    row("dot matches only a dot", "a.b", text("axb"), false);
    row("star matches everything", "*", text("anything at all"), true);
    row("star matches nothing", "a*b", text("ab"), true);
    row("star matches a hidden name", "*", text(".hidden"), true);
    row("star matches the directory itself", "*", text("."), true);
    row("star matches a slash", "*", text("directory/file"), true);
    row("question mark matches one character", "?.txt", text("a.txt"), true);
    row("question mark does not match zero characters", "?.txt", text(".txt"), false);
    row("question mark does not match two characters", "?.txt", text("ab.txt"), false);
    row("question mark matches one umlaut", "?.txt", text("\xc3\xa4.txt"), true);
    row("question mark matches half a surrogate pair", "?", text("\xf0\x9f\x98\x80"), false);
    row("two question marks match a surrogate pair", "??", text("\xf0\x9f\x98\x80"), true);
    row("set", "[abc].txt", text("b.txt"), true);
    row("not in the set", "[abc].txt", text("d.txt"), false);
    row("range", "[a-c].txt", text("b.txt"), true);
    row("outside the range", "[a-c].txt", text("d.txt"), false);
    row("set matches one character", "[a-c].txt", text("ab.txt"), false);
    row("circumflex negates", "[^a].txt", text("b.txt"), true);
    row("circumflex excludes", "[^a].txt", text("a.txt"), false);
    row("exclamation mark is part of the set", "[!a].txt", text("!.txt"), true);
    row("exclamation mark does not exclude", "[!a].txt", text("a.txt"), true);
    row("exclamation mark does not negate", "[!a].txt", text("b.txt"), false);
    // QRegExp treats a backslash as literal and doubles it before an ordinary character.
    row("backslash at the end", "a\\", text("a\\"), true);
    row("backslash before a letter", "a\\b", text("a\\b"), false);
    row("backslash before a letter matches two", "a\\b", text("a\\\\b"), true);
    row("backslash and a star", "a\\*", text("a\\*"), true);
    row("backslash escapes a star", "a\\*", text("a\\bcd"), false);
    row("backslash is kept before a star", "a\\*", text("a*"), false);
    row("backslash and a question mark", "a\\?", text("a\\?"), true);
    row("backslash in a set", "a[\\]", text("a\\"), true);
    row("set with a star escapes it", "a[*]", text("a*"), true);
    row("set of only a star", "a[*]", text("ab"), false);
    row("plus, dollar and parentheses", "a+$(b){2}|^", text("a+$(b){2}|^"), true);
    row("bar does not separate alternatives", "a|b", text("a"), false);
    row("unclosed set matches nothing", "[a", text("a"), false);
    row("unclosed set does not match itself", "[a", text("[a"), false);
    row("closing bracket without a set matches nothing", "]", text("]"), false);
    row("closing bracket within a name matches nothing", "a]*", text("a]b"), false);
    row("empty pattern", "", text("a"), false);
    row("space around a pattern is significant", " *.txt", text("a.txt"), false);
    row("list in one pattern is not split", "*.txt;*.bin", text("a.txt"), false);
    row("line feed", "a*b", text("a\nb"), true);
    row("line feed is one character", "a?b", text("a\nb"), true);
    row("trailing line feed", "a", text("a\n"), false);
    row("umlauts", "gr\xc3\xbc*", text("gr\xc3\xbc\xc3\x9f"), true);
    row("umlauts in different case", "GR\xc3\x9c*", text("gr\xc3\xbcn"), true);
    row("NUL", "a*c", QString::fromLatin1("a\0c", 3), true);
    row("lone surrogate", "a*c", QStringLiteral("a") + QChar(0xd800) + QStringLiteral("c"), true);
    row("long name", "*z", QString(5000, QLatin1Char('a')) + QLatin1Char('z'), true);
}

void tst_WildcardFilter::patternsMatchWholeNames()
{
    QFETCH(QString, pattern);
    QFETCH(QString, name);
    QFETCH(bool, fits);

    const WildcardFilter filter({pattern}, QDir::Files);
    QCOMPARE(filter.matchesFilters(name), fits);
}

// File names have at most 255 bytes, and the patterns have the same length. No pattern matches, so
// a backtracking implementation would try every possibility.
void tst_WildcardFilter::manyStarsOnTheLongestName_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("name");

    const auto repeated = [](const char* text, int length) {
        const QString piece = QString::fromLatin1(text);
        return piece.repeated(length / piece.size());
    };
    const QString letters = repeated("a", 255);
    const QString b = "b";
    QTest::newRow("stars and letters") << repeated("*a", 254) + b << letters;
    QTest::newRow("letters and stars") << repeated("a*", 254) + b << letters;
    QTest::newRow("two letters each") << repeated("*aa", 254) + b << letters;
    QTest::newRow("only stars") << repeated("*", 254) + b << letters;
    QTest::newRow("only stars, a single character") << repeated("*", 254) + b << repeated("a", 1);
    QTest::newRow("question marks and stars") << repeated("?*", 254) + b << letters;
    QTest::newRow("stars and question marks") << repeated("*?", 254) + b << letters;
    QTest::newRow("two stars and a question mark") << repeated("**?", 254) + b << letters;
    QTest::newRow("sets and stars") << repeated("[a-z]*", 254) + b << letters;
    QTest::newRow("stars and sets") << repeated("*[ab]", 254) + "c" << letters;
    QTest::newRow("negated sets") << repeated("*[^b]", 254) + b << letters;
    QTest::newRow("two alternating letters") << repeated("*a*b", 252) + "c" << repeated("ab", 254);
    QTest::newRow("escaped stars") << repeated("*\\*", 252) + b << repeated("*", 255);
    QTest::newRow("brackets") << repeated("[[]*", 252) + b << repeated("[", 255);
    QTest::newRow("only stars and dots") << repeated("*.", 254) + b << repeated(".", 255);
}

void tst_WildcardFilter::manyStarsOnTheLongestName()
{
    QFETCH(QString, pattern);
    QFETCH(QString, name);

    const CpuTime time;
    for (const QDir::Filters filters : {QDir::Filters(QDir::CaseSensitive), QDir::Filters()}) {
        const WildcardFilter filter({pattern}, filters);
        QVERIFY(!filter.matchesFilters(name));
        QVERIFY(!filter.matchesFilters(name + QLatin1Char('!')));
    }
    QVERIFY2(time.seconds() < 60, qPrintable(QString::number(time.seconds())));
}

void tst_WildcardFilter::anyMatchingPatternIsEnough_data()
{
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QStringList>("fitting");
    QTest::addColumn<QStringList>("others");

    const auto list = [](const char* names) {
        return QString::fromLatin1(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    QTest::newRow("none") << QStringList() << QStringList() << list("a a.txt * . .hidden");
    QTest::newRow("an empty pattern") << QStringList(QString()) << QStringList() << list("a * .");
    QTest::newRow("one") << list("*.txt") << list("a.txt") << list("a.bin a");
    QTest::newRow("several") << list("*.txt *.bin c*") << list("a.txt a.bin c.zip c")
                             << list("a.zip b");
    QTest::newRow("several in a different order")
        << list("c* *.bin *.txt") << list("a.txt a.bin c.zip c") << list("a.zip b");
    QTest::newRow("duplicate pattern") << list("*.txt *.txt") << list("a.txt") << list("b");
    QTest::newRow("general before specific") << list("* a.txt") << list("a.txt b") << QStringList();
    QTest::newRow("negated") << list("[^a]* a.txt") << list("b a.txt") << list("a a.bin");
    QTest::newRow("invalid pattern first") << list("[ *.txt") << list("a.txt") << list("[ b");

    QStringList patterns;
    for (int i = 0; i < 500; ++i) {
        patterns.append(QStringLiteral("*.%1").arg(i));
    }
    QTest::newRow("five hundred patterns")
        << patterns << list("a.0 a.250 a.499") << list("a.500 a a.");
}

void tst_WildcardFilter::anyMatchingPatternIsEnough()
{
    QFETCH(QStringList, patterns);
    QFETCH(QStringList, fitting);
    QFETCH(QStringList, others);

    const WildcardFilter filter(patterns, QDir::Filters());
    for (const QString& name : qAsConst(fitting)) {
        QVERIFY2(filter.matchesFilters(name), qPrintable(name));
    }
    for (const QString& name : qAsConst(others)) {
        QVERIFY2(!filter.matchesFilters(name), qPrintable(name));
    }
}

void tst_WildcardFilter::emptyNameWarnsAndDoesNotMatch_data()
{
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QString>("name");

    QTest::newRow("a pattern for all names") << QStringList("*") << "";
    QTest::newRow("an empty pattern") << QStringList(QString()) << "";
    QTest::newRow("no pattern") << QStringList() << "";
    QTest::newRow("a null name") << QStringList("*") << QString();
}

void tst_WildcardFilter::emptyNameWarnsAndDoesNotMatch()
{
    QFETCH(QStringList, patterns);
    QFETCH(QString, name);

    messages()
        .expectWarning("WildcardFilter", QLatin1String(emptyNameText))
        .function(matchesFiltersSignature);
    const WildcardFilter filter(patterns, QDir::NoFilter);
    QVERIFY(!filter.matchesFilters(name));
}

void tst_WildcardFilter::everyEmptyNameWarns()
{
    const WildcardFilter filter({"*"}, QDir::NoFilter);
    for (int i = 0; i < 3; ++i) {
        messages().expectWarning("WildcardFilter", QLatin1String(emptyNameText));
        QVERIFY(!filter.matchesFilters(QString()));
        QVERIFY(filter.matchesFilters("a"));
    }
}

void tst_WildcardFilter::filterMayBeUsedAgain()
{
    const WildcardFilter filter({"*.txt", "b*"}, QDir::Filters());
    for (int i = 0; i < 3; ++i) {
        QVERIFY(filter.matchesFilters("a.txt"));
        QVERIFY(!filter.matchesFilters("a.bin"));
        QVERIFY(filter.matchesFilters("b.bin"));
    }
}

void tst_WildcardFilter::filterKeepsItsPatterns()
{
    QStringList patterns("*.txt");
    const WildcardFilter filter(patterns, QDir::Filters());
    patterns[0] = "*.bin";
    patterns.append("*");
    QVERIFY(filter.matchesFilters("a.txt"));
    QVERIFY(!filter.matchesFilters("a.bin"));
}

void tst_WildcardFilter::copiesAreIndependent()
{
    std::unique_ptr<WildcardFilter> original(new WildcardFilter({"*.txt"}, QDir::CaseSensitive));
    const WildcardFilter copy(*original);
    WildcardFilter assigned({"*.bin"}, QDir::Filters());
    assigned = *original;
    *original = WildcardFilter({"*.zip"}, QDir::Filters());

    QVERIFY(original->matchesFilters("A.ZIP"));
    QVERIFY(!original->matchesFilters("a.txt"));
    original.reset();
    for (const WildcardFilter& filter : {copy, assigned}) {
        QVERIFY(filter.matchesFilters("a.txt"));
        QVERIFY(!filter.matchesFilters("A.TXT"));
        QVERIFY(!filter.matchesFilters("a.bin"));
    }
}

void tst_WildcardFilter::destructorIsVirtual()
{
    class DerivedFilter : public WildcardFilter
    {
    public:
        explicit DerivedFilter(bool& isDestroyed)
            : WildcardFilter({"*"}, QDir::NoFilter), m_isDestroyed(isDestroyed)
        {
        }
        ~DerivedFilter() override { m_isDestroyed = true; }

    private:
        bool& m_isDestroyed;
    };

    bool isDestroyed = false;
    std::unique_ptr<WildcardFilter> filter(new DerivedFilter(isDestroyed));
    QVERIFY(filter->matchesFilters("a"));
    filter.reset();
    QVERIFY(isDestroyed);
}

QTEST_GUILESS_MAIN(tst_WildcardFilter)

#include "tst_WildcardFilter.moc"
