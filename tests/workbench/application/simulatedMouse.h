// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// The folder of a simulated sequence of that name, made once in a run of the program with the options of its first
// call.
inline QString simulatedMouse(const QString& strName, const QStringList& options)
{
    static QTemporaryDir s_folder;
    static QStringList s_made;
    const QString folder = s_folder.filePath(strName);
    if (!s_made.contains(strName)) {
        s_made.append(strName);
        QProcess spum;
        spum.start(QStringLiteral(ORV_BINARY_DIR "/bin/spum"),
                   QStringList{"simulate", "--quiet"} + options + QStringList(folder));
        const bool ended = spum.waitForFinished(120000);
        EXPECT_TRUE(ended && spum.exitCode() == 0) << spum.readAllStandardError().constData();
    }
    return folder;
}
