#include "commands/WindowKeys.h"

#include "commands/CommandSet.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

WindowKeys::WindowKeys(QWidget *window, const CommandSet &commands, KeepsKey keepsKey)
    : QObject(window), m_window(window), m_commands(commands), m_keepsKey(std::move(keepsKey))
{
    qApp->installEventFilter(this);
}

bool WindowKeys::takesKeyFrom(QWidget *control, const QKeyEvent &key) const
{
    if (!control || control == m_window || control->window() != m_window)
        return false;
    if (!m_commands.hasKey(key.key(), key.modifiers()))
        return false;
    return !(m_keepsKey && m_keepsKey(control, key));
}

bool WindowKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return false;
    auto *key = static_cast<QKeyEvent *>(event);
    if (!watched->isWidgetType() || !takesKeyFrom(static_cast<QWidget *>(watched), *key))
        return false;
    event->accept(); // for ShortcutOverride: no mnemonic takes it either
    if (event->type() == QEvent::KeyPress) {
        QKeyEvent copy(QEvent::KeyPress, key->key(), key->modifiers(), key->text(), key->isAutoRepeat(), key->count());
        QCoreApplication::sendEvent(m_window, &copy);
    }
    return true;
}
