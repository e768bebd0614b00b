// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVChildWindow.h"

#include <QCloseEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>

namespace {

QPointer<QWidget>& knownMainWindow()
{
    static QPointer<QWidget> pMainWindow;
    return pMainWindow;
}

} // namespace

CORVChildWindow::CORVChildWindow(QWidget* pParent) : QWidget(pParent) {}

CORVChildWindow::~CORVChildWindow()
{
    // What a derived class has places for, its own destructor has released already.
    CORVChildWindow::releaseForeignWidgets();
}

void CORVChildWindow::setMainWindow(QWidget* pMainWindow)
{
    knownMainWindow() = pMainWindow;
}

QWidget* CORVChildWindow::mainWindow()
{
    return knownMainWindow();
}

QWidget* CORVChildWindow::getActiveChildWnd()
{
    QWidget* pMain = knownMainWindow();
    const auto* pArea = pMain != nullptr ? pMain->findChild<QMdiArea*>() : nullptr;
    // The current one, and not the active one: while another program has the focus, no sub-window is active.
    QMdiSubWindow* pFrame = pArea != nullptr ? pArea->currentSubWindow() : nullptr;
    auto* pChild = pFrame != nullptr ? qobject_cast<CORVChildWindow*>(pFrame->widget()) : nullptr;
    return pChild != nullptr && !pFrame->isHidden() ? pChild : pMain;
}

void CORVChildWindow::giveToMainWindow(QWidget* pWidget)
{
    pWidget->hide();
    // Its kind of window comes back when somebody shows it as one; here it is nobody's part.
    pWidget->setParent(knownMainWindow(), pWidget->windowFlags());
}

void CORVChildWindow::releaseForeignWidgets()
{
    const auto children = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* pChild : children) {
        // Pop-ups and tool tips of its own parts are made anew when they are wanted.
        const bool bDialog = pChild->windowType() == Qt::Window || pChild->windowType() == Qt::Dialog;
        if (bDialog) {
            giveToMainWindow(pChild);
        }
    }
}

void CORVChildWindow::closeEvent(QCloseEvent* pEvent)
{
    QWidget::closeEvent(pEvent);
    if (pEvent->isAccepted()) {
        releaseForeignWidgets();
    }
}
