// What the user does with the cells: selection, opening in the main
// window, the popup and the keyboard.
#include "index/frmIndex.h"

#include "core/AppState.h"
#include "platform/Launcher.h"
#include "platform/MoviePlayer.h"
#include "system/AssociationGroups.h"
#include "viewer/frmMain.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QToolButton>

void frmIndex::selectCell(int index)
{
    if (index < 0 || index >= IndexRules::CellCount || cells[index].path.isEmpty())
        return;
    const Cell &cell = cells[index];
    unsetCursor();
    SelectedCell = index;
    SelectedIsMovie = cell.movie;
    const QString type = IndexRules::typeCodeOf(cell.path);
    if (cell.movie) {
        const QString held = cell.MediaPlayer1->FileName().trimmed();
        SelectedFile = held.isEmpty() ? cell.path : held;
        const int state = cell.MediaPlayer1->PlayState();
        mnuStop->setEnabled(state == MoviePlayer::Playing || state == MoviePlayer::Paused);
    } else {
        SelectedFile = cell.path;
        SelectedSizeText = IndexRules::detailOfTag(cell.tag);
    }
    mnuPlay->setVisible(cell.movie);
    mnuStop->setVisible(cell.movie);
    mnuSepp->setVisible(cell.movie);
    // Opening with "the associated program" would only come back here. The
    // type is the extension as written, as the launch's own guard takes it.
    mnuShellOpen->setVisible(!(isAssociatedType && isAssociatedType(AssociationGroups::typeTextOfPath(cell.path))));
    mnuClipboard->setEnabled(bool(onClipboard) && type != u"ICO");
    mnuWall->setEnabled(bool(onWallpaper) && !cell.movie);
}

void frmIndex::showPopup(int cell, QPoint globalPosition)
{
    selectCell(cell);
    SFPOPUP->popup(globalPosition);
}

double frmIndex::cellMoviePosition(int cell) const
{
    if (cell < 0 || cell >= IndexRules::CellCount || !cells[cell].movie)
        return 0;
    return cells[cell].MediaPlayer1->CurrentPosition();
}

int frmIndex::cellOfPath(const QString &path) const
{
    for (int cell = 0; cell < IndexRules::CellCount; ++cell)
        if (!cells[cell].path.isEmpty() && cells[cell].path == path)
            return cell;
    return -1;
}

void frmIndex::mnuOpen_Click()
{
    m_state.FullScreenActive = false;
    if (SelectedFile == u"..") {
        cmdRefr_Click();
        return;
    }
    double position = 0;
    if (SelectedIsMovie && SelectedCell >= 0) {
        MoviePlayer *player = cells[SelectedCell].MediaPlayer1;
        if (!player->FileName().isEmpty())
            SelectedFile = player->FileName();
        if (m_state.MainMovieLoaded && m_main.MediaPlayer1->FileName() == SelectedFile
            && m_main.MediaPlayer1->PlayState() == MoviePlayer::Playing)
            return;
        // The main window takes the movie over where the cell was.
        position = player->CurrentPosition();
        if (player->PlayState() == MoviePlayer::Playing)
            player->Pause();
    }
    Mostra_Main(QFileInfo(SelectedFile).fileName(), position);
    m_main.activateWindow();
    m_main.setFocus();
}

void frmIndex::Mostra_Main(const QString &name, double startPosition)
{
    m_main.Mostra_Image(false, name, false, startPosition);
}

void frmIndex::mnuPlay_Click()
{
    if (SelectedCell < 0 || !SelectedIsMovie)
        return;
    if (cells[SelectedCell].MediaPlayer1->PlayState() == MoviePlayer::Playing)
        cmdPauseSmall_Click(SelectedCell);
    else
        cmdPlaySmall_Click(SelectedCell);
    mnuStop->setEnabled(true);
}

void frmIndex::mnuStop_Click()
{
    if (SelectedCell < 0 || !SelectedIsMovie)
        return;
    cmdStopSmall_Click(SelectedCell);
    mnuStop->setEnabled(false);
}

void frmIndex::mnuAdd_Click()
{
    if (onAddToFavourites && SelectedCell >= 0 && !cells[SelectedCell].path.isEmpty())
        onAddToFavourites(cells[SelectedCell].path);
}

