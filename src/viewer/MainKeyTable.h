#pragma once

#include "commands/Commands.h"

#include <QKeySequence>
#include <QList>
#include <QString>
#include <Qt>

// The main window's key table: which command each key runs, wherever the
// focus is in the window, except what a text field being edited keeps.
namespace MainKeyTable {

struct Row {
    Command command;
    QList<QKeySequence> keys;
};
QList<Row> rows();

// Whether the table has a row for key with exactly these modifiers
// (the keypad flag aside, except for the keypad's + and -).
bool hasRow(int key, Qt::KeyboardModifiers modifiers);

// Whether a text field keeps the key: typing, and the keys that move or
// delete within the text. Enter and the rest belong to the table.
bool editsText(int key, Qt::KeyboardModifiers modifiers, const QString &text);

} // namespace MainKeyTable
