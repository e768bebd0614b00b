// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/LogModel.h"

#include "host/CORVLog.h"
#include "workbench/application/literalToolTip.h"

#include <QApplication>
#include <QStyle>

LogModel::LogModel(int nMostLines, QObject* pParent) : QAbstractTableModel(pParent), m_nMostLines(nMostLines) {}

void LogModel::append(const QVector<orv::LogRecord>& records)
{
    if (records.isEmpty()) {
        return;
    }
    const int nKept = qMin(records.size(), m_nMostLines);
    const int nTooMany = m_records.size() + nKept - m_nMostLines;
    if (nTooMany > 0) {
        // Some more than need be, so that it does not happen for every line.
        const int nDropped = qMin(m_records.size(), nTooMany + m_nMostLines / 20);
        if (nDropped > 0) {
            beginRemoveRows(QModelIndex(), 0, nDropped - 1);
            m_records.remove(0, nDropped);
            endRemoveRows();
        }
    }
    beginInsertRows(QModelIndex(), m_records.size(), m_records.size() + nKept - 1);
    m_records += records.mid(records.size() - nKept);
    endInsertRows();
}

void LogModel::clear()
{
    beginResetModel();
    m_records.clear();
    endResetModel();
}

int LogModel::levelOf(const orv::LogRecord& record)
{
    switch (record.m_nLevel) {
    case CORVLOG_WARNING:
    case CORVLOG_ERROR:
    case CORVLOG_PROGRESS:
        return static_cast<int>(record.m_nLevel);
    default:
        return CORVLOG_NOTE;
    }
}

QString LogModel::levelText(int nLevel)
{
    switch (nLevel) {
    case CORVLOG_WARNING:
        return tr("Warning");
    case CORVLOG_ERROR:
        return tr("Error");
    case CORVLOG_PROGRESS:
        return tr("Progress");
    default:
        return tr("Note");
    }
}

int LogModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_records.size();
}

int LogModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(ColumnCount);
}

QVariant LogModel::data(const QModelIndex& index, int nRole) const
{
    if (!index.isValid() || index.row() >= m_records.size()) {
        return QVariant();
    }
    const orv::LogRecord& record = m_records.at(index.row());
    const int nLevel = levelOf(record);
    const QString text = record.m_strExtra.isEmpty() ? record.m_strMessage
                                                     : record.m_strMessage + QLatin1String(" | ") + record.m_strExtra;
    switch (nRole) {
    case LevelRole:
        return nLevel;
    case LineRole:
        return orv::logLine(record);
    case Qt::DecorationRole:
        if (index.column() == LevelColumn && (nLevel == CORVLOG_WARNING || nLevel == CORVLOG_ERROR)) {
            return QApplication::style()->standardIcon(nLevel == CORVLOG_ERROR ? QStyle::SP_MessageBoxCritical
                                                                               : QStyle::SP_MessageBoxWarning);
        }
        return QVariant();
    case Qt::ToolTipRole:
        return index.column() == MessageColumn ? QVariant(literalToolTip(text)) : QVariant();
    case Qt::DisplayRole:
        switch (index.column()) {
        case TimeColumn:
            return record.m_time.toLocalTime().toString(QStringLiteral("HH:mm:ss"));
        case LevelColumn:
            return levelText(nLevel);
        default:
            return QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
        }
    default:
        return QVariant();
    }
}

QVariant LogModel::headerData(int nSection, Qt::Orientation eOrientation, int nRole) const
{
    if (eOrientation != Qt::Horizontal || nRole != Qt::DisplayRole) {
        return QVariant();
    }
    const QString titles[ColumnCount] = {tr("Time"), tr("Level"), tr("Message")};
    return nSection >= 0 && nSection < ColumnCount ? QVariant(titles[nSection]) : QVariant();
}
