#include "index/frmIndex.h"

#include "commands/CommandSet.h"
#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FormTexts.h"
#include "core/MessageCatalogue.h"
#include "index/ThumbnailDecoder.h"
#include "platform/DataFolder.h"
#include "platform/MoviePlayer.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>

using IndexRules::CellPart;

namespace {

template <typename Widget>
Widget *named(Widget *widget, const QString &name)
{
    widget->setObjectName(name);
    return widget;
}

// Cell controls are numbered like the control arrays they stand for.
QString cellName(const char *base, int cell)
{
    return QLatin1String(base) + QLatin1Char('_') + QString::number(cell);
}

} // namespace

frmIndex::frmIndex(AppState &state, ViewerContext &context, Prompts &prompts, Launcher &launcher,
                   ViewGeometry::Twips twips, QWidget *owner)
    : QWidget(owner, Qt::Window)
    , m_state(state)
    , m_prompts(prompts)
    , m_launcher(launcher)
    , m_context(context)
    , m_decoder(new ThumbnailDecoder(ThumbnailCache(), this))
    , m_durationPoll(new QTimer(this))
{
    setObjectName(QStringLiteral("frmIndex"));
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    m_twips = twips;
    buildControls();
    buildMenu();

    connect(m_decoder, &ThumbnailDecoder::thumbnailReady, this, [this](const ThumbnailDecoder::Result &result) {
        thumbnailArrived(result.cell, result.image, result.naturalSize);
    });
    connect(m_decoder, &ThumbnailDecoder::allDone, this, &frmIndex::picturesDone);
    // A page of the folder before is of no use any more.
    connect(&m_context, &ViewerContext::folderChanged, this, &frmIndex::stopPageBuild);
    m_durationPoll->setInterval(100);
    connect(m_durationPoll, &QTimer::timeout, this, [this] {
        bool waiting = false;
        for (int cell = 0; cell < IndexRules::CellCount; ++cell) {
            showDuration(cell);
            waiting = waiting || (cells[cell].movie && !cells[cell].durationShown);
        }
        // A stream without a length never reports one: give up after 10 s.
        if (!waiting || ++m_durationPolls > 100)
            m_durationPoll->stop();
    });
}

frmIndex::~frmIndex()
{
    m_decoder->cancel();
}

QRect frmIndex::toPixels(const QRectF &twips) const
{
    return m_twips.toPixels(twips.x(), twips.y(), twips.width(), twips.height());
}

QSize frmIndex::thumbnailBoxPixels() const
{
    const qreal ratio = devicePixelRatioF();
    return QSize(qCeil(m_twips.toPixelsX(IndexRules::ThumbBoxWidth) * ratio),
                 qCeil(m_twips.toPixelsY(IndexRules::ThumbBoxHeight) * ratio));
}

void frmIndex::buildControls()
{
    const QString data = m_state.ProgramFolder;
    auto toolButton = [&](QWidget *parent, const QString &name, const char *icon) {
        auto *button = named(new QToolButton(parent), name);
        button->setIcon(DataFolder::themedIcon(data, QLatin1String(icon)));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        button->installEventFilter(this);
        return button;
    };

    LabType = named(new QLabel(this), QStringLiteral("LabType"));
    LabLoad = named(new QLabel(this), QStringLiteral("LabLoad"));
    cmdBack = toolButton(this, QStringLiteral("cmdBack"), "go-previous");
    cmdNext = toolButton(this, QStringLiteral("cmdNext"), "go-next");
    cmdRefr = toolButton(this, QStringLiteral("cmdRefr"), "view-refresh");
    cmdDir = toolButton(this, QStringLiteral("cmdDir"), "folder-open");
    cmdPlay = toolButton(this, QStringLiteral("cmdPlay"), "media-playback-start");
    cmdPause = toolButton(this, QStringLiteral("cmdPause"), "media-playback-pause");
    cmdStop = toolButton(this, QStringLiteral("cmdStop"), "media-playback-stop");
    cmdVol = toolButton(this, QStringLiteral("cmdVol"), "audio-volume-high");
    cmdTrucco = named(new QPushButton(this), QStringLiteral("cmdTrucco"));
    cmdTrucco->setFixedSize(0, 0);
    cmdTrucco->setAccessibleName(QStringLiteral("Vimora"));

    FraFondo = named(new QFrame(this), QStringLiteral("FraFondo"));
    FraFondo->installEventFilter(this);
    m_favouriteMark = DataFolder::themedIcon(data, QStringLiteral("list-add")).pixmap(toPixels({0, 0, 150, 150}).size());
    for (int cell = 0; cell < IndexRules::CellCount; ++cell)
        buildCell(cell);

    layoutControls();
}

