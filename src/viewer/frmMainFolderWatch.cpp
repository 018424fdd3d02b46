// The main window's side of the folder watch: changes other programs make to
// the shown folder reach the list, its count and the index page.
#include "viewer/frmMain.h"

#include "core/AppState.h"
#include "platform/Drives.h"
#include "viewer/FolderListing.h"
#include "viewer/FolderWatch.h"
#include "viewer/ViewRules.h"

#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QToolButton>

namespace {
constexpr int NamesPerTurn = 2000; // as the listing on opening a folder
} // namespace

void frmMain::watchListedFolder()
{
    const QString folder = m_state.CurrentFolder;
    const QList<Drive> drives = m_listDrives();
    // inotify hears only this machine's changes, and a disc never changes.
    const bool reportsChanges = !isNetworkPath(folder, drives) && !Testa_CDRom(folder, drives);
    m_folderWatch->watch(reportsChanges ? folder : QString());
    m_folderWatch->markListed();
}

// Not while the user is in the middle of something a re-read would disturb:
// a crop selection, a press, a dialog, the full-screen view, another listing.
bool frmMain::folderChangeMustWait() const
{
    return m_listing || m_showingSteps || m_state.CropSelectionActive || m_state.FullScreenActive
        || QApplication::mouseButtons() != Qt::NoButton || QApplication::activeModalWidget() != nullptr
        || QApplication::activePopupWidget() != nullptr;
}

// The file on show stays on show; gone, it gives way to the one after it, as
// after Delete.
void frmMain::followFolderChange()
{
    if (m_state.CurrentFolder != m_folderWatch->folder())
        return;
    if (folderChangeMustWait()) {
        m_folderWatch->reportAgainSoon();
        return;
    }
    const int generation = ++m_listGeneration;
    m_listing = true;
    m_folderWatch->markListed();
    FolderListing listing(m_state.CurrentFolder, m_state.TypeFilterCode, typeFilterText());
    while (!listing.unreadable() && !listing.step(NamesPerTurn)) {
        QCoreApplication::processEvents();
        if (generation != m_listGeneration)
            return; // a folder or filter chosen meanwhile took over
    }
    m_listing = false;
    if (listing.unreadable())
        return; // gone or locked: F5 tells the user

    const QStringList before = m_state.FileNames;
    const int shownAt = m_state.CurrentIndex;
    m_state.FileNames = listing.names().isEmpty() ? QStringList{QString()} : listing.names();
    const int count = m_state.listIsEmpty() ? 0 : int(m_state.FileNames.size());
    m_state.FolderSummaryText = FolderSummaryText(count, listing.totalBytes());

    const QString shown = m_state.CurrentFileName;
    const qsizetype stillAt = shown.isEmpty() ? -1 : m_state.FileNames.indexOf(shown);
    if (stillAt >= 0) {
        m_state.CurrentIndex = int(stillAt);
        LabNum->setText(ViewRules::positionText(m_state.CurrentIndex, count));
        cmdNext->setEnabled(m_state.CurrentIndex < m_state.fileUpperBound());
        cmdBack->setEnabled(m_state.CurrentIndex > 0);
    } else if (!m_state.listIsEmpty()) {
        const QString next = shown.isEmpty() ? m_state.FileNames.first()
                                             : FolderWatchRules::successor(before, shownAt, m_state.FileNames);
        setCommandButtonsEnabled(true);
        Mostra_Image(false, next);
    } else {
        clearDisplay();
        hideStatusLabels();
        m_state.CurrentFileName.clear();
        m_state.CurrentIndex = -1;
        setCommandButtonsEnabled(false);
        cmdNext->setEnabled(false);
        cmdBack->setEnabled(false);
        setWindowTitle(QStringLiteral(" Vimora"));
    }
    emit listLoaded();
}
