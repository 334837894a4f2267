#include "FindingCollector.h"

#include "IniReading.h"
#include "NameRules.h"

#include <algorithm>
#include <tuple>

FindingCollector::FindingCollector(const QByteArray& text)
    : m_text(text), m_numbers(text), m_isUtf8(NameRules::isUtf8BeyondAscii(text))
{
}

void FindingCollector::add(const Extent& extent, Severity severity, const char* rule,
                           const QString& message)
{
    addAt(extent.begin, extent, severity, rule, message);
}

void FindingCollector::addAt(int position, const Extent& extent, Severity severity,
                             const char* rule, const QString& message)
{
    m_findings.append({m_numbers.at(position), columnAt(position), extent.first, severity,
                       QString::fromLatin1(rule), message});
}

Findings FindingCollector::sorted() const
{
    Findings result = m_findings;
    std::stable_sort(result.begin(), result.end(), [](const Finding& left, const Finding& right) {
        return std::tie(left.line, left.column) < std::tie(right.line, right.column);
    });
    return result;
}

int FindingCollector::columnAt(int position) const
{
    constexpr uchar kindOfByte = 0xC0;
    constexpr uchar laterByte = 0x80; // not the first byte of a UTF-8 character

    int column = 1;
    for (int i = position; i > 0 && !IniLines::isLineEnd(m_text.at(i - 1)); --i) {
        const bool isLater = (uchar(m_text.at(i - 1)) & kindOfByte) == laterByte;
        column += m_isUtf8 && isLater ? 0 : 1;
    }
    return column;
}
