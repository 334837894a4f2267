#include "LineSplitter.h"

#include <utility>

QList<LineSplitter::Line> LineSplitter::take(const QByteArray& bytes)
{
    QList<Line> lines;
    int begin = 0;
    for (int end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', begin)) {
        append(bytes.mid(begin, end - begin));
        lines.append(std::exchange(m_line, Line()));
        begin = end + 1;
    }
    append(bytes.mid(begin));
    return lines;
}

QList<LineSplitter::Line> LineSplitter::takeRest()
{
    return m_line.text.isEmpty() ? QList<Line>() : QList<Line>{std::exchange(m_line, Line())};
}

void LineSplitter::append(const QByteArray& bytes)
{
    const int room = maxLength - m_line.text.size();
    m_line.isCut = m_line.isCut || bytes.size() > room;
    m_line.text += bytes.left(room);
}
