#pragma once

#include "commands/Commands.h"

#include <QList>
#include <QWidget>

#include <array>
#include <functional>

struct AppState;
class AnimationView;
class CommandSet;
class PictureView;
class QAction;
class QMenu;
class FullViewHost;
class ViewerContext;

// The full-screen view's controls, private to it.
struct frmFullControls {
    PictureView *ImgEgg;
    AnimationView *WebBrowser1;
    QMenu *SFPOPUP;
    QMenu *mnuZoom;
    QAction *mnuPlay, *mnuStop, *mnuSepp, *mnuAnim, *mnuSepGif, *mnuNormal, *mnuAdd, *mnuRemove;
    QAction *mnuShellOpen, *mnuShellEdit, *mnuPrint, *mnuSave, *mnuWall, *mnuRemoveWall, *mnufit, *mnuFull;
    std::array<QAction *, 12> mnuZoomItems; // 10 % ... 800 %
};

// The file shown alone on the whole screen. Keys page through the list; a
// movie reached that way plays in the main window's player, full screen.
// Esc, a double click, "Restore" or a zoom item give the main window back.
class frmFull : public QWidget, private frmFullControls {
    Q_OBJECT
    friend struct WindowProbe; // the tests read what the controls show
public:
    // A window of its own, kept by the owner so it never outlives it.
    frmFull(AppState &state, ViewerContext &context, FullViewHost &host, QWidget *owner);
    ~frmFull() override;
    bool isLoaded() const { return m_loaded; } // false once closed, while it waits to be deleted

    void Form_Load();
    void MostraFullImage();
    void Centra_Image(QWidget *target);
    // A movie took over the screen: nothing of this window shows beneath it.
    void hidePresenters();

    void Form_KeyDown(QKeyEvent *event);
    void Form_MouseDown(QMouseEvent *event);
    void ImgEgg_MouseDown(QMouseEvent *event);

    CommandSet *commands; // the popup and the keys are made of these

    // Commands of other windows and features, wired by whoever builds them;
    // an item whose hook is empty is shown disabled.
    std::function<void()> onAddToFavourites;
    std::function<void()> onRemoveFromFavourites;
    std::function<void()> onShellOpen;
    std::function<void()> onShellEdit;
    std::function<void()> onPrint; // prints the full-screen picture
    std::function<void()> onSave;  // saves a copy of the current file
    std::function<void()> onSetWallpaper;
    std::function<void()> onRemoveWallpaper;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenu();
    void showPopup(QPoint globalPosition);
    void showNeighbour(bool previous); // pages through the list
    // The commands run through the main window's hooks.
    static QList<std::pair<Command, std::function<void()> frmFull::*>> hooks();
    void closeThenRun(const std::function<void()> &command);
    void runWithTimerStopped(const std::function<void()> &command);
    void Form_Unload();

    AppState &m_state;
    ViewerContext &m_context;
    FullViewHost &m_host;
    bool m_loaded = false;
    QString m_shownPath; // the file whose picture ImgEgg holds
};
