#include "system/AssociationGroups.h"

#include "core/SettingsStore.h"

namespace AssociationGroups {

namespace {
Extension ext(const char *code, const char *description, const char *icon,
              std::initializer_list<const char *> mimeTypes)
{
    Extension e{QString::fromLatin1(code), QString::fromLatin1(description), {},
                QStringLiteral("vimora-") + QString::fromLatin1(icon)};
    for (const char *mime : mimeTypes)
        e.mimeTypes.append(QString::fromLatin1(mime));
    return e;
}
} // namespace

const QList<Group> &groups()
{
    // The MIME types are those of the shared MIME database plus the older
    // aliases that some desktops still use when they look up a default.
    static const QList<Group> table{
        {"JPG", "CheckJPG", {ext("JPG", "JPG File", "jpeg", {"image/jpeg"}), ext("JPEG", "JPEG File", "jpeg", {"image/jpeg"})}},
        {"BMP", "CheckBMP", {ext("BMP", "Bitmap File", "picture", {"image/bmp", "image/x-bmp"})}},
        {"GIF", "CheckGIF", {ext("GIF", "GIF File", "picture", {"image/gif"})}},
        {"WMF", "CheckWMF", {ext("WMF", "Windows MetaFile", "picture", {"image/wmf", "image/x-wmf"})}},
        {"EMF", "CheckEMF", {ext("EMF", "Enhanced MetaFile", "picture", {"image/emf", "image/x-emf"})}},
        {"CUR", "CheckCUR", {ext("CUR", "Cursor File", "picture", {"image/x-win-bitmap"})}},
        {"RLE", "CheckRLE", {ext("RLE", "Run-Length Encoded File", "picture", {"image/rle"})}},
        {"MPEG", "chkMPEG", {ext("MPG", "MPG File", "mpeg", {"video/mpeg"}), ext("MPEG", "MPEG File", "mpeg", {"video/mpeg"})}},
        {"AVI", "chkAVI", {ext("AVI", "AVI Movie", "avi", {"video/x-msvideo", "video/vnd.avi"})}},
        {"IVF", "chkIVF", {ext("IVF", "Indeo Movie", "mpeg", {"video/x-ivf"})}},
        {"QT", "chkQT", {ext("QT", "QT QuickTime File", "quicktime", {"video/quicktime"}),
                         ext("MOV", "MOV QuickTime File", "quicktime", {"video/quicktime"})}},
        {"ASF", "chkASF", {ext("ASF", "ASF Windows Media Stream", "asf", {"application/vnd.ms-asf", "video/x-ms-asf"}),
                           ext("ASX", "ASX Windows Media Stream Redirector", "asx", {"audio/x-ms-asx", "video/x-ms-asf-plugin"})}},
        {"RAM", "chkRAM", {ext("RAM", "RAM Real Media File", "realmedia", {"application/ram", "audio/x-pn-realaudio"}),
                           ext("RA", "RA Real Media File", "realmedia", {"audio/vnd.rn-realaudio"}),
                           ext("RMM", "RMM Real Media File", "realmedia", {"application/vnd.rn-realmedia"}),
                           ext("RM", "RM Real Media File", "realmedia", {"application/vnd.rn-realmedia"})}},
    };
    return table;
}

QString unlinkedDescription(const Extension &extension)
{
    if (extension.code == u"JPG" || extension.code == u"JPEG")
        return QStringLiteral("JPG/JPEG File");
    return extension.description;
}

QStringList allMimeTypes()
{
    QStringList all;
    for (const Group &group : groups())
        for (const Extension &extension : group.extensions)
            for (const QString &mime : extension.mimeTypes)
                if (!all.contains(mime))
                    all.append(mime);
    return all;
}

QSet<QString> readLinked(const SettingsStore &settings)
{
    QSet<QString> linked;
    for (const Group &group : groups())
        if (settings.read(QStringLiteral("Linked"), group.key, QStringLiteral("N")) == u"Y")
            linked.insert(group.key);
    return linked;
}

QString typeTextOfPath(const QString &path)
{
    const QString lastFour = path.right(4).toUpper();
    const qsizetype dot = lastFour.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? lastFour : lastFour.mid(dot + 1);
}

bool shellOpenAvailable(const QString &typeCode, const QSet<QString> &linked)
{
    // RLE has a mark of its own but is not among the codes Shell Open checks.
    static const QSet<QString> guarded{"JPG", "BMP", "GIF", "WMF", "EMF", "CUR",
                                       "MPEG", "AVI", "IVF", "QT", "ASF", "RAM"};
    return !(guarded.contains(typeCode) && linked.contains(typeCode));
}

} // namespace AssociationGroups
