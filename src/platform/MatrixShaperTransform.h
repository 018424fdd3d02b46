#pragma once

#include <QByteArray>
#include <QImage>

#include <array>
#include <memory>
#include <vector>

// A colour conversion between two RGB profiles made of three curves and a
// matrix (nearly every photo and display profile: sRGB, Display P3, Adobe
// RGB), precomputed for 8-bit pixels: the curves and the matrix folded into
// one table per stored channel, and a table from linear light back to
// levels. General converters work each pixel out in floating point.
class MatrixShaperTransform
{
public:
    // Null when either profile is not an RGB profile of curves and a matrix,
    // or its matrix is out of the fixed-point range. Made once for each pair
    // of profiles and kept.
    static std::shared_ptr<const MatrixShaperTransform> between(const QByteArray &sourceProfile,
                                                                const QByteArray &targetProfile);

    // The 8-bit RGB layouts apply() takes; alpha is kept as it is.
    static bool takes(QImage::Format format);

    // Converts in place; large pictures in strips of rows, one per core.
    void apply(QImage &image) const;

    // Rows [first, end) of a picture of a format takes() takes, on this thread.
    void applyToRows(uchar *bits, qsizetype stride, int width, QImage::Format format, int first, int end) const;

    // One pixel's red, green and blue.
    std::array<int, 3> convert(int red, int green, int blue) const;

    // Linear light in 1/LinearOne steps; the table back has one entry per step.
    static constexpr int LinearBits = 14;
    static constexpr int LinearOne = 1 << LinearBits;
    // Each stored level's share of all three outputs, in quarter steps of
    // linear light, is kept in one 64-bit word of three 21-bit fields, each
    // offset to stay positive: a pixel's three outputs are the sum of three
    // words, with no multiplication. The matrix is at most 4 in size.
    static constexpr int FieldBits = 21;
    static constexpr int QuarterSteps = 4;
    static constexpr qint64 ShareOffset = 4LL * LinearOne * QuarterSteps;

private:
    MatrixShaperTransform() = default;

    std::array<std::array<quint64, 256>, 3> m_shares{};
    std::array<std::vector<quint8>, 3> m_toLevels;
};
