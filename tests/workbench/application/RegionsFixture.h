// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RegionHand.h"
#include "ScriptedResponder.h"
#include "support/screen.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "workbench/application/DatasetWindow.h"

#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

// A sequence of a folder of the test's own, and the window of its second image, in which regions are drawn.
class RegionsFixture : public ::testing::Test
{
protected:
    // Anew each time: what lies in the folder is read.
    void open()
    {
        m_pWindow.reset();
        m_pSequence = std::make_unique<CORVSequenceDataset>();
        QString error;
        ASSERT_EQ(m_pSequence->open(m_strFolder, &error), ESTATUS_SUCCESS) << qPrintable(error);
        m_pWindow = std::make_unique<DatasetWindow>(m_pSequence->getDatasets().at(1));
        m_pWindow->resize(820, 640);
        screen::show(*m_pWindow);
        m_pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
        view();
    }
    DatasetView& view() { return *m_pWindow->view(); }
    CORVDataset& dataset() { return *m_pWindow->dataset(); }
    const QList<tagROIInfo>& regions() { return dataset().roiManager()->regions(); }
    QTableWidget& table() { return *m_pWindow->findChild<QTableWidget*>("m_pRegionTable"); }
    RegionHand hand() { return RegionHand(*m_pWindow); }

    QTemporaryDir m_folder;
    QString m_strFolder = m_folder.filePath("sequence");
    ScriptedResponder m_script;
    std::unique_ptr<CORVSequenceDataset> m_pSequence;
    std::unique_ptr<DatasetWindow> m_pWindow;
};
