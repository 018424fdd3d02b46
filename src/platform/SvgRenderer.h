#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// SVG and SVGZ drawings through QtSvg. Drawn only in the metafile helper,
// like the metafiles: a hostile drawing can take QtSvg a very long time.
namespace SvgRenderer {

// An SVG under any name by its root element near the start; under an SVG
// name, also XML text or gzip (SVGZ) whose root lies further on.
bool isSvg(const QByteArray &fileStart, const QString &path);

struct Drawn {
    QImage picture;
    QSize naturalSize; // the drawing's own width and height (or its viewBox), in pixels
};

enum class Fit { ShrinkOnly, Fill };

// The drawing at its natural size, no larger than `bound`; with Fit::Fill,
// as large as fits `bound` (a zoomed-in drawing, drawn sharp). Keeps its
// proportions. Null when it is not SVG or has no size.
Drawn paint(const QByteArray &file, const QSize &bound, Fit fit = Fit::ShrinkOnly);

} // namespace SvgRenderer
