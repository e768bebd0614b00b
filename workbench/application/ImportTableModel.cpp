// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ImportTableModel.h"

#include "workbench/application/literalToolTip.h"

#include <QColor>
#include <QStringList>

namespace {

// Seen on light and on dark tables alike.
const QColor wrongColor(225, 70, 40, 90);
const QColor doubtColor(240, 180, 0, 90);

} // namespace

void ImportTableModel::setTable(const ImportTable& table)
{
    beginResetModel();
    m_table = table;
    m_columns = table.count() > 0 ? table.columns() : QVector<ImportTable::Column>();
    endResetModel();
    Q_EMIT tableChanged();
}

void ImportTableModel::setKind(ImportTable::Kind eKind)
{
    beginResetModel();
    m_table.setKind(eKind);
    m_columns = m_table.columns();
    endResetModel();
    Q_EMIT tableChanged();
}

void ImportTableModel::setConfirmed(bool bConfirmed)
{
    m_table.setConfirmed(bConfirmed);
    Q_EMIT tableChanged();
}

int ImportTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_table.count();
}

int ImportTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns.size();
}

Qt::ItemFlags ImportTableModel::flags(const QModelIndex& index) const
{
    const ImportTable::Column column = columnAt(index.column());
    if (column == ImportTable::Use) {
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    }
    if (!m_table.isUsed(index.row())) {
        return Qt::ItemIsSelectable;
    }
    const Qt::ItemFlags seen = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return m_table.isEditable(column) ? seen | Qt::ItemIsEditable : seen;
}

QVariant ImportTableModel::marked(int nRow, ImportTable::Column eColumn, int nRole) const
{
    const ImportTable::Mark mark = m_table.mark(nRow, eColumn);
    const QString reason = m_table.reason(nRow, eColumn);
    const QString text = m_table.text(nRow, eColumn);
    switch (nRole) {
    case Qt::DisplayRole:
        return mark == ImportTable::Mark::Wrong && text.isEmpty() ? QStringLiteral("?") : text;
    case Qt::EditRole:
        return text;
    case Qt::ToolTipRole:
        return literalToolTip(reason.isEmpty() ? text : reason);
    case Qt::AccessibleDescriptionRole:
        return reason;
    case Qt::BackgroundRole:
        return mark == ImportTable::Mark::Wrong   ? QVariant(wrongColor)
               : mark == ImportTable::Mark::Doubt ? QVariant(doubtColor)
                                                  : QVariant();
    default:
        return {};
    }
}

QVariant ImportTableModel::data(const QModelIndex& index, int nRole) const
{
    if (!index.isValid()) {
        return {};
    }
    const ImportTable::Column column = columnAt(index.column());
    if (column != ImportTable::Use) {
        return marked(index.row(), column, nRole);
    }
    if (nRole == Qt::CheckStateRole) {
        return m_table.isUsed(index.row()) ? Qt::Checked : Qt::Unchecked;
    }
    return nRole == Qt::AccessibleTextRole ? QVariant(tr("use %1").arg(m_table.text(index.row(), ImportTable::Image)))
                                           : QVariant();
}

bool ImportTableModel::setData(const QModelIndex& index, const QVariant& value, int nRole)
{
    const ImportTable::Column column = columnAt(index.column());
    if (column == ImportTable::Use && nRole == Qt::CheckStateRole) {
        m_table.setUsed(index.row(), value.toInt() == Qt::Checked);
    } else if (nRole == Qt::EditRole && m_table.isEditable(column)) {
        m_table.setText(index.row(), column, value.toString());
    } else {
        return false;
    }
    tellChange();
    return true;
}

void ImportTableModel::tellChange()
{
    if (m_columns != m_table.columns()) {
        beginResetModel();
        m_columns = m_table.columns();
        endResetModel();
    } else if (m_table.count() > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
    Q_EMIT tableChanged();
}

void ImportTableModel::paste(const QModelIndex& first, const QString& strText)
{
    if (!first.isValid()) {
        return;
    }
    QString text = strText;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    while (text.endsWith(QLatin1Char('\n'))) {
        text.chop(1);
    }
    const QStringList lines = text.split(QLatin1Char('\n'));
    QVector<ImportTable::CellText> cells;
    for (int line = 0; line < lines.size() && first.row() + line < m_table.count(); ++line) {
        const QStringList fields = lines.at(line).split(QLatin1Char('\t'));
        for (int field = 0; field < fields.size() && first.column() + field < m_columns.size(); ++field) {
            const ImportTable::Column column = m_columns.at(first.column() + field);
            if (m_table.isEditable(column)) {
                cells.append({first.row() + line, column, fields.at(field)});
            }
        }
    }
    m_table.setTexts(cells);
    tellChange();
}

QVariant ImportTableModel::headerData(int nSection, Qt::Orientation eOrientation, int nRole) const
{
    if (eOrientation == Qt::Vertical) {
        return nRole == Qt::DisplayRole ? QVariant(nSection + 1) : QVariant();
    }
    switch (nRole) {
    case Qt::DisplayRole:
        return ImportTable::title(columnAt(nSection));
    case Qt::ToolTipRole:
        return ImportTable::help(columnAt(nSection));
    default:
        return {};
    }
}
