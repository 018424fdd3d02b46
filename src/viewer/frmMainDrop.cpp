#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "platform/Prompts.h"
#include "viewer/DroppedFile.h"
#include "viewer/StartupRules.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

void frmMain::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls() || event->mimeData()->hasText())
        event->acceptProposedAction();
}

void frmMain::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    DropFile(droppedFilePath(*event->mimeData()));
}

// Shows a file dropped from a file manager: in place when it is in the
// folder shown, else after opening its folder under "All Supported".
void frmMain::DropFile(const QString &path)
{
    ClearCropSelection();
    if (path.isEmpty())
        return;
    if (!QFileInfo(path).isFile()) {
        m_prompts.inform(QStringLiteral("Error : 53 File not found: ") + path, PromptIcon::Critical);
        return;
    }
    const StartupRules::CommandLineFile file = StartupRules::splitCommandLine(path);
    m_context.setTypeFilter(QStringLiteral("ALLSUP"), 0);
    const bool ready = m_browserReady;
    m_browserReady = false;
    CboType->setCurrentIndex(0);
    m_browserReady = ready;

    if (file.folder == m_context.CurrentFolder()) {
        if (m_lastTypeText != typeFilterText()) {
            // The list was narrower than "All Supported": read it again.
            m_lastTypeText = typeFilterText();
            m_pendingFileName = file.name;
            Carica_ListaImages(file.name);
            return;
        }
        m_context.setCurrentFileName(file.name);
        Mostra_Image(false, file.name);
        return;
    }
    m_pendingFileName = file.name;
    setPathBoxText(file.folder);
    clearDisplay();
    if (StartupRules::withoutTrailingSlash(dir1Path()) != file.folder)
        setDir1Path(file.folder);
    else
        cmdRefr_Click();
}
