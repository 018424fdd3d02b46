#pragma once

#include "commands/CommandOffers.h"
#include "commands/Commands.h"

#include <QAction>
#include <QKeySequence>
#include <QList>
#include <QObject>

#include <array>
#include <functional>

class QAbstractButton;
class QKeyEvent;
class QMenu;
class QWidget;

// A window's commands as actions: one per command, named after it, run by
// the window's handler. Popups, buttons and keys are all built from these.
class CommandSet : public QObject {
    Q_OBJECT
public:
    explicit CommandSet(QWidget *window);

    QAction *action(Command command) const;
    // The action, made on first use; separators too.
    QAction *operator[](Command command) { return make(command); }

    template <class Receiver>
    QAction *wire(Command command, Receiver *receiver, void (Receiver::*handler)())
    {
        QAction *item = make(command);
        connect(item, &QAction::triggered, receiver, handler);
        return item;
    }
    QAction *wire(Command command, std::function<void()> run);

    // Keys that run a command while the focus is anywhere in the window.
    void bindKeys(Command command, const QList<QKeySequence> &keys);
    // The enabled action bound to this key, or null (the keypad's flag
    // counts only where a key is bound with it).
    QAction *actionForKey(int key, Qt::KeyboardModifiers modifiers) const;
    bool hasKey(int key, Qt::KeyboardModifiers modifiers) const;
    // Runs the command of the key, if any is bound and enabled.
    bool runKey(int key, Qt::KeyboardModifiers modifiers);
    // Called before a key or a button runs a command, to offer for the
    // file in hand first.
    std::function<void()> beforeRun;

    // The popup of these entries; the Zoom entry is a submenu of its percents.
    QMenu *buildMenu(const QList<Command> &entries, QWidget *parent, const char *objectName);
    // A button runs the command and follows its enabled state.
    void drive(QAbstractButton *button, Command command);
    // A button of one of several alike (a cell's): while the command runs,
    // its action's data says which.
    void drive(QAbstractButton *button, Command command, int which);
    // Which one the command runs for (see drive).
    int which(Command command) const;

    // Visible, enabled, checked and caption as offered; captions come from
    // the catalogue of the language in use.
    void apply(const CommandOffers::Offers &offers, QMenu *menu, const std::function<QString(int, const char *)> &text);

private:
    QAction *make(Command command);
    Command commandForKey(int key, Qt::KeyboardModifiers modifiers) const;

    std::array<QAction *, size_t(Command::Count)> m_actions{};
    std::array<QList<QKeySequence>, size_t(Command::Count)> m_keys{};
};
