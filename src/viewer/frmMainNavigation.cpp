#include "viewer/frmMain.h"

#include "commands/CommandSet.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "platform/LanguageChoice.h"
#include "platform/Launcher.h"
#include "platform/MoviePlayer.h"
#include "viewer/MainKeyTable.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>

#include <utility>

void frmMain::cmdNext_Click()
{
    if (!m_browserReady)
        return;
    m_context.setFullScreenActive(false);
    Mostra_Image(false, QString());
}

void frmMain::cmdBack_Click()
{
    if (!m_browserReady)
        return;
    m_context.setFullScreenActive(false);
    Mostra_Image(true, QString());
}

void frmMain::ChkCicle_Click()
{
    ClearCropSelection();
    m_state.SlideshowOn = ChkCicle->isChecked();
    if (m_state.SlideshowOn)
        TimerImage->start(m_state.SlideSeconds * 1000);
    else
        TimerImage->stop();
}

void frmMain::ChkAuto_Click()
{
    ClearCropSelection();
    m_state.AutoPlayMovies = ChkAuto->isChecked();
    if (!m_context.MainMovieLoaded() || MediaPlayer1->FileName().isEmpty())
        return;
    const bool playing = MediaPlayer1->PlayState() == MoviePlayer::Playing;
    if (m_state.AutoPlayMovies && !playing)
        MediaPlayer1->Play();
    else if (!m_state.AutoPlayMovies && playing)
        MediaPlayer1->Stop();
}

void frmMain::HScroll1_Change()
{
    ClearCropSelection();
    if (!m_browserReady)
        return;
    m_state.SlideSeconds = HScroll1->value();
    txtTime->setText(QString::number(m_state.SlideSeconds));
    TimerImage->setInterval(m_state.SlideSeconds * 1000); // running or not, as it was
}

void frmMain::TimerImage_Timer()
{
    if (m_launchPause.holdsSlideshow())
        return;
    if (m_context.listIsEmpty())
        return;
    Mostra_Image(false, QString());
    QCoreApplication::processEvents();
}

void frmMain::stopSlideTimer() { TimerImage->stop(); }

void frmMain::restartSlideTimerIfOn()
{
    if (m_state.SlideshowOn)
        TimerImage->start(m_state.SlideSeconds * 1000);
}

void frmMain::stepThroughList(bool backward)
{
    m_pendingSteps += backward ? -1 : 1;
    if (m_showingSteps || m_stepsQueued)
        return;
    m_stepsQueued = true;
    QTimer::singleShot(0, this, &frmMain::showPendingSteps);
}

void frmMain::showPendingSteps()
{
    if (m_context.listingUnderWay()) {
        QTimer::singleShot(10, this, &frmMain::showPendingSteps);
        return;
    }
    // Presses already waiting join this move rather than follow it.
    QCoreApplication::processEvents();
    m_stepsQueued = false;
    m_showingSteps = true;
    while (m_pendingSteps != 0) {
        ViewerContext::ShowRequest request;
        request.steps = std::exchange(m_pendingSteps, 0);
        request.wraps = m_state.SlideshowOn;
        m_context.show(request);
        QCoreApplication::processEvents(); // the presses made while it showed
    }
    m_showingSteps = false;
}

void frmMain::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    event->accept();
    if (key != Qt::Key_Escape && typeFilterText().isEmpty()) {
        // The user erased the filter: Enter restores "All Supported".
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            m_browserReady = true;
            CboType->setCurrentIndex(0);
        } else {
            m_browserReady = false;
        }
        return;
    }
    commands->runKey(key, event->modifiers());
}
