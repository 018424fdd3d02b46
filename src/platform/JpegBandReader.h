#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <functional>
#include <memory>

// A JPEG decoder that hands out its rows band by band while it decodes, so
// that another core can work on the finished rows meanwhile (Qt's reader
// gives the picture only when it is whole). It takes only the common case,
// colour JPEGs whose decoding gives the same pixels as Qt's reader; for
// anything else, and for a file with any fault, isReadable() or read() says
// no and the caller reads the file with Qt.
class JpegBandReader
{
public:
    // Reads the header of `bytes`, which must outlive the reader. The
    // picture read() gives stays allocated while the reader lives.
    JpegBandReader(const QByteArray &bytes, qint64 maxPixels);
    ~JpegBandReader();
    JpegBandReader(const JpegBandReader &) = delete;
    JpegBandReader &operator=(const JpegBandReader &) = delete;

    bool isReadable() const;
    QSize size() const; // invalid when the header was not readable
    QByteArray iccProfile() const;

    // The stored picture (no orientation applied) as RGB32, with
    // `rowsDone(bits, stride, first, end)` called from this thread after
    // each band; null on any fault or warning, when the rows handed out are
    // not to be used any more.
    using RowsDone = std::function<void(uchar *bits, qsizetype stride, int first, int end)>;
    QImage read(const RowsDone &rowsDone);

    static constexpr int BandRows = 64; // a band of a 6000-pixel row stays in the core's cache

private:
    struct Decoder;
    std::unique_ptr<Decoder> m_decoder;
};
