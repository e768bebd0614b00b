// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_exception.h"

#include "support/CapturedOutput.h"

#include <gtest/gtest.h>

TEST(ExceptionTest, WhatIsTheStandardTextAndNeverTheMessage)
{
    const XTNT::M_Exception exception("size mismatch");
    const std::exception& base = exception;
    EXPECT_STREQ(base.what(), std::exception().what());
    EXPECT_EQ(exception.message(), "size mismatch");
}

TEST(ExceptionTest, PrintWritesTheMessageAndALineEnd)
{
    const testsupport::CapturedOutput output;
    XTNT::M_Exception("size mismatch").print();
    EXPECT_EQ(output.text(), "size mismatch\n");
}
