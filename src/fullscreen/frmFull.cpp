#include "fullscreen/frmFull.h"

#include "core/AppState.h"
#include "core/FileTypeCatalogue.h"
#include "core/FormTexts.h"
#include "fullscreen/FullViewRules.h"
#include "platform/MoviePlayer.h"
#include "platform/PictureLoaderWait.h"
#include "viewer/AnimationView.h"
#include "viewer/PictureView.h"
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
    auto action = [this](const char *name, const QString &text = {}) {
        QAction *item = SFPOPUP->addAction(text);
        item->setObjectName(QLatin1String(name));
        return item;
    };
    auto separator = [this](const char *name) {
        QAction *item = SFPOPUP->addSeparator();
        item->setObjectName(QLatin1String(name));
        return item;
    };
    SFPOPUP = new QMenu(this);
    SFPOPUP->setObjectName(QStringLiteral("SFPOPUP"));
    mnuPlay = action("mnuPlay");
    mnuStop = action("mnuStop");
    mnuSepp = separator("mnuSepp");
    mnuAnim = action("mnuAnim", QStringLiteral("GIF"));
    mnuAnim->setCheckable(true);
    mnuSepGif = separator("mnuSepGif");
    mnuNormal = action("mnuNormal");
    mnuZoom = SFPOPUP->addMenu(QStringLiteral("Zoom"));
    mnuZoom->setObjectName(QStringLiteral("mnuZoom"));
    static const int percents[] = {10, 25, 50, 75, 100, 125, 150, 175, 200, 300, 400, 800};
    for (size_t i = 0; i < mnuZoomItems.size(); ++i) {
        const int percent = percents[i];
        mnuZoomItems[i] = mnuZoom->addAction(QString::number(percent) + QStringLiteral(" %"));
        mnuZoomItems[i]->setObjectName(QStringLiteral("mnu") + QString::number(percent));
        connect(mnuZoomItems[i], &QAction::triggered, this, [this, percent] {
            closeThenRun([this, percent] { m_main.mnuZoom_Click(percent); });
        });
    }
    mnufit = action("mnufit");
    mnuFull = action("mnuFull");
    separator("mnusep1");
    mnuAdd = action("mnuAdd");
    mnuRemove = action("mnuRemove");
    separator("mnusep2");
    mnuShellOpen = action("mnuShellOpen");
    mnuShellEdit = action("mnuShellEdit");
    mnuPrint = action("mnuPrint");
    mnuSave = action("mnuSave");
    separator("mnusep3");
    mnuWall = action("mnuWall");
    mnuRemoveWall = action("mnuRemoveWall");

    connect(mnufit, &QAction::triggered, this, [this] { closeThenRun([this] { m_main.mnufit_Click(); }); });
    connect(mnuFull, &QAction::triggered, this, [this] { closeThenRun([this] { m_main.mnuFull_Click(); }); });
    connect(mnuNormal, &QAction::triggered, this, &QWidget::close);
    connect(mnuPlay, &QAction::triggered, &m_main, &frmMain::mnuPlay_Click);
    connect(mnuStop, &QAction::triggered, &m_main, &frmMain::mnuStop_Click);
    connect(mnuAnim, &QAction::triggered, &m_main, &frmMain::mnuAnim_Click);
    const std::pair<QAction *, std::function<void()> frmFull::*> hooked[] = {
        {mnuAdd, &frmFull::onAddToFavourites}, {mnuRemove, &frmFull::onRemoveFromFavourites},
        {mnuShellOpen, &frmFull::onShellOpen}, {mnuShellEdit, &frmFull::onShellEdit},
        {mnuWall, &frmFull::onSetWallpaper},   {mnuRemoveWall, &frmFull::onRemoveWallpaper},
    };
    for (const auto &[item, hook] : hooked)
        connect(item, &QAction::triggered, this, [this, hook] {
            if (this->*hook)
                (this->*hook)();
        });
    // The dialogs of printing and saving must not meet a slideshow tick.
    connect(mnuPrint, &QAction::triggered, this, [this] { runWithTimerStopped(onPrint); });
    connect(mnuSave, &QAction::triggered, this, [this] { runWithTimerStopped(onSave); });
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
    if (m_state.AnimateGifs && FileTypeCatalogue::mayAnimate(m_state.FileTypeCode)) {
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
    const KeyAction action = FullViewRules::keyAction(event->key());
    if (action == KeyAction::Close) {
        close();
        return;
    }
    if (action == KeyAction::None)
        return;
    m_main.Mostra_Image(action == KeyAction::Previous, QString());
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
        showPopup(event->globalPosition().toPoint(), false);
}

void frmFull::ImgEgg_MouseDown(QMouseEvent *event)
{
    // Only a still picture: an animation leaves the presses to the window.
    const bool animated = m_state.AnimateGifs && FileTypeCatalogue::mayAnimate(m_state.FileTypeCode);
    if (event->button() != Qt::LeftButton && !animated)
        showPopup(event->globalPosition().toPoint(), true);
}

void frmFull::showPopup(QPoint globalPosition, bool overPicture)
{
    m_main.TimerImage->stop();
    unsetCursor();
    if (overPicture) {
        mnuShellOpen->setEnabled(m_main.mnuShellOpen->isEnabled() && bool(onShellOpen));
        mnuShellEdit->setEnabled(m_main.mnuShellEdit->isEnabled() && bool(onShellEdit));
        const bool movie = m_state.MainMovieLoaded;
        for (QAction *item : {mnuPlay, mnuStop, mnuSepp})
            item->setVisible(movie);
        mnuPlay->setEnabled(movie);
        const int state = m_main.MediaPlayer1->PlayState();
        mnuStop->setEnabled(movie && (state == MoviePlayer::Playing || state == MoviePlayer::Paused));
    }
    const bool gif = FileTypeCatalogue::mayAnimate(m_state.FileTypeCode);
    mnuAnim->setVisible(gif);
    mnuSepGif->setVisible(gif);
    mnuAnim->setChecked(gif && m_state.AnimateGifs);
    mnuAdd->setEnabled(bool(onAddToFavourites));
    mnuRemove->setEnabled(bool(onRemoveFromFavourites));
    mnuPrint->setEnabled(bool(onPrint));
    mnuSave->setEnabled(bool(onSave));
    mnuWall->setEnabled(bool(onSetWallpaper));
    mnuRemoveWall->setEnabled(bool(onRemoveWallpaper));
    SFPOPUP->setDefaultAction(mnuNormal);
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
