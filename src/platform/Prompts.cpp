#include "platform/Prompts.h"

#include "core/TechLan.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>

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

FileDialogAnswer QtPrompts::chooseFile(const FileDialogRequest &request)
{
    QWidget *owner = request.owner ? request.owner : QApplication::activeWindow();
    QFileDialog dialog(owner, request.title, request.folder);
    dialog.setAcceptMode(request.mustExist ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(request.mustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.confirmReplace);
    dialog.setNameFilters(request.filters);
    if (request.filterIndex >= 0 && request.filterIndex < request.filters.size())
        dialog.selectNameFilter(request.filters.at(request.filterIndex));
    dialog.setDefaultSuffix(request.defaultSuffix);
    if (!request.fileName.isEmpty())
        dialog.selectFile(request.fileName);
    FileDialogAnswer answer;
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return answer;
    answer.path = dialog.selectedFiles().constFirst();
    answer.filterIndex = qMax(0, int(request.filters.indexOf(dialog.selectedNameFilter())));
    return answer;
}

bool QtPrompts::choosePrinter(QPrinter &printer, PrintDialogRequest &request)
{
    QPrintDialog dialog(&printer, request.owner ? request.owner : QApplication::activeWindow());
    dialog.setOption(QAbstractPrintDialog::PrintSelection, request.selectionAllowed);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, request.maxPage > 0);
    if (request.maxPage > 0) {
        dialog.setMinMax(request.minPage, request.maxPage);
        if (request.fromPage > 0)
            printer.setFromTo(request.fromPage, qMax(request.fromPage, request.toPage));
    }
    if (dialog.exec() != QDialog::Accepted)
        return false;
    request.minPage = dialog.minPage();
    request.maxPage = dialog.maxPage();
    request.fromPage = printer.fromPage();
    request.toPage = printer.toPage();
    return true;
}
