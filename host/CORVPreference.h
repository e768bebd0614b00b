// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class CORVPreferenceSignals;
class CORVSettings;
struct S3DViewSettings;

// The host's preferences.
class CORVPreference
{
public:
    // Version of the application, as results state it.
    static QString getAppVersion();
    // The user's settings, kept in an INI file of the user's base folder. Owned by the preferences.
    static CORVSettings* getSettings();
    static CORVPreferenceSignals* getSignalHandler();
    // True while the sequence (null: any) is being loaded.
    static bool isSequenceLoading(const void* pSequence);
    static void setSequenceLoading(const void* pSequence, bool bLoading);
    // Puts the filter of the user's preferred format first.
    static void modifySaveFilterListByPreference(QStringList& filters);
    // The suffix of a picture format, such as "png", without regard to case.
    static void setUsersPreferredFormat(const QString& strSuffix);
    static QString usersPreferredFormat();
    // Letters of the views that show images: entries "Views/FontFamily", "Views/LabelFontSize" and "Views/BarFontSize"
    // of the settings; a size outside 6 to 48 points counts as missing.
    static void get3DViewPreferences(S3DViewSettings& settings);
};
