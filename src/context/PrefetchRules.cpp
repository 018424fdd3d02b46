#include "context/PrefetchRules.h"

#include "core/FileTypeCatalogue.h"

namespace PrefetchRules {

bool worthPrefetching(const QString &fileName)
{
    if (fileName.isEmpty())
        return false;
    const QString code = FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(fileName));
    return FileTypeCatalogue::mediaClassOf(code) == FileTypeCatalogue::MediaClass::Picture && code != u"WMF"
        && code != u"EMF";
}

QList<int> positionsToHold(int current, int upperBound, bool slideshowWraps)
{
    if (current < 0 || current > upperBound)
        return {};
    QList<int> positions{current};
    const int next = current < upperBound ? current + 1 : (slideshowWraps ? 0 : -1);
    if (next >= 0 && !positions.contains(next))
        positions.append(next);
    if (current > 0 && !positions.contains(current - 1))
        positions.append(current - 1);
    return positions;
}

QStringList namesToHold(const QStringList &fileNames, int current, bool slideshowWraps, Mode mode)
{
    QStringList names;
    for (const int position : positionsToHold(current, int(fileNames.size()) - 1, slideshowWraps)) {
        const QString &name = fileNames.at(position);
        const bool jpeg = FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(name)) == u"JPG";
        if (worthPrefetching(name) && (mode == Fitted || jpeg))
            names.append(name);
    }
    return names;
}

QSize jpegFitBound(QSize natural, QSize fit)
{
    if (natural.isEmpty() || !fit.isValid() || (natural.width() <= fit.width() && natural.height() <= fit.height()))
        return fit;
    const QSize fitted = natural.scaled(fit, Qt::KeepAspectRatio);
    for (int eighths = 1; eighths < 8; ++eighths) {
        if (natural.width() * eighths % 8 != 0 || natural.height() * eighths % 8 != 0)
            continue; // the decoder would round, then rescale after all
        const QSize scaled(natural.width() * eighths / 8, natural.height() * eighths / 8);
        if (scaled.width() >= fitted.width() && scaled.height() >= fitted.height())
            return scaled;
    }
    return fit;
}

} // namespace PrefetchRules
