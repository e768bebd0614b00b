// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/batchTables.h"

#include "services/basis/TextTable.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/resultOfFolder.h"
#include "services/results/resultSummary.h"

#include <QJsonArray>

#include <algorithm>

namespace {

QString numberText(const QJsonObject& json, const char* pKey)
{
    const QJsonValue value = json.value(QLatin1String(pKey));
    return value.isDouble() ? QString::number(value.toDouble(), 'g', 9) : QString();
}

QStringList cellsOfSequence(const BatchEntry& entry)
{
    const QJsonObject& summary = entry.summary;
    return {entry.job.name,
            entry.job.group,
            entry.job.sequence,
            entry.stateName(),
            entry.message,
            entry.warnings.join(QStringLiteral(" | ")),
            summary.value(QStringLiteral("method")).toString(),
            summary.value(QStringLiteral("unit")).toString(),
            numberText(summary, "images"),
            numberText(summary, "binning"),
            numberText(summary, "pixels")};
}

int countOf(const QList<BatchEntry>& entries, BatchEntry::State eState)
{
    return static_cast<int>(std::count_if(entries.begin(), entries.end(),
                                          [eState](const BatchEntry& entry) { return entry.state == eState; }));
}

} // namespace

QByteArray batchCsv(const BatchPlaces& places, const QList<BatchEntry>& entries)
{
    const QStringList columns = resultCsvColumns();
    TextTable table(QStringList{QStringLiteral("name"), QStringLiteral("group"), QStringLiteral("sequence"),
                                QStringLiteral("state"), QStringLiteral("message"), QStringLiteral("warnings"),
                                QStringLiteral("method"), QStringLiteral("unit"), QStringLiteral("images"),
                                QStringLiteral("binning"), QStringLiteral("pixels"), QStringLiteral("map")} +
                    columns);
    for (const BatchEntry& entry : entries) {
        const QStringList cells = cellsOfSequence(entry);
        const bool done = entry.state == BatchEntry::State::Done;
        const QList<QStringList> rows =
            done ? summaryRowsOfFolder(places.results(entry.job.name), columns) : QList<QStringList>();
        const QJsonArray components = entry.summary.value(QStringLiteral("components")).toArray();
        for (int i = 0; i < rows.size(); ++i) {
            const QString map = components.at(i).toObject().value(QStringLiteral("map")).toString();
            table.addRow(cells + QStringList(map) + rows[i]);
        }
        if (rows.isEmpty()) {
            table.addRow(cells);
        }
    }
    return table.toCsv().toUtf8();
}

QJsonObject batchJson(const QList<BatchEntry>& entries)
{
    QJsonArray sequences;
    for (const BatchEntry& entry : entries) {
        QJsonObject json{
            {"name", entry.job.name},         {"group", entry.job.group},
            {"sequence", entry.job.sequence}, {"options", QJsonArray::fromStringList(entry.job.arguments())},
            {"state", entry.stateName()},     {"warnings", QJsonArray::fromStringList(entry.warnings)}};
        if (entry.state == BatchEntry::State::Done) {
            json.insert(QStringLiteral("summary"), entry.summary);
        } else {
            json.insert(QStringLiteral("message"), entry.message);
        }
        sequences.append(json);
    }
    return QJsonObject{{"done", countOf(entries, BatchEntry::State::Done)},
                       {"failed", countOf(entries, BatchEntry::State::Failed)},
                       {"missing", countOf(entries, BatchEntry::State::Missing)},
                       {"sequences", sequences}};
}