void frmIndex::buildCell(int index)
{
    Cell &cell = cells[index];
    const QString data = m_state.ProgramFolder;
    auto tagged = [&](QWidget *widget) {
        widget->setProperty("cell", index);
        widget->setFocusPolicy(Qt::NoFocus);
        widget->installEventFilter(this);
        return widget;
    };
    auto smallButton = [&](const char *base, const char *icon) {
        auto *button = named(new QToolButton(FraFondo), cellName(base, index));
        button->setIcon(DataFolder::themedIcon(data, QLatin1String(icon)));
        button->setAutoRaise(true);
        tagged(button);
        return button;
    };

    cell.Frame2 = named(new QFrame(FraFondo), cellName("Frame2", index));
    cell.Frame2->setFrameShape(QFrame::StyledPanel);
    cell.Image1 = named(new QLabel(cell.Frame2), cellName("Image1", index));
    cell.Image1->setAlignment(Qt::AlignCenter);
    cell.LabImage = named(new QLabel(cell.Frame2), cellName("LabImage", index));
    cell.LabImage->setTextInteractionFlags(Qt::NoTextInteraction);
    QFont small = cell.LabImage->font();
    small.setPointSizeF(qMax(6.0, small.pointSizeF() * 0.8));
    cell.LabImage->setFont(small);
    cell.ImgList = named(new QLabel(cell.Frame2), cellName("ImgList", index));
    cell.ImgList->setPixmap(m_favouriteMark);
    cell.MediaPlayer1 = named(new MoviePlayer(cell.Frame2), cellName("MediaPlayer1", index));
    cell.MediaPlayer1->setControlBarShown(false);
    cell.MediaPlayer1->setContextMenuEnabled(false);
    cell.MediaPlayer1->setAutoStart(false);
    cell.MediaPlayer1->setDisplaySize(MoviePlayer::FitToControl);
    cell.HScroll1 = named(new QScrollBar(Qt::Horizontal, FraFondo), cellName("HScroll1", index));
    cell.HScroll1->setRange(0, 100);
    cell.cmdPlaySmall = smallButton("cmdPlaySmall", "media-playback-start");
    cell.cmdPauseSmall = smallButton("cmdPauseSmall", "media-playback-pause");
    cell.cmdStopSmall = smallButton("cmdStopSmall", "media-playback-stop");
    for (QWidget *widget : {static_cast<QWidget *>(cell.Frame2), static_cast<QWidget *>(cell.Image1),
                            static_cast<QWidget *>(cell.LabImage), static_cast<QWidget *>(cell.ImgList),
                            static_cast<QWidget *>(cell.MediaPlayer1), static_cast<QWidget *>(cell.HScroll1)})
        tagged(widget);
    cell.Frame2->setMouseTracking(true);
    cell.Image1->setMouseTracking(true);

    // Only the user's moves seek; the page resetting a bar does not.
    connect(cell.HScroll1, &QScrollBar::actionTriggered, this, [this, index] {
        QTimer::singleShot(0, this, [this, index] { HScroll1_Change(index); });
    });
    connect(cell.MediaPlayer1, &MoviePlayer::PlayStateChange, this,
            [this, index](int oldState, int newState) { MediaPlayer1_PlayStateChange(index, oldState, newState); });
    connect(cell.MediaPlayer1, &MoviePlayer::mouseMoved, this, [this, index](QMouseEvent *) { selectCell(index); });
    connect(cell.MediaPlayer1, &MoviePlayer::mousePressed, this, [this, index](QMouseEvent *event) {
        selectCell(index);
        if (event->button() == Qt::RightButton) {
            event->accept();
            showPopup(index, event->globalPosition().toPoint());
        }
    });
    connect(cell.MediaPlayer1, &MoviePlayer::keyPressed, this, [this](QKeyEvent *event) {
        // A cell player answers only Alt+A and Alt+R, as the window does.
        const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
        if (modifiers == Qt::AltModifier && (event->key() == Qt::Key_A || event->key() == Qt::Key_R)
            && commands->runKey(event->key(), modifiers))
            event->accept();
    });
    resetCell(cell);
}

