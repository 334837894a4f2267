#include "LintTruth.h"
#include "TestCase.h"
#include "ini-lint/IniReading.h"
#include "ini-lint/IniRules.h"
#include "ini-lint/NameRules.h"

#include <QtCore/QMap>
#include <QtCore/QRandomGenerator>
#include <QtCore/QSettings>
#include <QtCore/QTextCodec>

#include <algorithm>

namespace {

const QChar slash = QLatin1Char('/');

QVector<Finding> findingsOf(const Findings& findings, int line, const char* rule)
{
    QVector<Finding> result;
    for (const Finding& finding : findings) {
        if (finding.firstLine == line && finding.rule == QLatin1String(rule)) {
            result.append(finding);
        }
    }
    return result;
}

// The entries that QSettings uses when it reads everything: it reads the sections sorted by name.
QMap<QString, const IniEntry*> entriesByPath(const IniReading& reading)
{
    QVector<const IniEntry*> entries;
    for (const IniEntry& entry : reading.entries()) {
        entries.append(&entry);
    }
    std::stable_sort(
        entries.begin(), entries.end(),
        [](const IniEntry* left, const IniEntry* right) { return left->prefix < right->prefix; });
    QMap<QString, const IniEntry*> result;
    for (const IniEntry* entry : entries) {
        result.insert(entry->path(), entry);
    }
    return result;
}

// A random text of pieces that have a meaning in INI files.
QByteArray randomText(QRandomGenerator& random)
{
    static const QByteArray pieces[] = {"a",           "b",          "A",
                                        "key=",        "k=",         "=",
                                        "[a]\n",       "[b]",        "[A/b]\n",
                                        "[",           "]",          "[]",
                                        "[/",          "/",          "\\",
                                        ";",           "\"",         "\"",
                                        ",",           "\n",         "\n",
                                        "\n",          "\r\n",       "\r",
                                        " ",           "\t",         "%",
                                        "%41",         "%2f",        "%U0042",
                                        "%U00",        "% 1",        "\\x41",
                                        "\\n",         "\\101",      "\\q",
                                        "\\\r\n",      "\\\n",       "'",
                                        "#",           "@",          "@@",
                                        "1",           "@Size(1 2)", "@Point(1)",
                                        "@Rect(",      ")",          "\\x",
                                        "\v",          "0x",         "\xC3\xA4",
                                        "\xE4",        "@Invalid()", "\xEF\xBB\xBF",
                                        "[General]\n", "[GENERAL]",  "[%General]\n",
                                        "[%general]"};
    const int count = int(std::size(pieces));

    QByteArray text = random.bounded(16) == 0 ? QByteArray("\xEF\xBB\xBF") : QByteArray();
    for (int length = random.bounded(40); length > 0; --length) {
        text += pieces[random.bounded(count)];
    }
    return text;
}

bool isList(const QVariant& value)
{
    return value.userType() == QMetaType::QStringList ||
           value.userType() == QMetaType::QVariantList;
}

} // namespace

// Compares the findings in INI texts with what QSettings reads from them.
class tst_IniRules : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsLikeQSettings_data();
    void readsLikeQSettings();
    void namesAreWrittenLikeQSettings();
    void rulesAreSorted();
    void convertedValuesAreFound_data();
    void convertedValuesAreFound();
    void listReadAsAStringIsEmpty();
    void generalIsTheTopLevel();
    void booleanWordsAndLargeNumbersAreFound();
    void duplicateKeyDependsOnTheOrderOfReading();
    void nestedSectionsHideKeys();
    void findingsAgreeWithQSettings();
    void lintTruthDetectsContradictions_data();
    void lintTruthDetectsContradictions();

private:
    void verifyText(const QByteArray& text, const char* codec, int number);
    void verifyFirstLookUps(const QByteArray& text, const IniReading& reading,
                            const Findings& findings);
    void verifyEntries(const QSettings& settings, const IniReading& reading,
                       const Findings& findings);

    int m_copies = 0;
};

void tst_IniRules::readsLikeQSettings_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::newRow("no codec") << QByteArray();
    QTest::newRow("UTF-8") << QByteArray("UTF-8");
}

