#include "core/FileTypeCatalogue.h"

#include <gtest/gtest.h>

using namespace FileTypeCatalogue;

TEST(FileTypeCatalogue, ExtensionComesFromTheLastFourCharacters)
{
    const struct {
        const char *name, *extension;
    } cases[] = {
        {"a.jpg", "JPG"},       {"a.jpeg", "JPEG"}, {"a.qt", "QT"},   {"a.mpv2", "MPV2"},
        {"photoJPEG", "JPEG"},  {"A.JpG", "JPG"},   {"x.rmvb", "RMVB"}, {"film.tar.mpg", "MPG"},
        {"noext", "OEXT"},      {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(extensionOf(QString::fromUtf8(c.name)), QString::fromUtf8(c.extension)) << c.name;
}

TEST(FileTypeCatalogue, ListHasTheOriginal19ItemsThenTodaysTypes)
{
    const QStringList items = typeFilterItems(GroupLabels{});
    ASSERT_EQ(items.size(), 27);
    EXPECT_TRUE(items[0].startsWith(QStringLiteral("All Supported") + QString(58, ' ') + "ALLSUP|*.BMP;"));
    EXPECT_TRUE(items[1].startsWith(QStringLiteral("Image Files") + QString(60, ' ') + "ALLIMG|*.BMP;"));
    EXPECT_TRUE(items[2].startsWith(QStringLiteral("Movies, Stream Media") + QString(57, ' ') + "ALLMOV|*.AVI;"));
    EXPECT_EQ(items[3], "JPG,JPEG");
    EXPECT_EQ(items[16], "RA,RAM,RMM,RM");
    EXPECT_EQ(items[18], "IFO");
    EXPECT_EQ(items.mid(19), QStringList({"PNG", "WEBP", "TIF,TIFF", "SVG,SVGZ", "AVIF", "HEIC,HEIF", "JXL", "RAW"}));
    // The original lists are untouched; the new codes follow them.
    EXPECT_TRUE(items[0].contains("*.RMM;*.PPT;*.PPS;*.IFO;*.PNG;*.WEBP;"));
    EXPECT_TRUE(items[1].contains("|*.BMP;*.JPG;*.JPEG;*.GIF;*.WMF;*.ICO;*.EMF;*.CUR;*.RLE;*.PPT;*.PPS;*.PNG;"));
    EXPECT_TRUE(items[1].endsWith(";*.SRW|"));

    // A translated label keeps the same blank counts, not padded widths.
    const QStringList italian = typeFilterItems({"Tutti i supportati", "Immagini", "Filmati", "Tutti"});
    EXPECT_TRUE(italian[0].startsWith(QStringLiteral("Tutti i supportati") + QString(58, ' ') + "ALLSUP"));
}

TEST(FileTypeCatalogue, OpenFileFilterHasFourEntries)
{
    const QString filter = openFileFilter(GroupLabels{});
    const QStringList parts = filter.split('|');
    ASSERT_EQ(parts.size(), 8); // four description|pattern pairs
    EXPECT_TRUE(parts[0].startsWith("All Supported"));
    EXPECT_EQ(parts[1].left(12), "*.BMP;*.JPG;");
    for (const QString &patterns : {parts[1], parts[3]})
        for (const char *code : {"*.PNG;", "*.WEBP;", "*.TIFF;", "*.SVGZ;", "*.AVIF;", "*.HEIF;", "*.JXL;", "*.NEF;"})
            EXPECT_TRUE(patterns.contains(code)) << code;
    EXPECT_FALSE(parts[5].contains("*.AVIF")); // the movies' list
    EXPECT_EQ(parts[6], "All Files (*.*)");
    EXPECT_EQ(parts[7], "*.*");
}

TEST(FileTypeCatalogue, CodeIsReadBackFromItemText)
{
    const QStringList items = typeFilterItems(GroupLabels{});
    const char *expected[] = {"ALLSUP", "ALLIMG", "ALLMOV", "JPG",  "ICO", "BMP",  "GIF", "WMF", "EMF",
                              "CUR",    "RLE",    "MPEG",   "AVI",  "IVF", "QT",   "ASF", "RAM", "PPT",
                              "IFO",    "PNG",    "WEBP",   "TIF",  "SVG", "AVIF", "HEIC", "JXL", "RAW"};
    for (int i = 0; i < items.size(); ++i)
        EXPECT_EQ(filterCodeOfItem(items[i]), expected[i]) << items[i].toStdString();

    // Group codes win over a code that a translated label happens to contain.
    EXPECT_EQ(filterCodeOfItem(allSupportedItem("Tutti JPG e BMP")), "ALLSUP");
    EXPECT_EQ(filterCodeOfItem("nothing known"), "");
}

TEST(FileTypeCatalogue, AdmissionUnderEachFilter)
{
    const QStringList items = typeFilterItems(GroupLabels{});
    auto admitted = [&](const char *name, int item) {
        return admits(QString::fromUtf8(name), filterCodeOfItem(items[item]), items[item]);
    };
    constexpr int All = 0, Images = 1, Movies = 2, Jpg = 3, Mpeg = 11, Ram = 16, Ppt = 17, Ifo = 18;

    for (const char *name : {"a.ra", "b.ram", "c.rm", "d.rmm"})
        EXPECT_TRUE(admitted(name, Ram)) << name;
    EXPECT_FALSE(admitted("e.rmvb", Ram));
    EXPECT_FALSE(admitted("e.rmvb", All));

    for (const char *name : {"a.mpe", "a.mpv", "a.m1v", "a.mp2", "a.mpv2", "a.mpa"}) {
        EXPECT_FALSE(admitted(name, Mpeg)) << name;
        EXPECT_TRUE(admitted(name, Movies)) << name;
        EXPECT_TRUE(admitted(name, All)) << name;
    }
    EXPECT_TRUE(admitted("clip.MPG", Mpeg));

    for (int item : {All, Images, Ppt})
        EXPECT_TRUE(admitted("x.pps", item)) << item;
    EXPECT_FALSE(admitted("x.pps", Movies));

    // The last entry of a list ends in "|" and is admitted all the same.
    EXPECT_TRUE(admitted("VIDEO_TS.IFO", All));
    EXPECT_TRUE(admitted("VIDEO_TS.IFO", Movies));
    EXPECT_TRUE(admitted("VIDEO_TS.IFO", Ifo));

    EXPECT_TRUE(admitted("photoJPEG", Jpg));
    EXPECT_TRUE(admitted("photoJPEG", Images));
    EXPECT_TRUE(admitted("A.JpG", Jpg));
    EXPECT_FALSE(admitted("notes.txt", All));
    EXPECT_FALSE(admitted("picture.png", Movies));
    EXPECT_FALSE(admitted("picture.png", Jpg));
    EXPECT_FALSE(admits("a.jpg", "BOGUS", "BOGUS"));
}

TEST(FileTypeCatalogue, TodaysPictureTypesAreAdmittedByTheirItemAndBothGroups)
{
    const QStringList items = typeFilterItems(GroupLabels{});
    constexpr int All = 0, Images = 1, Movies = 2, Jpg = 3, Avi = 12;
    const struct {
        int item;
        std::initializer_list<const char *> extensions;
    } table[] = {
        {19, {"png"}}, {20, {"webp"}}, {21, {"tif", "tiff"}}, {22, {"svg", "svgz"}}, {23, {"avif"}},
        {24, {"heic", "heif"}}, {25, {"jxl"}},
        {26, {"cr2", "cr3", "nef", "arw", "dng", "orf", "rw2", "raf", "pef", "srw"}},
    };
    for (const auto &row : table) {
        const QString code = filterCodeOfItem(items[row.item]);
        for (const char *extension : row.extensions) {
            for (const QString &name : {QStringLiteral("a.") + extension, QStringLiteral("B.") + QString(extension).toUpper(),
                                        QStringLiteral("c.") + QString(extension).left(1).toUpper() + QString(extension).mid(1)}) {
                EXPECT_TRUE(admits(name, code, items[row.item])) << name.toStdString();
                EXPECT_TRUE(admits(name, "ALLSUP", items[All])) << name.toStdString();
                EXPECT_TRUE(admits(name, "ALLIMG", items[Images])) << name.toStdString();
                EXPECT_FALSE(admits(name, "ALLMOV", items[Movies])) << name.toStdString();
                EXPECT_FALSE(admits(name, "JPG", items[Jpg])) << name.toStdString();
                EXPECT_EQ(FileTypeCatalogue::mediaClassOf(normalisedTypeCode(extensionOf(name))), MediaClass::Picture);
            }
            // Each new item admits its own codes only.
            for (const auto &other : table) {
                if (&other != &row) {
                    EXPECT_FALSE(admits(QStringLiteral("a.") + extension, filterCodeOfItem(items[other.item]),
                                        items[other.item])) << extension;
                }
            }
        }
    }
    // "AVIF" holds "AVI": neither item takes the other's files.
    EXPECT_FALSE(admits("clip.avi", filterCodeOfItem(items[23]), items[23]));
    EXPECT_FALSE(admits("photo.avif", filterCodeOfItem(items[Avi]), items[Avi]));
    EXPECT_FALSE(admits("a.raw", "RAW", items[26]));
}

TEST(FileTypeCatalogue, AdmittedExtensionsAgreeWithAdmission)
{
    const QStringList items = typeFilterItems(GroupLabels{});
    const QStringList names{"a.bmp", "a.jpeg", "a.mpv2", "a.rm", "a.rmvb", "a.pps", "a.ifo", "photoJPEG", "a.txt",
                            "a.mp2", "a.lsx", "x.qt", "noext", "a.avif", "a.avi", "a.tiff", "a.svgz", "a.NEF",
                            "a.heif", "a.webp", "a.raw"};
    for (const QString &item : items) {
        const QString code = filterCodeOfItem(item);
        const QStringList extensions = admittedExtensions(code, item);
        for (const QString &name : names)
            EXPECT_EQ(extensions.contains(extensionOf(name)), admits(name, code, item))
                << name.toStdString() << " under " << code.toStdString();
    }
}

TEST(FileTypeCatalogue, TypeCodesAndMediaClasses)
{
    const struct {
        const char *extension, *code;
        MediaClass media;
    } cases[] = {
        {"JPEG", "JPG", MediaClass::Picture}, {"BMP", "BMP", MediaClass::Picture},
        {"GIF", "GIF", MediaClass::Picture},  {"RLE", "RLE", MediaClass::Picture},
        {"MPG", "MPEG", MediaClass::Movie},   {"MOV", "QT", MediaClass::Movie},
        {"LSX", "ASF", MediaClass::Movie},    {"RMM", "RAM", MediaClass::Movie},
        {"PPS", "PPT", MediaClass::Slides},   {"IFO", "IFO", MediaClass::Movie},
        {"AVI", "AVI", MediaClass::Movie},    {"IVF", "IVF", MediaClass::Movie},
        {"M1V", "M1V", MediaClass::Movie},    {"MPA", "MPA", MediaClass::Movie},
        {"TXT", "TXT", MediaClass::Picture},  {"TIFF", "TIF", MediaClass::Picture},
        {"SVGZ", "SVG", MediaClass::Picture}, {"HEIF", "HEIC", MediaClass::Picture},
        {"CR3", "RAW", MediaClass::Picture},  {"SRW", "RAW", MediaClass::Picture},
        {"AVIF", "AVIF", MediaClass::Picture}, {"WEBP", "WEBP", MediaClass::Picture},
    };
    for (const auto &c : cases) {
        const QString code = normalisedTypeCode(c.extension);
        EXPECT_EQ(code, c.code) << c.extension;
        EXPECT_EQ(mediaClassOf(code), c.media) << c.extension;
    }
}
