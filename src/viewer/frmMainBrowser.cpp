#include "viewer/frmMain.h"

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
    const int generation = ++m_listGeneration;
    stopSlideTimer();
    if (!m_state.KeepDisplay) {
        clearDisplay();
        m_state.CurrentFileName.clear();
    }
    setCommandButtonsEnabled(false);
    // From the emptied list to the new one, steps wait (listingUnderWay).
    m_listing = true;
    const auto listed = qScopeGuard([this] { m_listing = false; });
    m_state.CurrentIndex = -1;
    m_state.FileNames = QStringList{QString()};
    QCoreApplication::processEvents();
    if (generation != m_listGeneration)
        return;

    setWaitCursor(true);
    watchListedFolder();
    FolderListing listing(m_state.CurrentFolder, m_state.TypeFilterCode, typeFilterText());
    while (listing.unreadable()) {
        if (!askAfterReadError(m_state.CurrentFolder)) {
            if (fallBackToPreviousFolder())
                return;
            break;
        }
        listing = FolderListing(m_state.CurrentFolder, m_state.TypeFilterCode, typeFilterText());
    }
    QString shownEarly;
    for (bool firstStep = true; !listing.step(NamesPerTurn); firstStep = false) {
        if (firstStep && !m_state.KeepDisplay)
            shownEarly = showBeforeListingEnds(m_pendingFileName.isEmpty() ? name : m_pendingFileName);
        QCoreApplication::processEvents();
        if (generation != m_listGeneration)
            return; // a newer folder or filter took over
    }
    m_listing = false;
    m_state.FileNames = listing.names().isEmpty() ? QStringList{QString()} : listing.names();
    const int count = m_state.listIsEmpty() ? 0 : int(m_state.FileNames.size());
    m_state.FolderSummaryText = FolderSummaryText(count, listing.totalBytes());

    if (m_state.fileUpperBound() == 0) {
        cmdNext->setEnabled(false);
        cmdBack->setEnabled(false);
    } else {
        cmdNext->setEnabled(true);
        cmdBack->setEnabled(false);
        setCommandButtonsEnabled(true);
    }
    hideStatusLabels();

    if (!m_state.listIsEmpty() && !m_state.KeepDisplay) {
        // A dropped file first, then the file asked for when it is listed
        // under the new filter, else the first one.
        QString show = m_pendingFileName.isEmpty() ? name : m_pendingFileName;
        m_pendingFileName.clear();
        if (!m_state.FileNames.contains(show, Qt::CaseInsensitive))
            show = m_state.FileNames.first();
        if (show != shownEarly || !settleShownEarly(shownEarly))
            Mostra_Image(false, show);
    }
    setWaitCursor(false);
    restartSlideTimerIfOn();
    emit listLoaded();
}

