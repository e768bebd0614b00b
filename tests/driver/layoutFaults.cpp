// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/layoutFaults.h"

#include "driver/widgetState.h"
#include "support/boxContrast.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>

namespace {

QString described(const QWidget& widget)
{
    return QStringLiteral("%1 %2: %3")
        .arg(QString::fromLatin1(widget.metaObject()->className()), widget.objectName(), shownText(widget));
}

// Inside an area that scrolls, nothing has to be within what is seen of it. One of windows does not.
bool scrolls(const QWidget& widget)
{
    for (const QWidget* pWidget = widget.parentWidget(); pWidget != nullptr && !pWidget->isWindow();
         pWidget = pWidget->parentWidget()) {
        if (qobject_cast<const QAbstractScrollArea*>(pWidget->parentWidget()) != nullptr) {
            return qobject_cast<const QMdiArea*>(pWidget->parentWidget()) == nullptr;
        }
    }
    return false;
}

bool hasTooLittleRoom(const QWidget& widget)
{
    if (const auto* pLabel = qobject_cast<const QLabel*>(&widget)) {
        if (pLabel->text().isEmpty()) {
            return false;
        }
        const int nHeight =
            pLabel->hasHeightForWidth() ? pLabel->heightForWidth(pLabel->width()) : pLabel->minimumSizeHint().height();
        return (!pLabel->wordWrap() && pLabel->minimumSizeHint().width() > pLabel->width()) ||
               nHeight > pLabel->height();
    }
    if (const auto* pTool = qobject_cast<const QToolButton*>(&widget);
        pTool != nullptr && pTool->toolButtonStyle() == Qt::ToolButtonIconOnly && !pTool->icon().isNull()) {
        return false;
    }
    if (const auto* pButton = qobject_cast<const QAbstractButton*>(&widget)) {
        // Frames may give way a little, letters may not.
        const int nText = pButton->fontMetrics().size(Qt::TextShowMnemonic, pButton->text()).width();
        return !pButton->text().isEmpty() && nText > pButton->width();
    }
    if (const auto* pCombo = qobject_cast<const QComboBox*>(&widget)) {
        QStyleOptionComboBox option;
        option.initFrom(pCombo);
        option.editable = pCombo->isEditable();
        const QRect field =
            pCombo->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, pCombo);
        // A swatch tells the colour by itself.
        return pCombo->itemIcon(pCombo->currentIndex()).isNull() &&
               pCombo->fontMetrics().horizontalAdvance(pCombo->currentText()) > field.width();
    }
    if (const auto* pSpin = qobject_cast<const QAbstractSpinBox*>(&widget)) {
        const auto* pEdit = pSpin->findChild<const QLineEdit*>();
        return pEdit != nullptr && pEdit->fontMetrics().horizontalAdvance(pEdit->text()) > pEdit->width();
    }
    if (const auto* pGroup = qobject_cast<const QGroupBox*>(&widget)) {
        return pGroup->fontMetrics().size(Qt::TextShowMnemonic, pGroup->title()).width() > pGroup->width();
    }
    return false;
}

bool reachesOut(const QWidget& widget)
{
    // Where the user has put it.
    if (const auto* pInner = qobject_cast<const QMdiSubWindow*>(&widget); pInner != nullptr && !pInner->isMaximized()) {
        return false;
    }
    const QWidget* pParent = widget.parentWidget();
    return !widget.isWindow() && pParent != nullptr && !scrolls(widget) && !pParent->rect().contains(widget.geometry());
}

bool hasBuddy(const QWidget& widget)
{
    const QList<QLabel*> labels = widget.window()->findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(),
                       [&](const QLabel* pLabel) { return pLabel->buddy() == &widget && !pLabel->text().isEmpty(); });
}

// A value, such as a line edit's, is no name.
bool hasOwnName(const QWidget& widget)
{
    if (!widget.accessibleName().isEmpty()) {
        return true;
    }
    // Screen readers take the title of a window inside another.
    if (const auto* pInner = qobject_cast<const QMdiSubWindow*>(&widget)) {
        return !pInner->windowTitle().isEmpty();
    }
    const bool bLabelled =
        qobject_cast<const QAbstractButton*>(&widget) != nullptr || qobject_cast<const QGroupBox*>(&widget) != nullptr;
    // Each tab tells its own.
    return qobject_cast<const QTabBar*>(&widget) != nullptr || (bLabelled && !shownText(widget).isEmpty()) ||
           hasBuddy(widget);
}

// Light palettes are as the style has them.
bool isFaint(const QWidget& widget)
{
    const QPalette palette = widget.palette();
    const bool bRadio = qobject_cast<const QRadioButton*>(&widget) != nullptr;
    const bool bDark = palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
    if (!bDark || !widget.isEnabled() || (!bRadio && qobject_cast<const QCheckBox*>(&widget) == nullptr)) {
        return false;
    }
    const QImage box =
        boxcontrast::drawn(*widget.style(), bRadio ? QStyle::PE_IndicatorRadioButton : QStyle::PE_IndicatorCheckBox,
                           QStyle::State_Enabled | QStyle::State_Off, palette);
    return boxcontrast::ofOutline(box, palette) < boxcontrast::kLegible;
}

template <class IsFault>
QStringList faultsOf(const QWidget& window, const IsFault& isFault)
{
    QStringList faults;
    for (const QWidget* pWidget : window.findChildren<QWidget*>()) {
        if (pWidget->isVisible() && isFault(*pWidget)) {
            faults.append(described(*pWidget));
        }
    }
    return faults;
}

} // namespace

QStringList layoutFaults::cut(const QWidget& window)
{
    return faultsOf(window, [](const QWidget& widget) { return hasTooLittleRoom(widget) || reachesOut(widget); });
}

QStringList layoutFaults::nameless(const QWidget& window)
{
    return faultsOf(window, [](const QWidget& widget) {
        return (widget.focusPolicy() & Qt::TabFocus) != 0 && widget.focusProxy() == nullptr && !hasOwnName(widget);
    });
}

QStringList layoutFaults::faint(const QWidget& window)
{
    return faultsOf(window, isFaint);
}
