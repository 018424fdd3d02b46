#include "files/frmList.h"

#include "commands/CommandSet.h"
#include "commands/WindowKeys.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/FormTexts.h"
#include "core/MessageCatalogue.h"
#include "display/ViewGeometry.h"
#include "files/CopyProgress.h"
#include "files/Favourites.h"
#include "files/FileCommands.h"
#include "files/FilePaths.h"
#include "files/TechRen.h"
#include "files/frmMessage.h"

#include <QAction>
#include <QAbstractButton>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScreen>

#include <array>

namespace {
QString withSlash(const QString &folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}
} // namespace

frmList::frmList(AppState &state, Prompts &prompts, FavouritesHost &host, QWidget *parent)
    : QWidget(parent, Qt::Tool), m_state(state), m_prompts(prompts), m_host(host)
{
    setObjectName(QStringLiteral("frmList"));
    m_renameBox = [this](const QRect &where, const QString &name) {
        return AskNewName(this, where, name, m_state.messages);
    };
    buildControls();
    ApplyLanguage();
    placeBesideMain();
    setListButtons(false);
    LoadFavourites();
}

frmList::~frmList() = default;

void frmList::buildControls()
{
    auto button = [this](const char *name) {
        auto *made = new QPushButton(this);
        made->setObjectName(QLatin1String(name));
        return made;
    };
    ListImage = new QListWidget(this);
    ListImage->setObjectName(QStringLiteral("ListImage"));
    ListImage->setSelectionMode(QAbstractItemView::MultiSelection);
    ListImage->setContextMenuPolicy(Qt::CustomContextMenu);
    ListImage->setUniformItemSizes(true);
    Check1 = new QCheckBox(this);
    Check1->setObjectName(QStringLiteral("Check1"));
    cmdSave = button("cmdSave");
    cmdMove = button("cmdMove");
    cmdDel = button("cmdDel");
    cmdRemove = button("cmdRemove");
    cmdAll = button("cmdAll");
    LabSel = new QLabel(this);
    LabSel->setObjectName(QStringLiteral("LabSel"));

    auto *grid = new QGridLayout(this);
    grid->addWidget(ListImage, 0, 0, 1, 5);
    grid->addWidget(Check1, 1, 0);
    grid->addWidget(LabSel, 1, 1, 1, 4);
    const std::array<QPushButton *, 5> buttons{cmdSave, cmdMove, cmdDel, cmdRemove, cmdAll};
    for (int i = 0; i < 5; ++i)
        grid->addWidget(buttons[size_t(i)], 2, i);
    resize(560, 360);

    buildCommands();

    connect(Check1, &QCheckBox::clicked, this, &frmList::Check1_Click);
    connect(ListImage, &QListWidget::itemClicked, this, &frmList::ListImage_Click);
    connect(ListImage, &QListWidget::customContextMenuRequested, this, [this](const QPoint &at) {
        // The entry under the pointer is the one the menu acts on.
        if (QListWidgetItem *item = ListImage->itemAt(at)) {
            ListClickIndex = ListImage->row(item);
            cmdRemove->setEnabled(true);
        }
        if (ListClickIndex >= 0)
            SFPOPUP->popup(ListImage->viewport()->mapToGlobal(at));
    });
}

