#include "core/FileTypeCatalogue.h"
#include "support/Unprivileged.h"
#include "viewer/FolderListing.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include <sys/stat.h>
#include <unistd.h>

namespace {

void touch(const QString &path, qint64 bytes = 0)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(QByteArray(bytes, 'x'));
}

QString item(int index) { return FileTypeCatalogue::typeFilterItems({}).at(index); }

FolderListing listUnder(const QString &folder, int itemIndex)
{
    const QString text = item(itemIndex);
    return FolderListing::listAll(folder, FileTypeCatalogue::filterCodeOfItem(text), text);
}

int openDescriptors()
{
    const QDir fds(QStringLiteral("/proc/self/fd"));
    return int(fds.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

// One folder holding every trap of admission and order; each filter must
// list exactly its share of it.
class FolderListingAdmission : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder = new QTemporaryDir;
        const QString root = folder->path() + QLatin1Char('/');
        for (const char *name : {
                 "img10.jpg", "img2.jpg", "IMG1.JPG", "A.JpG", "photoJPEG", "x.pps", "deck.ppt",
                 ".hidden.jpg", ".hidden.bmp", "notes.txt", "b.bmp",
                 "a b, c.gif", "line\nbreak.bmp", "è-accent.bmp", "фотоJPEG", "клип.ra",
                 "clip.rm", "clip.rmvb", "song.ra", "list.ram", "old.rmm",
                 "film.mpeg", "film.mpg", "e.mpe", "e.mpv", "e.m1v", "e.mp2", "e.mpv2", "e.mpa",
                 "VIDEO_TS.IFO", "movie.mov", "short.qt", "stream.asx", "cursor.cur", "icon.ico",
                 "metafile.wmf", "enhanced.emf", "bitmap.rle", "capture.avi", "intel.ivf", "jpg"})
            touch(root + QString::fromUtf8(name));
        QDir(root).mkdir(QStringLiteral("folder.jpg"));
        QFile::link(root + QStringLiteral("b.bmp"), root + QStringLiteral("link to b.bmp"));
        QFile::link(root + QStringLiteral("gone.bmp"), root + QStringLiteral("dangling.bmp"));
        QFile::link(root + QStringLiteral("folder.jpg"), root + QStringLiteral("folder link.jpg"));
    }
    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }
    static QTemporaryDir *folder;
};
QTemporaryDir *FolderListingAdmission::folder = nullptr;

struct AdmissionCase {
    int itemIndex;
    QStringList names;
};

} // namespace

TEST_F(FolderListingAdmission, EachFilterListsItsShareInNaturalCaseBlindOrder)
{
    const QString accent = QString::fromUtf8("è-accent.bmp");
    const QString cyrillicJpeg = QString::fromUtf8("фотоJPEG");
    const QString cyrillicRa = QString::fromUtf8("клип.ra");
    const QList<AdmissionCase> cases{
        {0, {"a b, c.gif", "A.JpG", "b.bmp", "bitmap.rle", "capture.avi", "clip.rm", "cursor.cur", "deck.ppt",
             accent, "e.m1v", "e.mp2", "e.mpa", "e.mpe", "e.mpv", "e.mpv2", "enhanced.emf", "film.mpeg", "film.mpg",
             "icon.ico", "IMG1.JPG", "img2.jpg", "img10.jpg", "intel.ivf", "jpg", "line\nbreak.bmp", "link to b.bmp",
             "list.ram", "metafile.wmf", "movie.mov", "old.rmm", "photoJPEG", "short.qt", "song.ra", "stream.asx",
             "VIDEO_TS.IFO", "x.pps", cyrillicRa, cyrillicJpeg}},
        {1, {"a b, c.gif", "A.JpG", "b.bmp", "bitmap.rle", "cursor.cur", "deck.ppt", accent, "enhanced.emf",
             "icon.ico", "IMG1.JPG", "img2.jpg", "img10.jpg", "jpg", "line\nbreak.bmp", "link to b.bmp", "metafile.wmf",
             "photoJPEG", "x.pps", cyrillicJpeg}},
        {2, {"capture.avi", "clip.rm", "e.m1v", "e.mp2", "e.mpa", "e.mpe", "e.mpv", "e.mpv2", "film.mpeg",
             "film.mpg", "intel.ivf", "list.ram", "movie.mov", "old.rmm", "short.qt", "song.ra", "stream.asx",
             "VIDEO_TS.IFO", cyrillicRa}},
        {3, {"A.JpG", "IMG1.JPG", "img2.jpg", "img10.jpg", "jpg", "photoJPEG", cyrillicJpeg}},
        {5, {"b.bmp", accent, "line\nbreak.bmp", "link to b.bmp"}},
        {11, {"film.mpeg", "film.mpg"}}, // not the MPEG elementary streams
        {14, {"movie.mov", "short.qt"}},
        {15, {"stream.asx"}},
        {16, {"clip.rm", "list.ram", "old.rmm", "song.ra", cyrillicRa}}, // not .rmvb
        {17, {"deck.ppt", "x.pps"}},
        {18, {"VIDEO_TS.IFO"}},
    };
    for (const AdmissionCase &c : cases)
        EXPECT_EQ(listUnder(folder->path(), c.itemIndex).names(), c.names)
            << "filter " << item(c.itemIndex).toStdString();
}

