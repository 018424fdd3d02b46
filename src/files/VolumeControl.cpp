#include "files/VolumeControl.h"

#include "core/MessageCatalogue.h"
#include "platform/Launcher.h"
#include "platform/Prompts.h"

const QList<QStringList> &VolumeControl::mixers()
{
    static const QList<QStringList> list{
        {"pavucontrol"}, {"pavucontrol-qt"}, {"kmix"}, {"xfce4-mixer"}, {"gnome-control-center", "sound"}};
    return list;
}

void VolumeControl::OpenVolumeControl()
{
    if (m_taskId != 0 && m_launcher.isRunning(m_taskId)) {
        // Raising another program's window is the window manager's call; on
        // X11 xdotool asks it, on Wayland nothing may, and the mixer stays
        // where it is.
        if (const QString xdotool = m_find(QStringLiteral("xdotool")); !xdotool.isEmpty())
            m_launcher.start(xdotool, {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--pid"),
                                       QString::number(m_taskId), QStringLiteral("windowactivate")});
        return;
    }
    // Not started yet, or closed by the user since: start it afresh.
    for (const QStringList &mixer : mixers()) {
        const QString program = m_find(mixer.first());
        if (program.isEmpty())
            continue;
        const LaunchResult result = m_launcher.start(program, mixer.mid(1));
        m_taskId = result.started ? result.processId : 0;
        return;
    }
    m_prompts.inform(m_messages.GetMsg(1121, QStringLiteral("No sound mixer was found. Install pavucontrol, "
                                                              "pavucontrol-qt, kmix, xfce4-mixer or gnome-control-center.")),
                     PromptIcon::Exclamation);
}
