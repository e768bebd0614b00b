// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/hexText.h"

#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using Indices = std::vector<std::uint32_t>;

std::vector<double> doublesOf(const QString& text, std::size_t nCount)
{
    std::vector<double> values(nCount, -1.0);
    hexText::toDoubles(text, values.data(), nCount);
    return values;
}

} // namespace

TEST(HexTextTest, BytesStandFromTheLeastSignificantToTheMost)
{
    EXPECT_EQ(hexText::fromIndices({1}), QStringLiteral("01000000"));
    EXPECT_EQ(hexText::fromIndices({0x12345678U}), QStringLiteral("78563412"));
    EXPECT_EQ(hexText::fromIndices({0, 255, 65536}), QStringLiteral("00000000FF00000000000100"));
    EXPECT_EQ(hexText::fromIndices({}), QString());
}

TEST(HexTextTest, ADoubleHasSixteenCharactersOfItsEightBytes)
{
    const double values[] = {1.0, -2.0};
    EXPECT_EQ(hexText::fromDoubles(values, 2), QStringLiteral("000000000000F03F00000000000000C0"));
    EXPECT_EQ(hexText::fromDoubles(values, 0), QString());
}

TEST(HexTextTest, IndicesComeBack)
{
    EXPECT_EQ(hexText::toIndices("00000000FF00000000000100", 3), Indices({0, 255, 65536}));
    EXPECT_EQ(hexText::toIndices("78563412", 1), Indices({0x12345678U}));
    EXPECT_EQ(hexText::toIndices("", 0), Indices());
}

TEST(HexTextTest, SmallLettersAreDigitsToo)
{
    EXPECT_EQ(hexText::toIndices("efBEadDE", 1), Indices({0xDEADBEEFU}));
}

TEST(HexTextTest, AByteWithAnotherCharacterIsZeroAndReadingGoesOn)
{
    EXPECT_EQ(hexText::toIndices("01G2030401000000", 2), Indices({0x04030001U, 1U}));
    EXPECT_EQ(hexText::toIndices("010 0304", 1), Indices({0x04030001U}));
    EXPECT_EQ(hexText::toIndices(QString::fromUtf8("01\u00e42\u0661404"), 1), Indices({0x04000001U}));
    EXPECT_EQ(hexText::toIndices("@G`g/:FF", 1), Indices({0xFF000000U}));
}

TEST(HexTextTest, WhatATextThatIsTooShortLacksIsZero)
{
    EXPECT_EQ(hexText::toIndices("0102", 2), Indices({0x0201U, 0U}));
    EXPECT_EQ(hexText::toIndices("01020", 1), Indices({0x0201U}));
    EXPECT_EQ(hexText::toIndices("", 3), Indices({0, 0, 0}));
    EXPECT_EQ(doublesOf("000000000000F03F", 2), std::vector<double>({1.0, 0.0}));
    EXPECT_EQ(doublesOf("", 2), std::vector<double>({0.0, 0.0}));
}

TEST(HexTextTest, TheCountEndsTheReading)
{
    EXPECT_EQ(hexText::toIndices("0100000002000000", 1), Indices({1}));
    EXPECT_EQ(hexText::toIndices("0100000002000000", 0), Indices());
}

TEST(HexTextTest, ACountIsTakenUpToWhatATextHoldsOrALargeImageHas)
{
    EXPECT_TRUE(hexText::isIndexCount(0, ""));
    EXPECT_TRUE(hexText::isIndexCount(3, "00"));
    EXPECT_TRUE(hexText::isIndexCount(4096 * 4096, ""));
    EXPECT_FALSE(hexText::isIndexCount(4096 * 4096 + 1, ""));
    EXPECT_FALSE(hexText::isIndexCount(-1, ""));
    EXPECT_FALSE(hexText::isIndexCount(1000000000000LL, "00000000"));
    const QString large((4096 * 4096 + 1) * 8, QLatin1Char('0'));
    EXPECT_TRUE(hexText::isIndexCount(4096 * 4096 + 1, large));
    EXPECT_FALSE(hexText::isIndexCount(4096 * 4096 + 2, large));
    EXPECT_FALSE(hexText::isDoubleCount(4096 * 4096 + 1, large));
    EXPECT_TRUE(hexText::isDoubleCount(4096 * 4096, large));
    EXPECT_FALSE(hexText::isDoubleCount(-1, large));
}

TEST(HexTextTest, DoublesComeBackToTheLastBit)
{
    const std::vector<double> values{
        0.0,          -0.0, 0.1, 5e-324, std::numeric_limits<double>::max(), -std::numeric_limits<double>::infinity(),
        std::nan("7")};
    const std::vector<double> back = doublesOf(hexText::fromDoubles(values.data(), values.size()), values.size());
    EXPECT_EQ(std::memcmp(back.data(), values.data(), values.size() * sizeof(double)), 0);
}

RC_GTEST_PROP(HexTextLaw, AnyIndicesComeBack, (const std::vector<std::uint32_t>& indices))
{
    const QString text = hexText::fromIndices(indices);
    RC_ASSERT(text.size() == static_cast<int>(8 * indices.size()));
    RC_ASSERT(hexText::toIndices(text, indices.size()) == indices);
    RC_ASSERT(hexText::toIndices(text.toLower(), indices.size()) == indices);
}

RC_GTEST_PROP(HexTextLaw, AnyTextAndCountGiveThatManyNumbers, (const std::string& bytes))
{
    const std::size_t nCount = *rc::gen::inRange<std::size_t>(0, 64);
    const QString text = QString::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
    RC_ASSERT(hexText::toIndices(text, nCount).size() == nCount);
    RC_ASSERT(doublesOf(text, nCount).size() == nCount);
}
