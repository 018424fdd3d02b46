#pragma once

#include "commands/CommandOffers.h"
#include "context/DisplayPresenter.h"
#include "context/ViewerContext.h"
#include "display/ViewGeometry.h"
#include "display/ZoomRules.h"
#include "files/FileUndo.h"
#include "fullscreen/FullViewHost.h"
#include "platform/Drives.h"
#include "viewer/LaunchPause.h"

#include <QLineF>
#include <QPointer>
#include <QScopeGuard>
#include <QWidget>

#include <array>
#include <functional>
#include <memory>

struct AppState;
class HelpWindow;
class AnimationView;
class frmFull;
class Launcher;
class frmIndex;
class MoviePlayer;
class PictureView;
class frmList;
class Prompts;
class clsCommonDialog;
class VolumeControl;
class PicturePrefetch;
class FolderWatch;
class CommandSet;
namespace PictureLoader {
struct Picture;
}
class QAction;
class QImage;
class QPrinter;
class QCheckBox;
class QComboBox;
class QFileSystemModel;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;
class QScrollBar;
class QTimer;
class QToolButton;
class QTreeView;

// The main window's controls: its own, private to it. Other windows reach
// the main window through the viewer context and its commands.
struct frmMainControls {
    // Top tool area.
    QFrame *FraFondoTop;
    QFrame *Frame1;
    QComboBox *Drive1;
    QTreeView *Dir1;
    QComboBox *CboURL;
    QComboBox *CboType;
    QToolButton *cmdUp;
    QToolButton *cmdRefr;
    QToolButton *cmdClear;
    QToolButton *cmdBack;
    QToolButton *cmdNext;
    QToolButton *cmdExpand;
    QToolButton *cmdReduce;
    QToolButton *cmdRitaglia;
    QToolButton *cmdIndex;
    QToolButton *cmdSave;
    QToolButton *cmdClip;
    QToolButton *cmdPrint;
    QToolButton *cmdGrab;
    QToolButton *cmdAdd;
    QToolButton *cmdList;
    QToolButton *cmdLink;
    QToolButton *cmdHelp;
    QPushButton *cmdAbout;
    QPushButton *cmdTrucco; // invisible; takes the keyboard focus
    QCheckBox *ChkCicle;
    QCheckBox *ChkAuto;
    QCheckBox *chkAnim;
    QScrollBar *HScroll1;
    QLineEdit *txtTime;
    std::array<QRadioButton *, 2> Option1;

    // Display area.
    QWidget *ImgWall;
    PictureView *ImgEgg;
    AnimationView *WebBrowser1;
    MoviePlayer *MediaPlayer1;
    std::array<QFrame *, 4> SelLines; // anchor H, moving H, anchor V, moving V
    QLabel *LabMis;

    // Status row.
    QFrame *FraFondoBot;
    QLabel *LabNum;
    QLabel *LabFil;
    QLabel *ImgTyp;
    QLabel *LabSiz;
    QLabel *LabPix;
    QLabel *LabZoom;

    QTimer *TimerImage;

    // The popups made of the window's commands.
    QMenu *SFPOPUP;
    QMenu *SFCrop;
    QMenu *DIRPOPUP;
    QMenu *mnuZoom;
    QAction *mnuPlay, *mnuStop, *mnuSepp, *mnuGrab, *mnuAnim, *mnuSepGif, *mnuFullScreen;
    QAction *mnuSave, *mnuPrint, *mnuClipboard, *mnusepX, *mnuWall, *mnuRemoveWall, *mnuMove;
    QAction *mnusep, *mnuGlobal, *mnusep99, *SFRename, *SFDelete, *mnuUndo, *SFInfo, *mnusepw;
    QAction *mnufit, *mnuFull, *mnuAdd, *mnuRemove, *mnuShellOpen, *mnuShellEdit;
    QAction *mnuCropSave, *mnuCropClip, *mnuCropPrint, *mnuDirOpen, *mnuDirExpl;
    std::array<QAction *, 12> mnuZoomItems; // 10 % ... 800 %
};

