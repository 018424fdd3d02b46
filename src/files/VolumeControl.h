#pragma once

#include "files/ShellLaunch.h"

#include <QString>
#include <QStringList>

class Launcher;
class MessageCatalogue;
class Prompts;

// The desktop's sound mixer, started on the first press of the index's
// volume button and brought forward on the next ones.
class VolumeControl {
public:
    VolumeControl(Launcher &launcher, Prompts &prompts, const MessageCatalogue &messages,
                  ShellLaunch::FindProgram find = ShellLaunch::findProgram)
        : m_launcher(launcher), m_prompts(prompts), m_messages(messages), m_find(std::move(find)) {}

    // Mixers in the order they are tried, each with its arguments.
    static const QList<QStringList> &mixers();

    // Says so when no mixer is installed.
    void OpenVolumeControl();
    qint64 VolumeTaskId() const { return m_taskId; }

private:
    Launcher &m_launcher;
    Prompts &m_prompts;
    const MessageCatalogue &m_messages;
    ShellLaunch::FindProgram m_find;
    qint64 m_taskId = 0;
};
