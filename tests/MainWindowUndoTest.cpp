#include "files/frmList.h"
#include "index/frmIndex.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QListWidget>
#include <QPushButton>
#include <QDir>
#include <QMenu>
#include <QTest>

namespace {

// The three pictures' window, b.bmp on the favourites list.
struct MainWindowUndo : ThreePicturesWindow {
    frmMain &start()
    {
        frmMain &window = ThreePicturesWindow::start();
        QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
        return window;
    }
    void undo(frmMain &window) { QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier); }
    void expectBShownAsBefore(frmMain &window)
    {
        EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "b.bmp", "c.bmp"}));
        EXPECT_EQ(window.windowTitle(), " b.bmp  - Vimora ");
        EXPECT_EQ(ui(window).LabNum->text().trimmed(), "2/3");
        EXPECT_EQ(window.favourites().entries(), QStringList{folder + "/b.bmp"});
    }
};

} // namespace

TEST_F(MainWindowUndo, CtrlZBringsAFileBackFromTheTrash)
{
    frmMain &window = start();
    undo(window); // nothing done yet: nothing happens
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());

    fixture.prompts.answers = {PromptAnswer::Yes};
    QTest::keyClick(&window, Qt::Key_Delete);
    ASSERT_FALSE(QFileInfo::exists(folder + "/b.bmp"));
    ASSERT_EQ(window.windowTitle(), " c.bmp  - Vimora ");
    ASSERT_TRUE(window.favourites().entries().isEmpty());

    undo(window);
    EXPECT_TRUE(QFileInfo::exists(folder + "/b.bmp"));
    expectBShownAsBefore(window);
    EXPECT_TRUE(QDir(QString::fromLocal8Bit(qgetenv("XDG_DATA_HOME")) + "/Trash/info")
                    .entryList({"b*.trashinfo"}, QDir::Files)
                    .isEmpty());
    undo(window); // put back once only
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"a.bmp", "b.bmp", "c.bmp"}));
}

TEST_F(MainWindowUndo, CtrlZMovesAFileBackAndRenamesItBack)
{
    frmMain &window = start();
    const QString target = fixture.makeFolder("target");
    fixture.prompts.folders = {target};
    QTest::keyClick(&window, Qt::Key_M, Qt::AltModifier);
    ASSERT_TRUE(QFileInfo::exists(target + "/b.bmp"));
    ASSERT_EQ(window.favourites().entries(), QStringList{target + "/b.bmp"});
    undo(window);
    EXPECT_FALSE(QFileInfo::exists(target + "/b.bmp"));
    expectBShownAsBefore(window);

    typed = {"renamed.bmp"};
    QTest::keyClick(&window, Qt::Key_N, Qt::AltModifier);
    ASSERT_EQ(window.windowTitle(), " renamed.bmp  - Vimora ");
    undo(window);
    EXPECT_FALSE(QFileInfo::exists(folder + "/renamed.bmp"));
    expectBShownAsBefore(window);
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
}

TEST_F(MainWindowUndo, AFileThatTookTheOldNameStaysUnlessTheUserSaysReplace)
{
    frmMain &window = start();
    typed = {"renamed.bmp"};
    QTest::keyClick(&window, Qt::Key_N, Qt::AltModifier);
    ASSERT_TRUE(QFile::copy(folder + "/a.bmp", folder + "/b.bmp")); // another program takes the name

    undo(window); // No, the default
    ASSERT_EQ(fixture.prompts.asked.size(), 1);
    EXPECT_EQ(fixture.prompts.asked[0].text, "file : " + folder + "/b.bmp\r\n\r\nALREADY EXISTING ... REPLACE ?");
    EXPECT_TRUE(QFileInfo::exists(folder + "/renamed.bmp"));
    EXPECT_EQ(QFileInfo(folder + "/b.bmp").size(), QFileInfo(folder + "/a.bmp").size());

    fixture.prompts.answers = {PromptAnswer::Yes};
    undo(window); // asked again, as the chore was kept
    EXPECT_EQ(fixture.prompts.asked.size(), 2);
    EXPECT_FALSE(QFileInfo::exists(folder + "/renamed.bmp"));
    expectBShownAsBefore(window);
}

TEST_F(MainWindowUndo, ThePopupsOfferUndoOnceThereIsAChore)
{
    frmMain &window = start();
    emit ui(window).SFPOPUP->aboutToShow();
    EXPECT_FALSE(ui(window).mnuUndo->isEnabled());
    EXPECT_EQ(ui(window).mnuUndo->text(), "Undo");

    // A deletion in the favourites window, put back from its own popup.
    frmList &list = window.favourites();
    fixture.prompts.answers = {PromptAnswer::Yes};
    ui(list).cmdDel->setEnabled(true);
    ui(list).ListImage->item(0)->setSelected(true);
    ui(list).cmdDel->click();
    ASSERT_FALSE(QFileInfo::exists(folder + "/b.bmp"));
    emit ui(window).SFPOPUP->aboutToShow();
    EXPECT_TRUE(ui(window).mnuUndo->isEnabled());
    emit ui(list).SFPOPUP->aboutToShow();
    ASSERT_TRUE(ui(list).mnuUndo->isEnabled());
    EXPECT_EQ(ui(list).mnuUndo->text(), "Undo");
    ui(list).mnuUndo->trigger();
    EXPECT_TRUE(QFileInfo::exists(folder + "/b.bmp"));
    expectBShownAsBefore(window);

    // A deletion in the thumbnail index, put back by Ctrl+Z there.
    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 20000));
    fixture.prompts.answers = {PromptAnswer::Yes};
    index.onDelete(folder + "/a.bmp");
    ASSERT_FALSE(QFileInfo::exists(folder + "/a.bmp"));
    emit ui(index).SFPOPUP->aboutToShow();
    EXPECT_TRUE(ui(index).mnuUndo->isEnabled());
    EXPECT_EQ(ui(index).mnuUndo->text(), "Undo");
    QTest::keyClick(&index, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(QFileInfo::exists(folder + "/a.bmp"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !index.pageLoading() && index.cellOfPath(folder + "/a.bmp") >= 0; }, 20000));
}

TEST_F(MainWindowUndo, TheUndoEntriesSpeakTheUsersLanguage)
{
    frmMain &window = start();
    ui(window).cmdIndex->click();
    frmIndex &index = *window.indexWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index.pageLoading(); }, 20000));
    for (const auto &[language, text] : {std::pair{"IT", "Annulla"}, std::pair{"EN", "Undo"}}) {
        fixture.prompts.languages = {language};
        QTest::keyClick(&window, Qt::Key_F2);
        EXPECT_EQ(ui(window).mnuUndo->text(), text) << language;
        EXPECT_EQ(ui(window.favourites()).mnuUndo->text(), text) << language;
        EXPECT_EQ(ui(index).mnuUndo->text(), text) << language;
    }
}
