#include "viewer/frmMain.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "display/PictureView.h"
#include "platform/Drives.h"
#include "platform/MoviePlayer.h"
#include "platform/Prompts.h"
#include "viewer/FolderListing.h"
#include "viewer/PathHistory.h"
#include "viewer/StartupRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QScopeGuard>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

namespace {
// How many names are listed between two turns of the event loop: small
// enough to keep the window responsive, large enough not to slow the list.
constexpr int NamesPerTurn = 2000;
} // namespace

void frmMain::Carica_ListaImages(QString name)
{
    stopSlideTimer();
    if (!m_keepDisplay) {
        clearDisplay();
        m_context.setCurrentFileName(QString());
    }
    setCommandButtonsEnabled(false);
    // From the emptied list to the new one, steps wait; a newer listing
    // makes this one give up.
    const int listingNumber = m_context.beginListing();
    const auto listed = qScopeGuard([this, listingNumber] { m_context.endListing(listingNumber); });
    m_context.setCurrentIndex(-1);
    m_context.clearList();
    m_context.setListedFilterText(typeFilterText());
    QCoreApplication::processEvents();
    if (m_context.listingSuperseded(listingNumber))
        return;

    setWaitCursor(true);
    watchListedFolder();
    FolderListing listing(m_context.CurrentFolder(), m_context.TypeFilterCode(), typeFilterText());
    while (listing.unreadable()) {
        if (!askAfterReadError(m_context.CurrentFolder())) {
            if (fallBackToPreviousFolder())
                return;
            break;
        }
        listing = FolderListing(m_context.CurrentFolder(), m_context.TypeFilterCode(), typeFilterText());
    }
    QString shownEarly;
    for (bool firstStep = true; !listing.step(NamesPerTurn); firstStep = false) {
        if (firstStep && !m_keepDisplay)
            shownEarly = showBeforeListingEnds(m_pendingFileName.isEmpty() ? name : m_pendingFileName);
        QCoreApplication::processEvents();
        if (m_context.listingSuperseded(listingNumber))
            return; // a newer folder or filter took over
    }
    m_context.endListing(listingNumber);
    m_context.setList(listing.names(), FolderSummaryText(int(listing.names().size()), listing.totalBytes()));

    if (m_context.fileUpperBound() == 0) {
        cmdNext->setEnabled(false);
        cmdBack->setEnabled(false);
    } else {
        cmdNext->setEnabled(true);
        cmdBack->setEnabled(false);
        setCommandButtonsEnabled(true);
    }
    hideStatusLabels();

    if (!m_context.listIsEmpty() && !m_keepDisplay) {
        // A dropped file first, then the file asked for when it is listed
        // under the new filter, else the first one.
        QString show = m_pendingFileName.isEmpty() ? name : m_pendingFileName;
        m_pendingFileName.clear();
        if (!m_context.FileNames().contains(show, Qt::CaseInsensitive))
            show = m_context.FileNames().first();
        if (show != shownEarly || !settleShownEarly(shownEarly))
            Mostra_Image(false, show);
    }
    setWaitCursor(false);
    restartSlideTimerIfOn();
    m_context.announceListLoaded();
}

