#include "output/PictureOutput.h"

#include "platform/DataFolder.h"
#include "platform/Launcher.h"

#include <QBuffer>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QPrinter>
#include <QSaveFile>
#include <QStandardPaths>

namespace PictureOutput {

QString TempBitmapPath() { return DataFolder::userCacheFolder() + QStringLiteral("~TMP~WAL.BMP"); }

bool saveBitmap(const QImage &picture, const QString &path)
{
    if (picture.isNull())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // 24 bits: what a screen capture holds, and what every reader accepts.
    if (!picture.convertToFormat(QImage::Format_RGB888).save(&file, "BMP")) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

bool copyFile(const QString &source, const QString &destination, QString *error)
{
    QFile input(source);
    QSaveFile output(destination);
    if (!input.open(QIODevice::ReadOnly) || !output.open(QIODevice::WriteOnly)) {
        if (error)
            *error = input.isOpen() ? output.errorString() : input.errorString();
        return false;
    }
    QByteArray block;
    while (!(block = input.read(1 << 20)).isEmpty()) {
        if (output.write(block) != block.size())
            break;
    }
    if (input.error() != QFile::NoError || !input.atEnd()) {
        output.cancelWriting();
        if (error)
            *error = input.errorString();
        return false;
    }
    if (!output.commit()) {
        if (error)
            *error = output.errorString();
        return false;
    }
    return true;
}

void putOnClipboard(const QImage &picture)
{
    auto *data = new QMimeData;
    data->setImageData(picture);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    data->setData(QStringLiteral("image/png"), png);
    QGuiApplication::clipboard()->setMimeData(data);
}

bool printPicture(QPrinter &printer, const QImage &picture, int copies)
{
    QPainter painter;
    if (picture.isNull() || !painter.begin(&printer))
        return false;
    // Natural size: the picture's own resolution (96 dpi when it has none)
    // turned into the printer's.
    const double dpmX = picture.dotsPerMeterX() > 0 ? picture.dotsPerMeterX() : 3780;
    const double dpmY = picture.dotsPerMeterY() > 0 ? picture.dotsPerMeterY() : 3780;
    const QSizeF size(picture.width() * printer.logicalDpiX() / (dpmX * 0.0254),
                      picture.height() * printer.logicalDpiY() / (dpmY * 0.0254));
    for (int copy = 0; copy < copies; ++copy) {
        if (copy > 0 && !printer.newPage())
            break;
        painter.drawImage(QRectF(QPointF(0, 0), size), picture);
    }
    painter.end();
    return printer.printerState() != QPrinter::Error;
}

bool printWithOwnProgram(Launcher &launcher, const QString &path)
{
    for (const char *office : {"libreoffice", "soffice"}) {
        const QString program = QStandardPaths::findExecutable(QLatin1String(office));
        if (!program.isEmpty())
            return launcher.start(program, {QStringLiteral("-p"), path}).started;
    }
    return false;
}

} // namespace PictureOutput
