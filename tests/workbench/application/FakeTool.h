// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVDataset.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVToolPalettePluginBase.h"

#include <QCoreApplication>
#include <QPushButton>
#include <QStringList>
#include <QThread>
#include <QVBoxLayout>

#include <functional>
#include <memory>

// A tool that keeps what the application tells it, and runs something that takes as long as it is told to: disabled and
// with events flowing, as the tool of the product does.
class FakeTool : public CORVToolPalettePluginBase
{
public:
    FakeTool() : m_pPalette(new QWidget)
    {
        m_pPalette->setObjectName(QStringLiteral("fakePalette"));
        m_pPalette->setWindowTitle(QStringLiteral("Fake Toolbox"));
        auto* pLayout = new QVBoxLayout(m_pPalette);
        m_pFirst = new QPushButton(QStringLiteral("First"), m_pPalette);
        m_pStart = new QPushButton(QStringLiteral("Start"), m_pPalette);
        m_pStart->setObjectName(QStringLiteral("startButton"));
        pLayout->addWidget(m_pFirst);
        pLayout->addWidget(m_pStart);
        QObject::connect(m_pStart, &QPushButton::clicked, this, [this] { run(); });
    }
    ~FakeTool() override
    {
        delete m_pPalette;
        if (m_pTestament != nullptr) {
            *m_pTestament = m_told;
        }
    }

    QWidget* paletteWidget() override { return m_pPalette; }
    QString pluginName() override { return QStringLiteral("Fake"); }
    int pluginTypeCode() override { return 1; }
    QString shortName() override { return QStringLiteral("Fake"); }
    bool isEnabledByDefault() override { return true; }

    void onSignalSequenceAdded(CORVSequenceDataset* pSequence) override { tell("added", pSequence); }
    void onSignalSequenceRemoved(CORVSequenceDataset* pSequence) override { tell("removed", pSequence); }
    void onSignalSequenceChanged(CORVSequenceDataset* pSequence) override
    {
        tell("changed", pSequence);
        Q_EMIT updatePluginValidity(m_pPalette, m_bTakesUp && pSequence != nullptr);
    }
    void onSignalDatasetChanged(CORVDataset* pDataset) override
    {
        m_told << QStringLiteral("dataset ") + pDataset->getClickNumber();
        Q_EMIT updatePluginValidity(m_pPalette, pDataset->belongsToSequence());
    }
    void onSignalDatasetRemoved(CORVDataset* pDataset) override
    {
        m_told << QStringLiteral("dataset removed ") + pDataset->getClickNumber();
    }
    void onSignalUpdatePluginPalette(QString strTab) override
    {
        m_told << QStringLiteral("tab ") + strTab;
        Q_EMIT updatePluginValidity(m_pPalette, strTab != QLatin1String("Other"));
    }
    void onSignalAskToSaveResults() override
    {
        m_told << QStringLiteral("ask");
        if (m_askToSave) {
            m_askToSave();
        }
    }
    void onSignalGetPrintPixmap(bool) override { m_told << QStringLiteral("print"); }

    void run()
    {
        m_told << QStringLiteral("run");
        m_pPalette->setEnabled(false);
        CORVProcess::startLongProcess(0, LONGPROCESS_GENERAL, true, QStringLiteral("Aborting..."));
        Q_EMIT restoreWindowsToMain(false);
        m_bAborted = false;
        m_bEnd = false;
        while (!m_bEnd && !m_bAborted) {
            QCoreApplication::processEvents();
            m_bAborted = CORVProcess::isProcessAborted();
            if (m_during) {
                m_during();
            }
            QThread::msleep(1);
        }
        m_pPalette->setEnabled(true);
        Q_EMIT restoreWindowsToMain(true);
        CORVProcess::endLongProcess(LONGPROCESS_ANALYSIS);
        m_told << (m_bAborted ? QStringLiteral("aborted") : QStringLiteral("ended"));
    }

    QWidget* m_pPalette;
    QPushButton* m_pFirst;
    QPushButton* m_pStart;
    QStringList m_told;
    bool m_bTakesUp = true;
    bool m_bEnd = false;
    bool m_bAborted = false;
    std::function<void()> m_during; // at every turn of a run
    std::function<void()> m_askToSave;
    QStringList* m_pTestament = nullptr; // receives what was told, at the end

private:
    void tell(const char* pWord, const CORVSequenceDataset* pSequence)
    {
        m_told << QLatin1String(pWord) + QLatin1Char(' ') +
                      (pSequence != nullptr ? pSequence->getSequenceName() : QStringLiteral("nothing"));
    }
};
