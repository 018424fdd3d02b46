#include "bench/BenchWindow.h"

#include "bench/BenchTable.h"
#include "platform/DataFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QProcess>

#include <unistd.h>

QString makeLargeJpeg(const QString &folder, const QString &name)
{
    QImage picture(6000, 4000, QImage::Format_RGB32);
    QPainter painter(&picture);
    QLinearGradient gradient(0, 0, 6000, 4000);
    gradient.setColorAt(0, QColor(30, 90, 160));
    gradient.setColorAt(1, QColor(240, 200, 80));
    painter.fillRect(picture.rect(), gradient);
    for (int i = 0; i < 400; ++i)
        painter.fillRect(QRect((i * 7919) % 6000, (i * 104729) % 4000, 180, 120), QColor::fromHsv(i % 360, 160, 200));
    painter.end();
    const QString path = folder + '/' + name;
    picture.save(path, "JPEG", 90);
    return path;
}

double djpegMs(const QString &path, const QStringList &scale)
{
    return bestOf(benchRuns(3),
                  [&] { QProcess::execute("djpeg", scale + QStringList{"-outfile", "/dev/null", path}); });
}

QStringList linkCopies(const QString &file, int count)
{
    QStringList names;
    const QString stem = file.chopped(4);
    for (int i = 0; i < count; ++i) {
        const QString name = stem + QStringLiteral("%1.jpg").arg(i, 3, 10, QLatin1Char('0'));
        if (::link(QFile::encodeName(file).constData(), QFile::encodeName(name).constData()) != 0)
            QFile::copy(file, name);
        names.append(name);
    }
    QFile::remove(file);
    return names;
}

OpenWindow::OpenWindow(const QString &path, const QString &storedFolder,
                       const std::function<void(frmMain &)> &prepare)
    : settings(config.path() + "/Vimora.ini"), state(settings, messages), window(state, context, prompts, launcher)
{
    settings.write("UserDef", "Language", "EN");
    if (!storedFolder.isEmpty())
        settings.write("UserDef", "Path", storedFolder);
    state.ProgramFolder = DataFolder::locate(QCoreApplication::applicationDirPath());
    window.resize(1280, 1024);
    if (prepare)
        prepare(window);
    window.Form_Load(path);
}
