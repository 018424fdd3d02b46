// frmMain's commands: each one action of the window's command set, run by
// its handler. The popups, the buttons and the key table are made of them.
#include "viewer/frmMain.h"

#include "commands/CommandSet.h"
#include "commands/WindowKeys.h"
#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "platform/LanguageChoice.h"
#include "platform/MoviePlayer.h"
#include "system/AssociationGroups.h"
#include "viewer/MainKeyTable.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>

void frmMain::buildMenus()
{
    using C = Command;
    commands = new CommandSet(this);
    CommandSet &set = *commands;
    SFPOPUP = set.buildMenu(Commands::mainPopup(), this, "SFPOPUP");
    SFCrop = set.buildMenu(Commands::cropPopup(), this, "SFCrop");
    DIRPOPUP = set.buildMenu(Commands::folderPopup(), this, "DIRPOPUP");
    mnuZoom = SFPOPUP->findChild<QMenu *>(QStringLiteral("mnuZoom"));
    const std::pair<QAction **, C> named[] = {
        {&mnuPlay, C::Play}, {&mnuStop, C::Stop}, {&mnuSepp, C::SepPlay}, {&mnuGrab, C::Grab},
        {&mnuAnim, C::Anim}, {&mnuSepGif, C::SepGif}, {&mnuFullScreen, C::FullScreen}, {&mnuSave, C::Save},
        {&mnuPrint, C::Print}, {&mnuClipboard, C::Clipboard}, {&mnusepX, C::SepX}, {&mnuWall, C::Wall},
        {&mnuRemoveWall, C::RemoveWall}, {&mnuMove, C::Move}, {&mnusep, C::Sep}, {&mnuGlobal, C::Global},
        {&mnusep99, C::Sep99}, {&SFRename, C::Rename}, {&SFDelete, C::Delete}, {&mnuUndo, C::Undo}, {&SFInfo, C::Info},
        {&mnusepw, C::SepW}, {&mnufit, C::Fit}, {&mnuFull, C::Full}, {&mnuAdd, C::Add}, {&mnuRemove, C::Remove},
        {&mnuShellOpen, C::ShellOpen}, {&mnuShellEdit, C::ShellEdit}, {&mnuCropSave, C::CropSave},
        {&mnuCropClip, C::CropClip}, {&mnuCropPrint, C::CropPrint}, {&mnuDirOpen, C::DirOpen},
        {&mnuDirExpl, C::DirExplore},
    };
    for (const auto &[member, command] : named)
        *member = set[command];
    const QList<Command> zooms = Commands::zoomEntries();
    for (size_t i = 0; i < mnuZoomItems.size(); ++i)
        mnuZoomItems[i] = set[zooms[qsizetype(i)]];
}

