#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

// The thumbnail a camera stores in a JPEG's EXIF block (APP1, IFD1), found
// by reading the bytes ourselves: Qt's reader does not expose it.
namespace ExifThumbnail {

struct Found {
    QByteArray jpeg;     // the thumbnail's own JPEG stream; empty when none
    int orientation = 1; // EXIF orientation of the picture (IFD0), 1 to 8
};

// Looks only at the segments before the picture data; any malformed or
// out-of-range structure gives nothing rather than a guess.
Found find(const QByteArray &fileStart);

// Whether a thumbnail of thumbSize can stand for a picture of pictureSize
// (both as stored, before orientation) in a thumbnail no larger than
// side x side: at least that thumbnail's size, with the picture's
// proportions within a pixel or 1 %.
bool standsFor(QSize thumbSize, QSize pictureSize, int side);

// Turns an image as stored into the way an EXIF orientation says it is
// seen, as Qt's reader does for the picture itself.
QImage oriented(const QImage &stored, int orientation);

} // namespace ExifThumbnail
