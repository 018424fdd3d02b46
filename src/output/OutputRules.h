#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QString>
#include <QStringList>

#include "display/ViewGeometry.h"

// The naming and area rules of the output commands, without widgets.
namespace OutputRules {

// A dialog's text up to its first NUL character.
QString StripNul(const QString &text);

// The name the copy dialog proposes: "Copy of photo.jpg" when the copy
// would land beside the original (copyOf is that text's first part).
QString copyProposedName(const QString &saveFolder, const QString &currentFolder, const QString &fileName,
                         const QString &copyOf);

// The base of numbered files: the file name without its last four
// characters (photo for photo.jpg).
QString numberingBase(const QString &fileName);

// Area files are base_[aN].bmp, frame grabs base_(N).bmp.
enum class Numbered { Area, Grab };

// The next N for base among a folder's names: one more than the largest
// number found, 1 when none; names whose number is not a number are skipped.
int nextFileNumber(const QStringList &folderNames, const QString &base, Numbered kind);
QString numberedName(const QString &base, Numbered kind, int number);
// The same, reading the folder.
QString nextNumberedName(const QString &folder, const QString &fileName, Numbered kind);

// The pixels of the window's client area that an area save captures, from
// the selection points (twips from the target's corner, in either order)
// and the target's rectangle in twips of the window: kept 30 twips inside
// the target's right and bottom edges.
QRect areaPixels(QPointF anchor, QPointF end, const QRectF &targetTwips, ViewGeometry::Twips twips);

// Same folder, as the copy and save commands compare them: case-blind,
// with or without a trailing "/".
bool sameFolder(const QString &a, const QString &b);

} // namespace OutputRules
