#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "display/PictureView.h"
#include "files/CopyProgress.h"
#include "files/FileOperations.h"
#include "files/FilePaths.h"
#include "output/OutputRules.h"
#include "output/PictureOutput.h"
#include "output/PrintCommand.h"
#include "output/Wallpaper.h"
#include "output/clsCommonDialog.h"
#include "platform/ColourManagement.h"
#include "platform/MoviePlayer.h"
#include "platform/PictureLoader.h"
#include "platform/Prompts.h"
#include "viewer/ViewRules.h"

#include <QAction>
#include <QClipboard>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QPrinter>
#include <QTimer>
#include <QToolButton>

using OutputRules::Numbered;

namespace {
constexpr int FrameWaitMs = 2000; // a paused movie shows its frame within this

// What leaves the program for other programs (the clipboard) is in sRGB.
PictureLoader::Options inSrgb()
{
    PictureLoader::Options options;
    options.colourSpace = QColorSpace(QColorSpace::SRgb);
    return options;
}

} // namespace

void frmMain::connectOutputHandlers()
{
    // Only a movie has a frame to grab.
    cmdGrab->setEnabled(false);
    connect(&m_context, &ViewerContext::fileShown, this, [this] { cmdGrab->setEnabled(m_context.MainMovieLoaded()); });
}

QString frmMain::outputFolder() const
{
    return m_state.OutputFolder.isEmpty() ? m_context.CurrentFolder() : m_state.OutputFolder;
}

QPrinter &frmMain::currentPrinter()
{
    if (!m_printer)
        m_printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    return *m_printer;
}

void frmMain::reportDialogError(const clsCommonDialog &dialog)
{
    if (!dialog.errorText().isEmpty())
        m_prompts.ask({dialog.errorText(), PromptButtons::Ok});
}

// The end shared by the output commands: buttons back, slideshow on again.
void frmMain::endOutputCommand(bool grabToo)
{
    cmdClip->setEnabled(true);
    cmdPrint->setEnabled(true);
    if (grabToo)
        cmdGrab->setEnabled(m_context.MainMovieLoaded());
    restartSlideTimerIfOn();
    cmdNext->setFocus();
}

// The list is read again with the display kept as it is (a movie goes on
// playing), and the new file gets its place in it.
void frmMain::reloadAfterWrite(const QString &path)
{
    m_keepDisplay = true;
    Carica_ListaImages(m_context.CurrentFileName());
    m_keepDisplay = false;
    m_context.setCurrentIndex(int(m_context.FileNames().indexOf(m_context.CurrentFileName())));
    for (QToolButton *button : {cmdClip, cmdPrint, cmdSave, cmdAdd})
        button->setEnabled(true);
    cmdNext->setEnabled(m_context.CurrentIndex() < m_context.fileUpperBound());
    cmdBack->setEnabled(m_context.CurrentIndex() > 0);
    LabNum->setText(ViewRules::positionText(m_context.CurrentIndex(), m_context.fileUpperBound() + 1));
    showStatusLabels();
    layoutStatusRow();
    emit outputWrittenIntoFolder(path);
}

// ---------------------------------------------------------------- save copy and area

void frmMain::cmdSave_Click()
{
    if (m_context.CurrentFileName().isEmpty())
        return;
    saveCopyOf(m_context.currentPath(), m_state.messages.GetMsg(10109, QStringLiteral("Make a Copy of current file")),
               this);
}

// The copy of a file through the dialog, by the file commands' copy, which
// asks before it replaces anything.
void frmMain::saveCopyOf(const QString &source, const QString &title, QWidget *asking)
{
    stopSlideTimer();
    clsCommonDialog dialog;
    dialog.setParent(asking);
    dialog.CancelError = true;
    dialog.CallerAsksBeforeReplacing = true; // CopyThisFile does
    dialog.InitDir = m_state.SaveFolder;
    dialog.Flags = 0;
    dialog.Filter = m_state.OpenFileFilter;
    dialog.FilterIndex = 1;
    dialog.setDialogTitle(title + QLatin1Char(' '));
    dialog.FileName = OutputRules::copyProposedName(m_state.SaveFolder, m_context.CurrentFolder(), FileNameOfPath(source),
                                                    m_state.messages.GetMsg(10121, QStringLiteral("Copy of")));
    if (!dialog.ShowOpen(m_prompts)) {
        reportDialogError(dialog);
        endOutputCommand(false);
        return;
    }
    const QString destination = dialog.FileName;
    if (QFileInfo(destination) != QFileInfo(source)) {
        setWaitCursor(true);
        FileContext context{m_prompts, m_state.messages, {}, {}};
        context.copy.progress =
            copyProgressWindow(asking, m_state.messages.GetMsg(20623, QStringLiteral("Copying ...")),
                               m_state.messages.GetMsg(104, QStringLiteral("&Cancel")));
        if (CopyThisFile(source, destination, context).done()) {
            m_state.SaveFolder = QFileInfo(destination).path();
            if (OutputRules::sameFolder(m_state.SaveFolder, m_context.CurrentFolder()))
                reloadAfterWrite(destination);
        }
        setWaitCursor(false);
    }
    endOutputCommand(false);
}

