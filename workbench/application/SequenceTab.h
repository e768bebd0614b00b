// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QPointF>
#include <QWidget>

#include <memory>

class CORVDataset;
class CORVSequenceDataset;
class ColorBarWidget;
class ColorTableBox;
class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class ThumbnailModel;
class ThumbnailView;
class Thumbnails;
class UnitBox;

// The images of a sequence as thumbnails, with their unit, colours and scale. The choice of colours is that of the
// sequence's display record, which it changes. The sequence is borrowed and outlives the tab.
class SequenceTab : public QWidget
{
    Q_OBJECT

public:
    explicit SequenceTab(CORVSequenceDataset* pSequence, QWidget* pParent = nullptr);
    ~SequenceTab() override;

    Thumbnails& thumbnails() const { return *m_pThumbnails; }
    ThumbnailView* view() const { return m_pView; }
    tag_edisplayunit unit() const;
    // Reads all images again.
    void refresh();

Q_SIGNALS:
    // A thumbnail was double-clicked, or Return pressed on it. `image` is its tag_eimagetype: the main data image or
    // the photograph.
    void imageActivated(CORVDataset* pDataset, int image);
    // What lies below the pointer; empty when it lies nowhere.
    void readOut(const QString& strText);

private:
    QWidget* makeBar();
    void makeControls();
    void connectControls();
    void takeColors();
    void showScale();
    void showState();
    void activate(int nTile);
    void tellPlace(int nTile, const QPointF& place);

    CORVSequenceDataset* m_pSequence;
    std::unique_ptr<Thumbnails> m_pThumbnails;
    std::unique_ptr<ThumbnailModel> m_pModel;
    ThumbnailView* m_pView = nullptr;
    UnitBox* m_pUnitBox = nullptr;
    ColorTableBox* m_pColorBox = nullptr;
    QCheckBox* m_pReversedBox = nullptr;
    QCheckBox* m_pLogBox = nullptr;
    QComboBox* m_pScaleBox = nullptr;
    QSlider* m_pSizeSlider = nullptr;
    ColorBarWidget* m_pColorBar = nullptr;
    QLabel* m_pStateLabel = nullptr;
};
