#include "platform/MatrixShaperTransform.h"

#include <QThread>

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <thread>

namespace {

struct ProfileClose {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileClose>;

struct CurveFree {
    void operator()(cmsToneCurve *curve) const { cmsFreeToneCurve(curve); }
};

using Matrix = std::array<std::array<double, 3>, 3>;

// The curves and the colorants (the matrix's columns, in the profile
// connection space) of an RGB profile; false for any other.
struct Shaper {
    const cmsToneCurve *curves[3] = {};
    Matrix colorants{};
};

bool readShaper(cmsHPROFILE profile, Shaper &shaper)
{
    if (!profile || cmsGetColorSpace(profile) != cmsSigRgbData || !cmsIsMatrixShaper(profile))
        return false;
    const cmsTagSignature colorantTags[3] = {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag};
    const cmsTagSignature curveTags[3] = {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    for (int channel = 0; channel < 3; ++channel) {
        const auto *xyz = static_cast<const cmsCIEXYZ *>(cmsReadTag(profile, colorantTags[channel]));
        shaper.curves[channel] = static_cast<const cmsToneCurve *>(cmsReadTag(profile, curveTags[channel]));
        if (!xyz || !shaper.curves[channel])
            return false;
        shaper.colorants[0][channel] = xyz->X;
        shaper.colorants[1][channel] = xyz->Y;
        shaper.colorants[2][channel] = xyz->Z;
    }
    return true;
}

bool inverted(const Matrix &m, Matrix &inverse)
{
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1])
                     - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0])
                     + m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    if (!std::isfinite(det) || std::abs(det) < 1e-9)
        return false;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            // The cofactor of the transposed position.
            const int r0 = (column + 1) % 3, r1 = (column + 2) % 3, c0 = (row + 1) % 3, c1 = (row + 2) % 3;
            inverse[row][column] = (m[r0][c0] * m[r1][c1] - m[r0][c1] * m[r1][c0]) / det;
        }
    }
    return true;
}

// The byte offsets of red, green and blue, and the pixel's size.
struct Layout {
    int red, green, blue, size;
};

Layout layoutOf(QImage::Format format)
{
    switch (format) {
    // 0xAARRGGBB words: blue first in memory on the little-endian machines Vimora runs on.
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32: return {2, 1, 0, 4};
    case QImage::Format_RGBX8888:
    case QImage::Format_RGBA8888: return {0, 1, 2, 4};
    case QImage::Format_RGB888: return {0, 1, 2, 3};
    default: return {0, 0, 0, 0};
    }
}

// One output's step of linear light from the sum of the three shares.
inline int stepOf(quint64 sum, int out)
{
    constexpr quint64 Field = (quint64(1) << MatrixShaperTransform::FieldBits) - 1;
    constexpr qint64 Offsets = 3 * MatrixShaperTransform::ShareOffset;
    static_assert(MatrixShaperTransform::QuarterSteps == 4);
    const qint64 quarters = qint64((sum >> (MatrixShaperTransform::FieldBits * out)) & Field) - Offsets;
    return int(std::clamp<qint64>((quarters + 2) >> 2, 0, MatrixShaperTransform::LinearOne));
}

// The tables as plain locals of the loop: stores through the pixels' bytes
// could alias members, which the compiler would load again for every pixel.
struct Kernel {
    const quint64 *shares[3];
    const quint8 *levels[3];
};

template <int Size, int Red, int Green, int Blue>
void convertRows(const Kernel &kernel, uchar *bits, qsizetype stride, int width, int first, int end)
{
    const quint64 *const sharesR = kernel.shares[0], *const sharesG = kernel.shares[1], *const sharesB = kernel.shares[2];
    const quint8 *const toLevelR = kernel.levels[0], *const toLevelG = kernel.levels[1], *const toLevelB = kernel.levels[2];
    for (int y = first; y < end; ++y) {
        uchar *pixel = bits + y * stride;
        uchar *const rowEnd = pixel + qsizetype(width) * Size;
        for (; pixel != rowEnd; pixel += Size) {
            const quint64 sum = sharesR[pixel[Red]] + sharesG[pixel[Green]] + sharesB[pixel[Blue]];
            pixel[Red] = toLevelR[stepOf(sum, 0)];
            pixel[Green] = toLevelG[stepOf(sum, 1)];
            pixel[Blue] = toLevelB[stepOf(sum, 2)];
        }
    }
}

struct CacheEntry {
    QByteArray source, target;
    std::shared_ptr<const MatrixShaperTransform> transform;
};

} // namespace

