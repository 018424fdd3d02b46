#include "support/MainWindowFixture.h"
#include "support/Unprivileged.h"
#include "support/WindowProbe.h"
#include "viewer/ViewRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <unistd.h>

namespace {

QStringList tenPictures()
{
    QStringList names;
    for (int i = 1; i <= 10; ++i)
        names.append(QStringLiteral("pic%1.bmp").arg(i));
    return names;
}

// Opens a folder the way a user does: selecting it in the folder tree.
void pickInTree(frmMain &window, const QString &folder)
{
    auto *model = qobject_cast<QFileSystemModel *>(ui(window).Dir1->model());
    ui(window).Dir1->setCurrentIndex(model->index(folder));
    QCoreApplication::processEvents();
}

} // namespace

TEST(MainWindowBrowsing, FolderPickedInTheTreeIsListedAndShown)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("ten");
    fixture.makeFiles(folder, tenPictures());
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();

    pickInTree(window, folder);
    EXPECT_EQ(fixture.context->CurrentFolder(), folder);
    EXPECT_EQ(fixture.context->FileNames().size(), 10);
    EXPECT_EQ(window.windowTitle(), " pic1.bmp  - Vimora ");
    EXPECT_EQ(ui(window).LabNum->text(), " 1/10 ");
    EXPECT_TRUE(fixture.context->FolderSummaryText().startsWith("10     "));
    EXPECT_FALSE(ui(window).cmdBack->isEnabled());
    EXPECT_TRUE(ui(window).cmdNext->isEnabled());
    EXPECT_TRUE(ui(window).cmdSave->isEnabled());

    ui(window).cmdNext->click();
    ui(window).cmdNext->click();
    EXPECT_EQ(ui(window).LabNum->text(), " 3/10 ");
    EXPECT_EQ(window.windowTitle(), " pic3.bmp  - Vimora ");
    EXPECT_TRUE(ui(window).cmdBack->isEnabled());

    // The folder went to the top of the path history, in the settings too.
    EXPECT_EQ(ui(window).CboURL->itemText(0), folder);
    QSettings ini(fixture.iniPath(), QSettings::IniFormat);
    EXPECT_EQ(ini.value("URL/0").toString(), folder);
}

TEST(MainWindowBrowsing, LastFileDisablesNextAndEmptyFolderDisablesAdd)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("two");
    fixture.makeFiles(folder, {"a.bmp", "b.bmp"});
    const QString empty = fixture.makeFolder("empty");
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/b.bmp");
    EXPECT_EQ(ui(window).LabNum->text(), " 2/2 ");
    EXPECT_FALSE(ui(window).cmdNext->isEnabled());

    pickInTree(window, empty);
    EXPECT_TRUE(fixture.context->listIsEmpty());
    EXPECT_EQ(fixture.context->FolderSummaryText(), "0     0 byte");
    EXPECT_FALSE(ui(window).cmdAdd->isEnabled());
    EXPECT_FALSE(ui(window).cmdNext->isEnabled());
    EXPECT_EQ(window.windowTitle(), " Vimora");
}

TEST(MainWindowBrowsing, TypeFilterRelistsTheFolder)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("mixed");
    fixture.makeFiles(folder, {"a.bmp", "b.jpg", "c.gif", "d.avi", "e.jpeg"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/a.bmp");
    EXPECT_EQ(fixture.context->FileNames().size(), 5);

    ui(window).CboType->setCurrentIndex(3); // JPG,JPEG
    EXPECT_EQ(fixture.context->TypeFilterCode(), "JPG");
    EXPECT_EQ(fixture.context->TypeFilterIndex(), 3);
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"b.jpg", "e.jpeg"}));
    EXPECT_EQ(ui(window).LabNum->text(), " 1/2 ");

    ui(window).CboType->setCurrentIndex(12); // AVI, a movie: handed to the player
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"d.avi"}));
    EXPECT_TRUE(fixture.context->MainMovieLoaded());
}

