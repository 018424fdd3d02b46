#pragma once

#include <QObject>

#include <functional>

class CommandSet;
class QKeyEvent;
class QWidget;

// Gives a window the keys of its command set before its controls: a key
// bound to a command goes to the window wherever the focus is inside it, and
// only the window's command runs (Down never also moves the focused list).
// keepsKey names what a control keeps for itself, such as typing in a text
// field.
class WindowKeys : public QObject {
public:
    using KeepsKey = std::function<bool(QWidget *control, const QKeyEvent &key)>;
    WindowKeys(QWidget *window, const CommandSet &commands, KeepsKey keepsKey = {});

    bool takesKeyFrom(QWidget *control, const QKeyEvent &key) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_window;
    const CommandSet &m_commands;
    KeepsKey m_keepsKey;
};
