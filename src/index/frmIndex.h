#pragma once

#include "display/ViewGeometry.h"
#include "index/IndexRules.h"

#include <QPixmap>
#include <QWidget>

#include <array>
#include <functional>

struct AppState;
class Launcher;
class MoviePlayer;
class Prompts;
class QAction;
class QFrame;
class QLabel;
class QMenu;
class QPushButton;
class QScrollBar;
class QTimer;
class QToolButton;
class ThumbnailDecoder;
class CommandSet;
class ViewerContext;

// The index's controls, private to it: the page's cells and the buttons around them.
struct frmIndexControls {
    struct Cell {
        QFrame *Frame2 = nullptr;
        QLabel *Image1 = nullptr;
        QLabel *LabImage = nullptr;
        MoviePlayer *MediaPlayer1 = nullptr;
        QScrollBar *HScroll1 = nullptr;
        QToolButton *cmdPlaySmall = nullptr;
        QToolButton *cmdPauseSmall = nullptr;
        QToolButton *cmdStopSmall = nullptr;
        QLabel *ImgList = nullptr;
        QString path;      // "" while the cell shows nothing
        QString tag;       // "path / W x H" for pictures, "path / duration" for movies
        bool movie = false;
        bool durationShown = false;
    };
    std::array<Cell, IndexRules::CellCount> cells;

    QFrame *FraFondo;
    QLabel *LabType;
    QLabel *LabLoad;
    QToolButton *cmdBack, *cmdNext, *cmdRefr, *cmdDir;
    QToolButton *cmdPlay, *cmdPause, *cmdStop, *cmdVol;
    QPushButton *cmdTrucco; // takes the focus after a cell button, so players never keep it

    QMenu *SFPOPUP;
    QAction *mnuOpen, *mnuPlay, *mnuStop, *mnuSepp, *mnuSave, *mnuPrint, *mnuClipboard, *mnuWall, *mnuRemoveWall;
    QAction *mnuMove, *mnuAdd, *mnuRemove, *mnuGlobal, *SFRename, *SFDelete, *mnuUndo, *SFInfo, *mnuShellOpen, *mnuShellEdit;
};

// The thumbnail index: the main window's list as pages of 24 cells, where
// pictures are thumbnails and movies play in small players of their own.
// Thumbnails decode off the GUI thread (ThumbnailDecoder); the rules of the
// page are in IndexRules.
class frmIndex : public QWidget, private frmIndexControls {
    Q_OBJECT
    friend struct WindowProbe; // the tests read what the controls show
public:
    // A window of its own, kept by the owner (the main window).
    frmIndex(AppState &state, ViewerContext &context, Prompts &prompts, Launcher &launcher, ViewGeometry::Twips twips,
             QWidget *owner);
    ~frmIndex() override;

    CommandSet *commands; // the popup, the buttons and the keys are made of these

    int IndexPage = 0;
    QString SelectedFile;
    bool SelectedIsMovie = false;
    int SelectedCell = -1;
    QString SelectedSizeText;

    // Commands of other parts of the program, wired by whoever builds them;
    // an entry whose hook is empty stays disabled.
    using PathHook = std::function<void(const QString &path)>;
    PathHook onAddToFavourites, onRemoveFromFavourites, onClipboard, onSave, onPrint, onWallpaper;
    PathHook onShellOpen, onShellEdit, onRename, onDelete, onInfo;
    std::function<bool(const QString &path)> onMove; // true when the file moved
    std::function<void()> onGlobal, onRemoveWallpaper, onVolume, onUndo;
    std::function<bool()> canUndo; // whether onUndo has a chore to put back
    std::function<bool(const QString &path)> isFavourite;
    // Whether the user made Vimora the viewer of files of this type (the
    // extension's last letters, upper case, not normalised).
    std::function<bool(const QString &typeCode)> isAssociatedType;
    // The main window's side: whether its player plays the file now; it
    // takes the keyboard after a file opens there; a program was opened
    // for the user; F2; the list read again; a file dropped here.
    std::function<bool(const QString &path)> playsInMain;
    std::function<void()> onShownInMain, onLanguage, onRefreshList;
    std::function<void(bool started)> onLaunched;
    PathHook onDrop;
    void updateCommandStates(); // call after setting hooks

