#pragma once

#include "core/SettingsStore.h"
#include "platform/Launcher.h"
#include "platform/Prompts.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QStringList>

#include <functional>

// Prompts that answer from a script and remember what they were asked.
class ScriptedPrompts : public Prompts {
public:
    QList<PromptAnswer> answers;   // taken in order; Cancel/No when empty
    QStringList languages;         // answers of the language chooser
    QStringList folders;           // answers of the folder chooser
    QList<PromptMessage> asked;
    std::function<void(const PromptMessage &)> beforeAnswer; // what happens while a question is up
    int languageQuestions = 0;

    // File dialogs: each answer is a path, "" to cancel, or AcceptProposed
    // for the proposed name in the folder the dialog opened in.
    static inline const QString AcceptProposed = QStringLiteral("<proposed>");
    QStringList files;
    QList<FileDialogRequest> fileRequests;
    // Print dialogs: confirmed ones print into a PDF file.
    struct PrinterChoice {
        bool confirm = true;
        QString pdfPath;
        int copies = 1;
    };
    QList<PrinterChoice> printers; // Cancel when empty
    QList<PrintDialogRequest> printRequests;

    PromptAnswer ask(const PromptMessage &message) override;
    QString chooseLanguage(const QString &currentCode) override;
    QString chooseFolder(const QString &title, const QString &startFolder) override;
    FileDialogAnswer chooseFile(const FileDialogRequest &request) override;
    bool choosePrinter(QPrinter &printer, PrintDialogRequest &request) override;
};

// A launcher that starts nothing and records what it was asked to start.
class RecordingLauncher : public Launcher {
public:
    QList<QPair<QString, QStringList>> started;
    LaunchResult start(const QString &program, const QStringList &arguments) override;
    bool isRunning(qint64 processId) const override { return running.contains(processId); }

    // Process ids handed out when nextProcessId is set, and the ones a test
    // says are still running.
    qint64 nextProcessId = 0;
    QList<qint64> running;
    // Watched starts wait here for the test to tell how they ended.
    QList<LaunchWatcher> watchers;
    void startWatched(const QString &program, const QStringList &arguments, LaunchWatcher done) override;
};

// A settings store in memory that logs every write, for checking order.
class MemorySettingsStore : public SettingsStore {
public:
    QMap<QString, QMap<QString, QString>> sections;
    QStringList writeLog; // "section/key=value"

    QString read(const QString &section, const QString &key, const QString &defaultValue = {}) const override;
    void write(const QString &section, const QString &key, const QString &value) override;
    void deleteKey(const QString &section, const QString &key) override;
    void deleteSection(const QString &section) override;
};
