// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ExitStatus.h"

#include "services/basis/Failure.h"

#include <gtest/gtest.h>

TEST(ExitStatusTest, EachKindOfFailureHasItsOwn)
{
    EXPECT_EQ(ExitStatus::of(Failure(QStringLiteral("no"))), 1);
    EXPECT_EQ(ExitStatus::of(Failure(QStringLiteral("no"), Failure::Kind::BadRequest)), 2);
    EXPECT_EQ(ExitStatus::of(Failure(QStringLiteral("no"), Failure::Kind::OnlyWarned)), 3);
    EXPECT_EQ(ExitStatus::of(Failure(QStringLiteral("no"), Failure::Kind::Aborted)), 130);
}
