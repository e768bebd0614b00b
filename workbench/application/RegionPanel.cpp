// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RegionPanel.h"

#include "host/CORVDataset.h"
#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvwidgets/viewIcons.h"
#include "workbench/application/datasetKeeper.h"
#include "workbench/application/literalToolTip.h"
#include "workbench/application/regionTexts.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using orvwidgets::ViewIcon;

namespace {

constexpr int kRowsShown = 4;
constexpr int kMostChanges = 200; // an outline by hand may take 160 kB in each

bool isSame(const tagROIInfo& one, const tagROIInfo& other)
{
    return one.name == other.name && ROIShape::toText(one) == ROIShape::toText(other);
}

} // namespace

RegionPanel::RegionPanel(CORVDataset* pDataset, QWidget* pParent)
    : QWidget(pParent), m_pDataset(pDataset),
      m_pRectangleButton(addButton("m_pDrawRectangleButton", tr("Draw rectangles: drag in the image"))),
      m_pEllipseButton(addButton("m_pDrawEllipseButton", tr("Draw ellipses: drag in the image"))),
      m_pPolygonButton(addButton("m_pDrawPolygonButton",
                                 tr("Draw polygons: click at each corner; a double click, Return or a click on the "
                                    "first corner closes, Backspace or Ctrl+Z takes a corner back, Esc gives up"))),
      m_pFreeHandButton(addButton("m_pDrawFreeHandButton", tr("Draw by hand: drag along the outline"))),
      m_pRemoveButton(addButton("m_pRemoveRegionButton", tr("Remove the chosen region (Del)"))),
      m_pCopyButton(addButton("m_pCopyNumbersButton", tr("Copy the numbers of all regions, for a spreadsheet"))),
      m_pSaveButton(addButton("m_pSaveRegionsButton", tr("Save the regions with the image"))),
      m_pTable(new QTableWidget(this))
{
    setObjectName(QStringLiteral("RegionPanel"));
    makeTable();
    auto* pRow = new QHBoxLayout;
    pRow->setSpacing(0); // there may be little room beside the controls of the image
    for (QToolButton* pButton : {m_pRectangleButton, m_pEllipseButton, m_pPolygonButton, m_pFreeHandButton,
                                 m_pRemoveButton, m_pCopyButton, m_pSaveButton}) {
        pRow->addWidget(pButton);
    }
    pRow->addStretch(1);
    auto* pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(0, 0, 0, 0);
    pColumn->addLayout(pRow);
    pColumn->addWidget(m_pTable);
    for (const auto& tool : tools()) {
        const QToolButton* pButton = tool.first;
        tool.first->setCheckable(true);
        connect(pButton, &QToolButton::clicked, this, [this, pButton] { chooseTool(pButton); });
    }
    connect(m_pRemoveButton, &QToolButton::clicked, this, [this] { remove(m_pTable->currentRow()); });
    connect(m_pCopyButton, &QToolButton::clicked, this, &RegionPanel::copyNumbers);
    connect(m_pSaveButton, &QToolButton::clicked, this, &RegionPanel::save);
    // By itself an image is saved as a whole.
    m_pSaveButton->setVisible(pDataset->belongsToSequence());
    m_history.setUndoLimit(kMostChanges);
    connect(&m_history, &QUndoStack::cleanChanged, this, [this](bool bClean) {
        m_pDataset->setModified(!bClean);
        m_pSaveButton->setEnabled(!bClean);
    });
    drawIcons();
    fill();
}

// A history that ends tells that it is clean.
RegionPanel::~RegionPanel()
{
    m_history.disconnect();
}

QList<QPair<QToolButton*, RegionEditor::Tool>> RegionPanel::tools() const
{
    return {{m_pRectangleButton, RegionEditor::Tool::Rectangle},
            {m_pEllipseButton, RegionEditor::Tool::Ellipse},
            {m_pPolygonButton, RegionEditor::Tool::Polygon},
            {m_pFreeHandButton, RegionEditor::Tool::FreeHand}};
}

QToolButton* RegionPanel::addButton(const char* pName, const QString& strText)
{
    auto* pButton = new QToolButton(this);
    pButton->setObjectName(QLatin1String(pName));
    pButton->setToolTip(strText);
    pButton->setAccessibleName(strText);
    pButton->setAutoRaise(true);
    pButton->setFocusPolicy(Qt::TabFocus);
    return pButton;
}

