#pragma once

#include <QList>

// Every command a key, a button or a popup entry runs, in every window.
// Adding one: a value here, its name and popup places in Commands.cpp,
// and the window's slot where its CommandSet is wired.
enum class Command {
    // The file popups.
    Open, Play, Stop, SepPlay, Anim, SepGif, FullScreen, Normal, Save, Print, Clipboard, Grab, SepX, Wall,
    RemoveWall, Move, Sep, Add, Remove, Global, Sep99, Rename, Delete, Undo, Info, ShellOpen, ShellEdit, SepW, Fit,
    Full, Zoom, Zoom10, Zoom25, Zoom50, Zoom75, Zoom100, Zoom125, Zoom150, Zoom175, Zoom200, Zoom300, Zoom400,
    Zoom800, SepFull1, SepFull2, SepFull3, SepIndex1, SepIndex2, SepIndex3, SepIndex4,
    // The favourites window's own names for its entries.
    ListRename, ListDelete, ListClear, SepList, ListCopySelected, ListMoveSelected, ListDeleteSelected,
    // The crop and folder popups.
    CropSave, CropClip, CropPrint, DirOpen, DirExplore,
    // Commands of keys and buttons only.
    Next, Back, StepNext, StepBack, SpaceKey, EnterKey, Language, Refresh, Crop, ZoomIn, ZoomOut, FocusPathBox,
    About, Index, CancelSelection, Close, FolderUp, ClearHistory, Help, Associations,
    // The index's movie group and each movie cell's buttons.
    PlayGroup, PauseGroup, StopGroup, Volume, PlayCell, PauseCell, StopCell,
    Count
};

namespace Commands {

const char *name(Command command); // the object name of its action: "mnuSave", "SFDelete"
bool isSeparator(Command command);
bool isSubmenu(Command command);   // Zoom: its entries are the Zoom* percents
int zoomPercent(Command command);  // 0 unless a zoom entry
QList<Command> zoomEntries();

// The entries of each popup, top to bottom.
QList<Command> mainPopup();
QList<Command> cropPopup();
QList<Command> folderPopup();
QList<Command> fullScreenPopup();
QList<Command> indexPopup();
QList<Command> favouritesPopup();

} // namespace Commands
