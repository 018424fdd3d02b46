#include "display/ZoomRules.h"
#include "core/FileSizeText.h"
#include "viewer/StartupRules.h"
#include "viewer/ViewRules.h"

#include <gtest/gtest.h>

TEST(ZoomRules, StepsRoundToTheWholeNumberShown)
{
    EXPECT_EQ(ZoomRules::zoomIn(0), 115);
    EXPECT_EQ(ZoomRules::zoomIn(115), 132); // 132.25
    EXPECT_EQ(ZoomRules::zoomIn(132), 152); // 151.8
    EXPECT_EQ(ZoomRules::zoomOut(0), 85);
    EXPECT_EQ(ZoomRules::zoomOut(85), 74); // 73.9
    EXPECT_EQ(ZoomRules::roundHalfEven(2.5), 2);
    EXPECT_EQ(ZoomRules::roundHalfEven(3.5), 4);
}

TEST(ZoomRules, FitTakesTheSmallerRatioAndEnlargesSmallPictures)
{
    const QSizeF window(12000, 9000); // area 11800 x 5440
    EXPECT_DOUBLE_EQ(ZoomRules::fitRatio({23600, 5440}, window), 0.5);
    EXPECT_DOUBLE_EQ(ZoomRules::fitRatio({5900, 10880}, window), 0.5);
    EXPECT_DOUBLE_EQ(ZoomRules::fitRatio({100, 100}, {5870, 3500}), (3500.0 - 3560) / 100); // negative area
    EXPECT_GT(ZoomRules::fitRatio({100, 100}, window), 1);
    EXPECT_EQ(ZoomRules::fitRatio({0, 100}, window), 0);
}

TEST(ZoomRules, ResizeFitUsesItsOwnMargins)
{
    // 11900 twips wide with 100 at the side; 9000 - (2850 + 120) high.
    EXPECT_DOUBLE_EQ(ZoomRules::resizeFitRatio({11900, 100}, {12000, 9000}, 2850), 1.0);
    EXPECT_DOUBLE_EQ(ZoomRules::resizeFitRatio({100, 6030}, {12000, 9000}, 2850), 1.0);
    EXPECT_DOUBLE_EQ(ZoomRules::resizeFitRatio({100, 6030}, {12000, 9000}, 5865), 0.5);
}

TEST(ZoomRules, CentringPinsLargeTargetsAndCentresSmallOnes)
{
    const QSizeF window(12000, 9000);
    EXPECT_EQ(ZoomRules::centredPosition({13000, 100}, window).x(), 0);
    EXPECT_EQ(ZoomRules::centredPosition({2000, 100}, window).x(), (12000 - 2000) / 2.0 - 50);
    EXPECT_EQ(ZoomRules::centredPosition({100, 6000}, window).y(), 2850);
    EXPECT_EQ(ZoomRules::centredPosition({100, 1000}, window).y(), (5440 - 1000) / 2.0 + 2850);
}

TEST(ZoomRules, MovieZoomStopsAtTheDisplayArea)
{
    const QSizeF window(12000, 9000);
    EXPECT_EQ(ZoomRules::movieZoomPercent(200, {2640, 2160}, window), 200);
    EXPECT_EQ(ZoomRules::movieZoomPercent(800, {2640, 2160}, window), 252); // 5440 / 2160
}

TEST(ZoomRules, SelectionInAnyDirectionAndItsMinimum)
{
    const QRectF forward = ZoomRules::selectionRect({100, 100}, {400, 300});
    EXPECT_EQ(ZoomRules::selectionRect({400, 300}, {100, 100}), forward);
    EXPECT_EQ(ZoomRules::selectionRect({400, 100}, {100, 300}), forward);
    EXPECT_TRUE(ZoomRules::selectionBigEnough({100, 100}, {110, 90}));
    EXPECT_FALSE(ZoomRules::selectionBigEnough({100, 100}, {109, 200}));
    EXPECT_FALSE(ZoomRules::selectionBigEnough({100, 100}, {300, 91}));
    EXPECT_EQ(ZoomRules::clampToTarget({-500, 50}, {1000, 800}), QPointF(0, 50));
    EXPECT_EQ(ZoomRules::clampToTarget({1200, 900}, {1000, 800}), QPointF(1000, 800));
}

