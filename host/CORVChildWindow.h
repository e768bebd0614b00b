// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

// A window of the work area: what a sub-window of the main window's MDI area shows.
//
// Tools make their windows with the active child window as parent and keep them beyond its end. So a child window that
// is closed or deleted first gives away every window that has it as parent and is not its own: to the main window, or,
// when there is none, to nobody. Those windows are hidden then.
class CORVChildWindow : public QWidget
{
    Q_OBJECT

public:
    explicit CORVChildWindow(QWidget* pParent = nullptr);
    ~CORVChildWindow() override;

    // The window whose MDI area (the first below it) holds the child windows. Borrowed; null when there is none.
    static void setMainWindow(QWidget* pMainWindow);
    static QWidget* mainWindow();
    // The child window of the current sub-window, as long as it can be seen; else the main window, which may be null.
    static QWidget* getActiveChildWnd();

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    // Gives away what is not its own. A window with more places for what is not its own empties these first.
    virtual void releaseForeignWidgets();
    // Hides the widget and hands it to the main window.
    static void giveToMainWindow(QWidget* pWidget);
};