    void Form_Load();
    void ApplyLanguage();
    void Carica_Preview();
    // Rebuilds after a list change of the main window; a new folder or
    // filter starts again at page 0.
    void followMainList();
    bool pageLoading() const { return m_pageBuilding; }
    // The page under way is given up: its thumbnails are not shown.
    void stopPageBuild();
    // The user has the index open, though it may be hidden with the main window.
    bool isOpen() const { return m_open; }
    void setOpen(bool open) { m_open = open; }
    bool hiddenWithMain() const { return m_hiddenWithMain; }
    void setHiddenWithMain(bool hidden) { m_hiddenWithMain = hidden; }

    void stepThroughMainList(int steps); // Up and Down show the main window's neighbours
    void cmdNext_Click();
    void cmdBack_Click();
    void cmdRefr_Click();
    void cmdDir_Click();

    void selectCell(int cell);
    void mnuOpen_Click();
    void Mostra_Main(const QString &name, double startPosition);
    void mnuPlay_Click();
    void mnuStop_Click();
    void mnuAdd_Click();
    void mnuRemove_Click();
    void mnuMove_Click();
    void mnuClipboard_Click();
    void mnuWall_Click();
    void showPopup(int cell, QPoint globalPosition);

    // Movie group control.
    void cmdPlay_Click();
    void cmdPause_Click();
    void cmdStop_Click();
    void cmdVol_Click();
    void cmdPlaySmall_Click(int cell);
    void cmdPauseSmall_Click(int cell);
    void cmdStopSmall_Click(int cell);
    void HScroll1_Change(int cell);
    void MediaPlayer1_PlayStateChange(int cell, int oldState, int newState);

    // For the rest of the program.
    void MarkIndexThumbnail(const QString &path, bool isFavourite);
    void ReleasePlayerFile(const QString &path); // every cell player holding it lets go
    void pauseCellsPlaying(const QString &path);
    QString selectedFilePath() const { return SelectedFile; }
    double cellMoviePosition(int cell) const;
    int cellOfPath(const QString &path) const;
    // Where the rename box opens: over the cell's name, else at the window's corner.
    QRect nameRectOf(const QString &path) const;
    QImage movieFrameOf(const QString &path) const; // the frame a movie cell shows, or none

signals:
    void pageLoaded(); // pictures shown and movie cells opened

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildControls();
    void buildMenu();
    void buildCell(int cell);
    void layoutControls();
    void resetCell(Cell &cell);
    void prepareCell(int cellIndex, const QString &path, const QString &name);
    void thumbnailArrived(int cell, const QImage &image, QSize naturalSize);
    void picturesDone();
    void openMovieCells();
    void showDuration(int cell);
    void finishPage();
    void abandonPage();
    void setGroupButtons(bool visible, bool enabled);
    void releaseAllPlayers();
    int cellOf(QObject *object) const;
    void wireCommands();
    void offerForSelection(); // for the selected cell, before a popup or a key
    QRect toPixels(const QRectF &twips) const;
    QSize thumbnailBoxPixels() const;

    AppState &m_state;
    Prompts &m_prompts;
    Launcher &m_launcher;
    ViewerContext &m_context;
    ViewGeometry::Twips m_twips;
    ThumbnailDecoder *m_decoder;
    bool m_pageBuilding = false;
    bool m_open = false;
    bool m_hiddenWithMain = false;
    QTimer *m_durationPoll;   // movie cells whose duration is not known yet
    int m_durationPolls = 0;
    int m_thumbnailsShown = 0;
    int m_pageStartNumber = 0;
    QString m_pageFolder;
    QString m_pageFilter;
    QPixmap m_favouriteMark;
};
