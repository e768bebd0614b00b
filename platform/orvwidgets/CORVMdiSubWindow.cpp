// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVMdiSubWindow.h"

#include <QMdiArea>

CORVMdiSubWindow::CORVMdiSubWindow(QWidget* pParent, Qt::WindowFlags eFlags) : QMdiSubWindow(pParent, eFlags) {}

void CORVMdiSubWindow::showWindow()
{
    if (isMinimized()) {
        showNormal();
    } else {
        show();
    }
    if (widget() != nullptr) {
        widget()->show();
    }
    if (mdiArea() != nullptr) {
        mdiArea()->setActiveSubWindow(this);
    }
    raise();
}

void CORVMdiSubWindow::hideWindow()
{
    hide();
}
