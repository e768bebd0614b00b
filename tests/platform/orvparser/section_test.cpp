// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CPLSection.h"
#include "support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

CPLSection withValue(const QString& strValue)
{
    CPLSection section("key", "name");
    section.addKeyValue("k", strValue);
    return section;
}

TEST(SectionTest, DefaultSectionIsEmpty)
{
    const CPLSection section;
    QString text = "x";
    EXPECT_EQ(section.count(), 0);
    EXPECT_EQ(section.getSectionKey(&text), 0);
    EXPECT_EQ(text, QString());
    EXPECT_EQ(section.getSectionName(&text), 0);
    EXPECT_EQ(text, QString());
    EXPECT_FALSE(section.isKeyPresent(QString()));
}

TEST(SectionTest, KeyAndNameAreSetAndRead)
{
    CPLSection section("key", " a name ");
    QString text;
    section.getSectionName(&text, true);
    EXPECT_EQ(text, "a name");
    section.getSectionName(&text, false);
    EXPECT_EQ(text, " a name ");
    section.setSectionName("n");
    section.setSectionKey("k");
    section.getSectionName(&text);
    EXPECT_EQ(text, "n");
    section.getSectionKey(&text);
    EXPECT_EQ(text, "k");
}

TEST(SectionTest, AbsentKeyIsNonZeroAndLeavesTheOutput)
{
    const CPLSection section;
    QString text = "old";
    float single = 1.5F;
    double real = 2.5;
    int whole = 3;
    EXPECT_NE(section.getValue("k", &text), 0);
    EXPECT_NE(section.getValue("k", &single), 0);
    EXPECT_NE(section.getValue("k", &real), 0);
    EXPECT_NE(section.getValue("k", &whole), 0);
    EXPECT_EQ(text, "old");
    EXPECT_EQ(single, 1.5F);
    EXPECT_EQ(real, 2.5);
    EXPECT_EQ(whole, 3);
}

TEST(SectionTest, SetReplacesTheFirstEntryInItsPlace)
{
    CPLSection section;
    section.addKeyValue("a", "1");
    section.addKeyValue("b", "2");
    section.addKeyValue("a", "3");
    section.setValue("a", "new");
    section.setValue("c", 42);
    QStringList keys;
    QStringList values;
    section.getKeyList(&keys);
    section.getValueList(&values);
    EXPECT_EQ(keys, QStringList({"a", "b", "a", "c"}));
    EXPECT_EQ(values, QStringList({"new", "2", "3", "42"}));
    EXPECT_EQ(section.count(), 4);
}

TEST(SectionTest, RemoveTakesEveryEntryOfTheKey)
{
    CPLSection section;
    section.addKeyValue("a", "1");
    section.addKeyValue("b", "2");
    section.addKeyValue("a", "3");
    section.removeKey("a");
    section.removeKey("none");
    EXPECT_EQ(section.count(), 1);
    EXPECT_FALSE(section.isKeyPresent("a"));
    EXPECT_TRUE(section.isKeyPresent("b"));
}

TEST(SectionTest, KeysCompareExactly)
{
    CPLSection section;
    section.addKeyValue("Key", "1");
    EXPECT_TRUE(section.isKeyPresent("Key"));
    EXPECT_FALSE(section.isKeyPresent("key"));
    EXPECT_FALSE(section.isKeyPresent("Key "));
}

TEST(SectionTest, EmptyValueIsPresent)
{
    const CPLSection section = withValue(QString());
    QString text = "old";
    EXPECT_EQ(section.getValue("k", &text), 0);
    EXPECT_EQ(text, QString());
}

struct NumberCase
{
    const char* m_pText;
    bool m_bIsNumber;
    double m_dValue;
};

class NumberTest : public ::testing::TestWithParam<NumberCase>
{
};

