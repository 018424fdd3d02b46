#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>

// The index window's rules: which files a page holds, how a cell is laid
// out (twips) and labelled, how a thumbnail is scaled into its box.
namespace IndexRules {

constexpr int CellCount = 24;
constexpr int Columns = 4;

// Twips, relative to the grid, the cell frame or the main window.
constexpr double CellWidth = 1400;
constexpr double CellHeight = 1290;
constexpr double ColumnLefts[Columns] = {0, 1513, 3026, 4540};
constexpr double RowTops[CellCount / Columns] = {0, 1272, 2544, 3816, 5088, 6360};
constexpr double ThumbBoxWidth = 1300;
constexpr double ThumbBoxHeight = 975;
constexpr double WindowOffsetFromMain = 5865;
constexpr double WindowWidth = 6090;
constexpr double WindowHeight = 8580;

enum class CellPart { Frame, Image, Player, PositionBar, PlayButton, PauseButton, StopButton, NameLabel, FavouriteMark };
// Frame: in the grid. Image, Player, NameLabel, FavouriteMark: in the
// frame. The bar and the buttons: in the grid, offset from the frame.
QRectF cellRect(int cell, CellPart part);

// Paging over a list whose element 0 may be the empty name of an empty list.
struct Page {
    int firstListIndex = 0; // 1 when FileNames(0) is empty
    int begin = 0;          // list indices [begin, end) shown on this page
    int end = 0;
    bool hasPrevious = false;
    bool hasNext = false;
};
Page pageOf(const QStringList &fileNames, int page);
int cellOfListIndex(const Page &page, int listIndex);
// "1-5 / 25     300 K": first number of the page, number of this file, summary.
QString progressText(int page, int fileNumber, const QString &folderSummary);

// Names shorter than 18 characters are centred with the name as tooltip;
// longer ones are left-aligned with " name " as tooltip.
struct NameLabel {
    bool centred;
    QString toolTip;
};
NameLabel nameLabel(const QString &name);

// Twips: kept when it fits 1300 x 975, else scaled to fit keeping proportions.
QSizeF scaledThumbnail(QSizeF picture);

// 75 -> 1' 15", 42 -> 42", 9 -> 09".
QString durationText(double seconds);

// The caption naming the kind of files, from the type filter's item text.
QString labTypeCaption(const QString &filterText);

// " name  (detail)  size " for thumbnails, players and frames; detail is
// "W x H" for pictures and the duration for movies.
QString cellToolTip(const QString &name, const QString &detail, const QString &sizeText);
QString sizeDetail(QSize pixels);

// The thumbnail's tag "path / W x H", split back into path and detail.
QString pictureTag(const QString &path, QSize pixels);
QString pathOfTag(const QString &tag);
QString detailOfTag(const QString &tag);

// Index type code of a name: from the last four characters, normalised.
QString typeCodeOf(const QString &name);
bool isMovieType(const QString &typeCode);

} // namespace IndexRules
