// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "faults/faults.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <gtest/gtest.h>

#include <functional>
#include <string>

// Does `work` on a disk below the folder that is full from the n-th call on that takes room, for n = 1, 2, 3 and so on
// (or each twice the one before), until there is room for all of it; `check` looks at what is left of each that failed.
// How many did; 0 and a test failure where a check failed or the disk was never large enough.
inline int fillTheDisk(const QString& strFolder, const std::function<void()>& work, const std::function<void()>& check,
                       bool bDouble = false)
{
    constexpr int most = 10000;
    const QByteArray below = QFile::encodeName(QFileInfo(strFolder).canonicalFilePath());
    int nFull = 0;
    for (int n = 1; n < most; n = bDouble ? 2 * n : n + 1) {
        const std::string rules = "open,mkdir,write,truncate,sync@" + std::to_string(n) + "+=ENOSPC";
        EXPECT_TRUE(armFaults(rules.c_str(), below.constData(), nullptr));
        work();
        const bool bFull = countedCalls() >= n;
        armFaults(nullptr, nullptr, nullptr);
        if (!bFull) {
            return nFull;
        }
        ++nFull;
        SCOPED_TRACE(testing::Message() << "full at call " << n);
        check();
        if (testing::Test::HasFailure()) {
            return 0;
        }
    }
    ADD_FAILURE() << "the disk is never large enough";
    return 0;
}
