// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvspinbox/numberText.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using orv::exponentText;
using orv::readTypedNumber;
using orv::TypedNumber;

constexpr double huge = std::numeric_limits<double>::infinity();

struct TypedCase
{
    const char* text;
    const char* locale;
    TypedNumber::State state;
    double value;
};

class TypedNumberTest : public ::testing::TestWithParam<TypedCase>
{
};

TEST_P(TypedNumberTest, IsReadAsFarAsItIsTyped)
{
    const TypedCase& c = GetParam();
    const TypedNumber number = readTypedNumber(QString::fromUtf8(c.text), QLocale(QString::fromLatin1(c.locale)));
    EXPECT_EQ(number.m_eState, c.state) << c.text;
    EXPECT_DOUBLE_EQ(number.m_dValue, c.value) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Table, TypedNumberTest,
    ::testing::Values(
        TypedCase{"109.8", "C", TypedNumber::Complete, 109.8},
        TypedCase{"109,8", "de_DE", TypedNumber::Complete, 109.8},
        TypedCase{"109.8", "de_DE", TypedNumber::Complete, 109.8},
        TypedCase{"1.3e9", "C", TypedNumber::Complete, 1.3e9},
        TypedCase{"1,3E+09", "de_DE", TypedNumber::Complete, 1.3e9},
        TypedCase{"1e-9", "C", TypedNumber::Complete, 1e-9}, TypedCase{"-5", "C", TypedNumber::Complete, -5.0},
        TypedCase{"\xE2\x88\x92"
                  "5",
                  "sv_SE", TypedNumber::Complete, -5.0},
        TypedCase{"+2.", "C", TypedNumber::Complete, 2.0}, TypedCase{".5", "C", TypedNumber::Complete, 0.5},
        TypedCase{" 7 ", "C", TypedNumber::Complete, 7.0}, TypedCase{"1e400", "C", TypedNumber::Complete, huge},
        TypedCase{"-1e400", "C", TypedNumber::Complete, -huge}, TypedCase{"1e-400", "C", TypedNumber::Complete, 0.0},
        // Thousands are not grouped: this point is a decimal one.
        TypedCase{"1.234", "de_DE", TypedNumber::Complete, 1.234},
        TypedCase{"1,234", "en_US", TypedNumber::Invalid, 0.0},
        TypedCase{"\xD9\xA1\xD9\xA2", "ar_EG", TypedNumber::Complete, 12.0},
        TypedCase{"", "C", TypedNumber::Partial, 0.0}, TypedCase{"-", "C", TypedNumber::Partial, 0.0},
        TypedCase{".", "C", TypedNumber::Partial, 0.0}, TypedCase{"1e", "C", TypedNumber::Partial, 0.0},
        TypedCase{"1e+", "C", TypedNumber::Partial, 0.0}, TypedCase{"1.5E-", "C", TypedNumber::Partial, 0.0},
        TypedCase{"nan", "C", TypedNumber::Invalid, 0.0}, TypedCase{"inf", "C", TypedNumber::Invalid, 0.0},
        TypedCase{"1.2.3", "C", TypedNumber::Invalid, 0.0}, TypedCase{"e5", "C", TypedNumber::Invalid, 0.0},
        TypedCase{"0x10", "C", TypedNumber::Invalid, 0.0}, TypedCase{"12a", "C", TypedNumber::Invalid, 0.0}));

struct ShownCase
{
    double value;
    const char* locale;
    const char* text;
};

class ExponentTextTest : public ::testing::TestWithParam<ShownCase>
{
};

TEST_P(ExponentTextTest, HasAnExponentWhereTheNumberNeedsOne)
{
    const ShownCase& c = GetParam();
    EXPECT_EQ(exponentText(c.value, QLocale(QString::fromLatin1(c.locale))).toStdString(), c.text);
}

INSTANTIATE_TEST_SUITE_P(Table, ExponentTextTest,
                         ::testing::Values(ShownCase{0.0, "C", "0"}, ShownCase{150.0, "C", "150"},
                                           ShownCase{0.25, "C", "0.25"}, ShownCase{1.3e9, "C", "1.3e+09"},
                                           ShownCase{1e-9, "C", "1e-09"}, ShownCase{-1.25e7, "C", "-1.25e+07"},
                                           ShownCase{123456.0, "en_US", "123456"},
                                           ShownCase{1.3e9, "de_DE", "1,3e+09"}));

} // namespace
