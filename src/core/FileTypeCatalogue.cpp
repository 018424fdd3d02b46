#include "core/FileTypeCatalogue.h"

#include <QRegularExpression>

#include <array>

namespace FileTypeCatalogue {

const QString AllSupportedPatterns = QStringLiteral(
    "|*.bmp;*.jpg;*.jpeg;*.gif;*.wmf;*.ico;*.emf;*.cur;*.rle;*.avi;*.ivf;*.mpeg;*.mpg;*.mpe;*.mpv;"
    "*.m1v;*.mp2;*.mpv2;*.mpa;*.mov;*.qt;*.asf;*.asx;*.lsf;*.lsx;*.ra;*.ram;*.rm;*.rmm;*.ppt;*.pps;*.ifo"
    // Today's picture types come after the original lists, which stay as they were.
    ";*.png;*.webp;*.tif;*.tiff;*.svg;*.svgz;*.avif;*.heic;*.heif;*.jxl;*.cr2;*.cr3;*.nef;*.arw;*.dng;*.orf;*.rw2;*.raf;*.pef;*.srw|");
const QString ImagePatterns = QStringLiteral("|*.bmp;*.jpg;*.jpeg;*.gif;*.wmf;*.ico;*.emf;*.cur;*.rle;*.ppt;*.pps"
    ";*.png;*.webp;*.tif;*.tiff;*.svg;*.svgz;*.avif;*.heic;*.heif;*.jxl;*.cr2;*.cr3;*.nef;*.arw;*.dng;*.orf;*.rw2;*.raf;*.pef;*.srw|");
const QString MoviePatterns = QStringLiteral(
    "|*.avi;*.ivf;*.mpeg;*.mpg;*.mpe;*.mpv;*.m1v;*.mp2;*.mpv2;*.mpa;*.mov;*.qt;*.asf;*.asx;*.lsf;*.lsx;"
    "*.ra;*.ram;*.rm;*.rmm;*.ifo|");

namespace {

struct SingleType {
    const char *code;
    std::initializer_list<const char *> extensions;
};

// Order matters: it is the search order when an item text is read back,
// after the three group codes.
const std::array<SingleType, 24> SingleTypes{{
    {"JPG", {"JPG", "JPEG"}},
    {"ICO", {"ICO"}},
    {"BMP", {"BMP"}},
    {"GIF", {"GIF"}},
    {"WMF", {"WMF"}},
    {"EMF", {"EMF"}},
    {"CUR", {"CUR"}},
    {"RLE", {"RLE"}},
    {"MPEG", {"MPEG", "MPG"}},
    {"AVI", {"AVI"}},
    {"IVF", {"IVF"}},
    {"QT", {"QT", "MOV"}},
    {"ASF", {"ASF", "ASX", "LSF", "LSX"}},
    {"RAM", {"RA", "RAM", "RMM", "RM"}},
    {"PPT", {"PPT", "PPS"}},
    {"IFO", {"IFO"}},
    {"PNG", {"PNG"}},
    {"WEBP", {"WEBP"}},
    {"TIF", {"TIF", "TIFF"}},
    {"SVG", {"SVG", "SVGZ"}},
    {"AVIF", {"AVIF"}},
    {"HEIC", {"HEIC", "HEIF"}},
    {"JXL", {"JXL"}},
    {"RAW", {"CR2", "CR3", "NEF", "ARW", "DNG", "ORF", "RW2", "RAF", "PEF", "SRW"}},
}};

// The blank counts are fixed literals: they push the code out of sight of
// the combo box whatever the label's length.
QString groupItem(const QString &label, int blanks, const char *code, const QString &patterns)
{
    return label + QString(blanks, QLatin1Char(' ')) + QLatin1String(code) + patterns.toUpper();
}

// A code counts only as a whole word of the item text: "AVIF" must not
// read back as "AVI".
bool holdsCode(const QString &itemText, QLatin1String code)
{
    for (qsizetype at = itemText.indexOf(code); at >= 0; at = itemText.indexOf(code, at + 1)) {
        const qsizetype end = at + code.size();
        if ((at == 0 || !itemText[at - 1].isLetterOrNumber())
            && (end == itemText.size() || !itemText[end].isLetterOrNumber()))
            return true;
    }
    return false;
}

bool isGroupCode(const QString &code)
{
    return code == u"ALLSUP" || code == u"ALLIMG" || code == u"ALLMOV";
}

} // namespace

QString extensionOf(const QString &fileName)
{
    QString tail = fileName.right(4).toUpper();
    const qsizetype dot = tail.indexOf(QLatin1Char('.'));
    if (dot >= 0)
        tail = tail.right(3 - dot);
    return tail;
}

QString allSupportedItem(const QString &label) { return groupItem(label, 58, "ALLSUP", AllSupportedPatterns); }
QString imagesItem(const QString &label) { return groupItem(label, 60, "ALLIMG", ImagePatterns); }
QString moviesItem(const QString &label) { return groupItem(label, 57, "ALLMOV", MoviePatterns); }

QStringList typeFilterItems(const GroupLabels &labels)
{
    return {allSupportedItem(labels.allSupported), imagesItem(labels.images), moviesItem(labels.movies),
            QStringLiteral("JPG,JPEG"), QStringLiteral("ICO"), QStringLiteral("BMP"), QStringLiteral("GIF"),
            QStringLiteral("WMF"), QStringLiteral("EMF"), QStringLiteral("CUR"), QStringLiteral("RLE"),
            QStringLiteral("MPEG,MPG"), QStringLiteral("AVI"), QStringLiteral("IVF"), QStringLiteral("QT,MOV"),
            QStringLiteral("ASF,ASX"), QStringLiteral("RA,RAM,RMM,RM"), QStringLiteral("PPT,PPS"),
            QStringLiteral("IFO"),
            QStringLiteral("PNG"), QStringLiteral("WEBP"), QStringLiteral("TIF,TIFF"), QStringLiteral("SVG,SVGZ"),
            QStringLiteral("AVIF"), QStringLiteral("HEIC,HEIF"), QStringLiteral("JXL"), QStringLiteral("RAW")};
}

QString openFileFilter(const GroupLabels &labels)
{
    return allSupportedItem(labels.allSupported) + imagesItem(labels.images) + moviesItem(labels.movies)
        + labels.allFiles + QStringLiteral(" (*.*)|*.*");
}

QString filterCodeOfItem(const QString &itemText)
{
    for (const char *group : {"ALLSUP", "ALLIMG", "ALLMOV"})
        if (itemText.contains(QLatin1String(group)))
            return QLatin1String(group);
    for (const SingleType &type : SingleTypes)
        if (holdsCode(itemText, QLatin1String(type.code)))
            return QLatin1String(type.code);
    return {};
}

bool admits(const QString &fileName, const QString &filterCode, const QString &itemText)
{
    const QString extension = extensionOf(fileName);
    if (extension.isEmpty())
        return false;
    if (isGroupCode(filterCode)) {
        // A plain substring test against the item's own pattern list; the
        // appended ";" lets the last entry (ending in "|") match as well.
        const QString list = (itemText + QLatin1Char(';')).toUpper();
        return list.contains(QStringLiteral("*.") + extension + QLatin1Char(';'))
            || list.contains(QStringLiteral("*.") + extension + QStringLiteral("|;"));
    }
    for (const SingleType &type : SingleTypes) {
        if (filterCode != QLatin1String(type.code))
            continue;
        for (const char *ext : type.extensions)
            if (extension == QLatin1String(ext))
                return true;
        return false;
    }
    return false;
}

QStringList admittedExtensions(const QString &filterCode, const QString &itemText)
{
    QStringList extensions;
    if (isGroupCode(filterCode)) {
        const QString list = itemText.toUpper();
        const qsizetype start = list.indexOf(QLatin1Char('|'));
        if (start < 0)
            return {};
        for (const QString &pattern : list.mid(start).split(QRegularExpression(QStringLiteral("[;|]")), Qt::SkipEmptyParts))
            if (pattern.startsWith(QStringLiteral("*.")))
                extensions.append(pattern.mid(2));
        return extensions;
    }
    for (const SingleType &type : SingleTypes)
        if (filterCode == QLatin1String(type.code))
            for (const char *ext : type.extensions)
                extensions.append(QLatin1String(ext));
    return extensions;
}

QString normalisedTypeCode(const QString &extension)
{
    const QString ext = extension.toUpper();
    if (ext == u"JPEG")
        return QStringLiteral("JPG");
    if (ext == u"MPG")
        return QStringLiteral("MPEG");
    if (ext == u"MOV")
        return QStringLiteral("QT");
    if (ext == u"ASX" || ext == u"LSF" || ext == u"LSX")
        return QStringLiteral("ASF");
    if (ext == u"RA" || ext == u"RMM" || ext == u"RM")
        return QStringLiteral("RAM");
    if (ext == u"PPS")
        return QStringLiteral("PPT");
    if (ext == u"TIFF")
        return QStringLiteral("TIF");
    if (ext == u"SVGZ")
        return QStringLiteral("SVG");
    if (ext == u"HEIF")
        return QStringLiteral("HEIC");
    static const QStringList raws{"CR2", "CR3", "NEF", "ARW", "DNG", "ORF", "RW2", "RAF", "PEF", "SRW"};
    if (raws.contains(ext))
        return QStringLiteral("RAW");
    return ext;
}

MediaClass mediaClassOf(const QString &typeCode)
{
    if (typeCode == u"PPT")
        return MediaClass::Slides;
    // The MPEG elementary streams (MPE, MPV, M1V, MP2, MPV2, MPA) are listed
    // with the movies, so they play as movies rather than fail as pictures.
    static const QStringList movies{"MPEG", "AVI", "QT", "IVF", "ASF", "RAM", "IFO",
                                    "MPE", "MPV", "M1V", "MP2", "MPV2", "MPA"};
    return movies.contains(typeCode) ? MediaClass::Movie : MediaClass::Picture;
}

bool mayAnimate(const QString &typeCode)
{
    return typeCode == u"GIF" || typeCode == u"WEBP";
}

} // namespace FileTypeCatalogue
