#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

// Windows bitmaps whose pixels are compressed with RLE4 or RLE8 (".bmp" and
// ".rle" files). Qt leaves the pixels that delta and early end-of-line codes
// skip undefined; this decoder makes them transparent.
namespace RleBitmapDecoder {

// Whether the bytes (at least the first 54 of a file) start a BMP file whose
// pixels are RLE4 or RLE8 compressed.
bool isRleBitmap(const QByteArray &fileStart);

// Width and height from the header; invalid when the header is broken.
QSize sizeOf(const QByteArray &file);

// The picture as ARGB32: skipped pixels have alpha 0, and what a truncated
// file lacks stays transparent. Null when the header is broken or the
// picture has more than maxPixels pixels.
QImage decode(const QByteArray &file, qint64 maxPixels);

} // namespace RleBitmapDecoder
