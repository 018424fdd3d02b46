#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Which files of the list the main window keeps decoded ahead of the user.
namespace PrefetchRules {

// Pictures decoded in this process. Metafiles are drawn by a child process
// and movies and slides are not decoded at all, so they are not held.
bool worthPrefetching(const QString &fileName);

// The list positions whose pictures are held while `current` is shown: it
// (going back to it then costs nothing) and its neighbours, in the order of
// use, next first. The last one's next is the first only in a slideshow,
// as Mostra_Image wraps only there.
QList<int> positionsToHold(int current, int upperBound, bool slideshowWraps);

// The names at those positions that are worth prefetching.
QStringList namesToHold(const QStringList &fileNames, int current, bool slideshowWraps);

} // namespace PrefetchRules
