#include "fullscreen/frmFull.h"

#include "commands/CommandSet.h"
#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/FormTexts.h"
#include "core/MessageCatalogue.h"
#include "display/AnimationView.h"
#include "display/PictureView.h"
#include "fullscreen/FullViewRules.h"
#include "platform/MoviePlayer.h"
#include "platform/PictureLoaderWait.h"
#include "viewer/frmMain.h"

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
frmFull::frmFull(AppState &state, frmMain &main) : QWidget(&main, Qt::Window | Qt::FramelessWindowHint),
    m_state(state), m_main(main)
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
        set.wire(zoom, [this, zoom] { closeThenRun([this, zoom] { m_main.mnuZoom_Click(Commands::zoomPercent(zoom)); }); });
    set.wire(C::Fit, [this] { closeThenRun([this] { m_main.mnufit_Click(); }); });
    set.wire(C::Full, [this] { closeThenRun([this] { m_main.mnuFull_Click(); }); });
    set.wire(C::Normal, [this] { close(); });
    set.wire(C::Play, &m_main, &frmMain::mnuPlay_Click);
    set.wire(C::Stop, &m_main, &frmMain::mnuStop_Click);
    set.wire(C::Anim, &m_main, &frmMain::mnuAnim_Click);
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
    const QScreen *screen = m_main.screen();
    if (screen)
        setGeometry(screen->geometry());
    FormTexts::ApplyCaptions(this, m_state.messages);
    m_state.FullViewLoaded = true;
    showFullScreen();
}

void frmFull::Centra_Image(QWidget *target)
{
    target->move(FullViewRules::centredPosition(target->size(), size()));
}

void frmFull::MostraFullImage()
{
    m_main.TimerImage->stop();
    ImgEgg->hide();
    WebBrowser1->hide();
    const QString path = m_state.currentPath();
    if (m_main.animatesShownFile()) {
        WebBrowser1->setGeometry(rect());
        if (WebBrowser1->location() != path)
            WebBrowser1->Navigate(path);
        WebBrowser1->show();
    } else {
        const PictureView &shown = *m_main.ImgEgg;
        const QSize natural = shown.naturalSize().isEmpty() ? shown.picture().size() : shown.naturalSize();
        const QSize fitted = FullViewRules::fittedSize(natural, size());
        // The main window may hold a picture decoded smaller than the
        // screen needs, or only a part of it: decode it at the screen's size.
        if (path != m_shownPath || ImgEgg->picture().size() != shown.picture().size()) {
            QImage picture = shown.picture();
            if (!fitted.isEmpty()
                && (shown.holdsPart()
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
        ImgEgg->setToolTip(FullViewRules::pictureToolTip(m_state.CurrentFileName, natural,
                                                         m_main.LabSiz->text().trimmed()));
        if (!fitted.isEmpty()) {
            ImgEgg->resize(fitted);
            Centra_Image(ImgEgg);
            ImgEgg->show();
        }
    }
    unsetCursor();
    if (m_state.SlideshowOn)
        m_main.TimerImage->start(m_state.SlideSeconds * 1000);
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
    if (m_main.listingUnderWay()) {
        QTimer::singleShot(10, this, [this, previous] { showNeighbour(previous); });
        return;
    }
    m_main.Mostra_Image(previous, QString());
    if (!m_state.FullViewLoaded)
        return; // the window went with the file
    if (m_state.MainMovieLoaded)
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
    if (event->button() != Qt::LeftButton && !m_main.animatesShownFile())
        showPopup(event->globalPosition().toPoint());
}

void frmFull::showPopup(QPoint globalPosition)
{
    m_main.TimerImage->stop();
    unsetCursor();
    const int playState = m_main.MediaPlayer1->PlayState();
    CommandOffers::FullScreenFacts facts;
    facts.state = CommandOffers::stateOfFile(m_state.MainMovieLoaded, false, FileTypeCatalogue::mayAnimate(m_state.FileTypeCode), false,
                                             m_state.CurrentFileName.isEmpty());
    facts.movieStoppable = playState == MoviePlayer::Playing || playState == MoviePlayer::Paused;
    facts.animating = m_state.AnimateGifs;
    facts.shellOpenEnabled = m_main.mnuShellOpen->isEnabled();
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
    m_main.TimerImage->stop();
    command();
    if (m_state.SlideshowOn)
        m_main.TimerImage->start(m_state.SlideSeconds * 1000);
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
    if (!m_state.FullViewLoaded)
        return;
    m_state.FullScreenActive = false;
    m_state.FullViewLoaded = false;
    if (!m_state.ProgramClosing) {
        m_main.setMainWindowsVisible(true);
        m_main.cmdTrucco->setFocus();
    }
    QCoreApplication::processEvents();
}
