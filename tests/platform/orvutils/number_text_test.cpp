// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/NumberText.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>
#include <string>

TEST(NumberTextTest, TheShortestTextReadsBackAsTheNumber)
{
    EXPECT_EQ(orv::shortestText(0.1), "0.1");
    EXPECT_EQ(orv::shortestText(700.0), "700");
    EXPECT_EQ(orv::shortestText(-2.5), "-2.5");
    for (const double value : {1.0 / 3.0, 1e-300, std::numeric_limits<double>::max(), 0.1 + 0.2}) {
        EXPECT_EQ(orv::shortestText(value).toDouble(), value) << value;
    }
}

TEST(NumberTextTest, NumbersInNamesCompareByValue)
{
    QStringList names{"C10", "C9", "C010", "C1", "B2", "C", "C9b", "C99999999999999999999", "C9a"};
    std::sort(names.begin(), names.end(), orv::numberAwareLess);
    EXPECT_EQ(names, (QStringList{"B2", "C", "C1", "C9", "C9a", "C9b", "C010", "C10", "C99999999999999999999"}));
}

RC_GTEST_PROP(NumberTextLaw, NameOrderIsStrictAndTotal, ())
{
    const auto name = rc::gen::container<std::string>(rc::gen::element('a', 'b', '0', '1', '2'));
    const QString a = QString::fromStdString(*name);
    const QString b = QString::fromStdString(*name);
    const QString c = QString::fromStdString(*name);
    RC_ASSERT(!orv::numberAwareLess(a, a));
    RC_ASSERT(a == b || orv::numberAwareLess(a, b) != orv::numberAwareLess(b, a));
    if (orv::numberAwareLess(a, b) && orv::numberAwareLess(b, c)) {
        RC_ASSERT(orv::numberAwareLess(a, c));
    }
}
