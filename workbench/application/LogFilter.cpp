// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/LogFilter.h"

#include "workbench/application/LogModel.h"

LogFilter::LogFilter(QObject* pParent) : QSortFilterProxyModel(pParent) {}

void LogFilter::setLevelShown(int nLevel, bool bShown)
{
    if (bShown) {
        m_hidden.remove(nLevel);
    } else {
        m_hidden.insert(nLevel);
    }
    invalidateFilter();
}

void LogFilter::setText(const QString& strText)
{
    m_strText = strText.trimmed();
    invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int nRow, const QModelIndex& parent) const
{
    const QModelIndex index = sourceModel()->index(nRow, LogModel::MessageColumn, parent);
    return isLevelShown(index.data(LogModel::LevelRole).toInt()) &&
           (m_strText.isEmpty() || index.data().toString().contains(m_strText, Qt::CaseInsensitive));
}
