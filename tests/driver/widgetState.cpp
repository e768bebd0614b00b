// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/widgetState.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>

namespace {

constexpr int mostEntries = 500;

QJsonArray place(const QWidget& widget)
{
    const QPoint corner = widget.mapToGlobal(QPoint(0, 0));
    return {corner.x(), corner.y(), widget.width(), widget.height()};
}

QJsonArray rowsBelow(const QAbstractItemModel& model, const QModelIndex& parent)
{
    QJsonArray rows;
    for (int nRow = 0; nRow < qMin(model.rowCount(parent), mostEntries); ++nRow) {
        QJsonArray cells;
        for (int nColumn = 0; nColumn < qMin(model.columnCount(parent), mostEntries); ++nColumn) {
            cells.append(model.index(nRow, nColumn, parent).data().toString());
        }
        rows.append(cells);
    }
    return rows;
}

QJsonArray headers(const QAbstractItemModel& model, Qt::Orientation eWay)
{
    QJsonArray texts;
    const int nCount = eWay == Qt::Horizontal ? model.columnCount() : model.rowCount();
    for (int i = 0; i < qMin(nCount, mostEntries); ++i) {
        texts.append(model.headerData(i, eWay).toString());
    }
    return texts;
}

void addEntries(const QWidget& widget, QJsonObject* pState)
{
    if (const auto* pView = qobject_cast<const QAbstractItemView*>(&widget)) {
        if (pView->model() != nullptr && !widget.inherits("QHeaderView")) {
            (*pState)["rows"] = rowsBelow(*pView->model(), QModelIndex());
            (*pState)["columnHeaders"] = headers(*pView->model(), Qt::Horizontal);
            (*pState)["rowHeaders"] = headers(*pView->model(), Qt::Vertical);
        }
    } else if (const auto* pCombo = qobject_cast<const QComboBox*>(&widget)) {
        QJsonArray entries;
        for (int i = 0; i < qMin(pCombo->count(), mostEntries); ++i) {
            entries.append(pCombo->itemText(i));
        }
        (*pState)["entries"] = entries;
        (*pState)["current"] = pCombo->currentIndex();
    } else if (const auto* pBar = qobject_cast<const QTabBar*>(&widget)) {
        QJsonArray tabs;
        for (int i = 0; i < pBar->count(); ++i) {
            tabs.append(pBar->tabText(i));
        }
        (*pState)["tabs"] = tabs;
        (*pState)["current"] = pBar->currentIndex();
    } else if (const auto* pMenu = qobject_cast<const QMenu*>(&widget)) {
        QJsonArray entries;
        for (const QAction* pAction : pMenu->actions()) {
            entries.append(QJsonObject{
                {"text", pAction->text()}, {"enabled", pAction->isEnabled()}, {"checked", pAction->isChecked()}});
        }
        (*pState)["entries"] = entries;
    }
}

void addValue(const QWidget& widget, QJsonObject* pState)
{
    const auto add = [pState](double dValue, double dLeast, double dMost) {
        (*pState)["value"] = dValue;
        (*pState)["range"] = QJsonArray{dLeast, dMost};
    };
    if (const auto* pSpin = qobject_cast<const QSpinBox*>(&widget)) {
        add(pSpin->value(), pSpin->minimum(), pSpin->maximum());
    } else if (const auto* pDouble = qobject_cast<const QDoubleSpinBox*>(&widget)) {
        add(pDouble->value(), pDouble->minimum(), pDouble->maximum());
    } else if (const auto* pSlider = qobject_cast<const QAbstractSlider*>(&widget)) {
        add(pSlider->value(), pSlider->minimum(), pSlider->maximum());
        for (const char* pName : {"lowerValue", "upperValue"}) {
            const QVariant end = widget.property(pName);
            if (end.isValid()) {
                (*pState)[pName] = end.toInt();
            }
        }
    } else if (const auto* pProgress = qobject_cast<const QProgressBar*>(&widget)) {
        add(pProgress->value(), pProgress->minimum(), pProgress->maximum());
    }
}

} // namespace

QString shownText(const QWidget& widget)
{
    if (const auto* pButton = qobject_cast<const QAbstractButton*>(&widget)) {
        return pButton->text();
    }
    if (const auto* pLabel = qobject_cast<const QLabel*>(&widget)) {
        return pLabel->text();
    }
    if (const auto* pGroup = qobject_cast<const QGroupBox*>(&widget)) {
        return pGroup->title();
    }
    if (const auto* pEdit = qobject_cast<const QLineEdit*>(&widget)) {
        return pEdit->text();
    }
    if (const auto* pCombo = qobject_cast<const QComboBox*>(&widget)) {
        return pCombo->currentText();
    }
    if (const auto* pSpin = qobject_cast<const QAbstractSpinBox*>(&widget)) {
        return pSpin->text();
    }
    if (const auto* pPlain = qobject_cast<const QPlainTextEdit*>(&widget)) {
        return pPlain->toPlainText();
    }
    if (const auto* pRich = qobject_cast<const QTextEdit*>(&widget)) {
        return pRich->toPlainText();
    }
    if (const auto* pTabs = qobject_cast<const QTabWidget*>(&widget)) {
        return pTabs->tabText(pTabs->currentIndex());
    }
    return widget.windowTitle();
}

QJsonObject stateOf(const QWidget& widget)
{
    QJsonObject state{{"name", widget.objectName()},
                      {"class", widget.metaObject()->className()},
                      {"place", place(widget)},
                      {"visible", widget.isVisible()},
                      {"enabled", widget.isEnabled()},
                      {"focus", widget.hasFocus()},
                      {"window", widget.isWindow()},
                      {"text", shownText(widget)},
                      {"toolTip", widget.toolTip()},
                      {"accessibleName", widget.accessibleName()},
                      {"styleSheet", widget.styleSheet()},
                      {"takesTab", (widget.focusPolicy() & Qt::TabFocus) != 0}};
    if (const auto* pButton = qobject_cast<const QAbstractButton*>(&widget)) {
        state["checked"] = pButton->isChecked();
    }
    if (const auto* pEdit = qobject_cast<const QLineEdit*>(&widget)) {
        state["readOnly"] = pEdit->isReadOnly();
    }
    if (const auto* pBox = qobject_cast<const QMessageBox*>(&widget)) {
        state["message"] = pBox->text();
        state["details"] = pBox->informativeText();
    }
    addEntries(widget, &state);
    addValue(widget, &state);
    return state;
}

QJsonObject treeOf(const QWidget& widget)
{
    QJsonObject state = stateOf(widget);
    QJsonArray inside;
    for (const QObject* pChild : widget.children()) {
        const auto* pChildWidget = qobject_cast<const QWidget*>(pChild);
        if (pChildWidget != nullptr && !pChildWidget->isWindow() && pChildWidget->isVisible()) {
            inside.append(treeOf(*pChildWidget));
        }
    }
    if (!inside.isEmpty()) {
        state["inside"] = inside;
    }
    return state;
}
