#include "platform/ColourManagement.h"

#include <lcms2.h>

#include <memory>
#include <vector>

namespace ColourManagement {
namespace {

struct ProfileClose {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
struct TransformDelete {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<void, ProfileClose>;

QImage convertedByLcms(const QImage &image, const QByteArray &sourceProfile, const QColorSpace &target)
{
    if (sourceProfile.isEmpty())
        return {};
    const Profile source(cmsOpenProfileFromMem(sourceProfile.constData(), cmsUInt32Number(sourceProfile.size())));
    const QByteArray targetBytes = target.iccProfile();
    const Profile destination(targetBytes.isEmpty()
                                  ? cmsCreate_sRGBProfile()
                                  : cmsOpenProfileFromMem(targetBytes.constData(), cmsUInt32Number(targetBytes.size())));
    if (!source || !destination)
        return {};
    // ARGB32 is B, G, R, A in memory on the little-endian machines Vimora runs on.
    QImage pixels = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (pixels.isNull())
        return {};
    const bool grey = cmsGetColorSpace(source.get()) == cmsSigGrayData;
    if (!grey && cmsGetColorSpace(source.get()) != cmsSigRgbData)
        return {};
    // A grey profile describes one channel: the grey picture's, alpha kept aside.
    const QImage greys = grey ? image.convertToFormat(QImage::Format_Grayscale8) : QImage();
    const std::unique_ptr<void, TransformDelete> transform(
        cmsCreateTransform(source.get(), grey ? TYPE_GRAY_8 : TYPE_BGRA_8, destination.get(), TYPE_BGRA_8,
                           INTENT_PERCEPTUAL, grey ? 0 : cmsFLAGS_COPY_ALPHA));
    if (!transform)
        return {};
    for (int y = 0; y < pixels.height(); ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(pixels.scanLine(y));
        if (!grey) {
            cmsDoTransform(transform.get(), line, line, cmsUInt32Number(pixels.width()));
            continue;
        }
        std::vector<QRgb> alphas(line, line + pixels.width());
        cmsDoTransform(transform.get(), greys.constScanLine(y), line, cmsUInt32Number(pixels.width()));
        for (int x = 0; x < pixels.width(); ++x)
            line[x] = (line[x] & 0x00FFFFFF) | (alphas[size_t(x)] & 0xFF000000);
    }
    pixels.setColorSpace(target);
    return pixels;
}

} // namespace

QImage converted(QImage image, const QByteArray &iccProfile, const QColorSpace &target)
{
    if (image.isNull() || !target.isValid())
        return image;
    QColorSpace source = image.colorSpace();
    if (!source.isValid() && !iccProfile.isEmpty()) {
        source = QColorSpace::fromIccProfile(iccProfile);
        if (source.isValid())
            image.setColorSpace(source);
    }
    if (source.isValid()) {
        // In place: a 24-megapixel copy costs as much as a third of the conversion.
        if (source != target)
            image.convertToColorSpace(target);
        return image;
    }
    QImage byLcms = convertedByLcms(image, iccProfile, target);
    return byLcms.isNull() ? image : byLcms;
}

QColorSpace displayColourSpace(const QByteArray &screenProfile)
{
    const QColorSpace screen = QColorSpace::fromIccProfile(screenProfile);
    return screen.isValid() ? screen : QColorSpace(QColorSpace::SRgb);
}

} // namespace ColourManagement
