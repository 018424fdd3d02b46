#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "display/PictureView.h"
#include "files/CopyProgress.h"
#include "files/Favourites.h"
#include "files/FileCommands.h"
#include "files/FileOperations.h"
#include "files/FilePaths.h"
#include "files/PlayerRelease.h"
#include "files/TechRen.h"
#include "files/frmList.h"
#include "files/frmMessage.h"
#include "platform/MoviePlayer.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

// The main window as the favourites window sees it.
class MainFavouritesHost : public QObject, public FavouritesHost {
public:
    explicit MainFavouritesHost(frmMain &main) : QObject(&main), m_main(main) {}

    QString shownFolder() const override { return m_main.m_context.CurrentFolder(); }
    QString shownPath() const override { return m_main.shownPathOrNothing(); }
    QRect mainFrame() const override { return m_main.frameGeometry(); }
    void refreshFileList() override { m_main.cmdRefr_Click(); }
    void showFile(const QString &path) override { m_main.DropFile(path); }
    void forgetShownFile() override
    {
        m_main.clearDisplay();
        m_main.hideStatusLabels();
        m_main.m_context.setMainMovieLoaded(false);
        m_main.m_context.setCurrentFileName(m_main.nameShownAfterRemoving());
    }
    void setAddEnabled(bool on) override { m_main.cmdAdd->setEnabled(on); }
    void setListEnabled(bool on) override { m_main.cmdList->setEnabled(on); }
    void pauseSlideshow() override { m_main.stopSlideTimer(); }
    void resumeSlideshow() override { m_main.restartSlideTimerIfOn(); }
    void releasePlayers(const QString &path) override { m_main.releasePlayers(path); }
    void recordChore(UndoRecord record) override { m_main.recordChore(std::move(record)); }
    bool canUndo() const override { return m_main.canUndo(); }
    void undo() override { m_main.mnuUndo_Click(); }
    void switchLanguage() override { m_main.switchLanguage(); }

private:
    frmMain &m_main;
};

namespace {
FileContext contextFor(QWidget *window, Prompts &prompts, const MessageCatalogue &messages,
                       std::function<void(const QString &)> release)
{
    FileContext context{prompts, messages, std::move(release), {}};
    context.copy.progress = copyProgressWindow(window, messages.GetMsg(20623, QStringLiteral("Copying ...")),
                                               messages.GetMsg(104, QStringLiteral("&Cancel")));
    return context;
}
} // namespace

void frmMain::connectFileCommands()
{
    m_renameBox = [this](const QRect &where, const QString &name) {
        return AskNewName(this, where, name, m_state.messages);
    };
}

frmList &frmMain::favourites()
{
    if (!m_favourites)
        m_favourites = new frmList(m_state, m_prompts, *new MainFavouritesHost(*this), this);
    return *m_favourites;
}

// Made now if never opened, so the stored list is written back as read.
void frmMain::SaveFavourites() { favourites().SaveFavourites(); }

void frmMain::Inserisci_Lista(const QString &path) { favourites().Inserisci_Lista(path); }

void frmMain::RemoveFromFavourites(const QString &path) { favourites().RemoveFromFavourites(path); }

void frmMain::releasePlayers(const QString &path)
{
    if (ReleasePlayerFile(path, m_state, m_context, MediaPlayer1))
        m_keepDisplay = false;
}

// After the file on show is deleted or moved away, the one that followed
// it is shown, or the one before when it was the last.
QString frmMain::nameShownAfterRemoving() const
{
    const int index = m_context.CurrentIndex();
    if (index + 1 <= m_context.fileUpperBound())
        return m_context.FileNames().value(index + 1);
    return m_context.FileNames().value(index - 1);
}

void frmMain::cmdAdd_Click()
{
    if (m_context.CurrentFileName().isEmpty())
        return;
    stopSlideTimer();
    Inserisci_Lista(m_context.currentPath());
    cmdList->setEnabled(true);
    restartSlideTimerIfOn();
}

void frmMain::cmdList_Click()
{
    stopSlideTimer();
    favourites().bringForward();
    m_state.ListWindowOpen = true;
    restartSlideTimerIfOn();
}

void frmMain::mnuRemove_Click()
{
    if (m_context.CurrentFileName().isEmpty())
        return;
    const QString path = m_context.currentPath();
    RemoveFromFavourites(path);
    if (m_state.MarkIndexThumbnail)
        m_state.MarkIndexThumbnail(path, false);
}

// "" when no file is on show, which the file commands take as missing.
QString frmMain::shownPathOrNothing() const
{
    return m_context.CurrentFileName().isEmpty() ? QString() : m_context.currentPath();
}

void frmMain::SFRename_Click()
{
    ClearCropSelection();
    renameFileAt(shownPathOrNothing(), QRect(LabFil->mapToGlobal(QPoint(0, 0)),
                                          QSize(qMax(LabFil->width(), 240), LabFil->fontMetrics().height() + 6)));
}

