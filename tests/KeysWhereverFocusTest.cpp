// The key tables pressed as a user presses them: on the real windows, with
// the focus left where Tab or a click puts it.
#include "files/frmList.h"
#include "fullscreen/frmFull.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"
#include "support/MainWindowFixture.h"
#include "support/TestClips.h"
#include "support/WindowProbe.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

namespace {

// A main window on a folder of three pictures, active, showing a.jpg.
struct ThreePictures {
    ThreePictures()
    {
        folder = fixture.makeFolder("three");
        for (const char *name : {"a.jpg", "b.jpg", "c.jpg"})
            fixture.makePicture(folder, name, {320, 240});
        fixture.settings().write("UserDef", "Language", "EN");
        fixture.start(folder + "/a.jpg");
        activate(&window());
    }
    frmMain &window() { return fixture.window(); }
    static void activate(QWidget *target)
    {
        target->show();
        target->activateWindow();
        QApplication::setActiveWindow(target);
        EXPECT_TRUE(QTest::qWaitForWindowActive(target));
    }
    // A key where the focus is, as the keyboard delivers it.
    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget *focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : QApplication::activeWindow(), Qt::Key(key), modifiers);
    }
    // What the user reads: the title and the " n/3 " label.
    bool shows(const QString &name, int number)
    {
        return QTest::qWaitFor([&] {
            return window().windowTitle() == " " + name + "  - Vimora "
                && ui(window()).LabNum->text().trimmed() == QString::number(number) + "/3";
        }, 5000);
    }
    QString where() const
    {
        const QWidget *focus = QApplication::focusWidget();
        return focus ? focus->objectName() + " (" + focus->metaObject()->className() + ")" : "no focus";
    }

    MainWindowFixture fixture;
    QString folder;
};

// Runs the main window's keys with the focus where it is now; with
// windowsToo, also F5, Alt+T and Alt+G, which take longer.
void pressTheTable(ThreePictures &three, bool windowsToo = true)
{
    frmMain &window = three.window();
    QWidget *focus = QApplication::focusWidget();
    const std::string at = three.where().toStdString();
    ThreePictures::press(Qt::Key_Down);
    EXPECT_TRUE(three.shows("b.jpg", 2)) << "Down at " << at;
    ThreePictures::press(Qt::Key_PageUp);
    EXPECT_TRUE(three.shows("a.jpg", 1)) << "PageUp at " << at;
    // In a text field (the path box, the seconds box) Space and Delete edit.
    const auto *combo = qobject_cast<QComboBox *>(focus);
    const auto *line = qobject_cast<QLineEdit *>(focus);
    const bool textField = (line && !line->isReadOnly()) || (combo && combo->isEditable());
    ThreePictures::press(Qt::Key_Space);
    if (textField) {
        ThreePictures::press(Qt::Key_Backspace);
        ThreePictures::press(Qt::Key_Delete);
        EXPECT_TRUE(three.fixture.prompts.asked.isEmpty()) << "Delete in the text field at " << at;
        ThreePictures::press(Qt::Key_Down);
    }
    EXPECT_TRUE(three.shows("b.jpg", 2)) << "Space at " << at;
    ThreePictures::press(Qt::Key_Up);
    EXPECT_TRUE(three.shows("a.jpg", 1)) << "Up at " << at;
    // A button disabled while a picture loads loses the focus; the user
    // puts it back.
    focus->setFocus(Qt::TabFocusReason);

    const qsizetype asked = three.fixture.prompts.asked.size();
    if (!textField) {
        ThreePictures::press(Qt::Key_Delete); // answered No
        EXPECT_EQ(three.fixture.prompts.asked.size(), asked + 1) << "Delete at " << at;
        three.fixture.prompts.asked.clear();
    }
    if (!windowsToo)
        return;

    QSignalSpy reread(&window.context(), &ViewerContext::listLoaded);
    ThreePictures::press(Qt::Key_F5);
    EXPECT_TRUE(reread.wait(5000) || reread.count() > 0) << "F5 at " << at;
    EXPECT_TRUE(three.shows("a.jpg", 1)) << "F5 at " << at;
    EXPECT_TRUE(QFileInfo::exists(three.folder + "/a.jpg"));
    EXPECT_TRUE(three.shows("a.jpg", 1));

    ThreePictures::press(Qt::Key_T, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.indexWindow() && window.indexWindow()->isVisible(); }, 5000))
        << "Alt+T at " << at;
    window.indexWindow()->close();
    ThreePictures::activate(&window);
    focus->setFocus(Qt::MouseFocusReason); // where the user had it

    ThreePictures::press(Qt::Key_G, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.favourites().isVisible(); }, 5000)) << "Alt+G at " << at;
    window.favourites().hide();
    ThreePictures::activate(&window);
    focus->setFocus(Qt::MouseFocusReason);
}

} // namespace

