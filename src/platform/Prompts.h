#pragma once

#include <QString>
#include <QStringList>

// Every message box and dialog goes through this seam: production shows Qt
// dialogs, tests give scripted answers.
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class PromptIcon { None, Critical, Question, Exclamation, Information };
enum class PromptAnswer { Ok, Cancel, Yes, No, Retry };

struct PromptMessage {
    QString text;
    PromptButtons buttons = PromptButtons::Ok;
    PromptIcon icon = PromptIcon::None;
    int defaultButton = 1; // 1-based, as the buttons are listed
    QString title = QStringLiteral("Vimora");
};

class Prompts {
public:
    virtual ~Prompts() = default;

    virtual PromptAnswer ask(const PromptMessage &message) = 0;

    // The language chooser: "EN", "IT", or "" when closed without a choice.
    virtual QString chooseLanguage(const QString &currentCode) = 0;

    // A folder chooser; "" when cancelled.
    virtual QString chooseFolder(const QString &title, const QString &startFolder) = 0;

    // Convenience forms of ask().
    PromptAnswer confirm(const QString &text); // Yes/No, question icon, No as default
    void inform(const QString &text, PromptIcon icon = PromptIcon::Information);
};

// The production prompts: Qt's dialogs, modal to the active window.
class QtPrompts : public Prompts {
public:
    PromptAnswer ask(const PromptMessage &message) override;
    QString chooseLanguage(const QString &currentCode) override;
    QString chooseFolder(const QString &title, const QString &startFolder) override;
};
