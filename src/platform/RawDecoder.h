#pragma once

#include "platform/DecodedPicture.h"

#include <QByteArray>
#include <QSize>
#include <QString>

// Camera RAW files through libraw: the camera's own preview when it is large
// enough for what is asked, else the sensor data developed (demosaiced, the
// camera's white balance, sRGB).
namespace RawDecoder {

// A file under one of the RAW names whose start a RAW file can have (TIFF,
// Fujifilm, Canon CR3, Panasonic, Olympus).
bool isRaw(const QByteArray &fileStart, const QString &path);

// Whether a preview of `preview` pixels (as shown) serves a picture of
// `natural` pixels drawn to fit `bound` (invalid: at natural size).
bool previewSuffices(QSize preview, QSize natural, QSize bound);

// Null when neither the preview nor the sensor data decode, or the picture
// has more than maxPixels. The image may be smaller than naturalSize.
DecodedPicture decode(const QByteArray &file, qint64 maxPixels, QSize bound);

QSize sizeOf(const QByteArray &file);

} // namespace RawDecoder
