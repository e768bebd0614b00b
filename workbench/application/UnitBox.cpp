// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/UnitBox.h"

#include "workbench/application/literalToolTip.h"

#include <QSignalBlocker>
#include <QStandardItemModel>

UnitBox::UnitBox(QWidget* pParent) : QComboBox(pParent)
{
    setAccessibleName(tr("Unit"));
    setToolTip(tr("Unit of the values"));
    connect(this, QOverload<int>::of(&QComboBox::activated), this, [this] { Q_EMIT unitChosen(unit()); });
}

void UnitBox::setOffers(const QVector<UnitOffer>& offers, tag_edisplayunit eCurrent)
{
    const QSignalBlocker blocker(this);
    clear();
    auto* pItems = qobject_cast<QStandardItemModel*>(model());
    for (const UnitOffer& offer : offers) {
        addItem(offer.text, static_cast<int>(offer.unit));
        if (!offer.reason.isEmpty()) {
            pItems->item(count() - 1)->setEnabled(false);
        }
        const QString tip = offer.reason.isEmpty() ? offer.quantity : tr("cannot be had: %1").arg(offer.reason);
        setItemData(count() - 1, literalToolTip(tip), Qt::ToolTipRole);
        setItemData(count() - 1, tip, Qt::AccessibleDescriptionRole);
    }
    setCurrentIndex(findData(static_cast<int>(eCurrent)));
}

tag_edisplayunit UnitBox::unit() const
{
    return static_cast<tag_edisplayunit>(currentData().toInt());
}