void frmIndex::mnuRemove_Click()
{
    if (!onRemoveFromFavourites || SelectedFile.isEmpty())
        return;
    onRemoveFromFavourites(SelectedFile);
    MarkIndexThumbnail(SelectedFile, false);
    if (SelectedFile == m_state.currentPath())
        m_main.cmdAdd->setEnabled(true);
}

void frmIndex::mnuMove_Click()
{
    if (!onMove || SelectedFile.isEmpty())
        return;
    const bool wasOnShow = SelectedFile == m_state.currentPath();
    if (!onMove(SelectedFile))
        return;
    if (wasOnShow)
        m_state.CurrentFileName.clear();
    cmdRefr_Click();
}

void frmIndex::mnuClipboard_Click()
{
    if (mnuClipboard->isEnabled() && onClipboard && !SelectedFile.isEmpty())
        onClipboard(SelectedFile);
}

void frmIndex::mnuWall_Click()
{
    if (mnuWall->isEnabled() && onWallpaper && !SelectedFile.isEmpty())
        onWallpaper(SelectedFile);
}

void frmIndex::cmdDir_Click()
{
    m_main.noteLaunched(m_launcher.openWithDefault(m_state.CurrentFolder).started);
}

void frmIndex::MarkIndexThumbnail(const QString &path, bool favourite)
{
    const int cell = cellOfPath(path);
    if (cell >= 0)
        cells[cell].ImgList->setVisible(favourite);
}

void frmIndex::ReleasePlayerFile(const QString &path)
{
    for (Cell &cell : cells) {
        if (cell.MediaPlayer1->FileName().isEmpty() || cell.MediaPlayer1->FileName() != path)
            continue;
        cell.MediaPlayer1->Stop();
        cell.MediaPlayer1->setFileName(QString());
        cell.HScroll1->setValue(0);
    }
}

void frmIndex::releaseAllPlayers()
{
    for (Cell &cell : cells) {
        if (cell.MediaPlayer1->FileName().isEmpty())
            continue;
        cell.MediaPlayer1->Stop();
        cell.MediaPlayer1->setFileName(QString());
    }
}

bool frmIndex::handleKey(int key, Qt::KeyboardModifiers modifiers)
{
    const bool plain = modifiers == Qt::NoModifier;
    const bool alt = modifiers == Qt::AltModifier;
    const bool ctrl = modifiers == Qt::ControlModifier;
    auto trigger = [](QAction *item) {
        if (item->isEnabled())
            item->trigger();
    };
    struct Binding {
        bool when;
        std::function<void()> run;
    };
    const Binding table[] = {
        {plain && (key == Qt::Key_Up || key == Qt::Key_PageUp), [this] { m_main.Mostra_Image(true, QString()); }},
        {plain && (key == Qt::Key_Down || key == Qt::Key_PageDown), [this] { m_main.Mostra_Image(false, QString()); }},
        {alt && key == Qt::Key_A, [&] { trigger(mnuAdd); }},
        {alt && key == Qt::Key_R, [&] { trigger(mnuRemove); }},
        {alt && key == Qt::Key_G, [&] { trigger(mnuGlobal); }},
        {plain && key == Qt::Key_F2, [this] { m_main.switchLanguage(); }},
        {plain && key == Qt::Key_F5, [this] { cmdRefr_Click(); }},
        {ctrl && key == Qt::Key_C, [&] { trigger(mnuClipboard); }},
        {alt && key == Qt::Key_C, [&] { trigger(mnuSave); }},
        {alt && key == Qt::Key_M, [&] { trigger(mnuMove); }},
        {alt && key == Qt::Key_P, [&] { trigger(mnuPrint); }},
        {(plain && key == Qt::Key_Delete) || (alt && key == Qt::Key_D), [&] { trigger(SFDelete); }},
        {alt && (key == Qt::Key_S || key == Qt::Key_W), [&] { trigger(mnuWall); }},
        {alt && (key == Qt::Key_E || key == Qt::Key_V), [&] { trigger(mnuRemoveWall); }},
        {alt && key == Qt::Key_N, [&] { trigger(SFRename); }},
        {alt && key == Qt::Key_I, [&] { trigger(SFInfo); }},
        {ctrl && key == Qt::Key_Z, [this] { if (onUndo) onUndo(); }},
    };
    for (const Binding &binding : table) {
        if (binding.when) {
            binding.run();
            return true;
        }
    }
    return false;
}
