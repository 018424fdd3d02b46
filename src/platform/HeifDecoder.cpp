#include "platform/HeifDecoder.h"

#include <libheif/heif.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <mutex>

namespace HeifDecoder {
namespace {

struct ContextFree {
    void operator()(heif_context *context) const { heif_context_free(context); }
};
struct HandleFree {
    void operator()(heif_image_handle *handle) const { heif_image_handle_release(handle); }
};
struct ImageFree {
    void operator()(heif_image *image) const { heif_image_release(image); }
};
struct OptionsFree {
    void operator()(heif_decoding_options *options) const { heif_decoding_options_free(options); }
};

// libheif keeps its plugins registered for the life of the process.
void initialiseOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { heif_init(nullptr); });
}

struct Opened {
    std::unique_ptr<heif_context, ContextFree> context;
    std::unique_ptr<heif_image_handle, HandleFree> handle;
};

// The file must outlive what is opened: libheif reads it in place.
Opened open(const QByteArray &file, qint64 maxPixels)
{
    initialiseOnce();
    Opened opened;
    opened.context.reset(heif_context_alloc());
    if (!opened.context)
        return {};
    // libheif's own bound is a square; ours is checked on the real size below.
    heif_context_set_maximum_image_size_limit(opened.context.get(), int(std::sqrt(double(maxPixels))) + 1);
    if (heif_context_read_from_memory_without_copy(opened.context.get(), file.constData(), size_t(file.size()),
                                                   nullptr).code != heif_error_Ok)
        return {};
    heif_image_handle *handle = nullptr;
    if (heif_context_get_primary_image_handle(opened.context.get(), &handle).code != heif_error_Ok || !handle)
        return {};
    opened.handle.reset(handle);
    return opened;
}

QByteArray iccProfileOf(heif_image_handle *handle)
{
    const heif_color_profile_type type = heif_image_handle_get_color_profile_type(handle);
    if (type != heif_color_profile_type_prof && type != heif_color_profile_type_rICC)
        return {};
    QByteArray profile(qsizetype(heif_image_handle_get_raw_color_profile_size(handle)), '\0');
    if (profile.isEmpty()
        || heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

} // namespace

bool isHeif(const QByteArray &fileStart)
{
    if (fileStart.size() < 12 || fileStart.mid(4, 4) != "ftyp")
        return false;
    // The major brand, or one of the compatible ones after the version.
    static const char *const brands[] = {"heic", "heix", "heim", "heis", "hevc", "hevx", "hevm", "hevs",
                                         "mif1", "msf1", "avif", "avis"};
    const quint32 boxSize = (quint32(quint8(fileStart[0])) << 24) | (quint32(quint8(fileStart[1])) << 16)
                            | (quint32(quint8(fileStart[2])) << 8) | quint32(quint8(fileStart[3]));
    const qsizetype end = qMin<qsizetype>(fileStart.size(), boxSize);
    for (qsizetype at = 8; at + 4 <= end; at += (at == 8 ? 8 : 4))
        for (const char *brand : brands)
            if (std::memcmp(fileStart.constData() + at, brand, 4) == 0)
                return true;
    return false;
}

DecodedPicture decode(const QByteArray &file, qint64 maxPixels)
{
    const Opened opened = open(file, maxPixels);
    if (!opened.handle)
        return {};
    heif_image_handle *handle = opened.handle.get();
    const int width = heif_image_handle_get_width(handle);
    const int height = heif_image_handle_get_height(handle);
    if (width <= 0 || height <= 0 || qint64(width) * height > maxPixels)
        return {};
    const bool alpha = heif_image_handle_has_alpha_channel(handle);
    std::unique_ptr<heif_decoding_options, OptionsFree> options(heif_decoding_options_alloc());
    heif_image *decoded = nullptr;
    const heif_error error = heif_decode_image(
        handle, &decoded, heif_colorspace_RGB, alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB,
        options.get());
    const std::unique_ptr<heif_image, ImageFree> image(decoded); // released on a failure too
    if (error.code != heif_error_Ok || !image)
        return {};
    int stride = 0;
    const uint8_t *pixels = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    const int shownWidth = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int shownHeight = heif_image_get_height(image.get(), heif_channel_interleaved);
    if (!pixels || shownWidth <= 0 || shownHeight <= 0 || qint64(shownWidth) * shownHeight > maxPixels)
        return {};
    const QImage view(pixels, shownWidth, shownHeight, stride,
                      alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    return {view.copy(), QSize(shownWidth, shownHeight), iccProfileOf(handle)};
}

QSize sizeOf(const QByteArray &file)
{
    const Opened opened = open(file, qint64(1) << 40); // sizes only: nothing is decoded
    if (!opened.handle)
        return {};
    // The handle's size is already turned by the file's irot.
    return {heif_image_handle_get_width(opened.handle.get()), heif_image_handle_get_height(opened.handle.get())};
}

} // namespace HeifDecoder