void frmMain::mnuCropSave_Click()
{
    if (!m_cropSelectionActive)
        return;
    stopSlideTimer();
    // Numbered in the output folder although the dialog opens in the save
    // folder: the two differ once an area went elsewhere than the last copy.
    const QString proposed = OutputRules::nextNumberedName(outputFolder(), m_context.CurrentFileName(), Numbered::Area);
    clsCommonDialog dialog;
    dialog.setParent(this);
    dialog.CancelError = true;
    dialog.InitDir = m_state.SaveFolder;
    dialog.Flags = 0;
    dialog.Filter = QStringLiteral("Bitmap (*.BMP)|*.bmp|") + m_state.messages.GetMsg(382, QStringLiteral("All Files"))
        + QStringLiteral(" (*.*)|*.*");
    dialog.FilterIndex = 1;
    dialog.setDialogTitle(m_state.messages.GetMsg(10120, QStringLiteral("Save selected area to a file")) + QLatin1Char(' '));
    dialog.FileName = proposed;
    if (!dialog.ShowOpen(m_prompts)) {
        reportDialogError(dialog);
        endOutputCommand(false);
        return;
    }
    const QString destination = dialog.FileName;
    if (QFileInfo(destination) != QFileInfo(m_context.currentPath())) {
        setWaitCursor(true);
        Copia_Area(destination, cropTarget());
        m_state.OutputFolder = QFileInfo(destination).path();
        if (OutputRules::sameFolder(m_state.OutputFolder, m_context.CurrentFolder()))
            reloadAfterWrite(destination);
        setWaitCursor(false);
    }
    endOutputCommand(false);
}

// The window's own rendering of the selected rectangle, without the rubber
// band, so the file holds what the user sees at the current zoom.
QImage frmMain::areaPicture(QWidget *target)
{
    const QRectF targetTwips(targetOrigin(target), targetSize(target));
    const QRect area = OutputRules::areaPixels(m_selAnchor, m_selEnd, targetTwips, m_twips);
    const bool labelShown = LabMis->isVisible();
    for (QFrame *line : SelLines)
        line->hide();
    LabMis->hide();
    QCoreApplication::processEvents();
    const QImage picture = area.isEmpty() ? QImage() : grab(area).toImage();
    if (m_cropSelectionActive) {
        for (QFrame *line : SelLines)
            line->show();
        LabMis->setVisible(labelShown);
    }
    return picture;
}

void frmMain::Copia_Area(const QString &fileName, QWidget *target)
{
    PictureOutput::saveBitmap(ColourManagement::shownInSrgb(areaPicture(target)), fileName); // a failure is not reported
}

// ---------------------------------------------------------------- movie frames

// Pauses the movie on its frame at its own size, without the control bar.
frmMain::MovieFrameHold frmMain::holdMovieFrame()
{
    MovieFrameHold hold;
    hold.position = MediaPlayer1->CurrentPosition();
    m_savedMoviePosition = hold.position;
    hold.wasPlaying = MediaPlayer1->PlayState() == MoviePlayer::Playing;
    if (hold.wasPlaying) {
        MediaPlayer1->Pause();
    } else if (MediaPlayer1->PlayState() != MoviePlayer::Paused) {
        MediaPlayer1->Play(); // a stopped movie shows its frame once played and paused
        MediaPlayer1->Pause();
    }
    hold.controlBarShown = MediaPlayer1->controlBarShown();
    // A full-screen player is left for good, as a grab leaves full-screen view.
    hold.displaySize = MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen ? int(MoviePlayer::NormalSize)
                                                                                : MediaPlayer1->DisplaySize();
    MediaPlayer1->setControlBarShown(false);
    MediaPlayer1->setDisplaySize(MoviePlayer::NormalSize);
    QCoreApplication::processEvents();
    return hold;
}

