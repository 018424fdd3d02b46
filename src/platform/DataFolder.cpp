#include "platform/DataFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace DataFolder {

namespace {
QString withSlash(QString path)
{
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    return path;
}

QString ensured(const QString &path)
{
    QDir().mkpath(path);
    return withSlash(path);
}
} // namespace

QString locate(const QString &executableFolder)
{
    const QString beside = withSlash(executableFolder);
    if (QFileInfo::exists(beside + QStringLiteral("PRMSG")))
        return beside;
    // An installed copy moved to another prefix finds its data folder
    // relative to itself first.
    const QString relative = QDir::cleanPath(beside + QStringLiteral("../share/vimora")) + QLatin1Char('/');
    if (QFileInfo::exists(relative + QStringLiteral("PRMSG")))
        return relative;
    return withSlash(QStringLiteral(VIMORA_DATA_DIR));
}

QString userCacheFolder()
{
    return ensured(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QStringLiteral("/Vimora"));
}

QString userDataFolder()
{
    return ensured(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Vimora"));
}

QIcon themedIcon(const QString &programFolder, const QString &name)
{
    const QString bundled = programFolder + QStringLiteral("icons/") + name + QStringLiteral(".svg");
    return QIcon::fromTheme(name, QIcon(bundled));
}

} // namespace DataFolder
