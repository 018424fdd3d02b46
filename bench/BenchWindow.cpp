#include "bench/BenchWindow.h"

#include "platform/DataFolder.h"

#include <QCoreApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

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

OpenWindow::OpenWindow(const QString &path)
    : settings(config.path() + "/Vimora.ini"), state(settings, messages), window(state, prompts, launcher)
{
    settings.write("UserDef", "Language", "EN");
    state.ProgramFolder = DataFolder::locate(QCoreApplication::applicationDirPath());
    window.resize(1280, 1024);
    window.Form_Load(path);
}
