#include "index/IndexRules.h"

#include "core/FileTypeCatalogue.h"

namespace IndexRules {

QRectF cellRect(int cell, CellPart part)
{
    const double left = ColumnLefts[cell % Columns];
    const double top = RowTops[cell / Columns];
    switch (part) {
    case CellPart::Frame:
        return {left, top, CellWidth, CellHeight};
    case CellPart::Image:
        return {45, 100, 1305, 975};
    case CellPart::Player:
        return {40, 120, 1300, 720};
    case CellPart::PositionBar:
        return {left + 40, top + 840, 1295, 90};
    case CellPart::PlayButton:
        return {left + 45, top + 930, 420, 150};
    case CellPart::PauseButton:
        return {left + 486, top + 930, 420, 150};
    case CellPart::StopButton:
        return {left + 922, top + 930, 420, 150};
    case CellPart::NameLabel:
        return {40, 1080, 1300, 180};
    case CellPart::FavouriteMark:
        return {1260, 1100, 150, 150};
    }
    return {};
}

Page pageOf(const QStringList &fileNames, int page)
{
    Page result;
    result.firstListIndex = fileNames.value(0).isEmpty() ? 1 : 0;
    const int upperBound = int(fileNames.size()) - 1;
    result.begin = page * CellCount + result.firstListIndex;
    result.end = qMin(upperBound + 1, result.begin + CellCount);
    if (result.end < result.begin)
        result.end = result.begin;
    result.hasPrevious = page >= 1;
    result.hasNext = upperBound >= (page + 1) * CellCount + result.firstListIndex;
    return result;
}

int cellOfListIndex(const Page &page, int listIndex)
{
    return listIndex - page.begin;
}

QString progressText(int page, int fileNumber, const QString &folderSummary)
{
    const int pageStart = page == 0 ? 1 : page * CellCount + 1;
    return QString::number(pageStart) + QLatin1Char('-') + QString::number(fileNumber) + QStringLiteral(" / ")
         + folderSummary;
}

NameLabel nameLabel(const QString &name)
{
    if (name.size() < 18)
        return {true, name};
    return {false, QLatin1Char(' ') + name + QLatin1Char(' ')};
}

QSizeF scaledThumbnail(QSizeF picture)
{
    const double w = picture.width(), h = picture.height();
    if (w <= ThumbBoxWidth && h <= ThumbBoxHeight)
        return picture;
    double scale = w > 0 ? ThumbBoxWidth / w : 1;
    if (h > 0 && ThumbBoxHeight / h < scale)
        scale = ThumbBoxHeight / h;
    return {w * scale, h * scale};
}

QString durationText(double seconds)
{
    const qint64 d = qint64(seconds);
    if (d >= 60)
        return QString::number(d / 60) + QStringLiteral("' ") + QStringLiteral("%1").arg(d % 60, 2, 10, QLatin1Char('0'))
             + QLatin1Char('"');
    return QStringLiteral("%1").arg(qMax<qint64>(d, 0), 2, 10, QLatin1Char('0')) + QLatin1Char('"');
}

QString labTypeCaption(const QString &filterText)
{
    static const struct {
        const char *prefix;
        const char *caption;
    } table[] = {
        {"MPEG", "MPEG Movies"},         {"AVI", "AVI Movies"},   {"IVF", "Indeo Movies"},
        {"ASF", "ASF Streaming Media"},  {"ASX", "ASF Stream Locators"},
        {"RA", "Real Media"},            {"QT", "QuickTime Movies"}, {"PP", "PowerPoint Files"},
        {"BMP", "Bitmap Files"},         {"ICO", "Icons"},        {"IFO", "DVD IFO"},
    };
    for (const auto &row : table)
        if (filterText.startsWith(QLatin1String(row.prefix)))
            return QLatin1String(row.caption);
    return filterText + QStringLiteral(" Files");
}

QString cellToolTip(const QString &name, const QString &detail, const QString &sizeText)
{
    return QLatin1Char(' ') + name + QStringLiteral("  (") + detail + QStringLiteral(")  ") + sizeText
         + QLatin1Char(' ');
}

QString sizeDetail(QSize pixels)
{
    return QString::number(pixels.width()) + QStringLiteral(" x ") + QString::number(pixels.height());
}

QString pictureTag(const QString &path, QSize pixels)
{
    return path + QStringLiteral(" / ") + sizeDetail(pixels);
}

QString pathOfTag(const QString &tag)
{
    const qsizetype at = tag.indexOf(QStringLiteral(" / "));
    return (at < 0 ? tag : tag.left(at)).trimmed();
}

QString detailOfTag(const QString &tag)
{
    const qsizetype at = tag.indexOf(QStringLiteral(" / "));
    return at < 0 ? QString() : tag.mid(at + 3);
}

QString typeCodeOf(const QString &name)
{
    const QString tail = name.right(4);
    const qsizetype dot = tail.lastIndexOf(QLatin1Char('.'));
    return FileTypeCatalogue::normalisedTypeCode(dot < 0 ? tail : tail.mid(dot + 1));
}

bool isMovieType(const QString &typeCode)
{
    return FileTypeCatalogue::mediaClassOf(typeCode) == FileTypeCatalogue::MediaClass::Movie;
}

} // namespace IndexRules
