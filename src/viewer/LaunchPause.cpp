#include "viewer/LaunchPause.h"

void LaunchPause::applicationStateChanged(Qt::ApplicationState state)
{
    if (state == Qt::ApplicationActive) {
        if (m_phase == Phase::InFront)
            m_phase = Phase::None;
    } else if (m_phase == Phase::Launched) {
        m_phase = Phase::InFront;
    }
}