// The main window: folder browser on top, the display area, the status row.
// The handlers keep the names under which their behaviour is described;
// the rules they apply live in plain functions beside this file.
class frmMain : public QWidget, private frmMainControls, private DisplayPresenter, private FullViewHost {
    Q_OBJECT
    friend struct WindowProbe; // the tests read what the controls show
public:
    frmMain(AppState &state, ViewerContext &context, Prompts &prompts, Launcher &launcher, QWidget *parent = nullptr);
    ~frmMain() override;

    // Start-up; the command line is one file path or empty.
    void Form_Load(const QString &commandLine);
    void Form_Unload();

    // Shows a file: moves through the list (empty name), or by name, or by
    // full path; startPosition is where a movie starts, in seconds.
    void Mostra_Image(bool backward, const QString &name, bool nameIsFullPath = false, double startPosition = 0);

    ViewerContext &context() const { return m_context; } // what this window shows
    bool cropSelectionActive() const { return m_cropSelectionActive; }

    void ApplyLanguage(); // captions and tooltips of the current language
    // F2 in any window: the language chooser, then every open window in the new language.
    void switchLanguage();
    // Where the drive list comes from; tests give their own.
    void setDriveSource(std::function<QList<Drive>()> source) { m_listDrives = std::move(source); }
    ViewGeometry::Twips twips() const { return m_twips; }

    // The chosen filter item's whole text: label, code and patterns.
    QString typeFilterText() const;
    CommandSet *commands; // what every button, key and popup of the window runs

    // Folder browser handlers.
    void Carica_ListaImages(QString name); // a copy: the caller often passes CurrentFileName, which the load clears
    void Carica_URL();
    void Inserisci_URL(const QString &folder);
    void CboType_Click();
    void Dir1_Change();
    void Drive1_Change();
    void CboURL_Click();
    void CboURL_Change();
    void cmdUp_Click();
    void cmdRefr_Click();
    void cmdClear_Click();
    void setDir1Path(const QString &folder); // raises Dir1_Change when the browser is ready
    QString dir1Path() const;

    // Navigation.
    void cmdNext_Click();
    void cmdBack_Click();
    void ChkCicle_Click();
    void ChkAuto_Click();
    void HScroll1_Change();
    void TimerImage_Timer();

    void ClearCropSelection();
    void DropFile(const QString &path);

    // Crop selection and pan.
    void cmdRitaglia_Click();
    void Clip_Punto_Inizio(QWidget *target, QPointF at); // at: twips from the target's corner
    void Clip_Punto_Fine(QWidget *target, QPointF at);
    void UpdateSelectionLabel(QWidget *target);
    void Img_Punto_Inizio(QWidget *target, QPoint globalPosition);
    void Img_Punto_Fine(QWidget *target, QPoint globalPosition);
    void ImgEgg_MouseDown(QMouseEvent *event);
    void ImgEgg_MouseMove(QMouseEvent *event);
    void ImgEgg_MouseUp(QMouseEvent *event);
    QRectF selectionRect() const { return ZoomRules::selectionRect(m_selAnchor, m_selEnd); }

    // View geometry and zoom.
    void cmdExpand_Click();
    void cmdReduce_Click();
    void mnuZoom_Click(int percent);
    void mnufit_Click();
    void mnuFull_Click();
    void Option1_Click();
    void ZoomTo(int percent);

