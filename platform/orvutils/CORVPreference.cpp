// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVPreference.h"

#include "host/CORVPreferenceSignals.h"
#include "host/orv_paths.h"

#include <QSet>

#include <algorithm>
#include <memory>

namespace {

const QString formatKey = QStringLiteral("Export/PictureFormat");

QSet<const void*>& loadingSequences()
{
    static QSet<const void*> sequences;
    return sequences;
}

} // namespace

QString CORVPreference::getAppVersion()
{
    return QStringLiteral(ORV_VERSION);
}

// The file follows the user folder, which the environment may move.
QSettings* CORVPreference::getSettings()
{
    static std::unique_ptr<QSettings> settings;
    const QString path = getORVPath(ORV_PATH_USER, true, nullptr) + QStringLiteral("preferences.ini");
    if (!settings || settings->fileName() != path)
        settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
    return settings.get();
}

CORVPreferenceSignals* CORVPreference::getSignalHandler()
{
    static CORVPreferenceSignals handler;
    return &handler;
}

bool CORVPreference::isSequenceLoading(const void* pSequence)
{
    return pSequence == nullptr ? !loadingSequences().isEmpty() : loadingSequences().contains(pSequence);
}

void CORVPreference::setSequenceLoading(const void* pSequence, bool bLoading)
{
    if (bLoading)
        loadingSequences().insert(pSequence);
    else
        loadingSequences().remove(pSequence);
}

void CORVPreference::modifySaveFilterListByPreference(QStringList& filters)
{
    const QString suffix = usersPreferredFormat();
    if (suffix.isEmpty())
        return;
    const QString pattern = QStringLiteral("*.%1)").arg(suffix);
    const auto isPreferred = [&pattern](const QString& filter) {
        return filter.contains(pattern, Qt::CaseInsensitive);
    };
    std::stable_partition(filters.begin(), filters.end(), isPreferred);
}

void CORVPreference::setUsersPreferredFormat(const QString& strSuffix)
{
    getSettings()->setValue(formatKey, strSuffix.toLower());
}

QString CORVPreference::usersPreferredFormat()
{
    return getSettings()->value(formatKey).toString();
}