void frmList::buildCommands()
{
    using C = Command;
    commands = new CommandSet(this);
    CommandSet &set = *commands;
    SFPOPUP = set.buildMenu(Commands::favouritesPopup(), this, "SFPOPUP");
    mnuOpen = set.wire(C::Open, this, &frmList::mnuOpen_Click);
    mnuSave = set.wire(C::Save, this, &frmList::mnuSave_Click);
    mnuMove = set.wire(C::Move, this, &frmList::mnuMove_Click);
    mnuDelete = set.wire(C::ListDelete, this, &frmList::mnuDelete_Click);
    mnuRename = set.wire(C::ListRename, this, &frmList::mnuRename_Click);
    mnuUndo = set.wire(C::Undo, [this] { m_host.undo(); });
    // The chores are the main window's: whether one is left is asked anew
    // before the popup opens or a key runs.
    set.beforeRun = [this] {
        commands->apply(CommandOffers::favourites({.undoAvailable = m_host.canUndo()}), SFPOPUP,
                        [this](int number, const char *text) { return m_state.messages.GetMsg(number, QLatin1String(text)); });
    };
    SFInfo = set.wire(C::Info, this, &frmList::SFInfo_Click);
    mnuRemove = set.wire(C::Remove, this, &frmList::cmdRemove_Click);
    mnuClear = set.wire(C::ListClear, this, &frmList::cmdAll_Click);
    set.wire(C::ListCopySelected, this, &frmList::cmdSave_Click);
    set.wire(C::ListMoveSelected, this, &frmList::cmdMove_Click);
    set.wire(C::ListDeleteSelected, this, &frmList::cmdDel_Click);
    set.wire(C::Close, [this] { hide(); });
    set.wire(C::Language, [this] { m_host.switchLanguage(); });
    const std::pair<QAbstractButton *, C> buttons[] = {
        {cmdSave, C::ListCopySelected}, {cmdMove, C::ListMoveSelected}, {cmdDel, C::ListDeleteSelected},
        {cmdRemove, C::Remove}, {cmdAll, C::ListClear},
    };
    for (const auto &[button, command] : buttons)
        set.drive(button, command);
    set.bindKeys(C::Close, {Qt::Key_Escape});
    set.bindKeys(C::Language, {Qt::Key_F2});
    set.bindKeys(C::Undo, {QKeySequence(Qt::ControlModifier | Qt::Key_Z)});
    new WindowKeys(this, set);
}

void frmList::placeBesideMain()
{
    const QScreen *screen = this->screen();
    const auto twips = ViewGeometry::Twips::forDpi(screen->logicalDotsPerInchX(), screen->logicalDotsPerInchY());
    const QRect main = m_host.mainFrame();
    move(main.x() + main.width() + twips.toPixelsX(150), main.y() + twips.toPixelsY(470));
}

QStringList frmList::entries() const
{
    QStringList paths;
    for (int i = 0; i < ListImage->count(); ++i)
        paths.append(ListImage->item(i)->text());
    return paths;
}

QStringList frmList::selectedEntries() const
{
    QStringList paths;
    for (int i = 0; i < ListImage->count(); ++i)
        if (ListImage->item(i)->isSelected())
            paths.append(ListImage->item(i)->text());
    return paths;
}

void frmList::setSelectionButtons(bool on)
{
    for (QPushButton *button : {cmdSave, cmdMove, cmdDel})
        button->setEnabled(on);
}

void frmList::setListButtons(bool on)
{
    for (QWidget *control : std::initializer_list<QWidget *>{cmdAll, cmdRemove, cmdSave, cmdMove, cmdDel, Check1})
        control->setEnabled(on);
}

void frmList::updateSizeLabel() { LabSel->setText(Favourites::selectionSizeText(selectedEntries(), m_state.messages)); }

void frmList::markThumbnail(const QString &path, bool on)
{
    if (m_state.MarkIndexThumbnail)
        m_state.MarkIndexThumbnail(path, on);
}

void frmList::appendEntry(const QString &path)
{
    auto *item = new QListWidgetItem(path, ListImage);
    item->setToolTip(path);
    item->setSelected(true);
}

void frmList::removeEntry(int row) { delete ListImage->takeItem(row); }

void frmList::Inserisci_Lista(const QString &path)
{
    if (const int found = Favourites::find(entries(), path); found >= 0)
        removeEntry(found);
    appendEntry(path);
    for (QWidget *control : std::initializer_list<QWidget *>{cmdAll, cmdSave, cmdMove, cmdDel, Check1})
        control->setEnabled(true);
    markThumbnail(path, true);
    updateSizeLabel();
}

void frmList::LoadFavourites()
{
    ListReady = false;
    const QStringList stored = Favourites::load(m_state.settings);
    for (const QString &path : stored)
        appendEntry(path);
    if (!stored.isEmpty()) {
        setListButtons(true);
        m_host.setListEnabled(true);
    }
    FavouritesStoredCount = int(stored.size());
    updateSizeLabel();
    ListReady = true;
}

void frmList::SaveFavourites() { Favourites::save(m_state.settings, entries(), FavouritesStoredCount); }

void frmList::RemoveFromFavourites(const QString &path)
{
    if (const int found = Favourites::find(entries(), path); found >= 0) {
        removeEntry(found);
        ListClickIndex = ListImage->currentRow();
    }
    if (ListImage->count() == 0)
        setListButtons(false);
    updateSizeLabel();
}

