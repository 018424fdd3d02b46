// The thumbnail index's commands that belong to other parts of the program:
// its hooks are set here, on the main window's features, when the index is
// made.
#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "files/FileCommands.h"
#include "files/Favourites.h"
#include "files/ShellLaunch.h"
#include "files/VolumeControl.h"
#include "files/frmList.h"
#include "files/frmMessage.h"
#include "index/IndexRules.h"
#include "index/frmIndex.h"
#include "output/PictureOutput.h"
#include "platform/ColourManagement.h"
#include "platform/MoviePlayer.h"
#include "platform/PictureLoader.h"
#include "system/AssociationGroups.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPointer>
#include <QToolButton>

namespace {

// In the display's colours for printing and the wallpaper, in sRGB for other programs.
QImage pictureOf(const QString &path, const QColorSpace &colours = ColourManagement::displayColourSpace())
{
    PictureLoader::Options options;
    options.colourSpace = colours;
    return PictureLoader::load(path, options).image;
}

} // namespace

void frmMain::wireIndexCommands(frmIndex *index)
{
    const QPointer<frmIndex> alive(index);
    m_state.ReleaseIndexPlayers = [alive](const QString &path) {
        if (alive)
            alive->ReleasePlayerFile(path);
    };
    m_state.MarkIndexThumbnail = [alive](const QString &path, bool on) {
        if (alive)
            alive->MarkIndexThumbnail(path, on);
    };
    connect(index, &QObject::destroyed, index, [state = &m_state] {
        state->ReleaseIndexPlayers = nullptr;
        state->MarkIndexThumbnail = nullptr;
    });

    // Favourites and file commands.
    index->isFavourite = [this](const QString &path) { return Favourites::find(favourites().entries(), path) >= 0; };
    index->onAddToFavourites = [this](const QString &path) {
        stopSlideTimer();
        Inserisci_Lista(path);
        cmdList->setEnabled(true);
        restartSlideTimerIfOn();
    };
    index->onRemoveFromFavourites = [this](const QString &path) {
        RemoveFromFavourites(path);
        if (path == m_context.currentPath())
            cmdAdd->setEnabled(true);
    };
    index->onGlobal = [this] { cmdList_Click(); };
    index->onRename = [this, index](const QString &path) { renameFileAt(path, index->nameRectOf(path)); };
    index->onDelete = [this](const QString &path) { deleteFileAt(path); };
    index->onUndo = [this] { mnuUndo_Click(); };
    index->canUndo = [this] { return canUndo(); };
    index->onMove = [this](const QString &path) {
        stopSlideTimer();
        const bool moved = moveFileAway(path);
        restartSlideTimerIfOn();
        return moved;
    };
    index->onInfo = [this, index](const QString &path) {
        const FileContext context{m_prompts, m_state.messages, {}, {}};
        frmMessage *panel = FileCommands::showInfo(index, m_state, context, path, index->SelectedSizeText,
                                                   IndexRules::typeCodeOf(path), true);
        if (panel) {
            stopSlideTimer();
            connect(panel, &QDialog::finished, this, [this] { restartSlideTimerIfOn(); });
        }
    };

    // Picture output.
    index->onClipboard = [index](const QString &path) {
        QGuiApplication::clipboard()->clear();
        QImage picture = pictureOf(path, QColorSpace(QColorSpace::SRgb));
        if (picture.isNull())
            picture = index->movieFrameOf(path);
        if (!picture.isNull())
            PictureOutput::putOnClipboard(picture);
    };
    index->onSave = [this, index](const QString &path) {
        saveCopyOf(path, m_state.messages.GetMsg(383, QStringLiteral("Select destination path for file copy")), index);
    };
    index->onPrint = [this, index](const QString &path) {
        stopSlideTimer();
        const bool slides = IndexRules::typeCodeOf(path) == u"PPT";
        printPicture(index, [path] { return pictureOf(path); }, slides ? path : QString());
        restartSlideTimerIfOn();
    };
    index->onWallpaper = [this](const QString &path) {
        const QString type = IndexRules::typeCodeOf(path);
        if (type == u"PPT")
            return;
        stopSlideTimer();
        setWallpaperFrom(path, type == u"BMP", [path] { return pictureOf(path); });
        restartSlideTimerIfOn();
    };
    index->onRemoveWallpaper = [this] { mnuRemoveWall_Click(); };

    // Other programs.
    index->isAssociatedType = [this](const QString &typeCode) {
        return !AssociationGroups::shellOpenAvailable(typeCode, m_state.LinkedTypes);
    };
    index->onShellOpen = [this](const QString &path) { ShellLaunch::indexShellOpen(path, m_state.LinkedTypes, m_launcher); };
    index->onShellEdit = [this](const QString &path) { ShellLaunch::shellEdit(path, m_launcher); };
    index->onVolume = [this] {
        if (!m_volumeControl)
            m_volumeControl = std::make_shared<VolumeControl>(m_launcher, m_prompts, m_state.messages);
        m_volumeControl->OpenVolumeControl();
    };

    // This window's side.
    index->playsInMain = [this](const QString &path) {
        return m_context.MainMovieLoaded() && MediaPlayer1->FileName() == path
            && MediaPlayer1->PlayState() == MoviePlayer::Playing;
    };
    index->onShownInMain = [this] {
        activateWindow();
        setFocus();
    };
    index->onLaunched = [this](bool started) { noteLaunched(started); };
    index->onLanguage = [this] { switchLanguage(); };
    index->onRefreshList = [this] { refreshForIndex(); };
    index->onDrop = [this](const QString &path) { DropFile(path); };
    index->updateCommandStates();
}
