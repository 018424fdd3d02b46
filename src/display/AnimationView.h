#pragma once

#include <QImage>
#include <QString>
#include <QWidget>

class QMovie;

// Plays an animated GIF centred in its area, shrunk to fit when larger:
// what the main and full-screen windows show while GIF animation is on.
// Mouse and drop events are left to the window beneath.
class AnimationView : public QWidget {
    Q_OBJECT
public:
    explicit AnimationView(QWidget *parent = nullptr);
    ~AnimationView() override;

    // Shows the file from its first frame; a file that cannot be read shows
    // nothing and raises no message.
    void Navigate(const QString &path);
    void clear();
    QString location() const { return m_path; }
    bool isEmpty() const;
    int frameCount() const;   // 0 while empty
    int currentFrame() const; // -1 while empty
    QImage currentImage() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QMovie *m_movie = nullptr;
    QString m_path;
};