TEST_F(FolderListingAdmission, SameAnswersAsTheCatalogueForEveryFilter)
{
    // The listing judges names by their tail before decoding them; the
    // catalogue's own test on every visible regular file is the reference.
    QStringList candidates;
    const QDir dir(folder->path());
    for (const QFileInfo &info : dir.entryInfoList(QDir::Files))
        candidates.append(info.fileName());
    for (const QString &text : FileTypeCatalogue::typeFilterItems({})) {
        const QString code = FileTypeCatalogue::filterCodeOfItem(text);
        QStringList expected;
        for (const QString &name : candidates)
            if (FileTypeCatalogue::admits(name, code, text))
                expected.append(name);
        QStringList listed = FolderListing::listAll(folder->path(), code, text).names();
        std::sort(expected.begin(), expected.end());
        std::sort(listed.begin(), listed.end());
        EXPECT_EQ(listed, expected) << text.toStdString();
    }
}

TEST(FolderListingTest, TotalsOnlyTheListedFilesAndFollowsLinks)
{
    QTemporaryDir dir;
    touch(dir.path() + "/a.bmp", 1000);
    touch(dir.path() + "/b.jpg", 20);
    touch(dir.path() + "/.c.bmp", 500);    // hidden
    touch(dir.path() + "/notes.txt", 700); // not admitted
    QFile::link(dir.path() + "/a.bmp", dir.path() + "/alias.bmp");
    const FolderListing all = FolderListing::listAll(dir.path(), "ALLSUP", item(0));
    EXPECT_EQ(all.count(), 3);
    EXPECT_EQ(all.totalBytes(), 2020); // the link counts its target's size
    EXPECT_EQ(FolderSummaryText(all.count(), all.totalBytes()), "3     1 K");

    const FolderListing bitmaps = FolderListing::listAll(dir.path(), "BMP", "BMP");
    EXPECT_EQ(bitmaps.totalBytes(), 2000);
}

TEST(FolderListingTest, SummaryText)
{
    struct Case {
        int count;
        double bytes;
        const char *text;
    };
    const Case cases[]{
        {0, 0, "0     0 byte"},
        {2, 1023, "2     1023 byte"},
        {1, 1024, "1     1 K"},
        {1, 2047, "1     1 K"},            // the integer part, not rounded
        {40, 10.0 * 1024 * 1024, "40     10240 K"},
        {7, 5e9, "7     4882812 K"},       // beyond 32 bits
    };
    for (const Case &c : cases)
        EXPECT_EQ(FolderSummaryText(c.count, c.bytes), c.text) << c.bytes;
}

TEST(FolderListingTest, AnEmptyListIsOneEmptyName)
{
    QTemporaryDir dir;
    touch(dir.path() + "/readme.txt");
    const FolderListing listing = FolderListing::listAll(dir.path(), "ALLSUP", item(0));
    EXPECT_EQ(listing.fileNames(), QStringList{QString()});
    EXPECT_EQ(FileCount(listing.fileNames()), 0);
    EXPECT_EQ(FolderSummaryText(FileCount(listing.fileNames()), listing.totalBytes()), "0     0 byte");
    EXPECT_EQ(FileCount({"a.jpg"}), 1);
    EXPECT_EQ(FileCount({"a.jpg", "b.jpg"}), 2);
}