void frmMain::CboType_Click()
{
    ClearCropSelection();
    if (!m_state.BrowserReady)
        return;
    const auto rereading = listRereadUnderWay();
    setWaitCursor(true);
    const QString folder = StartupRules::withoutTrailingSlash(dir1Path());
    const QString itemText = typeFilterText();
    if (itemText == m_lastTypeText && folder == m_state.CurrentFolder) {
        setWaitCursor(false);
        return;
    }
    m_state.StopPreviewLoad = true;
    if (!driveReady(folder)) {
        setWaitCursor(false);
        return;
    }

    if (folder == m_state.CurrentFolder && m_state.MainMovieLoaded && !MediaPlayer1->FileName().isEmpty())
        m_state.KeepDisplay = true;
    m_state.TypeFilterCode = FileTypeCatalogue::filterCodeOfItem(itemText);
    if (itemText != m_lastTypeText) {
        // A movie keeps playing only under the filters that still list it.
        if (m_state.TypeFilterCode != u"ALLSUP" && m_state.TypeFilterCode != u"ALLMOV")
            m_state.KeepDisplay = false;
        m_lastTypeText = itemText;
    }
    m_state.TypeFilterIndex = CboType->currentIndex();
    if (!m_state.KeepDisplay && !MediaPlayer1->FileName().isEmpty()) {
        MediaPlayer1->Stop();
        MediaPlayer1->setFileName(QString());
    }
    m_state.CurrentFolder = folder;

    Carica_ListaImages(m_state.CurrentFileName);
    m_state.KeepDisplay = false;
    if (m_state.listIsEmpty()) {
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
    if (!m_state.BrowserReady)
        return;
    const auto rereading = listRereadUnderWay();
    setWaitCursor(true);
    m_state.StopPreviewLoad = true;
    ChkCicle->setChecked(false);
    QCoreApplication::processEvents();
    m_state.FileNames = QStringList{QString()};
    setWindowTitle(QStringLiteral(" Vimora"));
    const QString folder = StartupRules::withoutTrailingSlash(dir1Path());
    setPathBoxText(folder);

    if (m_state.MainMovieLoaded && !MediaPlayer1->FileName().isEmpty()) {
        MediaPlayer1->Stop();
        MediaPlayer1->setFileName(QString());
    }
    if (!driveReady(folder)) {
        setWaitCursor(false);
        return;
    }
    if (folder == m_state.CurrentFolder) {
        if (m_state.IndexLoading) {
            m_state.StopPreviewLoad = true;
            m_state.FileNames = QStringList{QString()};
            cmdRefr_Click();
        }
        setWaitCursor(false);
        return;
    }

    m_previousFolder = m_state.CurrentFolder;
    m_previousFileName = m_state.CurrentFileName;
    m_state.CurrentFolder = folder;
    m_state.OutputFolder = folder;
    m_state.StopPreviewLoad = true;
    QCoreApplication::processEvents();
    if (!m_fromHistory)
        Inserisci_URL(m_state.CurrentFolder);
    m_fromHistory = false;

    m_lastTypeText = typeFilterText();
    Carica_ListaImages(m_state.CurrentFileName);
    QCoreApplication::processEvents();

    m_state.BrowserReady = true;
    restartSlideTimerIfOn();
    setWaitCursor(false);
}

void frmMain::Drive1_Change()
{
    ClearCropSelection();
    if (!m_state.BrowserReady)
        return;
    m_state.StopPreviewLoad = true;
    const QString root = Drive1->currentData().toString();
    if (!driveReady(root))
        return;
    setDir1Path(root);
}

void frmMain::CboURL_Click()
{
    if (!m_state.BrowserReady)
        return;
    const auto rereading = listRereadUnderWay();
    setWaitCursor(true);
    stopSlideTimer();
    QString path = StartupRules::withoutTrailingSlash(CboURL->currentText().trimmed());
    m_state.StopPreviewLoad = true;
    m_state.BrowserReady = false;
    QCoreApplication::processEvents();
    bool cancelled = !driveReady(path);
    while (!cancelled && !QDir(path).exists())
        cancelled = !askAfterReadError(path);
    if (cancelled) {
        setPathBoxText(m_state.CurrentFolder); // back to the folder on show
        m_state.BrowserReady = true;
        setWaitCursor(false);
        return;
    }
    QDir::setCurrent(path);
    m_fromHistory = true;
    selectDriveOf(path);
    m_state.BrowserReady = true;
    if (StartupRules::withoutTrailingSlash(dir1Path()) != path)
        setDir1Path(path);
    else if (m_state.IndexLoading)
        Dir1_Change();
    m_fromHistory = false;
    restartSlideTimerIfOn();
    setWaitCursor(false);
}

void frmMain::CboURL_Change()
{
    if (!m_state.BrowserReady || m_completionRunning)
        return;
    stopSlideTimer();
    const QString typed = CboURL->currentText().trimmed();
    // Only text the user typed counts, not the completion shown after it:
    // otherwise every second key press would look like a deletion, and a
    // deleted completion would come straight back.
    const bool growing = typed.size() > m_lastTypedLength;
    m_lastTypedLength = typed.size();
    if (!growing)
        return;
    m_completionRunning = true;
    QCoreApplication::processEvents();
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
    const bool ready = m_state.BrowserReady;
    m_state.BrowserReady = false;
    CboURL->clear();
    CboURL->addItems(history);
    setPathBoxText(m_state.CurrentFolder);
    CboURL->lineEdit()->selectAll();
    m_state.BrowserReady = ready;
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
    const bool ready = m_state.BrowserReady;
    m_state.BrowserReady = false;
    const QString text = CboURL->currentText();
    CboURL->clear();
    setPathBoxText(text);
    m_state.BrowserReady = ready;
}

void frmMain::cmdUp_Click()
{
    ClearCropSelection();
    m_state.StopPreviewLoad = true;
    QDir parent(m_state.CurrentFolder);
    if (parent.cdUp())
        setDir1Path(parent.absolutePath());
}

void frmMain::cmdRefr_Click()
{
    // The file on show comes back after the re-read, a movie where it was.
    const double position = m_state.MainMovieLoaded ? MediaPlayer1->CurrentPosition() : 0;
    const auto rereading = listRereadUnderWay();
    clearDisplay();
    m_state.KeepDisplay = true;
    const QString folder = m_state.CurrentFolder;
    if (!driveReady(folder)) {
        m_state.KeepDisplay = false;
        return;
    }
    m_state.CurrentFolder.clear(); // so that the folder counts as changed
    if (StartupRules::withoutTrailingSlash(dir1Path()) == folder)
        Dir1_Change();
    else
        setDir1Path(folder);
    m_state.KeepDisplay = false;
    if (m_state.listIsEmpty())
        return;
    const QString name = m_state.FileNames.contains(m_state.CurrentFileName, Qt::CaseInsensitive)
        ? m_state.CurrentFileName
        : m_state.FileNames.first();
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
    const bool ready = m_state.BrowserReady;
    m_state.BrowserReady = false;
    Drive1->clear();
    for (const Drive &drive : m_listDrives()) {
        QString text = drive.rootPath;
        if (!drive.label.isEmpty() && drive.label != drive.rootPath)
            text += QStringLiteral("  [") + drive.label + QLatin1Char(']');
        Drive1->addItem(text, drive.rootPath);
    }
    selectDriveOf(m_state.CurrentFolder);
    m_state.BrowserReady = ready;
}

void frmMain::selectDriveOf(const QString &folder)
{
    const bool ready = m_state.BrowserReady;
    m_state.BrowserReady = false;
    const int index = Drive1->findData(driveOf(folder, m_listDrives()));
    if (index >= 0)
        Drive1->setCurrentIndex(index);
    m_state.BrowserReady = ready;
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
    const QString failed = m_state.CurrentFolder;
    m_previousFolder.clear();
    if (folder.isEmpty() || folder == failed || !QFileInfo(folder).isReadable())
        return false;
    m_state.CurrentFolder.clear(); // so that the folder counts as changed
    m_state.CurrentFileName = m_previousFileName;
    m_fromHistory = true; // going back is not a new visit
    m_state.BrowserReady = true;
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
        selectDriveOf(m_state.CurrentFolder);
        m_state.BrowserReady = true;
        return false;
    }
}
