#include <QGuiApplication>

#include <cstdlib>

// Painting text and SVG needs a GUI application; the offscreen platform
// needs no display.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static QGuiApplication app(*argc, *argv);
    return 0;
}