void frmMain::CboType_Click()
{
    ClearCropSelection();
    if (!m_browserReady)
        return;
    const auto rereading = listRereadUnderWay();
    setWaitCursor(true);
    const QString folder = StartupRules::withoutTrailingSlash(dir1Path());
    const QString itemText = typeFilterText();
    if (itemText == m_lastTypeText && folder == m_context.CurrentFolder()) {
        setWaitCursor(false);
        return;
    }
    stopIndexPage();
    if (!driveReady(folder)) {
        setWaitCursor(false);
        return;
    }

    if (folder == m_context.CurrentFolder() && m_context.MainMovieLoaded() && !MediaPlayer1->FileName().isEmpty())
        m_keepDisplay = true;
    const QString filterCode = FileTypeCatalogue::filterCodeOfItem(itemText);
    if (itemText != m_lastTypeText) {
        // A movie keeps playing only under the filters that still list it.
        if (filterCode != u"ALLSUP" && filterCode != u"ALLMOV")
            m_keepDisplay = false;
        m_lastTypeText = itemText;
    }
    m_context.setTypeFilter(filterCode, CboType->currentIndex());
    if (!m_keepDisplay && !MediaPlayer1->FileName().isEmpty()) {
        MediaPlayer1->Stop();
        MediaPlayer1->setFileName(QString());
    }
    m_context.setFolder(folder);

    Carica_ListaImages(m_context.CurrentFileName());
    m_keepDisplay = false;
    if (m_context.listIsEmpty()) {
        cmdAdd->setEnabled(false);
        cmdNext->setEnabled(false);
        cmdBack->setEnabled(false);
    } else {
        cmdAdd->setEnabled(true);
    }
    setWaitCursor(false);
}

void frmMain::Dir1_Change()
{
    ClearCropSelection();
    if (!m_browserReady)
        return;
    const auto rereading = listRereadUnderWay();
    setWaitCursor(true);
    stopIndexPage();
    ChkCicle->setChecked(false);
    QCoreApplication::processEvents();
    m_context.clearList();
    setWindowTitle(QStringLiteral(" Vimora"));
    const QString folder = StartupRules::withoutTrailingSlash(dir1Path());
    setPathBoxText(folder);

    if (m_context.MainMovieLoaded() && !MediaPlayer1->FileName().isEmpty()) {
        MediaPlayer1->Stop();
        MediaPlayer1->setFileName(QString());
    }
    if (!driveReady(folder)) {
        setWaitCursor(false);
        return;
    }
    if (folder == m_context.CurrentFolder()) {
        if (indexPageLoading()) {
            stopIndexPage();
            m_context.clearList();
            cmdRefr_Click();
        }
        setWaitCursor(false);
        return;
    }

    // A folder picked while this one is on its way takes over from here.
    const int listRequest = m_context.beginListing();
    const auto requested = qScopeGuard([this, listRequest] { m_context.endListing(listRequest); });
    m_previousFolder = m_context.CurrentFolder();
    m_previousFileName = m_context.CurrentFileName();
    m_context.setFolder(folder); // the index gives up the page under way
    m_state.OutputFolder = folder;
    QCoreApplication::processEvents();
    if (m_context.listingSuperseded(listRequest)) {
        setWaitCursor(false);
        return;
    }
    if (!m_fromHistory)
        Inserisci_URL(m_context.CurrentFolder());
    m_fromHistory = false;

    m_lastTypeText = typeFilterText();
    Carica_ListaImages(m_context.CurrentFileName());
    QCoreApplication::processEvents();

    m_browserReady = true;
    restartSlideTimerIfOn();
    setWaitCursor(false);
}

void frmMain::Drive1_Change()
{
    ClearCropSelection();
    if (!m_browserReady)
        return;
    stopIndexPage();
    const QString root = Drive1->currentData().toString();
    if (!driveReady(root))
        return;
    setDir1Path(root);
}

void frmMain::CboURL_Click()
{
    if (!m_browserReady)
        return;
    const auto rereading = listRereadUnderWay();
    setWaitCursor(true);
    stopSlideTimer();
    QString path = StartupRules::withoutTrailingSlash(CboURL->currentText().trimmed());
    stopIndexPage();
    m_browserReady = false;
    QCoreApplication::processEvents();
    bool cancelled = !driveReady(path);
    while (!cancelled && !QDir(path).exists())
        cancelled = !askAfterReadError(path);
    if (cancelled) {
        setPathBoxText(m_context.CurrentFolder()); // back to the folder on show
        m_browserReady = true;
        setWaitCursor(false);
        return;
    }
    QDir::setCurrent(path);
    m_fromHistory = true;
    selectDriveOf(path);
    m_browserReady = true;
    if (StartupRules::withoutTrailingSlash(dir1Path()) != path)
        setDir1Path(path);
    else if (indexPageLoading())
        Dir1_Change();
    m_fromHistory = false;
    restartSlideTimerIfOn();
    setWaitCursor(false);
}

