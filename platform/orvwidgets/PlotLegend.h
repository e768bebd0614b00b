// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QRect>
#include <QString>
#include <QVector>
#include <QWidget>

namespace orv {

// The legend beneath a plot: entries in as many rows as it takes to have them whole. One that is longer than a row is
// elided in its middle and told in full by a tip; rows for which there is no room are left out. (That of the chart
// itself has one row and cuts all names to a few letters.)
class PlotLegend : public QWidget
{
    Q_OBJECT

public:
    struct Entry
    {
        QString m_strLabel;
        QColor m_color;
    };

    explicit PlotLegend(QWidget* pParent);

    void setEntries(const QVector<Entry>& entries);
    const QVector<Entry>& entries() const { return m_entries; }
    // Lays the entries out in `nWidth` pixels and takes the height for it, `nMostHeight` at most.
    void setRoom(int nWidth, int nMostHeight);
    // Of the entries that are shown.
    const QVector<QRect>& places() const { return m_places; }

protected:
    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void arrange();

    QVector<Entry> m_entries;
    QVector<QRect> m_places;
    int m_nWidth = 0;
    int m_nMostHeight = 0;
};

} // namespace orv