// Steps of any size, with runs merged as they come, give the same order.
class FolderListingSteps : public ::testing::TestWithParam<int> {};

TEST_P(FolderListingSteps, OrderDoesNotDependOnTheStepSize)
{
    QTemporaryDir dir;
    QList<int> numbers(300);
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), *QRandomGenerator::global());
    for (const int n : numbers)
        touch(dir.path() + QString::fromLatin1(n % 2 ? "/Pic%1.bmp" : "/pic%1.bmp").arg(n));
    for (int n = 0; n < 100; ++n)
        touch(dir.path() + QStringLiteral("/skip%1.txt").arg(n));

    FolderListing listing(dir.path(), "BMP", "BMP");
    while (!listing.step(GetParam())) {
    }
    const QStringList names = listing.names();
    ASSERT_EQ(names.size(), 300);
    for (int n = 0; n < 300; ++n)
        EXPECT_EQ(names[n], QString::fromLatin1(n % 2 ? "Pic%1.bmp" : "pic%1.bmp").arg(n));
}

INSTANTIATE_TEST_SUITE_P(FolderListingTest, FolderListingSteps, ::testing::Values(1, 3, 7, 64, 299, 5000));

// Names reach the sorting thread as the folder's raw bytes: each must come
// back whole, whatever it holds, and a name that is no UTF-8 as Qt decodes it.
TEST(FolderListingTest, OddNamesComeBackWhole)
{
    QTemporaryDir dir;
    const QStringList odd{"a b, c.jpg", "città.jpg", "line\nbreak.jpg", "x\ty.jpg", "日本.jpg", "'q\".jpg"};
    for (const QString &name : odd)
        touch(dir.path() + '/' + name);
    const QByteArray latin1Name = QFile::encodeName(dir.path()) + "/caf\xe9.jpg"; // not valid UTF-8
    QFile raw(QFile::decodeName(latin1Name));
    ASSERT_TRUE(raw.open(QIODevice::WriteOnly));
    raw.close();

    const QStringList names = listUnder(dir.path(), 0).names();
    ASSERT_EQ(names.size(), odd.size() + 1);
    for (const QString &name : odd)
        EXPECT_TRUE(names.contains(name)) << qPrintable(name);
    EXPECT_TRUE(names.contains(QFile::decodeName(QByteArray("caf\xe9.jpg"))));
    for (const QString &name : names)
        EXPECT_TRUE(QFile::exists(dir.path() + '/' + name)) << qPrintable(name);
}

// A folder changed while its names are still being sorted: the listing
// goes at once and takes nothing along.
TEST(FolderListingTest, CancelledWhileSortingLeavesNothing)
{
    QTemporaryDir dir;
    for (int n = 0; n < 6000; ++n)
        touch(dir.path() + QStringLiteral("/p%1.bmp").arg(n));
    for (int round = 0; round < 20; ++round) {
        FolderListing listing(dir.path(), "BMP", "BMP");
        for (int step = 0; step < round; ++step)
            listing.step(1000);
        listing.cancel();
        EXPECT_TRUE(listing.done());
        EXPECT_TRUE(listing.names().isEmpty());
    }
    FolderListing complete(dir.path(), "BMP", "BMP");
    while (!complete.step(1000)) {
    }
    EXPECT_EQ(complete.count(), 6000);
    EXPECT_EQ(complete.names().first(), "p0.bmp");
    EXPECT_EQ(complete.names().last(), "p5999.bmp");
}

TEST(FolderListingTest, AStepReadsAtMostItsShareOfEntriesAdmittedOrNot)
{
    // A folder of thousands of other files must not be read in one go.
    QTemporaryDir dir;
    for (int n = 0; n < 40; ++n)
        touch(dir.path() + QStringLiteral("/doc%1.txt").arg(n));
    touch(dir.path() + "/only.jpg");
    FolderListing listing(dir.path(), "ALLSUP", item(0));
    int steps = 1;
    while (!listing.step(5))
        ++steps;
    EXPECT_GE(steps, 8);
    EXPECT_EQ(listing.names(), QStringList{"only.jpg"});
}

