#pragma once

#include <QString>

// Start-up decisions of the main window, free of widgets.
namespace StartupRules {

struct CommandLineFile {
    QString folder; // text before the last separator ("/" for a file in the root)
    QString name;   // text after it
};

// The command line is one path, taken whole: no quotes removed, no options.
CommandLineFile splitCommandLine(const QString &commandLine);

// A relative command line names a file from the folder the program was
// started in.
QString absoluteCommandLine(const QString &commandLine, const QString &workingFolder);

// A folder on the command line (a file manager's "Open with") is opened
// itself, and its first file shown: it becomes that folder with no name.
QString folderOpenedWhole(const QString &absoluteCommandLine, bool namesFolder);

// The folder a start without a command line opens: the stored one, unless
// none is stored or it lies on an optical drive or a network mount.
QString startFolder(const QString &storedFolder, const QString &programFolder, bool onOpticalDrive,
                    bool onNetwork);

// The program folder without its trailing separator (the root stays "/").
QString withoutTrailingSlash(const QString &folder);

constexpr int MaxSlideSeconds = 60; // the slider's end
int slideSecondsFromStore(int stored); // 1 to MaxSlideSeconds

// Whether the file asked for is shown while its folder is still being
// listed: a picture that the listing will admit. Movies and slides wait
// for the list, as they start players and programs.
bool showsBeforeListingEnds(const QString &folder, const QString &name, const QString &filterCode,
                            const QString &filterItemText);

} // namespace StartupRules
