// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QAction;
class QMainWindow;
class QMenu;

// The actions of the main window, each with its object name, in its menus. Their parent is the window.
struct MainActions
{
    explicit MainActions(QMainWindow& window);

    QAction* open;
    QAction* import;
    QAction* simulate;
    QAction* batch;
    QAction* saveImage;
    QAction* close;
    QAction* closeAll;
    QAction* print;
    QAction* preview;
    QAction* preferences;
    QAction* quit;
    QAction* undo;
    QAction* redo;
    QAction* copyPicture;
    QAction* fullScreen;
    QAction* switchPane;
    QAction* nextTab;
    QAction* previousTab;
    QAction* cascade;
    QAction* tile;
    QAction* nextWindow;
    QAction* previousWindow;
    QAction* guide;
    QAction* about;
    QMenu* recentMenu;
    QMenu* viewMenu;
    QMenu* windowMenu;
};
