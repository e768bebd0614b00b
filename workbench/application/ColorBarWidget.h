// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "workbench/application/DisplayRange.h"

#include <QImage>
#include <QString>
#include <QWidget>

// A colour table with the values it stands for. Empty for an empty range.
class ColorBarWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ColorBarWidget(Qt::Orientation eOrientation, QWidget* pParent = nullptr);

    void setScale(const CILPalette& palette, const DisplayRange& range, const QString& strQuantity);
    void clearScale();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    Qt::Orientation m_eOrientation;
    CILPalette m_scale;
    DisplayRange m_range;
    QString m_strQuantity;
};
