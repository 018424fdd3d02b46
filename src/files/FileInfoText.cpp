#include "files/FileInfoText.h"

#include "core/MessageCatalogue.h"

#include <QLocale>

namespace FileInfoText {

namespace {
struct Row {
    const char *code;
    int number;
    const char *description;
    const char *icon;
    const char *fallback;
};

const Row Rows[] = {
    {"MPEG", 20611, "MPEG Movie", "video-mpeg", "video-x-generic"},
    {"AVI", 20612, "AVI Movie", "video-x-msvideo", "video-x-generic"},
    {"ASF", 20613, "ASF Streaming Media", "video-x-ms-asf", "video-x-generic"},
    {"ASX", 20614, "ASF Stream Locator", "video-x-ms-asf", "video-x-generic"},
    {"RAM", 20615, "Real Media", "application-vnd.rn-realmedia", "video-x-generic"},
    {"QT", 20616, "QuickTime Movie", "video-quicktime", "video-x-generic"},
    {"PPT", 20617, "PowerPoint", "application-vnd.ms-powerpoint", "x-office-presentation"},
    {"PPS", 20617, "PowerPoint", "application-vnd.ms-powerpoint", "x-office-presentation"},
    {"BMP", 20618, "Bitmap", "image-x-generic", "image-x-generic"},
    {"ICO", 20619, "Icon", "image-x-ico", "image-x-generic"},
    {"JPG", 20620, "JPEG", "image-jpeg", "image-x-generic"},
    {"IFO", 20621, "DVD IFO", "video-x-generic", "video-x-generic"},
};
} // namespace

TypeLook lookOf(const QString &typeCode, const MessageCatalogue &messages)
{
    for (const Row &row : Rows) {
        if (typeCode.compare(QLatin1String(row.code), Qt::CaseInsensitive) != 0)
            continue;
        return {messages.GetMsg(row.number, QString::fromUtf8(row.description)), QString::fromUtf8(row.icon),
                QString::fromUtf8(row.fallback), typeCode.compare(QLatin1String("ICO"), Qt::CaseInsensitive) == 0};
    }
    return {{}, QStringLiteral("image-x-generic"), QStringLiteral("image-x-generic"), false};
}

QString detailText(const QString &detail, const QString &sizeText, const QDateTime &modified)
{
    const QString breaks = QStringLiteral("\r\n\r\n");
    return QStringLiteral(" (") + detail + QLatin1Char(')') + breaks + sizeText + breaks
         + QLocale().toString(modified, QLocale::ShortFormat);
}

} // namespace FileInfoText
