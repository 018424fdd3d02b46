// Listing a large folder, and showing a large JPEG in fit mode.
#include "bench/BenchTable.h"
#include "bench/BenchWindow.h"
#include "support/WindowProbe.h"

#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "platform/DataFolder.h"
#include "platform/Launcher.h"
#include "platform/Prompts.h"
#include "viewer/FolderListing.h"
#include "context/PicturePrefetch.h"
#include "viewer/frmMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRadioButton>
#include <QTemporaryDir>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

void fitDisplayBench(BenchTable &table)
{
    QTemporaryDir dir;
    const QString path = makeLargeJpeg(dir.path(), "large.jpg");
    OpenWindow open(path);
    frmMain &window = open.window;
    ui(window).Option1[0]->setChecked(true);
    QCoreApplication::processEvents();

    const double ours = bestOf(benchRuns(3), [&] {
        window.prefetch().hold({}, {}); // a picture not decoded yet, not the one held from the last run
        window.Mostra_Image(false, path, true);
        window.repaint();
    });
    const double reference = bestOf(benchRuns(3), [&] {
        QImage full;
        full.load(path);
    });
    table.add({"Mostra_Image, 24 MP JPEG, fit mode, 1280 x 1024", "QImage full decode of the same file", ours, reference});
    table.add({"Mostra_Image, 24 MP JPEG, fit mode, 1280 x 1024", "djpeg -scale 1/4 (process included)", ours,
               djpegMs(path, {"-scale", "1/4"})});
    table.add({"Mostra_Image, 24 MP JPEG, fit mode, 1280 x 1024", "djpeg full size (process included)", ours,
               djpegMs(path, {})});
}

// Zoom and pan of an 8000 x 6000 picture, against painting a window-sized
// picture once (what any redraw of the window costs at the least).
void zoomAndPanBench(BenchTable &table)
{
    QTemporaryDir dir;
    QImage picture(8000, 6000, QImage::Format_RGB32);
    picture.fill(QColor(40, 120, 90));
    QPainter(&picture).fillRect(1000, 1000, 5000, 3000, QColor(200, 80, 40));
    const QString path = dir.path() + "/huge.bmp";
    picture.save(path);
    OpenWindow open(path);
    frmMain &window = open.window;
    QCoreApplication::processEvents();

    int percent = 100;
    const double zoom = bestOf(benchRuns(5), [&] {
        percent = percent == 152 ? 132 : 152;
        window.ZoomTo(percent);
        window.repaint();
    });
    QImage frame(1280, 1024, QImage::Format_RGB32);
    const QImage source = picture.copy(0, 0, 1280, 1024);
    const double reference = bestOf(benchRuns(5), [&] {
        QPainter painter(&frame);
        painter.drawImage(0, 0, source);
    });
    table.add({"zoom 8000 x 6000 to 152 % / 132 % and redraw", "paint one window-sized picture", zoom, reference});

    QWidget *target = window.findChild<QWidget *>("ImgEgg");
    int step = 0;
    const double pan = bestOf(20, [&] {
        target->move(target->pos() + QPoint(step++ % 2 ? 40 : -40, 0));
        window.repaint();
    });
    table.add({"pan 8000 x 6000 at 132 % by 40 px and redraw", "paint one window-sized picture", pan, reference});
}

} // namespace

void folderListingBench(BenchTable &table); // folder_listing_bench.cpp
void thumbnailPageBench(BenchTable &table);  // thumbnail_page_bench.cpp
void nextPictureBench(BenchTable &table);    // picture_walk_bench.cpp
void commandLineFileBench(BenchTable &table);
void memoryWalkBench(BenchTable &table);
void startupBench(BenchTable &table);
void peerBench(BenchTable &table); // peer_bench.cpp
void todaysFitBench(BenchTable &table);        // todays_pictures_bench.cpp
void colourConversionBench(BenchTable &table);
void liveFolderBench(BenchTable &table); // live_folder_bench.cpp

QList<Bench> allBenches()
{
    return {{"listing", folderListingBench}, {"fit-display", fitDisplayBench}, {"zoom-pan", zoomAndPanBench},
            {"thumbnail-page", thumbnailPageBench}, {"next", nextPictureBench},
            {"command-line", commandLineFileBench}, {"memory", memoryWalkBench}, {"startup", startupBench},
            {"live-folder", liveFolderBench}, {"peers", peerBench}, {"todays-types", todaysFitBench},
            {"colour", colourConversionBench}};
}
