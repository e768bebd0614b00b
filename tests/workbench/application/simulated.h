// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Sequences that "spum simulate" writes, each once in a run of the program.
namespace simulated {

// The folder of a sequence made with those options.
inline QString sequence(const QStringList& options)
{
    static QTemporaryDir s_folder;
    static QStringList s_made;
    const QString key = options.join(QLatin1Char(' '));
    int index = s_made.indexOf(key);
    if (index < 0) {
        index = s_made.size();
        s_made.append(key);
        QProcess spum;
        spum.start(QStringLiteral(ORV_BINARY_DIR "/bin/spum"),
                   QStringList{"simulate", "--quiet"} + options +
                       QStringList{s_folder.filePath(QString::number(index))});
        const bool ended = spum.waitForFinished(120000);
        EXPECT_TRUE(ended && spum.exitCode() == 0) << spum.readAllStandardError().constData();
    }
    return s_folder.filePath(QString::number(index));
}

} // namespace simulated
