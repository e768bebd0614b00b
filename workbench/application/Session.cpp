// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/Session.h"

#include "host/CORVLog.h"
#include "host/CORVSettings.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QUuid>
#include <QVariant>

namespace {

const QString lastGroup = QStringLiteral("Workbench");
const QString runningGroup = QStringLiteral("Workbench/Running");
const QString foldersKey = QStringLiteral("/OpenSequences");
const QString placesKey = QStringLiteral("/OpenPlaces");

// Files beside the settings, each held as long as the program of that session lives.
QDir recordFolder(const CORVSettings& settings)
{
    return QFileInfo(settings.fileName()).dir();
}

QString recordOf(const CORVSettings& settings, const QString& strId)
{
    return recordFolder(settings).filePath(QLatin1String("session-") + strId);
}

Session::Windows read(const CORVSettings& settings, const QString& strGroup)
{
    const QStringList folders = settings.value(strGroup + foldersKey).toStringList();
    const QVariantList places = settings.value(strGroup + placesKey).toList();
    Session::Windows windows;
    for (int i = 0; i < folders.size(); ++i) {
        windows.append({folders.at(i), places.value(i).toRect()});
    }
    return windows;
}

void write(CORVSettings& settings, const QString& strGroup, const Session::Windows& windows)
{
    QStringList folders;
    QVariantList places;
    for (const Session::Window& window : windows) {
        folders.append(window.folder);
        places.append(window.place);
    }
    settings.setValue(strGroup + foldersKey, folders);
    settings.setValue(strGroup + placesKey, places);
}

// Settings that once could not be written stay marked so, and that is told once.
void sync(CORVSettings& settings)
{
    const bool bFine = settings.status() == QSettings::NoError;
    settings.sync();
    if (bFine && settings.status() != QSettings::NoError) {
        CORVLog::getLogObject()->log(
            QCoreApplication::translate("Session", "%1: cannot be written; the next start will not find what is open")
                .arg(settings.fileName()),
            QString(), 0, QDateTime::currentDateTime().toString(Qt::ISODate), CORVLOG_WARNING, false);
    }
}

} // namespace

Session::Session(CORVSettings& settings)
    : m_settings(settings), m_strId(QUuid::createUuid().toString(QUuid::WithoutBraces)),
      m_bRecorded(m_record.make(recordOf(settings, m_strId)))
{
}

Session::Windows Session::takeLast()
{
    const Windows windows = read(m_settings, lastGroup);
    m_settings.remove(lastGroup + foldersKey);
    m_settings.remove(lastGroup + placesKey);
    return windows;
}

Session::Windows Session::takeAbandoned()
{
    m_settings.sync();
    m_settings.beginGroup(runningGroup);
    const QStringList ids = m_settings.childGroups();
    m_settings.endGroup();
    Windows windows;
    for (const QString& strId : ids) {
        const QString record = recordOf(m_settings, strId);
        orv::OwnerRecord abandoned;
        if (strId == m_strId || (QFileInfo::exists(record) && !abandoned.takeAbandoned(record))) {
            continue;
        }
        const QString group = runningGroup + QLatin1Char('/') + strId;
        for (const Window& window : read(m_settings, group)) {
            if (!windows.contains(window)) {
                windows.append(window);
            }
        }
        m_settings.remove(group);
    }
    m_settings.sync();
    // Those of programs that had nothing open.
    const QDir folder = recordFolder(m_settings);
    for (const QString& strFile : folder.entryList({QStringLiteral("session-*")}, QDir::Files)) {
        orv::OwnerRecord().takeAbandoned(folder.filePath(strFile));
    }
    return windows;
}

void Session::keep(const Windows& windows)
{
    if (!m_bRecorded) {
        return;
    }
    const QString group = runningGroup + QLatin1Char('/') + m_strId;
    if (windows.isEmpty()) {
        m_settings.remove(group);
    } else if (read(m_settings, group) != windows) {
        write(m_settings, group, windows);
    } else {
        return;
    }
    sync(m_settings);
}

void Session::close(const Windows& windows)
{
    keep({});
    write(m_settings, lastGroup, windows);
    m_record.end();
    m_bRecorded = false;
}
