// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Runs the command line as it was built, with some variables of the environment set; whatever it is asked for must
// succeed. Its standard output.
inline QByteArray runSpum(const QStringList& arguments, const QMap<QString, QString>& variables = {})
{
    QProcess spum;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto it = variables.begin(); it != variables.end(); ++it) {
        environment.insert(it.key(), it.value());
    }
    spum.setProcessEnvironment(environment);
    spum.start(QStringLiteral(ORV_BINARY_DIR "/bin/spum"), arguments);
    const bool ended = spum.waitForFinished(120000);
    EXPECT_TRUE(ended && spum.exitCode() == 0) << spum.readAllStandardError().constData();
    return spum.readAllStandardOutput();
}

// Sequences that "spum simulate" writes.
namespace simulated {

// Writes one into that folder.
inline void into(const QString& strFolder, const QStringList& options)
{
    runSpum(QStringList{"simulate", "--quiet"} + options << strFolder);
}

// The folder of a sequence of that name made with those options, once in a run of the program: only to be read.
inline QString sequence(const QString& strName, const QStringList& options)
{
    static QTemporaryDir s_folder;
    const QString folder = s_folder.filePath(strName);
    if (!QDir(folder).exists()) {
        into(folder, options);
    }
    return folder;
}

// Named by a number for these options.
inline QString sequence(const QStringList& options)
{
    static QStringList s_made;
    const QString key = options.join(QLatin1Char(' '));
    if (!s_made.contains(key)) {
        s_made.append(key);
    }
    return sequence(QStringLiteral("sequence %1").arg(s_made.indexOf(key)), options);
}

} // namespace simulated
