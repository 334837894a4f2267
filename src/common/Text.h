#ifndef MISCTOOLS_TEXT_H
#define MISCTOOLS_TEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstring>

namespace Text {

// Bytes are looked at eight at a time, where that is enough.
constexpr int blockSize = 8;

inline quint64 loadBlock(const char* bytes)
{
    quint64 block;
    std::memcpy(&block, bytes, blockSize);
    return block;
}

// Whether one of the bytes of block is character: only a byte that became zero borrows from the
// bit that it does not have itself.
inline bool isInBlock(quint64 block, char character)
{
    constexpr quint64 lowBits = Q_UINT64_C(0x0101010101010101);
    const quint64 bytes = block ^ (lowBits * static_cast<unsigned char>(character));
    return ((bytes - lowBits) & ~bytes & (lowBits << 7)) != 0;
}

/*
 * Goes through bytes from begin on, and moves those that stay towards the front. A block without
 * the characters of isOfInterest(block) stays as it is; of others, take(byte, target) puts each
 * byte, or something else, behind what is there, and gives the new end.
 */
template <typename IsOfInterest, typename Take>
void rewriteBytes(QByteArray& bytes, int begin, IsOfInterest isOfInterest, Take take)
{
    char* target = bytes.data() + begin;
    const char* source = target;
    const char* const end = bytes.constData() + bytes.size();
    while (end - source >= blockSize) {
        const quint64 block = loadBlock(source);
        if (isOfInterest(block)) {
            for (const char* const blockEnd = source + blockSize; source != blockEnd; ++source) {
                target = take(*source, target);
            }
        } else {
            std::memcpy(target, &block, blockSize);
            source += blockSize;
            target += blockSize;
        }
    }
    for (; source != end; ++source) {
        target = take(*source, target);
    }
    bytes.truncate(int(target - bytes.constData()));
}

// Removes the carriage returns among the bytes from begin on, as a file in text mode does, which
// takes longer over texts that have none.
inline void dropCarriageReturns(QByteArray& bytes, int begin)
{
    if (!std::memchr(bytes.constData() + begin, '\r', size_t(bytes.size() - begin))) {
        return;
    }
    rewriteBytes(
        bytes, begin, [](quint64 block) { return isInBlock(block, '\r'); },
        [](char byte, char* target) {
            *target = byte;
            return target + (byte != '\r' ? 1 : 0);
        });
}

// Decodes UTF-8 up to the first zero byte: what the library reads are texts, and what follows a
// zero byte is not. Null bytes give a null text.
inline QString fromBytes(const QByteArray& bytes)
{
    if (bytes.isNull()) {
        return QString();
    }
    return QString::fromUtf8(bytes.constData(),
                             static_cast<int>(qstrnlen(bytes.constData(), uint(bytes.size()))));
}

} // namespace Text

#endif