TEST(KeysWhereverFocus, MainWindowFromEveryControlTabReaches)
{
    ThreePictures three;
    QList<QWidget *> visited;
    // Right after start, then from each stop of the Tab chain.
    for (int stop = 0; stop < 30; ++stop) {
        QWidget *focus = QApplication::focusWidget();
        if (focus && visited.contains(focus))
            break;
        visited.append(focus);
        // The slow keys where a user is most likely to be: right after
        // start, on the drive list and on the folder tree.
        const bool windowsToo = stop == 0 || qobject_cast<QTreeView *>(focus) || focus == ui(three.window()).Drive1;
        pressTheTable(three, windowsToo);
        if (HasFailure())
            return;
        if (focus)
            focus->setFocus(Qt::TabFocusReason);
        ThreePictures::press(Qt::Key_Tab);
    }
    QStringList kinds;
    for (QWidget *control : visited)
        if (control)
            kinds.append(control->metaObject()->className());
    // The drive list, the path box, the folder tree, the filter, the check
    // boxes, the slider, the seconds box and the buttons.
    for (const char *kind : {"QComboBox", "QTreeView", "QCheckBox", "QLineEdit", "QPushButton"})
        EXPECT_TRUE(kinds.contains(kind)) << kind << " not reached: " << kinds.join(", ").toStdString();
}

TEST(KeysWhereverFocus, MainWindowAfterAClickOnTheFolderTreeAndTheSlider)
{
    ThreePictures three;
    frmMain &window = three.window();
    QTest::mouseClick(ui(window).HScroll1, Qt::LeftButton, {}, {ui(window).HScroll1->width() / 2, 4});
    ui(window).HScroll1->setFocus(Qt::MouseFocusReason); // a scroll bar takes the focus by click only where styled so
    pressTheTable(three);
    // Clicking the folder on show opens nothing new but gives the tree the focus.
    QWidget *tree = ui(window).Dir1->viewport();
    QTest::mouseClick(tree, Qt::LeftButton, {}, ui(window).Dir1->visualRect(ui(window).Dir1->currentIndex()).center());
    ASSERT_EQ(QApplication::focusWidget(), ui(window).Dir1);
    const QString folder = three.fixture.context->CurrentFolder();
    pressTheTable(three);
    EXPECT_EQ(three.fixture.context->CurrentFolder(), folder) << "Down never opens another folder";
}

TEST(KeysWhereverFocus, TextFieldsKeepTheirTypingAndEnterIsTheTables)
{
    ThreePictures three;
    frmMain &window = three.window();
    ThreePictures::press(Qt::Key_F4);
    ASSERT_EQ(QApplication::focusWidget(), ui(window).CboURL);
    QLineEdit *path = ui(window).CboURL->lineEdit();
    path->setText(three.folder);
    ThreePictures::press(Qt::Key_End);
    ThreePictures::press(Qt::Key_Backspace);
    ThreePictures::press(Qt::Key_Delete);
    EXPECT_EQ(path->text(), three.folder.chopped(1)) << "Backspace and Delete edit the path";
    EXPECT_TRUE(three.fixture.prompts.asked.isEmpty()) << "Delete asked nothing";
    QTest::keyClicks(ui(window).CboURL, "e");
    EXPECT_TRUE(path->text().startsWith(three.folder)) << path->text().toStdString(); // completed as typed
    ThreePictures::press(Qt::Key_Down);
    EXPECT_TRUE(three.shows("b.jpg", 2)) << "Down in the path box is the table's";
}

TEST(KeysWhereverFocus, IndexWindowKeys)
{
    ThreePictures three;
    frmMain &window = three.window();
    ThreePictures::press(Qt::Key_T, Qt::AltModifier);
    frmIndex *index = window.indexWindow();
    ASSERT_NE(index, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index->pageLoading(); }, 20000));
    ThreePictures::activate(index);
    ThreePictures::press(Qt::Key_Down);
    EXPECT_TRUE(three.shows("b.jpg", 2));
    ThreePictures::press(Qt::Key_PageUp);
    EXPECT_TRUE(three.shows("a.jpg", 1));
    QSignalSpy reread(&window.context(), &ViewerContext::listLoaded);
    ThreePictures::press(Qt::Key_F5);
    EXPECT_TRUE(reread.wait(5000) || reread.count() > 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index->pageLoading(); }, 20000));
    QTest::mouseMove(ui(index).cells[1].Image1);
    index->selectCell(1);
    ThreePictures::press(Qt::Key_Delete); // answered No
    ASSERT_EQ(three.fixture.prompts.asked.size(), 1);
    EXPECT_TRUE(three.fixture.prompts.asked[0].text.contains("b.jpg"));
    EXPECT_TRUE(QFileInfo::exists(three.folder + "/b.jpg"));
    ThreePictures::press(Qt::Key_G, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.favourites().isVisible(); }, 5000));
}

TEST(KeysWhereverFocus, FullScreenViewKeys)
{
    ThreePictures three;
    frmMain &window = three.window();
    ui(window).mnuFullScreen->trigger();
    QPointer<frmFull> view = window.fullView();
    ASSERT_TRUE(view);
    ThreePictures::activate(view);
    ThreePictures::press(Qt::Key_Down);
    EXPECT_TRUE(three.shows("b.jpg", 2));
    ThreePictures::press(Qt::Key_Space);
    EXPECT_TRUE(three.shows("c.jpg", 3));
    ThreePictures::press(Qt::Key_PageUp);
    EXPECT_TRUE(three.shows("b.jpg", 2));
    EXPECT_TRUE(view->isVisible());
    ThreePictures::press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view || !view->isVisible(); }, 5000));
    EXPECT_TRUE(window.isVisible());
}
