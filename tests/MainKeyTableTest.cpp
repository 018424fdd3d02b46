#include "viewer/MainKeyTable.h"

#include <gtest/gtest.h>

TEST(MainKeyTable, TheTableKeysWithTheirExactModifiers)
{
    using MainKeyTable::hasRow;
    EXPECT_TRUE(hasRow(Qt::Key_Down, Qt::NoModifier));
    EXPECT_TRUE(hasRow(Qt::Key_PageUp, Qt::NoModifier));
    EXPECT_TRUE(hasRow(Qt::Key_Enter, Qt::KeypadModifier));
    EXPECT_TRUE(hasRow(Qt::Key_Plus, Qt::KeypadModifier));
    EXPECT_FALSE(hasRow(Qt::Key_Plus, Qt::NoModifier)); // only the keypad's zooms
    EXPECT_TRUE(hasRow(Qt::Key_T, Qt::AltModifier));
    EXPECT_FALSE(hasRow(Qt::Key_T, Qt::AltModifier | Qt::ShiftModifier)); // compared for equality
    EXPECT_FALSE(hasRow(Qt::Key_T, Qt::NoModifier));
    EXPECT_TRUE(hasRow(Qt::Key_C, Qt::ControlModifier));
    EXPECT_FALSE(hasRow(Qt::Key_X, Qt::ControlModifier));
    EXPECT_FALSE(hasRow(Qt::Key_Tab, Qt::NoModifier)); // moves the focus as usual
    EXPECT_TRUE(hasRow(Qt::Key_Escape, Qt::ShiftModifier));
}

TEST(MainKeyTable, ATextBeingEditedKeepsTypingAndItsOwnMoves)
{
    using MainKeyTable::editsText;
    EXPECT_TRUE(editsText(Qt::Key_A, Qt::NoModifier, "a"));
    EXPECT_TRUE(editsText(Qt::Key_A, Qt::ShiftModifier, "A"));
    EXPECT_TRUE(editsText(Qt::Key_5, Qt::KeypadModifier, "5"));
    EXPECT_TRUE(editsText(Qt::Key_Space, Qt::NoModifier, " ")); // paths hold blanks
    for (const int key : {Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End})
        EXPECT_TRUE(editsText(key, Qt::NoModifier, {}));
    EXPECT_FALSE(editsText(Qt::Key_Return, Qt::NoModifier, "\r")); // Enter does what the table says
    EXPECT_FALSE(editsText(Qt::Key_Down, Qt::NoModifier, {}));
    EXPECT_FALSE(editsText(Qt::Key_Plus, Qt::KeypadModifier, "+"));
    EXPECT_FALSE(editsText(Qt::Key_T, Qt::AltModifier, "t"));
    EXPECT_FALSE(editsText(Qt::Key_C, Qt::ControlModifier, "\x03"));
}
