#include "viewer/frmMain.h"

#include "viewer/FolderWatch.h"

#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FormTexts.h"
#include "core/MessageCatalogue.h"
#include "display/AnimationView.h"
#include "display/FilterItemDelegate.h"
#include "display/PictureView.h"
#include "files/frmList.h"
#include "platform/DataFolder.h"
#include "platform/LanguageChoice.h"
#include "platform/MoviePlayer.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QFrame>
#include <QAbstractItemView>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

namespace {

template <typename Widget>
Widget *named(Widget *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QLabel *statusLabel(QWidget *parent, const char *name)
{
    auto *label = named(new QLabel(parent), name);
    label->setTextInteractionFlags(Qt::NoTextInteraction);
    label->hide();
    return label;
}

} // namespace

frmMain::frmMain(AppState &state, ViewerContext &context, Prompts &prompts, Launcher &launcher, QWidget *parent)
    : QWidget(parent), m_state(state), m_context(context), m_prompts(prompts), m_launcher(launcher)
{
    m_context.setPresenter(this);
    // The neighbours are decoded ahead before anything else follows a shown file.
    connect(&m_context, &ViewerContext::fileShown, this, &frmMain::prefetchNeighbours);
    // A new mode wants its own decodes: fitted, or the parts that will show.
    connect(&m_context, &ViewerContext::modeChanged, this, &frmMain::prefetchNeighbours);
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral(" Vimora"));
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    const QScreen *screen = this->screen();
    m_twips = ViewGeometry::Twips::forDpi(screen->logicalDotsPerInchX(), screen->logicalDotsPerInchY());
    buildControls();
    buildMenus();
    connectHandlers();
    connectLaunchHandlers();
    m_folderWatch = new FolderWatch(this);
    connect(m_folderWatch, &FolderWatch::changed, this, &frmMain::followFolderChange);
    // The window never gets smaller than its layout needs.
    setMinimumSize(m_twips.toPixelsX(ViewGeometry::MinWindowWidth), m_twips.toPixelsY(ViewGeometry::MinWindowHeight));
    const QSize available = screen->availableGeometry().size();
    resize(qMax(m_twips.toPixelsX(ViewGeometry::MinWindowWidth), available.width() * 3 / 4),
           qMax(m_twips.toPixelsY(ViewGeometry::MinWindowHeight), available.height() * 3 / 4));
}

frmMain::~frmMain() { m_context.setPresenter(nullptr); }

