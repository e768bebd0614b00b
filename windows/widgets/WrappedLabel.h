// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

// A label of several lines that asks for the height its text needs at its width. A plain one leaves that to the layouts
// around it, which squeeze it as soon as one of them is inside something that scrolls.
class WrappedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit WrappedLabel(QWidget* pParent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    // What depends on it takes the preferred heights of all around it.
    bool hasHeightForWidth() const override { return false; }

protected:
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    QSize sizeAt(int nWidth) const;
};
