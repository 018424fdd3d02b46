// The main window's side of the thumbnail index.
#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "index/frmIndex.h"
#include "platform/MoviePlayer.h"

#include <QToolButton>

void frmMain::connectIndex()
{
    connect(this, &frmMain::indexWindowCreated, this, &frmMain::wireIndexCommands);
    connect(&m_context, &ViewerContext::listLoaded, this, [this] {
        if (m_index)
            m_index->followMainList();
    });
    // A movie that the main window starts does not go on in a cell too.
    connect(MediaPlayer1, &MoviePlayer::PlayStateChange, this, [this](int, int newState) {
        if (m_index && newState == MoviePlayer::Playing)
            m_index->pauseCellsPlaying(MediaPlayer1->FileName());
    });
}

void frmMain::cmdIndex_Click()
{
    if (!m_index) {
        m_index = new frmIndex(m_state, m_context, m_prompts, m_launcher, m_twips, this);
        m_index->Form_Load();
        emit indexWindowCreated(m_index);
    }
    if (indexPageLoading()) {
        // The page in progress is abandoned; the re-read builds it again.
        m_index->setOpen(true);
        m_index->show();
        cmdRefr_Click();
        return;
    }
    const bool open = m_index->isOpen() && m_index->isVisible();
    m_index->show();
    if (open) {
        m_index->raise();
        m_index->activateWindow();
        return;
    }
    m_index->setOpen(true);
    m_index->followMainList();
}

void frmMain::stopIndexPage()
{
    if (m_index)
        m_index->stopPageBuild();
}

bool frmMain::indexPageLoading() const { return m_index && m_index->pageLoading(); }

void frmMain::refreshForIndex()
{
    // cmdRefr_Click keeps a movie of the main window where it was.
    m_lastTypeText.clear();
    cmdRefr_Click();
}

void frmMain::unloadIndex()
{
    if (!m_index)
        return;
    m_index->close();
    delete m_index;
    m_index = nullptr;
}

void frmMain::applyLanguageToIndex()
{
    if (m_index)
        m_index->ApplyLanguage();
}
