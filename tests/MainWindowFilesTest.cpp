#include "core/AppState.h"
#include "files/FileInfoText.h"
#include "files/PlayerRelease.h"
#include "files/TechRen.h"
#include "files/frmList.h"
#include "files/frmMessage.h"
#include "platform/MoviePlayer.h"
#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QSettings>
#include <QTest>

namespace {

struct MainWindowFiles : ThreePicturesWindow {};

} // namespace

TEST_F(MainWindowFiles, AddedFilesAreSavedAtShutdownAndLoadedNextTime)
{
    frmMain &window = start();
    ui(window).cmdAdd->click();
    EXPECT_TRUE(ui(window).cmdList->isEnabled());
    ui(window).cmdList->click();
    frmList &list = window.favourites();
    EXPECT_TRUE(list.isVisible());
    EXPECT_TRUE(fixture.state->ListWindowOpen);
    // Beside the main window, to its right.
    EXPECT_GT(list.x(), window.frameGeometry().right());
    fixture.close();

    QSettings ini(fixture.iniPath(), QSettings::IniFormat);
    EXPECT_EQ(ini.value("Favor/0").toString(), folder + "/b.bmp");
    EXPECT_FALSE(ini.contains("Favor/1"));
}

TEST_F(MainWindowFiles, RenameOntoAnExistingNameIsRefusedWithAMessage)
{
    frmMain &window = start();
    typed = {"c.bmp"};
    ui(window).SFRename->trigger();
    ASSERT_EQ(fixture.prompts.asked.size(), 1);
    EXPECT_TRUE(fixture.prompts.asked[0].text.contains(folder + "/c.bmp"));
    EXPECT_TRUE(QFileInfo::exists(folder + "/b.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "b.bmp", "c.bmp"}));
    EXPECT_EQ(fixture.context->CurrentFileName(), "b.bmp");
}

TEST_F(MainWindowFiles, RenameShowsTheFileUnderItsNewNameAndTheListFollows)
{
    frmMain &window = start();
    ui(window).cmdAdd->click();
    typed = {"b renamed, 'é'.bmp"};
    ui(window).SFRename->trigger();
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
    EXPECT_EQ(fixture.context->CurrentFileName(), "b renamed, 'é'.bmp");
    EXPECT_EQ(window.windowTitle(), " b renamed, 'é'.bmp  - Vimora ");
    EXPECT_TRUE(fixture.context->FileNames().contains("b renamed, 'é'.bmp"));
    EXPECT_EQ(window.favourites().entries(), QStringList{folder + "/b renamed, 'é'.bmp"});

    // A name with a separator is a new path: the file leaves the folder.
    const QString elsewhere = fixture.makeFolder("elsewhere");
    typed = {elsewhere + "/moved.bmp"};
    ui(window).SFRename->trigger();
    EXPECT_TRUE(QFileInfo::exists(elsewhere + "/moved.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "c.bmp"}));
}

TEST_F(MainWindowFiles, RenameWithABackslashMovesTheFileAsASlashWould)
{
    frmMain &window = start();
    const QString elsewhere = fixture.makeFolder("elsewhere");
    typed = {QString(elsewhere + "/moved.bmp").replace('/', '\\')};
    QTest::keyClick(&window, Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QFileInfo::exists(elsewhere + "/moved.bmp"));
    EXPECT_FALSE(QFileInfo::exists(folder + "/b.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "c.bmp"}));
    EXPECT_EQ(RenameTargetOf("/p/old.jpg", "\\q\\new.jpg"), "/q/new.jpg");
}

TEST_F(MainWindowFiles, UnchangedNameOrEscapeRenamesNothing)
{
    MessageCatalogue messages;
    const QList<QPair<int, QString>> keys{{Qt::Key_Return, ""}, {Qt::Key_Escape, ""}};
    for (const auto &[key, expected] : keys) {
        TechRen box("same.jpg", messages);
        EXPECT_EQ(box.txtFile->selectedText(), "same.jpg");
        QTest::keyClick(box.txtFile, Qt::Key(key));
        EXPECT_EQ(box.RenameText(), expected);
    }
    TechRen box("old.jpg", messages);
    box.txtFile->setText("  new.jpg ");
    QTest::keyClick(box.txtFile, Qt::Key_Return);
    EXPECT_EQ(box.RenameText(), "new.jpg");
    EXPECT_EQ(RenameTargetOf("/p/old.jpg", "new.jpg"), "/p/new.jpg");
    EXPECT_EQ(RenameTargetOf("/p/old.jpg", "/q/new.jpg"), "/q/new.jpg");
}

TEST_F(MainWindowFiles, DeleteSendsTheFileToTheTrashAndShowsTheNextOne)
{
    frmMain &window = start();
    ui(window).cmdAdd->click();
    ui(window).SFDelete->trigger(); // the question answered No
    EXPECT_TRUE(QFileInfo::exists(folder + "/b.bmp"));
    fixture.prompts.answers = {PromptAnswer::Yes};
    ui(window).SFDelete->trigger();
    EXPECT_FALSE(QFileInfo::exists(folder + "/b.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "c.bmp"}));
    EXPECT_EQ(fixture.context->CurrentFileName(), "c.bmp");
    EXPECT_TRUE(window.favourites().entries().isEmpty());
}

TEST_F(MainWindowFiles, InformationShowsThePanelOrReportsAMissingFile)
{
    frmMain &window = start();
    ui(window).SFInfo->trigger();
    auto *panel = window.findChild<frmMessage *>();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->labNome->text(), "b.bmp");
    EXPECT_EQ(panel->txtFile->text(), folder + "/b.bmp");
    EXPECT_EQ(panel->LabTipo->text(), "Bitmap");
    EXPECT_TRUE(panel->LabMsg->text().contains("\r\n\r\n" + ui(window).LabSiz->text().trimmed() + "\r\n\r\n"));
    panel->CmdOk->click();

    QFile::remove(folder + "/b.bmp");
    ui(window).SFInfo->trigger();
    ASSERT_EQ(fixture.prompts.asked.size(), 1);
    EXPECT_EQ(fixture.prompts.asked[0].text, "File Not Found !\r\n\r\n" + folder + "/b.bmp");
    EXPECT_EQ(fixture.prompts.asked[0].icon, PromptIcon::Critical);
}

TEST_F(MainWindowFiles, MoveTakesTheFileAwayAndShowsTheNextOne)
{
    frmMain &window = start();
    const QString target = fixture.makeFolder("target");
    fixture.prompts.folders = {target};
    ui(window).mnuMove->trigger();
    EXPECT_TRUE(QFileInfo::exists(target + "/b.bmp"));
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "c.bmp"}));
    EXPECT_EQ(fixture.context->CurrentFileName(), "c.bmp");
}

TEST_F(MainWindowFiles, RenamedPlayingMovieResumesWhereItWas)
{
    const QString clip = TestClips::clip("avi");
    if (clip.isEmpty())
        GTEST_SKIP() << "ffmpeg could not make a test clip";
    QFile::copy(clip, folder + "/clip.avi");
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/clip.avi");
    window.setRenameBox([](const QRect &, const QString &) { return QStringLiteral("clip renamed.avi"); });
    MoviePlayer *player = ui(window).MediaPlayer1;
    ASSERT_TRUE(QTest::qWaitFor([&] { return player->CurrentPosition() > 0.4; }, 5000));
    player->Pause();
    const double at = player->CurrentPosition();

    ui(window).SFRename->trigger();
    EXPECT_EQ(player->FileName(), folder + "/clip renamed.avi");
    EXPECT_TRUE(QTest::qWaitFor([&] { return player->PlayState() == MoviePlayer::Playing; }, 5000));
    EXPECT_GE(player->CurrentPosition(), at - 0.1);
}

TEST(FileInfoText, TypeDescriptionsAndDetail)
{
    MessageCatalogue messages;
    struct Case {
        const char *code, *description;
        bool iconIsFile;
    };
    const Case cases[] = {
        {"MPEG", "MPEG Movie", false}, {"ASX", "ASF Stream Locator", false}, {"RAM", "Real Media", false},
        {"QT", "QuickTime Movie", false}, {"PPS", "PowerPoint", false}, {"ICO", "Icon", true},
        {"JPG", "JPEG", false}, {"IFO", "DVD IFO", false}, {"GIF", "", false},
    };
    for (const Case &c : cases) {
        const FileInfoText::TypeLook look = FileInfoText::lookOf(c.code, messages);
        EXPECT_EQ(look.description, c.description) << c.code;
        EXPECT_EQ(look.iconIsFile, c.iconIsFile) << c.code;
        EXPECT_FALSE(look.fallbackIcon.isEmpty()) << c.code;
    }
    const QString detail = FileInfoText::detailText("640 x 480", "1.500 K", QDateTime(QDate(2024, 5, 6), QTime(7, 8)));
    EXPECT_TRUE(detail.startsWith(" (640 x 480)\r\n\r\n1.500 K\r\n\r\n")) << detail.toStdString();
    EXPECT_GT(detail.size(), QString(" (640 x 480)\r\n\r\n1.500 K\r\n\r\n").size());
}

TEST(PlayerRelease, OnlyThePlayerHoldingThePathLetsGo)
{
    const QString clip = TestClips::clip("mpg");
    if (clip.isEmpty())
        GTEST_SKIP() << "ffmpeg could not make a test clip";
    MemorySettingsStore settings;
    MessageCatalogue messages;
    AppState state(settings, messages);
    ViewerContext context(messages);
    QStringList indexAsked;
    state.ReleaseIndexPlayers = [&](const QString &path) { indexAsked.append(path); };
    MoviePlayer player;
    player.setFileName(clip);
    context.setMainMovieLoaded(true);

    EXPECT_FALSE(ReleasePlayerFile(clip + ".other", state, context, &player)); // exact names only
    EXPECT_EQ(player.FileName(), clip);
    EXPECT_TRUE(context.MainMovieLoaded());

    EXPECT_TRUE(ReleasePlayerFile(clip, state, context, &player));
    EXPECT_EQ(player.FileName(), "");
    EXPECT_FALSE(player.hasEngine());
    EXPECT_FALSE(context.MainMovieLoaded());
    EXPECT_EQ(indexAsked, QStringList({clip + ".other", clip}));
}

TEST_F(MainWindowFiles, KeysReachTheFileCommands)
{
    frmMain &window = start();
    const QString shown = folder + "/b.bmp";

    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(window.favourites().entries(), QStringList{shown});
    QTest::keyClick(&window, Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(window.favourites().entries().isEmpty());
    QTest::keyClick(&window, Qt::Key_G, Qt::AltModifier);
    EXPECT_TRUE(window.favourites().isVisible());

    QTest::keyClick(&window, Qt::Key_I, Qt::AltModifier);
    EXPECT_NE(window.findChild<frmMessage *>(), nullptr);

    typed = {"b2.bmp"};
    QTest::keyClick(&window, Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QFileInfo::exists(folder + "/b2.bmp"));

    // Delete and Alt+D ask first; No (the scripted default) keeps the file.
    for (const auto &[key, modifier] : {std::pair{Qt::Key_Delete, Qt::NoModifier}, {Qt::Key_D, Qt::AltModifier}}) {
        const qsizetype before = fixture.prompts.asked.size();
        QTest::keyClick(&window, key, modifier);
        EXPECT_EQ(fixture.prompts.asked.size(), before + 1);
        EXPECT_TRUE(QFileInfo::exists(folder + "/b2.bmp"));
    }
}