void frmMain::buildControls()
{
    const QString data = m_state.ProgramFolder;
    auto toolButton = [&](const char *name, const char *icon) {
        auto *button = named(new QToolButton(Frame1), name);
        button->setIcon(DataFolder::themedIcon(data, QLatin1String(icon)));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        return button;
    };

    ImgWall = named(new QWidget(this), "ImgWall");
    ImgWall->setAutoFillBackground(true);
    ImgWall->setBackgroundRole(QPalette::Dark);

    FraFondoTop = named(new QFrame(this), "FraFondoTop");
    FraFondoTop->setFrameShape(QFrame::NoFrame);
    FraFondoTop->setAutoFillBackground(true);
    Frame1 = named(new QFrame(FraFondoTop), "Frame1");

    Drive1 = named(new QComboBox(Frame1), "Drive1");
    m_folderModel = new QFileSystemModel(this);
    m_folderModel->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    m_folderModel->setRootPath(QStringLiteral("/"));
    Dir1 = named(new QTreeView(Frame1), "Dir1");
    Dir1->setModel(m_folderModel);
    for (int column = 1; column < m_folderModel->columnCount(); ++column)
        Dir1->hideColumn(column);
    Dir1->setHeaderHidden(true);
    Dir1->setContextMenuPolicy(Qt::CustomContextMenu);
    // The model reads folders in the background: show the current one once
    // its parent has been read.
    connect(m_folderModel, &QFileSystemModel::directoryLoaded, this, &frmMain::revealDir1Current);

    CboURL = named(new QComboBox(Frame1), "CboURL");
    CboURL->setEditable(true);
    CboURL->setInsertPolicy(QComboBox::NoInsert);
    CboURL->setMaxCount(41);
    CboURL->setCompleter(nullptr); // completion follows the history rules, not Qt's
    CboURL->lineEdit()->setAcceptDrops(false); // a dropped file opens, it is not typed
    CboType = named(new QComboBox(Frame1), "CboType");
    CboType->setItemDelegate(new FilterItemDelegate(CboType));
    cmdClear = toolButton("cmdClear", "edit-clear-history");
    cmdUp = toolButton("cmdUp", "go-up");
    cmdRefr = toolButton("cmdRefr", "view-refresh");
    cmdIndex = toolButton("cmdIndex", "view-grid");

    Option1[0] = named(new QRadioButton(Frame1), "Option1_0");
    Option1[1] = named(new QRadioButton(Frame1), "Option1_1");
    ChkCicle = named(new QCheckBox(Frame1), "ChkCicle");
    HScroll1 = named(new QScrollBar(Qt::Horizontal, Frame1), "HScroll1");
    HScroll1->setRange(1, 60);
    HScroll1->setPageStep(5);
    txtTime = named(new QLineEdit(Frame1), "txtTime");
    txtTime->setReadOnly(true); // typing changes nothing; the scroll bar sets it
    txtTime->setAlignment(Qt::AlignCenter);
    txtTime->setAcceptDrops(false);
    ChkAuto = named(new QCheckBox(Frame1), "ChkAuto");
    chkAnim = named(new QCheckBox(QStringLiteral("GIF"), Frame1), "chkAnim");

    cmdBack = toolButton("cmdBack", "go-previous");
    cmdNext = toolButton("cmdNext", "go-next");
    cmdExpand = toolButton("cmdExpand", "zoom-in");
    cmdReduce = toolButton("cmdReduce", "zoom-out");
    cmdRitaglia = toolButton("cmdRitaglia", "transform-crop");
    cmdSave = toolButton("cmdSave", "document-save-as");
    cmdClip = toolButton("cmdClip", "edit-copy");
    cmdPrint = toolButton("cmdPrint", "document-print");
    cmdGrab = toolButton("cmdGrab", "camera-photo");
    cmdAdd = toolButton("cmdAdd", "list-add");
    cmdList = toolButton("cmdList", "view-list");
    cmdLink = toolButton("cmdLink", "preferences-desktop-default-applications");
    cmdHelp = toolButton("cmdHelp", "help-contents");
    cmdAbout = named(new QPushButton(Frame1), "cmdAbout");
    cmdTrucco = named(new QPushButton(this), "cmdTrucco");
    cmdTrucco->setFixedSize(0, 0); // present for the focus only
    cmdTrucco->setAccessibleName(QStringLiteral("Vimora"));

    ImgEgg = named(new PictureView(this), "ImgEgg");
    ImgEgg->hide();
    WebBrowser1 = named(new AnimationView(this), "WebBrowser1");
    WebBrowser1->hide();
    MediaPlayer1 = named(new MoviePlayer(this), "MediaPlayer1");
    MediaPlayer1->hide();

    static const char *lineNames[] = {"SelLineAnchorH", "SelLineMovingH", "SelLineAnchorV", "SelLineMovingV"};
    for (int i = 0; i < 4; ++i) {
        SelLines[i] = named(new QFrame(this), lineNames[i]);
        SelLines[i]->setStyleSheet(QStringLiteral("background: #ff3030;"));
        SelLines[i]->setAttribute(Qt::WA_TransparentForMouseEvents);
        SelLines[i]->hide();
    }
    LabMis = statusLabel(this, "LabMis");
    LabMis->setAutoFillBackground(true);

    FraFondoBot = named(new QFrame(this), "FraFondoBot");
    FraFondoBot->setFrameShape(QFrame::StyledPanel);
    FraFondoBot->setAutoFillBackground(true);
    LabNum = statusLabel(FraFondoBot, "LabNum");
    LabFil = statusLabel(FraFondoBot, "LabFil");
    ImgTyp = statusLabel(FraFondoBot, "ImgTyp");
    LabSiz = statusLabel(FraFondoBot, "LabSiz");
    LabPix = statusLabel(FraFondoBot, "LabPix");
    LabZoom = statusLabel(FraFondoBot, "LabZoom");
    LabFil->setIndent(24); // room for the type icon laid over its left end

    TimerImage = new QTimer(this);
    TimerImage->setObjectName(QStringLiteral("TimerImage"));

    FraFondoTop->raise();
    FraFondoBot->raise();
    layoutFrame1();
}

