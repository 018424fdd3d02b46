#pragma once

#include "platform/DecodedPicture.h"

#include <QByteArray>
#include <QSize>

// JPEG XL through libjxl: the first frame of the picture, turned as the file
// asks, with its colour profile.
namespace JpegXlDecoder {

// A bare codestream or the ISO container.
bool isJxl(const QByteArray &fileStart);

// Null when the file does not decode or claims more than maxPixels.
DecodedPicture decode(const QByteArray &file, qint64 maxPixels);

// The size as shown; invalid when the header is unreadable.
QSize sizeOf(const QByteArray &file);

} // namespace JpegXlDecoder
