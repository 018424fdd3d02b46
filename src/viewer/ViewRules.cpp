#include "viewer/ViewRules.h"

#include <cmath>

namespace ViewRules {

QString zoomLabel(int percent)
{
    return (percent < 100 ? QStringLiteral("  ") : QStringLiteral(" ")) + QString::number(percent)
        + QStringLiteral("% ");
}

QString resolutionText(int pixelWidth, int pixelHeight)
{
    return QString::number(pixelWidth) + QStringLiteral(" x ") + QString::number(pixelHeight);
}

QString withPixelsPerCm(const QString &resolution, int pixelWidth, double displayedWidthCm)
{
    if (displayedWidthCm <= 0)
        return resolution;
    const long perCm = std::lround(pixelWidth / displayedWidthCm);
    return resolution + QStringLiteral(" (") + QString::number(perCm) + QStringLiteral(" pixels/cm)");
}

QString positionText(int index, int count)
{
    return QLatin1Char(' ') + QString::number(index + 1) + QLatin1Char('/') + QString::number(count)
        + QLatin1Char(' ');
}

QString fileTitle(const QString &fileName)
{
    return QLatin1Char(' ') + fileName + QStringLiteral("  - Vimora ");
}

} // namespace ViewRules