void RegionPanel::makeTable()
{
    m_pTable->setObjectName(QStringLiteral("m_pRegionTable"));
    m_pTable->setAccessibleName(tr("Regions"));
    const QStringList titles = regionTexts::titles();
    m_pTable->setColumnCount(titles.size());
    m_pTable->setHorizontalHeaderLabels(titles);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pTable->setTabKeyNavigation(false);
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    m_pTable->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_pTable->installEventFilter(this);
    connect(m_pTable, &QTableWidget::itemSelectionChanged, this, [this] {
        const bool chosen = !m_pTable->selectedItems().isEmpty();
        m_pRemoveButton->setEnabled(chosen);
        Q_EMIT regionChosen(chosen ? m_pTable->currentRow() : -1);
    });
    connect(m_pTable, &QTableWidget::itemChanged, this, &RegionPanel::rename);
}

// In the colour of the present palette.
void RegionPanel::drawIcons()
{
    const QColor ink = palette().color(QPalette::Active, QPalette::ButtonText);
    const QList<QPair<QToolButton*, ViewIcon>> icons{{m_pRectangleButton, ViewIcon::Rectangle},
                                                     {m_pEllipseButton, ViewIcon::Ellipse},
                                                     {m_pPolygonButton, ViewIcon::Polygon},
                                                     {m_pFreeHandButton, ViewIcon::FreeHand},
                                                     {m_pRemoveButton, ViewIcon::Clear},
                                                     {m_pCopyButton, ViewIcon::Copy},
                                                     {m_pSaveButton, ViewIcon::Save}};
    for (const auto& [pButton, eIcon] : icons) {
        pButton->setIcon(orvwidgets::viewIcon(eIcon, ink));
    }
}

void RegionPanel::changeEvent(QEvent* pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange) {
        drawIcons();
    }
}

