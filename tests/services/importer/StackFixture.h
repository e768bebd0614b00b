// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImporterFixture.h"

#include "host/CORVSequenceDataset.h"
#include "services/importer/Importer.h"

// A stack of images with its table, and what an import makes of it.
class StackFixture : public ImporterFixture
{
protected:
    // A folder "stack" of three images of 4 x 3 pixels with their table.
    void makeStack(const QByteArray& table = "file,excitation,emission\na.tif,488,510\nb.tif,488,530\n"
                                             "c.tif,514,530\n")
    {
        writeRamp("stack/a.tif", 100);
        writeRamp("stack/b.tif", 200);
        writeRamp("stack/c.tif", 300);
        write("stack/images.csv", table);
        m_options.source = path("stack");
        m_options.table = path("stack/images.csv");
        m_options.output = path("out");
    }

    bool import()
    {
        m_error.clear();
        return importStack(m_options, ImportProgress(), &m_report, &m_error);
    }
    // The reason of a failure, which must have left nothing behind.
    QString refusal()
    {
        EXPECT_FALSE(import());
        EXPECT_FALSE(QFileInfo::exists(m_options.output));
        for (const QString& name : QDir(path("")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
            EXPECT_FALSE(name.startsWith('.')) << qPrintable(name);
        }
        return m_error;
    }
    QString refusalOf(const QByteArray& table)
    {
        makeStack(table);
        QString reason = refusal();
        EXPECT_TRUE(reason.startsWith(m_options.table)) << qPrintable(reason);
        return reason.remove(0, m_options.table.size());
    }

    void open(CORVSequenceDataset& sequence)
    {
        QString error;
        QStringList warnings;
        ASSERT_EQ(sequence.open(m_options.output, &error, &warnings), ESTATUS_SUCCESS) << qPrintable(error);
        EXPECT_TRUE(warnings.isEmpty()) << qPrintable(warnings.join('\n'));
    }
    static QString value(CORVDataset* dataset, const char* section, const char* key)
    {
        QString text;
        const CPLSection* found = dataset->clickInfo[section];
        return found != nullptr && found->getValue(key, &text) == 0 ? text : QString("absent");
    }

    ImportOptions m_options;
    ImportReport m_report;
    QString m_error;
};
