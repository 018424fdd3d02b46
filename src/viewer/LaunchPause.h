#pragma once

#include <Qt>

// The slideshow waits while a program that Vimora launched is in front. The
// launcher (xdg-open) ends at once, so the program cannot be watched: the
// wait lasts from the launch until Vimora is the active application again
// after the program took the front.
class LaunchPause {
public:
    void launched() { m_phase = Phase::Launched; }
    void applicationStateChanged(Qt::ApplicationState state);
    bool holdsSlideshow() const { return m_phase != Phase::None; }

private:
    enum class Phase { None, Launched, InFront };
    Phase m_phase = Phase::None;
};
