#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <optional>

// What the metafile helper sends back: a fixed header, then the drawn
// pixels. The helper has parsed a hostile file, so Vimora trusts none of it:
// every field is checked before a pixel is used, and nothing in it is parsed
// further.
//
//   "VMF1"  width  height  naturalWidth  naturalHeight   (u32, little-endian)
//   width * height premultiplied ARGB pixels, row by row  (u32 each)
namespace MetafileAnswer {

constexpr qsizetype HeaderBytes = 20;
constexpr int LargestNaturalSide = 1 << 22; // 16-bit coordinates at one unit an inch, at 96 DPI

struct Header {
    QSize size;        // of the drawn picture
    QSize naturalSize; // at 96 DPI
    qint64 pixelBytes() const { return qint64(size.width()) * size.height() * 4; }
};

QByteArray encode(const QImage &picture, const QSize &naturalSize);

// The header, when it is sound and the picture fits within `bound`; larger
// than its natural size only when `mayEnlarge` (a zoomed-in drawing).
std::optional<Header> readHeader(const QByteArray &bytes, const QSize &bound, bool mayEnlarge = false);

// The picture from exactly header.pixelBytes() bytes; colour values above
// their pixel's alpha are lowered to it, so that only valid pixels are drawn.
QImage readPixels(const Header &header, const QByteArray &pixels);

struct Drawn {
    QImage picture;
    QSize naturalSize;
};

// A whole answer at once, as the fuzzer reads it; nothing when unsound.
std::optional<Drawn> read(const QByteArray &answer, const QSize &bound);

} // namespace MetafileAnswer
