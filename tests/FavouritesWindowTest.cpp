#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "files/Favourites.h"
#include "files/FileCommands.h"
#include "files/frmList.h"
#include "support/FakeSeams.h"
#include "support/WindowProbe.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class FakeHost : public FavouritesHost {
public:
    QString folder, path;
    QStringList calls;
    QString shownFolder() const override { return folder; }
    QString shownPath() const override { return path; }
    QRect mainFrame() const override { return {100, 100, 800, 600}; }
    void refreshFileList() override { calls << "refresh"; }
    void showFile(const QString &shown) override { calls << "show " + shown; }
    void forgetShownFile() override { calls << "forget"; }
    void setAddEnabled(bool on) override { calls << QString("add %1").arg(on); }
    void setListEnabled(bool on) override { calls << QString("list %1").arg(on); }
    void pauseSlideshow() override {}
    void resumeSlideshow() override {}
    void releasePlayers(const QString &released) override { calls << "release " + released; }
    QList<UndoRecord> chores;
    void recordChore(UndoRecord record) override
    {
        if (!record.steps.isEmpty())
            chores.append(record);
    }
    bool canUndo() const override { return !chores.isEmpty(); }
    void undo() override { calls << "undo"; }
    void switchLanguage() override { calls << "language"; }
};

struct FavouritesWindow : ::testing::Test {
    QTemporaryDir root;
    MemorySettingsStore settings;
    MessageCatalogue messages;
    AppState state{settings, messages};
    ScriptedPrompts prompts;
    FakeHost host;
    QList<QPair<QString, bool>> marks;
    std::unique_ptr<frmList> list;

    frmList &open()
    {
        state.MarkIndexThumbnail = [this](const QString &path, bool on) { marks.append({path, on}); };
        list = std::make_unique<frmList>(state, prompts, host);
        return *list;
    }
    QString file(const QString &name, qint64 bytes = 3)
    {
        const QString path = root.path() + '/' + name;
        QDir().mkpath(QFileInfo(path).path());
        QFile made(path);
        made.open(QIODevice::WriteOnly);
        made.write(QByteArray(bytes, 'x'));
        return path;
    }
    void store(std::initializer_list<std::pair<const char *, const char *>> keys)
    {
        for (const auto &[key, value] : keys)
            settings.sections["Favor"][key] = value;
    }
    QList<bool> enabledButtons() const
    {
        QList<bool> on;
        for (QWidget *control : std::initializer_list<QWidget *>{ui(list).cmdAll, ui(list).cmdSave, ui(list).cmdMove,
                                                                 ui(list).cmdDel, ui(list).Check1})
            on.append(control->isEnabled());
        return on;
    }
};

} // namespace

TEST_F(FavouritesWindow, AddingTheSamePathInOtherCaseMovesItToTheEnd)
{
    frmList &window = open();
    EXPECT_EQ(enabledButtons(), QList<bool>({false, false, false, false, false}));
    window.Inserisci_Lista("/a/x.jpg");
    window.Inserisci_Lista("/b/y, \"z\".jpg");
    window.Inserisci_Lista("/A/X.JPG");
    EXPECT_EQ(window.entries(), QStringList({"/b/y, \"z\".jpg", "/A/X.JPG"}));
    EXPECT_EQ(window.selectedEntries(), window.entries());
    EXPECT_EQ(enabledButtons(), QList<bool>({true, true, true, true, true}));
    EXPECT_EQ(marks.last(), qMakePair(QString("/A/X.JPG"), true));
}

TEST_F(FavouritesWindow, GapInStoredKeysEndsTheListAndSaveDeletesOneKeyMore)
{
    store({{"0", "/p/a.jpg"}, {"1", "/p/b.jpg"}, {"2", "/p/c.jpg"}, {"4", "/p/e.jpg"}, {"5", "/p/f.jpg"}});
    frmList &window = open();
    EXPECT_EQ(window.entries(), QStringList({"/p/a.jpg", "/p/b.jpg", "/p/c.jpg"}));
    EXPECT_EQ(window.selectedEntries().size(), 3);
    EXPECT_EQ(window.FavouritesStoredCount, 3);
    EXPECT_TRUE(host.calls.contains("list 1"));

    window.RemoveFromFavourites("/P/A.JPG");
    window.RemoveFromFavourites("/p/c.jpg");
    window.SaveFavourites();
    // Keys 0 to 3 go, the one entry is written as 0, and 4 and 5 stay
    // behind the gap, never read again.
    const QMap<QString, QString> expected{{"0", "/p/b.jpg"}, {"4", "/p/e.jpg"}, {"5", "/p/f.jpg"}};
    EXPECT_EQ(settings.sections["Favor"], expected);
    EXPECT_EQ(Favourites::load(settings), QStringList({"/p/b.jpg"}));
}

