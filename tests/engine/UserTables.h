// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVDatabase.h"
#include "host/orv_paths.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <functional>

// Reference tables of the user that add to the installed ones while it lives. One at a time.
class UserTables
{
public:
    UserTables() : m_strFolder(getORVPath(ORV_PATH_USER_DATA, true, nullptr)) {}
    ~UserTables()
    {
        for (const QString& strFile : qAsConst(m_files)) {
            QFile::remove(strFile);
        }
        CORVDatabase::reload();
    }
    UserTables(const UserTables&) = delete;
    UserTables& operator=(const UserTables&) = delete;

    void write(const QString& strName, const QByteArray& content)
    {
        QFile file(m_strFolder + strName);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            file.write(content);
        }
        m_files.append(file.fileName());
        CORVDatabase::reload();
    }

    // Sources at 500, 510, ... 800 nm: `names` (with suffix) and, in their order, the value of each at a wavelength.
    void writeLibrary(const QStringList& names, const std::function<double(int, double)>& value)
    {
        QByteArray table = "wavelength_nm," + names.join(",").toUtf8() + "\n";
        for (int w = 500; w <= 800; w += 10) {
            table += QByteArray::number(w);
            for (int i = 0; i < names.size(); ++i) {
                table += "," + QByteArray::number(value(i, w), 'g', 17);
            }
            table += "\n";
        }
        write("library_sources.csv", table);
    }

private:
    QString m_strFolder;
    QStringList m_files;
};