void tst_IniRules::verifyEntries(const QSettings& settings, const IniReading& reading,
                                 const Findings& findings)
{
    const QMap<QString, const IniEntry*> entries = entriesByPath(reading);
    QCOMPARE(settings.allKeys(), entries.keys());
    for (const IniEntry* entry : entries) {
        const QString path = entry->path();
        if (NameRules::isUnreachable(path)) {
            // A look-up of this path finds another one.
            const QString other = path.split(slash, Qt::SkipEmptyParts).join(slash);
            QVERIFY(other != path || path.isEmpty());
            QVERIFY(other.isEmpty() || settings.contains(path) == entries.contains(other));
            continue;
        }
        QVERIFY(settings.contains(path));
        if (entry->isCommentedOut()) {
            continue;
        }
        const QVariant value = settings.value(path);
        QCOMPARE(isList(value), entry->value.isList());
        QCOMPARE(!findingsOf(findings, entry->extent.first, "comma-list").isEmpty(),
                 entry->value.isList());
        const bool isUnchanged = isList(value)
                                     ? value.toStringList() == entry->value.texts()
                                     : value == QVariant(entry->value.texts().constFirst());
        QCOMPARE(findingsOf(findings, entry->extent.first, "at-sign").isEmpty(), isUnchanged);
    }
}

// Verifies what the first look-up of each key finds. The file has a different name each time:
// QSettings caches what it has read from a file.
void tst_IniRules::verifyFirstLookUps(const QByteArray& text, const IniReading& reading,
                                      const Findings& findings)
{
    QStringList paths;
    for (const IniEntry& entry : reading.entries()) {
        const QString path = entry.path();
        if (paths.contains(path) || NameRules::isUnreachable(path) || entry.isCommentedOut()) {
            continue;
        }
        const QString copy = writeFile(QStringLiteral("copy%1.ini").arg(++m_copies), text);
        const bool isFound = QSettings(copy, QSettings::IniFormat).contains(path);
        QVERIFY(QFile::remove(copy));
        const QString failure =
            QStringLiteral("a look-up of %1 fails ").arg(NameRules::quoted(path));
        const QVector<Finding> found = findingsOf(findings, entry.extent.first, "read-order");
        QCOMPARE(std::any_of(found.cbegin(), found.cend(),
                             [&failure](const Finding& finding) {
                                 return finding.message.startsWith(failure);
                             }),
                 !isFound);
        paths.append(path);
    }
}

void tst_IniRules::verifyText(const QByteArray& text, const char* codec, int number)
{
    QSettings settings(writeFile(QStringLiteral("%1.ini").arg(number), text), QSettings::IniFormat);
    if (codec != nullptr) {
        settings.setIniCodec(codec);
    }
    const QTextCodec* const textCodec =
        codec != nullptr ? QTextCodec::codecForName(codec) : nullptr;
    const IniReading reading(text, textCodec);
    const Findings findings = IniRules::check(text, textCodec);
    verifyEntries(settings, reading, findings);
    verifyFirstLookUps(text, reading, findings);

    const bool hasOpenSection =
        std::any_of(reading.sections().cbegin(), reading.sections().cend(),
                    [](const IniSection& section) { return !section.isClosed; });
    QCOMPARE(settings.status() == QSettings::FormatError,
             hasOpenSection || !reading.strays().isEmpty());
}

// With random texts.
void tst_IniRules::readsLikeQSettings()
{
    QFETCH(QByteArray, codec);
    QRandomGenerator random(4711);
    for (int round = 0; round < rounds(1500); ++round) {
        const QByteArray text = randomText(random);
        verifyText(text, codec.isEmpty() ? nullptr : codec.constData(), round);
        if (QTest::currentTestFailed()) {
            QFAIL(text.toPercentEncoding(" =[];").constData());
        }
        QVERIFY(QFile::remove(path(QStringLiteral("%1.ini").arg(round))));
    }
}

void tst_IniRules::namesAreWrittenLikeQSettings()
{
    const QString filePath = path("written.ini");
    for (int code = 1; code < 0x180; ++code) {
        const QString name = QStringLiteral("n") + QChar(code) + QStringLiteral("e");
        QByteArray line = IniReading::writtenName(name) + "=x\n";
        if (name.contains(QLatin1Char('/'))) {
            continue; // a section
        }
        QFile::remove(filePath);
        {
            QSettings settings(filePath, QSettings::IniFormat);
            settings.setValue(name, "x");
        }
        QCOMPARE(readFile(filePath), "[General]\n" + line);
        // What QSettings writes may be surprising, but is correct.
        for (const Finding& finding : IniRules::check(line, nullptr)) {
            QCOMPARE(finding.rule, QStringLiteral("name-escape"));
            QCOMPARE(finding.severity, Severity::Warning);
        }
    }
}

