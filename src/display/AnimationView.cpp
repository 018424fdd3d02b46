#include "display/AnimationView.h"

#include "platform/PictureLoader.h"

#include <QMovie>
#include <QPainter>

AnimationView::AnimationView(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

AnimationView::~AnimationView() = default;

void AnimationView::Navigate(const QString &path)
{
    clear();
    m_path = path;
    // The still loader refuses such headers; frames that size would take a
    // gigabyte or more each.
    if (PictureLoader::claimsTooManyPixels(path))
        return;
    auto *movie = new QMovie(path, QByteArray(), this);
    if (!movie->isValid()) {
        delete movie;
        return;
    }
    m_movie = movie;
    m_movie->setCacheMode(QMovie::CacheNone);
    connect(m_movie, &QMovie::frameChanged, this, [this] { update(); });
    // A hidden view keeps its place in the animation but spends nothing.
    m_movie->start();
    if (!isVisible())
        m_movie->setPaused(true);
    update();
}

void AnimationView::clear()
{
    delete m_movie;
    m_movie = nullptr;
    m_path.clear();
    update();
}

bool AnimationView::isEmpty() const { return !m_movie; }

int AnimationView::frameCount() const { return m_movie ? qMax(1, m_movie->frameCount()) : 0; }

int AnimationView::currentFrame() const { return m_movie ? m_movie->currentFrameNumber() : -1; }

QImage AnimationView::currentImage() const { return m_movie ? m_movie->currentImage() : QImage(); }

void AnimationView::paintEvent(QPaintEvent *)
{
    if (!m_movie)
        return;
    const QImage frame = m_movie->currentImage();
    if (frame.isNull())
        return;
    QSize size = frame.size();
    if (size.width() > width() || size.height() > height())
        size.scale(this->size(), Qt::KeepAspectRatio);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size), frame);
}

void AnimationView::showEvent(QShowEvent *event)
{
    if (m_movie)
        m_movie->setPaused(false);
    QWidget::showEvent(event);
}

void AnimationView::hideEvent(QHideEvent *event)
{
    if (m_movie && m_movie->state() == QMovie::Running)
        m_movie->setPaused(true);
    QWidget::hideEvent(event);
}
