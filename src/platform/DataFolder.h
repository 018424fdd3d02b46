#pragma once

#include <QIcon>
#include <QString>

namespace DataFolder {

// The program's data folder, ending in "/": the executable's folder when
// the message file lies beside it (a build tree), else the installed
// share/vimora folder. It is only ever read.
QString locate(const QString &executableFolder);

// Per-user folders of Vimora, created on demand.
QString userCacheFolder();  // $XDG_CACHE_HOME/Vimora/
QString userDataFolder();   // $XDG_DATA_HOME/Vimora/

// An icon of the desktop's theme, or the bundled one of the same name.
QIcon themedIcon(const QString &programFolder, const QString &name);

} // namespace DataFolder
