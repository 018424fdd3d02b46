#include "index/IndexRules.h"

#include <gtest/gtest.h>

using namespace IndexRules;

namespace {

QStringList names(int count, bool emptyFirst = false)
{
    QStringList list;
    if (emptyFirst)
        list.append(QString());
    for (int i = 0; i < count; ++i)
        list.append(QStringLiteral("f%1.jpg").arg(i));
    return list.isEmpty() ? QStringList{QString()} : list;
}

} // namespace

TEST(IndexRules, PagesHoldTwentyFourFiles)
{
    struct Case {
        int files;
        bool emptyFirst;
        int page;
        int begin, end;
        bool previous, next;
    } const cases[] = {
        {24, false, 0, 0, 24, false, false}, // exactly one page: no next
        {25, false, 0, 0, 24, false, true},
        {25, false, 1, 24, 25, true, false}, // the 25th file alone
        {48, false, 1, 24, 48, true, false},
        {49, false, 1, 24, 48, true, true},
        {0, false, 0, 1, 1, false, false},   // the empty list: one empty name, no cell
        {24, true, 0, 1, 25, false, false},  // an empty first element shifts the page by one
        {25, true, 0, 1, 25, false, true},
        {25, true, 1, 25, 26, true, false},
    };
    for (const Case &c : cases) {
        const Page page = pageOf(names(c.files, c.emptyFirst), c.page);
        SCOPED_TRACE(testing::Message() << c.files << " files, empty first " << c.emptyFirst << ", page " << c.page);
        EXPECT_EQ(page.begin, c.begin);
        EXPECT_EQ(page.end, c.end);
        EXPECT_EQ(page.hasPrevious, c.previous);
        EXPECT_EQ(page.hasNext, c.next);
        EXPECT_EQ(cellOfListIndex(page, page.begin), 0);
    }
}

TEST(IndexRules, ProgressTextCountsFromThePageStart)
{
    EXPECT_EQ(progressText(0, 5, "30     12 K"), "1-5 / 30     12 K");
    EXPECT_EQ(progressText(1, 25, "30     12 K"), "25-25 / 30     12 K");
    EXPECT_EQ(progressText(2, 50, "60     1 K"), "49-50 / 60     1 K");
}

TEST(IndexRules, NamesOfEighteenCharactersAreLeftAligned)
{
    const NameLabel seventeen = nameLabel("abcdefghijklm.jpg");
    ASSERT_EQ(QString("abcdefghijklm.jpg").size(), 17);
    EXPECT_TRUE(seventeen.centred);
    EXPECT_EQ(seventeen.toolTip, "abcdefghijklm.jpg");

    const NameLabel eighteen = nameLabel("abcdefghijklmn.jpg");
    EXPECT_FALSE(eighteen.centred);
    EXPECT_EQ(eighteen.toolTip, " abcdefghijklmn.jpg ");
}

TEST(IndexRules, ThumbnailsFitTheBoxKeepingProportions)
{
    struct Case {
        QSizeF picture, shown;
    } const cases[] = {
        {{1300, 975}, {1300, 975}},     // fits exactly: unscaled
        {{2600, 975}, {1300, 487.5}},   // too wide
        {{1300, 1950}, {650, 975}},     // too tall
        {{2600, 2600}, {975, 975}},     // the height limits
        {{100, 50}, {100, 50}},         // small pictures are not enlarged
        {{1301, 10}, {1300, 10 * 1300.0 / 1301}},
    };
    for (const Case &c : cases) {
        const QSizeF shown = scaledThumbnail(c.picture);
        EXPECT_DOUBLE_EQ(shown.width(), c.shown.width()) << c.picture.width() << "x" << c.picture.height();
        EXPECT_DOUBLE_EQ(shown.height(), c.shown.height()) << c.picture.width() << "x" << c.picture.height();
    }
}

TEST(IndexRules, DurationsInMinuteAndSecondMarks)
{
    struct Case {
        double seconds;
        const char *text;
    } const cases[] = {
        {75, "1' 15\""}, {65, "1' 05\""}, {42, "42\""}, {9, "09\""},
        {60, "1' 00\""}, {59.9, "59\""}, {3725, "62' 05\""}, {0.5, "00\""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(durationText(c.seconds), c.text) << c.seconds;
}

TEST(IndexRules, LabTypeNamesTheKindOfFiles)
{
    struct Case {
        const char *filter, *caption;
    } const cases[] = {
        {"MPEG,MPG", "MPEG Movies"},     {"AVI", "AVI Movies"},          {"IVF", "Indeo Movies"},
        {"ASF,ASX", "ASF Streaming Media"}, // ASF is tested before ASX
        {"ASX", "ASF Stream Locators"},  {"RA,RAM,RMM,RM", "Real Media"}, {"QT,MOV", "QuickTime Movies"},
        {"PPT,PPS", "PowerPoint Files"}, {"BMP", "Bitmap Files"},        {"ICO", "Icons"},
        {"IFO", "DVD IFO"},              {"JPG,JPEG", "JPG,JPEG Files"}, {"All Supported", "All Supported Files"},
        {"RLE", "RLE Files"},            // "R" alone is not Real Media
    };
    for (const Case &c : cases)
        EXPECT_EQ(labTypeCaption(c.filter), c.caption) << c.filter;
}

TEST(IndexRules, TypeCodeComesFromTheLastFourCharacters)
{
    struct Case {
        const char *name, *code;
        bool movie;
    } const cases[] = {
        {"a.jpeg", "JPG", false}, {"b.JPG", "JPG", false}, {"c.mpg", "MPEG", true}, {"d.mov", "QT", true},
        {"e.lsx", "ASF", true},   {"f.rm", "RAM", true},   {"g.pps", "PPT", false}, {"h.ifo", "IFO", true},
        {"i.ico", "ICO", false},  {"archive.tar.avi", "AVI", true},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(typeCodeOf(c.name), c.code) << c.name;
        EXPECT_EQ(isMovieType(typeCodeOf(c.name)), c.movie) << c.name;
    }
}

TEST(IndexRules, TagsAndTooltipsCarryPathAndDetail)
{
    const QString tag = pictureTag("/photos/a b.jpg", QSize(4000, 3000));
    EXPECT_EQ(tag, "/photos/a b.jpg / 4000 x 3000");
    EXPECT_EQ(pathOfTag(tag), "/photos/a b.jpg");
    EXPECT_EQ(detailOfTag(tag), "4000 x 3000");
    EXPECT_EQ(pathOfTag("/clips/c.avi"), "/clips/c.avi");
    EXPECT_EQ(cellToolTip("a b.jpg", "4000 x 3000", "1.024 K"), " a b.jpg  (4000 x 3000)  1.024 K ");
}

TEST(IndexRules, CellsSitOnTheTwipGrid)
{
    EXPECT_EQ(cellRect(0, CellPart::Frame), QRectF(0, 0, 1400, 1290));
    EXPECT_EQ(cellRect(5, CellPart::Frame), QRectF(1513, 1272, 1400, 1290));
    EXPECT_EQ(cellRect(23, CellPart::Frame), QRectF(4540, 6360, 1400, 1290));
    // The bar and the buttons lie on the grid, offset from their frame.
    EXPECT_EQ(cellRect(5, CellPart::PositionBar), QRectF(1553, 2112, 1295, 90));
    EXPECT_EQ(cellRect(5, CellPart::StopButton), QRectF(2435, 2202, 420, 150));
    EXPECT_EQ(cellRect(5, CellPart::Player), QRectF(40, 120, 1300, 720));
}