void frmIndex::layoutControls()
{
    const int pad = m_twips.toPixelsX(120);
    const int button = 24;
    int x = pad;
    for (QToolButton *b : {cmdBack, cmdNext, cmdRefr, cmdDir}) {
        b->setGeometry(x, pad / 2, button, button);
        x += button + 2;
    }
    x += pad;
    for (QToolButton *b : {cmdPlay, cmdPause, cmdStop, cmdVol}) {
        b->setGeometry(x, pad / 2, button, button);
        x += button + 2;
    }
    const QRect grid = toPixels({120, 0, 6000, 7650});
    const int gridTop = pad / 2 + button + 4;
    LabType->setGeometry(x + pad, pad / 2, grid.right() - x - pad, button / 2 + 2);
    LabLoad->setGeometry(x + pad, pad / 2 + button / 2, grid.right() - x - pad, button / 2 + 2);
    FraFondo->setGeometry(grid.left(), gridTop, grid.width(), grid.height());
    for (int index = 0; index < IndexRules::CellCount; ++index) {
        Cell &cell = cells[index];
        const QRect frame = toPixels(IndexRules::cellRect(index, CellPart::Frame));
        cell.Frame2->setGeometry(frame);
        cell.Image1->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::Image)));
        cell.MediaPlayer1->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::Player)));
        cell.LabImage->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::NameLabel)));
        cell.ImgList->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::FavouriteMark)));
        cell.HScroll1->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::PositionBar)));
        cell.cmdPlaySmall->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::PlayButton)));
        cell.cmdPauseSmall->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::PauseButton)));
        cell.cmdStopSmall->setGeometry(toPixels(IndexRules::cellRect(index, CellPart::StopButton)));
        cell.cmdPlaySmall->setIconSize(cell.cmdPlaySmall->size() - QSize(2, 2));
        cell.cmdPauseSmall->setIconSize(cell.cmdPauseSmall->size() - QSize(2, 2));
        cell.cmdStopSmall->setIconSize(cell.cmdStopSmall->size() - QSize(2, 2));
    }
    setFixedSize(grid.right() + pad, gridTop + grid.height() + pad / 2);
}

void frmIndex::Form_Load()
{
    const QPoint mainCorner = parentWidget() ? parentWidget()->frameGeometry().topLeft() : QPoint();
    move(mainCorner.x() + m_twips.toPixelsX(IndexRules::WindowOffsetFromMain), mainCorner.y());
    ApplyLanguage();
}

void frmIndex::ApplyLanguage()
{
    const MessageCatalogue &messages = m_state.messages;
    // Once a page is shown the title names its folder, in every language.
    setWindowTitle(m_pageFolder.isEmpty() ? messages.GetMsg(10103, QStringLiteral("Folder preview by thumbnails"))
                                          : QLatin1Char(' ') + m_pageFolder);
    FormTexts::ApplyCaptions(this, messages);
    FormTexts::ApplyTooltips(this, messages, m_state.ShowTooltips);
    // The cells' buttons show icons only; "Play/Pause" names both halves.
    const QString playPause = messages.GetMsg(701, QStringLiteral("Play/Pause"));
    const QString stop = messages.GetMsg(702, QStringLiteral("Stop"));
    for (Cell &cell : cells) {
        cell.cmdPlaySmall->setAccessibleName(playPause.section(QLatin1Char('/'), 0, 0));
        cell.cmdPauseSmall->setAccessibleName(playPause.section(QLatin1Char('/'), -1));
        cell.cmdStopSmall->setAccessibleName(stop);
    }
}

