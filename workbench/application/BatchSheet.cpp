// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/BatchSheet.h"

#include "host/CORVLog.h"
#include "services/importer/CsvLine.h"
#include "workbench/application/elapsedText.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace {

QString tr(const char* pText)
{
    return QCoreApplication::translate("BatchSheet", pText);
}

// A field of several lines would be a record of several.
QString field(QString strText)
{
    return csvField(strText.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' ')));
}

QString secondsText(qint64 nMilliseconds)
{
    return QString::number(static_cast<double>(nMilliseconds) / 1000.0, 'f', 1);
}

QString firstOf(const QString& strOne, const QString& strOther)
{
    return !strOne.isEmpty() ? strOne : strOther;
}

} // namespace

QString BatchSheet::Row::name() const
{
    return QDir(folder).dirName();
}

BatchSheet::BatchSheet(const QStringList& folders)
{
    for (const QString& folder : folders) {
        const QString clean = QDir::cleanPath(folder);
        const bool known =
            std::any_of(m_rows.cbegin(), m_rows.cend(), [&clean](const Row& row) { return row.folder == clean; });
        if (!known) {
            Row row;
            row.folder = clean;
            m_rows.append(row);
        }
    }
}

int BatchSheet::next() const
{
    if (m_nRunning >= 0 || m_bAborted) {
        return -1;
    }
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).state == State::Waiting) {
            return i;
        }
    }
    return -1;
}

bool BatchSheet::isOver() const
{
    return m_nRunning < 0 && next() < 0;
}

void BatchSheet::begin(int nRow)
{
    m_nRunning = nRow;
    m_strLastError.clear();
    m_rows[nRow].state = State::Running;
}

void BatchSheet::note(int nLevel, const QString& strMessage)
{
    if (m_nRunning < 0 || (nLevel != CORVLOG_WARNING && nLevel != CORVLOG_ERROR)) {
        return;
    }
    m_rows[m_nRunning].warnings.append(strMessage);
    m_strLastError = nLevel == CORVLOG_ERROR ? strMessage : m_strLastError;
}

void BatchSheet::end(const End& end)
{
    if (m_nRunning < 0) {
        return;
    }
    Row& row = m_rows[m_nRunning];
    m_nRunning = -1;
    row.milliseconds = end.milliseconds;
    if (!end.openingError.isEmpty()) {
        row.state = State::Failed;
        row.reason = end.openingError;
    } else if (!end.takenUp) {
        row.state = State::PassedOver;
        row.reason = firstOf(end.whyNotTakenUp, m_strLastError);
    } else if (end.saved && !end.stillOpen) {
        row.state = State::Done;
        row.residual = end.residual;
    } else if (end.aborted) {
        row.state = State::Aborted;
    } else {
        // Without a folder for the maps the result alone is there.
        row.state = State::Failed;
        row.reason = firstOf(m_strLastError, tr("There is no result, and the log does not tell why."));
    }
}

void BatchSheet::abort()
{
    m_bAborted = true;
    for (Row& row : m_rows) {
        row.state = row.state == State::Waiting ? State::Left : row.state;
    }
}

int BatchSheet::count(State eState) const
{
    return static_cast<int>(
        std::count_if(m_rows.cbegin(), m_rows.cend(), [eState](const Row& row) { return row.state == eState; }));
}

QString BatchSheet::stateText(State eState)
{
    switch (eState) {
    case State::Waiting:
        return tr("Waiting");
    case State::Running:
        return tr("Running");
    case State::Done:
        return tr("Unmixed");
    case State::PassedOver:
        return tr("Passed over");
    case State::Failed:
        return tr("Failed");
    case State::Aborted:
        return tr("Aborted");
    case State::Left:
        break;
    }
    return tr("Not begun");
}

QString BatchSheet::outcomeText(const Row& row)
{
    const QString state = stateText(row.state);
    return row.reason.isEmpty() ? state : QStringLiteral("%1: %2").arg(state, row.reason);
}

QString BatchSheet::residualText(const Row& row)
{
    return row.residual ? QString::number(*row.residual * 100.0, 'g', 3) + QStringLiteral(" %") : QString();
}

QString BatchSheet::totals() const
{
    QString text = tr("%1 of %2 unmixed").arg(count(State::Done)).arg(m_rows.size());
    const QPair<State, QString> others[] = {{State::PassedOver, tr("%1 passed over")},
                                            {State::Failed, tr("%1 failed")},
                                            {State::Aborted, tr("%1 aborted")},
                                            {State::Left, tr("%1 not begun")}};
    for (const auto& [eState, strText] : others) {
        if (const int nCount = count(eState); nCount > 0) {
            text += QStringLiteral(", ") + strText.arg(nCount);
        }
    }
    if (const int nToGo = count(State::Waiting) + count(State::Running); nToGo > 0) {
        text += QStringLiteral(", ") + tr("%1 to go").arg(nToGo);
    }
    int nWarnings = 0;
    qint64 nMilliseconds = 0;
    for (const Row& row : m_rows) {
        nWarnings += row.warnings.size();
        nMilliseconds += row.milliseconds;
    }
    text += QStringLiteral("; ") + (nWarnings == 1 ? tr("1 warning") : tr("%1 warnings").arg(nWarnings));
    return text + QStringLiteral("; ") + elapsedText(nMilliseconds);
}

QByteArray BatchSheet::csv() const
{
    QString text = QStringLiteral("sequence,folder,state,residual,warnings,seconds,message\n");
    int nWarnings = 0;
    qint64 nMilliseconds = 0;
    for (const Row& row : m_rows) {
        QStringList messages = row.warnings;
        if (!row.reason.isEmpty() && !messages.contains(row.reason)) {
            messages.prepend(row.reason);
        }
        const QStringList fields{field(row.name()),
                                 field(row.folder),
                                 field(stateText(row.state)),
                                 row.residual ? QString::number(*row.residual, 'g', 6) : QString(),
                                 QString::number(row.warnings.size()),
                                 secondsText(row.milliseconds),
                                 field(messages.join(QStringLiteral("; ")))};
        text += fields.join(QLatin1Char(',')) + QLatin1Char('\n');
        nWarnings += row.warnings.size();
        nMilliseconds += row.milliseconds;
    }
    const QStringList last{QStringLiteral("total"),
                           QString(),
                           field(tr("%1 of %2 unmixed").arg(count(State::Done)).arg(m_rows.size())),
                           QString(),
                           QString::number(nWarnings),
                           secondsText(nMilliseconds),
                           field(totals())};
    return (text + last.join(QLatin1Char(',')) + QLatin1Char('\n')).toUtf8();
}
