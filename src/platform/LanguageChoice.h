#pragma once

#include <QString>

struct AppState;
class Prompts;

// Shows the chooser; a language picked is stored and takes effect at once
// (message section and help file). Returns the language in force.
QString ChooseLanguage(AppState &state, Prompts &prompts);

// The help file of a language: folder + "PR_" + code + ".html".
QString helpFilePath(const QString &programFolder, const QString &languageCode);
