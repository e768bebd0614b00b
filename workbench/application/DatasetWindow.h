// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVImageWindow.h"
#include "host/orv_types.h"

#include <QList>
#include <QPair>

#include <memory>

class ColorBarWidget;
class ColorTableBox;
class DatasetImage;
class DatasetView;
class QCheckBox;
class QComboBox;
class QSlider;
class QToolButton;
class QVBoxLayout;
class RangePanel;
class UnitBox;

// The window of one dataset's images: the picture with its colour bar, and how it is shown. The dataset is borrowed and
// outlives the window.
class DatasetWindow : public CORVImageWindow
{
    Q_OBJECT

public:
    explicit DatasetWindow(CORVDataset* pDataset, QWidget* pParent = nullptr);
    ~DatasetWindow() override;

    DatasetView* view() const { return m_pView; }
    DatasetImage& image() const { return *m_pImage; }
    // Shows the image of that tag_eimagetype, in the unit when it can be had there; one that the dataset lacks shows
    // the first it has.
    void showImage(int nImage) { showImage(nImage, unit()); }
    void showImage(int nImage, tag_edisplayunit eUnit);
    tag_edisplayunit unit() const;

    // Reads the image again; the range stays when its unit does.
    void refreshImage() override;

Q_SIGNALS:
    // What lies below the pointer; empty when it lies nowhere.
    void readOut(const QString& strText);

protected:
    void changeEvent(QEvent* pEvent) override;

private:
    QWidget* makePanel();
    void addDisplay(QVBoxLayout* pColumn);
    void addPhotograph(QVBoxLayout* pColumn);
    void addButtons(QVBoxLayout* pColumn);
    void drawIcons();
    void connectControls();
    void takeSequenceColors();
    void load(tag_eimagetype eType, tag_edisplayunit eUnit);
    void takeColors();
    void takeOverlay();
    // The picture and the bar anew.
    void draw();
    void showLoaded();
    void showTitle();
    void tellPixel(int x, int y);

    std::unique_ptr<DatasetImage> m_pImage;
    QList<QPair<QToolButton*, int>> m_icons; // with their orvwidgets::ViewIcon
    DatasetView* m_pView = nullptr;
    ColorBarWidget* m_pBar = nullptr;
    QComboBox* m_pImageBox = nullptr;
    UnitBox* m_pUnitBox = nullptr;
    ColorTableBox* m_pColorBox = nullptr;
    QCheckBox* m_pReversedBox = nullptr;
    QCheckBox* m_pLogBox = nullptr;
    RangePanel* m_pRange = nullptr;
    QCheckBox* m_pOverlayBox = nullptr;
    QSlider* m_pOpacitySlider = nullptr;
};
