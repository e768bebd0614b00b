// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/printable.h"

#include <gtest/gtest.h>

TEST(PrintableTest, WhatSteersATerminalIsShown)
{
    struct Case
    {
        ushort code;
        const char* shown;
    };
    for (const Case& c :
         {Case{0x00, "\\x00"}, Case{0x07, "\\x07"}, Case{0x0b, "\\x0b"}, Case{0x0c, "\\x0c"}, Case{'\r', "\\x0d"},
          Case{0x1b, "\\x1b"}, Case{0x7f, "\\x7f"}, Case{0x85, "\\x85"}, Case{0x9b, "\\x9b"}, Case{0x061c, "\\u061c"},
          Case{0x200e, "\\u200e"}, Case{0x200f, "\\u200f"}, Case{0x2028, "\\u2028"}, Case{0x2029, "\\u2029"},
          Case{0x202a, "\\u202a"}, Case{0x202e, "\\u202e"}, Case{0x2066, "\\u2066"}, Case{0x2069, "\\u2069"},
          Case{0xfeff, "\\ufeff"}}) {
        const QString text = 'a' + QString(QChar(c.code)) + 'b';
        const QString shown = 'a' + QString::fromLatin1(c.shown) + 'b';
        EXPECT_EQ(orv::printable(text), shown);
        EXPECT_EQ(orv::printableLine(text), shown);
    }
}

TEST(PrintableTest, LettersOfAllPeopleStay)
{
    const QString text = QString::fromUtf8("a\tb \u00e4\u00a0\u05d0\u4e2d\u200d\U0001F42D");
    EXPECT_EQ(orv::printable(text), text);
    EXPECT_EQ(orv::printableLine(text), text);
}

TEST(PrintableTest, LineEndsStayInATextAndAreShownInALine)
{
    EXPECT_EQ(orv::printable("a\nb\n"), "a\nb\n");
    EXPECT_EQ(orv::printableLine("a\nb\r\nc"), "a\\x0ab\\x0d\\x0ac");
}

TEST(PrintableTest, JsonKeepsItsMeaning)
{
    EXPECT_EQ(orv::printableJson("{\n \"a\": \"\xc2\x85\xe2\x80\xa8\"\n}"), "{\n \"a\": \"\\u0085\\u2028\"\n}");
}
