// What the user does with the cells: selection, opening in the main
// window, the popup and the keyboard.
#include "index/frmIndex.h"

#include "commands/CommandSet.h"
#include "commands/WindowKeys.h"
#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "platform/LanguageChoice.h"
#include "platform/Launcher.h"
#include "platform/MoviePlayer.h"
#include "system/AssociationGroups.h"

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
    if (cell.movie) {
        const QString held = cell.MediaPlayer1->FileName().trimmed();
        SelectedFile = held.isEmpty() ? cell.path : held;
    } else {
        SelectedFile = cell.path;
        SelectedSizeText = IndexRules::detailOfTag(cell.tag);
    }
    offerForSelection();
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

QRect frmIndex::nameRectOf(const QString &path) const
{
    const int cell = cellOfPath(path);
    if (cell < 0)
        return QRect(mapToGlobal(QPoint(0, 0)), QSize(240, fontMetrics().height() + 6));
    const QLabel *label = cells[cell].LabImage;
    return QRect(label->mapToGlobal(QPoint(0, 0)), QSize(label->width(), label->fontMetrics().height() + 6));
}

QImage frmIndex::movieFrameOf(const QString &path) const
{
    const int cell = cellOfPath(path);
    return cell >= 0 && cells[cell].movie ? cells[cell].MediaPlayer1->currentFrame() : QImage();
}

void frmIndex::mnuOpen_Click()
{
    m_context.setFullScreenActive(false);
    if (SelectedFile == u"..") {
        cmdRefr_Click();
        return;
    }
    double position = 0;
    if (SelectedIsMovie && SelectedCell >= 0) {
        MoviePlayer *player = cells[SelectedCell].MediaPlayer1;
        if (!player->FileName().isEmpty())
            SelectedFile = player->FileName();
        if (playsInMain && playsInMain(SelectedFile))
            return;
        // The main window takes the movie over where the cell was.
        position = player->CurrentPosition();
        if (player->PlayState() == MoviePlayer::Playing)
            player->Pause();
    }
    Mostra_Main(QFileInfo(SelectedFile).fileName(), position);
    if (onShownInMain)
        onShownInMain();
}

void frmIndex::stepThroughMainList(int steps)
{
    ViewerContext::ShowRequest request;
    request.steps = steps;
    request.wraps = m_state.SlideshowOn;
    m_context.show(request);
}

void frmIndex::Mostra_Main(const QString &name, double startPosition)
{
    ViewerContext::ShowRequest request;
    request.name = name;
    request.startPosition = startPosition;
    m_context.show(request);
}

void frmIndex::mnuPlay_Click()
{
    if (SelectedCell < 0 || !SelectedIsMovie)
        return;
    if (cells[SelectedCell].MediaPlayer1->PlayState() == MoviePlayer::Playing)
        cmdPauseSmall_Click(SelectedCell);
    else
        cmdPlaySmall_Click(SelectedCell);
}

void frmIndex::mnuStop_Click()
{
    if (SelectedCell < 0 || !SelectedIsMovie)
        return;
    cmdStopSmall_Click(SelectedCell);
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
}

