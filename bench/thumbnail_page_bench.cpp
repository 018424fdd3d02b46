// A page of 24 thumbnails of 24-megapixel JPEGs, without and with the
// thumbnail cache, against vipsthumbnail making the same 24 thumbnails.
#include "bench/BenchTable.h"
#include "bench/BenchWindow.h"

#include "core/AppState.h"
#include "index/frmIndex.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <functional>

void thumbnailPageBench(BenchTable &table);

namespace {

constexpr int Runs = 3;

struct PageTiming {
    double ms = 0;
    double longestStall = 0; // the longest the event loop went without a turn
};

// Runs the event loop from start() until done(), timing it and its longest gap.
PageTiming timeEventLoop(const std::function<void()> &start, const std::function<bool()> &done)
{
    QElapsedTimer clock;
    QElapsedTimer sinceTick;
    double longest = 0;
    QTimer ticker;
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceTick.nsecsElapsed() / 1e6);
        sinceTick.restart();
    });
    clock.start();
    sinceTick.start();
    ticker.start();
    start();
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    PageTiming timing{clock.nsecsElapsed() / 1e6, 0};
    ticker.stop();
    timing.longestStall = std::max(longest, sinceTick.nsecsElapsed() / 1e6);
    return timing;
}

} // namespace

void thumbnailPageBench(BenchTable &table)
{
    QTemporaryDir cacheHome;
    qputenv("XDG_CACHE_HOME", cacheHome.path().toUtf8()); // never the user's own cache
    QTemporaryDir dir;
    const QString first = makeLargeJpeg(dir.path(), "photo00.jpg");
    QStringList pictures{first};
    for (int i = 1; i < 24; ++i) {
        const QString copy = dir.path() + QStringLiteral("/photo%1.jpg").arg(i, 2, 10, QLatin1Char('0'));
        QFile::copy(first, copy);
        pictures.append(copy);
    }

    OpenWindow open(first);
    frmMain &window = open.window;
    window.cmdIndex_Click();
    frmIndex &index = *window.indexWindow();
    while (index.pageLoading())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);

    const QString thumbnails = cacheHome.path() + "/thumbnails";
    PageTiming cold{1e12, 0}, warm{1e12, 0};
    for (int run = 0; run < benchRuns(Runs); ++run) {
        QDir(thumbnails).removeRecursively();
        const PageTiming timing = timeEventLoop([&] { index.Carica_Preview(); }, [&] { return !index.pageLoading(); });
        cold.ms = std::min(cold.ms, timing.ms);
        cold.longestStall = std::max(cold.longestStall, timing.longestStall);
    }
    for (int run = 0; run < benchRuns(Runs); ++run) {
        const PageTiming timing = timeEventLoop([&] { index.Carica_Preview(); }, [&] { return !index.pageLoading(); });
        warm.ms = std::min(warm.ms, timing.ms);
        warm.longestStall = std::max(warm.longestStall, timing.longestStall);
    }

    // The machine's own share: the same loop left idle for as long.
    QElapsedTimer idle;
    const PageTiming quiet = timeEventLoop([&] { idle.start(); }, [&] { return idle.elapsed() >= cold.ms; });

    QTemporaryDir vipsOut;
    const double vips = bestOf(benchRuns(Runs), [&] {
        QProcess::execute("vipsthumbnail", QStringList{"-s", "128x128", "-o", vipsOut.path() + "/%s.png"} + pictures);
    });
    const QString reference = QStringLiteral("vipsthumbnail -s 128x128, same 24 files");
    table.add({"index page, 24 x 24 MP JPEG, no thumbnail cache", reference, cold.ms, vips});
    table.add({"index page, 24 x 24 MP JPEG, thumbnails cached", reference, warm.ms, vips});
    table.add({"  longest GUI stall while the page builds (cold)", "one frame at 60 Hz", cold.longestStall, 1000.0 / 60});
    table.add({"  longest GUI stall while the page builds (cold)", "the idle event loop, as long", cold.longestStall,
               quiet.longestStall});
}
