#include "support/TestClips.h"

#include <QColor>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace TestClips {

namespace {

QStringList testsrc()
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("testsrc=size=%1x%2:rate=25").arg(Width).arg(Height)};
}

QStringList sine()
{
    return {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("sine=frequency=440:sample_rate=44100")};
}

// ffmpeg arguments between the inputs and the output name, per extension.
QStringList encoding(const QString &extension)
{
    const QString t = QString::number(Seconds);
    if (extension == QLatin1String("avi"))
        return testsrc() + QStringList{"-t", t, "-c:v", "mpeg4", "-f", "avi"};
    if (extension == QLatin1String("mpg"))
        return testsrc() + sine() + QStringList{"-t", t, "-c:v", "mpeg1video", "-c:a", "mp2", "-f", "mpeg"};
    if (extension == QLatin1String("mpeg"))
        return testsrc() + QStringList{"-t", t, "-c:v", "mpeg2video", "-f", "vob"};
    if (extension == QLatin1String("mov"))
        return testsrc() + QStringList{"-t", t, "-c:v", "mjpeg", "-f", "mov"};
    if (extension == QLatin1String("asf"))
        return testsrc() + sine() + QStringList{"-t", t, "-c:v", "wmv2", "-c:a", "wmav2", "-f", "asf"};
    if (extension == QLatin1String("rm"))
        return testsrc() + QStringList{"-t", t, "-c:v", "rv20", "-f", "rm"};
    // Bare MPEG streams: the video and audio halves of an .mpg.
    if (extension == QLatin1String("m1v"))
        return testsrc() + QStringList{"-t", t, "-c:v", "mpeg1video", "-f", "mpeg1video"};
    if (extension == QLatin1String("mpa"))
        return sine() + QStringList{"-t", t, "-c:a", "mp2", "-f", "mp2"};
    if (extension == QLatin1String("ivf"))
        return testsrc() + QStringList{"-t", t, "-c:v", "libvpx", "-b:v", "200k", "-f", "ivf"};
    return {};
}

QTemporaryDir &clipFolder()
{
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/vimora-clips-XXXXXX"));
    return dir;
}

} // namespace

bool run(const QString &program, const QStringList &arguments, int timeoutMs, const QStringList &environment)
{
    QProcess process;
    if (!environment.isEmpty()) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const QString &pair : environment)
            env.insert(pair.section(QLatin1Char('='), 0, 0), pair.section(QLatin1Char('='), 1));
        process.setProcessEnvironment(env);
    }
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return false;
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool ffmpegAvailable()
{
    static const bool available = !QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty();
    return available;
}

QString folder()
{
    return clipFolder().path();
}

QStringList extensions()
{
    return {"avi", "mpg", "mpeg", "mov", "asf", "rm", "ivf"};
}

QString clip(const QString &extension)
{
    static QHash<QString, QString> made;
    if (made.contains(extension))
        return made.value(extension);
    QString path;
    const QStringList arguments = encoding(extension);
    if (ffmpegAvailable() && !arguments.isEmpty()) {
        const QString target = folder() + QStringLiteral("/testsrc.") + extension;
        if (run(QStringLiteral("ffmpeg"),
                QStringList{"-hide_banner", "-loglevel", "error", "-y"} + arguments + QStringList{target}))
            path = target;
    }
    made.insert(extension, path);
    return path;
}

QString dvdFolder(QString *whyNot)
{
    static QString made;
    static QString reason;
    static bool tried = false;
    if (!tried) {
        tried = true;
        const QString root = folder() + QStringLiteral("/dvd");
        const QString vob = folder() + QStringLiteral("/dvd-title.mpg");
        if (!ffmpegAvailable()) {
            reason = QStringLiteral("ffmpeg is not installed");
        } else if (QStandardPaths::findExecutable(QStringLiteral("dvdauthor")).isEmpty()) {
            reason = QStringLiteral("dvdauthor is not installed");
        } else if (!run(QStringLiteral("ffmpeg"),
                        QStringList{"-hide_banner", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                    "testsrc=size=720x576:rate=25", "-f", "lavfi", "-i",
                                    "sine=frequency=440:sample_rate=48000", "-t", QString::number(Seconds),
                                    "-target", "pal-dvd", vob})) {
            reason = QStringLiteral("ffmpeg could not make a PAL DVD clip");
        } else if (!run(QStringLiteral("dvdauthor"), {"-o", root, "-t", vob}, 60000, {"VIDEO_FORMAT=PAL"})
                   || !run(QStringLiteral("dvdauthor"), {"-o", root, "-T"}, 60000, {"VIDEO_FORMAT=PAL"})) {
            reason = QStringLiteral("dvdauthor failed");
        } else if (!QFileInfo::exists(root + QStringLiteral("/VIDEO_TS/VIDEO_TS.IFO"))) {
            reason = QStringLiteral("dvdauthor made no VIDEO_TS.IFO");
        } else {
            made = root;
        }
    }
    if (whyNot)
        *whyNot = reason;
    return made;
}

bool showsColourBars(const QImage &image)
{
    if (image.isNull())
        return false;
    QSet<int> hues;
    qint64 bright = 0;
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < rgb.height(); y += 2) {
        for (int x = 0; x < rgb.width(); x += 2) {
            const QColor colour = QColor::fromRgb(rgb.pixel(x, y));
            if (colour.value() > 96) {
                ++bright;
                if (colour.hsvSaturation() > 96)
                    hues.insert(colour.hsvHue() / 30);
            }
        }
    }
    const qint64 sampled = qint64((rgb.width() + 1) / 2) * ((rgb.height() + 1) / 2);
    return bright * 4 > sampled && hues.size() >= 4;
}

} // namespace TestClips
