#include "context/PartRules.h"

#include <gtest/gtest.h>

TEST(PartRules, DecodesWhatShowsWithAMarginAndTheWholeWhenMostShows)
{
    const QSize natural(6000, 4000);
    // The top-left window of a large picture: a quarter of the window more on each side, clipped.
    EXPECT_EQ(PartRules::partToDecode({0, 0, 1200, 800}, natural), QRect(0, 0, 1500, 1000));
    EXPECT_EQ(PartRules::partToDecode({2000, 1000, 1200, 800}, natural), QRect(1700, 800, 1800, 1200));
    EXPECT_EQ(PartRules::partToDecode({5000, 3500, 1000, 500}, natural), QRect(4750, 3375, 1250, 625));
    // Most of the picture shows: cutting is not worth it.
    EXPECT_FALSE(PartRules::partToDecode({0, 0, 5000, 3000}, natural).isValid());
    EXPECT_FALSE(PartRules::partToDecode({0, 0, 400, 300}, QSize(500, 400)).isValid());
    // Nothing shows.
    EXPECT_FALSE(PartRules::partToDecode({7000, 0, 100, 100}, natural).isValid());
}

TEST(PartRules, ActualSizeShowsTheTopLeftOfALargePictureAndAllOfASmallOne)
{
    EXPECT_EQ(PartRules::visibleAtActualSize({6000, 4000}, {1280, 700}), QRect(0, 0, 1280, 700));
    EXPECT_EQ(PartRules::visibleAtActualSize({800, 4000}, {1280, 700}), QRect(0, 0, 800, 700));
    EXPECT_EQ(PartRules::visibleAtActualSize({640, 480}, {1280, 700}), QRect(0, 0, 640, 480));
    EXPECT_FALSE(PartRules::visibleAtActualSize({}, {1280, 700}).isValid());
}
