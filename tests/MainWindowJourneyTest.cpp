// What a user meets in the first minutes with the main window and the
// windows around it, reached by the same keys and clicks.
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "files/TechCre.h"
#include "files/frmList.h"
#include "fullscreen/frmFull.h"
#include "index/frmIndex.h"
#include "system/TechLink.h"
#include "viewer/LaunchPause.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProgressDialog>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>
#include <QTimer>

namespace {

struct Journey : ::testing::Test {
    MainWindowFixture fixture;
    QString folder = fixture.makeFolder("pictures");

    frmMain &start(const QString &name = "a.bmp")
    {
        fixture.makeFiles(folder, {"a.bmp", "b.bmp"});
        fixture.settings().write("UserDef", "Language", "EN");
        return fixture.start(folder + '/' + name);
    }
    // Double-clicks the window where the point lies, on whatever is there.
    static void doubleClickAt(frmMain &window, QPoint at)
    {
        QWidget *target = window.childAt(at);
        if (!target)
            target = &window;
        QTest::mouseDClick(target, Qt::LeftButton, {}, target->mapFrom(&window, at));
    }
    static bool fullScreenUp(frmMain &window)
    {
        return QTest::qWaitFor([&] { return window.fullView() && window.fullView()->isVisible(); }, 3000);
    }
};

// What a screen reader says a label is.
QString spokenName(QWidget *label)
{
    QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(label);
    return spoken ? spoken->text(QAccessible::Name) : QString();
}

// A label's text as it shows: markup and mnemonic marks left out.
QString shownText(const QLabel *label)
{
    QString text = label->text();
    if (label->textFormat() == Qt::RichText || Qt::mightBeRichText(text)) {
        QTextDocument document;
        document.setHtml(text);
        text = document.toPlainText();
    }
    return text.remove('&');
}

} // namespace

TEST_F(Journey, DoubleClickOnTheBackgroundOrTheTopFrameOpensFullScreen)
{
    frmMain &window = start();
    window.resize(900, 700);
    // Beside the picture, below the controls: nothing but the window's backdrop.
    const QPoint background(4, window.height() / 2);
    ASSERT_TRUE(window.childAt(background) == nullptr || window.childAt(background) == ui(window).ImgWall);
    doubleClickAt(window, background);
    ASSERT_TRUE(fullScreenUp(window));
    QTest::keyClick(window.fullView(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.fullView() || !window.fullView()->isVisible(); }, 3000));

    // The top frame, left of the controls.
    const QPoint topFrame = ui(window).FraFondoTop->geometry().topLeft() + QPoint(2, 2);
    ASSERT_TRUE(window.childAt(topFrame) == ui(window).FraFondoTop || window.childAt(topFrame) == ui(window).Frame1);
    doubleClickAt(window, topFrame);
    EXPECT_TRUE(fullScreenUp(window));
}

TEST_F(Journey, DoubleClickOnTheStatusRowStaysInTheWindow)
{
    frmMain &window = start();
    doubleClickAt(window, ui(window).LabNum->mapTo(&window, QPoint(2, 2)));
    QCoreApplication::processEvents();
    EXPECT_FALSE(window.fullView() && window.fullView()->isVisible());
}

TEST_F(Journey, MinimisingTheMainWindowTakesTheIndexAndFavouritesAlongAndRestoringBringsThemBack)
{
    frmMain &window = start();
    ui(window).cmdIndex->click();
    frmIndex *index = window.indexWindow();
    ASSERT_NE(index, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return index->isVisible(); }, 20000));
    ui(window).cmdAdd->click();
    ui(window).cmdList->click();
    ASSERT_TRUE(window.favourites().isVisible());

    window.showMinimized();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !index->isVisible() && !window.favourites().isVisible(); }, 3000));
    window.showNormal();
    EXPECT_TRUE(QTest::qWaitFor([&] { return index->isVisible() && window.favourites().isVisible(); }, 3000));
}