void frmList::Check1_Click()
{
    ListReady = false;
    const bool all = Check1->isChecked();
    setSelectionButtons(all);
    if (all)
        ListImage->selectAll();
    else
        ListImage->clearSelection();
    updateSizeLabel();
    ListReady = true;
}

void frmList::ListImage_Click()
{
    if (!ListReady)
        return;
    ListClickIndex = ListImage->currentRow();
    if (QListWidgetItem *item = ListImage->currentItem())
        m_clickedRowTop = ListImage->visualItemRect(item).top();
    cmdRemove->setEnabled(true);
    setSelectionButtons(!ListImage->selectedItems().isEmpty());
    updateSizeLabel();
}

FileContext frmList::fileContext()
{
    FileContext context{m_prompts, m_state.messages, [this](const QString &path) { m_host.releasePlayers(path); },
                        {}};
    context.copy.progress = copyProgressWindow(this, m_state.messages.GetMsg(20623, QStringLiteral("Copying ...")),
                                               m_state.messages.GetMsg(104, QStringLiteral("&Cancel")));
    return context;
}

bool frmList::inShownFolder(const QString &path) const
{
    return !m_host.shownFolder().isEmpty() && QFileInfo(path).absolutePath() == m_host.shownFolder();
}

QString frmList::clickedEntry() const
{
    const QListWidgetItem *item = ListImage->item(ListClickIndex);
    return item ? item->text() : QString();
}

void frmList::replaceEntry(const QString &path, const QString &newPath)
{
    if (const int found = Favourites::find(entries(), path); found >= 0) {
        ListImage->item(found)->setText(newPath);
        ListImage->item(found)->setToolTip(newPath);
    }
}

// Takes the entries the user agreed to drop, after a missing file.
static void removeAll(frmList &list, const QStringList &paths)
{
    for (const QString &path : paths)
        list.RemoveFromFavourites(path);
}

void frmList::copyInto(const QStringList &paths, int titleNumber, const char *title)
{
    const QString chosen = m_prompts.chooseFolder(m_state.messages.GetMsg(titleNumber, QString::fromUtf8(title)),
                                                  m_state.SaveFolder);
    if (chosen.isEmpty())
        return;
    const QString folder = withSlash(chosen);
    const Favourites::BatchResult result = Favourites::copyEntries(paths, folder, fileContext());
    removeAll(*this, result.removed);
    m_state.SaveFolder = folder.chopped(1);
    if (QFileInfo(folder).absoluteFilePath() == m_host.shownFolder())
        m_host.refreshFileList();
}

void frmList::bringForward()
{
    show();
    raise();
    activateWindow();
    cmdSave->setFocus(); // a disabled button simply does not take it
}

void frmList::cmdSave_Click() { copyInto(selectedEntries(), 384, "Choose the folder where to COPY selected files"); }

void frmList::mnuSave_Click()
{
    if (clickedPresentOrOffered())
        copyInto({clickedEntry()}, 384, "Choose the folder where to COPY selected files");
}

void frmList::cmdMove_Click()
{
    const QString chosen = m_prompts.chooseFolder(
        m_state.messages.GetMsg(385, QStringLiteral("Choose the folder where to MOVE selected files")),
        m_state.SaveFolder);
    if (chosen.isEmpty())
        return;
    const Favourites::BatchResult result = Favourites::moveEntries(selectedEntries(), withSlash(chosen), fileContext());
    removeAll(*this, result.removed);
    bool refresh = false;
    UndoRecord chore{ChoreKind::Move, {}};
    for (const auto &[from, to] : result.moved) {
        replaceEntry(from, to);
        refresh = refresh || inShownFolder(from) || inShownFolder(to);
        chore.steps.append({from, to, false});
    }
    m_host.recordChore(std::move(chore));
    if (refresh)
        m_host.refreshFileList();
}