void frmMain::wireCommands()
{
    using C = Command;
    CommandSet &set = *commands;
    set.wire(C::Play, this, &frmMain::mnuPlay_Click);
    set.wire(C::Stop, this, &frmMain::mnuStop_Click);
    set.wire(C::Anim, this, &frmMain::mnuAnim_Click);
    set.wire(C::FullScreen, this, &frmMain::mnuFullScreen_Click);
    set.wire(C::Save, this, &frmMain::cmdSave_Click);
    set.wire(C::Print, this, &frmMain::cmdPrint_Click);
    set.wire(C::Clipboard, this, &frmMain::cmdClip_Click);
    set.wire(C::Grab, this, &frmMain::cmdGrab_Click);
    set.wire(C::Wall, this, &frmMain::mnuWall_Click);
    set.wire(C::RemoveWall, this, &frmMain::mnuRemoveWall_Click);
    set.wire(C::Move, this, &frmMain::mnuMove_Click);
    set.wire(C::Add, this, &frmMain::mnuAdd_Click);
    set.wire(C::Remove, this, &frmMain::mnuRemove_Click);
    set.wire(C::Global, this, &frmMain::mnuGlobal_Click);
    set.wire(C::Rename, this, &frmMain::SFRename_Click);
    set.wire(C::Delete, this, &frmMain::SFDelete_Click);
    set.wire(C::Undo, this, &frmMain::mnuUndo_Click);
    set.wire(C::Info, this, &frmMain::SFInfo_Click);
    set.wire(C::ShellOpen, this, &frmMain::mnuShellOpen_Click);
    set.wire(C::ShellEdit, this, &frmMain::mnuShellEdit_Click);
    set.wire(C::Fit, this, &frmMain::mnufit_Click);
    set.wire(C::Full, this, &frmMain::mnuFull_Click);
    for (const Command zoom : Commands::zoomEntries())
        set.wire(zoom, [this, zoom] { mnuZoom_Click(Commands::zoomPercent(zoom)); });
    set.wire(C::CropSave, this, &frmMain::mnuCropSave_Click);
    set.wire(C::CropClip, this, &frmMain::mnuCropClip_Click);
    set.wire(C::CropPrint, this, &frmMain::mnuCropPrint_Click);
    set.wire(C::DirOpen, this, &frmMain::mnuDirOpen_Click);
    set.wire(C::DirExplore, this, &frmMain::mnuDirExpl_Click);

    set.wire(C::Next, this, &frmMain::cmdNext_Click);
    set.wire(C::Back, this, &frmMain::cmdBack_Click);
    set.wire(C::StepNext, [this] { stepThroughList(false); });
    set.wire(C::StepBack, [this] { stepThroughList(true); });
    set.wire(C::SpaceKey, this, &frmMain::playPauseOrNext);
    set.wire(C::EnterKey, this, &frmMain::openTypedPath);
    set.wire(C::Language, this, &frmMain::switchLanguage);
    set.wire(C::FocusPathBox, [this] { CboURL->setFocus(); });
    set.wire(C::Refresh, this, &frmMain::cmdRefr_Click);
    set.wire(C::Crop, this, &frmMain::cmdRitaglia_Click);
    set.wire(C::ZoomIn, this, &frmMain::cmdExpand_Click);
    set.wire(C::ZoomOut, this, &frmMain::cmdReduce_Click);
    set.wire(C::About, this, &frmMain::cmdAbout_Click);
    set.wire(C::Index, this, &frmMain::cmdIndex_Click);
    set.wire(C::FolderUp, this, &frmMain::cmdUp_Click);
    set.wire(C::ClearHistory, this, &frmMain::cmdClear_Click);
    set.wire(C::Help, this, &frmMain::cmdHelp_Click);
    set.wire(C::Associations, this, &frmMain::cmdLink_Click);
    set.wire(C::CancelSelection, [this] {
        ClearCropSelection();
        unsetCursor();
    });

    const std::pair<QAbstractButton *, C> buttons[] = {
        {cmdNext, C::Next}, {cmdBack, C::Back}, {cmdUp, C::FolderUp}, {cmdRefr, C::Refresh},
        {cmdClear, C::ClearHistory}, {cmdRitaglia, C::Crop}, {cmdExpand, C::ZoomIn}, {cmdReduce, C::ZoomOut},
        {cmdIndex, C::Index}, {cmdSave, C::Save}, {cmdClip, C::Clipboard}, {cmdPrint, C::Print},
        {cmdGrab, C::Grab}, {cmdAdd, C::Add}, {cmdList, C::Global}, {cmdLink, C::Associations},
        {cmdHelp, C::Help}, {cmdAbout, C::About},
    };
    for (const auto &[button, command] : buttons)
        set.drive(button, command);
    for (const MainKeyTable::Row &row : MainKeyTable::rows())
        set.bindKeys(row.command, row.keys);
    // The table's keys reach the window wherever the focus is, but a text
    // being edited keeps its typing and the keys that move in it.
    new WindowKeys(this, set, [](QWidget *control, const QKeyEvent &key) {
        const auto *line = qobject_cast<const QLineEdit *>(control);
        const auto *box = qobject_cast<const QComboBox *>(control); // the path box keeps the focus for its text
        const bool editing = (line && !line->isReadOnly()) || (box && box->isEditable())
            || qobject_cast<const QAbstractSpinBox *>(control);
        return editing && MainKeyTable::editsText(key.key(), key.modifiers(), key.text());
    });

    set.beforeRun = [this] { offerCommands(); };
    connect(&m_context, &ViewerContext::fileShown, this, &frmMain::offerCommands);
}

CommandOffers::MainFacts frmMain::mainFacts() const
{
    const bool movie = m_context.MainMovieLoaded();
    const int playState = MediaPlayer1->PlayState();
    CommandOffers::MainFacts facts;
    facts.state = CommandOffers::stateOfFile(
        movie, MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen, FileTypeCatalogue::mayAnimate(m_context.FileTypeCode()),
        FileTypeCatalogue::mediaClassOf(m_context.FileTypeCode()) == FileTypeCatalogue::MediaClass::Slides,
        m_context.CurrentFileName().isEmpty());
    facts.movieStoppable = movie && (playState == MoviePlayer::Playing || playState == MoviePlayer::Paused);
    facts.shellOpenAvailable = AssociationGroups::shellOpenAvailable(m_context.FileTypeCode(), m_state.LinkedTypes);
    facts.animating = chkAnim->isChecked();
    facts.fullScreenUp = m_context.FullScreenActive();
    facts.undoAvailable = canUndo();
    return facts;
}

void frmMain::offerCommands()
{
    commands->apply(CommandOffers::mainWindow(mainFacts()), SFPOPUP,
                    [this](int number, const char *text) { return m_state.messages.GetMsg(number, QLatin1String(text)); });
}

void frmMain::playPauseOrNext()
{
    if (m_context.MainMovieLoaded()) {
        if (MediaPlayer1->PlayState() == MoviePlayer::Playing)
            MediaPlayer1->Pause();
        else
            MediaPlayer1->Play();
    } else if (ChkCicle->isChecked()) {
        ChkCicle->setChecked(false);
    } else {
        stepThroughList(false);
    }
}

void frmMain::openTypedPath()
{
    if (!m_browserReady)
        return;
    const QString typed = CboURL->currentText().trimmed();
    CboURL_Click();
    QCoreApplication::processEvents();
    if (m_context.CurrentFolder().startsWith(typed, Qt::CaseInsensitive) && !m_context.CurrentFileName().isEmpty())
        Inserisci_URL(m_context.CurrentFolder());
}
