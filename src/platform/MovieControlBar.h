#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QSlider;
class QToolButton;

// "m:ss / m:ss" for a position and a duration in seconds; minutes are not
// wrapped into hours, unknown or negative times read 0:00.
QString movieTimeText(double position, double duration);

// The strip under the video: play/pause, stop, seek, time and volume. It only
// reports what the user asks for; the player decides.
class MovieControlBar : public QWidget {
    Q_OBJECT
public:
    explicit MovieControlBar(QWidget *parent = nullptr);

    void setPlaying(bool playing);
    void setTimes(double position, double duration);
    void setVolume(int volume);
    void setMediaOpen(bool open);
    // What a screen reader calls the controls, which show icons only.
    void setControlNames(const QString &playPause, const QString &stop, const QString &position,
                         const QString &volume);

    bool isPlayingShown() const { return m_playing; }
    QString timeText() const;

signals:
    void playPauseClicked();
    void stopClicked();
    void seekRequested(double seconds);
    void volumeRequested(int volume);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QToolButton *m_playPause;
    QToolButton *m_stop;
    QSlider *m_seek;
    QLabel *m_time;
    QSlider *m_volume;
    bool m_playing = false;
    double m_duration = 0;
};
