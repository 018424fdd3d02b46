#include "support/FakeSeams.h"

#include <QPrinter>

PromptAnswer ScriptedPrompts::ask(const PromptMessage &message)
{
    asked.append(message);
    if (beforeAnswer)
        beforeAnswer(message);
    if (!answers.isEmpty())
        return answers.takeFirst();
    return message.buttons == PromptButtons::YesNo ? PromptAnswer::No
         : message.buttons == PromptButtons::Ok    ? PromptAnswer::Ok
                                                   : PromptAnswer::Cancel;
}

QString ScriptedPrompts::chooseLanguage(const QString &)
{
    ++languageQuestions;
    return languages.isEmpty() ? QString() : languages.takeFirst();
}

QString ScriptedPrompts::chooseFolder(const QString &, const QString &)
{
    return folders.isEmpty() ? QString() : folders.takeFirst();
}

FileDialogAnswer ScriptedPrompts::chooseFile(const FileDialogRequest &request)
{
    fileRequests.append(request);
    FileDialogAnswer answer;
    answer.filterIndex = request.filterIndex;
    const QString path = files.isEmpty() ? QString() : files.takeFirst();
    answer.path = path == AcceptProposed ? request.folder + QLatin1Char('/') + request.fileName : path;
    return answer;
}

bool ScriptedPrompts::choosePrinter(QPrinter &printer, PrintDialogRequest &request)
{
    printRequests.append(request);
    if (printers.isEmpty())
        return false;
    const PrinterChoice choice = printers.takeFirst();
    if (!choice.confirm)
        return false;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(choice.pdfPath);
    printer.setCopyCount(choice.copies);
    return true;
}

LaunchResult RecordingLauncher::start(const QString &program, const QStringList &arguments)
{
    started.append({program, arguments});
    return {true, nextProcessId ? nextProcessId++ : 0};
}

void RecordingLauncher::startWatched(const QString &program, const QStringList &arguments, LaunchWatcher done)
{
    started.append({program, arguments});
    watchers.append(std::move(done));
}

QString MemorySettingsStore::read(const QString &section, const QString &key, const QString &defaultValue) const
{
    const auto s = sections.find(section);
    if (s == sections.end() || !s->contains(key))
        return defaultValue;
    return s->value(key);
}

void MemorySettingsStore::write(const QString &section, const QString &key, const QString &value)
{
    sections[section][key] = value;
    writeLog.append(section + QLatin1Char('/') + key + QLatin1Char('=') + value);
}

void MemorySettingsStore::deleteKey(const QString &section, const QString &key)
{
    if (sections.contains(section))
        sections[section].remove(key);
}

void MemorySettingsStore::deleteSection(const QString &section) { sections.remove(section); }
