#include "viewer/StartupRules.h"

#include "core/FileTypeCatalogue.h"
#include "viewer/FolderListing.h"

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

int slideSecondsFromStore(int stored) { return stored < 1 ? 1 : stored; }

bool showsBeforeListingEnds(const QString &folder, const QString &name, const QString &filterCode,
                            const QString &filterItemText)
{
    const QString code = FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(name));
    return FileTypeCatalogue::mediaClassOf(code) == FileTypeCatalogue::MediaClass::Picture
        && WouldBeListed(folder, name, filterCode, filterItemText);
}

} // namespace StartupRules
