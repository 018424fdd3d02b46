// Walking a folder of 24-megapixel JPEGs: Next in steady state, a file
// named on the command line, peak memory and start-up. Memory and start-up
// are measured in a fresh process each (the bench binary again, --child),
// so that no figure carries another's.
#include "bench/BenchTable.h"
#include "bench/BenchWindow.h"
#include "support/WindowProbe.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRadioButton>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>


void nextPictureBench(BenchTable &table);
void commandLineFileBench(BenchTable &table);
void memoryWalkBench(BenchTable &table);
void startupBench(BenchTable &table);
int runBenchChild(const QStringList &arguments);

namespace {

const QString LargeJpegWhat = QStringLiteral("24 MP JPEG");
constexpr double DecodedPictureMB = 6000.0 * 4000 * 4 / (1024 * 1024); // RGB32

// VmHWM, not getrusage: ru_maxrss keeps the parent's peak across fork and
// exec, so a child of a large bench would report the bench's own memory.
double peakResidentMB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024; // kB
    return 0;
}

// A walk that stopped short would give figures of nothing.
void checkWalkedTo(const OpenWindow &open, const QString &last)
{
    if (open.context.CurrentFileName() != QFileInfo(last).fileName())
        std::fprintf(stderr, "the walk stopped at %s, not at %s\n", qPrintable(open.context.CurrentFileName()),
                     qPrintable(last));
}

void fitMode(frmMain &window)
{
    ui(window).Option1[0]->setChecked(true);
    QCoreApplication::processEvents();
}

// The bench itself in a child mode; its last line of output is the figure.
struct ChildRun {
    double ms = 0;
    double figure = 0;
};

ChildRun runSelf(const QStringList &arguments)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel); // a walk that stopped short says so
    QElapsedTimer timer;
    timer.start();
    child.start(QCoreApplication::applicationFilePath(), QStringList{"--child"} + arguments);
    child.waitForFinished(-1);
    ChildRun run{timer.nsecsElapsed() / 1e6, 0};
    const QList<QByteArray> lines = child.readAllStandardOutput().trimmed().split('\n');
    run.figure = lines.last().toDouble();
    return run;
}

// From nothing to the picture painted, the window's own set-up included;
// the listing of the folder may go on after that.
double openAndShowMs(const QString &path)
{
    double best = 1e12;
    for (int i = 0; i < benchRuns(3); ++i) {
        QElapsedTimer timer;
        timer.start();
        double shownMs = 0;
        auto open = std::make_unique<OpenWindow>(path, QString(), [&](frmMain &window) {
            QObject::connect(&window.context(), &ViewerContext::fileShown, &window, [&] {
                if (shownMs == 0) {
                    window.repaint();
                    shownMs = timer.nsecsElapsed() / 1e6;
                }
            });
        });
        best = std::min(best, shownMs > 0 ? shownMs : timer.nsecsElapsed() / 1e6);
    }
    return best;
}

int walkPictures(const QString &first, int count)
{
    OpenWindow open(first);
    fitMode(open.window);
    for (int i = 1; i < count; ++i) {
        open.window.cmdNext_Click();
        open.window.repaint();
    }
    checkWalkedTo(open, first.chopped(7) + QStringLiteral("%1.jpg").arg(count - 1, 3, 10, QLatin1Char('0')));
    std::printf("%.1f\n", peakResidentMB());
    return 0;
}

int startAndExit(const QString &file, const QString &storedFolder)
{
    OpenWindow open(file, storedFolder);
    open.window.repaint();
    QCoreApplication::processEvents();
    std::printf("%.1f\n", peakResidentMB());
    std::fflush(stdout);
    open.config.remove();
    std::_Exit(0); // the time to tear down is no part of start-up
}

