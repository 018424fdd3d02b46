#include "viewer/frmMain.h"

#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "display/ZoomRules.h"
#include "files/FileSizeText.h"
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
    ClearCropSelection();

    if (name.isEmpty()) {
        // Backward stops at the first file; forward wraps only in a slideshow.
        int index = m_state.CurrentIndex + (backward ? -1 : 1);
        if (index < 0) {
            m_state.CurrentIndex = 0;
            return;
        }
        if (index > m_state.fileUpperBound()) {
            if (!m_state.SlideshowOn) {
                m_state.CurrentIndex = m_state.fileUpperBound();
                return;
            }
            index = 0;
        }
        m_state.CurrentIndex = index;
    }

    // Only now that another file is coming: a move that stops keeps the row.
    ImgTyp->clear();
    hideStatusLabels();
    stopSlideTimer();
    clearDisplay();
    // Slides and a vanished movie show nothing to measure.
    LabPix->clear();
    LabZoom->clear();
    setCommandButtonsEnabled(false);
    // The cleared window is painted only when something slow may follow: a
    // picture decoded ahead shows at once, without a blank frame before it.
    const QString folder = m_state.CurrentFolder.endsWith(QLatin1Char('/')) ? m_state.CurrentFolder
                                                                            : m_state.CurrentFolder + QLatin1Char('/');
    const QString upcoming =
        nameIsFullPath ? name : folder + (name.isEmpty() ? m_state.FileNames.value(m_state.CurrentIndex) : name);
    if (!shownAtOnce(upcoming))
        QCoreApplication::processEvents();

    if (nameIsFullPath) {
        const qsizetype cut = name.lastIndexOf(QLatin1Char('/'));
        m_state.CurrentFolder = cut > 0 ? name.left(cut) : QStringLiteral("/");
        m_state.CurrentFileName = name.mid(cut + 1);
    } else if (!name.isEmpty()) {
        m_state.CurrentFileName = name;
        const qsizetype found = m_state.FileNames.indexOf(name, 0); // exact spelling first
        for (qsizetype i = found >= 0 ? found : 0; i < m_state.FileNames.size(); ++i) {
            if (m_state.FileNames[i].compare(name, Qt::CaseInsensitive) == 0) {
                m_state.CurrentFileName = m_state.FileNames[i];
                m_state.CurrentIndex = int(i);
                break;
            }
        }
    } else {
        m_state.CurrentFileName = m_state.FileNames.value(m_state.CurrentIndex);
        if (m_state.CurrentFileName.isEmpty()) {
            setWaitCursor(false);
            return;
        }
    }

    const QString path = m_state.currentPath();
    setWindowTitle(ViewRules::fileTitle(m_state.CurrentFileName));
    const QString fileSize = FileSizeText(path, m_state.messages);
    m_state.FileTypeCode =
        FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(m_state.CurrentFileName));
    const MediaClass media = FileTypeCatalogue::mediaClassOf(m_state.FileTypeCode);
    const bool isMovie = media == MediaClass::Movie;
    m_fileSizeDisplay = fileSize;
    cmdExpand->setEnabled(true);
    cmdReduce->setEnabled(true);

    bool reachedButtons = true;
    if (media == MediaClass::Slides) {
        m_state.MainMovieLoaded = false;
        if (!m_state.SlideshowOn)
            noteLaunched(m_launcher.openWithDefault(path).started);
    } else if (isMovie) {
        m_state.MainMovieLoaded = true;
        if (QFileInfo::exists(path))
            showMovie(path, startPosition);
        else
            reachedButtons = false; // a vanished movie: the slideshow stops here
    } else {
        m_state.MainMovieLoaded = false;
        showPicture(path);
    }

    if (reachedButtons) {
        for (QToolButton *button : {cmdClip, cmdPrint, cmdSave, cmdAdd})
            button->setEnabled(true);
        QCoreApplication::processEvents();
        updateNavigationButtons();
    }

    LabNum->setText(ViewRules::positionText(m_state.CurrentIndex, m_state.fileUpperBound() + 1));
    LabSiz->setText(QLatin1Char(' ') + fileSize + QLatin1Char(' '));
    LabFil->setText(m_state.CurrentFileName);
    ImgTyp->setPixmap(DataFolder::themedIcon(m_state.ProgramFolder, typeIconName(media)).pixmap(16, 16));
    showStatusLabels();
    layoutStatusRow();
    // A full-screen view shows the new file too; a movie already playing
    // full screen stays there.
    if (m_state.FullScreenActive && !(isMovie && MediaPlayer1->DisplaySize() == MoviePlayer::FullScreen))
        mnuFullScreen_Click();
    prefetchNeighbours();
    emit fileShown(path);
}

void frmMain::updateNavigationButtons()
{
    if (m_state.fileUpperBound() > 0) {
        restartSlideTimerIfOn();
        cmdNext->setEnabled(m_state.CurrentIndex < m_state.fileUpperBound());
        cmdBack->setEnabled(m_state.CurrentIndex > 0 && !m_state.FileNames.value(m_state.CurrentIndex - 1).isEmpty());
    }
}

void frmMain::showPicture(const QString &path)
{
    MediaPlayer1->hide();
    WebBrowser1->hide();
    m_zoomPercent = 0; // the next picture shows in the mode of Option1
    // Never more pixels than show: fit mode decodes a large JPEG at a reduced
    // scale, actual size only the part that shows at first.
    const PictureLoader::Picture loaded = loadForDisplay(path, Option1[0]->isChecked());
    ImgEgg->setPicture(loaded.image, loaded.naturalSize, loaded.part);
    ImgEgg->setDrawing(m_state.FileTypeCode == u"SVG");
    fitOrActualSize();
    ImgEgg->setVisible(!loaded.image.isNull());
    if (FileTypeCatalogue::mayAnimate(m_state.FileTypeCode))
        showAnimation(path);
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
    else if (!m_state.KeepDisplay)
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
