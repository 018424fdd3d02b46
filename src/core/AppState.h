#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class MessageCatalogue;
class SettingsStore;

// The state that the windows share. main() builds one and hands it to every
// window, so a test starts from a fresh one; there are no other globals.
struct AppState {
    AppState(SettingsStore &settings, MessageCatalogue &messages)
        : settings(settings), messages(messages) {}

    SettingsStore &settings;
    MessageCatalogue &messages;

    // Program folder: the data folder, always ending in "/".
    QString ProgramFolder;
    QString HelpFilePath;

    // The folder, its list and the file shown are the viewer context's.
    QString OpenFileFilter;

    // User switches mirrored from controls and settings.
    bool SlideshowOn = false;
    int SlideSeconds = 5;
    bool AutoPlayMovies = false;
    bool AnimateGifs = true;
    bool ShowTooltips = true;
    QString SaveFolder;
    // Where area and frame files are numbered: the browsed folder, or the
    // folder the last one went to.
    QString OutputFolder;

    bool ProgramClosing = false;

    // Type groups Vimora is the default viewer for ("Linked" marks).
    QSet<QString> LinkedTypes;
    // File commands: hooks of the thumbnail index, set while it exists.
    // ReleaseIndexPlayers makes every cell player holding the path let go
    // of it; MarkIndexThumbnail shows or hides a cell's favourites mark.
    std::function<void(const QString &path)> ReleaseIndexPlayers;
    std::function<void(const QString &path, bool on)> MarkIndexThumbnail;
    bool ListWindowOpen = false;

    // A picture whose decode takes longer shows nothing, as a broken file.
    int PictureDecodeLimitMs = 10000;
};
