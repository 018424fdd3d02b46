#pragma once

#include "files/frmList.h"
#include "fullscreen/frmFull.h"
#include "index/frmIndex.h"
#include "viewer/frmMain.h"

#include <type_traits>

// The controls of a window, for tests that read what they show or press
// them as a user would. Windows keep their controls private; nothing else
// in the program reaches another window's controls.
struct WindowProbe {
    static frmMainControls &of(frmMain &window) { return window; }
    static frmIndexControls &of(frmIndex &window) { return window; }
    static frmFullControls &of(frmFull &window) { return window; }
    static frmListControls &of(frmList &window) { return window; }
    static const frmMainControls &of(const frmMain &window) { return window; }
    static const frmIndexControls &of(const frmIndex &window) { return window; }
    static const frmFullControls &of(const frmFull &window) { return window; }
    static const frmListControls &of(const frmList &window) { return window; }
};

// ui(window), for a window given by reference or by any kind of pointer.
template <class Window>
    requires std::is_base_of_v<QWidget, std::remove_const_t<Window>>
auto &ui(Window &window)
{
    return WindowProbe::of(window);
}
template <class Pointer>
    requires(!std::is_base_of_v<QWidget, std::remove_cvref_t<Pointer>>)
auto &ui(const Pointer &window)
{
    return WindowProbe::of(*window);
}