TEST(FolderListingTest, CancelledMidwayLeavesNothingAndClosesTheFolder)
{
    QTemporaryDir dir;
    for (int n = 0; n < 50; ++n)
        touch(dir.path() + QStringLiteral("/p%1.bmp").arg(n), 10);
    const int before = openDescriptors();
    FolderListing listing(dir.path(), "BMP", "BMP");
    EXPECT_EQ(openDescriptors(), before + 1);

    int asked = 0;
    EXPECT_FALSE(listing.run(10, [&] { return ++asked < 2; }));
    EXPECT_EQ(asked, 2);
    EXPECT_TRUE(listing.cancelled());
    EXPECT_TRUE(listing.done());
    EXPECT_TRUE(listing.names().isEmpty());
    EXPECT_EQ(listing.totalBytes(), 0);
    EXPECT_EQ(listing.fileNames(), QStringList{QString()});
    EXPECT_TRUE(listing.step(10)); // nothing left to do
    EXPECT_EQ(openDescriptors(), before);

    FolderListing complete(dir.path(), "BMP", "BMP");
    EXPECT_TRUE(complete.run(10, [] { return true; }));
    EXPECT_FALSE(complete.cancelled());
    EXPECT_EQ(complete.count(), 50);
    EXPECT_EQ(complete.totalBytes(), 500);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(FolderListingTest, ReplacingAListingClosesTheOldFolder)
{
    QTemporaryDir dir;
    touch(dir.path() + "/a.bmp");
    const int before = openDescriptors();
    FolderListing listing(dir.path(), "BMP", "BMP");
    for (int i = 0; i < 5; ++i)
        listing = FolderListing(dir.path(), "BMP", "BMP"); // the window does this on every change
    EXPECT_EQ(openDescriptors(), before + 1);
}

TEST(FolderListingTest, MissingAndUnreadableFolders)
{
    if (rerunUnprivilegedWhenRoot())
        return;
    QTemporaryDir dir;
    FolderListing gone(dir.path() + "/no such folder", "ALLSUP", item(0));
    EXPECT_TRUE(gone.step(10));
    EXPECT_FALSE(gone.unreadable()); // nothing to retry
    EXPECT_TRUE(gone.names().isEmpty());

    touch(dir.path() + "/file.jpg");
    FolderListing notAFolder(dir.path() + "/file.jpg", "ALLSUP", item(0));
    EXPECT_TRUE(notAFolder.done());

    const QString locked = dir.path() + "/locked";
    QDir(dir.path()).mkdir("locked");
    touch(locked + "/a.jpg");
    ::chmod(QFile::encodeName(locked).constData(), 0);
    FolderListing denied(locked, "ALLSUP", item(0));
    EXPECT_TRUE(denied.unreadable());
    EXPECT_TRUE(denied.step(10));
    ::chmod(QFile::encodeName(locked).constData(), 0700);
}

TEST(FolderListingTest, NaturalCaseBlindOrder)
{
    struct Case {
        QStringList in;
        QStringList sorted;
    };
    const QList<Case> cases{
        {{"img10.jpg", "img2.jpg", "IMG1.jpg"}, {"IMG1.jpg", "img2.jpg", "img10.jpg"}},
        {{"Zebra.bmp", "apple.bmp", "Mango.bmp"}, {"apple.bmp", "Mango.bmp", "Zebra.bmp"}},
        {{"a10b10", "a10b2", "a9b99"}, {"a9b99", "a10b2", "a10b10"}},
        {{"scan 100", "scan 20", "scan 3"}, {"scan 3", "scan 20", "scan 100"}},
        {{"fig", QString::fromUtf8("éclair"), "eagle"}, {"eagle", QString::fromUtf8("éclair"), "fig"}},
        // Equal but for case: a fixed order whatever order they came in.
        {{"b.jpg", "B.jpg", "a.jpg"}, {"a.jpg", "B.jpg", "b.jpg"}},
        {{"B.jpg", "b.jpg", "a.jpg"}, {"a.jpg", "B.jpg", "b.jpg"}},
        {{}, {}},
    };
    for (const Case &c : cases) {
        QStringList names = c.in;
        sortNaturally(names);
        EXPECT_EQ(names, c.sorted);
    }
}
