// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/batchTables.h"

#include "services/basis/TextTable.h"
#include "services/basis/jsonSchema.h"
#include "services/results/Provenance.h"
#include "services/results/resultSummary.h"

#include <QJsonArray>

#include <algorithm>

namespace {

// What a summary has, too, but for those that "run" tells already.
QStringList summaryColumns()
{
    QStringList columns = resultCsvColumns();
    columns.removeOne(QStringLiteral("run"));
    return columns;
}

QList<QStringList> rowsOf(const QJsonObject& summary)
{
    QList<QStringList> rows = resultCsvRows(summary);
    const int run = resultCsvColumns().indexOf(QStringLiteral("run"));
    for (QStringList& row : rows) {
        row.removeAt(run);
    }
    return rows;
}

int countOf(const QList<BatchEntry>& entries, BatchEntry::State eState)
{
    return static_cast<int>(std::count_if(entries.begin(), entries.end(),
                                          [eState](const BatchEntry& entry) { return entry.state == eState; }));
}

} // namespace

QByteArray batchCsv(const QList<BatchEntry>& entries)
{
    TextTable table(QStringList{QStringLiteral("run"), QStringLiteral("group"), QStringLiteral("path"),
                                QStringLiteral("state"), QStringLiteral("message"), QStringLiteral("warningTexts")} +
                    summaryColumns());
    for (const BatchEntry& entry : entries) {
        const QStringList cells = {entry.job.name,    entry.job.group, entry.job.sequence,
                                   entry.stateName(), entry.message,   entry.warnings.join(QStringLiteral(" | "))};
        const bool done = entry.state == BatchEntry::State::Done;
        const QList<QStringList> rows = done ? rowsOf(entry.summary) : QList<QStringList>();
        for (const QStringList& row : rows) {
            table.addRow(cells + row);
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
            json.insert(QStringLiteral("summary"), lastingSummary(entry.summary));
        } else {
            json.insert(QStringLiteral("message"), entry.message);
        }
        sequences.append(json);
    }
    return QJsonObject{{"schema", kJsonSchema},
                       {"answer", QStringLiteral("batch")},
                       {"done", countOf(entries, BatchEntry::State::Done)},
                       {"failed", countOf(entries, BatchEntry::State::Failed)},
                       {"missing", countOf(entries, BatchEntry::State::Missing)},
                       {"sequences", sequences}};
}