void tst_IniRules::rulesAreSorted()
{
    const QVector<IniRules::Rule>& rules = IniRules::all();
    QVERIFY(std::is_sorted(rules.cbegin(), rules.cend(),
                           [](const IniRules::Rule& left, const IniRules::Rule& right) {
                               return qstrcmp(left.name, right.name) < 0;
                           }));
    QVERIFY(IniRules::contains("semicolon"));
    QVERIFY(!IniRules::contains("colon"));
}

void tst_IniRules::convertedValuesAreFound_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("isConverted");

    QTest::newRow("object") << QByteArray("@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x5)") << true;
    QTest::newRow("bytes") << QByteArray("@ByteArray(abc)") << true;
    QTest::newRow("text") << QByteArray("@String(abc)") << true;
    QTest::newRow("rectangle") << QByteArray("@Rect(1 2 3 4)") << true;
    QTest::newRow("rectangle with too few numbers") << QByteArray("@Rect(1 2 3)") << false;
    QTest::newRow("size with two parentheses") << QByteArray("@Size(1))") << true;
    QTest::newRow("two marks") << QByteArray("@@abc") << true;
    QTest::newRow("unknown mark") << QByteArray("@Color(1)") << false;
    QTest::newRow("address") << QByteArray("@home") << false;
    QTest::newRow("mark inside a text") << QByteArray("a@Invalid()") << false;
}

void tst_IniRules::convertedValuesAreFound()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, isConverted);

    const QByteArray text = "k=" + value + "\n";
    const QSettings settings(writeFile("marks.ini", text), QSettings::IniFormat);
    const QString plain =
        IniReading(text, nullptr).entries().constFirst().value.texts().constFirst();
    QCOMPARE(settings.value(QStringLiteral("k")) != QVariant(plain), isConverted);
    QCOMPARE(findingsOf(IniRules::check(text, nullptr), 1, "at-sign").size(), isConverted ? 1 : 0);
}

void tst_IniRules::listReadAsAStringIsEmpty()
{
    const QSettings settings(writeFile("list.ini", "a=1,2\nb=@x,y\nc=,\n"), QSettings::IniFormat);
    for (const char* key : {"a", "b", "c"}) {
        QCOMPARE(settings.value(QLatin1String(key)).toString(), QString());
        QVERIFY(settings.contains(QLatin1String(key)));
    }
}

void tst_IniRules::generalIsTheTopLevel()
{
    const QSettings settings(writeFile("general.ini", "[gEneral]\na=1\n[%General]\nb=2\n"),
                             QSettings::IniFormat);
    QCOMPARE(settings.value(QStringLiteral("a")).toString(), QStringLiteral("1"));
    QVERIFY(!settings.contains("General/a"));
    QCOMPARE(settings.value(QStringLiteral("General/b")).toString(), "2");
}

void tst_IniRules::booleanWordsAndLargeNumbersAreFound()
{
    const QByteArray text = "a=off\nb=No\nc=disabled\nd=false\ne=0\nf=\ng=2147483647\n"
                            "h=2147483648\ni=-2147483649\nj=99999999999999999999\nk=4294967301\n";
    const QSettings settings(writeFile("words.ini", text), QSettings::IniFormat);
    const Findings findings = IniRules::check(text, nullptr);
    int line = 0;
    for (const QString& key : settings.allKeys()) {
        ++line;
        const QVariant value = settings.value(key);
        const bool isBooleanWord = line <= 3; // that is read as true
        QCOMPARE(findingsOf(findings, line, "boolean-word").size(), isBooleanWord ? 1 : 0);
        QCOMPARE(value.toBool(), line < 4 || line > 6);

        bool isNumber = false;
        const int number = value.toInt(&isNumber);
        const QVector<Finding> large = findingsOf(findings, line, "large-number");
        const bool isCut = isNumber && QString::number(number) != value.toString();
        QCOMPARE(large.size(), isCut ? 1 : 0);
        if (isCut) {
            QCOMPARE(large.constFirst().message,
                     QStringLiteral("as an integer, '%1' is read as %2: it exceeds 32 bits")
                         .arg(value.toString())
                         .arg(number));
        }
    }
    QCOMPARE(line, 11);
}

