#include "IniReading.h"

#include "IniLines.h"

#include <QtCore/QTextCodec>

namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

QString prefixOf(const QByteArray& sectionName)
{
    if (sectionName.compare("general", Qt::CaseInsensitive) == 0) {
        return QString();
    }
    // The only escape that has no meaning in names of keys.
    const QString name = sectionName.compare("%general", Qt::CaseInsensitive) == 0
                             ? QString::fromLatin1(sectionName.mid(1))
                             : IniReading::readName(sectionName);
    return name + QLatin1Char('/');
}

Extent extentOf(const IniLines& line, const LineNumbers& numbers)
{
    return {line.begin(), numbers.at(line.begin()), numbers.at(line.end() - 1), line.isQuoteOpen()};
}

} // namespace

QByteArray withoutByteOrderMark(const Extent& extent, const QByteArray& bytes)
{
    const bool hasMark = extent.begin == 0 && bytes.startsWith(byteOrderMark);
    return hasMark ? bytes.mid(int(qstrlen(byteOrderMark))).trimmed() : bytes;
}

IniReading::IniReading(const QByteArray& text, const QTextCodec* codec) : m_codec(codec)
{
    const bool hasByteOrderMark = text.startsWith(byteOrderMark);
    if (hasByteOrderMark && m_codec == nullptr) {
        m_codec = QTextCodec::codecForName("UTF-8");
    }
    const LineNumbers numbers(text);
    IniLines lines(text, hasByteOrderMark ? int(qstrlen(byteOrderMark)) : 0, text.size());
    // QSettings skips the byte order mark when it looks for sections, but not when it parses keys.
    int begin = 0;
    while (lines.next()) {
        if (text.at(lines.begin()) == '[') {
            readEntries(text, begin, lines.begin(), numbers);
            readSection(text, lines, numbers);
            begin = lines.end();
        }
    }
    readEntries(text, begin, text.size(), numbers);
}

void IniReading::readSection(const QByteArray& text, const IniLines& line,
                             const LineNumbers& numbers)
{
    const QByteArray all = text.mid(line.begin() + 1, line.end() - line.begin() - 1);
    const int bracket = all.indexOf(']');
    const bool isClosed = bracket >= 0;
    const QByteArray name = (isClosed ? all.left(bracket) : all).trimmed();
    m_sections.append({extentOf(line, numbers), name, prefixOf(name), isClosed,
                       isClosed ? all.mid(bracket + 1).trimmed() : QByteArray()});
}

void IniReading::readEntries(const QByteArray& text, int begin, int end, const LineNumbers& numbers)
{
    const QString prefix = m_sections.isEmpty() ? QString() : m_sections.constLast().prefix;
    IniLines lines(text, begin, end);
    while (lines.next()) {
        const Extent extent = extentOf(lines, numbers);
        if (lines.equals() < 0) {
            m_strays.append({extent, text.mid(lines.begin(), lines.end() - lines.begin())});
            continue;
        }
        int nameEnd = lines.equals();
        while (nameEnd > lines.begin() && IniLines::isBlank(text.at(nameEnd - 1))) {
            --nameEnd;
        }
        const QByteArray name = text.mid(lines.begin(), nameEnd - lines.begin());
        const QByteArray bytes = text.mid(lines.equals() + 1, lines.end() - lines.equals() - 1);
        m_entries.append({extent, prefix, name, lines.equals() + 1, readName(name), bytes,
                          IniValue(bytes, m_codec), lines.isCutBySemicolon()});
    }
}

QString IniReading::readName(const QByteArray& name)
{
    QString result;
    int position = 0;
    while (position < name.size()) {
        const char character = name.at(position);
        ++position;
        if (character == '\\') {
            result += QLatin1Char('/');
            continue;
        }
        // %41 or %U0041; QByteArray::toInt() parses the number, which allows signs and spaces.
        const bool isLong = character == '%' && name.mid(position, 1) == "U";
        const int digits = isLong ? 4 : 2;
        const int begin = isLong ? position + 1 : position;
        bool isNumber = false;
        if (character == '%' && begin + digits <= name.size()) {
            const int number = name.mid(begin, digits).toInt(&isNumber, 16);
            if (isNumber) {
                result += QChar(number);
                position = begin + digits;
            }
        }
        if (!isNumber) {
            result += QLatin1Char(character);
        }
    }
    return result;
}

QByteArray IniReading::writtenName(const QString& name)
{
    QByteArray result;
    for (const QChar& character : name) {
        const ushort code = character.unicode();
        const char letter = code < 0x80 ? char(code) : '\0';
        if (letter == '/') {
            result += '\\';
        } else if ((letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                   (letter >= '0' && letter <= '9') || letter == '_' || letter == '-' ||
                   letter == '.') {
            result += letter;
        } else {
            const bool isLong = code > 0xFF;
            result += isLong ? "%U" : "%";
            result += QByteArray::number(code, 16).toUpper().rightJustified(isLong ? 4 : 2, '0');
        }
    }
    return result;
}
