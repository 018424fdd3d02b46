#include "files/frmList.h"
#include "index/frmIndex.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include <QAccessible>
#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// What a screen reader is told about every shown control of a window,
// through the same accessibility interfaces the desktop's bridge reads.
// Returns the faults: an unnamed button, a label read as other than its
// text, a combo box or list entry read with more than it shows.
QStringList readingFaults(QWidget *window)
{
    QStringList faults;
    std::function<void(QAccessibleInterface *)> walk = [&](QAccessibleInterface *node) {
        if (!node || !node->isValid())
            return;
        const QString name = node->text(QAccessible::Name);
        QWidget *widget = qobject_cast<QWidget *>(node->object());
        const bool shown = !widget || widget->isVisible();
        const QString where = widget ? widget->objectName() : QStringLiteral("item of ") + node->parent()->object()->objectName();
        if (shown) {
            if (auto *button = qobject_cast<QAbstractButton *>(widget); button && name.trimmed().isEmpty())
                faults.append(where + ": a button without a name");
            if (auto *label = qobject_cast<QLabel *>(widget)) {
                if (!label->text().isEmpty() && name != label->text())
                    faults.append(where + ": label '" + label->text() + "' read as '" + name + "'");
                if (!label->pixmap().isNull() && label->text().isEmpty() && name.isEmpty()
                    && label->objectName().startsWith("Image1"))
                    faults.append(where + ": a thumbnail without a name");
            }
            if (auto *combo = qobject_cast<QComboBox *>(widget); combo && name != combo->currentText())
                faults.append(where + ": combo box showing '" + combo->currentText() + "' read as '" + name + "'");
            if (node->role() == QAccessible::ListItem && name.contains("   "))
                faults.append(where + ": list entry read as '" + name + "'");
        }
        if (!shown)
            return;
        for (int i = 0; i < node->childCount(); ++i)
            walk(node->child(i));
    };
    walk(QAccessible::queryAccessibleInterface(window));
    return faults;
}

} // namespace

TEST(AccessibleText, EveryWindowIsReadAsItShows)
{
    MainWindowFixture fixture;
    fixture.settings().write("UserDef", "Language", "EN");
    const QString folder = fixture.makeFolder("pictures");
    fixture.makePicture(folder, "a.bmp", QSize(40, 30));
    fixture.makePicture(folder, "b.bmp", QSize(40, 30));
    frmMain &window = fixture.start(folder + "/a.bmp");
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));

    // The type filter list included: every entry is read by its label.
    ui(window).CboType->showPopup();
    EXPECT_EQ(readingFaults(&window), QStringList());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(ui(window).CboType)->text(QAccessible::Name), "All Supported");
    ui(window).CboType->hidePopup();

    ui(window).cmdAdd->click();
    ui(window).cmdList->click();
    frmList &favourites = window.favourites();
    ASSERT_TRUE(QTest::qWaitFor([&] { return favourites.isVisible() && ui(favourites).ListImage->count() == 1; }));
    EXPECT_EQ(readingFaults(&favourites), QStringList());
    favourites.close();

    ui(window).cmdIndex->click();
    frmIndex *index = window.indexWindow();
    ASSERT_NE(index, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !index->pageLoading(); }, 20000));
    EXPECT_EQ(readingFaults(index), QStringList());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(ui(index).cells[1].Image1)->text(QAccessible::Name), "b.bmp");
}
