#include "platform/ColourManagement.h"

#include "platform/MatrixShaperTransform.h"

#include <lcms2.h>

#include <memory>
#include <mutex>
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

// An RGB or grey profile LittleCMS reads: the ones convertedByLcms() takes.
bool cmsProfileIsUsable(const QByteArray &profile)
{
    const Profile opened(cmsOpenProfileFromMem(profile.constData(), cmsUInt32Number(profile.size())));
    return opened && (cmsGetColorSpace(opened.get()) == cmsSigRgbData || cmsGetColorSpace(opened.get()) == cmsSigGrayData);
}

struct Display {
    std::mutex mutex;
    QColorSpace space = QColorSpace(QColorSpace::SRgb);
};

Display &display()
{
    static Display shared;
    return shared;
}

} // namespace

QImage converted(QImage image, const QByteArray &iccProfile, const QColorSpace &target)
{
    if (image.isNull() || !target.isValid())
        return image;
    QColorSpace source = image.colorSpace();
    QByteArray sourceProfile = source.isValid() ? source.iccProfile() : iccProfile;
    if (!source.isValid() && !iccProfile.isEmpty())
        source = QColorSpace::fromIccProfile(iccProfile);
    const bool lcmsOnly = !source.isValid() && !iccProfile.isEmpty() && cmsProfileIsUsable(iccProfile);
    if (!source.isValid() && !lcmsOnly) {
        // Without a usable profile the numbers are sRGB's, as on the web.
        source = QColorSpace(QColorSpace::SRgb);
        sourceProfile = source.iccProfile();
    }
    if (!lcmsOnly && source == target)
        return image;
    if (MatrixShaperTransform::takes(image.format())
        || image.format() == QImage::Format_ARGB32_Premultiplied) {
        if (const auto fast = MatrixShaperTransform::between(sourceProfile, target.iccProfile())) {
            if (image.format() == QImage::Format_ARGB32_Premultiplied)
                image.convertTo(QImage::Format_ARGB32); // curves apply to colours, not to colours times alpha
            fast->apply(image);
            image.setColorSpace(target);
            return image;
        }
    }
    if (!lcmsOnly) {
        image.setColorSpace(source);
        // In place: a 24-megapixel copy costs as much as a third of the conversion.
        image.convertToColorSpace(target);
        return image;
    }
    QImage byLcms = convertedByLcms(image, iccProfile, target);
    return byLcms.isNull() ? image : byLcms;
}

QImage shownInSrgb(QImage shown)
{
    shown.setColorSpace(displayColourSpace());
    return converted(std::move(shown));
}

QColorSpace screenColourSpace(const QByteArray &screenProfile)
{
    if (screenProfile.isEmpty())
        return QColorSpace(QColorSpace::SRgb); // the usual case: no warning from Qt's parser
    const QColorSpace screen = QColorSpace::fromIccProfile(screenProfile);
    return screen.isValid() ? screen : QColorSpace(QColorSpace::SRgb);
}

void setDisplayColourSpace(const QColorSpace &space)
{
    const std::lock_guard lock(display().mutex);
    display().space = space.isValid() ? space : QColorSpace(QColorSpace::SRgb);
}

QColorSpace displayColourSpace()
{
    const std::lock_guard lock(display().mutex);
    return display().space;
}

} // namespace ColourManagement
