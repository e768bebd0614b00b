// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVChildWindow.h"

#include <QPointer>
#include <QString>

class CORVDataset;

// The window of one dataset, such as a map of an analysis.
class CORVImageWindow : public CORVChildWindow
{
    Q_OBJECT

public:
    // The dataset is borrowed; whoever deletes it deletes the window first.
    explicit CORVImageWindow(CORVDataset* pDataset, QWidget* pParent = nullptr);
    ~CORVImageWindow() override;

    // The window of the dataset, or null; of several the newest.
    static CORVImageWindow* getImageWindow(const CORVDataset* pDataset);
    CORVDataset* dataset() const { return m_pDataset; }

    // The dataset now lies in the folder `strPath` (with a separator at its end): the window takes this for its file
    // and thumbnails are to be made from there. The spelling is the host's.
    virtual void updateThumnailViewForSpumBatchProcessing(const QString& strPath);

    // Pixels or regions of the dataset have changed (CORVDataset::updateActiveImage); the base shows neither.
    virtual void refreshImage() {}

Q_SIGNALS:
    // Of the dataset that lies in the folder.
    void thumbnailChanged(const QString& strPath);

private:
    CORVDataset* m_pDataset;
};
