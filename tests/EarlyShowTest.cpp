#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "core/FileTypeCatalogue.h"
#include "viewer/FolderListing.h"
#include "viewer/StartupRules.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

namespace {

QString filterItem(const QString &code)
{
    for (const QString &item : FileTypeCatalogue::typeFilterItems({}))
        if (FileTypeCatalogue::filterCodeOfItem(item) == code)
            return item;
    return {};
}

void touch(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
}

struct EarlyCase {
    const char *name;
    const char *filter;
    bool shown;
};

} // namespace

TEST(EarlyShowRules, OnlyPicturesTheListingWillAdmit)
{
    QTemporaryDir dir;
    for (const char *name : {"photo.jpg", "clip.avi", "show.pps", ".hidden.jpg", "notes.txt", "UPPER.JPG", "draw.wmf"})
        touch(dir.filePath(name));
    QDir(dir.path()).mkdir("folder.jpg");
    ASSERT_EQ(::symlink("photo.jpg", dir.filePath("link.jpg").toLocal8Bit().constData()), 0);
    ASSERT_EQ(::symlink("gone.jpg", dir.filePath("dangling.jpg").toLocal8Bit().constData()), 0);

    const EarlyCase cases[] = {
        {"photo.jpg", "ALLSUP", true},   {"UPPER.JPG", "ALLSUP", true},  {"draw.wmf", "ALLSUP", true},
        {"link.jpg", "ALLSUP", true},    {"photo.jpg", "ALLIMG", true},  {"photo.jpg", "ALLMOV", false},
        {"clip.avi", "ALLSUP", false},   {"show.pps", "ALLSUP", false},  {".hidden.jpg", "ALLSUP", false},
        {"notes.txt", "ALLSUP", false},  {"folder.jpg", "ALLSUP", false}, {"dangling.jpg", "ALLSUP", false},
        {"missing.jpg", "ALLSUP", false}, {"", "ALLSUP", false},
    };
    for (const EarlyCase &c : cases)
        EXPECT_EQ(StartupRules::showsBeforeListingEnds(dir.path(), c.name, c.filter, filterItem(c.filter)), c.shown)
            << c.name << " under " << c.filter;

    // The same answers as the listing itself gives.
    const QStringList listed = FolderListing::listAll(dir.path(), "ALLSUP", filterItem("ALLSUP")).names();
    for (const QString &name : QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System))
        EXPECT_EQ(WouldBeListed(dir.path(), name, "ALLSUP", filterItem("ALLSUP")), listed.contains(name)) << qPrintable(name);
}

class EarlyShow : public ::testing::Test {
protected:
    static constexpr int Fillers = 5000; // more than one step of the listing

    void SetUp() override
    {
        folder = fixture.makeFolder("many");
        for (int i = 0; i < Fillers; ++i)
            touch(folder + QStringLiteral("/f%1.bmp").arg(i, 4, 10, QLatin1Char('0')));
        fixture.makePicture(folder, "photo.bmp", QSize(64, 48));
        touch(folder + "/zclip.avi");
        fixture.settings().write("UserDef", "Language", "EN");
        fixture.beforeLoad = [this](frmMain &window) {
            QObject::connect(&window.context(), &ViewerContext::fileShown, [this](const QString &path) {
                shown.append(path);
                listedWhenShown.append(FileCount(fixture.context->FileNames()));
            });
        };
    }

    MainWindowFixture fixture;
    QString folder;
    QStringList shown;
    QList<int> listedWhenShown;
};

TEST_F(EarlyShow, CommandLinePictureIsShownOnceBeforeTheListingEnds)
{
    frmMain &window = fixture.start(folder + "/photo.bmp");

    ASSERT_EQ(shown, QStringList{folder + "/photo.bmp"}); // once: no second showing at the end
    EXPECT_LE(listedWhenShown.at(0), 1);
    // At the end all is as if it had been shown after the listing.
    EXPECT_EQ(fixture.context->CurrentIndex(), Fillers);
    EXPECT_EQ(ui(window).LabNum->text(), QStringLiteral(" %1/%2 ").arg(Fillers + 1).arg(Fillers + 2));
    EXPECT_EQ(ui(window).LabFil->text(), "photo.bmp");
    EXPECT_EQ(window.windowTitle(), " photo.bmp  - Vimora ");
    EXPECT_TRUE(ui(window).LabNum->isVisible());
    EXPECT_TRUE(ui(window).cmdNext->isEnabled());
    EXPECT_TRUE(ui(window).cmdBack->isEnabled());
    EXPECT_EQ(ui(window).ImgEgg->naturalSize(), QSize(64, 48));
    EXPECT_TRUE(fixture.context->FolderSummaryText().startsWith(QString::number(Fillers + 2) + "     "));

    ui(window).cmdNext->click();
    EXPECT_EQ(fixture.context->CurrentFileName(), "zclip.avi");
}

TEST_F(EarlyShow, MovieWaitsForTheList)
{
    fixture.start(folder + "/zclip.avi");
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(listedWhenShown.at(0), Fillers + 2);
    EXPECT_EQ(fixture.context->CurrentIndex(), Fillers + 1);
}

TEST_F(EarlyShow, FileGoneBeforeTheListingShowsTheFirst)
{
    fixture.start(folder + "/nothere.bmp");
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(fixture.context->CurrentFileName(), "f0000.bmp");
    EXPECT_EQ(fixture.context->CurrentIndex(), 0);
}
