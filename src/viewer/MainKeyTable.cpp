#include "viewer/MainKeyTable.h"

namespace MainKeyTable {

bool hasRow(int key, Qt::KeyboardModifiers modifiers)
{
    const bool keypad = modifiers & Qt::KeypadModifier;
    const Qt::KeyboardModifiers exact = modifiers & ~Qt::KeypadModifier;
    if (key == Qt::Key_Escape)
        return true;
    if (exact == Qt::NoModifier) {
        switch (key) {
        case Qt::Key_Up: case Qt::Key_PageUp: case Qt::Key_Down: case Qt::Key_PageDown:
        case Qt::Key_Space: case Qt::Key_Return: case Qt::Key_Enter: case Qt::Key_Delete:
        case Qt::Key_F2: case Qt::Key_F4: case Qt::Key_F5: case Qt::Key_F6: case Qt::Key_F8:
            return true;
        case Qt::Key_Plus: case Qt::Key_Minus:
            return keypad;
        default:
            return false;
        }
    }
    if (exact == Qt::ControlModifier)
        return key == Qt::Key_A || key == Qt::Key_C || key == Qt::Key_Z;
    if (exact == Qt::AltModifier) {
        switch (key) {
        case Qt::Key_A: case Qt::Key_C: case Qt::Key_D: case Qt::Key_E: case Qt::Key_F: case Qt::Key_G:
        case Qt::Key_I: case Qt::Key_L: case Qt::Key_M: case Qt::Key_N: case Qt::Key_O: case Qt::Key_P:
        case Qt::Key_R: case Qt::Key_S: case Qt::Key_T: case Qt::Key_V: case Qt::Key_W:
            return true;
        default:
            return false;
        }
    }
    return false;
}

bool editsText(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    const Qt::KeyboardModifiers exact = modifiers & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (exact != Qt::NoModifier)
        return false;
    switch (key) {
    case Qt::Key_Backspace: case Qt::Key_Delete: case Qt::Key_Left: case Qt::Key_Right:
    case Qt::Key_Home: case Qt::Key_End:
        return true;
    case Qt::Key_Return: case Qt::Key_Enter: case Qt::Key_Escape:
        return false;
    case Qt::Key_Plus: case Qt::Key_Minus:
        if (modifiers & Qt::KeypadModifier)
            return false; // the keypad's + and - zoom
        [[fallthrough]];
    default:
        return !text.isEmpty() && text.at(0).isPrint();
    }
}

} // namespace MainKeyTable