TEST(ZoomRules, PanKeepsPartOfThePictureInTheWindow)
{
    const QSizeF window(12000, 9000), picture(20000, 15000);
    EXPECT_EQ(ZoomRules::panPosition({-30000, 0}, picture, window).x(), 150 - 20000);
    EXPECT_EQ(ZoomRules::panPosition({15000, 0}, picture, window).x(), 12000 - 250);
    EXPECT_EQ(ZoomRules::panPosition({0, -20000}, picture, window).y(), 3000 - 15000);
    EXPECT_EQ(ZoomRules::panPosition({0, 8500}, picture, window).y(), 9000 - 810);
    EXPECT_FALSE(ZoomRules::fitsInArea(picture, window));
    EXPECT_TRUE(ZoomRules::fitsInArea({1000, 1000}, window));
}

TEST(ViewRules, StatusTexts)
{
    EXPECT_EQ(ViewRules::positionText(0, 1), " 1/1 ");
    EXPECT_EQ(ViewRules::positionText(2, 10), " 3/10 ");
    EXPECT_EQ(ViewRules::zoomLabel(85), "  85% ");
    EXPECT_EQ(ViewRules::zoomLabel(100), " 100% ");
    EXPECT_EQ(ViewRules::zoomLabel(132), " 132% ");
    EXPECT_EQ(ViewRules::withPixelsPerCm("640 x 480", 640, 16.93), "640 x 480 (38 pixels/cm)");
    EXPECT_EQ(ViewRules::fileTitle("a b.jpg"), " a b.jpg  - Vimora ");
}

TEST(FileSizeText, KilobytesRoundUpAndGroupWithDots)
{
    EXPECT_EQ(sizeText(1023), "1023 bytes");
    EXPECT_EQ(sizeText(1024), "1 K");
    EXPECT_EQ(sizeText(1034), "1 K");
    EXPECT_EQ(sizeText(1035), "2 K");
    EXPECT_EQ(sizeText(1536000), "1.500 K");
    EXPECT_EQ(sizeText(10240000), "10.000 K");
    EXPECT_EQ(sizeText(0, "byte"), "0 byte");
    EXPECT_EQ(GroupThousands("1234567"), "1.234.567");
    EXPECT_EQ(GroupThousands("123"), "123");
    EXPECT_EQ(GroupThousands("123456789012"), "123.456.789.012");
}

TEST(StartupRules, CommandLineAndStartFolder)
{
    const auto file = StartupRules::splitCommandLine("/home/u/my pics, 2024/a b.jpg");
    EXPECT_EQ(file.folder, "/home/u/my pics, 2024");
    EXPECT_EQ(file.name, "a b.jpg");
    const auto root = StartupRules::splitCommandLine("/photo.jpg");
    EXPECT_EQ(root.folder, "/");
    EXPECT_EQ(root.name, "photo.jpg");
    EXPECT_EQ(StartupRules::splitCommandLine("\"/q/x.jpg\"").name, "x.jpg\""); // quotes are kept
    EXPECT_EQ(StartupRules::absoluteCommandLine("sub dir/b.jpg", "/home/u"), "/home/u/sub dir/b.jpg");
    EXPECT_EQ(StartupRules::absoluteCommandLine("./b.jpg", "/home/u"), "/home/u/b.jpg");
    EXPECT_EQ(StartupRules::absoluteCommandLine("/q/x.jpg", "/home/u"), "/q/x.jpg");
    EXPECT_EQ(StartupRules::absoluteCommandLine("", "/home/u"), "");

    EXPECT_EQ(StartupRules::startFolder("/photos", "/opt/vimora/", false, false), "/photos");
    EXPECT_EQ(StartupRules::startFolder("", "/opt/vimora/", false, false), "/opt/vimora");
    EXPECT_EQ(StartupRules::startFolder("/media/cdrom/x", "/opt/vimora/", true, false), "/opt/vimora");
    EXPECT_EQ(StartupRules::startFolder("/mnt/share", "/opt/vimora/", false, true), "/opt/vimora");
    EXPECT_EQ(StartupRules::slideSecondsFromStore(0), 1);
    EXPECT_EQ(StartupRules::slideSecondsFromStore(-4), 1);
    EXPECT_EQ(StartupRules::slideSecondsFromStore(7), 7);
    EXPECT_EQ(StartupRules::slideSecondsFromStore(60), 60);
    EXPECT_EQ(StartupRules::slideSecondsFromStore(300), 60); // the slider ends at 60
}
