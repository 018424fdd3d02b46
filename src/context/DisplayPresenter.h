#pragma once

#include "core/FileTypeCatalogue.h"

#include <QString>

// What puts a file on the screen, in the order the context asks for it. The
// main window is the one presenter; tests give one that writes down calls.
class DisplayPresenter {
public:
    virtual ~DisplayPresenter() = default;

    // A crop selection goes before anything moves.
    virtual void clearSelection() = 0;
    // Another file is coming: the status row emptied, the slideshow held,
    // the file shown let go of and the commands on it disabled.
    virtual void releaseShown() = 0;
    // A picture decoded ahead shows at once, without a blank frame before it.
    virtual bool showsAtOnce(const QString &path) const = 0;
    // The list turned out empty: nothing shows.
    virtual void showNothing() = 0;
    // The file chosen: title, size text and the zoom commands for its class.
    virtual void announceFile(const QString &path, FileTypeCatalogue::MediaClass media) = 0;
    virtual void openSlides(const QString &path) = 0;
    virtual void presentMovie(const QString &path, double startPosition) = 0;
    virtual void presentPicture(const QString &path) = 0;
    // The commands on a shown file: clipboard, print, save, favourites.
    virtual void enableFileCommands() = 0;
    // Next, Back and the slideshow's next tick, for the list position.
    virtual void updateNavigation() = 0;
    virtual void followInFullScreen(FileTypeCatalogue::MediaClass media) = 0;
    virtual void showStatusRow(FileTypeCatalogue::MediaClass media) = 0;
};