void frmIndex::mnuMove_Click()
{
    if (!onMove || SelectedFile.isEmpty())
        return;
    const bool wasOnShow = SelectedFile == m_context.currentPath();
    if (!onMove(SelectedFile))
        return;
    if (wasOnShow)
        m_context.setCurrentFileName(QString());
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
    const bool started = m_launcher.openWithDefault(m_context.CurrentFolder()).started;
    if (onLaunched)
        onLaunched(started);
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

void frmIndex::wireCommands()
{
    using C = Command;
    CommandSet &set = *commands;
    set.wire(C::Open, this, &frmIndex::mnuOpen_Click);
    set.wire(C::Play, this, &frmIndex::mnuPlay_Click);
    set.wire(C::Stop, this, &frmIndex::mnuStop_Click);
    set.wire(C::Add, this, &frmIndex::mnuAdd_Click);
    set.wire(C::Remove, this, &frmIndex::mnuRemove_Click);
    set.wire(C::Move, this, &frmIndex::mnuMove_Click);
    set.wire(C::Clipboard, this, &frmIndex::mnuClipboard_Click);
    set.wire(C::Wall, this, &frmIndex::mnuWall_Click);
    set.wire(C::Global, [this] { if (onGlobal) onGlobal(); });
    set.wire(C::RemoveWall, [this] { if (onRemoveWallpaper) onRemoveWallpaper(); });
    // The rest run the main window's commands on the selected file.
    const std::pair<C, PathHook frmIndex::*> onSelected[] = {
        {C::Save, &frmIndex::onSave},           {C::Print, &frmIndex::onPrint},
        {C::ShellOpen, &frmIndex::onShellOpen}, {C::ShellEdit, &frmIndex::onShellEdit},
        {C::Rename, &frmIndex::onRename},       {C::Delete, &frmIndex::onDelete},
        {C::Info, &frmIndex::onInfo},
    };
    for (const auto &[command, hook] : onSelected)
        set.wire(command, [this, hook] {
            if (this->*hook && !SelectedFile.isEmpty())
                (this->*hook)(SelectedFile);
        });
    set.wire(C::Back, this, &frmIndex::cmdBack_Click);
    set.wire(C::Next, this, &frmIndex::cmdNext_Click);
    set.wire(C::Refresh, this, &frmIndex::cmdRefr_Click);
    set.wire(C::DirExplore, this, &frmIndex::cmdDir_Click);
    set.wire(C::StepBack, [this] { stepThroughMainList(-1); });
    set.wire(C::StepNext, [this] { stepThroughMainList(1); });
    set.wire(C::Language, [this] {
        if (onLanguage)
            onLanguage(); // every window follows
    });
    set.wire(C::Undo, [this] {
        if (onUndo)
            onUndo();
    });
    set.wire(C::PlayGroup, this, &frmIndex::cmdPlay_Click);
    set.wire(C::PauseGroup, this, &frmIndex::cmdPause_Click);
    set.wire(C::StopGroup, this, &frmIndex::cmdStop_Click);
    set.wire(C::Volume, this, &frmIndex::cmdVol_Click);
    set.wire(C::PlayCell, [this] { cmdPlaySmall_Click(commands->which(C::PlayCell)); });
    set.wire(C::PauseCell, [this] { cmdPauseSmall_Click(commands->which(C::PauseCell)); });
    set.wire(C::StopCell, [this] { cmdStopSmall_Click(commands->which(C::StopCell)); });
    for (const auto &[button, command] :
         {std::pair{cmdBack, C::Back}, std::pair{cmdNext, C::Next}, std::pair{cmdRefr, C::Refresh},
          std::pair{cmdDir, C::DirExplore}, std::pair{cmdPlay, C::PlayGroup}, std::pair{cmdPause, C::PauseGroup},
          std::pair{cmdStop, C::StopGroup}, std::pair{cmdVol, C::Volume}})
        set.drive(button, command);
    for (int index = 0; index < IndexRules::CellCount; ++index) {
        set.drive(cells[index].cmdPlaySmall, C::PlayCell, index);
        set.drive(cells[index].cmdPauseSmall, C::PauseCell, index);
        set.drive(cells[index].cmdStopSmall, C::StopCell, index);
    }

    const auto alt = [](Qt::Key key) { return QKeySequence(Qt::AltModifier | key); };
    set.bindKeys(C::StepBack, {Qt::Key_Up, Qt::Key_PageUp});
    set.bindKeys(C::StepNext, {Qt::Key_Down, Qt::Key_PageDown});
    set.bindKeys(C::Add, {alt(Qt::Key_A)});
    set.bindKeys(C::Remove, {alt(Qt::Key_R)});
    set.bindKeys(C::Global, {alt(Qt::Key_G)});
    set.bindKeys(C::Language, {Qt::Key_F2});
    set.bindKeys(C::Refresh, {Qt::Key_F5});
    set.bindKeys(C::Clipboard, {QKeySequence(Qt::ControlModifier | Qt::Key_C)});
    set.bindKeys(C::Save, {alt(Qt::Key_C)});
    set.bindKeys(C::Move, {alt(Qt::Key_M)});
    set.bindKeys(C::Print, {alt(Qt::Key_P)});
    set.bindKeys(C::Delete, {Qt::Key_Delete, alt(Qt::Key_D)});
    set.bindKeys(C::Wall, {alt(Qt::Key_S), alt(Qt::Key_W)});
    set.bindKeys(C::RemoveWall, {alt(Qt::Key_E), alt(Qt::Key_V)});
    set.bindKeys(C::Rename, {alt(Qt::Key_N)});
    set.bindKeys(C::Info, {alt(Qt::Key_I)});
    set.bindKeys(C::Undo, {QKeySequence(Qt::ControlModifier | Qt::Key_Z)});
    set.beforeRun = [this] { offerForSelection(); };
    // A cell's player keeps its own keys (only Alt+A and Alt+R reach the
    // window from there); from any other control the table's keys go to
    // the window.
    new WindowKeys(this, set, [](QWidget *control, const QKeyEvent &) {
        for (QWidget *at = control; at; at = at->parentWidget())
            if (qobject_cast<MoviePlayer *>(at))
                return true;
        return false;
    });
}

void frmIndex::offerForSelection()
{
    using C = Command;
    CommandOffers::IndexFacts facts;
    const bool chosen = SelectedCell >= 0 && SelectedCell < IndexRules::CellCount && !cells[SelectedCell].path.isEmpty();
    if (chosen) {
        const Cell &cell = cells[SelectedCell];
        const int state = cell.MediaPlayer1->PlayState();
        facts.state = cell.movie ? CommandOffers::ViewState::MovieWindowed : CommandOffers::ViewState::Picture;
        facts.movieStoppable = cell.movie && (state == MoviePlayer::Playing || state == MoviePlayer::Paused);
        facts.icon = IndexRules::typeCodeOf(cell.path) == u"ICO";
        // Opening with "the associated program" would only come back here. The
        // type is the extension as written, as the launch's own guard takes it.
        facts.typeLinkedToVimora = isAssociatedType && isAssociatedType(AssociationGroups::typeTextOfPath(cell.path));
    }
    const std::pair<C, bool> hooks[] = {
        {C::Save, bool(onSave)},         {C::Print, bool(onPrint)},       {C::Clipboard, bool(onClipboard)},
        {C::Wall, bool(onWallpaper)},    {C::RemoveWall, bool(onRemoveWallpaper)}, {C::Move, bool(onMove)},
        {C::Add, bool(onAddToFavourites)}, {C::Remove, bool(onRemoveFromFavourites)}, {C::Global, bool(onGlobal)},
        {C::Rename, bool(onRename)},     {C::Delete, bool(onDelete)},     {C::Info, bool(onInfo)},
        {C::ShellOpen, bool(onShellOpen)}, {C::ShellEdit, bool(onShellEdit)}, {C::Undo, bool(onUndo)},
    };
    for (const auto &[command, wired] : hooks)
        if (wired)
            facts.wired.append(command);
    facts.undoAvailable = canUndo && canUndo();
    commands->apply(CommandOffers::index(facts), SFPOPUP,
                    [this](int number, const char *text) { return m_state.messages.GetMsg(number, QLatin1String(text)); });
}