void frmList::deletePaths(const QStringList &paths)
{
    m_host.pauseSlideshow();
    const Favourites::BatchResult result = Favourites::deleteEntries(paths, fileContext());
    UndoRecord chore{ChoreKind::Trash, {}};
    for (const auto &[from, inTrash] : result.trashed)
        chore.steps.append({from, inTrash, true});
    m_host.recordChore(std::move(chore));
    const QString shown = m_host.shownPath();
    bool refresh = false;
    for (const QString &path : result.gone) {
        markThumbnail(path, false);
        refresh = refresh || inShownFolder(path);
        if (!shown.isEmpty() && path == shown)
            m_host.forgetShownFile();
    }
    removeAll(*this, result.removed);
    if (refresh)
        m_host.refreshFileList();
    updateSizeLabel();
    m_host.resumeSlideshow();
    hide();
}

void frmList::cmdDel_Click() { deletePaths(selectedEntries()); }

void frmList::mnuDelete_Click()
{
    if (!clickedEntry().isEmpty())
        deletePaths({clickedEntry()});
}

void frmList::cmdRemove_Click()
{
    const QString path = clickedEntry();
    if (path.isEmpty())
        return;
    if (SamePathIgnoringCase(path, m_host.shownPath()))
        m_host.setAddEnabled(true);
    removeEntry(ListClickIndex);
    ListClickIndex = ListImage->currentRow();
    markThumbnail(path, false);
    if (ListImage->count() == 0)
        setListButtons(false);
    updateSizeLabel();
}

void frmList::cmdAll_Click()
{
    if (m_prompts.confirm(m_state.messages.GetMsg(10309, QStringLiteral("Clear List ?"))) == PromptAnswer::No)
        return;
    for (const QString &path : entries())
        markThumbnail(path, false);
    ListImage->clear();
    ListClickIndex = -1;
    setListButtons(false);
    m_host.setAddEnabled(true);
    LabSel->clear();
}

bool frmList::clickedPresentOrOffered()
{
    const QString path = clickedEntry();
    if (path.isEmpty())
        return false;
    if (IsExistingFile(path))
        return true;
    if (Favourites::askRemoveMissing(path, fileContext()))
        RemoveFromFavourites(path);
    return false;
}

void frmList::mnuOpen_Click()
{
    if (clickedPresentOrOffered())
        m_host.showFile(clickedEntry());
}

void frmList::mnuMove_Click()
{
    const QString path = clickedEntry();
    if (path.isEmpty())
        return;
    const QString moved = MoveFileToFolder(path, fileContext());
    if (moved == path)
        return;
    replaceEntry(path, moved);
    m_host.recordChore({ChoreKind::Move, {{path, moved, false}}});
    if (inShownFolder(path))
        m_host.refreshFileList();
}

void frmList::mnuRename_Click()
{
    const QString path = clickedEntry();
    if (!IsExistingFile(path))
        return;
    const QRect row(ListImage->viewport()->mapToGlobal(QPoint(0, m_clickedRowTop)),
                    QSize(ListImage->viewport()->width(), ListImage->fontMetrics().height() + 6));
    const QString typed = m_renameBox(row, QFileInfo(path).fileName());
    if (typed.isEmpty())
        return;
    const QString renamed = FileCommands::renameFile(path, typed, fileContext());
    if (!renamed.isEmpty()) {
        replaceEntry(path, renamed);
        m_host.recordChore({ChoreKind::Rename, {{path, renamed, false}}});
    }
    if (inShownFolder(path))
        m_host.refreshFileList();
}

void frmList::SFInfo_Click()
{
    const QString path = clickedEntry();
    if (path.isEmpty())
        return;
    const QString type =
        FileTypeCatalogue::normalisedTypeCode(FileTypeCatalogue::extensionOf(QFileInfo(path).fileName()));
    if (frmMessage *panel = FileCommands::showInfo(this, m_state, fileContext(), path, {}, type)) {
        m_host.pauseSlideshow();
        connect(panel, &QDialog::finished, this, [this] { m_host.resumeSlideshow(); });
    }
}

void frmList::ApplyLanguage()
{
    FormTexts::ApplyCaptions(this, m_state.messages);
    FormTexts::ApplyTooltips(this, m_state.messages, m_state.ShowTooltips);
}

void frmList::keyPressEvent(QKeyEvent *event)
{
    if (!commands->runKey(event->key(), event->modifiers()))
        QWidget::keyPressEvent(event);
}

void frmList::closeEvent(QCloseEvent *event)
{
    // The list lives as long as the program: closing only hides it.
    if (m_state.ProgramClosing) {
        event->accept();
        return;
    }
    event->ignore();
    hide();
    m_state.ListWindowOpen = false;
}
