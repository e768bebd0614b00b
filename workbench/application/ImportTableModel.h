// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/application/ImportTable.h"

#include <QAbstractTableModel>

// The table of an import for a view.
class ImportTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    const ImportTable& table() const { return m_table; }
    void setTable(const ImportTable& table);
    void setKind(ImportTable::Kind eKind);
    void setConfirmed(bool bConfirmed);
    // Cells from that one on take the lines and tab-separated fields of a text, as a spreadsheet copies them.
    void paste(const QModelIndex& first, const QString& strText);

    ImportTable::Column columnAt(int nSection) const { return m_columns.value(nSection, ImportTable::Image); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int nRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int nRole) override;
    QVariant headerData(int nSection, Qt::Orientation eOrientation, int nRole) const override;

Q_SIGNALS:
    // What is shown, marked or ready is another one.
    void tableChanged();

private:
    QVariant marked(int nRow, ImportTable::Column eColumn, int nRole) const;
    // After a change of cells: marks may have moved anywhere, and columns may have come or gone.
    void tellChange();

    ImportTable m_table;
    QVector<ImportTable::Column> m_columns;
};