void frmIndex::buildMenu()
{
    using C = Command;
    commands = new CommandSet(this);
    CommandSet &set = *commands;
    SFPOPUP = set.buildMenu(Commands::indexPopup(), this, "SFPOPUP");
    const std::pair<QAction **, C> named[] = {
        {&mnuOpen, C::Open}, {&mnuPlay, C::Play}, {&mnuStop, C::Stop}, {&mnuSepp, C::SepPlay},
        {&mnuSave, C::Save}, {&mnuPrint, C::Print}, {&mnuClipboard, C::Clipboard}, {&mnuWall, C::Wall},
        {&mnuRemoveWall, C::RemoveWall}, {&mnuMove, C::Move}, {&mnuAdd, C::Add}, {&mnuRemove, C::Remove},
        {&mnuGlobal, C::Global}, {&SFRename, C::Rename}, {&SFDelete, C::Delete}, {&mnuUndo, C::Undo},
        {&SFInfo, C::Info}, {&mnuShellOpen, C::ShellOpen}, {&mnuShellEdit, C::ShellEdit},
    };
    for (const auto &[member, command] : named)
        *member = set[command];
    QFont bold = mnuOpen->font();
    bold.setBold(true);
    mnuOpen->setFont(bold);
    wireCommands();
    offerForSelection();
}

void frmIndex::updateCommandStates()
{
    offerForSelection();
    cmdVol->setEnabled(cmdVol->isEnabled() && bool(onVolume));
}

int frmIndex::cellOf(QObject *object) const
{
    const QVariant cell = object->property("cell");
    return cell.isValid() ? cell.toInt() : -1;
}

bool frmIndex::eventFilter(QObject *watched, QEvent *event)
{
    const int cell = cellOf(watched);
    switch (event->type()) {
    case QEvent::MouseMove:
        unsetCursor();
        if (cell >= 0 && !cells[cell].path.isEmpty() && watched != cells[cell].MediaPlayer1)
            selectCell(cell);
        break;
    case QEvent::MouseButtonPress:
        if (cell >= 0 && !cells[cell].path.isEmpty() && watched != cells[cell].MediaPlayer1
            && qobject_cast<QToolButton *>(watched) == nullptr) {
            selectCell(cell);
            auto *mouse = static_cast<QMouseEvent *>(event);
            if (mouse->button() != Qt::LeftButton) {
                showPopup(cell, mouse->globalPosition().toPoint());
                return true;
            }
        }
        break;
    case QEvent::MouseButtonDblClick:
        if (cell >= 0 && !cells[cell].path.isEmpty() && qobject_cast<QToolButton *>(watched) == nullptr
            && qobject_cast<QScrollBar *>(watched) == nullptr) {
            selectCell(cell);
            mnuOpen_Click();
            return true;
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void frmIndex::keyPressEvent(QKeyEvent *event)
{
    if (commands->runKey(event->key(), event->modifiers()))
        event->accept();
    else
        QWidget::keyPressEvent(event);
}

void frmIndex::closeEvent(QCloseEvent *event)
{
    stopPageBuild();
    hide();
    m_open = false;
    // A hidden window must not go on playing; the next opening rebuilds the page.
    releaseAllPlayers();
    event->accept();
}

void frmIndex::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void frmIndex::dropEvent(QDropEvent *event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) {
        event->acceptProposedAction();
        if (onDrop)
            onDrop(urls.first().toLocalFile());
    }
}
