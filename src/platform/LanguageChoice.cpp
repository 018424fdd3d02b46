#include "platform/LanguageChoice.h"

#include "core/AppState.h"
#include "core/MessageCatalogue.h"
#include "core/SettingsStore.h"
#include "platform/Prompts.h"

QString ChooseLanguage(AppState &state, Prompts &prompts)
{
    const QString chosen = prompts.chooseLanguage(state.messages.languageCode());
    if (!chosen.isEmpty()) {
        state.messages.setLanguageCode(chosen);
        state.settings.write(QStringLiteral("UserDef"), QStringLiteral("Language"), chosen);
    }
    state.HelpFilePath = helpFilePath(state.ProgramFolder, state.messages.languageCode());
    return state.messages.languageCode();
}

QString helpFilePath(const QString &programFolder, const QString &languageCode)
{
    return programFolder + QStringLiteral("PR_") + languageCode + QStringLiteral(".html");
}
