// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchEntry.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/BatchRecord.h"
#include "services/support/CliFixture.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

// A folder "out" of a batch, with results as a batch leaves them.
class BatchFolder : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        places().make();
    }

    BatchPlaces places() const { return BatchPlaces(path("out")); }
    QList<BatchEntry> entries() const { return batchEntries(places(), m_jobs); }

    void addJob(const QString& strName, const QString& strGroup = {})
    {
        BatchJob job;
        job.sequence = QStringLiteral("/data/") + strName;
        job.name = strName;
        job.group = strGroup;
        m_jobs.append(job);
    }
    void addFailed(const QString& strName, const QString& strMessage)
    {
        addJob(strName);
        BatchRecord record;
        record.message = strMessage;
        record.write(places().record(strName));
    }
    void addDone(const QString& strName, double dResidual, const QStringList& warnings = {},
                 const QStringList& components = {QStringLiteral("Dye A"), QStringLiteral("Dye B")})
    {
        addJob(strName);
        BatchRecord record;
        record.done = true;
        record.warnings = warnings;
        record.seconds = 2.5;
        record.write(places().record(strName));
        QJsonArray list;
        for (const QString& component : components) {
            list.append(QJsonObject{
                {"name", component}, {"color", "red"}, {"map", component + ".tif"}, {"share", 0.5}, {"maximum", 4.0}});
        }
        const QJsonObject summary{{"sequence", "Seq 1"},
                                  {"run", strName},
                                  {"method", "library"},
                                  {"unit", "Counts"},
                                  {"images", 6},
                                  {"binning", 4},
                                  {"pixels", 4096},
                                  {"residual", dResidual},
                                  {"explainedVariance", 0.995},
                                  {"components", list},
                                  {"files", QJsonArray{"composite.png", "summary.json"}}};
        write("out/" + strName + "/summary.json", QJsonDocument(summary).toJson());
        write("out/" + strName + "/report.html", "<html>");
        QImage composite(640, 480, QImage::Format_RGB32);
        composite.fill(Qt::darkGreen);
        EXPECT_TRUE(composite.save(path("out/" + strName + "/composite.png")));
    }

    QList<BatchJob> m_jobs;
};
