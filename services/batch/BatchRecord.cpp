// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchRecord.h"

#include "files/AtomicFile.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/basis/jsonNumber.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int maxMebibytes = 4;

} // namespace

std::optional<BatchRecord> BatchRecord::read(const QString& strPath)
{
    QByteArray bytes;
    QString error;
    if (!QFileInfo::exists(strPath) ||
        !orv::readInput(strPath, maxMebibytes, QStringLiteral("record"), &bytes, &error)) {
        return std::nullopt;
    }
    const QJsonObject json = QJsonDocument::fromJson(bytes).object();
    const QString state = json.value(QStringLiteral("state")).toString();
    BatchRecord record;
    record.done = state == QLatin1String("done");
    if (!record.done && state != QLatin1String("failed")) {
        return std::nullopt;
    }
    record.message = json.value(QStringLiteral("message")).toString();
    for (const auto& warning : json.value(QStringLiteral("warnings")).toArray()) {
        record.warnings.append(warning.toString());
    }
    record.seconds = json.value(QStringLiteral("seconds")).toDouble();
    record.fingerprint = {json.value(QStringLiteral("images")).toString(),
                          json.value(QStringLiteral("options")).toString(),
                          json.value(QStringLiteral("program")).toString()};
    return record;
}

void BatchRecord::write(const QString& strPath) const
{
    const QJsonObject json{{"state", done ? QStringLiteral("done") : QStringLiteral("failed")},
                           {"message", message},
                           {"warnings", QJsonArray::fromStringList(warnings)},
                           {"seconds", jsonNumber(seconds)},
                           {"images", fingerprint.images},
                           {"options", fingerprint.options},
                           {"program", fingerprint.program}};
    QString error;
    if (!orv::writeFileAtomically(strPath, QJsonDocument(json).toJson(QJsonDocument::Indented), &error)) {
        throw Failure(error);
    }
}