// The frame comes from the player's own rendering, so unlike a screen
// capture it needs no room on the desktop and never holds other windows.
QImage frmMain::heldMovieFrame()
{
    const QDeadlineTimer deadline(FrameWaitMs);
    QImage frame = MediaPlayer1->currentFrame();
    while (frame.isNull() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        frame = MediaPlayer1->currentFrame();
    }
    const QSize natural = MediaPlayer1->naturalSize();
    if (!frame.isNull() && natural.isValid() && frame.size() != natural)
        frame = frame.scaled(natural, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return frame;
}

void frmMain::releaseMovieFrame(const MovieFrameHold &hold)
{
    MediaPlayer1->setDisplaySize(hold.displaySize);
    MediaPlayer1->setControlBarShown(hold.controlBarShown);
    MediaPlayer1->setCurrentPosition(hold.position);
    if (hold.wasPlaying)
        MediaPlayer1->Play();
}

// ---------------------------------------------------------------- clipboard and grab

void frmMain::cmdClip_Click()
{
    if (m_context.CurrentFileName().isEmpty())
        return;
    for (QToolButton *button : {cmdClip, cmdGrab, cmdPrint})
        button->setEnabled(false);
    stopSlideTimer();
    QImage picture;
    if (m_context.MainMovieLoaded()) {
        const MovieFrameHold hold = holdMovieFrame();
        picture = heldMovieFrame();
        releaseMovieFrame(hold);
    } else if (m_context.FileTypeCode() == u"ICO" || m_context.FileTypeCode() == u"CUR") {
        picture = grab(ImgEgg->geometry()).toImage(); // as shown, over the window's background
    } else if (m_context.FileTypeCode() != u"PPT") {
        picture = PictureLoader::load(m_context.currentPath(), inSrgb()).image; // the stored resolution, not the zoom
        if (picture.isNull() && !QFileInfo::exists(m_context.currentPath()))
            m_prompts.ask({m_state.messages.GetMsg(1022, QStringLiteral("File Not Found !")), PromptButtons::Ok,
                           PromptIcon::Critical});
    }
    QCoreApplication::processEvents();
    if (!picture.isNull())
        PictureOutput::putOnClipboard(picture);
    endOutputCommand(true);
}

void frmMain::mnuCropClip_Click()
{
    if (!m_cropSelectionActive)
        return;
    stopSlideTimer();
    const QImage area = ColourManagement::shownInSrgb(areaPicture(cropTarget()));
    if (!area.isNull())
        PictureOutput::putOnClipboard(area);
    endOutputCommand(false);
}

void frmMain::cmdGrab_Click()
{
    if (!m_context.MainMovieLoaded() || MediaPlayer1->FileName().isEmpty())
        return;
    ClearCropSelection();
    stopSlideTimer();
    stopIndexPage();
    QGuiApplication::clipboard()->clear();
    QCoreApplication::processEvents();
    for (QToolButton *button : {cmdGrab, cmdClip, cmdPrint})
        button->setEnabled(false);
    const MovieFrameHold hold = holdMovieFrame();

    clsCommonDialog dialog;
    dialog.setParent(this);
    dialog.CancelError = true;
    dialog.setDialogTitle(m_state.messages.GetMsg(10118, QStringLiteral("Grab current image to a file")) + QLatin1Char(' '));
    dialog.Filter = QStringLiteral("Bitmap (*.BMP)|*.bmp|") + m_state.messages.GetMsg(382, QStringLiteral("All Files"))
        + QStringLiteral(" (*.*)|*.*");
    dialog.FilterIndex = 1;
    dialog.Flags = 0;
    dialog.InitDir = outputFolder();
    dialog.FileName = OutputRules::nextNumberedName(outputFolder(), m_context.CurrentFileName(), Numbered::Grab);
    if (dialog.ShowOpen(m_prompts)) {
        const QString destination = dialog.FileName;
        if (PictureOutput::saveBitmap(heldMovieFrame(), destination)) {
            m_state.OutputFolder = QFileInfo(destination).path();
            if (OutputRules::sameFolder(m_state.OutputFolder, m_context.CurrentFolder()))
                reloadAfterWrite(destination);
        } else {
            m_prompts.ask({m_state.messages.GetMsg(20804, QStringLiteral("The picture could not be written to the file."))
                               + QLatin1Char('\n') + destination,
                           PromptButtons::Ok, PromptIcon::Critical});
        }
    } else {
        reportDialogError(dialog);
    }
    releaseMovieFrame(hold);
    endOutputCommand(true);
}

// ---------------------------------------------------------------- printing

// The picture as loaded from its file, or the movie's frame.
QImage frmMain::currentPicture()
{
    if (!m_context.MainMovieLoaded())
        return PictureLoader::load(m_context.currentPath()).image;
    const MovieFrameHold hold = holdMovieFrame();
    const QImage frame = heldMovieFrame();
    releaseMovieFrame(hold);
    return frame;
}

// The movie stays paused while the print dialog is open.
void frmMain::printFromDialog(const std::function<QImage()> &picture, QWidget *owner)
{
    stopSlideTimer();
    QCoreApplication::processEvents();
    for (QToolButton *button : {cmdClip, cmdPrint, cmdGrab})
        button->setEnabled(false);
    const bool resume = m_context.MainMovieLoaded() && MediaPlayer1->PlayState() == MoviePlayer::Playing;
    if (resume)
        MediaPlayer1->Pause();
    const QString slides = m_context.FileTypeCode() == u"PPT" ? m_context.currentPath() : QString();
    printPicture(owner, picture, slides);
    if (resume)
        MediaPlayer1->Play();
    endOutputCommand(true);
}

// The print dialog and the copies; failures are said here.
void frmMain::printPicture(QWidget *owner, const std::function<QImage()> &picture, const QString &slides)
{
    const PrintCommand::Result result = PrintCommand::run(m_prompts, m_launcher, currentPrinter(), owner, picture, slides);
    if (!result.dialogError.isEmpty())
        m_prompts.ask({result.dialogError, PromptButtons::Ok});
    if (result.outcome == PrintCommand::Outcome::Failed)
        m_prompts.ask({m_state.messages.GetMsg(20802, QStringLiteral("The picture could not be printed.")),
                       PromptButtons::Ok, PromptIcon::Critical});
    if (result.outcome == PrintCommand::Outcome::NoSlidesProgram)
        m_prompts.ask({m_state.messages.GetMsg(20805, QStringLiteral("The slides were not printed: LibreOffice, which "
                                                                     "prints them, is not installed.")),
                       PromptButtons::Ok, PromptIcon::Critical});
}

void frmMain::cmdPrint_Click()
{
    if (m_context.CurrentFileName().isEmpty())
        return;
    printFromDialog([this] { return currentPicture(); }, this);
}

void frmMain::mnuCropPrint_Click()
{
    if (!m_cropSelectionActive)
        return;
    printFromDialog([this] { return areaPicture(cropTarget()); }, this);
}

// ---------------------------------------------------------------- wallpaper

void frmMain::mnuWall_Click()
{
    if (m_context.CurrentFileName().isEmpty() || m_context.FileTypeCode() == u"PPT")
        return;
    stopSlideTimer();
    setWallpaperFrom(m_context.currentPath(), m_context.FileTypeCode() == u"BMP", [this] { return currentPicture(); });
    restartSlideTimerIfOn();
}

// A bitmap file is used as it is; anything else as the picture given.
void frmMain::setWallpaperFrom(const QString &path, bool bitmapFile, const std::function<QImage()> &picture)
{
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    const Wallpaper::Outcome outcome = bitmapFile ? Wallpaper::setFromBitmapFile(m_launcher, path, desktop)
                                                  : Wallpaper::setFromPicture(m_launcher, picture(), desktop);
    QCoreApplication::processEvents();
    if (outcome == Wallpaper::Outcome::NotWritten)
        m_prompts.ask({m_state.messages.GetMsg(20804, QStringLiteral("The picture could not be written to the file.")),
                       PromptButtons::Ok, PromptIcon::Critical});
    else if (outcome == Wallpaper::Outcome::NoSetter)
        m_prompts.ask({m_state.messages.GetMsg(20800, QStringLiteral("No program to set the wallpaper was found for this desktop.")),
                       PromptButtons::Ok, PromptIcon::Exclamation});
}

void frmMain::mnuRemoveWall_Click()
{
    if (Wallpaper::remove(m_launcher, qEnvironmentVariable("XDG_CURRENT_DESKTOP")) != Wallpaper::Outcome::Set)
        m_prompts.ask({m_state.messages.GetMsg(20801, QStringLiteral("This desktop offers no way to remove the wallpaper.")),
                       PromptButtons::Ok, PromptIcon::Exclamation});
}
