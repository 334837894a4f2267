#ifndef TOOLS_EEPROMIMAGE_IMAGEFORMAT_H
#define TOOLS_EEPROMIMAGE_IMAGEFORMAT_H

#include <QtCore/QtGlobal>

// The layout of an image; addresses and sizes in bytes, numbers little-endian.
namespace ImageFormat {

constexpr qint64 headerAddress = 20;
constexpr qint64 reservedField = 20;
constexpr qint64 startAddressField = 24;
constexpr qint64 lengthField = 28;
constexpr qint64 checksumField = 32;
constexpr qint64 checksumSize = 2;
constexpr qint64 unusedField = checksumField + checksumSize; // two bytes that are not evaluated
constexpr qint64 headerEnd = 36;
constexpr qint64 headerSize = headerEnd - headerAddress;
constexpr qint64 maxBlockSize = 65535;

} // namespace ImageFormat

#endif