void frmMain::connectHandlers()
{
    connectIndex();
    connect(ChkCicle, &QCheckBox::toggled, this, &frmMain::ChkCicle_Click);
    connect(ChkAuto, &QCheckBox::toggled, this, &frmMain::ChkAuto_Click);
    connect(HScroll1, &QScrollBar::valueChanged, this, &frmMain::HScroll1_Change);
    connect(TimerImage, &QTimer::timeout, this, &frmMain::TimerImage_Timer);

    connect(CboType, &QComboBox::currentIndexChanged, this, [this] { CboType_Click(); });
    connect(Drive1, &QComboBox::currentIndexChanged, this, [this] { Drive1_Change(); });
    connect(Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { Dir1_Change(); });
    connect(Dir1, &QTreeView::customContextMenuRequested, this, [this](const QPoint &at) {
        stopSlideTimer();
        DIRPOPUP->popup(Dir1->viewport()->mapToGlobal(at));
    });
    connect(CboURL, &QComboBox::activated, this, [this] { CboURL_Click(); });
    connect(CboURL, &QComboBox::editTextChanged, this, [this] { CboURL_Change(); });
    connect(ImgEgg, &PictureView::pressed, this, &frmMain::ImgEgg_MouseDown);
    connect(ImgEgg, &PictureView::moved, this, &frmMain::ImgEgg_MouseMove);
    connect(ImgEgg, &PictureView::released, this, &frmMain::ImgEgg_MouseUp);
    connect(ImgEgg, &PictureView::partNeeded, this, &frmMain::fillPictureView);
    for (QRadioButton *option : Option1)
        connect(option, &QRadioButton::toggled, this, [this, option](bool checked) {
            if (!checked)
                return;
            m_context.setDisplayMode(option == Option1[0] ? ViewerContext::DisplayMode::Fit
                                                          : ViewerContext::DisplayMode::ActualSize);
            Option1_Click();
        });

    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) { m_launchPause.applicationStateChanged(state); });
    CboURL->view()->installEventFilter(this); // opening the history list
    CboType->view()->installEventFilter(this);
    LabMis->installEventFilter(this);
    Frame1->installEventFilter(this);
    FraFondoTop->installEventFilter(this);

    connectOutputHandlers();
    connectFileCommands();
    connectMovieHandlers();
    wireCommands();
}

bool frmMain::eventFilter(QObject *watched, QEvent *event)
{
    // Opening the path history stops the slideshow and any thumbnail load,
    // so the list does not change under the user's pointer.
    if (watched == CboURL->view() && event->type() == QEvent::Show) {
        stopSlideTimer();
        stopIndexPage();
    }
    // Qt widens the open filter list to its longest item text, codes and
    // pattern lists included; keep it to the labels the delegate draws.
    if (watched == CboType->view() && event->type() == QEvent::Show) {
        QWidget *popup = CboType->view()->window();
        const int wanted = qMax(CboType->width(), CboType->view()->sizeHintForColumn(0) + 24);
        if (popup->width() > wanted) {
            popup->resize(wanted, popup->height());
            popup->move(CboType->mapToGlobal(QPoint(0, CboType->height())).x(), popup->y());
        }
    }
    // Over the controls the pointer is the ordinary one, unless cropping.
    if ((watched == Frame1 || watched == FraFondoTop) && event->type() == QEvent::Enter
        && !m_cropSelectionActive)
        unsetCursor();
    // The size label over a selection: a click drops the selection, the
    // right button opens the crop menu.
    if (watched == LabMis && event->type() == QEvent::MouseButtonPress) {
        const auto *press = static_cast<QMouseEvent *>(event);
        if (press->button() == Qt::RightButton)
            showContextMenu(press->globalPosition().toPoint());
        else
            ClearCropSelection();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void frmMain::ApplyLanguage()
{
    FormTexts::ApplyCaptions(this, m_state.messages);
    FormTexts::ApplyTooltips(this, m_state.messages, m_state.ShowTooltips);
    cmdAbout->setText(m_state.messages.GetMsg(311, QStringLiteral("A&bout")));
    cmdAbout->setAccessibleName(cmdAbout->text().remove(QLatin1Char('&')));
    MediaPlayer1->setControlNames(m_state.messages.GetMsg(701, QStringLiteral("Play/Pause")),
                                  m_state.messages.GetMsg(702, QStringLiteral("Stop")), QStringLiteral("Position"),
                                  m_state.messages.GetMsg(10207, QStringLiteral("Volume")));
    layoutFrame1();
    applyLanguageToIndex();
    if (m_favourites)
        m_favourites->ApplyLanguage();
}

void frmMain::switchLanguage()
{
    ChooseLanguage(m_state, m_prompts);
    ApplyLanguage();
    fillTypeFilterList();
}

void frmMain::setWaitCursor(bool on)
{
    if (on)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

void frmMain::closeEvent(QCloseEvent *event)
{
    Form_Unload();
    event->accept();
}
