// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/application/DisplayUnits.h"

#include <QComboBox>

// The units of an image or of a sequence. One that cannot be had is disabled, and its tool tip tells why.
class UnitBox : public QComboBox
{
    Q_OBJECT

public:
    explicit UnitBox(QWidget* pParent = nullptr);

    // Replaces the entries. Says nothing.
    void setOffers(const QVector<UnitOffer>& offers, tag_edisplayunit eCurrent);
    tag_edisplayunit unit() const;

Q_SIGNALS:
    // The user chose another one.
    void unitChosen(int nUnit);
};
