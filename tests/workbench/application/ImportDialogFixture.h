// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "look.h"
#include "support/screen.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvimage/TiffIo.h"
#include "workbench/application/ImportDialog.h"
#include "workbench/application/ImportTable.h"

#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>

// A folder "stack" to put images in, and the dialog on it.
class ImportDialogFixture : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(QDir(m_folder.path()).mkdir("stack")); }

    static CILImage ramp(double base, long side = 16)
    {
        CILImage image;
        image.InitWithType(ORVTYPE_USHORT, side, side);
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            image.setValue(i, base + static_cast<double>(i % 100));
        }
        return image;
    }
    QString writeImage(const QString& name, double base, long side = 16)
    {
        QString error;
        const QString path = m_folder.filePath("stack/" + name);
        EXPECT_TRUE(writeTiff(path, ramp(base, side), TiffWriteOptions(), &error)) << qPrintable(error);
        return path;
    }
    QString writeFile(const QString& name, const QByteArray& bytes)
    {
        QFile file(m_folder.filePath("stack/" + name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }
    void openSequence(CORVSequenceDataset& sequence)
    {
        QString error;
        ASSERT_EQ(sequence.open(m_pDialog->sequenceFolder(), &error), ESTATUS_SUCCESS) << qPrintable(error);
    }
    // The pixel in that row and column of an image of the sequence.
    static double pixel(CORVSequenceDataset& sequence, int image, int column, int row)
    {
        const CILImage* pImage = sequence.getDatasets().at(image)->getCoreImage(IMAGETYPE_MAIN_DATA);
        return pImage->value(static_cast<std::size_t>(row * pImage->m_lWidth + column));
    }
    void typeInterval(const char* pText)
    {
        auto& interval = child<QLineEdit>("m_pIntervalEdit");
        interval.setFocus();
        interval.selectAll();
        QTest::keyClicks(&interval, pText);
        QTest::keyClick(&interval, Qt::Key_Return);
        wait();
    }
    void writeNamed()
    {
        for (const char* name : {"ex640_em700.tif", "ex640_em720.tif", "ex675_em720.tif", "ex675_em740.tif"}) {
            writeImage(name, 100);
        }
    }
    void open(const QStringList& paths)
    {
        m_pDialog = std::make_unique<ImportDialog>(paths);
        screen::show(*m_pDialog);
        m_pDialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pDialog.get()));
        wait();
    }
    void open() { open({m_folder.filePath("stack")}); }
    void wait()
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !child<QPushButton>("m_pAbortButton").isVisible(); }, 20000));
    }
    template <typename Widget>
    Widget& child(const char* name)
    {
        auto* pWidget = m_pDialog->findChild<Widget*>(name);
        EXPECT_NE(pWidget, nullptr) << name;
        return *pWidget;
    }
    QPushButton& importButton() { return child<QPushButton>("m_pImportButton"); }
    QString messages() { return child<QPlainTextEdit>("m_pMessages").toPlainText(); }
    QAbstractItemModel& model() { return *child<QTableView>("m_pTableView").model(); }
    void import()
    {
        ASSERT_TRUE(importButton().isEnabled()) << qPrintable(messages());
        QTest::mouseClick(&importButton(), Qt::LeftButton);
        wait();
    }

    QTemporaryDir m_folder;
    std::unique_ptr<ImportDialog> m_pDialog;
};
