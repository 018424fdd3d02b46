// A step pressed in the full-screen view while the folder is being read
// again (F5, a copy saved into it) lands on the next file once the list is
// back, not on the half-read list.
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "fullscreen/frmFull.h"

#include <QTest>
#include <QTimer>

namespace {

struct StepWhileListing : ::testing::Test {
    MainWindowFixture fixture;
    QString folder = fixture.makeFolder("pictures");

    frmMain &start()
    {
        fixture.makeFiles(folder, {"a.bmp", "b.bmp", "c.bmp"});
        fixture.settings().write("UserDef", "Language", "EN");
        return fixture.start(folder + "/a.bmp");
    }
};

} // namespace

TEST_F(StepWhileListing, DownInFullScreenDuringRefreshShowsTheNextFile)
{
    frmMain &window = start();
    QTest::keyClick(&window, Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui(window).LabNum->text() == " 2/3 "; }, 3000));
    window.mnuFullScreen_Click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.fullView() && window.fullView()->isVisible(); }, 3000));
    frmFull *full = window.fullView();
    // Down comes while the list is read again: the list then holds one
    // empty name.
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, full, [&] {
        if (fixture.context->FileNames() == QStringList{QString()}) {
            watch.stop();
            QTest::keyClick(full, Qt::Key_Down);
        }
    });
    watch.start(0);
    window.cmdRefr_Click();
    ASSERT_FALSE(watch.isActive()) << "the re-read let no event through";
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == " c.bmp  - Vimora "; }, 3000))
        << window.windowTitle().toStdString();
    EXPECT_EQ(ui(window).LabNum->text(), " 3/3 ");
}
