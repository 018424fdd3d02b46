#include "support/HangingFile.h"
#include "support/MainWindowFixture.h"
#include "support/WindowProbe.h"

#include "platform/MoviePlayer.h"
#include "platform/PictureLoaderWait.h"

#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A decode that runs until the test lets it go.
struct HeldDecode {
    std::shared_ptr<std::atomic<bool>> released = std::make_shared<std::atomic<bool>>(false);
    PictureLoader::Decode decode(const QImage &image) const
    {
        return [flag = released, image](const QString &, const PictureLoader::Options &) {
            while (!*flag)
                ::usleep(1000);
            return PictureLoader::Picture{image, image.size(), {}};
        };
    }
    ~HeldDecode() { *released = true; }
};

} // namespace

TEST(PictureLoaderWait, SlowDecodeKeepsEventsRunningAndGivesUpAtTheLimit)
{
    QImage red(4, 3, QImage::Format_RGB32);
    red.fill(Qt::red);
    struct Case {
        const char *what;
        int decodeMs; // -1: never ends within the test
        int limitMs;
        bool shown;
    };
    const Case cases[] = {
        {"quick", 0, 2000, true},
        {"slower than an event slice", 120, 2000, true},
        {"past the limit", -1, 250, false},
    };
    for (const Case &c : cases) {
        HeldDecode held;
        if (c.decodeMs >= 0)
            QTimer::singleShot(c.decodeMs, [flag = held.released] { *flag = true; });
        int ticks = 0;
        QTimer ticker;
        QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
        ticker.start(20);
        QElapsedTimer clock;
        clock.start();
        const PictureLoader::Picture picture =
            PictureLoader::loadWithinLimit("any", {}, c.limitMs, held.decode(red));
        const qint64 took = clock.elapsed();
        EXPECT_EQ(!picture.isNull(), c.shown) << c.what;
        if (c.shown) {
            EXPECT_EQ(picture.image.pixel(0, 0), red.pixel(0, 0)) << c.what;
        } else {
            EXPECT_GE(took, c.limitMs) << c.what;
        }
        EXPECT_LT(took, c.limitMs + 1000) << c.what;
        if (c.decodeMs != 0) {
            EXPECT_GE(ticks, 3) << c.what << ": timers must fire while the decode runs";
        }
    }
}

TEST(SlowFiles, HangingPictureLeavesTheWindowResponsiveAndTheAreaEmpty)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("slow");
    fixture.makeFiles(folder, {"a.jpg"});
    HangingFile hanging(folder + "/hang.jpg");
    ASSERT_TRUE(hanging.made);
    fixture.state->PictureDecodeLimitMs = 300;
    frmMain &window = fixture.start(folder + "/a.jpg");
    ASSERT_FALSE(ui(window).ImgEgg->isHidden());

    bool timerFired = false;
    QTimer::singleShot(50, [&] { timerFired = true; });
    QElapsedTimer clock;
    clock.start();
    window.Mostra_Image(false, hanging.path, true);
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_TRUE(timerFired) << "the event loop ran while the picture decoded";
    EXPECT_TRUE(ui(window).ImgEgg->isHidden());
    EXPECT_EQ(ui(window).LabFil->text(), "hang.jpg");
    EXPECT_TRUE(fixture.prompts.asked.isEmpty());

    // The next picture shows as usual.
    window.Mostra_Image(false, folder + "/a.jpg", true);
    EXPECT_FALSE(ui(window).ImgEgg->isHidden());
}

TEST(SlowFiles, PipeUnderAMovieNameNeverBlocks)
{
    MainWindowFixture fixture;
    const QString folder = fixture.makeFolder("slow");
    fixture.makeFiles(folder, {"a.jpg"});
    frmMain &window = fixture.start(folder + "/a.jpg");
    for (const char *name : {"pipe.avi", "pipe.asx"}) {
        HangingFile hanging(folder + '/' + name);
        ASSERT_TRUE(hanging.made);
        QElapsedTimer clock;
        clock.start();
        window.Mostra_Image(false, hanging.path, true);
        EXPECT_LT(clock.elapsed(), 2000) << name;
        EXPECT_FALSE(ui(window).MediaPlayer1->hasEngine()) << name;
        window.Mostra_Image(false, folder + "/a.jpg", true);
    }
}
