// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/PaletteControl.h"

#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/LogFeed.h"
#include "workbench/application/LogModel.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteDock.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/ProcessWatch.h"
#include "workbench/application/RunLock.h"
#include "workbench/application/paletteReason.h"

#include <QApplication>

namespace {

constexpr int retryMilliseconds = 50;

}

PaletteControl::PaletteControl(const Parts& parts, QObject* pParent) : QObject(pParent), m_parts(parts)
{
    connect(&m_parts.documents, &OpenDocuments::sequenceAdded, &m_parts.plugin, &PluginHost::tellSequenceAdded);
    connect(&m_parts.documents, &OpenDocuments::sequenceRemoved, this, &PaletteControl::onSequenceRemoved);
    connect(&m_parts.documents, &OpenDocuments::datasetRemoved, &m_parts.plugin, &PluginHost::tellDatasetRemoved);
    connect(&m_parts.documents, &OpenDocuments::currentChanged, this, &PaletteControl::announce);
    connect(&m_parts.documents, &OpenDocuments::tabChanged, this, &PaletteControl::onTabChanged);
    connect(&m_parts.plugin, &PluginHost::validityTold, this, &PaletteControl::arrange);
    connect(&m_parts.plugin, &PluginHost::windowsWanted, this, &PaletteControl::onWindowsWanted);
    connect(&m_parts.log, &LogFeed::arrived, this, &PaletteControl::takeRecords);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &PaletteControl::announceWhenIdle);
    arrange();
}

bool PaletteControl::load(const QStringList& folders)
{
    const bool bLoaded = m_parts.plugin.load(folders);
    if (bLoaded) {
        takeUp();
    } else {
        arrange();
    }
    return bLoaded;
}

void PaletteControl::takeUp()
{
    m_parts.dock.setTool(m_parts.plugin.palette());
    const QList<CORVSequenceDataset*> sequences = m_parts.documents.sequences();
    for (CORVSequenceDataset* pSequence : sequences) {
        m_parts.plugin.tellSequenceAdded(pSequence);
    }
    announce();
}

void PaletteControl::announce()
{
    // What was logged before concerns something else.
    m_parts.log.flush();
    m_strComplaint.clear();
    CORVDataset* pDataset = m_parts.documents.currentDataset();
    CORVSequenceDataset* pSequence = pDataset != nullptr ? pDataset->sequence() : m_parts.documents.currentSequence();
    if (m_bBatch && pSequence != m_pBatchSequence) {
        pSequence = nullptr;
        pDataset = nullptr;
    }
    m_pTold = pSequence != nullptr ? pSequence : m_pTold;
    if (pDataset != nullptr) {
        m_parts.plugin.tellDataset(pDataset);
    } else {
        m_parts.plugin.tellSequence(pSequence);
    }
    m_parts.log.flush();
    arrange();
}

void PaletteControl::onSequenceRemoved(CORVSequenceDataset* pSequence)
{
    if (m_pTold == pSequence) {
        m_pTold = nullptr;
    }
    if (m_pBatchSequence == pSequence) {
        m_pBatchSequence = nullptr;
    }
    m_parts.plugin.tellSequenceRemoved(pSequence);
}

void PaletteControl::beginBatch()
{
    m_bBatch = true;
    m_pBatchSequence = nullptr;
}

void PaletteControl::setBatchSequence(CORVSequenceDataset* pSequence)
{
    m_pBatchSequence = pSequence;
}

void PaletteControl::endBatch()
{
    m_bBatch = false;
    m_pBatchSequence = nullptr;
    announce();
}

void PaletteControl::onTabChanged(const QString& strTab)
{
    m_parts.plugin.tellTab(strTab);
    arrange();
}

void PaletteControl::onWindowsWanted(bool bRestored)
{
    if (!bRestored) {
        m_parts.lock.lock();
        arrange();
        return;
    }
    m_parts.lock.unlock();
    arrange();
    // A sequence that came to the front meanwhile has left the palette off. The tool is still in the middle of its
    // work.
    m_retry.start(0);
}

void PaletteControl::announceWhenIdle()
{
    if (m_parts.lock.isLocked()) {
        return; // the next end brings it here again
    }
    if (m_parts.processes.isRunning() || QApplication::activeModalWidget() != nullptr) {
        m_retry.start(retryMilliseconds);
        return;
    }
    announce();
}

void PaletteControl::takeRecords(const QVector<orv::LogRecord>& records)
{
    for (const orv::LogRecord& record : records) {
        const int nLevel = LogModel::levelOf(record);
        if (nLevel == CORVLOG_WARNING || nLevel == CORVLOG_ERROR) {
            m_strComplaint = record.m_strMessage;
        }
    }
}

void PaletteControl::arrange()
{
    if (!m_parts.plugin.isLoaded()) {
        m_parts.dock.showMissingPlugin(m_parts.plugin.reason(), m_parts.plugin.file());
    } else if (m_parts.plugin.isValid() || m_parts.lock.isLocked()) {
        m_parts.dock.showPalette();
    } else {
        m_parts.dock.showReason(reason());
    }
}

QString PaletteControl::reason() const
{
    PaletteFacts facts;
    facts.running = m_parts.lock.isLocked();
    facts.anythingOpen = m_parts.documents.count() > 0;
    facts.lastComplaint = m_strComplaint;
    const CORVSequenceDataset* pSequence = m_parts.documents.currentSequence();
    if (pSequence != nullptr) {
        facts.sequenceInFront = true;
        facts.name = pSequence->getSequenceName();
        facts.images = pSequence->getDatasets().size();
        facts.analysable = pSequence->isSpectrallyAnalysable || pSequence->isKyvoSequence();
        facts.tab = m_parts.documents.currentSequenceWindow()->getCurrentTabName();
    } else {
        facts.name = m_parts.documents.currentTitle();
    }
    return paletteReason(facts);
}
