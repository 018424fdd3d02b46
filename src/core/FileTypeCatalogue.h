#pragma once

#include <QString>
#include <QStringList>

// The fixed table of supported file types: the type filter list, the filter
// codes, admission of a name under a filter and the media class of a file.
namespace FileTypeCatalogue {

enum class MediaClass { Picture, Movie, Slides };

// Extension as the listing and the display see it: from the last four
// characters, upper-cased ("a.jpeg" -> "JPEG", "photoJPEG" -> "JPEG").
QString extensionOf(const QString &fileName);

// The three group pattern lists as stored (lower case, "|" at both ends).
extern const QString AllSupportedPatterns;
extern const QString ImagePatterns;
extern const QString MoviePatterns;

struct GroupLabels {
    QString allSupported = QStringLiteral("All Supported");
    QString images = QStringLiteral("Image Files");
    QString movies = QStringLiteral("Movies, Stream Media");
    QString allFiles = QStringLiteral("All Files");
};

// Group item text: label, fixed blanks, code, upper-cased pattern list.
QString allSupportedItem(const QString &label);
QString imagesItem(const QString &label);
QString moviesItem(const QString &label);

// The CboType items in list order: the 19 original ones, then today's
// picture types.
QStringList typeFilterItems(const GroupLabels &labels);

// The description|pattern list for the open/save dialog.
QString openFileFilter(const GroupLabels &labels);

// The filter code read back from a CboType item text ("" when none matches).
QString filterCodeOfItem(const QString &itemText);

// Whether a file name passes the filter. Group codes are tested against
// the selected item text, which carries the pattern list.
bool admits(const QString &fileName, const QString &filterCode, const QString &itemText);

// The extensions a filter admits, for testing many names at once; the
// same answers as admits().
QStringList admittedExtensions(const QString &filterCode, const QString &itemText);

// "JPEG" -> "JPG", "MOV" -> "QT", "LSX" -> "ASF", "NEF" -> "RAW", ...; others
// unchanged.
QString normalisedTypeCode(const QString &extension);
MediaClass mediaClassOf(const QString &typeCode);

// GIF and WebP pictures can be animated; they go to the animation view too.
bool mayAnimate(const QString &typeCode);

} // namespace FileTypeCatalogue