TEST_F(FavouritesWindow, EmptyListStoresAndLoadsNothing)
{
    frmList &window = open();
    window.SaveFavourites();
    EXPECT_TRUE(settings.writeLog.isEmpty());
    EXPECT_EQ(window.FavouritesStoredCount, 0);
    EXPECT_EQ(ui(window).LabSel->text(), "");
}

TEST_F(FavouritesWindow, SizeLabelAndSelectAll)
{
    const QString a = file("a.jpg", 1024), b = file("b.jpg", 512);
    frmList &window = open();
    window.Inserisci_Lista(a);
    window.Inserisci_Lista(b);
    window.Inserisci_Lista(root.path() + "/gone.jpg");
    EXPECT_EQ(ui(window).LabSel->text(), "Size of selected files : 2 K");

    ui(window).Check1->click(); // checked: all selected
    ui(window).Check1->click(); // unchecked: none
    EXPECT_TRUE(window.selectedEntries().isEmpty());
    EXPECT_FALSE(ui(window).cmdDel->isEnabled());
    EXPECT_EQ(ui(window).LabSel->text(), "");
    ui(window).Check1->click();
    EXPECT_EQ(window.selectedEntries().size(), 3);
    EXPECT_TRUE(ui(window).cmdDel->isEnabled());
}

TEST_F(FavouritesWindow, DeletingASelectionOfThreeAsksOnceAndDropsThem)
{
    const QString shown = file("pics/shown.jpg"), other = file("pics/other one.avi"), far = file("far/é.bmp"),
                  kept = file("pics/kept.jpg");
    host.folder = root.path() + "/pics";
    host.path = shown;
    frmList &window = open();
    for (const QString &path : {shown, other, kept, far})
        window.Inserisci_Lista(path);
    ui(window).ListImage->item(2)->setSelected(false); // kept.jpg
    window.show();

    const QByteArray previous = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", (root.path() + "/data").toUtf8());
    prompts.answers = {PromptAnswer::Yes};
    ui(window).cmdDel->click();
    qputenv("XDG_DATA_HOME", previous);

    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.contains('3'));
    EXPECT_EQ(window.entries(), QStringList{kept});
    for (const QString &path : {shown, other, far})
        EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_TRUE(QFileInfo::exists(root.path() + "/data/Trash/files/é.bmp"));
    EXPECT_TRUE(host.calls.contains("release " + other));
    EXPECT_TRUE(host.calls.contains("forget"));
    EXPECT_EQ(host.calls.last(), "refresh");
    EXPECT_FALSE(window.isVisible());
}

TEST_F(FavouritesWindow, MissingFilesAreReportedAndOfferedForRemoval)
{
    const QString here = file("here.jpg");
    frmList &window = open();
    window.Inserisci_Lista(root.path() + "/gone one.jpg");
    window.Inserisci_Lista(root.path() + "/gone two.jpg");
    window.Inserisci_Lista(here);
    // gone one: OK, remove? Yes; gone two: OK, remove? No; then the trash question, No.
    prompts.answers = {PromptAnswer::Ok, PromptAnswer::Yes, PromptAnswer::Ok, PromptAnswer::No, PromptAnswer::No};
    window.show();
    ui(window).cmdDel->click();
    EXPECT_FALSE(window.isVisible()); // Delete closes the window whatever was answered
    ASSERT_EQ(prompts.asked.size(), 5);
    EXPECT_EQ(prompts.asked[0].text, "File Not Found !\r\n\r\n" + root.path() + "/gone one.jpg");
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Critical);
    EXPECT_EQ(prompts.asked[1].text, "Remove from list ?\r\n\r\n" + root.path() + "/gone one.jpg");
    EXPECT_EQ(window.entries(), QStringList({root.path() + "/gone two.jpg", here}));
    EXPECT_TRUE(QFileInfo::exists(here));
}

TEST_F(FavouritesWindow, DecliningTheTrashKeepsEveryEntryAndClosesTheWindow)
{
    const QString kept = file("kept.jpg"), vanishing = file("vanishing.jpg");
    frmList &window = open();
    window.Inserisci_Lista(kept);
    window.Inserisci_Lista(vanishing);
    window.show();
    // Another program removes one file while the trash question is up; the user says No.
    prompts.beforeAnswer = [&](const PromptMessage &) { QFile::remove(vanishing); };
    prompts.answers = {PromptAnswer::No};
    ui(window).cmdDel->click();
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(window.entries(), QStringList({kept, vanishing}));
    EXPECT_TRUE(QFileInfo::exists(kept));
    EXPECT_FALSE(window.isVisible());
}

