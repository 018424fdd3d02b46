#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "display/ZoomRules.h"
#include "platform/DataFolder.h"
#include "platform/Launcher.h"
#include "platform/MoviePlayer.h"
#include "platform/PictureLoader.h"
#include "platform/PictureLoaderWait.h"
#include "viewer/ViewRules.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QRadioButton>
#include <QTimer>
#include <QToolButton>

using FileTypeCatalogue::MediaClass;

namespace {
QString typeIconName(MediaClass media)
{
    switch (media) {
    case MediaClass::Movie:
        return QStringLiteral("video-x-generic");
    case MediaClass::Slides:
        return QStringLiteral("x-office-presentation");
    case MediaClass::Picture:
        break;
    }
    return QStringLiteral("image-x-generic");
}
} // namespace

void frmMain::Mostra_Image(bool backward, const QString &name, bool nameIsFullPath, double startPosition)
{
    ViewerContext::ShowRequest request;
    request.steps = name.isEmpty() ? (backward ? -1 : 1) : 0;
    request.name = name;
    request.nameIsFullPath = nameIsFullPath;
    request.startPosition = startPosition;
    request.wraps = m_state.SlideshowOn;
    m_context.show(request);
}

void frmMain::clearSelection() { ClearCropSelection(); }

void frmMain::releaseShown()
{
    ImgTyp->clear();
    hideStatusLabels();
    stopSlideTimer();
    clearDisplay();
    // Slides and a vanished movie show nothing to measure.
    LabPix->clear();
    LabZoom->clear();
    setCommandButtonsEnabled(false);
}

void frmMain::showNothing() { setWaitCursor(false); }

void frmMain::announceFile(const QString &, MediaClass)
{
    setWindowTitle(ViewRules::fileTitle(m_context.CurrentFileName()));
    cmdExpand->setEnabled(true);
    cmdReduce->setEnabled(true);
}

void frmMain::openSlides(const QString &path)
{
    if (!m_state.SlideshowOn)
        noteLaunched(m_launcher.openWithDefault(path).started);
}

void frmMain::presentMovie(const QString &path, double startPosition) { showMovie(path, startPosition); }

void frmMain::presentPicture(const QString &path) { showPicture(path); }

void frmMain::enableFileCommands()
{
    for (QToolButton *button : {cmdClip, cmdPrint, cmdSave, cmdAdd})
        button->setEnabled(true);
}

void frmMain::updateNavigation() { updateNavigationButtons(); }

void frmMain::followInFullScreen(MediaClass media)
{
    // A movie already playing full screen stays there.
    if (!(media == MediaClass::Movie && MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen))
        mnuFullScreen_Click();
}

void frmMain::showStatusRow(MediaClass media)
{
    LabNum->setText(ViewRules::positionText(m_context.CurrentIndex(), m_context.fileUpperBound() + 1));
    LabSiz->setText(QLatin1Char(' ') + m_context.FileSizeDisplay() + QLatin1Char(' '));
    LabFil->setText(m_context.CurrentFileName());
    ImgTyp->setPixmap(DataFolder::themedIcon(m_state.ProgramFolder, typeIconName(media)).pixmap(16, 16));
    showStatusLabels();
    layoutStatusRow();
}

void frmMain::updateNavigationButtons()
{
    if (m_context.fileUpperBound() > 0) {
        restartSlideTimerIfOn();
        cmdNext->setEnabled(m_context.CurrentIndex() < m_context.fileUpperBound());
        cmdBack->setEnabled(m_context.CurrentIndex() > 0 && !m_context.FileNames().value(m_context.CurrentIndex() - 1).isEmpty());
    }
}

void frmMain::showPicture(const QString &path)
{
    MediaPlayer1->hide();
    WebBrowser1->hide();
    m_context.setZoomPercent(0); // the next picture shows in the mode of Option1
    // Never more pixels than show: fit mode decodes a large JPEG at a reduced
    // scale, actual size only the part that shows at first.
    const PictureLoader::Picture loaded = loadForDisplay(path, fitsWindow());
    setShownPicture(loaded);
    ImgEgg->setDrawing(m_context.FileTypeCode() == u"SVG");
    fitOrActualSize();
    ImgEgg->setVisible(!loaded.image.isNull());
    if (FileTypeCatalogue::mayAnimate(m_context.FileTypeCode()))
        showAnimation(path);
}

void frmMain::setShownPicture(const PictureLoader::Picture &loaded)
{
    ImgEgg->setPicture(loaded.image, loaded.naturalSize, loaded.part);
    m_context.setShownPicture({ImgEgg->picture(), ImgEgg->naturalSize(), ImgEgg->holdsPart()});
}

// Sizes the picture control; once it is placed, fillPictureView() decodes
// what it then lacks.
void frmMain::resizePicture(QSize shown)
{
    ImgEgg->resize(qMax(1, shown.width()), qMax(1, shown.height()));
}

void frmMain::showMovie(const QString &path, double startPosition)
{
    MediaPlayer1->Stop();
    MediaPlayer1->setFileName(QString());
    QCoreApplication::processEvents();
    MediaPlayer1->setAutoStart(m_state.AutoPlayMovies);
    MediaPlayer1->setFileName(path);
    MediaPlayer1->setControlBarShown(true);
    MediaPlayer1->setContextMenuEnabled(true);
    if (startPosition > 0)
        m_savedMoviePosition = startPosition;
    else if (!m_keepDisplay)
        m_savedMoviePosition = 0;
    MediaPlayer1->setCurrentPosition(m_savedMoviePosition);
    fitOrActualSizeMovie();
    MediaPlayer1->show();
    LabPix->clear();
}

void frmMain::clearDisplay()
{
    if (!MediaPlayer1->FileName().isEmpty()) {
        MediaPlayer1->Stop();
        MediaPlayer1->setFileName(QString());
    }
    MediaPlayer1->hide();
    ImgEgg->hide();
    ImgEgg->clear();
    m_context.setShownPicture({});
    WebBrowser1->clear();
    WebBrowser1->hide();
}

void frmMain::setCommandButtonsEnabled(bool on)
{
    for (QToolButton *button : {cmdExpand, cmdReduce, cmdPrint, cmdSave, cmdClip, cmdAdd})
        button->setEnabled(on);
}

void frmMain::hideStatusLabels()
{
    for (QLabel *label : {ImgTyp, LabNum, LabFil, LabSiz, LabPix, LabZoom})
        label->hide();
}

void frmMain::showStatusLabels()
{
    for (QLabel *label : {ImgTyp, LabNum, LabFil, LabSiz, LabPix, LabZoom})
        label->show();
}
