#pragma once

#include "platform/ColourManagement.h"

#include <QColorSpace>
#include <QFuture>
#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

// Loads the viewer's pictures: BMP (RLE ones by RleBitmapDecoder), JPEG with
// its EXIF orientation, GIF (first frame), ICO and CUR (largest image), WMF
// and EMF; PNG, WebP and TIFF (first frame or page) through Qt's readers, SVG
// and SVGZ, HEIC, HEIF and AVIF (HeifDecoder), JPEG XL (JpegXlDecoder) and
// camera RAW (RawDecoder). The decoder is chosen by the content; the
// extension only breaks ties. A file that does not decode gives a null
// picture and no message. Pictures come converted to Options::colourSpace
// (those without a profile taken as sRGB).
namespace PictureLoader {

// Larger pictures are refused before any pixel is allocated: 256 megapixels
// are a gigabyte as ARGB.
constexpr qint64 MaxPixels = 256LL * 1024 * 1024;
// Metafiles are drawn no larger than this on their long side.
constexpr int MaxMetafileSide = 8192;

struct Options {
    // When valid and smaller than the picture, the picture is decoded or
    // drawn to fit inside it, keeping its proportions; JPEG then decodes at
    // a reduced scale. Never enlarged.
    QSize fitInto;
    // When valid (and fitInto is not), only this part of the picture, in
    // its pixels at 100 %, for an upright JPEG, which then reads no further
    // than the part's last row. Other pictures come whole.
    QRect part;
    // SVG drawings are drawn to fill fitInto, even past their natural size,
    // when zoomed in: they stay sharp at any zoom.
    bool enlargeDrawings = false;
    // Metafiles and SVG drawings that take longer to draw count as broken.
    int metafileTimeLimitMs = 5000;
    // The colours pictures are converted to: the display's, unless the
    // picture leaves the screen in sRGB (the clipboard, the thumbnail cache).
    QColorSpace colourSpace = ColourManagement::displayColourSpace();
};

struct Picture {
    // Null when the file does not decode. Smaller than naturalSize when
    // fitted into Options::fitInto, or for a metafile past MaxMetafileSide.
    QImage image;
    QSize naturalSize; // at 100 %, after EXIF orientation; metafiles at 96 DPI
    QRect part;        // what image holds, at 100 %; invalid: the whole picture
    bool isNull() const { return image.isNull(); }
};

Picture load(const QString &path, const Options &options = {});

// load() on a worker thread, for callers that must not wait.
QFuture<Picture> loadAsync(const QString &path, const Options &options = {});

// Whether the header claims more than MaxPixels. A GIF's screen counts:
// Qt allocates it for every frame, however small the frames are.
bool claimsTooManyPixels(const QString &path);

// The natural size, reading as little as the format allows (the header for
// most); invalid when the file does not decode.
QSize readNaturalSize(const QString &path);

} // namespace PictureLoader
