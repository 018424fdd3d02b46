#include "platform/JpegXlDecoder.h"

#include <jxl/decode.h>
#include <jxl/decode_cxx.h>

#include <vector>

namespace JpegXlDecoder {
namespace {

const JxlPixelFormat Rgba8{4, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};

// Runs the decoder up to the first frame, or only to the basic information
// when `image` is null.
bool run(const QByteArray &file, qint64 maxPixels, QSize *size, QImage *image, QByteArray *iccProfile)
{
    const JxlDecoderPtr decoder = JxlDecoderMake(nullptr);
    if (!decoder)
        return false;
    int events = JXL_DEC_BASIC_INFO;
    if (image)
        events |= JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE;
    if (JxlDecoderSubscribeEvents(decoder.get(), events) != JXL_DEC_SUCCESS
        || JxlDecoderSetInput(decoder.get(), reinterpret_cast<const uint8_t *>(file.constData()), size_t(file.size()))
               != JXL_DEC_SUCCESS)
        return false;
    JxlDecoderCloseInput(decoder.get());
    for (;;) {
        switch (JxlDecoderProcessInput(decoder.get())) {
        case JXL_DEC_BASIC_INFO: {
            JxlBasicInfo info;
            if (JxlDecoderGetBasicInfo(decoder.get(), &info) != JXL_DEC_SUCCESS || info.xsize == 0 || info.ysize == 0
                || qint64(info.xsize) * info.ysize > maxPixels)
                return false;
            // The decoder turns the picture; orientations 5 to 8 swap the sides.
            *size = info.orientation >= JXL_ORIENT_TRANSPOSE ? QSize(int(info.ysize), int(info.xsize))
                                                             : QSize(int(info.xsize), int(info.ysize));
            if (!image)
                return true;
            break;
        }
        case JXL_DEC_COLOR_ENCODING: {
            size_t length = 0;
            if (JxlDecoderGetICCProfileSize(decoder.get(), &Rgba8, JXL_COLOR_PROFILE_TARGET_DATA, &length)
                    == JXL_DEC_SUCCESS
                && length > 0) {
                QByteArray profile(qsizetype(length), '\0');
                if (JxlDecoderGetColorAsICCProfile(decoder.get(), &Rgba8, JXL_COLOR_PROFILE_TARGET_DATA,
                                                   reinterpret_cast<uint8_t *>(profile.data()), length)
                    == JXL_DEC_SUCCESS)
                    *iccProfile = profile;
            }
            break;
        }
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER: {
            size_t needed = 0;
            *image = QImage(*size, QImage::Format_RGBA8888);
            // Four bytes a pixel: Qt's rows need no padding, so the buffers agree.
            if (image->isNull() || JxlDecoderImageOutBufferSize(decoder.get(), &Rgba8, &needed) != JXL_DEC_SUCCESS
                || needed != size_t(image->sizeInBytes())
                || JxlDecoderSetImageOutBuffer(decoder.get(), &Rgba8, image->bits(), needed) != JXL_DEC_SUCCESS)
                return false;
            break;
        }
        case JXL_DEC_FULL_IMAGE:
            return true; // the first frame of an animation is enough
        case JXL_DEC_SUCCESS:
            return image ? !image->isNull() : size->isValid();
        default:
            return false; // an error, or input ending early
        }
    }
}

} // namespace

bool isJxl(const QByteArray &fileStart)
{
    return JxlSignatureCheck(reinterpret_cast<const uint8_t *>(fileStart.constData()), size_t(fileStart.size()))
           >= JXL_SIG_CODESTREAM;
}

DecodedPicture decode(const QByteArray &file, qint64 maxPixels)
{
    DecodedPicture picture;
    if (!run(file, maxPixels, &picture.naturalSize, &picture.image, &picture.iccProfile))
        return {};
    return picture;
}

QSize sizeOf(const QByteArray &file)
{
    QSize size;
    return run(file, qint64(1) << 40, &size, nullptr, nullptr) ? size : QSize();
}

} // namespace JpegXlDecoder
