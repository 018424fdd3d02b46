#pragma once

#include "commands/Commands.h"

#include <QList>

#include <array>

// What each command offers for the file in hand: a plain function of the
// window's state, asked again each time a popup opens or a file is shown,
// so nothing is left over from the last menu.
namespace CommandOffers {

enum class ViewState { Picture, AnimatedGif, MovieWindowed, MovieFullScreen, Slides, EmptyList };

enum class Caption { Usual, Restore }; // "Full Screen" or "Restore"

struct Offer {
    bool visible = true;
    bool enabled = true;
    bool checked = false;
    Caption caption = Caption::Usual;
    bool operator==(const Offer &) const = default;
};

struct Offers {
    std::array<Offer, size_t(Command::Count)> of{};
    Command defaultEntry = Command::Count; // none
    Offer &operator[](Command command) { return of[size_t(command)]; }
    const Offer &operator[](Command command) const { return of[size_t(command)]; }
};

// What the main window knows about the file on show.
struct MainFacts {
    ViewState state = ViewState::EmptyList;
    bool movieStoppable = false; // playing or paused
    bool shellOpenAvailable = true;
    bool animating = false;      // the GIF animation box is ticked
    bool fullScreenUp = false;   // the full-screen view or a full-screen movie
    bool undoAvailable = false;  // a file chore of this run to put back
};
Offers mainWindow(const MainFacts &facts);

// The full-screen view; a hook the main window did not wire stays disabled.
struct FullScreenFacts {
    ViewState state = ViewState::Picture;
    bool movieStoppable = false;
    bool animating = false;
    bool shellOpenEnabled = true;
    QList<Command> wired; // commands run through the main window
};
Offers fullScreen(const FullScreenFacts &facts);

// The index's popup for the selected cell.
struct IndexFacts {
    ViewState state = ViewState::Picture; // of the cell: a picture, GIF or movie
    bool icon = false;                    // ICO files have no clipboard copy
    bool movieStoppable = false;
    bool typeLinkedToVimora = false;      // "Shell Open" would only come back here
    bool undoAvailable = false;
    QList<Command> wired;
};
Offers index(const IndexFacts &facts);

// The favourites window's popup; the chores to undo are the main window's.
struct FavouritesFacts {
    bool undoAvailable = false;
};
Offers favourites(const FavouritesFacts &facts);

ViewState stateOfFile(bool movie, bool movieFullScreen, bool gif, bool slides, bool listEmpty);

} // namespace CommandOffers
