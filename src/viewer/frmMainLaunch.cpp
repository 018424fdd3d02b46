// frmMain's commands that hand work to other programs or windows: shell
// open and edit, the folder tree's pop-up, help, the About box and the
// association dialog.
#include "viewer/frmMain.h"

#include "commands/CommandSet.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "files/HelpWindow.h"
#include "files/ShellLaunch.h"
#include "files/TechCre.h"
#include "system/AssociationGroups.h"
#include "system/TechLink.h"

#include <QAction>
#include <QFileSystemModel>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>
#include <QTreeView>

void frmMain::connectLaunchHandlers()
{
    // The pop-up acts on the entry it was opened over, not on the browsed folder.
    connect(Dir1, &QTreeView::customContextMenuRequested, this, [this](const QPoint &at) {
        const QModelIndex entry = Dir1->indexAt(at);
        m_dirPopupFolder = m_folderModel->filePath(entry.isValid() ? entry : Dir1->currentIndex());
    });
    // F1 opens the help in every window of Vimora.
    auto *help = new QShortcut(QKeySequence(Qt::Key_F1), this);
    help->setContext(Qt::ApplicationShortcut);
    connect(help, &QShortcut::activated, commands->action(Command::Help), &QAction::trigger);
}

void frmMain::mnuShellOpen_Click()
{
    if (!m_context.CurrentFileName().isEmpty())
        ShellLaunch::shellOpen(m_context.currentPath(), m_launcher);
}

void frmMain::mnuShellEdit_Click()
{
    if (!m_context.CurrentFileName().isEmpty())
        ShellLaunch::shellEdit(m_context.currentPath(), m_launcher);
}

void frmMain::mnuDirOpen_Click()
{
    if (!m_dirPopupFolder.isEmpty())
        setDir1Path(m_dirPopupFolder);
}

void frmMain::mnuDirExpl_Click()
{
    if (!m_dirPopupFolder.isEmpty())
        noteLaunched(ShellLaunch::explore(m_dirPopupFolder, m_launcher).started);
}

void frmMain::noteLaunched(bool started)
{
    if (started)
        m_launchPause.launched();
}

void frmMain::cmdHelp_Click()
{
    if (!m_helpWindow) {
        m_helpWindow = new HelpWindow(m_launcher, m_state.messages);
        m_helpWindow->setAttribute(Qt::WA_DeleteOnClose);
        connect(this, &QObject::destroyed, m_helpWindow, &QObject::deleteLater);
    }
    m_helpWindow->showContents(m_state.HelpFilePath);
}

void frmMain::cmdAbout_Click()
{
    if (m_cropSelectionActive)
        ClearCropSelection();
    stopSlideTimer();
    TechCre about(m_state.messages, m_launcher, m_prompts, this);
    about.exec();
    restartSlideTimerIfOn();
}

void frmMain::cmdLink_Click()
{
    if (m_cropSelectionActive)
        ClearCropSelection();
    TechLink link(m_state, FileAssociations::Places::standard(), [this] { cmdHelp_Click(); }, this);
    m_linkDialog = &link;
    link.exec();
}

HelpWindow *frmMain::helpWindow() const
{
    return m_helpWindow;
}
