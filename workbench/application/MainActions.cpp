// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/MainActions.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace {

QString tr(const char* pText)
{
    return QCoreApplication::translate("MainActions", pText);
}

// Of the window too, so that its keys work where the menu bar is not.
QAction* make(QMainWindow& window, QMenu* pMenu, const char* pName, const char* pText, const QKeySequence& keys = {})
{
    auto* pAction = new QAction(tr(pText), &window);
    pAction->setObjectName(QLatin1String(pName));
    pAction->setShortcut(keys);
    pMenu->addAction(pAction);
    window.addAction(pAction);
    return pAction;
}

QMenu* menu(QMainWindow& window, const char* pName, const char* pText)
{
    QMenu* pMenu = window.menuBar()->addMenu(tr(pText));
    pMenu->setObjectName(QLatin1String(pName));
    pMenu->setToolTipsVisible(true);
    return pMenu;
}

constexpr int ctrl = Qt::CTRL;
constexpr int shift = Qt::SHIFT;

} // namespace

MainActions::MainActions(QMainWindow& window)
{
    QMenu* pFile = menu(window, "fileMenu", "&File");
    open = make(window, pFile, "openAction", "&Open a sequence ...", QKeySequence::Open);
    import = make(window, pFile, "importAction", "&Import images ...", ctrl + Qt::Key_I);
    simulate = make(window, pFile, "simulateAction", "Si&mulate a mouse ...");
    batch = make(window, pFile, "batchAction", "U&nmix many sequences ...");
    recentMenu = pFile->addMenu(tr("&Recent sequences"));
    recentMenu->setObjectName(QStringLiteral("recentMenu"));
    pFile->addSeparator();
    saveImage = make(window, pFile, "saveImageAction", "&Save the image ...", QKeySequence::Save);
    close = make(window, pFile, "closeAction", "&Close", ctrl + Qt::Key_W);
    closeAll = make(window, pFile, "closeAllAction", "Close &all", ctrl + shift + Qt::Key_W);
    pFile->addSeparator();
    print = make(window, pFile, "printAction", "&Print ...", QKeySequence::Print);
    preview = make(window, pFile, "previewAction", "Print pre&view ...");
    pFile->addSeparator();
    quit = make(window, pFile, "quitAction", "&Quit", ctrl + Qt::Key_Q);
    quit->setMenuRole(QAction::QuitRole);

    QMenu* pEdit = menu(window, "editMenu", "&Edit");
    undo = make(window, pEdit, "undoAction", "&Undo", ctrl + Qt::Key_Z);
    redo = make(window, pEdit, "redoAction", "&Redo", ctrl + shift + Qt::Key_Z);
    pEdit->addSeparator();
    copyPicture = make(window, pEdit, "copyPictureAction", "&Copy the picture", ctrl + shift + Qt::Key_C);
    pEdit->addSeparator();
    preferences = make(window, pEdit, "preferencesAction", "&Preferences ...", ctrl + Qt::Key_Comma);

    viewMenu = menu(window, "viewMenu", "&View");
    switchPane = make(window, viewMenu, "switchPaneAction", "&To the panel and back", Qt::Key_F6);
    nextTab = make(window, viewMenu, "nextTabAction", "&Next tab", ctrl + Qt::Key_PageDown);
    previousTab = make(window, viewMenu, "previousTabAction", "&Previous tab", ctrl + Qt::Key_PageUp);
    viewMenu->addSeparator();
    fullScreen = make(window, viewMenu, "fullScreenAction", "&Full screen", Qt::Key_F11);
    fullScreen->setCheckable(true);
    viewMenu->addSeparator();

    windowMenu = menu(window, "windowMenu", "&Window");
    nextWindow = make(window, windowMenu, "nextWindowAction", "&Next", ctrl + Qt::Key_F6);
    previousWindow = make(window, windowMenu, "previousWindowAction", "&Previous", ctrl + shift + Qt::Key_F6);
    windowMenu->addSeparator();
    tile = make(window, windowMenu, "tileAction", "&Tile");
    cascade = make(window, windowMenu, "cascadeAction", "&Cascade");

    QMenu* pHelp = menu(window, "helpMenu", "&Help");
    guide = make(window, pHelp, "guideAction", "&How to begin", QKeySequence::HelpContents);
    about = make(window, pHelp, "aboutAction", "&About");
    about->setMenuRole(QAction::AboutRole);
}
