#pragma once

#include <QByteArray>
#include <QImage>
#include <QRectF>
#include <QSize>

// Enhanced metafiles (EMF and EMF+): libemf2svg turns the records into SVG,
// which QtSvg draws. Vimora converts only in the metafile helper, because
// the converter can loop or crash on hostile files.
namespace EmfRenderer {

// Whether the bytes start an EMF header (record type 1, " EMF" at offset 40).
bool isEmf(const QByteArray &fileStart);

// The picture frame of the header (0.01 mm units) at 96 DPI, or the drawn
// bounds when the frame is unusable; invalid when the header is broken.
QSize naturalSizeOf(const QByteArray &fileStart);

// The file converted to SVG: the part that parses the file.
struct Conversion {
    QByteArray svg;
    QRectF viewBox;    // the picture frame in the SVG's coordinates
    QSize naturalSize; // at 96 DPI
    bool isNull() const { return svg.isEmpty(); }
};

Conversion convert(const QByteArray &file);

// The picture at its natural size, scaled down to fit within `bound` when
// larger; transparent where nothing is drawn; null when the SVG is invalid.
QImage paint(const Conversion &conversion, const QSize &bound);

} // namespace EmfRenderer
