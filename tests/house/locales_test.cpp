// SPDX-License-Identifier: GPL-3.0-or-later
// The locales that tests rely on are there and differ from the one of C.
#include "support/ForeignLocale.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <langinfo.h>

#include <gtest/gtest.h>

namespace {

std::string half()
{
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 0.5);
    return text;
}

} // namespace

TEST(LocalesTest, ACommaLocaleIsThereAndGoesAgain)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    {
        const testsupport::ForeignLocale locale;
        EXPECT_EQ(half(), "0,5");
        EXPECT_EQ(std::strtod("1,5", nullptr), 1.5);
        EXPECT_EQ(QLocale().decimalPoint(), QLatin1Char(','));
        EXPECT_STREQ(nl_langinfo(CODESET), "UTF-8");
    }
    EXPECT_EQ(half(), "0.5");
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
    EXPECT_EQ(QLocale().decimalPoint(), QLatin1Char('.'));
    EXPECT_FALSE(qEnvironmentVariableIsSet("LOCPATH"));
}

TEST(LocalesTest, OneOfAnotherCodePageIsThere)
{
    const testsupport::ForeignLocale locale("de_DE.ISO-8859-1");
    EXPECT_STREQ(nl_langinfo(CODESET), "ISO-8859-1");
}