void frmMain::CboURL_Change()
{
    if (!m_browserReady || m_completionRunning)
        return;
    stopSlideTimer();
    m_completionRunning = true;
    QCoreApplication::processEvents();
    // Keys typed meanwhile count: the completion follows the newest text,
    // or it would write over them.
    const QString typed = CboURL->currentText().trimmed();
    // Only text the user typed counts, not the completion shown after it:
    // otherwise every second key press would look like a deletion, and a
    // deleted completion would come straight back.
    const bool growing = typed.size() > m_lastTypedLength;
    m_lastTypedLength = typed.size();
    if (!growing) {
        m_completionRunning = false;
        return;
    }
    QStringList history;
    for (int i = 0; i < CboURL->count(); ++i)
        history.append(CboURL->itemText(i));
    if (const auto completion = PathHistory::completion(history, typed)) {
        CboURL->setEditText(completion->text);
        CboURL->lineEdit()->setSelection(int(completion->selectionStart),
                                         int(completion->text.size() - completion->selectionStart));
    }
    m_completionRunning = false;
}

void frmMain::Carica_URL()
{
    const QStringList history = PathHistory::load(m_state.settings);
    const bool ready = m_browserReady;
    m_browserReady = false;
    CboURL->clear();
    CboURL->addItems(history);
    setPathBoxText(m_context.CurrentFolder());
    CboURL->lineEdit()->selectAll();
    m_browserReady = ready;
    if (!history.isEmpty())
        cmdClear->setEnabled(true);
}

void frmMain::Inserisci_URL(const QString &folder)
{
    QStringList current;
    for (int i = 0; i < CboURL->count(); ++i)
        current.append(CboURL->itemText(i));
    PathHistory::insert(m_state.settings, current, folder);
    Carica_URL();
    cmdClear->setEnabled(true);
}

void frmMain::cmdClear_Click()
{
    ClearCropSelection();
    const QString question = m_state.messages.GetMsg(10310, QStringLiteral("Clear Path box ?"));
    if (m_prompts.confirm(question) == PromptAnswer::No)
        return;
    cmdClear->setEnabled(false);
    PathHistory::clear(m_state.settings);
    const bool ready = m_browserReady;
    m_browserReady = false;
    const QString text = CboURL->currentText();
    CboURL->clear();
    setPathBoxText(text);
    m_browserReady = ready;
}

void frmMain::cmdUp_Click()
{
    ClearCropSelection();
    stopIndexPage();
    QDir parent(m_context.CurrentFolder());
    if (parent.cdUp())
        setDir1Path(parent.absolutePath());
}

void frmMain::cmdRefr_Click()
{
    // The file on show comes back after the re-read, a movie where it was.
    const double position = m_context.MainMovieLoaded() ? MediaPlayer1->CurrentPosition() : 0;
    const auto rereading = listRereadUnderWay();
    clearDisplay();
    m_keepDisplay = true;
    const QString folder = m_context.CurrentFolder();
    if (!driveReady(folder)) {
        m_keepDisplay = false;
        return;
    }
    m_context.setFolder(QString()); // so that the folder counts as changed
    if (StartupRules::withoutTrailingSlash(dir1Path()) == folder)
        Dir1_Change();
    else
        setDir1Path(folder);
    m_keepDisplay = false;
    if (m_context.listIsEmpty())
        return;
    const QString name = m_context.FileNames().contains(m_context.CurrentFileName(), Qt::CaseInsensitive)
        ? m_context.CurrentFileName()
        : m_context.FileNames().first();
    Mostra_Image(false, name, false, position);
}

// Text put in the path box by the program is not typing: no completion.
void frmMain::setPathBoxText(const QString &text)
{
    m_completionRunning = true;
    CboURL->setEditText(text);
    m_completionRunning = false;
    m_lastTypedLength = text.size();
}

