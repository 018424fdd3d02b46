#pragma once

#include "platform/DecodedPicture.h"

#include <QByteArray>
#include <QSize>

// HEIC, HEIF and AVIF through libheif: the primary picture, turned and
// mirrored as the file asks, with its ICC profile. libheif hands AV1 to
// libdav1d or libaom, H.265 to libde265.
namespace HeifDecoder {

// Whether the bytes start an ISO media file of a HEIF or AVIF brand.
bool isHeif(const QByteArray &fileStart);

// Null when the file does not decode or its picture has more than maxPixels.
DecodedPicture decode(const QByteArray &file, qint64 maxPixels);

// The primary picture's size as shown (after turning); invalid when unreadable.
QSize sizeOf(const QByteArray &file);

} // namespace HeifDecoder
