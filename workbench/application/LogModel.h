// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/LogSinks.h"

#include <QAbstractTableModel>
#include <QVector>

// The last lines of the log: time, level, message.
class LogModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        TimeColumn,
        LevelColumn,
        MessageColumn,
        ColumnCount
    };
    enum Role
    {
        LevelRole = Qt::UserRole, // of the host's log, as int
        LineRole                  // the whole line, as a log file has it
    };

    // Of more lines the oldest are dropped.
    explicit LogModel(int nMostLines = 20000, QObject* pParent = nullptr);

    void append(const QVector<orv::LogRecord>& records);
    void clear();

    // Notes count as such whatever other number they came with.
    static int levelOf(const orv::LogRecord& record);
    static QString levelText(int nLevel);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int nRole = Qt::DisplayRole) const override;
    QVariant headerData(int nSection, Qt::Orientation eOrientation, int nRole = Qt::DisplayRole) const override;

private:
    int m_nMostLines;
    QVector<orv::LogRecord> m_records;
};
