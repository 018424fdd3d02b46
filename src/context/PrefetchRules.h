#pragma once

#include <QList>
#include <QSize>
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

enum Mode { Fitted, ActualSize };

// The names at those positions that are worth prefetching. At actual size
// only JPEGs: they are decoded as far as they show, where any other large
// picture would be held whole.
QStringList namesToHold(const QStringList &fileNames, int current, bool slideshowWraps, Mode mode = Fitted);

// The size to decode a JPEG of natural size at for a fit into fit: the
// smallest of its exact k/8 DCT scales that covers the fitted size, so the
// decoder does no smooth rescale after the DCT scaling and the painting
// does the last shrink. fit itself when no exact scale lies between.
QSize jpegFitBound(QSize natural, QSize fit);

} // namespace PrefetchRules
