#include "IniLook.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTextCodec>

namespace {

// Decodes bytes as UTF-8 if they are valid UTF-8, otherwise as Latin-1.
QString decoded(const QString& bytes)
{
    const QByteArray text = bytes.toLatin1();
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString utf8 =
        QTextCodec::codecForName("UTF-8")->toUnicode(text.constData(), text.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 ? utf8 : bytes;
}

const QByteArray byteOrderMark = "\xEF\xBB\xBF"; // of UTF-8

// Converts UTF-16 to UTF-8 and removes a byte order mark, which editors do not show.
QByteArray plain(const QByteArray& text)
{
    if (text.startsWith(byteOrderMark)) {
        return text.mid(byteOrderMark.size());
    }
    const QTextCodec* const marked = QTextCodec::codecForUtfText(text, nullptr);
    return marked != nullptr ? marked->toUnicode(text).toUtf8() : text;
}

// Without leading and trailing spaces and tabs.
QString trimmed(const QString& text)
{
    static const QRegularExpression outer(QStringLiteral("^[ \\t]+|[ \\t]+$"));
    return QString(text).remove(outer);
}

QString withoutQuotes(const QString& value)
{
    const QLatin1Char quote('"');
    const bool isQuoted = value.size() > 1 && value.startsWith(quote) && value.endsWith(quote) &&
                          value.count(quote) == 2;
    return isQuoted ? value.mid(1, value.size() - 2) : value;
}

// The lines with their line endings.
QList<QByteArray> linesOf(const QByteArray& text)
{
    QList<QByteArray> lines = {QByteArray()};
    for (int i = 0; i < text.size(); ++i) {
        const char byte = text.at(i);
        const bool isFirstOfTwo = byte == '\r' && text.mid(i + 1, 1) == "\n";
        lines.last() += byte;
        if (byte == '\n' || (byte == '\r' && !isFirstOfTwo)) {
            lines.append(QByteArray());
        }
    }
    return lines;
}

QByteArray withoutEnd(const QByteArray& line)
{
    const int length = line.endsWith("\r\n") ? line.size() - 2 : line.size() - 1;
    return line.endsWith('\n') || line.endsWith('\r') ? line.left(length) : line;
}

} // namespace

QString IniLook::Line::path() const
{
    const bool isTop =
        section.isEmpty() || section.compare(QStringLiteral("general"), Qt::CaseInsensitive) == 0;
    return isTop ? name : section + QLatin1Char('/') + name;
}

IniLook::IniLook(const QByteArray& text) : m_bytes(linesOf(text))
{
    for (const QByteArray& line : linesOf(plain(text))) {
        addLine(trimmed(QString::fromLatin1(withoutEnd(line))));
    }
}

void IniLook::addLine(const QString& bytes)
{
    static const QRegularExpression section(QStringLiteral("^\\[(.*?)\\][ \\t]*(?:[;#].*)?$"));

    const QRegularExpressionMatch match = section.match(bytes);
    const int equals = bytes.indexOf(QLatin1Char('='));
    if (bytes.isEmpty() || bytes.startsWith(QLatin1Char(';')) ||
        bytes.startsWith(QLatin1Char('#'))) {
        m_lines.append({Nothing, m_section, QString(), QString()});
    } else if (match.hasMatch()) {
        m_section = decoded(trimmed(match.captured(1)));
        m_lines.append({Section, m_section, QString(), QString()});
    } else if (equals >= 0 && !bytes.startsWith(QLatin1Char('['))) {
        m_lines.append({Entry, m_section, decoded(trimmed(bytes.left(equals))),
                        decoded(withoutQuotes(trimmed(bytes.mid(equals + 1))))});
    } else {
        m_lines.append({Other, m_section, decoded(bytes), QString()});
    }
}

QByteArray IniLook::withLineAfter(int number, const QByteArray& added) const
{
    QList<QByteArray> lines = m_bytes;
    const bool isLast = number == lines.size();
    lines.insert(number, isLast ? '\n' + added : added + '\n');
    return lines.join();
}

QByteArray IniLook::withoutLine(int number) const
{
    QList<QByteArray> lines = m_bytes;
    QByteArray& line = lines[number - 1];
    const QByteArray end = line.mid(withoutEnd(line).size());
    line = (line.startsWith(byteOrderMark) ? byteOrderMark : QByteArray()) + end;
    return lines.join();
}
