// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"
#include "host/tagROIInfo.h"
#include "workbench/application/RegionChange.h"
#include "workbench/application/RegionEditor.h"

#include <QList>
#include <QPair>
#include <QUndoStack>
#include <QWidget>

#include <functional>

class CILImage;
class CORVDataset;
class QTableWidget;
class QTableWidgetItem;
class QToolButton;

// The regions of interest of a dataset: what to draw them with, and their numbers over the main data image in a table,
// in which they are chosen, renamed and removed. A change reaches the dataset's click info and marks it as modified; it
// can be taken back as long as the panel lives, and back at what was saved the mark goes. The dataset is borrowed and
// outlives the panel.
class RegionPanel : public QWidget
{
    Q_OBJECT

public:
    explicit RegionPanel(CORVDataset* pDataset, QWidget* pParent = nullptr);
    ~RegionPanel() override;

    const QList<tagROIInfo>& regions() const;
    // Who has the main data image in a unit already, or gives null; without, it is read for each measurement.
    using ImageSource = std::function<const CILImage*(tag_edisplayunit eUnit)>;
    void setImageSource(const ImageSource& source) { m_source = source; }
    // Measures anew, in that unit.
    void measure(tag_edisplayunit eUnit);
    // Adds one (-1), under the next free name, or replaces the shape of another. What goes on is one change with that
    // before it.
    void take(int nRegion, const tagROIInfo& region, bool bGoesOn = false);
    void remove(int nRegion);
    void choose(int nRegion);
    // Of the changes here.
    QUndoStack& history() { return m_history; }

Q_SIGNALS:
    void toolChosen(RegionEditor::Tool tool);
    // Regions, their names or their numbers are others.
    void regionsChanged();
    void regionChosen(int nRegion); // -1: none

protected:
    void changeEvent(QEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    // Those that draw, each with what it draws.
    QList<QPair<QToolButton*, RegionEditor::Tool>> tools() const;
    QToolButton* addButton(const char* pName, const QString& strText);
    void makeTable();
    void drawIcons();
    void chooseTool(const QToolButton* pChosen);
    // The dataset's regions become these.
    void keep(const QList<tagROIInfo>& regions);
    void remember(const RegionChange::Step& step, bool bGoesOn = false);
    bool follow(const RegionChange::Step& step);
    // The history learns which of its states is the saved one.
    void noteSaved();
    void changed();
    bool measureRegions();
    void fill();
    void rename(const QTableWidgetItem* pItem);
    void copyNumbers() const;
    void save();
    void tell(const QString& strProblem);

    CORVDataset* m_pDataset;
    ImageSource m_source;
    QUndoStack m_history;
    tag_edisplayunit m_eUnit = DISPLAYUNIT_COUNTS;
    QToolButton* m_pRectangleButton;
    QToolButton* m_pEllipseButton;
    QToolButton* m_pPolygonButton;
    QToolButton* m_pFreeHandButton;
    QToolButton* m_pRemoveButton;
    QToolButton* m_pCopyButton;
    QToolButton* m_pSaveButton;
    QTableWidget* m_pTable;
};
