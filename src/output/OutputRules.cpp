#include "output/OutputRules.h"

#include "display/ZoomRules.h"

#include <QDir>

#include <cmath>

namespace OutputRules {

namespace {
QString withoutTrailingSlash(QString folder)
{
    while (folder.size() > 1 && folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    return folder;
}
} // namespace

QString StripNul(const QString &text)
{
    const qsizetype nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

bool sameFolder(const QString &a, const QString &b)
{
    return withoutTrailingSlash(a).compare(withoutTrailingSlash(b), Qt::CaseInsensitive) == 0;
}

QString copyProposedName(const QString &saveFolder, const QString &currentFolder, const QString &fileName,
                         const QString &copyOf)
{
    return sameFolder(saveFolder, currentFolder) ? copyOf + QLatin1Char(' ') + fileName : fileName;
}

QString numberingBase(const QString &fileName) { return fileName.left(qMax<qsizetype>(0, fileName.size() - 4)); }

QString numberedName(const QString &base, Numbered kind, int number)
{
    return kind == Numbered::Area ? base + QStringLiteral("_[a") + QString::number(number) + QStringLiteral("].bmp")
                                  : base + QStringLiteral("_(") + QString::number(number) + QStringLiteral(").bmp");
}

int nextFileNumber(const QStringList &folderNames, const QString &base, Numbered kind)
{
    const bool area = kind == Numbered::Area;
    const QString marker = area ? QStringLiteral("_[") : QStringLiteral("_(");
    const QChar closer = area ? QLatin1Char(']') : QLatin1Char(')');
    // The number starts after "_[a" or "_(": the marker and one more for an area.
    const qsizetype skip = area ? 3 : 2;
    int largest = 0;
    for (const QString &name : folderNames) {
        if (!name.startsWith(base + marker, Qt::CaseInsensitive) || !name.endsWith(u".bmp", Qt::CaseInsensitive))
            continue;
        // The first marker from the second character on, as the names are
        // read; a base holding the marker itself reads its own digits.
        const qsizetype at = name.indexOf(marker, 1);
        if (at < 0)
            continue;
        const QString rest = name.mid(at + skip);
        const qsizetype end = rest.indexOf(closer);
        bool ok = false;
        const int number = (end < 0 ? rest : rest.left(end)).toInt(&ok);
        if (ok && number > largest)
            largest = number;
    }
    return largest + 1;
}

QString nextNumberedName(const QString &folder, const QString &fileName, Numbered kind)
{
    const QString base = numberingBase(fileName);
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.bmp")}, QDir::Files | QDir::Hidden);
    return numberedName(base, kind, nextFileNumber(names, base, kind));
}

QRect areaPixels(QPointF anchor, QPointF end, const QRectF &targetTwips, ViewGeometry::Twips twips)
{
    double left = qMin(anchor.x(), end.x());
    double top = qMin(anchor.y(), end.y());
    double width = std::abs(anchor.x() - end.x());
    double height = std::abs(anchor.y() - end.y());
    // The full difference is kept before the corner moves inside the target.
    left = qMax(0.0, left);
    top = qMax(0.0, top);
    width = qMin(width, targetTwips.width() - left - 30);
    height = qMin(height, targetTwips.height() - top - 30);
    using ZoomRules::roundHalfEven;
    return QRect(roundHalfEven((targetTwips.left() + left + 15) / twips.perPixelX),
                 roundHalfEven((targetTwips.top() + top + 15) / twips.perPixelY),
                 qMax(0, roundHalfEven(width / twips.perPixelX)), qMax(0, roundHalfEven(height / twips.perPixelY)));
}

} // namespace OutputRules
