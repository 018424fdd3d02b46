#include "viewer/StartupRules.h"

#include "core/FileTypeCatalogue.h"
#include "viewer/FolderListing.h"

#include <QDir>

namespace StartupRules {

CommandLineFile splitCommandLine(const QString &commandLine)
{
    // "\" is accepted as well, as the path routines do.
    const qsizetype cut = qMax(commandLine.lastIndexOf(QLatin1Char('/')), commandLine.lastIndexOf(QLatin1Char('\\')));
    if (cut < 0)
        return {QString(), commandLine};
    QString folder = commandLine.left(cut);
    if (folder.isEmpty())
        folder = QStringLiteral("/");
    return {folder, commandLine.mid(cut + 1)};
}

QString absoluteCommandLine(const QString &commandLine, const QString &workingFolder)
{
    if (commandLine.isEmpty() || commandLine.startsWith(QLatin1Char('/')))
        return commandLine;
    return QDir::cleanPath(workingFolder + QLatin1Char('/') + commandLine);
}

QString folderOpenedWhole(const QString &absoluteCommandLine, bool namesFolder)
{
    if (!namesFolder || absoluteCommandLine.endsWith(QLatin1Char('/')))
        return absoluteCommandLine;
    return absoluteCommandLine + QLatin1Char('/');
}

QString withoutTrailingSlash(const QString &folder)
{
    QString result = folder;
    while (result.size() > 1 && result.endsWith(QLatin1Char('/')))
        result.chop(1);
    return result;
}

QString startFolder(const QString &storedFolder, const QString &programFolder, bool onOpticalDrive, bool onNetwork)
{
    if (storedFolder.isEmpty() || onOpticalDrive || onNetwork)
        return withoutTrailingSlash(programFolder);
    return storedFolder;
}

int slideSecondsFromStore(int stored) { return qBound(1, stored, MaxSlideSeconds); }

bool showsBeforeListingEnds(const QString &folder, const QString &name, const QString &filterCode,
                            const QString &filterItemText)
{
    const QString code = FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(name));
    return FileTypeCatalogue::mediaClassOf(code) == FileTypeCatalogue::MediaClass::Picture
        && WouldBeListed(folder, name, filterCode, filterItemText);
}

} // namespace StartupRules
