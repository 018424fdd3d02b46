#pragma once

#include <QString>
#include <QStringList>

class QPrinter;
class QWidget;

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

// The file dialog: a file to open, or a destination to write.
struct FileDialogRequest {
    QWidget *owner = nullptr;
    QString title;
    QString folder;          // where it opens
    QString fileName;        // the proposed name
    QStringList filters;     // Qt filter texts, "Bitmap (*.bmp)"
    int filterIndex = 0;     // 0-based, into filters
    QString defaultSuffix;
    bool mustExist = false;  // an existing file is opened; else a destination is chosen
    bool confirmReplace = true; // false when the caller asks before it replaces a file
};

struct FileDialogAnswer {
    QString path;            // "" when cancelled
    int filterIndex = 0;
    QString error;           // why the dialog could not be shown; "" when it could
};

// The print dialog: the page range in and out, the printer set up by it.
struct PrintDialogRequest {
    QWidget *owner = nullptr;
    int minPage = 0, maxPage = 0, fromPage = 0, toPage = 0;
    bool selectionAllowed = true;
};

class Prompts {
public:
    virtual ~Prompts() = default;

    virtual PromptAnswer ask(const PromptMessage &message) = 0;

    // The language chooser: "EN", "IT", or "" when closed without a choice.
    virtual QString chooseLanguage(const QString &currentCode) = 0;

    // A folder chooser; "" when cancelled.
    virtual QString chooseFolder(const QString &title, const QString &startFolder) = 0;

    // File and print dialogs; prompts that show none cancel them.
    virtual FileDialogAnswer chooseFile(const FileDialogRequest &) { return {}; }
    // True when confirmed; the printer then holds the choice (device,
    // copies, range) and request the chosen range.
    virtual bool choosePrinter(QPrinter &, PrintDialogRequest &) { return false; }

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
    FileDialogAnswer chooseFile(const FileDialogRequest &request) override;
    bool choosePrinter(QPrinter &printer, PrintDialogRequest &request) override;
};
