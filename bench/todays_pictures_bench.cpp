// Today's picture types fitted into the window, each next to its library's
// own command-line decoder on the same file, and what converting a photo's
// colour profile to sRGB adds to decoding it.
#include "bench/BenchTable.h"
#include "bench/BenchWindow.h"
#include "context/PicturePrefetch.h"
#include "platform/PictureLoader.h"
#include "support/WindowProbe.h"
#include "viewer/frmMain.h"

#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QCoreApplication>
#include <QImage>
#include <QImageReader>
#include <QProcess>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <libheif/heif.h>

#include <cstring>
#include <functional>

void todaysFitBench(BenchTable &table);
void colourConversionBench(BenchTable &table);

namespace {

// 24 megapixels in HEVC or AV1, through libheif's encoders at their fastest.
bool writeHeif(const QImage &picture, const QString &path, heif_compression_format format)
{
    heif_context *context = heif_context_alloc();
    heif_encoder *encoder = nullptr;
    bool written = false;
    if (heif_context_get_encoder_for_format(context, format, &encoder).code == heif_error_Ok) {
        heif_encoder_set_lossy_quality(encoder, 60);
        heif_encoder_set_parameter(encoder, "speed", "9"); // AV1; HEVC ignores it
        heif_encoder_set_parameter(encoder, "preset", "ultrafast");
        const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
        heif_image *image = nullptr;
        heif_image_create(rgb.width(), rgb.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image);
        heif_image_add_plane(image, heif_channel_interleaved, rgb.width(), rgb.height(), 8);
        int stride = 0;
        uint8_t *plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < rgb.height(); ++y)
            std::memcpy(plane + qsizetype(y) * stride, rgb.constScanLine(y), size_t(rgb.width()) * 3);
        written = heif_context_encode_image(context, image, encoder, nullptr, nullptr).code == heif_error_Ok
                  && heif_context_write_to_file(context, QFile::encodeName(path).constData()).code == heif_error_Ok;
        heif_image_release(image);
        heif_encoder_release(encoder);
    }
    heif_context_free(context);
    return written;
}

// The tool's best time writing the whole picture to `output` (its standard
// output when `toStandardOutput`); negative when a run fails or writes less
// than a byte a pixel, for a tool that ends at once on a wrong argument
// would look fast.
double toolMs(const QString &tool, const QStringList &arguments, const QString &output, bool toStandardOutput,
              qint64 pixels)
{
    bool failed = false;
    const double best = bestOf(benchRuns(3), [&] {
        QFile::remove(output);
        QProcess process;
        process.setStandardOutputFile(toStandardOutput ? output : QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(tool, arguments);
        const bool ran = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit
                         && process.exitCode() == 0;
        failed = failed || !ran || QFileInfo(output).size() < pixels;
    });
    QFile::remove(output);
    return failed ? -1 : best;
}

double fitMs(const QString &path)
{
    OpenWindow open(path);
    frmMain &window = open.window;
    ui(window).Option1[0]->setChecked(true);
    QCoreApplication::processEvents();
    return bestOf(benchRuns(3), [&] {
        window.prefetch().hold({}, {});
        window.Mostra_Image(false, path, true);
        window.repaint();
    });
}

} // namespace

void todaysFitBench(BenchTable &table)
{
    QTemporaryDir dir;
    const QImage picture(makeLargeJpeg(dir.path(), "source.jpg"));
    // The tools write the decoded picture whole: PNM, or the decoder's own
    // YUV (y4m) where they write no PNM, which spares them the RGB step.
    const struct {
        const char *name, *tool, *output;
        bool toStandardOutput;
        std::function<bool(const QString &)> write;
        std::function<QStringList(const QString &, const QString &)> arguments;
    } types[] = {
        {"photo.png", "pngtopnm", "out.pnm", true, [&](const QString &path) { return picture.save(path, "PNG"); },
         [](const QString &path, const QString &) { return QStringList{path}; }},
        {"photo.webp", "dwebp", "out.ppm", false, [&](const QString &path) { return picture.save(path, "WEBP", 80); },
         [](const QString &path, const QString &out) { return QStringList{path, "-ppm", "-o", out}; }},
        {"photo.heic", "heif-convert", "out.y4m", false,
         [&](const QString &path) { return writeHeif(picture, path, heif_compression_HEVC); },
         [](const QString &path, const QString &out) { return QStringList{"--quiet", path, out}; }},
        {"photo.avif", "avifdec", "out.y4m", false,
         [&](const QString &path) { return writeHeif(picture, path, heif_compression_AV1); },
         [](const QString &path, const QString &out) { return QStringList{path, out}; }},
    };
    for (const auto &type : types) {
        const QString path = dir.filePath(QLatin1String(type.name));
        if (!type.write(path) || QStandardPaths::findExecutable(QLatin1String(type.tool)).isEmpty())
            continue; // no encoder or no reference here: no row rather than a false one
        const QString output = dir.filePath(QLatin1String(type.output));
        const double reference = toolMs(type.tool, type.arguments(path, output), output, type.toStandardOutput,
                                        qint64(picture.width()) * picture.height());
        if (reference < 0) {
            qWarning("%s did not decode %s: no row", type.tool, type.name);
            continue;
        }
        table.add({QStringLiteral("Mostra_Image, 24 MP %1, fit mode").arg(QString(type.name).section('.', 1).toUpper()),
                   QStringLiteral("%1 full size to a file (process included)").arg(type.tool), fitMs(path), reference});
        QFile::remove(path);
    }
}

void colourConversionBench(BenchTable &table)
{
    // The same photo with a Display P3 profile: decoding it is the
    // reference, converting its colours the extra (target: under 15 %).
    QTemporaryDir dir;
    const QString plain = makeLargeJpeg(dir.path(), "plain.jpg");
    QImage picture(plain);
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const QString path = dir.filePath("p3.jpg");
    picture.save(path, "JPEG", 90);
    const double decode = bestOf(benchRuns(3), [&] {
        QImageReader reader(path);
        reader.read();
    });
    const double shown = bestOf(benchRuns(3), [&] { PictureLoader::load(path); });
    table.add({"24 MP JPEG with a Display P3 profile: decode and convert to sRGB, whole",
               "the same decode without conversion", shown, decode});
    // As the window shows it: fitted first, so only the shown pixels are converted.
    PictureLoader::Options fit;
    fit.fitInto = QSize(1280, 1024);
    const double fittedWithProfile = bestOf(benchRuns(3), [&] { PictureLoader::load(path, fit); });
    const double fittedPlain = bestOf(benchRuns(3), [&] { PictureLoader::load(plain, fit); });
    table.add({"  the same fitted into 1280 x 1024", "the same photo without profile, fitted", fittedWithProfile,
               fittedPlain});
}
