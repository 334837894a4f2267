#include "UnifiedDiff.h"

#include <QtCore/QList>

namespace {

constexpr int contextLines = 3;

// Splits text into lines with their line feeds; the last line may have none.
QList<QByteArray> linesOf(const QByteArray& text)
{
    QList<QByteArray> lines = text.split('\n');
    for (int i = 0; i + 1 < lines.size(); ++i) {
        lines[i] += '\n';
    }
    if (lines.constLast().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

// The range of lines in both files that a hunk covers.
struct Range
{
    int begin;
    int end;
};

class Comparison
{
public:
    Comparison(const QByteArray& before, const QByteArray& after)
        : m_before(linesOf(before)), m_after(linesOf(after))
    {
    }

    // Returns the first hunk from a line on; an empty range if there is none.
    Range nextHunk(int from) const
    {
        const int first = nextChange(from);
        int last = first;
        for (int next = first; next < m_before.size() && next - last <= 2 * contextLines + 1;
             next = nextChange(next + 1)) {
            last = next;
        }
        return {qMax(from, first - contextLines), qMin(m_before.size(), last + 1 + contextLines)};
    }
    bool hasChange(int from) const { return nextChange(from) < m_before.size(); }

    QByteArray hunk(const Range& range) const
    {
        QByteArray result = "@@ -" + numbers(range.begin, range.end, m_before.size()) + " +" +
                            numbers(range.begin, range.end, m_after.size()) + " @@\n";
        int line = range.begin;
        while (line < range.end) {
            const int firstChanged = line;
            while (line < range.end && isChanged(line)) {
                ++line;
            }
            result += part('-', m_before, firstChanged, line);
            result += part('+', m_after, firstChanged, line);
            const int firstSame = line;
            while (line < range.end && !isChanged(line)) {
                ++line;
            }
            result += part(' ', m_before, firstSame, line);
        }
        return result;
    }

private:
    bool isChanged(int line) const
    {
        return line >= m_after.size() || m_before.at(line) != m_after.at(line);
    }
    int nextChange(int from) const
    {
        int line = from;
        while (line < m_before.size() && !isChanged(line)) {
            ++line;
        }
        return line;
    }

    // Returns "BEGIN,COUNT"; if COUNT is 0, BEGIN is the line before.
    static QByteArray numbers(int begin, int end, int size)
    {
        const int count = qMin(end, size) - qMin(begin, size);
        const int first = count > 0 ? begin + 1 : qMin(begin, size);
        return QByteArray::number(first) + ',' + QByteArray::number(count);
    }

    static QByteArray part(char mark, const QList<QByteArray>& lines, int begin, int end)
    {
        QByteArray result;
        for (int i = begin; i < qMin(end, lines.size()); ++i) {
            result += mark + lines.at(i);
            if (!lines.at(i).endsWith('\n')) {
                result += "\n\\ No newline at end of file\n";
            }
        }
        return result;
    }

    const QList<QByteArray> m_before;
    const QList<QByteArray> m_after;
};

// Returns a file name as patch parses it: in quotes if it contains characters that would end it.
QByteArray headerName(const QByteArray& fileName)
{
    QByteArray result;
    bool mustQuote = false;
    for (const char character : fileName) {
        const bool isControl = uchar(character) < ' ' || character == '\x7F';
        if (isControl) {
            result += '\\' + QByteArray::number(uchar(character), 8).rightJustified(3, '0');
        } else if (character == '"' || character == '\\') {
            result += '\\';
            result += character;
        } else {
            result += character;
        }
        mustQuote =
            mustQuote || isControl || character == '"' || character == '\\' || character == ' ';
    }
    return mustQuote ? '"' + result + '"' : result;
}

} // namespace

QByteArray UnifiedDiff::ofCleanUp(const QByteArray& fileName, const QByteArray& before,
                                  const QByteArray& after)
{
    const Comparison comparison(before, after);
    QByteArray result;
    for (int line = 0; comparison.hasChange(line);) {
        const Range range = comparison.nextHunk(line);
        result += comparison.hunk(range);
        line = range.end;
    }
    const QByteArray name = headerName(fileName);
    return result.isEmpty() ? result : "--- " + name + "\n+++ " + name + '\n' + result;
}
