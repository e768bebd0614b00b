// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ResultsListInMemory.h"

#include "storage/resultsIndex.h"

#include "host/CORVSequenceDataset.h"
#include "host/CPLSettingsFileWrapper.h"

#include <QFileInfo>

#include <algorithm>

namespace {

const CORVSequenceDataset* sequenceOf(const QString& strSequence)
{
    if (const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(strSequence)) {
        return pSequence;
    }
    for (const CORVSequenceDataset* pSequence : CORVSequenceDataset::openSequences()) {
        if (pSequence->getSequenceName() == strSequence) {
            return pSequence;
        }
    }
    return nullptr;
}

} // namespace

void ResultsListInMemory::setCurrentIndex(int nIndex)
{
    if (nIndex < 0 || nIndex >= m_items.size()) {
        return;
    }
    m_nIndex = nIndex;
    m_strText = m_items.at(nIndex);
}

bool ResultsListInMemory::choose(const QString& strText)
{
    const int nIndex = m_items.indexOf(strText);
    setCurrentIndex(nIndex);
    return nIndex >= 0;
}

void ResultsListInMemory::updateSavedResultsForSelSeqId(const QString& strSequence)
{
    const CORVSequenceDataset* pSequence = sequenceOf(strSequence);
    const QString strInfoPath = pSequence != nullptr ? pSequence->getSequenceInfoPath() : QString();
    const QString strIndex = resultsIndex::indexPath(resultsIndex::folder(strInfoPath));
    CPLSettingsFileWrapper index;
    resultsIndex::setTags(index);
    // A sequence without saved results has no index, and that is nothing to tell of.
    if (!strInfoPath.isEmpty() && QFileInfo::exists(strIndex)) {
        index.load(strIndex);
    }
    m_saved = index.getMenuNames(resultsIndex::sectionTag());
    m_items = m_saved;
    if (m_bResultModified) {
        m_items.append(index.getNextAutoMenuName() + resultsIndex::newMark());
        setCurrentIndex(m_items.size() - 1);
        return;
    }
    const int nPlace = m_nIndex;
    m_nIndex = -1;
    if (!choose(resultsIndex::withoutNewMark(m_strText))) {
        m_strText.clear();
        setCurrentIndex(std::clamp(nPlace, 0, std::max(0, m_items.size() - 1)));
    }
}
