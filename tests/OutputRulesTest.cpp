#include "output/OutputRules.h"
#include "output/PictureOutput.h"
#include "output/Wallpaper.h"
#include "output/clsCommonDialog.h"
#include "support/FakeSeams.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using OutputRules::Numbered;

TEST(CommonDialog, CopiesReadOneWhileTheDriverMakesThem)
{
    struct Case {
        std::int16_t set;
        std::int32_t flags;
        std::int16_t expected;
    };
    const Case cases[] = {
        {3, 0, 3}, {3, clsCommonDialog::UseDriverCopies, 1}, {3, 0x40004, 1}, {0, 0, 0}, {-2, 0, 0}, {-2, 0x40000, 1},
    };
    for (const Case &c : cases) {
        clsCommonDialog dialog;
        dialog.setCopies(c.set);
        dialog.Flags = c.flags;
        EXPECT_EQ(dialog.Copies(), c.expected) << c.set << " flags " << c.flags;
    }
}

TEST(CommonDialog, PageRangeStaysConsistent)
{
    using Step = std::function<void(clsCommonDialog &)>;
    struct Case {
        const char *what;
        std::vector<Step> steps;
        std::array<int, 4> minMaxFromTo;
    };
    const Case cases[] = {
        {"Max below ToPage lowers it", {[](auto &d) { d.setToPage(9); }, [](auto &d) { d.setMax(5); }}, {0, 5, 0, 5}},
        {"Min 0 changes nothing", {[](auto &d) { d.setToPage(9); }, [](auto &d) { d.setMin(0); }}, {0, 9, 0, 9}},
        {"Min raises the others", {[](auto &d) { d.setMin(4); }}, {4, 4, 4, 4}},
        {"FromPage raises Max and ToPage",
         {[](auto &d) { d.setMax(3); }, [](auto &d) { d.setFromPage(6); }},
         {0, 6, 6, 6}},
        {"FromPage lowers Min", {[](auto &d) { d.setMin(8); }, [](auto &d) { d.setFromPage(2); }}, {2, 8, 2, 8}},
        {"ToPage lowers FromPage and Min",
         {[](auto &d) { d.setMin(5); }, [](auto &d) { d.setFromPage(7); }, [](auto &d) { d.setToPage(3); }},
         {3, 7, 3, 3}},
        {"a negative value is stored as 0 and compared as given",
         {[](auto &d) { d.setToPage(4); }, [](auto &d) { d.setMax(-1); }},
         {-1, 0, -1, -1}},
    };
    for (const Case &c : cases) {
        clsCommonDialog dialog;
        for (const Step &step : c.steps)
            step(dialog);
        EXPECT_EQ((std::array<int, 4>{dialog.Min(), dialog.Max(), dialog.FromPage(), dialog.ToPage()}), c.minMaxFromTo)
            << c.what;
    }
}