TEST_F(Journey, MinimisingTheMainWindowTakesTheAssociationDialogAlong)
{
    frmMain &window = start();
    bool minimisedWithMain = false, restoredWithMain = false;
    QTimer::singleShot(0, [&] {
        auto *link = qobject_cast<TechLink *>(QApplication::activeModalWidget());
        ASSERT_NE(link, nullptr);
        window.showMinimized();
        minimisedWithMain = QTest::qWaitFor([&] { return link->isMinimized() || !link->isVisible(); }, 3000);
        window.showNormal();
        restoredWithMain = QTest::qWaitFor([&] { return link->isVisible() && !link->isMinimized(); }, 3000);
        link->reject();
    });
    ui(window).cmdLink->click();
    EXPECT_TRUE(minimisedWithMain);
    EXPECT_TRUE(restoredWithMain);
}

TEST_F(Journey, F2InAnyWindowSwitchesEveryOpenWindowsLanguage)
{
    frmMain &window = start();
    ui(window).cmdIndex->click();
    frmIndex *index = window.indexWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return index->isVisible() && !index->pageLoading(); }, 20000));
    ui(window).cmdAdd->click();
    ui(window).cmdList->click();
    frmList &favourites = window.favourites();
    ASSERT_EQ(ui(favourites).cmdDel->text(), "Delete");
    ASSERT_EQ(index->windowTitle(), ' ' + folder);

    // F2 in the favourites window, then in the index, then in the main window.
    const struct {
        QWidget *where;
        const char *language;
        const char *fit, *del, *nextPage;
    } steps[] = {
        {&favourites, "IT", "Adatta alla finestra", "Elimina", " Pagina successiva "},
        {index, "EN", "Fit window", "Delete", " Next page "},
        {&window, "IT", "Adatta alla finestra", "Elimina", " Pagina successiva "},
    };
    for (const auto &step : steps) {
        fixture.prompts.languages = {step.language};
        QTest::keyClick(step.where, Qt::Key_F2);
        const std::string where = step.where->objectName().toStdString();
        EXPECT_EQ(ui(window).Option1[0]->text(), step.fit) << where;
        EXPECT_EQ(ui(favourites).cmdDel->text(), step.del) << where;
        EXPECT_EQ(ui(index).cmdNext->toolTip(), step.nextPage) << where;
        EXPECT_EQ(index->windowTitle(), ' ' + folder) << where; // the title keeps the folder
    }
}

TEST_F(Journey, SlideshowIntervalStoredAbove60StartsAt60)
{
    fixture.settings().write("UserDef", "xTime", "300");
    frmMain &window = start();
    EXPECT_EQ(ui(window).txtTime->text(), "60");
    EXPECT_EQ(ui(window).HScroll1->value(), 60);
    fixture.close();
    QSettings ini(fixture.iniPath(), QSettings::IniFormat);
    EXPECT_EQ(ini.value("UserDef/xTime").toString(), "60");
}

TEST_F(Journey, ScreenReadersReadEveryLabelByItsWholeText)
{
    frmMain &window = start();
    auto checkLabels = [](QWidget &form) {
        for (QLabel *label : form.findChildren<QLabel *>()) {
            if (label->text().isEmpty())
                continue;
            EXPECT_EQ(spokenName(label), shownText(label))
                << form.objectName().toStdString() << "." << label->objectName().toStdString();
        }
    };
    checkLabels(window);
    bool seen = false;
    QTimer::singleShot(0, [&] {
        auto *about = qobject_cast<TechCre *>(QApplication::activeModalWidget());
        ASSERT_NE(about, nullptr);
        seen = true;
        EXPECT_EQ(spokenName(about->LabVers), "Version 2.1");
        checkLabels(*about);
        about->CmdOk->click();
    });
    ui(window).cmdAbout->click();
    EXPECT_TRUE(seen);
}