// Next as a person uses it: a pause to look at each picture (what the
// window decodes ahead is then ready), and back to back with no pause.
double medianNextMs(const QStringList &pictures, int pauseMs)
{
    OpenWindow open(pictures.first());
    fitMode(open.window);
    QList<double> steps;
    for (int i = 1; i < pictures.size(); ++i) {
        if (pauseMs > 0) {
            QEventLoop pause;
            QTimer::singleShot(pauseMs, &pause, &QEventLoop::quit);
            pause.exec();
        }
        QElapsedTimer timer;
        timer.start();
        open.window.cmdNext_Click();
        open.window.repaint();
        if (i > 2) // the first steps fill whatever the window keeps ahead
            steps.append(timer.nsecsElapsed() / 1e6);
    }
    checkWalkedTo(open, pictures.last());
    std::sort(steps.begin(), steps.end());
    return steps.at(steps.size() / 2);
}

} // namespace

int runBenchChild(const QStringList &arguments)
{
    const QString mode = arguments.value(0);
    if (mode == "walk")
        return walkPictures(arguments.value(1), arguments.value(2).toInt());
    if (mode == "start")
        return startAndExit(arguments.value(1), {});
    if (mode == "start-empty")
        return startAndExit({}, arguments.value(1));
    std::fprintf(stderr, "unknown child mode\n");
    return 2;
}

void nextPictureBench(BenchTable &table)
{
    QTemporaryDir dir;
    const QStringList pictures = linkCopies(makeLargeJpeg(dir.path(), "walk.jpg"), 12);
    const double djpeg = djpegMs(pictures.first(), {});
    table.add({"Next, folder of " + LargeJpegWhat + ", fit mode, steady state, 300 ms on each (median)",
               "djpeg full size (process included)", medianNextMs(pictures, 300), djpeg});
    table.add({"  the same, back to back with no pause (median)", "djpeg full size (process included)",
               medianNextMs(pictures, 0), djpeg});
}

void commandLineFileBench(BenchTable &table)
{
    QTemporaryDir large(QStringLiteral("/tmp/vimora-cmdline-XXXXXX"));
    QTemporaryDir alone;
    makeLargeFolder(large.path(), mixedSuffixes());
    const QString source = makeLargeJpeg(alone.path(), "photo.jpg");
    const QString inLarge = large.path() + "/photo.jpg";
    QFile::copy(source, inLarge);
    openAndShowMs(inLarge); // both start from a warm cache
    const double ours = openAndShowMs(inLarge);
    const double reference = openAndShowMs(source);
    table.add({QStringLiteral("command-line file in %1 files, to picture shown").arg(LargeFolderSize),
               "the same file in a folder of its own", ours, reference});
}

void memoryWalkBench(BenchTable &table)
{
    QTemporaryDir dir;
    const int count = quickBench() ? 40 : 200;
    const QStringList pictures = linkCopies(makeLargeJpeg(dir.path(), "walk.jpg"), count);
    const ChildRun walk = runSelf({"walk", pictures.first(), QString::number(count)});
    table.add({QStringLiteral("peak resident memory walking %1 x %2").arg(count).arg(LargeJpegWhat),
               "one decoded picture (6000 x 4000 RGB32)", walk.figure, DecodedPictureMB, "MB"});
    table.add({QStringLiteral("  time of that walk, per picture"), "djpeg full size (process included)",
               walk.ms / count, djpegMs(pictures.first(), {})});
}

void startupBench(BenchTable &table)
{
    QTemporaryDir dir;
    QTemporaryDir empty;
    const QString picture = makeLargeJpeg(dir.path(), "first.jpg");
    ChildRun ours{1e12, 0}, reference{1e12, 0};
    for (int i = 0; i < benchRuns(3); ++i) {
        const ChildRun withPicture = runSelf({"start", picture});
        const ChildRun withEmpty = runSelf({"start-empty", empty.path()});
        if (withPicture.ms < ours.ms)
            ours = withPicture;
        if (withEmpty.ms < reference.ms)
            reference = withEmpty;
    }
    table.add({"start-up to first picture shown (" + LargeJpegWhat + ")", "start-up on an empty folder", ours.ms,
               reference.ms});
    table.add({"  peak resident memory of that start-up", "start-up on an empty folder", ours.figure,
               reference.figure, "MB"});
}