    // Launching, help, About box and file type associations.
    void mnuShellOpen_Click();
    void mnuShellEdit_Click();
    void mnuDirOpen_Click();
    void mnuDirExpl_Click();
    // A program opened for the user: the slideshow waits while it is in front.
    void noteLaunched(bool started);
    void cmdHelp_Click();
    void cmdAbout_Click();
    void cmdLink_Click();
    HelpWindow *helpWindow() const;
    // Picture output: copies, areas, clipboard, frame grabs, printing, wallpaper.
    void cmdSave_Click();
    void mnuCropSave_Click();
    void Copia_Area(const QString &fileName, QWidget *target);
    void cmdClip_Click();
    void mnuCropClip_Click();
    void cmdGrab_Click();
    void cmdPrint_Click();
    void mnuCropPrint_Click();
    void mnuWall_Click();
    void mnuRemoveWall_Click();
    QPrinter &currentPrinter(); // the printer the print dialog starts from
    // Thumbnail index (frmMainIndex.cpp).
    void cmdIndex_Click();
    void refreshForIndex(); // the index's refresh: the list is read again
    void stopIndexPage();   // a page under way is given up: the list changes
    bool indexPageLoading() const;
    frmIndex *indexWindow() const { return m_index; }
    // File commands and the favourites window (frmMainFiles.cpp).
    void cmdAdd_Click();
    void cmdList_Click();
    void mnuAdd_Click() { cmdAdd_Click(); }
    void mnuGlobal_Click() { cmdList_Click(); }
    void SFRename_Click();
    void SFDelete_Click();
    void SFInfo_Click();
    void mnuMove_Click();
    void mnuRemove_Click();
    // Puts back the last file chore of this run (Ctrl+Z, "Undo").
    void mnuUndo_Click();
    bool canUndo() const { return !m_undo.isEmpty(); }
    frmList &favourites(); // made on first use
    // The index and the full-screen view add and remove through these.
    void Inserisci_Lista(const QString &path);
    void RemoveFromFavourites(const QString &path);
    // The rename box; tests give their own.
    void setRenameBox(std::function<QString(const QRect &, const QString &)> box) { m_renameBox = std::move(box); }
    void releasePlayers(const QString &path); // ReleasePlayerFile with this window's player
    // Movie and animation playback, full screen (frmMainMovie.cpp).
    void mnuPlay_Click();
    void mnuStop_Click();
    void mnuFullScreen_Click();
    void chkAnim_Click();
    void mnuAnim_Click();
    void ImgEgg_DblClick();
    void MediaPlayer1_MouseDown(QMouseEvent *event);
    void MediaPlayer1_MouseMove(QMouseEvent *event);
    void MediaPlayer1_MouseUp(QMouseEvent *event);
    void MediaPlayer1_KeyPress(QKeyEvent *event);
    frmFull *fullView() const; // null unless loaded
    // The file on show plays in the animation view: a GIF, or a WebP of
    // several frames, with chkAnim on. A still WebP stays a picture.
    bool animatesShownFile() const override;
    // Hides or shows this window and the index window with it.
    void setMainWindowsVisible(bool visible);
    // Called each time the full-screen window is made, after its commands
    // are wired; tests use it to watch them.
    std::function<void(frmFull &view)> onFullViewLoaded;

signals:
    // A copy, area or frame was written into the browsed folder and the list
    // reloaded: the thumbnail page should reload too.
    void outputWrittenIntoFolder(const QString &path);
    void indexWindowCreated(frmIndex *index); // to wire the index's command hooks

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildControls();
    void buildMenus();
    void wireCommands();
    // Offers each command for the file in hand: before a popup, a key or
    // a button runs, and when a file is shown.
    void offerCommands();
    CommandOffers::MainFacts mainFacts() const;
    void playPauseOrNext(); // Space
    void openTypedPath();   // Enter
    void connectHandlers();
    void layoutFrame1();
    void Form_Resize();
    void layoutStatusRow();
    void keepInsideWorkArea();
    void SaveUserSettings();
    void fillTypeFilterList();
    void fillDrives();
    void setCommandButtonsEnabled(bool on);
    void hideStatusLabels();
    void showStatusLabels();
    void clearDisplay();
    // The steps of showing a file, in the order the context runs them.
    void clearSelection() override;
    void releaseShown() override;
    bool showsAtOnce(const QString &path) const override { return shownAtOnce(path); }
    void showNothing() override;
    void announceFile(const QString &path, FileTypeCatalogue::MediaClass media) override;
    void openSlides(const QString &path) override;
    void presentMovie(const QString &path, double startPosition) override;
    void presentPicture(const QString &path) override;
    void enableFileCommands() override;
    void updateNavigation() override;
    void followInFullScreen(FileTypeCatalogue::MediaClass media) override;
    void showStatusRow(FileTypeCatalogue::MediaClass media) override;
    // What the full-screen view asks of this window.
    void chooseZoom(int percent) override { mnuZoom_Click(percent); }
    void fitToWindow() override { mnufit_Click(); }
    void showActualSize() override { mnuFull_Click(); }
    void playMovie() override { mnuPlay_Click(); }
    void stopMovie() override { mnuStop_Click(); }
    void toggleAnimation() override { mnuAnim_Click(); }
    int moviePlayState() const override;
    bool shellOpenOffered() const override;
    void holdSlideshow() override { stopSlideTimer(); }
    void resumeSlideshow() override { restartSlideTimerIfOn(); }
    void fullViewClosed() override;
    void stopSlideTimer();
    void restartSlideTimerIfOn();
    // Next and previous by key: presses that come faster than pictures show
    // are taken together as one move, so a held key never builds a backlog.
    void stepThroughList(bool backward);
    void showPendingSteps();
    bool driveReady(const QString &folder);
    bool askAfterReadError(const QString &folder);
    bool fallBackToPreviousFolder();
    void selectDriveOf(const QString &folder);
    void setPathBoxText(const QString &text);
    void revealDir1Current();
    void showPicture(const QString &path);
    void resizePicture(QSize shown);
    void setShownPicture(const PictureLoader::Picture &loaded); // in the picture control and the context
    void showMovie(const QString &path, double startPosition);
    bool fitsWindow() const { return m_context.displayMode() == ViewerContext::DisplayMode::Fit; }
    void fitOrActualSize();
    void fitOrActualSizeMovie();
    void chooseViewMode(int option);
    void updateSizeTexts();
    QSizeF windowTwips() const;
    // A picture's pixels are device pixels: at " 100% " one lands on one screen pixel.
    ViewGeometry::Twips pictureTwips() const;
    QSizeF pictureTwipsOf(QSize natural) const;
    void Centra_Image(QWidget *target);
    void setWaitCursor(bool on);
    QPointF targetOrigin(QWidget *target) const;
    QSizeF targetSize(QWidget *target) const;
    QWidget *cropTarget() const;
    bool windowInNormalState() const;
    bool pictureFitsArea() const;
    void moveSelectionCorner(QWidget *target, QPointF at);
    void placeSelectionLines();
    void panTo(QWidget *target, QPoint globalPosition);
    void showContextMenu(QPoint globalPosition);
    void connectLaunchHandlers();

