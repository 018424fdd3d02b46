#include "platform/MovieControlBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QStyle>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace {

QString clockText(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0)
        seconds = 0;
    const qint64 whole = static_cast<qint64>(std::floor(seconds));
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

// The seek slider counts tenths of a second: fine enough for a drag,
// coarse enough to stay far from int's limit on long streams.
constexpr double SeekUnitsPerSecond = 10.0;

} // namespace

QString movieTimeText(double position, double duration)
{
    return clockText(position) + QStringLiteral(" / ") + clockText(duration);
}

MovieControlBar::MovieControlBar(QWidget *parent)
    : QWidget(parent)
    , m_playPause(new QToolButton(this))
    , m_stop(new QToolButton(this))
    , m_seek(new QSlider(Qt::Horizontal, this))
    , m_time(new QLabel(this))
    , m_volume(new QSlider(Qt::Horizontal, this))
{
    setAutoFillBackground(true);
    setCursor(Qt::ArrowCursor);
    // Keys belong to the player (space pauses, others leave full screen).
    for (QWidget *control : {static_cast<QWidget *>(m_playPause), static_cast<QWidget *>(m_stop),
                             static_cast<QWidget *>(m_seek), static_cast<QWidget *>(m_volume)})
        control->setFocusPolicy(Qt::NoFocus);

    m_playPause->setAutoRaise(true);
    m_stop->setAutoRaise(true);
    m_playPause->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    m_stop->setIcon(style()->standardIcon(QStyle::SP_MediaStop));
    // Icons alone say nothing to a screen reader.
    m_playPause->setAccessibleName(QStringLiteral("Play"));
    m_stop->setAccessibleName(QStringLiteral("Stop"));
    m_seek->setRange(0, 0);
    m_volume->setRange(0, 100);
    m_volume->setValue(100);
    m_volume->setMaximumWidth(70);
    m_time->setText(movieTimeText(0, 0));
    setControlNames(QStringLiteral("Play/Pause"), QStringLiteral("Stop"), QStringLiteral("Position"),
                    QStringLiteral("Volume"));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 1, 4, 1);
    layout->setSpacing(3);
    layout->addWidget(m_playPause);
    layout->addWidget(m_stop);
    layout->addWidget(m_seek, 1);
    layout->addWidget(m_time);
    layout->addWidget(m_volume);

    connect(m_playPause, &QToolButton::clicked, this, &MovieControlBar::playPauseClicked);
    connect(m_stop, &QToolButton::clicked, this, &MovieControlBar::stopClicked);
    // actionTriggered fires for drags, clicks on the groove and keys, never
    // for the position updates that setTimes makes.
    connect(m_seek, &QSlider::actionTriggered, this, [this] {
        emit seekRequested(m_seek->sliderPosition() / SeekUnitsPerSecond);
    });
    connect(m_volume, &QSlider::actionTriggered, this, [this] { emit volumeRequested(m_volume->sliderPosition()); });
    setMediaOpen(false);
}

void MovieControlBar::setPlaying(bool playing)
{
    if (playing == m_playing)
        return;
    m_playing = playing;
    m_playPause->setIcon(style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    m_playPause->setAccessibleName(playing ? QStringLiteral("Pause") : QStringLiteral("Play"));
}

void MovieControlBar::setTimes(double position, double duration)
{
    m_duration = duration;
    const QString text = movieTimeText(position, duration);
    if (m_time->text() != text)
        m_time->setText(text);
    if (m_seek->isSliderDown())
        return;
    const int maximum = duration > 0 ? static_cast<int>(duration * SeekUnitsPerSecond) : 0;
    if (m_seek->maximum() != maximum)
        m_seek->setRange(0, maximum);
    m_seek->setValue(static_cast<int>(std::max(0.0, position) * SeekUnitsPerSecond));
}

void MovieControlBar::setVolume(int volume)
{
    if (!m_volume->isSliderDown())
        m_volume->setValue(volume);
}

void MovieControlBar::setControlNames(const QString &playPause, const QString &stop, const QString &position,
                                      const QString &volume)
{
    m_playPause->setAccessibleName(playPause);
    m_stop->setAccessibleName(stop);
    m_seek->setAccessibleName(position);
    m_volume->setAccessibleName(volume);
}

void MovieControlBar::setMediaOpen(bool open)
{
    m_playPause->setEnabled(open);
    m_stop->setEnabled(open);
    m_seek->setEnabled(open);
    if (!open)
        setTimes(0, 0);
}

QString MovieControlBar::timeText() const
{
    return m_time->text();
}

void MovieControlBar::resizeEvent(QResizeEvent *event)
{
    // Index cells are narrow: the seek slider matters more than the rest.
    m_volume->setVisible(width() >= 260);
    m_time->setVisible(width() >= 180);
    QWidget::resizeEvent(event);
}
