#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "files/HelpWindow.h"
#include "files/TechCre.h"
#include "system/TechLink.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QFileSystemModel>
#include <QGroupBox>
#include <QMenu>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

namespace {

void copyHelpPages(const QString &programFolder)
{
    for (const char *page : {"PR_EN.html", "PR_IT.html"})
        QFile::copy(QStringLiteral(VIMORA_SOURCE_DIR "/resources/") + page, programFolder + page);
}

TEST(MainWindowLaunch, ShellOpenIsOfferedUnlessTheTypeIsLinked)
{
    MainWindowFixture fixture;
    fixture.makeFiles(fixture.programFolder(), {"a.jpg", "b.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("Linked", "JPG", "Y");
    frmMain &window = fixture.start();
    EXPECT_EQ(fixture.state->LinkedTypes, QSet<QString>({"JPG"}));

    // The popup as the right button opens it.
    const auto openPopup = [&] {
        QTest::mousePress(ui(window).ImgEgg, Qt::RightButton, {}, {5, 5}, QApplication::doubleClickInterval() + 10);
        QTest::mouseRelease(ui(window).ImgEgg, Qt::RightButton, {}, {5, 5});
        ASSERT_TRUE(ui(window).SFPOPUP->isVisible());
        ui(window).SFPOPUP->hide();
    };
    openPopup();
    EXPECT_FALSE(ui(window).mnuShellOpen->isVisible());
    EXPECT_TRUE(ui(window).mnuShellEdit->isVisible());

    window.cmdNext_Click();
    openPopup();
    EXPECT_TRUE(ui(window).mnuShellOpen->isVisible());
    EXPECT_TRUE(ui(window).mnuShellOpen->isEnabled());

    ui(window).mnuShellOpen->trigger();
    ASSERT_EQ(fixture.launcher.started.size(), 1);
    EXPECT_EQ(fixture.launcher.started[0].first, "xdg-open");
    EXPECT_EQ(fixture.launcher.started[0].second, QStringList{fixture.programFolder() + "b.bmp"});
}

TEST(MainWindowLaunch, FolderPopupShowsAndExploresTheEntryItWasOpenedOver)
{
    MainWindowFixture fixture;
    const QString photos = fixture.makeFolder("program/photos");
    fixture.makeFiles(photos, {"p.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();
    EXPECT_TRUE(ui(window).mnuDirOpen->isEnabled());
    EXPECT_TRUE(ui(window).mnuDirExpl->isEnabled());

    // The pop-up is opened over the photos entry while the browsed folder is its parent.
    auto *model = qobject_cast<QFileSystemModel *>(ui(window).Dir1->model());
    ASSERT_NE(model, nullptr);
    const QModelIndex entry = model->index(photos);
    ui(window).Dir1->scrollTo(entry);
    QCoreApplication::processEvents();
    EXPECT_EQ(fixture.context->CurrentFolder() + '/', fixture.programFolder());
    emit ui(window).Dir1->customContextMenuRequested(ui(window).Dir1->visualRect(entry).center());
    ui(window).DIRPOPUP->close();

    ui(window).mnuDirExpl->trigger();
    ASSERT_EQ(fixture.launcher.started.size(), 1);
    EXPECT_EQ(fixture.launcher.started[0].second, QStringList{photos});

    ui(window).mnuDirOpen->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(fixture.context->CurrentFolder(), photos);
}

TEST(MainWindowLaunch, HelpShowsThePageOfTheCurrentLanguage)
{
    MainWindowFixture fixture;
    copyHelpPages(fixture.programFolder());
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();

    ui(window).cmdHelp->click();
    HelpWindow *help = window.helpWindow();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_TRUE(help->txtHelp->source().toLocalFile().endsWith("/PR_EN.html"));
    EXPECT_TRUE(help->txtHelp->toPlainText().contains("Thumbnail index"));

    fixture.prompts.languages = {"IT"};
    QTest::keyClick(&window, Qt::Key_F2);
    QTest::keyClick(&window, Qt::Key_F1);
    EXPECT_EQ(window.helpWindow(), help);
    EXPECT_TRUE(help->txtHelp->source().toLocalFile().endsWith("/PR_IT.html"));
    EXPECT_TRUE(help->txtHelp->toPlainText().contains("Indice delle miniature"));
    help->close();
}

TEST(MainWindowLaunch, MissingHelpFileIsSaidInTheHelpWindow)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();
    window.cmdHelp_Click();
    ASSERT_NE(window.helpWindow(), nullptr);
    EXPECT_TRUE(window.helpWindow()->txtHelp->toPlainText().startsWith("The help file was not found:"));
    EXPECT_TRUE(window.helpWindow()->txtHelp->toPlainText().contains("PR_EN.html"));
    window.helpWindow()->close();
}

TEST(MainWindowLaunch, AboutBoxShowsVersionAndOpensTheHomePage)
{
    for (const char *language : {"EN", "IT"}) {
        MainWindowFixture fixture;
        fixture.settings().write("UserDef", "Language", language);
        frmMain &window = fixture.start();
        ui(window).ChkCicle->setChecked(true);

        bool seen = false;
        QTimer::singleShot(0, [&] {
            auto *about = qobject_cast<TechCre *>(QApplication::activeModalWidget());
            ASSERT_NE(about, nullptr);
            EXPECT_FALSE(ui(window).TimerImage->isActive()); // the slideshow waits
            seen = true;
            if (QString(language) == "EN") {
                EXPECT_EQ(about->windowTitle(), "About");
                EXPECT_EQ(about->LabVers->text(), "Version 2.1");
                EXPECT_EQ(about->LabHome->text(), "Visit the Vimora Home Page");
            } else {
                EXPECT_EQ(about->windowTitle(), "Informazioni");
                EXPECT_EQ(about->LabVers->text(), "Versione 2.1");
            }
            QTest::mouseClick(about->LabHome, Qt::LeftButton);
            about->CmdOk->click();
        });
        ui(window).cmdAbout->click();
        EXPECT_TRUE(seen) << language;
        EXPECT_TRUE(ui(window).TimerImage->isActive());
        ASSERT_EQ(fixture.launcher.started.size(), 1);
        EXPECT_EQ(fixture.launcher.started[0].second, QStringList{"https://vimora.org/"});
    }
}

TEST(MainWindowLaunch, AssociationDialogEnablesOkOnAClickAndStoresTheMarks)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    fixture.settings().write("Linked", "AVI", "Y");
    frmMain &window = fixture.start();

    bool seen = false;
    QTimer::singleShot(0, [&] {
        auto *link = qobject_cast<TechLink *>(QApplication::activeModalWidget());
        ASSERT_NE(link, nullptr);
        seen = true;
        EXPECT_EQ(link->Frame1->title(), "Set as default player for file types:");
        EXPECT_EQ(link->checkBoxes.size(), 13);
        EXPECT_TRUE(link->checkBoxes["AVI"]->isChecked());
        EXPECT_FALSE(link->checkBoxes["JPG"]->isChecked());
        EXPECT_FALSE(link->CmdOk->isEnabled());
        link->checkBoxes["GIF"]->click();
        link->checkBoxes["AVI"]->click();
        EXPECT_TRUE(link->CmdOk->isEnabled());
        link->CmdOk->click();
    });
    ui(window).cmdLink->click();
    EXPECT_TRUE(seen);
    EXPECT_EQ(fixture.state->LinkedTypes, QSet<QString>({"GIF"}));
    EXPECT_EQ(fixture.settings().read("Linked", "GIF"), "Y");
    EXPECT_EQ(fixture.settings().read("Linked", "AVI"), "N");
}

TEST(MainWindowLaunch, AssociationDialogEscapeChangesNothingAndF1OpensHelp)
{
    MainWindowFixture fixture;
    copyHelpPages(fixture.programFolder());
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();

    QTimer::singleShot(0, [&] {
        auto *link = qobject_cast<TechLink *>(QApplication::activeModalWidget());
        ASSERT_NE(link, nullptr);
        QTest::keyClick(link, Qt::Key_F1);
        link->checkBoxes["JPG"]->click();
        QTest::keyClick(link, Qt::Key_Escape);
    });
    window.cmdLink_Click();
    ASSERT_NE(window.helpWindow(), nullptr);
    EXPECT_TRUE(window.helpWindow()->isVisible());
    EXPECT_TRUE(fixture.state->LinkedTypes.isEmpty());
    EXPECT_EQ(fixture.settings().read("Linked", "JPG", "unset"), "unset");
    window.helpWindow()->close();
}

} // namespace
