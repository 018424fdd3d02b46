#pragma once

#include <QByteArray>
#include <QImage>

// ICO and CUR files: the largest picture of the directory. Read here because
// Qt reads no cursors and trusts a directory's sizes and offsets.
namespace IconDecoder {

constexpr int LargestPngSide = 4096; // PNG icons claiming more are forged
constexpr int LargestDibSide = 256;  // the format's own limit

// Null when no entry holds a picture.
QImage decode(const QByteArray &file);

} // namespace IconDecoder
