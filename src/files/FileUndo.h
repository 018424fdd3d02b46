#pragma once

#include "files/FileOperations.h"

#include <QList>
#include <QString>

// One file a chore took from its place.
struct ChoreStep {
    QString original;       // where the file was
    QString now;            // where the chore put it: a new name, another folder, the Trash's copy
    bool favourite = false; // it was on the favourites list, which it left
};

enum class ChoreKind { Trash, Move, Rename };

// What it takes to put back one file chore: every file a command moved,
// renamed or sent to the Trash at once.
struct UndoRecord {
    ChoreKind kind = ChoreKind::Move;
    QList<ChoreStep> steps;
};

namespace FileUndo {

// Where a file in the Trash goes back to: its ".trashinfo", else the
// path recorded when it went.
QString putBackPathOf(const ChoreStep &step);

struct Result {
    QList<ChoreStep> putBack; // done: each file is at its original path again
    QList<ChoreStep> kept;    // the user kept the file that took the name: may be tried again
};

// Puts the chore's files back, the last first. A file that has since
// taken an original name is replaced only after the replace question;
// across file systems a file goes by the same checked copy as a move.
// A file gone from where the chore put it is reported and forgotten.
Result undo(const UndoRecord &record, const FileContext &context);

} // namespace FileUndo

// The file chores of this run, the last on top.
class UndoHistory {
public:
    void record(UndoRecord record);
    bool isEmpty() const { return m_records.isEmpty(); }
    UndoRecord takeLast() { return m_records.takeLast(); }

private:
    QList<UndoRecord> m_records;
};