// The main window's rename, also for a file of the thumbnail index; the
// box opens over nameRect.
void frmMain::renameFileAt(const QString &oldPath, const QRect &nameRect)
{
    stopSlideTimer();
    if (!IsExistingFile(oldPath)) {
        restartSlideTimerIfOn();
        return;
    }
    const QString typed = m_renameBox(nameRect, FileNameOfPath(oldPath));
    if (typed.isEmpty()) {
        restartSlideTimerIfOn();
        return;
    }

    // A playing movie lets go of its file and comes back where it was.
    const bool movie = m_context.MainMovieLoaded() && MediaPlayer1->FileName() == oldPath;
    double position = 0;
    if (movie) {
        position = MediaPlayer1->CurrentPosition();
        MediaPlayer1->Stop();
        MediaPlayer1->setFileName(QString());
        MediaPlayer1->hide();
        QCoreApplication::processEvents();
    }
    const bool wasOnShow = !m_context.CurrentFileName().isEmpty() && oldPath == m_context.currentPath();
    const FileContext context = contextFor(this, m_prompts, m_state.messages, [this](const QString &path) {
        releasePlayers(path);
    });
    const QString newPath = FileCommands::renameFile(oldPath, typed, context);
    const bool renamed = !newPath.isEmpty();
    if (renamed && m_favourites)
        m_favourites->replaceEntry(oldPath, newPath);
    if (renamed)
        recordChore({ChoreKind::Rename, {{oldPath, newPath, false}}});

    const bool stays = QFileInfo(newPath).absolutePath() == m_context.CurrentFolder();
    if (renamed && stays)
        m_context.setCurrentFileName(QFileInfo(newPath).fileName());
    else if (renamed && wasOnShow)
        m_context.setCurrentFileName(nameShownAfterRemoving());
    cmdRefr_Click();
    if (movie && m_context.MainMovieLoaded() && MediaPlayer1->FileName() == m_context.currentPath() && position > 0) {
        MediaPlayer1->setCurrentPosition(position);
        MediaPlayer1->Play();
    }
    restartSlideTimerIfOn();
}

void frmMain::SFDelete_Click()
{
    ClearCropSelection();
    deleteFileAt(shownPathOrNothing());
}

// The main window's delete, also for a file of the thumbnail index.
void frmMain::deleteFileAt(const QString &path)
{
    stopSlideTimer();
    if (IsExistingFile(path)) {
        const bool movie = m_context.MainMovieLoaded() && MediaPlayer1->FileName() == path;
        const double position = movie ? MediaPlayer1->CurrentPosition() : 0;
        const bool playing = movie && MediaPlayer1->PlayState() == MoviePlayer::Playing;
        const bool wasOnShow = !m_context.CurrentFileName().isEmpty() && path == m_context.currentPath();
        const FileContext context = contextFor(this, m_prompts, m_state.messages, [this](const QString &held) {
            releasePlayers(held);
        });
        const bool favourite = isFavourite(path);
        QString inTrash;
        if (FileCommands::deleteFile(path, context, &inTrash)) {
            if (!inTrash.isEmpty())
                recordChore({ChoreKind::Trash, {{path, inTrash, favourite}}});
            RemoveFromFavourites(path);
            if (m_state.MarkIndexThumbnail)
                m_state.MarkIndexThumbnail(path, false);
            if (wasOnShow) {
                m_context.setCurrentFileName(nameShownAfterRemoving());
                clearDisplay();
                hideStatusLabels();
            }
            cmdRefr_Click();
        } else if (movie) {
            cmdRefr_Click();
            if (m_context.MainMovieLoaded()) {
                MediaPlayer1->setCurrentPosition(position);
                MediaPlayer1->show();
                if (playing)
                    MediaPlayer1->Play();
            }
        }
    }
    QCoreApplication::processEvents();
    restartSlideTimerIfOn();
}

void frmMain::SFInfo_Click()
{
    ClearCropSelection();
    unsetCursor();
    const FileContext context{m_prompts, m_state.messages, {}, {}};
    frmMessage *panel = FileCommands::showInfo(this, m_state, context, m_context.currentPath(), LabPix->text().trimmed(),
                                               m_context.FileTypeCode());
    if (panel) {
        stopSlideTimer();
        connect(panel, &QDialog::finished, this, [this] { restartSlideTimerIfOn(); });
    }
}

void frmMain::mnuMove_Click()
{
    ClearCropSelection();
    stopSlideTimer();
    const QString path = m_context.currentPath();
    if (!m_context.CurrentFileName().isEmpty() && moveFileAway(path)) {
        m_context.setCurrentFileName(nameShownAfterRemoving());
        cmdRefr_Click();
    }
    restartSlideTimerIfOn();
}

// Asks for a folder and moves the file there; the favourites follow it.
// True when it moved.
bool frmMain::moveFileAway(const QString &path)
{
    const FileContext context = contextFor(this, m_prompts, m_state.messages, [this](const QString &held) {
        releasePlayers(held);
    });
    const QString moved = MoveFileToFolder(path, context);
    if (moved == path)
        return false;
    if (m_favourites)
        m_favourites->replaceEntry(path, moved);
    recordChore({ChoreKind::Move, {{path, moved, false}}});
    return true;
}

bool frmMain::isFavourite(const QString &path) { return Favourites::find(favourites().entries(), path) >= 0; }

void frmMain::mnuUndo_Click()
{
    if (m_undo.isEmpty())
        return;
    ClearCropSelection();
    stopSlideTimer();
    const UndoRecord record = m_undo.takeLast();
    const FileContext context = contextFor(this, m_prompts, m_state.messages, [this](const QString &held) {
        releasePlayers(held);
    });
    const FileUndo::Result result = FileUndo::undo(record, context);
    recordChore({record.kind, result.kept}); // the user kept the file in the way: Ctrl+Z may try again
    QString shown;
    for (const ChoreStep &step : result.putBack) {
        if (record.kind != ChoreKind::Trash && m_favourites)
            m_favourites->replaceEntry(step.now, step.original);
        if (record.kind == ChoreKind::Trash && step.favourite) {
            Inserisci_Lista(step.original);
            cmdList->setEnabled(true);
        }
        if (QFileInfo(step.original).absolutePath() == m_context.CurrentFolder())
            shown = QFileInfo(step.original).fileName();
    }
    // The file put back is shown; the list, its count and the index page follow.
    if (!shown.isEmpty())
        m_context.setCurrentFileName(shown);
    if (!result.putBack.isEmpty())
        cmdRefr_Click();
    restartSlideTimerIfOn();
}
