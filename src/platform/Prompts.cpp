#include "platform/Prompts.h"

#include "core/TechLan.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>

PromptAnswer Prompts::confirm(const QString &text)
{
    return ask({text, PromptButtons::YesNo, PromptIcon::Question, 2});
}

void Prompts::inform(const QString &text, PromptIcon icon)
{
    ask({text, PromptButtons::Ok, icon, 1});
}

namespace {

struct ButtonChoice {
    QMessageBox::StandardButton button;
    PromptAnswer answer;
};

QList<ButtonChoice> buttonsFor(PromptButtons buttons)
{
    switch (buttons) {
    case PromptButtons::Ok:
        return {{QMessageBox::Ok, PromptAnswer::Ok}};
    case PromptButtons::OkCancel:
        return {{QMessageBox::Ok, PromptAnswer::Ok}, {QMessageBox::Cancel, PromptAnswer::Cancel}};
    case PromptButtons::YesNo:
        return {{QMessageBox::Yes, PromptAnswer::Yes}, {QMessageBox::No, PromptAnswer::No}};
    case PromptButtons::YesNoCancel:
        return {{QMessageBox::Yes, PromptAnswer::Yes},
                {QMessageBox::No, PromptAnswer::No},
                {QMessageBox::Cancel, PromptAnswer::Cancel}};
    case PromptButtons::RetryCancel:
        return {{QMessageBox::Retry, PromptAnswer::Retry}, {QMessageBox::Cancel, PromptAnswer::Cancel}};
    }
    return {{QMessageBox::Ok, PromptAnswer::Ok}};
}

QMessageBox::Icon iconFor(PromptIcon icon)
{
    switch (icon) {
    case PromptIcon::Critical:
        return QMessageBox::Critical;
    case PromptIcon::Question:
        return QMessageBox::Question;
    case PromptIcon::Exclamation:
        return QMessageBox::Warning;
    case PromptIcon::Information:
        return QMessageBox::Information;
    case PromptIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

PromptAnswer cancelAnswer(const QList<ButtonChoice> &buttons)
{
    for (const ButtonChoice &choice : buttons)
        if (choice.answer == PromptAnswer::Cancel || choice.answer == PromptAnswer::No)
            return choice.answer;
    return buttons.front().answer;
}

} // namespace

PromptAnswer QtPrompts::ask(const PromptMessage &message)
{
    const QList<ButtonChoice> buttons = buttonsFor(message.buttons);
    QMessageBox box(iconFor(message.icon), message.title, message.text, QMessageBox::NoButton,
                    QApplication::activeWindow());
    for (const ButtonChoice &choice : buttons)
        box.addButton(choice.button);
    const int defaultIndex = qBound(0, message.defaultButton - 1, int(buttons.size()) - 1);
    box.setDefaultButton(buttons.at(defaultIndex).button);
    const auto clicked = QMessageBox::StandardButton(box.exec());
    for (const ButtonChoice &choice : buttons)
        if (choice.button == clicked)
            return choice.answer;
    return cancelAnswer(buttons); // closed with Escape or the window manager
}

QString QtPrompts::chooseLanguage(const QString &currentCode)
{
    TechLan chooser(currentCode, QApplication::activeWindow());
    chooser.exec();
    return chooser.chosenCode();
}

QString QtPrompts::chooseFolder(const QString &title, const QString &startFolder)
{
    return QFileDialog::getExistingDirectory(QApplication::activeWindow(), title, startFolder);
}
