// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMdiSubWindow>

// The frame of a child window in the MDI area. It closes when its child window agrees to.
class CORVMdiSubWindow : public QMdiSubWindow
{
    Q_OBJECT

public:
    explicit CORVMdiSubWindow(QWidget* pParent = nullptr, Qt::WindowFlags eFlags = {});

    // Shows the window in front and makes it the current one, restored if it was minimised.
    void showWindow();

public Q_SLOTS:
    void hideWindow();
};
