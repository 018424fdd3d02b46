#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "display/PictureView.h"
#include "display/ZoomRules.h"
#include "platform/MoviePlayer.h"
#include "viewer/ViewRules.h"

#include <QAction>
#include <QLabel>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QTimer>

void frmMain::cmdExpand_Click()
{
    ClearCropSelection();
    ZoomTo(ZoomRules::zoomIn(m_context.zoomPercent()));
}

void frmMain::cmdReduce_Click()
{
    ClearCropSelection();
    ZoomTo(ZoomRules::zoomOut(m_context.zoomPercent()));
}

void frmMain::mnuZoom_Click(int percent)
{
    if (percent == 100)
        mnuFull_Click();
    else
        ZoomTo(percent);
}

void frmMain::ZoomTo(int percent)
{
    stopSlideTimer();
    setWaitCursor(true);
    if (m_context.MainMovieLoaded()) {
        const QSize natural = MediaPlayer1->naturalSize();
        if (!natural.isEmpty()) {
            const ViewGeometry::Twips device = pictureTwips();
            const QSizeF naturalTwips(device.fromPixelsX(natural.width()), device.fromPixelsY(natural.height()));
            percent = ZoomRules::movieZoomPercent(percent, naturalTwips, windowTwips());
            const int bar = MediaPlayer1->height() - MediaPlayer1->videoArea().height();
            {
                const QSignalBlocker quiet(MediaPlayer1);
                MediaPlayer1->setDisplaySize(MoviePlayer::FitToControl);
            }
            const double scale = percent / 100.0 / devicePixelRatioF();
            MediaPlayer1->resize(QSize(qRound(natural.width() * scale), qRound(natural.height() * scale)) + QSize(0, bar));
            Centra_Image(MediaPlayer1);
        }
    } else if (!ImgEgg->naturalSize().isEmpty()) {
        const QSize natural = ImgEgg->naturalSize();
        resizePicture(ViewGeometry::logicalSize(natural.width() * percent / 100.0, natural.height() * percent / 100.0,
                                                devicePixelRatioF()));
        updateSizeTexts();
        Centra_Image(ImgEgg);
        fillPictureView();
        ImgEgg->show();
    }
    m_context.setZoomPercent(percent);
    LabZoom->setText(ViewRules::zoomLabel(percent));
    layoutStatusRow();
    restartSlideTimerIfOn();
    setWaitCursor(false);
}

void frmMain::mnufit_Click() { chooseViewMode(0); }
void frmMain::mnuFull_Click() { chooseViewMode(1); }

void frmMain::chooseViewMode(int option)
{
    if (m_context.MainMovieLoaded() && m_context.FullScreenActive())
        mnuFullScreen_Click(); // back from the player's full screen first
    if (Option1[option]->isChecked())
        Option1_Click(); // selecting it again still resets the zoom
    else
        Option1[option]->setChecked(true);
    restartSlideTimerIfOn();
}

void frmMain::Option1_Click()
{
    ClearCropSelection();
    if (!m_modeClickLive)
        return;
    setWaitCursor(true);
    m_context.setZoomPercent(0);
    fitOrActualSize();
    layoutStatusRow();
    setWaitCursor(false);
}

// Fit or actual size, as the mode option says.
void frmMain::fitOrActualSize()
{
    if (m_context.MainMovieLoaded()) {
        fitOrActualSizeMovie();
        return;
    }
    const QSize natural = ImgEgg->naturalSize();
    if (natural.isEmpty()) {
        LabPix->clear();
        LabZoom->clear();
        return;
    }
    int percent = 100;
    if (fitsWindow()) {
        const QSizeF naturalTwips = pictureTwipsOf(natural);
        const double ratio = ZoomRules::fitRatio(naturalTwips, windowTwips());
        if (ratio > 0)
            percent = int(std::lround(ratio * 100));
        const QSizeF shown = ratio > 0 ? naturalTwips * ratio : naturalTwips;
        resizePicture(QSize(m_twips.toPixelsX(shown.width()), m_twips.toPixelsY(shown.height())));
        m_fitPercent = percent;
    } else {
        resizePicture(ViewGeometry::logicalSize(natural.width(), natural.height(), devicePixelRatioF()));
    }
    updateSizeTexts();
    LabZoom->setText(ViewRules::zoomLabel(percent));
    Centra_Image(ImgEgg);
    fillPictureView();
}

// A movie fills the display area scaled to fit, or shows at its own size
// in the middle of it; the zoom label tells the scale it is drawn at.
void frmMain::fitOrActualSizeMovie()
{
    if (MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen)
        return;
    const double windowWidth = m_twips.fromPixelsX(width());
    const double windowHeight = m_twips.fromPixelsY(height());
    MediaPlayer1->setGeometry(m_twips.toPixels(0, ViewGeometry::DisplayTop, windowWidth - ViewGeometry::SideReserve,
                                               windowHeight - ViewGeometry::DisplayTop - ViewGeometry::BottomReserve));
    Centra_Image(MediaPlayer1);
    const bool fit = fitsWindow();
    {
        const QSignalBlocker quiet(MediaPlayer1); // a windowed size: no way back from full screen to run
        MediaPlayer1->setDisplaySize(fit ? MoviePlayer::FitToControl : MoviePlayer::NormalSize);
    }
    const QSize natural = MediaPlayer1->naturalSize();
    if (natural.isEmpty()) {
        LabZoom->clear(); // told once the video's size is known
        return;
    }
    const qreal ratio = devicePixelRatioF();
    const QRect drawn =
        MoviePlayer::videoFrameRect(natural, MediaPlayer1->videoArea(), MediaPlayer1->DisplaySize(), ratio);
    LabZoom->setText(ViewRules::zoomLabel(int(std::lround(100.0 * drawn.width() * ratio / natural.width()))));
    layoutStatusRow();
}

// The picture's tooltip and the size text of the status row.
void frmMain::updateSizeTexts()
{
    const QSize natural = ImgEgg->naturalSize();
    const QString resolution = ViewRules::resolutionText(natural.width(), natural.height());
    ImgEgg->setToolTip(m_context.CurrentFileName() + QStringLiteral("   (") + resolution + QStringLiteral(")  ")
                       + m_context.FileSizeDisplay() + QLatin1Char(' '));
    const QScreen *screen = this->screen();
    const double displayedCm =
        ViewGeometry::displayedCentimetres(ImgEgg->width(), screen ? screen->physicalDotsPerInchX() : 0, m_twips);
    LabPix->setText(QLatin1Char(' ') + ViewRules::withPixelsPerCm(resolution, natural.width(), displayedCm)
                    + QLatin1Char(' '));
}

ViewGeometry::Twips frmMain::pictureTwips() const { return m_twips.devicePixels(devicePixelRatioF()); }

QSizeF frmMain::pictureTwipsOf(QSize natural) const
{
    const ViewGeometry::Twips device = pictureTwips();
    return {device.fromPixelsX(natural.width()), device.fromPixelsY(natural.height())};
}

QSizeF frmMain::windowTwips() const
{
    return {m_twips.fromPixelsX(width()), m_twips.fromPixelsY(height())};
}
