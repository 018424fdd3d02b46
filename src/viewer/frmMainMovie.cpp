#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "fullscreen/frmFull.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"

#include <QAction>
#include <QCheckBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>

void frmMain::connectMovieHandlers()
{
    // Only the user's clicks: setting the box at start-up is no command.
    connect(chkAnim, &QCheckBox::clicked, this, &frmMain::chkAnim_Click);
    connect(ImgEgg, &PictureView::doubleClicked, this, &frmMain::ImgEgg_DblClick);
    connect(MediaPlayer1, &MoviePlayer::mousePressed, this, &frmMain::MediaPlayer1_MouseDown);
    connect(MediaPlayer1, &MoviePlayer::mouseMoved, this, &frmMain::MediaPlayer1_MouseMove);
    connect(MediaPlayer1, &MoviePlayer::mouseReleased, this, &frmMain::MediaPlayer1_MouseUp);
    connect(MediaPlayer1, &MoviePlayer::keyPressed, this, &frmMain::MediaPlayer1_KeyPress);
    connect(MediaPlayer1, &MoviePlayer::displaySizeChanged, this, &frmMain::MediaPlayer1_DisplaySizeChange);
    connect(MediaPlayer1, &MoviePlayer::videoSizeKnown, this, [this] {
        if (m_context.MainMovieLoaded() && m_context.zoomPercent() == 0)
            fitOrActualSizeMovie();
    });
}

frmFull *frmMain::fullView() const { return m_fullView; }

void frmMain::mnuPlay_Click()
{
    if (MediaPlayer1->PlayState() != MoviePlayer::Playing)
        MediaPlayer1->Play();
    else
        MediaPlayer1->Pause();
}

void frmMain::mnuStop_Click()
{
    MediaPlayer1->Stop();
    MediaPlayer1->setCurrentPosition(0);
}

// The main window and, when it is open, the index window go away together
// while a full-screen view is up.
void frmMain::setMainWindowsVisible(bool visible)
{
    setVisible(visible);
    if (visible) {
        raise();
        activateWindow();
    }
    if (indexWindow() && indexWindow()->isOpen())
        indexWindow()->setVisible(visible);
}

// The full-screen popup runs this window's own commands on the file it shows.
void frmMain::connectFullViewCommands(frmFull &view)
{
    view.onAddToFavourites = [this] { mnuAdd_Click(); };
    view.onRemoveFromFavourites = [this] { mnuRemove_Click(); };
    view.onShellOpen = [this] { mnuShellOpen_Click(); };
    view.onShellEdit = [this] { mnuShellEdit_Click(); };
    view.onPrint = [this, &view] {
        if (!m_context.CurrentFileName().isEmpty())
            printFromDialog([this] { return currentPicture(); }, &view);
    };
    view.onSave = [this, &view] {
        if (!m_context.CurrentFileName().isEmpty())
            saveCopyOf(m_context.currentPath(),
                       m_state.messages.GetMsg(383, QStringLiteral("Select destination path for file copy")), &view);
    };
    view.onSetWallpaper = [this] { mnuWall_Click(); };
    view.onRemoveWallpaper = [this] { mnuRemoveWall_Click(); };
}

int frmMain::moviePlayState() const { return MediaPlayer1->PlayState(); }

bool frmMain::shellOpenOffered() const { return mnuShellOpen->isEnabled(); }

void frmMain::fullViewClosed()
{
    setMainWindowsVisible(true);
    cmdTrucco->setFocus();
}

void frmMain::mnuFullScreen_Click()
{
    if (m_cropSelectionActive)
        ClearCropSelection();
    if (m_context.CurrentFileName().isEmpty())
        return;
    if (!m_context.MainMovieLoaded()) {
        if (MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen) {
            // Paged from a full-screen movie: the player goes back quietly,
            // the picture takes over the screen.
            const QSignalBlocker quiet(MediaPlayer1);
            MediaPlayer1->setDisplaySize(m_savedDisplaySize);
        }
        if (m_context.FullScreenActive())
            setMainWindowsVisible(false);
        m_context.setFullScreenActive(true);
        if (!m_fullView || !m_fullView->isLoaded()) {
            m_fullView = new frmFull(m_state, m_context, *this, this);
            connectFullViewCommands(*m_fullView);
            if (onFullViewLoaded)
                onFullViewLoaded(*m_fullView);
            m_fullView->Form_Load();
        }
        m_fullView->MostraFullImage();
        m_fullView->show();
        m_fullView->raise();
        m_fullView->activateWindow();
        return;
    }

    m_context.setFullScreenActive(true);
    m_savedMoviePosition = MediaPlayer1->CurrentPosition();
    // The player keeps its file, state and position across display sizes; a
    // file that failed to open gets another try.
    if (!MediaPlayer1->hasEngine())
        MediaPlayer1->setFileName(m_context.currentPath());
    if (MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen) {
        setMainWindowsVisible(true);
        QCoreApplication::processEvents();
        MediaPlayer1->setDisplaySize(m_savedDisplaySize);
    } else {
        setMainWindowsVisible(false);
        m_savedDisplaySize = MediaPlayer1->DisplaySize();
        MediaPlayer1->setControlBarShown(true);
        MediaPlayer1->setDisplaySize(MoviePlayer::FullScreen);
        QCoreApplication::processEvents();
    }
    if (m_fullView)
        m_fullView->hidePresenters();
}

