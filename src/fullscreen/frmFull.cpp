#include "fullscreen/frmFull.h"

#include "commands/CommandSet.h"
#include "context/ViewerContext.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/FormTexts.h"
#include "core/MessageCatalogue.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "fullscreen/FullViewHost.h"
#include "fullscreen/FullViewRules.h"
#include "platform/MoviePlayer.h"
#include "platform/PictureLoaderWait.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

// A window of its own, owned by the main window so it never outlives it;
// hiding the main window leaves it up.
frmFull::frmFull(AppState &state, ViewerContext &context, FullViewHost &host, QWidget *owner)
    : QWidget(owner, Qt::Window | Qt::FramelessWindowHint), m_state(state), m_context(context), m_host(host)
{
    setObjectName(QStringLiteral("frmFull"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAutoFillBackground(true);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setFocusPolicy(Qt::StrongFocus);

    ImgEgg = new PictureView(this);
    ImgEgg->setObjectName(QStringLiteral("ImgEgg"));
    ImgEgg->hide();
    WebBrowser1 = new AnimationView(this);
    WebBrowser1->setObjectName(QStringLiteral("WebBrowser1"));
    WebBrowser1->hide();
    buildMenu();

    connect(ImgEgg, &PictureView::pressed, this, &frmFull::ImgEgg_MouseDown);
    connect(ImgEgg, &PictureView::doubleClicked, this, &QWidget::close);
}

frmFull::~frmFull() = default;

void frmFull::buildMenu()
{
    using C = Command;
    commands = new CommandSet(this);
    CommandSet &set = *commands;
    SFPOPUP = set.buildMenu(Commands::fullScreenPopup(), this, "SFPOPUP");
    mnuZoom = SFPOPUP->findChild<QMenu *>(QStringLiteral("mnuZoom"));
    const std::pair<QAction **, C> named[] = {
        {&mnuPlay, C::Play}, {&mnuStop, C::Stop}, {&mnuSepp, C::SepPlay}, {&mnuAnim, C::Anim},
        {&mnuSepGif, C::SepGif}, {&mnuNormal, C::Normal}, {&mnuAdd, C::Add}, {&mnuRemove, C::Remove},
        {&mnuShellOpen, C::ShellOpen}, {&mnuShellEdit, C::ShellEdit}, {&mnuPrint, C::Print}, {&mnuSave, C::Save},
        {&mnuWall, C::Wall}, {&mnuRemoveWall, C::RemoveWall}, {&mnufit, C::Fit}, {&mnuFull, C::Full},
    };
    for (const auto &[member, command] : named)
        *member = set[command];
    const QList<Command> zooms = Commands::zoomEntries();
    for (size_t i = 0; i < mnuZoomItems.size(); ++i)
        mnuZoomItems[i] = set[zooms[qsizetype(i)]];

    // The zoom entries are the main window's: this window goes first.
    for (const Command zoom : zooms)
        set.wire(zoom, [this, zoom] { closeThenRun([this, zoom] { m_host.chooseZoom(Commands::zoomPercent(zoom)); }); });
    set.wire(C::Fit, [this] { closeThenRun([this] { m_host.fitToWindow(); }); });
    set.wire(C::Full, [this] { closeThenRun([this] { m_host.showActualSize(); }); });
    set.wire(C::Normal, [this] { close(); });
    set.wire(C::Play, [this] { m_host.playMovie(); });
    set.wire(C::Stop, [this] { m_host.stopMovie(); });
    set.wire(C::Anim, [this] { m_host.toggleAnimation(); });
    for (const auto &[command, hook] : hooks()) {
        if (command == C::Print || command == C::Save)
            continue;
        set.wire(command, [this, hook] {
            if (this->*hook)
                (this->*hook)();
        });
    }
    // The dialogs of printing and saving must not meet a slideshow tick.
    set.wire(C::Print, [this] { runWithTimerStopped(onPrint); });
    set.wire(C::Save, [this] { runWithTimerStopped(onSave); });
    set.wire(C::StepNext, [this] { showNeighbour(false); });
    set.wire(C::StepBack, [this] { showNeighbour(true); });
}

QList<std::pair<Command, std::function<void()> frmFull::*>> frmFull::hooks()
{
    return {{Command::Add, &frmFull::onAddToFavourites},     {Command::Remove, &frmFull::onRemoveFromFavourites},
            {Command::ShellOpen, &frmFull::onShellOpen},     {Command::ShellEdit, &frmFull::onShellEdit},
            {Command::Wall, &frmFull::onSetWallpaper},       {Command::RemoveWall, &frmFull::onRemoveWallpaper},
            {Command::Print, &frmFull::onPrint},             {Command::Save, &frmFull::onSave}};
}

void frmFull::Form_Load()
{
    const QScreen *screen = parentWidget() ? parentWidget()->screen() : this->screen();
    if (screen)
        setGeometry(screen->geometry());
    FormTexts::ApplyCaptions(this, m_state.messages);
    m_loaded = true;
    showFullScreen();
}

void frmFull::Centra_Image(QWidget *target)
{
    target->move(FullViewRules::centredPosition(target->size(), size()));
}

void frmFull::MostraFullImage()
{
    m_host.holdSlideshow();
    ImgEgg->hide();
    WebBrowser1->hide();
    const QString path = m_context.currentPath();
    if (m_host.animatesShownFile()) {
        WebBrowser1->setGeometry(rect());
        if (WebBrowser1->location() != path)
            WebBrowser1->Navigate(path);
        WebBrowser1->show();
    } else {
        const ViewerContext::ShownPicture &shown = m_context.shownPicture();
        const QSize natural = shown.naturalSize.isEmpty() ? shown.image.size() : shown.naturalSize;
        const QSize fitted = FullViewRules::fittedSize(natural, size());
        // The main window may hold a picture decoded smaller than the
        // screen needs, or only a part of it: decode it at the screen's size.
        if (path != m_shownPath || ImgEgg->picture().size() != shown.image.size()) {
            QImage picture = shown.image;
            if (!fitted.isEmpty()
                && (shown.part
                    || (picture.width() < fitted.width() * devicePixelRatio() && picture.width() < natural.width()))) {
                PictureLoader::Options options;
                options.fitInto = fitted * devicePixelRatio();
                const PictureLoader::Picture loaded =
                    PictureLoader::loadWithinLimit(path, options, m_state.PictureDecodeLimitMs);
                if (!loaded.isNull())
                    picture = loaded.image;
            }
            ImgEgg->setPicture(picture, natural);
            m_shownPath = path;
        }
        ImgEgg->setToolTip(FullViewRules::pictureToolTip(m_context.CurrentFileName(), natural,
                                                         m_context.FileSizeDisplay()));
        if (!fitted.isEmpty()) {
            ImgEgg->resize(fitted);
            Centra_Image(ImgEgg);
            ImgEgg->show();
        }
    }
    unsetCursor();
    m_host.resumeSlideshow();
}

void frmFull::hidePresenters()
{
    ImgEgg->hide();
    WebBrowser1->hide();
}

void frmFull::Form_KeyDown(QKeyEvent *event)
{
    using FullViewRules::KeyAction;
    switch (FullViewRules::keyAction(event->key())) {
    case KeyAction::Close: commands->action(Command::Normal)->trigger(); break;
    case KeyAction::Previous: commands->action(Command::StepBack)->trigger(); break;
    case KeyAction::Next: commands->action(Command::StepNext)->trigger(); break;
    case KeyAction::None: break;
    }
}

void frmFull::showNeighbour(bool previous)
{
    // A step waits for a list being read again (after a copy saved into it).
    if (m_context.listingUnderWay()) {
        QTimer::singleShot(10, this, [this, previous] { showNeighbour(previous); });
        return;
    }
    ViewerContext::ShowRequest request;
    request.steps = previous ? -1 : 1;
    request.wraps = m_state.SlideshowOn;
    m_context.show(request);
    if (!m_loaded)
        return; // the window went with the file
    if (m_context.MainMovieLoaded())
        hidePresenters();
    else
        MostraFullImage();
}

void frmFull::Form_MouseDown(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        showPopup(event->globalPosition().toPoint());
}

void frmFull::ImgEgg_MouseDown(QMouseEvent *event)
{
    // Only a still picture: an animation leaves the presses to the window.
    if (event->button() != Qt::LeftButton && !m_host.animatesShownFile())
        showPopup(event->globalPosition().toPoint());
}

void frmFull::showPopup(QPoint globalPosition)
{
    m_host.holdSlideshow();
    unsetCursor();
    const int playState = m_host.moviePlayState();
    CommandOffers::FullScreenFacts facts;
    facts.state = CommandOffers::stateOfFile(m_context.MainMovieLoaded(), false, FileTypeCatalogue::mayAnimate(m_context.FileTypeCode()), false,
                                             m_context.CurrentFileName().isEmpty());
    facts.movieStoppable = playState == MoviePlayer::Playing || playState == MoviePlayer::Paused;
    facts.animating = m_state.AnimateGifs;
    facts.shellOpenEnabled = m_host.shellOpenOffered();
    for (const auto &[command, hook] : hooks())
        if (this->*hook)
            facts.wired.append(command);
    commands->apply(CommandOffers::fullScreen(facts), SFPOPUP,
                    [this](int number, const char *text) { return m_state.messages.GetMsg(number, QLatin1String(text)); });
    SFPOPUP->popup(globalPosition);
}

void frmFull::closeThenRun(const std::function<void()> &command)
{
    close();
    command();
}

void frmFull::runWithTimerStopped(const std::function<void()> &command)
{
    if (!command)
        return;
    m_host.holdSlideshow();
    command();
    m_host.resumeSlideshow();
}

void frmFull::keyPressEvent(QKeyEvent *event)
{
    Form_KeyDown(event);
    event->accept();
}

void frmFull::mousePressEvent(QMouseEvent *event)
{
    Form_MouseDown(event);
    event->accept();
}

void frmFull::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->accept();
    close();
}

void frmFull::closeEvent(QCloseEvent *event)
{
    Form_Unload();
    event->accept();
}

void frmFull::Form_Unload()
{
    if (!m_loaded)
        return;
    m_context.setFullScreenActive(false);
    m_loaded = false;
    if (!m_state.ProgramClosing)
        m_host.fullViewClosed();
    QCoreApplication::processEvents();
}