TEST(MainWindowBrowsing, PathBoxOpensFoldersWithoutReorderingTheHistory)
{
    MainWindowFixture fixture;
    const QString first = fixture.makeFolder("first"), second = fixture.makeFolder("second");
    fixture.makeFiles(first, {"1.bmp"});
    fixture.makeFiles(second, {"2.bmp", "3.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start();
    pickInTree(window, first);
    pickInTree(window, second);
    ASSERT_EQ(ui(window).CboURL->itemText(0), second);
    ASSERT_EQ(ui(window).CboURL->itemText(1), first);

    ui(window).CboURL->setCurrentIndex(1);
    window.CboURL_Click();
    EXPECT_EQ(fixture.context->CurrentFolder(), first);
    EXPECT_EQ(ui(window).CboURL->itemText(0), second); // the history keeps its order
    EXPECT_EQ(window.windowTitle(), " 1.bmp  - Vimora ");

    // Typing a known start completes it from the history.
    ui(window).CboURL->lineEdit()->clear();
    QTest::keyClicks(ui(window).CboURL->lineEdit(), second.left(second.size() - 3));
    EXPECT_EQ(ui(window).CboURL->currentText(), second + '/');

    // Keys that come faster than the box completes (a fast typist, a busy
    // machine) are all kept: the completion follows the newest text.
    QLineEdit *box = ui(window).CboURL->lineEdit();
    box->clear();
    const QString typed = second + "-new";
    // The rest of the keys arrive while the box handles the first.
    QTimer::singleShot(0, box, [&] { QTest::keyClicks(box, typed.mid(1)); });
    QTest::keyClicks(box, typed.left(1));
    QCoreApplication::processEvents();
    EXPECT_EQ(ui(window).CboURL->currentText(), typed);

    fixture.prompts.answers = {PromptAnswer::Yes};
    ui(window).cmdClear->click();
    EXPECT_EQ(ui(window).CboURL->count(), 0);
    EXPECT_FALSE(ui(window).cmdClear->isEnabled());
    QSettings ini(fixture.iniPath(), QSettings::IniFormat);
    EXPECT_FALSE(ini.contains("URL/0"));
}

TEST(MainWindowBrowsing, UpAndRefresh)
{
    MainWindowFixture fixture;
    const QString parent = fixture.makeFolder("parent");
    const QString child = fixture.makeFolder("parent/child");
    fixture.makeFiles(parent, {"p.bmp"});
    fixture.makeFiles(child, {"c.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(child + "/c.bmp");
    ui(window).cmdUp->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(fixture.context->CurrentFolder(), parent);
    EXPECT_EQ(window.windowTitle(), " p.bmp  - Vimora ");

    fixture.makeFiles(parent, {"o.bmp", "q.bmp"});
    ui(window).cmdRefr->click();
    EXPECT_EQ(fixture.context->FileNames(), QStringList({"o.bmp", "p.bmp", "q.bmp"}));
    EXPECT_EQ(window.windowTitle(), " p.bmp  - Vimora "); // the same file, now second
    EXPECT_EQ(ui(window).LabNum->text(), " 2/3 ");
    EXPECT_TRUE(ui(window).ImgEgg->isVisible());
}

TEST(MainWindowBrowsing, OpticalDriveWithoutDiscAsksRetryThenCancel)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("here");
    fixture.makeFiles(folder, {"a.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    QList<Drive> drives{{"/", "", false, true, false}, {"/dev/sr0", "DVD", true, false, false}};
    frmMain &window = *new frmMain(*fixture.state, *fixture.context, fixture.prompts, fixture.launcher);
    window.setDriveSource([&] { return drives; });
    window.Form_Load(folder + "/a.bmp");
    ASSERT_EQ(ui(window).Drive1->findData("/dev/sr0"), 1);

    fixture.prompts.answers = {PromptAnswer::Retry, PromptAnswer::Cancel};
    ui(window).Drive1->setCurrentIndex(1);
    ASSERT_EQ(fixture.prompts.asked.size(), 2);
    EXPECT_EQ(fixture.prompts.asked[0].text, "Drive /dev/sr0 Not Ready ...");
    EXPECT_EQ(fixture.prompts.asked[0].buttons, PromptButtons::RetryCancel);
    EXPECT_EQ(fixture.prompts.asked[0].icon, PromptIcon::Question);
    EXPECT_EQ(fixture.prompts.asked[0].defaultButton, 2);
    // Cancel goes back to the drive of the folder shown.
    EXPECT_EQ(ui(window).Drive1->currentData().toString(), "/");
    EXPECT_EQ(fixture.context->CurrentFolder(), folder);
    window.close();
    delete &window;
}

TEST(MainWindowBrowsing, SlidesOpenInTheirOwnProgramUnlessTheSlideshowRuns)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("talk");
    fixture.makeFiles(folder, {"a.bmp", "b.ppt"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/a.bmp");
    ui(window).cmdNext->click();
    ASSERT_EQ(fixture.launcher.started.size(), 1);
    EXPECT_EQ(fixture.launcher.started[0].second, QStringList({folder + "/b.ppt"}));
    EXPECT_FALSE(ui(window).ImgEgg->isVisible());

    ui(window).cmdBack->click();
    ui(window).ChkCicle->setChecked(true);
    ui(window).cmdNext->click();
    EXPECT_EQ(fixture.launcher.started.size(), 1);
}

TEST(MainWindowBrowsing, PictureThatDoesNotDecodeLeavesTheAreaEmptySilently)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("broken");
    fixture.makeFiles(folder, {"good.bmp"});
    QFile bad(folder + "/bad.jpg");
    bad.open(QIODevice::WriteOnly);
    bad.write("\xff\xd8\xff garbage");
    bad.close();
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/bad.jpg");
    EXPECT_EQ(window.windowTitle(), " bad.jpg  - Vimora ");
    EXPECT_FALSE(ui(window).ImgEgg->isVisible());
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());
    EXPECT_EQ(ui(window).LabNum->text(), " 1/2 ");
}

TEST(MainWindowBrowsing, UnreadableFolderAsksRetryAndCancelGoesBackToTheFolderBefore)
{
    if (rerunUnprivilegedWhenRoot())
        return;
    MainWindowFixture fixture;
    const QString shown = fixture.makeFolder("shown");
    fixture.makeFiles(shown, {"a.bmp", "b.bmp"});
    const QString locked = fixture.makeFolder("locked");
    fixture.makeFiles(locked, {"x.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(shown + "/b.bmp");
    QFile::setPermissions(locked, QFileDevice::WriteOwner);
    fixture.prompts.answers = {PromptAnswer::Retry, PromptAnswer::Cancel};
    pickInTree(window, locked);
    QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    ASSERT_EQ(fixture.prompts.asked.size(), 2);
    EXPECT_TRUE(fixture.prompts.asked[0].text.startsWith("Error reading Drive "));
    EXPECT_EQ(fixture.prompts.asked[1].buttons, PromptButtons::RetryCancel);
    // Back where the user was: that folder, its list and its file.
    EXPECT_EQ(window.windowTitle(), " b.bmp  - Vimora ");
    EXPECT_EQ(ui(window).LabNum->text(), " 2/2 ");
    EXPECT_EQ(ui(window).CboURL->currentText(), shown);
}

TEST(MainWindowBrowsing, MissingFolderTypedInThePathBoxAsksRetryAndCancelKeepsTheFolder)
{
    MainWindowFixture fixture;
    const QString shown = fixture.makeFolder("shown");
    fixture.makeFiles(shown, {"a.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(shown + "/a.bmp");
    QTest::keyClick(&window, Qt::Key_F4); // to the path box
    QLineEdit *box = ui(window).CboURL->lineEdit();
    box->clear();
    QTest::keyClicks(box, shown + "/no such folder");
    fixture.prompts.answers = {PromptAnswer::Retry, PromptAnswer::Cancel};
    QTest::keyClick(box, Qt::Key_Return);
    QCoreApplication::processEvents();
    ASSERT_EQ(fixture.prompts.asked.size(), 2);
    EXPECT_TRUE(fixture.prompts.asked[0].text.startsWith("Error reading Drive "));
    EXPECT_EQ(fixture.prompts.asked[0].buttons, PromptButtons::RetryCancel);
    EXPECT_EQ(ui(window).CboURL->currentText(), shown);
    EXPECT_EQ(window.windowTitle(), " a.bmp  - Vimora ");
    EXPECT_EQ(ui(window).LabNum->text(), " 1/1 ");
}

TEST(MainWindowBrowsing, FitModeDecodesSmallAndActualSizeDecodesOnlyWhatShows)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("large");
    // Cyan on the left, magenta from x = 1200 on, so a pan shows which part is drawn.
    QImage large(4000, 3000, QImage::Format_RGB32);
    large.fill(Qt::darkCyan);
    {
        QPainter painter(&large);
        painter.fillRect(1200, 0, 2800, 3000, Qt::magenta);
    }
    ASSERT_TRUE(large.save(folder + "/large.jpg", "JPEG", 95));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/large.jpg");
    window.resize(1000, 800);
    window.mnufit_Click();
    window.Mostra_Image(false, "large.jpg");

    EXPECT_EQ(ui(window).ImgEgg->naturalSize(), QSize(4000, 3000));
    EXPECT_LT(ui(window).ImgEgg->picture().width(), 4000); // decoded at a reduced scale
    EXPECT_TRUE(ui(window).LabPix->text().startsWith(" 4000 x 3000 ("));

    window.mnuFull_Click();
    EXPECT_EQ(ui(window).ImgEgg->size(), QSize(4000, 3000));
    EXPECT_EQ(ui(window).LabZoom->text(), " 100% ");
    EXPECT_TRUE(ui(window).ImgEgg->holdsPart());
    EXPECT_FALSE(ui(window).ImgEgg->lacksPixels());
    EXPECT_LT(qint64(ui(window).ImgEgg->picture().width()) * ui(window).ImgEgg->picture().height(), 4000 * 3000 / 4);

    // Dragged to the left as a user pans: the part that comes into view is decoded.
    const QPoint from(900, 300);
    const QPoint to(100, 100);
    QTest::mousePress(ui(window).ImgEgg, Qt::LeftButton, {}, from);
    QTest::mouseMove(ui(window).ImgEgg, to);
    QTest::mouseRelease(ui(window).ImgEgg, Qt::LeftButton, {}, to);
    ASSERT_LT(ui(window).ImgEgg->x(), -500);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !ui(window).ImgEgg->lacksPixels(); }, 5000));
    const QPoint magentaOnScreen = ui(window).ImgEgg->mapTo(&window, QPoint(1900, 500));
    ASSERT_TRUE(window.rect().contains(magentaOnScreen));
    const QColor drawn = window.grab().toImage().pixelColor(magentaOnScreen);
    EXPECT_GT(drawn.red(), 200);
    EXPECT_LT(drawn.green(), 60);
}

// The user goes back to the small folder while the big one is read: at the
// given turn of the event loop that reading yields (the first comes before
// the listing starts, the third after its first batch of names).
class FolderPickedDuringAListing : public ::testing::TestWithParam<int> {};

TEST_P(FolderPickedDuringAListing, TakesOverAndIsListedOnce)
{
    MainWindowFixture fixture;
    const QString big = fixture.makeFolder("big");
    for (int i = 0; i < 6000; ++i) { // several turns of the listing
        QFile file(big + QStringLiteral("/n%1.ico").arg(i, 5, 10, QLatin1Char('0')));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const QString small = fixture.makeFolder("small");
    fixture.makeFiles(small, {"s1.bmp", "s2.bmp"});
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(small + "/s2.bmp");
    QSignalSpy listed(&window.context(), &ViewerContext::listLoaded);
    QSignalSpy shown(&window.context(), &ViewerContext::fileShown);

    int turns = 0;
    QTimer during;
    QObject::connect(&during, &QTimer::timeout, &window, [&] {
        if (window.context().CurrentFolder() == big && ++turns == GetParam()) {
            during.stop();
            pickInTree(window, small);
        }
    });
    during.start(0);
    pickInTree(window, big);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.context().listingUnderWay(); }, 10000));
    QCoreApplication::processEvents();

    ASSERT_FALSE(during.isActive()) << "the reading never yielded that often";
    EXPECT_EQ(window.context().CurrentFolder(), small);
    EXPECT_EQ(window.context().FileNames(), QStringList({"s1.bmp", "s2.bmp"}));
    EXPECT_EQ(listed.size(), 1); // neither the big folder's list nor the small one's twice
    EXPECT_EQ(shown.size(), 1);
    EXPECT_EQ(ui(window).LabNum->text(), ViewRules::positionText(window.context().CurrentIndex(), 2));
    EXPECT_EQ(window.windowTitle(), ViewRules::fileTitle(window.context().CurrentFileName()));
}

INSTANTIATE_TEST_SUITE_P(Turns, FolderPickedDuringAListing, ::testing::Values(1, 3));

TEST(MainWindowBrowsing, KeysThatPileUpDuringADisplayAreShownAsOneMove)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("many");
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    for (int i = 1; i <= 9; ++i)
        ASSERT_TRUE(picture.save(folder + QStringLiteral("/p%1.jpg").arg(i), "JPEG"));
    fixture.settings().write("UserDef", "Language", "EN");
    frmMain &window = fixture.start(folder + "/p1.jpg");
    ASSERT_EQ(window.windowTitle(), ViewRules::fileTitle("p1.jpg"));
    QSignalSpy shown(&window.context(), &ViewerContext::fileShown);

    // Five presses queued before the window gets to any of them, as when a
    // held key repeats faster than pictures decode: one display, of the last.
    for (int press = 0; press < 5; ++press)
        QCoreApplication::postEvent(&window, new QKeyEvent(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == ViewRules::fileTitle("p6.jpg"); }, 5000));
    EXPECT_EQ(shown.size(), 1); // one by one, p2 to p5 would have come first
    EXPECT_EQ(ui(window).LabNum->text(), ViewRules::positionText(5, 9));

    // Back past the first stops at the first; Down and Up cancel out.
    for (int press = 0; press < 8; ++press)
        QCoreApplication::postEvent(&window, new QKeyEvent(QEvent::KeyPress, Qt::Key_PageUp, Qt::NoModifier));
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == ViewRules::fileTitle("p1.jpg"); }, 5000));
    shown.clear();
    QCoreApplication::postEvent(&window, new QKeyEvent(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier));
    QCoreApplication::postEvent(&window, new QKeyEvent(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier));
    for (int turn = 0; turn < 3; ++turn) // the presses, then the move they add up to
        QCoreApplication::processEvents();
    EXPECT_EQ(shown.size(), 0);
    EXPECT_EQ(window.windowTitle(), ViewRules::fileTitle("p1.jpg"));
}