// Every way out of the player's full screen (its menu, a key, closing it,
// a double click, or this window's command) ends here.
void frmMain::MediaPlayer1_DisplaySizeChange(int displaySize)
{
    if (displaySize == MoviePlayer::FullScreen)
        return;
    m_context.setFullScreenActive(false);
    if (m_state.ProgramClosing)
        return;
    if (!isVisible())
        setMainWindowsVisible(true);
    if (m_fullView)
        m_fullView->close();
    Centra_Image(MediaPlayer1);
    cmdTrucco->setFocus();
}

void frmMain::ImgEgg_DblClick()
{
    if (!m_context.MainMovieLoaded() && !indexPageLoading())
        mnuFullScreen_Click();
}

void frmMain::MediaPlayer1_MouseDown(QMouseEvent *event)
{
    if (m_context.CurrentFileName().isEmpty() || MediaPlayer1->FileName().isEmpty())
        return;
    const QPointF at(m_twips.fromPixelsX(event->position().x()), m_twips.fromPixelsY(event->position().y()));
    if (event->type() == QEvent::MouseButtonDblClick) {
        // Full screen goes through the window's command, which hides and
        // shows the windows with it.
        event->accept();
        if (event->button() == Qt::LeftButton && !m_cropSelectionActive)
            mnuFullScreen_Click();
        return;
    }
    if (event->button() == Qt::LeftButton && m_cropSelectionActive) {
        event->accept();
        if (MediaPlayer1->PlayState() == MoviePlayer::Playing)
            MediaPlayer1->Stop();
        MediaPlayer1->setContextMenuEnabled(false);
        MediaPlayer1->setVideoCursor(Qt::CrossCursor);
        Clip_Punto_Inizio(MediaPlayer1, at);
        return;
    }
    if (event->button() != Qt::RightButton)
        return;
    event->accept(); // the window's menu replaces the player's own, always
    TimerImage->stop();
    if (indexPageLoading())
        return;
    if (m_cropSelectionActive) {
        SFCrop->popup(event->globalPosition().toPoint());
        return;
    }
    showMoviePopup(event->globalPosition().toPoint());
}

// The file menu over a movie: in full screen only what makes sense there.
void frmMain::showMoviePopup(QPoint globalPosition)
{
    unsetCursor();
    m_context.setFullScreenActive(MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen);
    SFPOPUP->popup(globalPosition); // offered anew as it comes up
}

void frmMain::MediaPlayer1_MouseMove(QMouseEvent *event)
{
    if (m_cropSelectionActive && m_selectionDragging)
        moveSelectionCorner(MediaPlayer1, {m_twips.fromPixelsX(event->position().x()),
                                           m_twips.fromPixelsY(event->position().y())});
}

void frmMain::MediaPlayer1_MouseUp(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_cropSelectionActive)
        Clip_Punto_Fine(MediaPlayer1, {m_twips.fromPixelsX(event->position().x()),
                                       m_twips.fromPixelsY(event->position().y())});
}

// The player itself has left full screen on any key but space; the
// full-screen picture window, if it was beneath, goes too.
void frmMain::MediaPlayer1_KeyPress(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space || !m_fullView)
        return;
    setMainWindowsVisible(true);
    m_fullView->close();
}

void frmMain::mnuAnim_Click() { chkAnim->click(); }

void frmMain::chkAnim_Click()
{
    if (m_cropSelectionActive)
        ClearCropSelection();
    if (!chkAnim->isChecked()) {
        m_state.AnimateGifs = false;
        WebBrowser1->hide();
        if (!ImgEgg->isEmpty())
            ImgEgg->show();
        if (m_fullView)
            m_fullView->MostraFullImage();
        return;
    }
    m_state.AnimateGifs = true;
    if (FileTypeCatalogue::mayAnimate(m_context.FileTypeCode())) {
        if (WebBrowser1->location() != m_context.currentPath())
            WebBrowser1->Navigate(m_context.currentPath());
        if (m_context.FileTypeCode() == u"GIF" || WebBrowser1->frameCount() > 1) {
            ImgEgg->hide();
            WebBrowser1->show();
            WebBrowser1->raise();
        }
    }
    if (!m_context.FullScreenActive()) {
        show();
        raise();
    } else if (m_fullView) {
        m_fullView->MostraFullImage();
    }
}

bool frmMain::animatesShownFile() const
{
    return m_state.AnimateGifs && FileTypeCatalogue::mayAnimate(m_context.FileTypeCode()) && !WebBrowser1->isEmpty()
        && (m_context.FileTypeCode() == u"GIF" || WebBrowser1->frameCount() > 1);
}

// A GIF or WebP goes to the animation view as well; which of the two is
// seen follows chkAnim. A still WebP stays a picture, to be zoomed and panned.
void frmMain::showAnimation(const QString &path)
{
    WebBrowser1->Navigate(path);
    m_state.AnimateGifs = chkAnim->isChecked();
    if (m_context.FullScreenActive())
        return;
    const bool animate = animatesShownFile();
    WebBrowser1->setVisible(animate);
    if (animate) {
        WebBrowser1->raise();
        ImgEgg->hide();
    }
}
