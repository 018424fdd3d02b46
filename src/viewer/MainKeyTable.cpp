#include "viewer/MainKeyTable.h"

namespace MainKeyTable {

QList<Row> rows()
{
    using C = Command;
    const auto alt = [](Qt::Key key) { return QKeySequence(Qt::AltModifier | key); };
    const auto ctrl = [](Qt::Key key) { return QKeySequence(Qt::ControlModifier | key); };
    return {
        {C::CancelSelection, {Qt::Key_Escape, QKeySequence(Qt::ShiftModifier | Qt::Key_Escape)}},
        {C::StepBack, {Qt::Key_Up, Qt::Key_PageUp}},
        {C::StepNext, {Qt::Key_Down, Qt::Key_PageDown}},
        {C::SpaceKey, {Qt::Key_Space}},
        {C::EnterKey, {Qt::Key_Return, Qt::Key_Enter}},
        {C::Language, {Qt::Key_F2}},
        {C::FocusPathBox, {Qt::Key_F4}},
        {C::Refresh, {Qt::Key_F5}},
        {C::Crop, {Qt::Key_F6}},
        {C::ZoomIn, {QKeySequence(Qt::KeypadModifier | Qt::Key_Plus)}},
        {C::ZoomOut, {QKeySequence(Qt::KeypadModifier | Qt::Key_Minus)}},
        {C::Full, {alt(Qt::Key_L)}},
        {C::Fit, {alt(Qt::Key_F)}},
        {C::About, {alt(Qt::Key_O)}},
        {C::Index, {alt(Qt::Key_T)}},
        {C::Grab, {Qt::Key_F8, ctrl(Qt::Key_A)}},
        {C::Clipboard, {ctrl(Qt::Key_C)}},
        {C::Save, {alt(Qt::Key_C)}},
        {C::Print, {alt(Qt::Key_P)}},
        {C::Wall, {alt(Qt::Key_W), alt(Qt::Key_S)}},
        {C::RemoveWall, {alt(Qt::Key_E), alt(Qt::Key_V)}},
        {C::Delete, {Qt::Key_Delete, alt(Qt::Key_D)}},
        {C::Undo, {ctrl(Qt::Key_Z)}},
        {C::Add, {alt(Qt::Key_A)}},
        {C::Remove, {alt(Qt::Key_R)}},
        {C::Global, {alt(Qt::Key_G)}},
        {C::Move, {alt(Qt::Key_M)}},
        {C::Rename, {alt(Qt::Key_N)}},
        {C::Info, {alt(Qt::Key_I)}},
    };
}

bool hasRow(int key, Qt::KeyboardModifiers modifiers)
{
    const QKeyCombination exact(modifiers, Qt::Key(key));
    const QKeyCombination plain(modifiers & ~Qt::KeypadModifier, Qt::Key(key));
    for (const Row &row : rows())
        for (const QKeySequence &bound : row.keys)
            if (bound[0] == exact || bound[0] == plain)
                return true;
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