INSTANTIATE_TEST_SUITE_P(
    Texts, NumberTest,
    ::testing::Values(NumberCase{"12.5", true, 12.5}, NumberCase{"12.5 s", true, 12.5},
                      NumberCase{"550nm", true, 550.0}, NumberCase{"  -3\t", true, -3.0}, NumberCase{"+4", true, 4.0},
                      NumberCase{"1e-3", true, 0.001}, NumberCase{"1.5E+2 x", true, 150.0}, NumberCase{".5", true, 0.5},
                      NumberCase{"7.", true, 7.0}, NumberCase{"0", true, 0.0}, NumberCase{"50%", true, 50.0},
                      NumberCase{"2 3", true, 2.0}, NumberCase{"\xc3\x84", false, 0}, NumberCase{"", false, 0},
                      NumberCase{" ", false, 0}, NumberCase{"s 12", false, 0}, NumberCase{"12,5", false, 0},
                      NumberCase{"1.234,5", false, 0}, NumberCase{"1.2.3", false, 0},
                      NumberCase{"2024-01-31", false, 0}, NumberCase{"12:30", false, 0}, NumberCase{"nan", false, 0},
                      NumberCase{"inf", false, 0}, NumberCase{"-inf", false, 0}, NumberCase{"infinity", false, 0},
                      NumberCase{"nano", false, 0}, NumberCase{"1e999", false, 0}, NumberCase{"-", false, 0},
                      NumberCase{"+-1", false, 0}, NumberCase{"++1", false, 0}, NumberCase{".", false, 0}));

TEST_P(NumberTest, TextBeginsWithANumberOrIsRefused)
{
    const CPLSection section = withValue(QString::fromUtf8(GetParam().m_pText));
    double real = -99.0;
    float single = -99.0F;
    EXPECT_EQ(section.getValue("k", &real) == 0, GetParam().m_bIsNumber);
    EXPECT_EQ(section.getValue("k", &single) == 0, GetParam().m_bIsNumber);
    EXPECT_EQ(real, GetParam().m_bIsNumber ? GetParam().m_dValue : -99.0);
    EXPECT_EQ(single, GetParam().m_bIsNumber ? static_cast<float>(GetParam().m_dValue) : -99.0F);
}

TEST(SectionTest, WholeNumbersAreReadExactlyAndOthersRefused)
{
    int whole = -7;
    EXPECT_EQ(withValue("2147483647").getValue("k", &whole), 0);
    EXPECT_EQ(whole, std::numeric_limits<int>::max());
    EXPECT_EQ(withValue("-2147483648").getValue("k", &whole), 0);
    EXPECT_EQ(whole, std::numeric_limits<int>::min());
    EXPECT_EQ(withValue("4.0 x").getValue("k", &whole), 0);
    EXPECT_EQ(whole, 4);
    for (const char* pText : {"2147483648", "-2147483649", "1e30", "4.5", "four", ""}) {
        EXPECT_NE(withValue(pText).getValue("k", &whole), 0) << pText;
    }
    EXPECT_EQ(whole, 4);
}

TEST(SectionTest, NumberBeyondTheRangeOfAFloatIsRefused)
{
    float single = 1.0F;
    double real = 1.0;
    EXPECT_NE(withValue("1e39").getValue("k", &single), 0);
    EXPECT_EQ(single, 1.0F);
    EXPECT_EQ(withValue("1e39").getValue("k", &real), 0);
    EXPECT_EQ(real, 1e39);
}

TEST(SectionTest, NumbersAreThoseOfTheCLocaleUnderAnother)
{
    const testsupport::ForeignLocale locale;
    double real = 0.0;
    CPLSection section = withValue("1234.5");
    section.setValue("n", 1234567);
    const int status = section.getValue("k", &real);
    QString text;
    section.getValue("n", &text);
    double comma = 0.0;
    const int commaStatus = withValue("1234,5").getValue("k", &comma);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(real, 1234.5);
    EXPECT_EQ(text, "1234567");
    EXPECT_NE(commaStatus, 0);
}

} // namespace
