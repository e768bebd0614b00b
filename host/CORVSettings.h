// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSettings>

// The user's settings.
class CORVSettings : public QSettings
{
public:
    using QSettings::QSettings;

    // The folder in which the user saved or opened something last, without a separator at its end; the user's home when
    // there is none, or when it is gone.
    QString getRecentFilePath() const;
    // Keeps a folder, or the folder of a file, be that there already or not.
    void setRecentFilePath(const QString& strPath);
};