    // Picture output (frmMainOutput.cpp).
    struct MovieFrameHold {
        double position = 0;
        bool wasPlaying = false;
        bool controlBarShown = true;
        int displaySize = 0;
    };
    void connectOutputHandlers();
    MovieFrameHold holdMovieFrame();
    QImage heldMovieFrame();
    void releaseMovieFrame(const MovieFrameHold &hold);
    QImage areaPicture(QWidget *target);
    QImage currentPicture();
    void printFromDialog(const std::function<QImage()> &picture, QWidget *owner);
    QString outputFolder() const;
    void reportDialogError(const clsCommonDialog &dialog);
    void reloadAfterWrite(const QString &path);
    void endOutputCommand(bool grabToo);
    void connectFileCommands();
    void SaveFavourites();
    QString nameShownAfterRemoving() const;
    friend class MainFavouritesHost;
    void connectMovieHandlers();
    void showMoviePopup(QPoint globalPosition);
    void showAnimation(const QString &path);
    void MediaPlayer1_DisplaySizeChange(int displaySize);

    AppState &m_state;
    ViewerContext &m_context;
    Prompts &m_prompts;
    Launcher &m_launcher;
    ViewGeometry::Twips m_twips;
    QFileSystemModel *m_folderModel;

    QString m_lastTypeText;
    QString m_pendingFileName;     // from a drop, shown by the next list load
    bool m_fromHistory = false;     // the folder change came from the path box
    QString m_previousFolder;       // where Cancel on an unreadable folder goes back to
    QString m_previousFileName;     // and the file it showed there
    bool m_completionRunning = false;
    qsizetype m_lastTypedLength = 0;
    bool m_unloaded = false;
    // Code that fills the folder controls raises their change handlers:
    // they do nothing while this is false.
    bool m_browserReady = false;
    // A folder read again keeps the movie that plays (a filter that still lists it).
    bool m_keepDisplay = false;
    bool m_cropSelectionActive = false;
    double m_fitPercent = 100;
    int m_pendingSteps = 0;        // key presses not shown yet, back negative
    bool m_stepsQueued = false;
    bool m_showingSteps = false;
    bool m_modeClickLive = true;
    bool m_resizeGuard = false;
    std::array<QLineF, 4> m_selLines;  // twips of the form: anchor H, moving H, anchor V, moving V
    QPointF m_selAnchor, m_selEnd;      // twips from the target's corner
    bool m_selectionDragging = false;
    QString m_savedToolTip;
    bool m_panActive = false;
    QPoint m_panStartGlobal;
    QPointF m_panStartOrigin;
    double m_savedMoviePosition = 0;
    int m_savedDisplaySize = 4;     // the player's display size before full screen
    QPointer<frmFull> m_fullView;
    LaunchPause m_launchPause;
    std::function<QList<Drive>()> m_listDrives = listDrives;
    QString m_dirPopupFolder;          // the folder tree entry the pop-up was opened over
    QPointer<HelpWindow> m_helpWindow; // a window of its own, so a modal dialog does not block it
    std::shared_ptr<QPrinter> m_printer; // shared_ptr: QPrinter stays incomplete here