QString frmMain::dir1Path() const
{
    return m_folderModel->filePath(Dir1->currentIndex());
}

void frmMain::setDir1Path(const QString &folder)
{
    const QModelIndex index = m_folderModel->index(folder);
    if (!index.isValid())
        return;
    Dir1->setCurrentIndex(index);
    revealDir1Current();
}

// Opens the tree down to the current folder; called again as the model
// reads the folders on the way in the background.
void frmMain::revealDir1Current()
{
    const QModelIndex index = Dir1->currentIndex();
    for (QModelIndex parent = index.parent(); parent.isValid(); parent = parent.parent())
        Dir1->expand(parent);
    // Scroll once the view has laid out the rows that expanding added.
    QTimer::singleShot(0, Dir1, [this] { Dir1->scrollTo(Dir1->currentIndex(), QAbstractItemView::PositionAtCenter); });
}

void frmMain::fillDrives()
{
    const bool ready = m_browserReady;
    m_browserReady = false;
    Drive1->clear();
    for (const Drive &drive : m_listDrives()) {
        QString text = drive.rootPath;
        if (!drive.label.isEmpty() && drive.label != drive.rootPath)
            text += QStringLiteral("  [") + drive.label + QLatin1Char(']');
        Drive1->addItem(text, drive.rootPath);
    }
    selectDriveOf(m_context.CurrentFolder());
    m_browserReady = ready;
}

void frmMain::selectDriveOf(const QString &folder)
{
    const bool ready = m_browserReady;
    m_browserReady = false;
    const int index = Drive1->findData(driveOf(folder, m_listDrives()));
    if (index >= 0)
        Drive1->setCurrentIndex(index);
    m_browserReady = ready;
}

// A folder that cannot be read: Retry tries again, Cancel lists nothing.
bool frmMain::askAfterReadError(const QString &folder)
{
    const QString drive = driveOf(folder, m_listDrives());
    const QString text = m_state.messages.GetMsg(1003, QStringLiteral("Error reading Drive")) + QLatin1Char(' ')
        + (drive.isEmpty() ? folder : drive);
    setWaitCursor(false);
    const bool retry =
        m_prompts.ask({text, PromptButtons::RetryCancel, PromptIcon::Question, 2}) == PromptAnswer::Retry;
    setWaitCursor(true);
    return retry;
}

// Cancel on a folder that cannot be read lists again the folder shown
// before, with the file it showed; false when there is none to go back to.
bool frmMain::fallBackToPreviousFolder()
{
    const QString folder = m_previousFolder;
    const QString failed = m_context.CurrentFolder();
    m_previousFolder.clear();
    if (folder.isEmpty() || folder == failed || !QFileInfo(folder).isReadable())
        return false;
    m_context.setFolder(QString()); // so that the folder counts as changed
    m_context.setCurrentFileName(m_previousFileName);
    m_fromHistory = true; // going back is not a new visit
    m_browserReady = true;
    if (StartupRules::withoutTrailingSlash(dir1Path()) == folder)
        Dir1_Change();
    else
        setDir1Path(folder);
    m_fromHistory = false;
    return true;
}

// The drive check with its Retry/Cancel question; Cancel goes back to the
// drive of the folder shown before.
bool frmMain::driveReady(const QString &folder)
{
    for (;;) {
        const QList<Drive> drives = m_listDrives();
        if (Testa_CDPronto(folder, drives))
            return true;
        const QString drive = driveOf(folder, drives).isEmpty() ? folder : driveOf(folder, drives);
        const QString text = QStringLiteral("Drive ") + drive + QLatin1Char(' ')
            + m_state.messages.GetMsg(1002, QStringLiteral("Not Ready ..."));
        if (m_prompts.ask({text, PromptButtons::RetryCancel, PromptIcon::Question, 2}) == PromptAnswer::Retry)
            continue;
        selectDriveOf(m_context.CurrentFolder());
        m_browserReady = true;
        return false;
    }
}
