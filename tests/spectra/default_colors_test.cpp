// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/DefaultColors.h"

#include <QColor>

#include <gtest/gtest.h>

TEST(DefaultColorsTest, AreTheTwelveNamesInTheirOrder)
{
    const QStringList expected{"lime", "red",    "blue",  "magenta", "gold",   "cyan",
                               "pink", "tomato", "green", "brown",   "silver", "black"};
    EXPECT_EQ(defaultSpectrumColors(), expected);
}

TEST(DefaultColorsTest, AreAllUnderstoodByQColor)
{
    for (const QString& name : defaultSpectrumColors()) {
        QColor color;
        color.setNamedColor(name);
        EXPECT_TRUE(color.isValid()) << qPrintable(name);
    }
}

TEST(DefaultColorsTest, RepeatAfterTwelve)
{
    EXPECT_EQ(defaultSpectrumColor(0), "lime");
    EXPECT_EQ(defaultSpectrumColor(11), "black");
    EXPECT_EQ(defaultSpectrumColor(12), "lime");
    EXPECT_EQ(defaultSpectrumColor(25), "red");
    EXPECT_EQ(defaultSpectrumColor(-3), "lime");
}

TEST(DefaultColorsTest, PositionIsThatOfTheNameInAnyCase)
{
    for (int i = 0; i < defaultSpectrumColors().size(); ++i) {
        EXPECT_EQ(defaultColorPosition(defaultSpectrumColors().at(i).toUpper()), i);
    }
    EXPECT_EQ(defaultColorPosition("chartreuse"), -1);
    EXPECT_EQ(defaultColorPosition(""), -1);
}
