#include "platform/RawDecoder.h"

#include <QBuffer>
#include <QImageReader>
#include <QTransform>

#include <libraw/libraw.h>

#include <memory>

namespace RawDecoder {
namespace {

struct RawFree {
    void operator()(libraw_data_t *raw) const { libraw_close(raw); }
};
struct MemoryFree {
    void operator()(libraw_processed_image_t *image) const { libraw_dcraw_clear_mem(image); }
};
using Raw = std::unique_ptr<libraw_data_t, RawFree>;
using Processed = std::unique_ptr<libraw_processed_image_t, MemoryFree>;

// The file must outlive what is opened: libraw reads it in place.
Raw open(const QByteArray &file)
{
    Raw raw(libraw_init(0));
    if (!raw || libraw_open_buffer(raw.get(), const_cast<char *>(file.constData()), size_t(file.size()))
                    != LIBRAW_SUCCESS)
        return {};
    return raw;
}

// libraw's flip: 3 half a turn, 5 a quarter anticlockwise, 6 clockwise.
QImage turned(const QImage &image, int flip)
{
    switch (flip) {
    case 3: return image.transformed(QTransform().rotate(180));
    case 5: return image.transformed(QTransform().rotate(-90));
    case 6: return image.transformed(QTransform().rotate(90));
    default: return image;
    }
}

QSize shownSize(const libraw_data_t &raw)
{
    const QSize size(raw.sizes.width, raw.sizes.height);
    return (raw.sizes.flip & 4) ? size.transposed() : size;
}

QImage imageOf(const libraw_processed_image_t &processed)
{
    if (processed.type == LIBRAW_IMAGE_JPEG) {
        QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(processed.data),
                                                   qsizetype(processed.data_size));
        QBuffer buffer(&bytes);
        QImageReader reader(&buffer, "jpeg");
        reader.setAutoTransform(false); // libraw's flip says how it is turned
        return reader.read();
    }
    if (processed.type != LIBRAW_IMAGE_BITMAP || processed.colors != 3 || processed.bits != 8
        || qint64(processed.width) * processed.height * 3 > qint64(processed.data_size))
        return {};
    return QImage(processed.data, processed.width, processed.height, processed.width * 3, QImage::Format_RGB888)
        .copy();
}

QImage preview(libraw_data_t *raw, qint64 maxPixels)
{
    if (libraw_unpack_thumb(raw) != LIBRAW_SUCCESS
        || qint64(raw->thumbnail.twidth) * raw->thumbnail.theight > maxPixels)
        return {};
    int error = 0;
    const Processed processed(libraw_dcraw_make_mem_thumb(raw, &error));
    return processed ? turned(imageOf(*processed), raw->sizes.flip) : QImage();
}

QImage developed(libraw_data_t *raw, QSize natural, QSize bound)
{
    // Half size skips the demosaicing proper and is four times faster;
    // enough when the picture is shown at half its size or less.
    raw->params.half_size = bound.isValid() && bound.width() * 2 <= natural.width()
                            && bound.height() * 2 <= natural.height();
    raw->params.use_camera_wb = 1;
    raw->params.output_bps = 8;
    if (libraw_unpack(raw) != LIBRAW_SUCCESS || libraw_dcraw_process(raw) != LIBRAW_SUCCESS)
        return {};
    int error = 0;
    const Processed processed(libraw_dcraw_make_mem_image(raw, &error));
    return processed ? imageOf(*processed) : QImage(); // libraw turned it already
}

} // namespace

bool isRaw(const QByteArray &fileStart, const QString &path)
{
    static const char *const names[] = {".cr2", ".cr3", ".nef", ".arw", ".dng", ".orf",
                                        ".rw2", ".raf", ".pef", ".srw"};
    bool named = false;
    for (const char *name : names)
        named = named || path.endsWith(QLatin1String(name), Qt::CaseInsensitive);
    if (!named)
        return false;
    return fileStart.startsWith("II*") || fileStart.startsWith("MM\0*") || fileStart.startsWith("IIRO")
           || fileStart.startsWith("IIRS") || fileStart.startsWith("IIU") || fileStart.startsWith("FUJIFILM")
           || (fileStart.mid(4, 8) == "ftypcrx ");
}

bool previewSuffices(QSize preview, QSize natural, QSize bound)
{
    if (!preview.isValid() || !natural.isValid())
        return false;
    const QSize wanted = bound.isValid() && (natural.width() > bound.width() || natural.height() > bound.height())
                             ? natural.scaled(bound, Qt::KeepAspectRatio)
                             : natural;
    return preview.width() >= wanted.width() && preview.height() >= wanted.height();
}

DecodedPicture decode(const QByteArray &file, qint64 maxPixels, QSize bound)
{
    const Raw raw = open(file);
    if (!raw)
        return {};
    const QSize natural = shownSize(*raw);
    if (natural.isEmpty() || qint64(natural.width()) * natural.height() > maxPixels
        || qint64(raw->sizes.raw_width) * raw->sizes.raw_height > maxPixels)
        return {};
    const QImage camera = preview(raw.get(), maxPixels);
    if (previewSuffices(camera.size(), natural, bound))
        return {camera, natural, {}};
    const QImage image = developed(raw.get(), natural, bound);
    if (!image.isNull())
        return {image, natural, {}};
    // A preview too small beats none (sensor data cut off, say); it is then
    // the whole picture there is.
    if (camera.isNull())
        return {};
    return {camera, camera.size(), {}};
}

QSize sizeOf(const QByteArray &file)
{
    const Raw raw = open(file);
    return raw ? shownSize(*raw) : QSize();
}

} // namespace RawDecoder
