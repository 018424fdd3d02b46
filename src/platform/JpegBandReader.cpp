#include "platform/JpegBandReader.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <jpeglib.h>

namespace {

struct Errors {
    jpeg_error_mgr manager; // first: libjpeg hands out its address
    std::jmp_buf jump;
};

[[noreturn]] void stop(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<Errors *>(info->err)->jump, 1);
}

// A warning (corrupt data, a premature end) stops too: Qt's reader makes
// its own sense of such files, so they are left to it.
void stopOnWarning(j_common_ptr info, int level)
{
    if (level < 0)
        stop(info);
}

void silent(j_common_ptr) {}

} // namespace

struct JpegBandReader::Decoder {
    jpeg_decompress_struct info{};
    Errors errors{};
    bool readable = false;
    QSize size;
    QByteArray icc;
    QImage image;
};

JpegBandReader::JpegBandReader(const QByteArray &bytes, qint64 maxPixels)
    : m_decoder(std::make_unique<Decoder>())
{
    Decoder &d = *m_decoder;
    d.info.err = jpeg_std_error(&d.errors.manager);
    d.errors.manager.error_exit = stop;
    d.errors.manager.emit_message = stopOnWarning;
    d.errors.manager.output_message = silent;
    jpeg_create_decompress(&d.info);
    if (bytes.isEmpty())
        return;
    if (setjmp(d.errors.jump)) {
        d.readable = false;
        return;
    }
    jpeg_mem_src(&d.info, reinterpret_cast<const unsigned char *>(bytes.constData()), static_cast<unsigned long>(bytes.size()));
    jpeg_save_markers(&d.info, JPEG_APP0 + 2, 0xFFFF);
    if (jpeg_read_header(&d.info, TRUE) != JPEG_HEADER_OK)
        return;
    // Grey, CMYK and YCCK pictures come out of Qt's reader in other formats.
    if (d.info.num_components != 3 || (d.info.jpeg_color_space != JCS_YCbCr && d.info.jpeg_color_space != JCS_RGB))
        return;
    if (qint64(d.info.image_width) * d.info.image_height > maxPixels || d.info.image_width == 0
        || d.info.image_height == 0)
        return;
    bool hasIccMarker = false;
    for (jpeg_saved_marker_ptr marker = d.info.marker_list; marker; marker = marker->next)
        hasIccMarker = hasIccMarker || marker->marker == JPEG_APP0 + 2;
    JOCTET *icc = nullptr;
    unsigned int iccSize = 0;
    if (jpeg_read_icc_profile(&d.info, &icc, &iccSize)) {
        d.icc = QByteArray(reinterpret_cast<const char *>(icc), qsizetype(iccSize));
        std::free(icc);
    } else if (hasIccMarker) {
        return; // a profile in pieces libjpeg cannot join: Qt's reader decides
    }
    d.info.out_color_space = JCS_EXT_BGRX; // QImage's RGB32 in memory, on little-endian machines
    d.size = QSize(int(d.info.image_width), int(d.info.image_height));
    d.readable = true;
}

JpegBandReader::~JpegBandReader()
{
    jpeg_destroy_decompress(&m_decoder->info);
}

bool JpegBandReader::isReadable() const
{
    return m_decoder->readable;
}

QSize JpegBandReader::size() const
{
    return m_decoder->size;
}

QByteArray JpegBandReader::iccProfile() const
{
    return m_decoder->icc;
}

QImage JpegBandReader::read(const RowsDone &rowsDone)
{
    Decoder &d = *m_decoder;
    if (!d.readable)
        return {};
    d.readable = false; // once
    d.image = QImage(d.size, QImage::Format_RGB32);
    if (d.image.isNull())
        return {};
    // The rows stay allocated until the reader goes: another thread may still be reading them.
    if (setjmp(d.errors.jump))
        return {};
    jpeg_start_decompress(&d.info);
    if (d.info.output_width != d.info.image_width || d.info.output_height != d.info.image_height
        || d.info.output_components != 4)
        return {};
    // What Qt's reader gives as the picture's resolution.
    if (d.info.density_unit == 1) {
        d.image.setDotsPerMeterX(int(100. * d.info.X_density / 2.54));
        d.image.setDotsPerMeterY(int(100. * d.info.Y_density / 2.54));
    } else if (d.info.density_unit == 2) {
        d.image.setDotsPerMeterX(int(100. * d.info.X_density));
        d.image.setDotsPerMeterY(int(100. * d.info.Y_density));
    }
    uchar *const bits = d.image.bits();
    const qsizetype stride = d.image.bytesPerLine();
    const int rows = d.image.height();
    JSAMPROW band[BandRows];
    while (int(d.info.output_scanline) < rows) {
        const int first = int(d.info.output_scanline);
        const int end = std::min(rows, first + BandRows);
        for (int row = first; row < end; ++row)
            band[row - first] = bits + row * stride;
        while (int(d.info.output_scanline) < end) {
            const int done = int(d.info.output_scanline) - first;
            jpeg_read_scanlines(&d.info, band + done, JDIMENSION(end - first - done));
        }
        if (rowsDone)
            rowsDone(bits, stride, first, end);
    }
    jpeg_finish_decompress(&d.info);
    return std::exchange(d.image, QImage());
}
