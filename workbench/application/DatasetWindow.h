// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVImageWindow.h"
#include "host/orv_types.h"
#include "workbench/application/DatasetImage.h"

#include <QList>
#include <QPair>
#include <QTimer>

#include <memory>

class BackgroundWork;
class ColorBarWidget;
class ColorTableBox;
class DatasetView;
class QCheckBox;
class QComboBox;
class QSlider;
class QToolButton;
class QUndoStack;
class QVBoxLayout;
class RangePanel;
class RegionPanel;
class UnitBox;

// The window of one dataset's images: the picture with its colour bar, and how it is shown. An image is read on a
// thread, drawn and counted in turns of the event loop, so that a large one does not hold up all else for as long;
// until then the one before is seen. The dataset is borrowed and outlives the window.
class DatasetWindow : public CORVImageWindow
{
    Q_OBJECT

public:
    explicit DatasetWindow(CORVDataset* pDataset, QWidget* pParent = nullptr);
    ~DatasetWindow() override;

    // What is still to be done for them is done first.
    DatasetView* view();
    DatasetImage& image();
    // Shows the image of that tag_eimagetype, in the unit when it can be had there; one that the dataset lacks shows
    // the first it has.
    void showImage(int nImage) { showImage(nImage, unit()); }
    void showImage(int nImage, tag_edisplayunit eUnit);
    tag_edisplayunit unit() const;

    // Of the changes of regions that were made here.
    QUndoStack& history();

    // Reads the image again; a range that the user has chosen stays.
    void refreshImage() override;

    // Milliseconds for which an image may be read before the window tells that; 150 at the start.
    void setPatience(int nMilliseconds) { m_patience.setInterval(nMilliseconds); }

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
    // Begins to show another image, or the same in another unit.
    void begin(tag_eimagetype eType, tag_edisplayunit eUnit);
    void doNext();
    void catchUp();
    void startReading();
    void take();
    void takeColors();
    void takeOverlay();
    // The picture and the bar anew.
    void draw();
    void showLoaded();
    void showRange();
    void showTitle();
    void tellPixel(int x, int y);
    void connectRegions();
    // Those of the dataset, over the picture and in their table.
    void showRegions();

    // What is to be done; each comes before those above it.
    enum class Step
    {
        None,
        Count, // into the histogram
        Draw,
        Take, // what was read
        Read
    };

    std::unique_ptr<DatasetImage> m_pImage;
    std::unique_ptr<BackgroundWork> m_pReading;
    std::shared_ptr<DatasetImage::Loaded> m_pLoaded; // by the work
    bool m_bKeepsRange = false;
    QTimer m_patience;
    QTimer m_idle;
    bool m_bTurn = false;
    Step m_eNext = Step::None;
    tag_eimagetype m_eWanted = IMAGETYPE_MAIN_DATA;
    tag_edisplayunit m_eWantedUnit = DISPLAYUNIT_COUNTS;
    QList<QPair<QToolButton*, int>> m_icons; // with their orvwidgets::ViewIcon
    DatasetView* m_pView = nullptr;
    ColorBarWidget* m_pBar = nullptr;
    QComboBox* m_pImageBox = nullptr;
    UnitBox* m_pUnitBox = nullptr;
    ColorTableBox* m_pColorBox = nullptr;
    QCheckBox* m_pReversedBox = nullptr;
    QCheckBox* m_pLogBox = nullptr;
    RangePanel* m_pRange = nullptr;
    RegionPanel* m_pRegions = nullptr;
    QCheckBox* m_pOverlayBox = nullptr;
    QSlider* m_pOpacitySlider = nullptr;
};
