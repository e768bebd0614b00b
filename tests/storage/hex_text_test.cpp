// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/hexText.h"

#include <gtest/gtest.h>

TEST(HexTextTest, BytesStandFromTheLeastSignificantToTheMost)
{
    EXPECT_EQ(hexText::fromIndices({1}), QStringLiteral("01000000"));
    EXPECT_EQ(hexText::fromIndices({0x12345678U}), QStringLiteral("78563412"));
    EXPECT_EQ(hexText::fromIndices({0, 255, 65536}), QStringLiteral("00000000FF00000000000100"));
    EXPECT_EQ(hexText::fromIndices({}), QString());
}