    // Thumbnail index (frmMainIndex.cpp).
    void connectIndex();
    void connectFullViewCommands(frmFull &view);
    void unloadIndex();
    void applyLanguageToIndex();
    frmIndex *m_index = nullptr;
    frmList *m_favourites = nullptr;
    bool m_favouritesHiddenWithMain = false;
    QPointer<QWidget> m_linkDialog; // the association dialog while it is open
    std::function<QString(const QRect &, const QString &)> m_renameBox;
    UndoHistory m_undo; // the file chores of this run
    void recordChore(UndoRecord record) { m_undo.record(std::move(record)); }
    bool isFavourite(const QString &path);

    // The index's commands on this window's features (frmMainIndexCommands.cpp);
    // the file and output commands take any path, the index's selection too.
    void wireIndexCommands(frmIndex *index);
    QString shownPathOrNothing() const;
    void renameFileAt(const QString &oldPath, const QRect &nameRect);
    void deleteFileAt(const QString &path);
    bool moveFileAway(const QString &path);
    // The dialog and the copy's progress come up over the window asking.
    void saveCopyOf(const QString &source, const QString &title, QWidget *asking);
    void printPicture(QWidget *owner, const std::function<QImage()> &picture, const QString &slides);
    void setWallpaperFrom(const QString &path, bool bitmapFile, const std::function<QImage()> &picture);
    std::shared_ptr<VolumeControl> m_volumeControl; // one mixer per run

    // Pictures decoded ahead for fit mode (frmMainPrefetch.cpp).
public:
    PicturePrefetch &prefetch(); // the context's
private:
    QSize fitTarget() const; // the pixels fit mode decodes for
    QSize actualSizeViewport() const; // where a picture at actual size shows
    PictureLoader::Picture loadForDisplay(const QString &path, bool fitted);
    bool shownAtOnce(const QString &path) const; // a picture decoded ahead and ready
    void prefetchNeighbours();
    // Decodes what the picture control shows but does not hold: a part of a
    // large JPEG panned or zoomed to, or more pixels than a fit needed.
    void fillPictureView();
    void updateNavigationButtons(); // Next and Back for the list position
    // The file asked for, shown while its folder is still being listed
    // (frmMainEarlyShow.cpp); the name shown, or empty.
    QString showBeforeListingEnds(const QString &name);
    // Once the listing ends: the early file's list position, without
    // showing it again. False when the list no longer has it.
    bool settleShownEarly(const QString &name);

    // The shown folder as other programs change it (frmMainFolderWatch.cpp).
public:
    FolderWatch &folderWatch() { return *m_folderWatch; }
private:
    void watchListedFolder();
    void followFolderChange();
    bool folderChangeMustWait() const;
    FolderWatch *m_folderWatch = nullptr;
    // A refresh or folder change: steps wait until it has chosen the file to show.
    [[nodiscard]] auto listRereadUnderWay()
    {
        m_context.beginReread();
        return qScopeGuard([this] { m_context.endReread(); });
    }
};
