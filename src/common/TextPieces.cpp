#include "TextPieces.h"

#include "common/Text.h"

#include <cstring>

namespace {

bool isPlain(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x80 && (byte < '0' || byte > '9');
}

// Where the last plain character stands in bytes, not before begin; 0 when there is none.
int lastPlain(const QByteArray& bytes, int begin)
{
    int position = bytes.size() - 1;
    while (position >= begin && !isPlain(bytes.at(position))) {
        --position;
    }
    return position >= begin ? position : 0;
}

} // namespace

TextPieces::TextPieces(QIODevice& file, int readSize) : m_file(file), m_readSize(readSize)
{
    // The two arrays are swapped from piece to piece and keep their memory.
    m_piece.reserve(readSize);
    m_rest.reserve(readSize);
}

bool TextPieces::next()
{
    int examined = 1; // a piece has at least one character
    int end = 0;
    while (end == 0 && readOn()) {
        end = lastPlain(m_rest, examined);
        examined = qMax(examined, m_rest.size());
    }
    if (end == 0) {
        end = m_rest.size();
    }
    m_piece.swap(m_rest);
    m_rest.resize(0);
    m_rest.append(m_piece.constData() + end, m_piece.size() - end);
    m_piece.truncate(end);
    return !m_piece.isEmpty();
}

// Appends what can be read next; false when that is nothing.
bool TextPieces::readOn()
{
    if (m_isAtEnd) {
        return false;
    }
    const int begin = m_rest.size();
    m_rest.resize(begin + m_readSize);
    const qint64 count = m_file.read(m_rest.data() + begin, m_readSize);
    m_rest.truncate(begin + int(qMax<qint64>(count, 0)));
    m_isAtEnd = count <= 0;

    const void* const zero =
        std::memchr(m_rest.constData() + begin, '\0', size_t(m_rest.size() - begin));
    if (zero) {
        m_rest.truncate(int(static_cast<const char*>(zero) - m_rest.constData()));
        m_isAtEnd = true;
        m_isCut = true;
    }
    Text::dropCarriageReturns(m_rest, begin);
    return !m_isAtEnd || m_rest.size() > begin;
}

void TextPieces::appendTo(QString& text) const
{
    if (isAscii()) {
        // Not of the array alone: that would look for a zero byte, one by one.
        text += QLatin1String(m_piece.constData(), m_piece.size());
    } else {
        text += QString::fromUtf8(m_piece);
    }
}

QByteArray TextPieces::toUtf8() const
{
    return isAscii() ? m_piece : QString::fromUtf8(m_piece).toUtf8();
}

// Decoding ASCII as Latin-1 is the faster way, even with this test before it.
bool TextPieces::isAscii() const
{
    const char* byte = m_piece.constData();
    const char* const end = byte + m_piece.size();
    quint64 seen = 0;
    for (; end - byte >= Text::blockSize; byte += Text::blockSize) {
        seen |= Text::loadBlock(byte);
    }
    for (; byte != end; ++byte) {
        seen |= static_cast<unsigned char>(*byte);
    }
    return (seen & Q_UINT64_C(0x8080808080808080)) == 0;
}