TEST_F(FavouritesWindow, MovingASelectionAsksPerConflictAndCancelStops)
{
    const QString a = file("from/a.jpg"), b = file("from/b.jpg"), c = file("from/c.jpg"), d = file("from/d.jpg");
    file("to/b.jpg");
    file("to/c.jpg");
    frmList &window = open();
    for (const QString &path : {a, b, c, d})
        window.Inserisci_Lista(path);
    prompts.folders = {root.path() + "/to"};
    prompts.answers = {PromptAnswer::No, PromptAnswer::Cancel}; // b kept where it is; c stops the rest
    ui(window).cmdMove->click();
    ASSERT_EQ(prompts.asked.size(), 2);
    EXPECT_EQ(prompts.asked[0].buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(prompts.asked[0].defaultButton, 2);
    EXPECT_EQ(window.entries(), QStringList({root.path() + "/to/a.jpg", b, c, d}));
    EXPECT_TRUE(QFileInfo::exists(b) && QFileInfo::exists(c) && QFileInfo::exists(d));
    EXPECT_FALSE(QFileInfo::exists(a));
}

TEST_F(FavouritesWindow, RenameOntoAnExistingNameIsRefused)
{
    const QString a = file("a.jpg"), b = file("b.jpg");
    frmList &window = open();
    window.Inserisci_Lista(a);
    QString offered;
    QStringList typed{"b.jpg", "  c, \"new\".jpg  ", "c, \"new\".jpg"};
    window.setRenameBox([&](const QRect &, const QString &name) {
        offered = name;
        return typed.takeFirst().trimmed();
    });
    window.ListClickIndex = 0;
    window.mnuRename_Click();
    EXPECT_EQ(offered, "a.jpg");
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_TRUE(prompts.asked[0].text.contains(b));
    EXPECT_EQ(window.entries(), QStringList{a});
    EXPECT_TRUE(QFileInfo::exists(a));

    window.mnuRename_Click();
    EXPECT_EQ(window.entries(), QStringList{root.path() + "/c, \"new\".jpg"});
    EXPECT_TRUE(QFileInfo::exists(root.path() + "/c, \"new\".jpg"));
}

TEST_F(FavouritesWindow, ClearAsksAndClosingOnlyHides)
{
    frmList &window = open();
    window.Inserisci_Lista("/x/a.jpg");
    ui(window).cmdAll->click(); // answered No
    EXPECT_EQ(window.entries().size(), 1);
    prompts.answers = {PromptAnswer::Yes};
    ui(window).cmdAll->click();
    EXPECT_TRUE(window.entries().isEmpty());
    EXPECT_EQ(prompts.asked.last().text, "Clear List ?");
    EXPECT_TRUE(host.calls.contains("add 1"));
    EXPECT_EQ(marks.last(), qMakePair(QString("/x/a.jpg"), false));

    state.ListWindowOpen = true;
    window.show();
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(state.ListWindowOpen);
    EXPECT_EQ(window.entries().size(), 0);
}

TEST(IndexMarks, CellShowingAPathFirstMatchInAnyCase)
{
    const QStringList players{"", "/m/clip.avi", "", "/m/CLIP.AVI"};
    const QStringList tags{"/p/a.jpg / 640 x 480", "", "/p/b.jpg", ""};
    EXPECT_EQ(FileCommands::cellShowing(players, tags, "/P/A.JPG"), 0);
    EXPECT_EQ(FileCommands::cellShowing(players, tags, "/m/clip.avi"), 1);
    EXPECT_EQ(FileCommands::cellShowing(players, tags, "/p/b.jpg"), 2);
    EXPECT_EQ(FileCommands::cellShowing(players, tags, "/p/a.jpg / 640 x 480"), -1);
    EXPECT_EQ(FileCommands::cellShowing(players, tags, ""), -1); // empty cells never match
}

TEST_F(FavouritesWindow, IndexStyleInformationOnAMissingFile)
{
    const FileContext context{prompts, messages, {}, {}};
    EXPECT_EQ(FileCommands::showInfo(nullptr, state, context, "/gone/x.jpg", {}, "JPG", true), nullptr);
    ASSERT_EQ(prompts.asked.size(), 1);
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Critical);
    EXPECT_EQ(prompts.asked[0].defaultButton, 2);
}
