#include "commands/CommandSet.h"

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QWidget>

CommandSet::CommandSet(QWidget *window) : QObject(window)
{
    setObjectName(QStringLiteral("commands"));
}

QAction *CommandSet::action(Command command) const { return m_actions[size_t(command)]; }

QAction *CommandSet::make(Command command)
{
    QAction *&item = m_actions[size_t(command)];
    if (!item) {
        item = new QAction(this);
        item->setObjectName(QLatin1String(Commands::name(command)));
        item->setSeparator(Commands::isSeparator(command));
        if (command == Command::Anim) {
            item->setText(QStringLiteral("GIF"));
            item->setCheckable(true);
        }
        if (const int percent = Commands::zoomPercent(command)) {
            item->setText(QString::number(percent) + QStringLiteral(" %"));
            item->setData(percent);
        }
    }
    return item;
}

QAction *CommandSet::wire(Command command, std::function<void()> run)
{
    QAction *item = make(command);
    connect(item, &QAction::triggered, this, [run = std::move(run)] { run(); });
    return item;
}

void CommandSet::bindKeys(Command command, const QList<QKeySequence> &keys)
{
    make(command);
    m_keys[size_t(command)] = keys;
}

Command CommandSet::commandForKey(int key, Qt::KeyboardModifiers modifiers) const
{
    const QKeyCombination exact(modifiers, Qt::Key(key));
    const QKeyCombination plain(modifiers & ~Qt::KeypadModifier, Qt::Key(key));
    for (size_t i = 0; i < m_keys.size(); ++i)
        for (const QKeySequence &bound : m_keys[i])
            if (bound[0] == exact)
                return Command(i);
    for (size_t i = 0; i < m_keys.size(); ++i)
        for (const QKeySequence &bound : m_keys[i])
            if (bound[0] == plain)
                return Command(i);
    return Command::Count;
}

bool CommandSet::hasKey(int key, Qt::KeyboardModifiers modifiers) const
{
    return commandForKey(key, modifiers) != Command::Count;
}

QAction *CommandSet::actionForKey(int key, Qt::KeyboardModifiers modifiers) const
{
    const Command command = commandForKey(key, modifiers);
    if (command == Command::Count)
        return nullptr;
    QAction *item = action(command);
    return item && item->isEnabled() ? item : nullptr;
}

bool CommandSet::runKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (!hasKey(key, modifiers))
        return false;
    if (beforeRun)
        beforeRun();
    if (QAction *item = actionForKey(key, modifiers))
        item->trigger();
    return true;
}

QMenu *CommandSet::buildMenu(const QList<Command> &entries, QWidget *parent, const char *objectName)
{
    auto *menu = new QMenu(parent);
    menu->setObjectName(QLatin1String(objectName));
    for (const Command command : entries) {
        if (Commands::isSubmenu(command)) {
            QMenu *sub = buildMenu(Commands::zoomEntries(), menu, Commands::name(command));
            sub->setTitle(QStringLiteral("Zoom"));
            m_actions[size_t(command)] = sub->menuAction();
            menu->addAction(sub->menuAction());
            continue;
        }
        menu->addAction(make(command));
    }
    // Offered anew however the popup comes up: nothing is left over from the last time.
    connect(menu, &QMenu::aboutToShow, this, [this] {
        if (beforeRun)
            beforeRun();
    });
    return menu;
}

void CommandSet::drive(QAbstractButton *button, Command command)
{
    QAction *item = make(command);
    connect(button, &QAbstractButton::clicked, item, [this, item] {
        if (beforeRun)
            beforeRun();
        item->trigger();
    });
}

void CommandSet::drive(QAbstractButton *button, Command command, int which)
{
    QAction *item = make(command);
    connect(button, &QAbstractButton::clicked, item, [this, item, which] {
        if (beforeRun)
            beforeRun();
        item->setData(which);
        item->trigger();
    });
}

int CommandSet::which(Command command) const
{
    const QAction *item = action(command);
    return item ? item->data().toInt() : -1;
}

void CommandSet::apply(const CommandOffers::Offers &offers, QMenu *menu,
                       const std::function<QString(int, const char *)> &text)
{
    for (size_t i = 0; i < m_actions.size(); ++i) {
        QAction *item = m_actions[i];
        if (!item)
            continue;
        const CommandOffers::Offer &offer = offers.of[i];
        item->setVisible(offer.visible);
        item->setEnabled(offer.enabled);
        if (item->isCheckable())
            item->setChecked(offer.checked);
    }
    if (QAction *full = action(Command::FullScreen))
        full->setText(offers[Command::FullScreen].caption == CommandOffers::Caption::Restore
                          ? text(703, "Restore") : text(829, "Full Screen"));
    if (menu)
        menu->setDefaultAction(offers.defaultEntry == Command::Count ? nullptr : action(offers.defaultEntry));
}