// Which of two values is found depends on what was looked up first.
void tst_IniRules::duplicateKeyDependsOnTheOrderOfReading()
{
    const QByteArray text = "[A]\nB\\k=one\n[A/B]\nk=two\n";
    const QString both = "A/B/k";
    const QSettings settings(writeFile("order1.ini", text), QSettings::IniFormat);
    // The first look-up parses the section with which the path begins, the second parses another
    // one.
    QCOMPARE(settings.value(both).toString(), QStringLiteral("two"));
    QCOMPARE(settings.value(both).toString(), QStringLiteral("one"));

    QCOMPARE(findingsOf(IniRules::check(text, nullptr), 4, "read-order").size(), 1);
}

// The result of contains() depends on what was looked up before.
void tst_IniRules::nestedSectionsHideKeys()
{
    const QByteArray text = "[A]\na=1\nz=2\n[A/b]\n";
    const QString hidden = "A/z";
    const QSettings settings(writeFile("hidden.ini", text), QSettings::IniFormat);
    QVERIFY(!settings.contains(hidden));
    QVERIFY(settings.contains("A/a"));
    QVERIFY(settings.contains(hidden));

    const Findings findings = IniRules::check(text, nullptr);
    QCOMPARE(findingsOf(findings, 2, "read-order").size(), 0);
    QCOMPARE(findingsOf(findings, 3, "read-order").size(), 1);
}

// With random texts, too.
void tst_IniRules::findingsAgreeWithQSettings()
{
    QRandomGenerator random(815);
    for (int round = 0; round < rounds(1500); ++round) {
        const QByteArray text = randomText(random);
        const QStringList contradictions =
            LintTruth(text, IniRules::check(text, nullptr), directory()).contradictions();
        if (!contradictions.isEmpty()) {
            QFAIL(qPrintable(QString::fromLatin1(text.toPercentEncoding(" =[];")) +
                             QLatin1Char('\n') + contradictions.join(QLatin1Char('\n'))));
        }
    }
}

void tst_IniRules::lintTruthDetectsContradictions_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("rule"); // of a finding in line 2; empty for none
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("isContradiction");

    const auto row = [](const char* name, const QByteArray& text, const char* rule,
                        const char* message, bool isContradiction) {
        QTest::newRow(name) << text << QString::fromLatin1(rule) << QString::fromLatin1(message)
                            << isContradiction;
    };
    row("value that is read as it looks", "[s]\na=1\n", "escape", "", true);
    row("value that is read differently", "[s]\na=1;2\n", "semicolon", "", false);
    row("section that is read as it looks", "a=1\n[s]\n", "section-end", "", true);
    row("section that is read differently", "a=1\n[s\n", "section-end", "", false);
    row("line that is read", "a=1\nb=1\nc\n", "no-equals", "", true);
    row("line that is skipped", "a=1\nb\n", "no-equals", "", false);
    row("line that is read alone", "\na=1\nb=1\n", "multi-line", "everything up to line 3", true);
    row("line that is merged with the next", "\na=\"\nb=1\"\n", "multi-line",
        "everything up to line 3", false);
    row("UTF-16 in a Latin-1 file", "\n\xE4=\xFF\n", "byte-order-mark", "UTF-16", true);
    row("order that does not matter", "[s]\na=1\n[t]\n", "read-order", "", true);
    row("order that matters", "[s]\nz=1\n[s/t]\n", "read-order", "", false);
    row("no finding, value read differently", "a=1,2\n", "", "", true);
    row("no finding, name read differently", "%41=1\n", "", "", true);
    row("no finding, skipped line", "a\n", "", "", true);
    row("no finding, section read differently", "[s\na=1\n", "", "", true);
    row("no finding, hidden key", "[s]\nz=1\n[s/t]\n", "", "", true);
    row("no finding, read as it looks", "# a\n[s]\na=1\nb=\"2 \"\n", "", "", false);
}

void tst_IniRules::lintTruthDetectsContradictions()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, rule);
    QFETCH(QString, message);
    QFETCH(bool, isContradiction);

    Findings findings;
    if (!rule.isEmpty()) {
        findings.append({2, 1, 2, Severity::Error, rule, message});
    }
    QCOMPARE(!LintTruth(text, findings, directory()).contradictions().isEmpty(), isContradiction);
}

QTEST_GUILESS_MAIN(tst_IniRules)
#include "tst_IniRules.moc"
