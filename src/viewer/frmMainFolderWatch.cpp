// The main window's side of the folder watch: changes other programs make to
// the shown folder reach the list, its count and the index page.
#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "platform/Drives.h"
#include "viewer/FolderListing.h"
#include "viewer/FolderWatch.h"
#include "viewer/ViewRules.h"

#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QScopeGuard>
#include <QToolButton>

namespace {
constexpr int NamesPerTurn = 2000; // as the listing on opening a folder
} // namespace

void frmMain::watchListedFolder()
{
    const QString folder = m_context.CurrentFolder();
    const QList<Drive> drives = m_listDrives();
    // inotify hears only this machine's changes, and a disc never changes.
    const bool reportsChanges = !isNetworkPath(folder, drives) && !Testa_CDRom(folder, drives);
    m_folderWatch->watch(reportsChanges ? folder : QString());
    m_folderWatch->markListed();
}

// Not while the user is in the middle of something a re-read would disturb:
// a crop selection, a press, a dialog, the full-screen view, another listing,
// a file being shown (a listing would make its show give up).
bool frmMain::folderChangeMustWait() const
{
    return m_context.listingUnderWay() || m_context.showUnderWay() || m_showingSteps || m_cropSelectionActive
        || m_context.FullScreenActive()
        || QApplication::mouseButtons() != Qt::NoButton || QApplication::activeModalWidget() != nullptr
        || QApplication::activePopupWidget() != nullptr;
}

// The file on show stays on show; gone, it gives way to the one after it, as
// after Delete.
void frmMain::followFolderChange()
{
    if (m_context.CurrentFolder() != m_folderWatch->folder())
        return;
    if (folderChangeMustWait()) {
        m_folderWatch->reportAgainSoon();
        return;
    }
    const int listingNumber = m_context.beginListing();
    const auto listed = qScopeGuard([this, listingNumber] { m_context.endListing(listingNumber); });
    m_folderWatch->markListed();
    FolderListing listing(m_context.CurrentFolder(), m_context.TypeFilterCode(), typeFilterText());
    while (!listing.unreadable() && !listing.step(NamesPerTurn)) {
        QCoreApplication::processEvents();
        if (m_context.listingSuperseded(listingNumber))
            return; // a folder or filter chosen meanwhile took over
    }
    m_context.endListing(listingNumber);
    if (listing.unreadable())
        return; // gone or locked: F5 tells the user

    const QStringList before = m_context.FileNames();
    const int shownAt = m_context.CurrentIndex();
    const int count = int(listing.names().size());
    m_context.setList(listing.names(), FolderSummaryText(count, listing.totalBytes()));

    const QString shown = m_context.CurrentFileName();
    const qsizetype stillAt = shown.isEmpty() ? -1 : m_context.FileNames().indexOf(shown);
    if (stillAt >= 0) {
        m_context.setCurrentIndex(int(stillAt));
        LabNum->setText(ViewRules::positionText(m_context.CurrentIndex(), count));
        cmdNext->setEnabled(m_context.CurrentIndex() < m_context.fileUpperBound());
        cmdBack->setEnabled(m_context.CurrentIndex() > 0);
    } else if (!m_context.listIsEmpty()) {
        const QString next = shown.isEmpty() ? m_context.FileNames().first()
                                             : FolderWatchRules::successor(before, shownAt, m_context.FileNames());
        setCommandButtonsEnabled(true);
        Mostra_Image(false, next);
    } else {
        clearDisplay();
        hideStatusLabels();
        m_context.setCurrentFileName(QString());
        m_context.setCurrentIndex(-1);
        setCommandButtonsEnabled(false);
        cmdNext->setEnabled(false);
        cmdBack->setEnabled(false);
        setWindowTitle(QStringLiteral(" Vimora"));
    }
    m_context.announceListLoaded();
}
