// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/application/Thumbnails.h"

#include <QAbstractTableModel>

// The thumbnails of a sequence as a table of cells. Cells without an image are disabled.
class ThumbnailModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    // The thumbnails outlive the model.
    explicit ThumbnailModel(Thumbnails& thumbnails, QObject* pParent = nullptr);

    const SequenceGrid& grid() const { return m_thumbnails.tiles().grid(); }
    Thumbnails& thumbnails() const { return m_thumbnails; }

    // Tiles a row, where they make no table of their own.
    void setFlow(int nFlow);
    int flow() const { return m_nFlow; }
    int tileAt(const QModelIndex& index) const; // -1 for none
    QModelIndex indexOf(int nTile) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // The caption, the tool tip, and the description for assistive tools.
    QVariant data(const QModelIndex& index, int nRole) const override;
    QVariant headerData(int nSection, Qt::Orientation eOrientation, int nRole) const override;

private:
    QString toolTip(int nTile) const;

    Thumbnails& m_thumbnails;
    int m_nFlow = 1;
};
