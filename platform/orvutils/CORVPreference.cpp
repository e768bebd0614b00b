// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVPreference.h"

#include "host/CORVPreferenceSignals.h"
#include "host/CORVSettings.h"
#include "host/S3DViewSettings.h"
#include "host/orv_paths.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <map>
#include <memory>
#include <set>

namespace {

constexpr const char* const formatKey = "Pictures/PreferredFormat";
constexpr const char* const fontFamilyKey = "Views/FontFamily";
constexpr const char* const labelFontSizeKey = "Views/LabelFontSize";
constexpr const char* const barFontSizeKey = "Views/BarFontSize";
// The letters of the pictures that are written to files.
constexpr const char* const standardFontFamily = "DejaVu Sans";
constexpr int standardFontSize = 10; // points
constexpr int smallestFontSize = 6;
constexpr int largestFontSize = 48;

struct Preferences
{
    QMutex m_mutex;
    // By file: the user's folder follows the environment, and settings that were handed out stay valid.
    std::map<QString, std::unique_ptr<CORVSettings>> m_settings;
    std::multiset<const void*> m_loading;
};

Preferences& preferences()
{
    static Preferences all;
    return all;
}

// The suffixes under which a picture format goes.
QStringList sameFormat(const QString& strSuffix)
{
    const QStringList families[] = {{QStringLiteral("jpg"), QStringLiteral("jpeg")},
                                    {QStringLiteral("tif"), QStringLiteral("tiff")}};
    for (const auto& family : families) {
        if (family.contains(strSuffix)) {
            return family;
        }
    }
    return {strSuffix};
}

int fontSize(const char* pKey)
{
    const int size = CORVPreference::getSettings()->value(QLatin1String(pKey)).toInt();
    return size >= smallestFontSize && size <= largestFontSize ? size : standardFontSize;
}

// Whether a filter such as "PNG image (*.png *.PNG)" names the suffix.
bool filterHasSuffix(const QString& strFilter, const QString& strSuffix)
{
    QString patterns = strFilter.mid(strFilter.lastIndexOf(QLatin1Char('(')) + 1);
    patterns.remove(QLatin1Char(')'));
    return patterns.replace(QLatin1Char(';'), QLatin1Char(' '))
        .split(QLatin1Char(' '), Qt::SkipEmptyParts)
        .contains(QLatin1String("*.") + strSuffix, Qt::CaseInsensitive);
}

} // namespace

QString CORVPreference::getAppVersion()
{
    return QStringLiteral(ORV_VERSION);
}

CORVSettings* CORVPreference::getSettings()
{
    const QString folder = getORVPath(ORV_PATH_USER, true, nullptr);
    // Without a folder of the user the settings live as long as the program: nothing can be stored under /dev/null.
    const QString path =
        folder.isEmpty() ? QStringLiteral("/dev/null/settings.ini") : folder + QLatin1String("settings.ini");
    QMutexLocker lock(&preferences().m_mutex);
    auto& pSettings = preferences().m_settings[path];
    if (!pSettings) {
        pSettings = std::make_unique<CORVSettings>(path, QSettings::IniFormat);
    }
    return pSettings.get();
}

CORVPreferenceSignals* CORVPreference::getSignalHandler()
{
    static CORVPreferenceSignals handler;
    return &handler;
}

bool CORVPreference::isSequenceLoading(const void* pSequence)
{
    QMutexLocker lock(&preferences().m_mutex);
    const auto& loading = preferences().m_loading;
    return pSequence ? loading.count(pSequence) != 0 : !loading.empty();
}

void CORVPreference::setSequenceLoading(const void* pSequence, bool bLoading)
{
    QMutexLocker lock(&preferences().m_mutex);
    auto& loading = preferences().m_loading;
    if (bLoading) {
        loading.insert(pSequence);
        return;
    }
    const auto found = loading.find(pSequence);
    if (found != loading.end()) {
        loading.erase(found);
    }
}

void CORVPreference::modifySaveFilterListByPreference(QStringList& filters)
{
    const QString preferred = usersPreferredFormat();
    if (preferred.isEmpty()) {
        return;
    }
    const QStringList suffixes = sameFormat(preferred);
    std::stable_partition(filters.begin(), filters.end(), [&suffixes](const QString& strFilter) {
        return std::any_of(suffixes.begin(), suffixes.end(),
                           [&strFilter](const QString& strSuffix) { return filterHasSuffix(strFilter, strSuffix); });
    });
}

void CORVPreference::setUsersPreferredFormat(const QString& strSuffix)
{
    QString suffix = strSuffix.trimmed().toLower();
    while (suffix.startsWith(QLatin1Char('.')) || suffix.startsWith(QLatin1Char('*'))) {
        suffix.remove(0, 1);
    }
    getSettings()->setValue(QLatin1String(formatKey), suffix);
}

QString CORVPreference::usersPreferredFormat()
{
    return getSettings()->value(QLatin1String(formatKey)).toString();
}

void CORVPreference::get3DViewPreferences(S3DViewSettings& settings)
{
    const QString family = getSettings()->value(QLatin1String(fontFamilyKey)).toString().trimmed();
    settings.fontFamily = family.isEmpty() ? QString::fromLatin1(standardFontFamily) : family;
    settings.labelFontSize = fontSize(labelFontSizeKey);
    settings.barFontSize = fontSize(barFontSizeKey);
}
