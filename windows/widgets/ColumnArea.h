// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollArea>

// A column of controls that scrolls when the window is not high enough for it. It asks for the width that they need.
class ColumnArea : public QScrollArea
{
    Q_OBJECT

public:
    explicit ColumnArea(QWidget* pParent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    QSize withBar(const QSize& size) const;
};