TEST_F(Journey, MakeACopyOfALargeFileShowsCopyingAndCancelStopsIt)
{
    frmMain &window = start();
    const QString large = folder + "/large.bmp";
    {
        QFile file(large);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(64 * 1024 * 1024));
    }
    const QString copies = fixture.makeFolder("copies");
    QString seenLabel;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        for (auto *progress : window.findChildren<QProgressDialog *>()) {
            if (progress->isVisible() || progress->value() > 0) {
                seenLabel = progress->labelText();
                progress->cancel();
                poll.stop();
            }
        }
    });
    poll.start(0);
    for (const QString &name : {QString("a.bmp"), QString("large.bmp")}) {
        fixture.prompts.files = {copies + '/' + name};
        window.Mostra_Image(false, name);
        QTest::keyClick(&window, Qt::Key_C, Qt::AltModifier); // Make a Copy
    }
    EXPECT_TRUE(QFile::exists(copies + "/a.bmp")) << "a small file copies without a window";
    EXPECT_EQ(seenLabel, "Copying ...");
    EXPECT_FALSE(QFile::exists(copies + "/large.bmp")) << "Cancel leaves no part of the copy";
    EXPECT_TRUE(QFile::exists(large));
}

TEST_F(Journey, PrintingSlidesWithoutLibreOfficeSaysSo)
{
    fixture.makeFiles(folder, {"talk.ppt"});
    frmMain &window = start("talk.ppt");
    const QByteArray path = qgetenv("PATH");
    const QString empty = fixture.makeFolder("no programs");
    qputenv("PATH", empty.toUtf8());
    fixture.prompts.printers = {{}};
    ui(window).cmdPrint->click();
    qputenv("PATH", path);
    ASSERT_EQ(fixture.prompts.asked.size(), 1);
    EXPECT_TRUE(fixture.prompts.asked[0].text.contains("LibreOffice")) << fixture.prompts.asked[0].text.toStdString();

    // With the office program there, the slides go to it and nothing is said.
    QFile office(empty + "/libreoffice");
    ASSERT_TRUE(office.open(QIODevice::WriteOnly));
    office.write("#!/bin/sh\n");
    office.close();
    office.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    qputenv("PATH", empty.toUtf8());
    fixture.prompts.printers = {{}};
    fixture.launcher.started.clear();
    ui(window).cmdPrint->click();
    qputenv("PATH", path);
    EXPECT_EQ(fixture.prompts.asked.size(), 1);
    ASSERT_EQ(fixture.launcher.started.size(), 1);
    EXPECT_EQ(fixture.launcher.started[0].second, QStringList({"-p", folder + "/talk.ppt"}));
}

TEST(LaunchPause, HoldsFromTheLaunchUntilVimoraIsActiveAgain)
{
    LaunchPause pause;
    EXPECT_FALSE(pause.holdsSlideshow());
    pause.launched();
    EXPECT_TRUE(pause.holdsSlideshow()); // the program is on its way
    pause.applicationStateChanged(Qt::ApplicationActive);
    EXPECT_TRUE(pause.holdsSlideshow()); // Vimora has not left the front yet
    pause.applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_TRUE(pause.holdsSlideshow());
    pause.applicationStateChanged(Qt::ApplicationActive);
    EXPECT_FALSE(pause.holdsSlideshow());
}

TEST_F(Journey, SlideshowWaitsWhileTheExploredFolderIsInFront)
{
    fixture.settings().write("UserDef", "xTime", "1");
    fixture.makeFiles(folder, {"c.bmp"}); // three, so that two ticks cannot come round again
    frmMain &window = start();
    ui(window).cmdIndex->click();
    frmIndex *index = window.indexWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return index->isVisible() && !index->pageLoading(); }, 20000));
    ui(window).ChkCicle->setChecked(true);
    ASSERT_TRUE(ui(window).TimerImage->isActive());

    ui(index).cmdDir->click(); // Explore: the file manager opens and takes the front
    ASSERT_FALSE(fixture.launcher.started.isEmpty());
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    QSignalSpy ticks(ui(window).TimerImage, &QTimer::timeout);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ticks.size() >= 2; }, 5000));
    EXPECT_EQ(window.windowTitle(), " a.bmp  - Vimora ");

    emit qApp->applicationStateChanged(Qt::ApplicationActive); // the user comes back
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " b.bmp  - Vimora "; }, 5000));
}