std::shared_ptr<const MatrixShaperTransform> MatrixShaperTransform::between(const QByteArray &sourceProfile,
                                                                            const QByteArray &targetProfile)
{
    // Thumbnails ask for the same few pairs again and again, from several threads.
    static std::mutex mutex;
    static std::vector<CacheEntry> cache;
    constexpr size_t CacheSize = 8;
    {
        const std::lock_guard lock(mutex);
        for (const CacheEntry &entry : cache) {
            if (entry.source == sourceProfile && entry.target == targetProfile)
                return entry.transform;
        }
    }
    std::shared_ptr<MatrixShaperTransform> made;
    const Profile source(cmsOpenProfileFromMem(sourceProfile.constData(), cmsUInt32Number(sourceProfile.size())));
    const Profile target(cmsOpenProfileFromMem(targetProfile.constData(), cmsUInt32Number(targetProfile.size())));
    Shaper from, to;
    Matrix toInverse;
    if (readShaper(source.get(), from) && readShaper(target.get(), to) && inverted(to.colorants, toInverse)) {
        made.reset(new MatrixShaperTransform);
        Matrix matrix{};
        bool fits = true;
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                double sum = 0;
                for (int k = 0; k < 3; ++k)
                    sum += toInverse[row][k] * from.colorants[k][column];
                fits = fits && std::isfinite(sum) && std::abs(sum) <= 4.0;
                matrix[size_t(row)][size_t(column)] = sum;
            }
        }
        for (int channel = 0; fits && channel < 3; ++channel) {
            for (int level = 0; level < 256; ++level) {
                const double linear = std::clamp(
                    double(cmsEvalToneCurveFloat(from.curves[channel], float(level) / 255.0f)), 0.0, 1.0);
                quint64 shares = 0;
                for (int out = 0; out < 3; ++out) {
                    const qint64 share = std::llround(matrix[size_t(out)][size_t(channel)] * linear * LinearOne * QuarterSteps);
                    shares |= quint64(share + ShareOffset) << (FieldBits * out);
                }
                made->m_shares[size_t(channel)][size_t(level)] = shares;
            }
            const std::unique_ptr<cmsToneCurve, CurveFree> back(cmsReverseToneCurve(to.curves[channel]));
            fits = back != nullptr;
            std::vector<quint8> &levels = made->m_toLevels[size_t(channel)];
            levels.resize(LinearOne + 1);
            for (int step = 0; fits && step <= LinearOne; ++step) {
                const float level = cmsEvalToneCurveFloat(back.get(), float(step) / LinearOne);
                levels[size_t(step)] = quint8(std::lround(std::clamp(double(level), 0.0, 1.0) * 255.0));
            }
        }
        if (!fits)
            made.reset();
    }
    const std::lock_guard lock(mutex);
    if (cache.size() >= CacheSize)
        cache.erase(cache.begin());
    // Copies of their own: the caller's bytes may be a view of a buffer freed later.
    cache.push_back({QByteArray(sourceProfile.constData(), sourceProfile.size()),
                     QByteArray(targetProfile.constData(), targetProfile.size()), made});
    return made;
}

bool MatrixShaperTransform::takes(QImage::Format format)
{
    return layoutOf(format).size != 0;
}

std::array<int, 3> MatrixShaperTransform::convert(int red, int green, int blue) const
{
    const quint64 sum = m_shares[0][size_t(red & 0xFF)] + m_shares[1][size_t(green & 0xFF)]
                      + m_shares[2][size_t(blue & 0xFF)];
    return {m_toLevels[0][size_t(stepOf(sum, 0))], m_toLevels[1][size_t(stepOf(sum, 1))],
            m_toLevels[2][size_t(stepOf(sum, 2))]};
}

void MatrixShaperTransform::applyToRows(uchar *bits, qsizetype stride, int width, QImage::Format format, int first,
                                        int end) const
{
    const Kernel kernel{{m_shares[0].data(), m_shares[1].data(), m_shares[2].data()},
                        {m_toLevels[0].data(), m_toLevels[1].data(), m_toLevels[2].data()}};
    const Layout layout = layoutOf(format);
    if (layout.size == 4 && layout.red == 2)
        convertRows<4, 2, 1, 0>(kernel, bits, stride, width, first, end);
    else if (layout.size == 4)
        convertRows<4, 0, 1, 2>(kernel, bits, stride, width, first, end);
    else if (layout.size == 3)
        convertRows<3, 0, 1, 2>(kernel, bits, stride, width, first, end);
}

void MatrixShaperTransform::apply(QImage &image) const
{
    if (!takes(image.format()) || image.isNull())
        return;
    // Detached here, once: bits() from the strips' threads would race.
    uchar *const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    const int width = image.width(), rows = image.height();
    const QImage::Format format = image.format();
    constexpr qint64 PixelsPerStrip = 1 << 18; // a thread costs less than converting this many
    const qint64 pixels = qint64(width) * rows;
    const int strips = int(std::clamp<qint64>(pixels / PixelsPerStrip, 1, std::max(1, QThread::idealThreadCount())));
    std::vector<std::jthread> helpers;
    for (int strip = 1; strip < strips; ++strip)
        helpers.emplace_back([=, this] {
            applyToRows(bits, stride, width, format, int(qint64(rows) * strip / strips),
                        int(qint64(rows) * (strip + 1) / strips));
        });
    applyToRows(bits, stride, width, format, 0, rows / strips);
}
