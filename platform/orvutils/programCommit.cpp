// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvutils/programCommit.h"

#include "host/orv_paths.h"
#include "platform/orvutils/InputFile.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

QString orv::programCommit()
{
    static const QString commit = [] {
        const QString folder = getORVPath(ORV_PATH_PROGRAM_DATA, false, nullptr);
        QFile file(QDir::cleanPath(folder + QStringLiteral("../commit")));
        QString reason;
        if (folder.isEmpty() || !openInput(file, &reason)) {
            return QString();
        }
        constexpr qint64 longest = 100;
        const QString text = QString::fromLatin1(file.read(longest)).trimmed();
        static const QRegularExpression form(QStringLiteral("^[0-9a-f]{40}\\+?$"));
        return form.match(text).hasMatch() ? text : QString();
    }();
    return commit;
}
