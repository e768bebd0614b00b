// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QSortFilterProxyModel>

// Lines of the log by their level and by a text that they hold, without regard to case.
class LogFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit LogFilter(QObject* pParent = nullptr);

    // Of the host's log; all at first.
    void setLevelShown(int nLevel, bool bShown);
    bool isLevelShown(int nLevel) const { return !m_hidden.contains(nLevel); }
    void setText(const QString& strText);

protected:
    bool filterAcceptsRow(int nRow, const QModelIndex& parent) const override;

private:
    QSet<int> m_hidden;
    QString m_strText;
};
