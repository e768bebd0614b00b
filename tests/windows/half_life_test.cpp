// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/halfLife.h"

#include <QLocale>
#include <QObject>
#include <QValidator>

#include <gtest/gtest.h>

namespace {

TEST(HalfLifeTest, MinutesToSeconds)
{
    double minutes = -1.0;
    double seconds = -1.0;
    EXPECT_TRUE(parseHalfLife("109.77", minutes, seconds));
    EXPECT_DOUBLE_EQ(minutes, 109.77);
    EXPECT_DOUBLE_EQ(seconds, 6586.2);
    EXPECT_TRUE(parseHalfLife("0.01", minutes, seconds));
    EXPECT_DOUBLE_EQ(seconds, 0.6);
    EXPECT_TRUE(parseHalfLife("1e3", minutes, seconds));
    EXPECT_DOUBLE_EQ(seconds, 60000.0);
}

TEST(HalfLifeTest, WhatIsNoPositiveNumberLeavesTheSecondsAlone)
{
    for (const char* pText : {"", " ", "abc", "0", "0.0", "-2", "nan", "inf", "1e308", "12 min", "1,5"}) {
        double minutes = -1.0;
        double seconds = 77.0;
        EXPECT_FALSE(parseHalfLife(pText, minutes, seconds)) << pText;
        EXPECT_EQ(seconds, 77.0) << pText;
    }
}

TEST(HalfLifeTest, MinutesTellWhatWasReadForTheLog)
{
    double minutes = -1.0;
    double seconds = 0.0;
    EXPECT_FALSE(parseHalfLife("-2.5", minutes, seconds));
    EXPECT_EQ(minutes, -2.5);
    EXPECT_FALSE(parseHalfLife("", minutes, seconds));
    EXPECT_EQ(minutes, 0.0);
}

TEST(HalfLifeTest, NumbersAreThoseOfTheCLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    double minutes = 0.0;
    double seconds = 0.0;
    EXPECT_TRUE(parseHalfLife("1.5", minutes, seconds));
    EXPECT_EQ(seconds, 90.0);
    EXPECT_FALSE(parseHalfLife("1,5", minutes, seconds));
    EXPECT_EQ(halfLifeText(90.0), QString("1.5"));
    EXPECT_EQ(invalidHalfLifeText("A", 1.5, "B"),
              QString("Invalid half life time of Isotope A Half Life (m) 1.5 SequenceID B."));
    QLocale::setDefault(before);
}

TEST(HalfLifeTest, TextInMinutes)
{
    EXPECT_EQ(halfLifeText(6586.2), QString("109.77"));
    EXPECT_EQ(halfLifeText(0.0), QString("0"));
    EXPECT_EQ(halfLifeText(6e8), QString("1e+07"));
}

TEST(HalfLifeTest, LineForTheLog)
{
    EXPECT_EQ(invalidHalfLifeText("F-18", 0.0, "SEQ1"),
              QString("Invalid half life time of Isotope F-18 Half Life (m) 0 SequenceID SEQ1."));
    EXPECT_EQ(invalidHalfLifeText("%2%3", -1234567.0, "%1"),
              QString("Invalid half life time of Isotope %2%3 Half Life (m) -1.23457e+06 SequenceID %1."));
}

TEST(HalfLifeTest, MissingFactorsAreToldWithWhatWasAskedFor)
{
    EXPECT_EQ(noDecayFactorsText("F18", "109.77", "SEQ1", 4),
              "Fail to obtain Decay Factor of Isotope F18 : Half Life (m) 109.77 SequenceID SEQ1 Image Count 4.");
    EXPECT_EQ(noDecayFactorsText("%3", "1", "SEQ1", 4),
              "Fail to obtain Decay Factor of Isotope %3 : Half Life (m) 1 SequenceID SEQ1 Image Count 4.");
}

TEST(HalfLifeValidatorTest, TakesADecimalPointWhateverTheLanguage)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    QObject parent;
    const QValidator* pValidator = halfLifeValidator(&parent);
    const auto verdict = [pValidator](QString text) {
        int nCursor = 0;
        return pValidator->validate(text, nCursor);
    };
    EXPECT_EQ(verdict("109.8"), QValidator::Acceptable);
    EXPECT_EQ(verdict("999999999"), QValidator::Acceptable);
    for (const char* pText : {"109,8", "1,234.5", "abc", "-1", "0.001", "0", "nan", "1e400"}) {
        EXPECT_NE(verdict(pText), QValidator::Acceptable) << pText;
    }
    QLocale::setDefault(before);
}

} // namespace
