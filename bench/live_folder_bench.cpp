// The shown folder as other programs change it: how soon a file written
// into a folder of 10,000 pictures is listed, and the longest the window
// stalls while 10,000 new files arrive at once.
#include "bench/BenchTable.h"
#include "bench/BenchWindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

#include <unistd.h>

void liveFolderBench(BenchTable &table);

namespace {

constexpr int PicturesInFolder = 10000;

// Another program's writes: hard links of one small picture, made on a
// thread of their own so the window's event loop runs meanwhile.
void linkNames(const QString &source, const QString &folder, const QString &stem, int count)
{
    const QByteArray from = QFile::encodeName(source);
    for (int i = 0; i < count; ++i) {
        const QByteArray name = QFile::encodeName(folder + QStringLiteral("/%1 %2.jpg").arg(stem).arg(i, 5, 10, QLatin1Char('0')));
        if (::link(from.constData(), name.constData()) != 0)
            QFile::copy(source, QFile::decodeName(name));
    }
}

// Runs the event loop until done() or the limit; false when late.
bool runUntil(const std::function<bool()> &done, int limitMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > limitMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

// The longest wait between two turns of the event loop while run() runs it.
double longestTick(const std::function<void()> &run)
{
    double longest = 0;
    QElapsedTimer sinceTick;
    QTimer ticks;
    ticks.setInterval(0);
    QObject::connect(&ticks, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceTick.nsecsElapsed() / 1e6);
        sinceTick.restart();
    });
    sinceTick.start();
    ticks.start();
    run();
    ticks.stop();
    return longest;
}

} // namespace

void liveFolderBench(BenchTable &table)
{
    QTemporaryDir dir(QStringLiteral("/tmp/vimora-live-XXXXXX"));
    QTemporaryDir source(QStringLiteral("/tmp/vimora-live-source-XXXXXX"));
    const QString picture = source.path() + QStringLiteral("/picture.jpg");
    QImage small(64, 48, QImage::Format_RGB32);
    small.fill(Qt::darkCyan);
    small.save(picture, "JPEG");
    linkNames(picture, dir.path(), QStringLiteral("IMG"), PicturesInFolder);

    OpenWindow open(dir.path() + QStringLiteral("/IMG 00000.jpg"));
    const ViewerContext &context = open.context;
    runUntil([&] { return context.FileNames().size() == PicturesInFolder; }, 60000);

    // One file written by another program, to its line in the list.
    double appear = 1e12;
    for (int run = 0; run < benchRuns(3); ++run) {
        const QString name = QStringLiteral("new %1.jpg").arg(run);
        QElapsedTimer clock;
        clock.start();
        QFile::copy(picture, dir.path() + '/' + name);
        if (runUntil([&] { return context.FileNames().contains(name); }, 10000))
            appear = std::min(appear, clock.nsecsElapsed() / 1e6);
        runUntil([] { return false; }, 700); // the watch settles before the next run
    }
    table.add({QStringLiteral("a file written into the shown folder of %1, to its line in the list")
                   .arg(PicturesInFolder),
               QStringLiteral("the second a user waits"), appear, 1000});

    // A burst of 10,000 new files: the longest the event loop waits.
    const qsizetype expected = context.FileNames().size() + PicturesInFolder;
    std::atomic<bool> written{false};
    std::thread writer;
    QElapsedTimer burstClock;
    bool listed = false;
    const double longest = longestTick([&] {
        burstClock.start();
        writer = std::thread([&] {
            linkNames(picture, dir.path(), QStringLiteral("burst"), PicturesInFolder);
            written = true;
        });
        listed = runUntil([&] { return written && context.FileNames().size() == expected; }, 60000);
    });
    const qint64 burstMs = burstClock.elapsed();
    writer.join();
    // The machine's own share: the same loop left idle for as long.
    const double idle = longestTick([&] { runUntil([] { return false; }, int(burstMs)); });
    const QString what = QStringLiteral("  longest stall while %1 new files arrive%2")
                             .arg(PicturesInFolder)
                             .arg(listed ? QString() : QStringLiteral(" (not all listed)"));
    table.add({what, QStringLiteral("one frame at 60 Hz"), longest, 1000.0 / 60});
    table.add({what, QStringLiteral("the idle event loop, as long"), longest, idle});
}
