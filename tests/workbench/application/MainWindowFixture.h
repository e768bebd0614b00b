// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FakeTool.h"
#include "ScriptedResponder.h"
#include "support/screen.h"
#include "support/simulated.h"

#include "host/CORVPreference.h"
#include "host/CORVSettings.h"
#include "workbench/application/MainWindow.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/RunLock.h"
#include "workbench/application/WorkbenchOptions.h"

#include <QAction>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

// A main window on an empty set of settings, with questions answered by a script, and with a tool that tells what it
// heard when a test asks for it.
class MainWindowFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CORVPreference::getSettings()->clear();
        m_options.pluginFolder = m_folder.filePath(QStringLiteral("no plug-in"));
    }
    void TearDown() override { m_pWindow.reset(); }

    void makeWindow()
    {
        m_pWindow = std::make_unique<MainWindow>(m_options);
        m_pWindow->show();
        m_pWindow->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(m_pWindow.get()));
        QApplication::setActiveWindow(m_pWindow.get()); // there is no window manager to do so
        QApplication::processEvents();
    }
    void makeWindowWithTool()
    {
        makeWindow();
        m_pTool = new FakeTool;
        m_pWindow->plugin().take(m_pTool);
        m_pWindow->palette().takeUp();
        m_pTool->m_told.clear();
    }
    static QString mouse() { return simulated::sequence("mouse", {"--size", "32", "--bands", "6"}); }
    static QString other() { return simulated::sequence("other", {"--size", "32", "--bands", "4"}); }

    template <typename Widget = QWidget>
    Widget* find(const char* pName) const
    {
        auto* pWidget = m_pWindow->findChild<Widget*>(QLatin1String(pName));
        EXPECT_NE(pWidget, nullptr) << pName;
        return pWidget;
    }
    void trigger(const char* pAction) const { find<QAction>(pAction)->trigger(); }
    // What is left for the event loop, deletions too.
    static void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QApplication::processEvents();
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    QTemporaryDir m_folder;
    WorkbenchOptions m_options;
    ScriptedResponder m_script;
    std::unique_ptr<MainWindow> m_pWindow;
    FakeTool* m_pTool = nullptr; // the window's
};
