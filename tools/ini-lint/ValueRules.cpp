#include "ValueRules.h"

#include "IniLines.h"
#include "IniReading.h"
#include "NameRules.h"

#include <QtCore/QTextCodec>
#include <QtCore/QVariant>

#include <limits>

using NameRules::quoted;

namespace {

QString shown(const IniValue& value)
{
    return quoted(value.texts().join(QStringLiteral("', '")));
}

// Returns the position of a value's first byte that is not a space.
int beginOf(const IniEntry& entry)
{
    int begin = entry.valueBegin;
    for (const char byte : entry.bytes) {
        if (!IniLines::isBlank(byte)) {
            break;
        }
        ++begin;
    }
    return begin;
}

// Whether the semicolon that ends a value looks like the beginning of a comment.
bool looksLikeComment(const IniEntry& entry)
{
    return !entry.bytes.isEmpty() && IniLines::isBlank(entry.bytes.back());
}

void checkShape(const IniEntry& entry, FindingCollector& findings)
{
    if (entry.value.isList()) {
        findings.addAt(entry.valueBegin + entry.value.firstComma(), entry.extent, Severity::Error,
                       "comma-list",
                       QStringLiteral("the comma makes the value a list of %1 strings, which is "
                                      "empty when read as one string; quote the value to keep the "
                                      "comma")
                           .arg(entry.value.texts().size()));
    }
    if (entry.isCutBySemicolon) {
        findings.addAt(
            entry.valueEnd(), entry.extent,
            looksLikeComment(entry) ? Severity::Warning : Severity::Error, "semicolon",
            QStringLiteral("the value ends at the semicolon: %1; quote the value to keep it whole")
                .arg(shown(entry.value)));
    }
}

void checkQuotes(const IniEntry& entry, FindingCollector& findings)
{
    const QByteArray bytes = entry.bytes.trimmed();
    const int begin = beginOf(entry);
    if (entry.value.hasTextBesideQuotes()) {
        findings.addAt(begin, entry.extent, Severity::Error, "quotes",
                       QStringLiteral("quotes within a value are removed; it is read as %1")
                           .arg(shown(entry.value)));
    }
    if (bytes.size() > 1 && bytes.startsWith('\'') && bytes.endsWith('\'')) {
        findings.addAt(begin, entry.extent, Severity::Warning, "quotes",
                       QStringLiteral("single quotes do not quote; they are part of the value: %1")
                           .arg(shown(entry.value)));
    }
    const int hash = qMax(bytes.indexOf(" #"), bytes.indexOf("\t#"));
    if (!entry.value.hasQuotes() && hash >= 0) {
        findings.addAt(begin + hash + 1, entry.extent, Severity::Warning, "hash-comment",
                       QStringLiteral("'#' does not start a comment; the value is %1")
                           .arg(shown(entry.value)));
    }
}

void checkEscapes(const IniEntry& entry, FindingCollector& findings)
{
    for (const IniValue::Escape& escape : entry.value.strangeEscapes()) {
        findings.addAt(
            entry.valueBegin + escape.position, entry.extent, Severity::Error, "escape",
            QStringLiteral("the escape %1 makes the value %2; write '\\\\' for a backslash")
                .arg(quoted(escape.bytes), shown(entry.value)));
    }
    for (const IniValue::Escape& escape : entry.value.literalEscapes()) {
        findings.addAt(entry.valueBegin + escape.position, entry.extent, Severity::Warning,
                       "literal-escape",
                       QStringLiteral("%1 is read without its first backslash; the value is %2")
                           .arg(quoted(escape.bytes), shown(entry.value)));
    }
    if (entry.value.lastBackslash() >= 0) {
        findings.addAt(entry.valueBegin + entry.value.lastBackslash(), entry.extent,
                       Severity::Error, "escape",
                       QStringLiteral("the trailing backslash is dropped; the value is %1")
                           .arg(shown(entry.value)));
    }
}

void checkEncoding(const IniEntry& entry, const QTextCodec* codec, FindingCollector& findings)
{
    constexpr int mibOfUtf8 = 106;

    const bool isUtf8 = NameRules::isUtf8BeyondAscii(entry.bytes);
    const bool mustBeUtf8 = codec != nullptr && codec->mibEnum() == mibOfUtf8;
    if (NameRules::isAscii(entry.bytes) || isUtf8 == mustBeUtf8) {
        return;
    }
    if (isUtf8) {
        const QString name =
            codec != nullptr ? QString::fromLatin1(codec->name()) : QStringLiteral("Latin-1");
        findings.addAt(beginOf(entry), entry.extent, Severity::Error, "encoding",
                       QStringLiteral("the value is UTF-8, but is decoded as %1 and read as %2")
                           .arg(name, shown(entry.value)));
    } else {
        findings.addAt(
            beginOf(entry), entry.extent, Severity::Error, "encoding",
            QStringLiteral("the value is not UTF-8; it is read as %1").arg(shown(entry.value)));
    }
}

// Whether a text that ends in a parenthesis has the form @Mark(1 2) with this many numbers.
bool isGeometry(const QString& text, const QString& mark, int numbers)
{
    if (!text.startsWith(mark)) {
        return false;
    }
    const QString inside = text.mid(mark.size()).chopped(1);
    return 1 + inside.count(QLatin1Char(' ')) + inside.count(QLatin1Char(')')) == numbers;
}

// Returns what QSettings reads for a text with a type marker; empty if it reads the text unchanged.
QString markedType(const QString& text)
{
    if (text.startsWith(QStringLiteral("@@"))) {
        return QStringLiteral("the text without its first '@'");
    }
    if (!text.startsWith(QLatin1Char('@')) || !text.endsWith(QLatin1Char(')'))) {
        return QString();
    }
    if (text == QStringLiteral("@Invalid()")) {
        return QStringLiteral("no value at all");
    }
    if (text.startsWith(QStringLiteral("@ByteArray("))) {
        return QStringLiteral("the bytes in the parentheses");
    }
    if (text.startsWith(QStringLiteral("@String("))) {
        return QStringLiteral("the text in the parentheses");
    }
    if (text.startsWith(QStringLiteral("@Variant(")) ||
        text.startsWith(QStringLiteral("@DateTime("))) {
        return QStringLiteral("a stored object");
    }
    const bool isGeometric = isGeometry(text, QStringLiteral("@Rect("), 4) ||
                             isGeometry(text, QStringLiteral("@Size("), 2) ||
                             isGeometry(text, QStringLiteral("@Point("), 2);
    return isGeometric ? QStringLiteral("a point, a size or a rectangle") : QString();
}

void checkMarks(const IniEntry& entry, FindingCollector& findings)
{
    const QStringList texts = entry.value.texts();
    for (const QString& text : texts) {
        const QString type = markedType(text);
        if (!type.isEmpty()) {
            findings.addAt(beginOf(entry), entry.extent, Severity::Error, "at-sign",
                           QStringLiteral("%1 is read as %2").arg(quoted(text), type));
        }
    }
}

void checkMeaning(const IniEntry& entry, FindingCollector& findings)
{
    if (entry.value.isList()) {
        return;
    }
    const QString text = entry.value.texts().constFirst();
    for (const char* word : {"off", "no", "disabled"}) {
        if (text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0) {
            findings.addAt(beginOf(entry), entry.extent, Severity::Warning, "boolean-word",
                           QStringLiteral("as a boolean, %1 is true: only '0', 'false' and an "
                                          "empty value are false")
                               .arg(quoted(text)));
        }
    }
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    const bool isLarge = isNumber && (number > std::numeric_limits<int>::max() ||
                                      number < std::numeric_limits<int>::min());
    if (isLarge) {
        findings.addAt(beginOf(entry), entry.extent, Severity::Warning, "large-number",
                       QStringLiteral("as an integer, %1 is read as %2: it exceeds 32 bits")
                           .arg(quoted(text))
                           .arg(QVariant(text).toInt()));
    }
}

} // namespace

void ValueRules::check(const IniReading& reading, FindingCollector& findings)
{
    for (const IniEntry& entry : reading.entries()) {
        if (entry.isCommentedOut()) {
            NameRules::checkCommentExtent(entry.extent, entry.name + '=' + entry.bytes, findings);
            continue;
        }
        NameRules::checkExtent(entry.extent, findings);
        checkShape(entry, findings);
        checkQuotes(entry, findings);
        checkEscapes(entry, findings);
        checkEncoding(entry, reading.codec(), findings);
        checkMarks(entry, findings);
        checkMeaning(entry, findings);
    }
}
