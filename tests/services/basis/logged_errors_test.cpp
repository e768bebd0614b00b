// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/LoggedErrors.h"

#include "host/CORVLog.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

void log(const char* pMessage, long nLevel, const char* pExtra = "")
{
    CORVLog::getLogObject()->log(pMessage, pExtra, 0, QString(), nLevel, false);
}

} // namespace

TEST(LoggedErrorsTest, ErrorsOfAnyThreadAreKeptInTheirOrder)
{
    log("too early", CORVLOG_ERROR);
    const LoggedErrors errors;
    log("first", CORVLOG_ERROR);
    log("a warning", CORVLOG_WARNING);
    std::thread([] { log("second", CORVLOG_ERROR); }).join();
    EXPECT_EQ(errors.lines(), (QStringList{"first", "second"}));
}

TEST(LoggedErrorsTest, WhatTheFailureRepeatsIsLeftOut)
{
    const LoggedErrors errors;
    log("SpumKyvo: No solution! Please adjust the setup!", CORVLOG_ERROR);
    EXPECT_EQ(errors.linesBeyond("No solution! Please adjust the setup! (9 components for 8 images)"), QStringList());
    EXPECT_EQ(errors.linesBeyond("something else"), QStringList("No solution! Please adjust the setup!"));
    EXPECT_EQ(errors.linesBeyond(QString()), QStringList("No solution! Please adjust the setup!"));
}

TEST(LoggedErrorsTest, WhatItDoesNotRepeatIsToldOnceWithItsExtraText)
{
    const LoggedErrors errors;
    log("the disk\nis full", CORVLOG_ERROR, "answered: OK");
    log("the disk is full", CORVLOG_ERROR, "answered: OK");
    log("", CORVLOG_ERROR);
    EXPECT_EQ(errors.linesBeyond("cannot be saved"), QStringList("the disk is full | answered: OK"));
}
