#pragma once

#include <QByteArray>
#include <QImage>
#include <QPicture>
#include <QSize>

// Windows metafiles (WMF): WmfPlayer plays the records through libwmf's
// parser, and a QPainter canvas draws them in exact colours. Vimora runs it
// only in the metafile helper, because libwmf can loop or crash on hostile
// files; the sniffing functions are safe anywhere.
namespace WmfRenderer {

// Whether the bytes start a placeable (key 0x9AC6CDD7) or a standard WMF.
bool isWmf(const QByteArray &fileStart);

// Size at 96 DPI from a placeable header; invalid for a standard WMF, whose
// size is only known once the records have been scanned.
QSize naturalSizeOf(const QByteArray &fileStart);

// The picture as painter commands.
struct Recording {
    QPicture commands;
    QSize size;        // the picture's size in pixels: natural, or fitted into a bound
    QSize naturalSize; // at 96 DPI
    bool isNull() const { return size.isEmpty(); }
};

// Plays the file at its natural size, scaled down to fit within `bound` when
// larger. Gives up (a null recording) when playing takes longer than
// timeLimitMs; that only catches slow files, not a parser stuck inside one
// record.
Recording record(const QByteArray &file, const QSize &bound, int timeLimitMs);

// The recording painted on a transparent picture of its size.
QImage paint(const Recording &recording);

} // namespace WmfRenderer
