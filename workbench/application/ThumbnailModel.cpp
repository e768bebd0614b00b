// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ThumbnailModel.h"

#include "host/UnitTexts.h"
#include "workbench/application/literalToolTip.h"

#include <QLocale>

#include <algorithm>

ThumbnailModel::ThumbnailModel(Thumbnails& thumbnails, QObject* pParent)
    : QAbstractTableModel(pParent), m_thumbnails(thumbnails)
{
    connect(&thumbnails, &Thumbnails::changed, this, [this](int nTile) {
        const QModelIndex cell = indexOf(nTile);
        Q_EMIT dataChanged(cell, cell);
    });
    connect(&thumbnails, &Thumbnails::allChanged, this, [this] {
        if (rowCount() > 0) {
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        }
    });
}

void ThumbnailModel::setFlow(int nFlow)
{
    const int flow = std::max(1, nFlow);
    if (flow == m_nFlow) {
        return;
    }
    if (grid().isTable()) {
        m_nFlow = flow;
        return;
    }
    beginResetModel();
    m_nFlow = flow;
    endResetModel();
}

int ThumbnailModel::tileAt(const QModelIndex& index) const
{
    return index.isValid() ? grid().tileAt(index.row(), index.column(), m_nFlow) : -1;
}

QModelIndex ThumbnailModel::indexOf(int nTile) const
{
    return nTile < 0 || nTile >= grid().count() ? QModelIndex()
                                                : index(grid().row(nTile, m_nFlow), grid().column(nTile, m_nFlow));
}

int ThumbnailModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : grid().rows(m_nFlow);
}

int ThumbnailModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : grid().columns(m_nFlow);
}

Qt::ItemFlags ThumbnailModel::flags(const QModelIndex& index) const
{
    return tileAt(index) < 0 ? Qt::NoItemFlags : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QVariant ThumbnailModel::data(const QModelIndex& index, int nRole) const
{
    const int tile = tileAt(index);
    if (tile < 0) {
        return {};
    }
    switch (nRole) {
    case Qt::DisplayRole:
        return grid().caption(tile);
    case Qt::ToolTipRole:
        return literalToolTip(toolTip(tile));
    case Qt::AccessibleTextRole:
        return m_thumbnails.state(tile) == Thumbnails::State::Failed
                   ? QStringLiteral("%1, cannot be shown").arg(grid().description(tile))
                   : grid().description(tile);
    case Qt::AccessibleDescriptionRole:
        return toolTip(tile);
    default:
        return {};
    }
}

QVariant ThumbnailModel::headerData(int nSection, Qt::Orientation eOrientation, int nRole) const
{
    if (nRole != Qt::DisplayRole) {
        return nRole == Qt::TextAlignmentRole ? QVariant(Qt::AlignCenter) : QVariant();
    }
    return eOrientation == Qt::Horizontal ? grid().columnTitles().value(nSection) : grid().rowTitles().value(nSection);
}

QString ThumbnailModel::toolTip(int nTile) const
{
    QString text = grid().description(nTile);
    if (m_thumbnails.state(nTile) == Thumbnails::State::Failed) {
        return text + QStringLiteral("\ncannot be shown: ") + m_thumbnails.reason(nTile);
    }
    const QSize size = m_thumbnails.imageSize(nTile);
    if (!size.isEmpty()) {
        text += QStringLiteral("\n%1 x %2 pixels").arg(size.width()).arg(size.height());
    }
    const DisplayRange range = m_thumbnails.range(nTile);
    if (!range.isEmpty()) {
        const QLocale locale;
        text += QStringLiteral("\nshown from %1 to %2 %3")
                    .arg(locale.toString(range.minimum, 'g', 4), locale.toString(range.maximum, 'g', 4),
                         displayUnitQuantity(m_thumbnails.unit()));
    }
    return text;
}
