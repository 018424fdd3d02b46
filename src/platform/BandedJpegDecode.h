#pragma once

#include <QByteArray>
#include <QColorSpace>
#include <QImage>
#include <QImageIOHandler>

// A whole JPEG with a colour profile, decoded and converted to `target` at
// once: each band of rows is converted on another core while the next one
// decodes, so the conversion costs next to no time on top of the decode.
namespace BandedJpegDecode {

// The picture upright (`turn` from its EXIF orientation) in `target`'s
// colours: the same pixels as Qt's reader and ColourManagement::converted()
// give. Null when this path does not take the file (no profile, one the
// fast conversion cannot do, a kind of JPEG or a fault left to Qt's reader).
QImage decoded(const QByteArray &file, QImageIOHandler::Transformations turn, const QColorSpace &target,
               qint64 maxPixels);

} // namespace BandedJpegDecode
