#pragma once

#include <QString>
#include <Qt>

// Which keys the main window takes before its controls: the rows of its
// key table, wherever the focus is, except what a text field being edited
// keeps for itself.
namespace MainKeyTable {

// Whether the table has a row for key with exactly these modifiers
// (the keypad flag aside, except for the keypad's + and -).
bool hasRow(int key, Qt::KeyboardModifiers modifiers);

// Whether a text field keeps the key: typing, and the keys that move or
// delete within the text. Enter and the rest belong to the table.
bool editsText(int key, Qt::KeyboardModifiers modifiers, const QString &text);

} // namespace MainKeyTable