TEST(CommonDialog, FilterBecomesQtFilters)
{
    struct Case {
        QString filter;
        QStringList expected;
    };
    const Case cases[] = {
        {"Bitmap (*.BMP)|*.bmp|All Files (*.*)|*.*", {"Bitmap (*.bmp)", "All Files (*)"}},
        {"D|P", {"D (P)"}},
        {"Pictures|*.jpg;*.gif", {"Pictures (*.jpg *.gif)"}},
        {"Notes (read me)|*.txt", {"Notes (read me) (*.txt)"}},
        {"Lonely description", {}},
        {"", {}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(clsCommonDialog::qtFilters(c.filter), c.expected) << c.filter.toStdString();
}

TEST(CommonDialog, ShowOpenPassesTheSettingsAndReadsTheAnswer)
{
    ScriptedPrompts prompts;
    clsCommonDialog dialog;
    dialog.InitDir = "/pictures";
    dialog.FileName = QStringLiteral("photo_[a2].bmp") + QChar(0) + "junk";
    dialog.Filter = "Bitmap (*.BMP)|*.bmp|All Files (*.*)|*.*";
    dialog.FilterIndex = 2;
    dialog.setDialogTitle("Save it ");
    prompts.files = {QStringLiteral("/pictures/out.bmp") + QChar(0)};
    ASSERT_TRUE(dialog.ShowOpen(prompts));
    const FileDialogRequest &asked = prompts.fileRequests.at(0);
    EXPECT_EQ(asked.fileName, "photo_[a2].bmp");
    EXPECT_EQ(asked.folder, "/pictures");
    EXPECT_EQ(asked.title, "Save it ");
    EXPECT_EQ(asked.filterIndex, 1);
    EXPECT_FALSE(asked.mustExist); // a destination may be a new name
    EXPECT_EQ(dialog.FileName, "/pictures/out.bmp");
    EXPECT_EQ(dialog.FileTitle(), "out.bmp");
    EXPECT_EQ(dialog.FilterIndex, 2);
    EXPECT_EQ(dialog.ExtendedError(), 0);

    // Cancel: no name, no error; a name longer than the buffer fails.
    EXPECT_FALSE(dialog.ShowOpen(prompts));
    EXPECT_EQ(dialog.FileName, "");
    EXPECT_EQ(dialog.ExtendedError(), 0);
    dialog.MaxFileSize = 10;
    prompts.files = {"/pictures/a-long-name.bmp"};
    EXPECT_FALSE(dialog.ShowOpen(prompts));
    EXPECT_EQ(dialog.ExtendedError(), clsCommonDialog::BufferTooSmall);
    EXPECT_EQ(dialog.FileName, "");
}

TEST(OutputNames, NextNumberSkipsNamesThatAreNotNumbers)
{
    struct Case {
        QStringList names;
        Numbered kind;
        int expected;
    };
    const Case cases[] = {
        {{}, Numbered::Area, 1},
        {{"photo_[a1].bmp", "photo_[a7].bmp", "photo_[abc].bmp"}, Numbered::Area, 8},
        {{"PHOTO_[A3].BMP"}, Numbered::Area, 4},
        {{"photo_[a12].bmp", "other_[a40].bmp", "photo_[a5].jpg"}, Numbered::Area, 13},
        {{"photo_(1).bmp", "photo_(2).bmp", "photo_(x).bmp"}, Numbered::Grab, 3},
        {{"photo_[a9].bmp"}, Numbered::Grab, 1},
        {{"photo_(9).bmp"}, Numbered::Area, 1},
    };
    for (const Case &c : cases)
        EXPECT_EQ(OutputRules::nextFileNumber(c.names, "photo", c.kind), c.expected) << c.names.join(",").toStdString();
    EXPECT_EQ(OutputRules::numberingBase("photo.jpg"), "photo");
    EXPECT_EQ(OutputRules::numberedName("photo", Numbered::Area, 8), "photo_[a8].bmp");
    EXPECT_EQ(OutputRules::numberedName("clip", Numbered::Grab, 2), "clip_(2).bmp");
}

TEST(OutputNames, CopyIsProposedUnderAnotherNameBesideTheOriginal)
{
    EXPECT_EQ(OutputRules::copyProposedName("/Pics", "/pics/", "photo.jpg", "Copy of"), "Copy of photo.jpg");
    EXPECT_EQ(OutputRules::copyProposedName("/elsewhere", "/pics", "photo.jpg", "Copy of"), "photo.jpg");
}

TEST(AreaRectangle, MirroredDragsAndEdges)
{
    const ViewGeometry::Twips twips; // 15 twips per pixel
    const QRectF target(1500, 3000, 9000, 6000); // 600 x 400 pixels at (100, 200)
    struct Case {
        const char *what;
        QPointF anchor, end;
        QRect expected;
    };
    const Case cases[] = {
        {"left to right", {1500, 1500}, {6000, 4500}, {201, 301, 300, 200}},
        {"right to left", {6000, 4500}, {1500, 1500}, {201, 301, 300, 200}},
        {"anchor below, end above", {1500, 4500}, {6000, 1500}, {201, 301, 300, 200}},
        {"to the far corner: 30 twips short", {0, 0}, {9000, 6000}, {101, 201, 598, 398}},
        {"starting left of the picture", {-600, 0}, {3000, 1500}, {101, 201, 240, 100}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(OutputRules::areaPixels(c.anchor, c.end, target, twips), c.expected) << c.what;
}

TEST(WallpaperSetter, ChosenFromTheCurrentDesktop)
{
    using Wallpaper::Desktop;
    const std::pair<QString, Desktop> desktops[] = {
        {"ubuntu:GNOME", Desktop::Gnome}, {"X-Cinnamon", Desktop::Cinnamon}, {"KDE", Desktop::Kde},
        {"XFCE", Desktop::Xfce},          {"MATE", Desktop::Mate},           {"LXQt", Desktop::Lxqt},
        {"Budgie:GNOME", Desktop::Gnome}, {"", Desktop::Other},              {"sway", Desktop::Other},
    };
    for (const auto &[name, desktop] : desktops)
        EXPECT_EQ(Wallpaper::desktopOf(name), desktop) << name.toStdString();

    const QString file = "/home/u/.local/share/Vimora/wallpaper-1.bmp";
    const auto gnome = Wallpaper::setCommands(Desktop::Gnome, file);
    ASSERT_FALSE(gnome.isEmpty());
    EXPECT_EQ(gnome.first(), (Wallpaper::Command{"gsettings",
                                                 {"set", "org.gnome.desktop.background", "picture-uri",
                                                  "file:///home/u/.local/share/Vimora/wallpaper-1.bmp"}}));
    EXPECT_EQ(Wallpaper::setCommands(Desktop::Kde, file),
              (QList<Wallpaper::Command>{{"plasma-apply-wallpaperimage", {file}}}));
    EXPECT_TRUE(Wallpaper::removeCommands(Desktop::Kde).isEmpty());

    // Elsewhere the first generic setter installed, or none.
    const auto only = [](const char *name) { return [name](const QString &p) { return p == QLatin1String(name); }; };
    EXPECT_EQ(Wallpaper::setCommands(Desktop::Other, file, only("xwallpaper")).value(0).program, "xwallpaper");
    EXPECT_EQ(Wallpaper::setCommands(Desktop::Other, file, only("feh")).value(0).program, "feh");
    EXPECT_TRUE(Wallpaper::setCommands(Desktop::Other, file, only("nothing")).isEmpty());
    EXPECT_TRUE(Wallpaper::removeCommands(Desktop::Other, only("nothing")).isEmpty());
}

TEST(OutputFiles, AFailedWriteLeavesTheDestinationAsItWas)
{
    QTemporaryDir dir;
    const QString destination = dir.filePath("kept.bmp");
    {
        QFile file(destination);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("precious");
    }
    QString why;
    EXPECT_FALSE(PictureOutput::copyFile(dir.filePath("missing.jpg"), destination, &why));
    EXPECT_FALSE(why.isEmpty());
    EXPECT_FALSE(PictureOutput::saveBitmap(QImage(), destination));
    QFile file(destination);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "precious");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList({"kept.bmp"})); // no temporary left

    QImage picture(5, 3, QImage::Format_ARGB32);
    picture.fill(QColor(10, 20, 30));
    ASSERT_TRUE(PictureOutput::saveBitmap(picture, destination));
    const QImage back(destination, "BMP");
    EXPECT_EQ(back.size(), QSize(5, 3));
    EXPECT_EQ(back.pixelColor(4, 2), QColor(10, 20, 30));
}
