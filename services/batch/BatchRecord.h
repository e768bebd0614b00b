// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// What a result depends on, as hashes.
struct BatchFingerprint
{
    QString images;
    QString options;
    QString program;
};

// How a sequence ended when it was last unmixed in a batch.
struct BatchRecord
{
    bool done = false; // else it failed
    QString message;   // why it failed
    QStringList warnings;
    double seconds = 0.0;
    BatchFingerprint fingerprint;

    // Nothing where there is no such file, or it is none.
    static std::optional<BatchRecord> read(const QString& strPath);
    // Throws Failure.
    void write(const QString& strPath) const;
};
