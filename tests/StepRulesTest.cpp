#include "context/StepRules.h"

#include <gtest/gtest.h>

// Each case: where one step from the returned position lands must be where
// the single steps would have ended.
TEST(StepRules, ManyStepsLandWhereSingleStepsWould)
{
    struct Case {
        int current, steps, upperBound;
        bool wraps;
        int start;
    } const cases[] = {
        {0, 5, 9, false, 4},   // forward within the list
        {3, 1, 9, false, 3},   // one step is itself
        {6, 10, 9, false, 8},  // forward stops at the last
        {9, 3, 9, false, 9},   // at the last already: nothing to show
        {6, 10, 9, true, 5},   // the slideshow wraps: 16 mod 10 is 6
        {9, 1, 9, true, 9},    // from the last to the first
        {8, -5, 9, false, 4},  // backward
        {2, -7, 9, false, 1},  // backward stops at the first
        {0, -2, 9, true, 0},   // at the first already, slideshow or not
        {4, 0, 9, false, 4},   // presses that cancelled out
        {0, 3, -1, false, 0},  // empty list
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.current << " + " << c.steps);
        EXPECT_EQ(StepRules::startOfOneStep(c.current, c.steps, c.upperBound, c.wraps), c.start);
    }
}