bool RegionPanel::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    if (pWatched == m_pTable && pEvent->type() == QEvent::KeyPress) {
        const auto* pKey = static_cast<QKeyEvent*>(pEvent);
        if (pKey->key() == Qt::Key_Delete && m_pTable->currentRow() >= 0) {
            remove(m_pTable->currentRow());
            return true;
        }
        if (pKey->matches(QKeySequence::Copy)) {
            copyNumbers();
            return true;
        }
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

// One of them or none.
void RegionPanel::chooseTool(const QToolButton* pChosen)
{
    RegionEditor::Tool chosen = RegionEditor::Tool::None;
    for (const auto& [pButton, eTool] : tools()) {
        if (pButton != pChosen) {
            pButton->setChecked(false);
        } else if (pButton->isChecked()) {
            chosen = eTool;
        }
    }
    Q_EMIT toolChosen(chosen);
}

const QList<tagROIInfo>& RegionPanel::regions() const
{
    return m_pDataset->roiManager()->regions();
}

// Without the unit the numbers of before would be those of another one.
void RegionPanel::measure(tag_edisplayunit eUnit)
{
    m_eUnit = eUnit;
    if (!regions().isEmpty() && !measureRegions()) {
        keep(regions());
    }
    noteSaved();
    fill();
}

bool RegionPanel::measureRegions()
{
    CROIManager& manager = *m_pDataset->roiManager();
    if (const CILImage* pImage = m_source ? m_source(m_eUnit) : nullptr) {
        return manager.measureOver(*pImage, m_eUnit) == ESTATUS_SUCCESS;
    }
    return manager.measure(m_eUnit) == ESTATUS_SUCCESS;
}

// The dataset may have been saved, or changed, by others.
void RegionPanel::noteSaved()
{
    if (!m_pDataset->isModified()) {
        m_history.setClean();
    } else if (m_history.isClean()) {
        m_history.resetClean();
    }
}

void RegionPanel::keep(const QList<tagROIInfo>& regions)
{
    QList<tagROIInfo> kept = regions;
    QList<tagROIInfo*> borrowed;
    for (tagROIInfo& region : kept) {
        borrowed.append(&region);
    }
    m_pDataset->roiManager()->createROIFromFile(&borrowed, true, false);
}

void RegionPanel::remember(const RegionChange::Step& step, bool bGoesOn)
{
    m_history.push(
        new RegionChange(step, bGoesOn, [this](const RegionChange::Step& wanted) { return follow(wanted); }));
}

bool RegionPanel::follow(const RegionChange::Step& step)
{
    QList<tagROIInfo> all = regions();
    const bool isThere = step.place < all.size() && step.from && isSame(all.at(step.place), *step.from);
    if (step.from ? !isThere : step.place > all.size()) {
        return false;
    }
    if (step.from) {
        all.removeAt(step.place);
    }
    if (step.to) {
        all.insert(step.place, *step.to);
    }
    keep(all);
    changed();
    choose(step.to ? step.place : -1);
    return true;
}

void RegionPanel::take(int nRegion, const tagROIInfo& region, bool bGoesOn)
{
    CROIManager& manager = *m_pDataset->roiManager();
    RegionChange::Step step{nRegion, std::nullopt, region};
    if (nRegion < 0) {
        tagROIInfo named = region;
        named.name = regionTexts::freeName(manager.regions());
        QString reason;
        if (!manager.addRegion(named, &reason)) {
            tell(reason);
            return;
        }
        step.place = manager.regions().size() - 1;
        step.to = named;
    } else {
        QList<tagROIInfo> regions = manager.regions();
        step.from = regions.at(nRegion);
        regions[nRegion] = region;
        keep(regions);
    }
    remember(step, bGoesOn);
    changed();
    choose(step.place);
}

void RegionPanel::remove(int nRegion)
{
    if (nRegion < 0 || nRegion >= regions().size()) {
        return;
    }
    const tagROIInfo region = regions().at(nRegion);
    m_pDataset->roiManager()->removeRegion(region.name);
    remember({nRegion, region, std::nullopt});
    changed();
    choose(-1);
}

void RegionPanel::changed()
{
    measure(m_eUnit);
    m_pDataset->roiManager()->saveROIData(&m_pDataset->clickInfo);
    m_pDataset->setModified(true);
    m_pSaveButton->setEnabled(true);
    Q_EMIT regionsChanged();
}

void RegionPanel::fill()
{
    const QSignalBlocker blocker(m_pTable);
    const int chosen = m_pTable->selectedItems().isEmpty() ? -1 : m_pTable->currentRow();
    const QList<tagROIInfo>& all = regions();
    m_pTable->setRowCount(all.size());
    for (int row = 0; row < all.size(); ++row) {
        const QStringList cells = regionTexts::cells(all.at(row));
        for (int column = 0; column < cells.size(); ++column) {
            auto* pItem = new QTableWidgetItem(cells.at(column));
            if (column == 0) {
                pItem->setToolTip(literalToolTip(cells.at(column)));
            } else {
                pItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
                pItem->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
                pItem->setToolTip(all.at(row).statistics.unit);
            }
            m_pTable->setItem(row, column, pItem);
        }
    }
    // Most images have none.
    m_pTable->setColumnHidden(regionTexts::kInvalidColumn,
                              std::all_of(all.cbegin(), all.cend(), [](const tagROIInfo& region) {
                                  return region.statistics.invalidPixels == 0;
                              }));
    // No higher than its rows; more than a few scroll.
    const int rows = std::min(all.size(), kRowsShown) + 1;
    m_pTable->setFixedHeight(rows * m_pTable->verticalHeader()->defaultSectionSize() +
                             m_pTable->horizontalScrollBar()->sizeHint().height() + 2 * m_pTable->frameWidth());
    m_pTable->setVisible(!all.isEmpty());
    m_pRemoveButton->setEnabled(chosen >= 0 && chosen < all.size());
    m_pCopyButton->setEnabled(!all.isEmpty());
    m_pSaveButton->setEnabled(m_pDataset->isModified());
}

void RegionPanel::choose(int nRegion)
{
    const QSignalBlocker blocker(m_pTable);
    if (nRegion < 0) {
        m_pTable->clearSelection();
        m_pTable->setCurrentItem(nullptr);
    } else {
        m_pTable->selectRow(nRegion);
    }
    m_pRemoveButton->setEnabled(nRegion >= 0);
    Q_EMIT regionChosen(nRegion);
}

void RegionPanel::rename(const QTableWidgetItem* pItem)
{
    const int row = pItem->row();
    if (pItem->column() != 0 || row >= regions().size() || pItem->text() == regions().at(row).name) {
        return;
    }
    QString reason;
    const tagROIInfo before = regions().at(row);
    if (!m_pDataset->roiManager()->renameRegion(before.name, pItem->text().simplified(), &reason)) {
        fill();
        tell(reason);
        return;
    }
    remember({row, before, regions().at(row)});
    changed();
    // The view knows what is chosen by its name.
    choose(row);
}

void RegionPanel::copyNumbers() const
{
    QGuiApplication::clipboard()->setText(regionTexts::table(regions()));
}

void RegionPanel::save()
{
    datasetKeeper::saveInPlace(this, *m_pDataset);
    noteSaved();
    fill();
    Q_EMIT regionsChanged();
}

void RegionPanel::tell(const QString& strProblem)
{
    CORVMessageBox::error(this, CORVUtilityFns::getAppName(), strProblem);
}
