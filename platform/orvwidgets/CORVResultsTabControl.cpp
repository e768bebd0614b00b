// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVResultsTabControl.h"

#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CPLSettingsFileWrapper.h"
#include "platform/orvwidgets/savedNames.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFileInfo>
#include <QSignalBlocker>

CORVResultsTabControl::CORVResultsTabControl(QWidget* pPalette, QComboBox* pCombo, QAbstractButton* pDelete,
                                             QAbstractButton* pLoad, QAbstractButton* pSave)
    : m_pCombo(pCombo), m_pDelete(pDelete), m_pLoad(pLoad), m_pSave(pSave)
{
    Q_UNUSED(pPalette) // owns the widgets, and deletes this control by itself
    m_pCombo->setEditable(true);
    // Return is the palette's gesture for renaming; it must not add the text to the list.
    m_pCombo->setInsertPolicy(QComboBox::NoInsert);
    // A name is saved as it was typed, not as one of the list that begins alike.
    m_pCombo->setCompleter(nullptr);
    connect(m_pCombo, &QComboBox::editTextChanged, this, &CORVResultsTabControl::updateButtons);
    updateButtons();
}

void CORVResultsTabControl::setTags(const QString& strAutoMenuNameTag, const QString& strSectionTag)
{
    m_strAutoMenuNameTag = strAutoMenuNameTag;
    m_strSectionTag = strSectionTag;
}

void CORVResultsTabControl::setSettingFileName(const QString& strFileName)
{
    m_strFileName = strFileName;
}

const CORVSequenceDataset* CORVResultsTabControl::sequenceOf(const QString& strSequence) const
{
    if (const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(strSequence)) {
        return pSequence;
    }
    const CORVSequenceDataset* pActive = CORVSequenceWindow::activeSequence();
    if (pActive != nullptr && pActive->getSequenceName() == strSequence) {
        return pActive;
    }
    const CORVSequenceDataset* pLast = CORVSequenceDataset::getSequenceDataset(m_strLastId);
    if (pLast != nullptr && pLast->getSequenceName() == strSequence) {
        return pLast;
    }
    for (const CORVSequenceDataset* pSequence : CORVSequenceDataset::openSequences()) {
        if (pSequence->getSequenceName() == strSequence) {
            return pSequence;
        }
    }
    return nullptr;
}

void CORVResultsTabControl::updateSavedResultsForSelSeqId(const QString& strSequence)
{
    const CORVSequenceDataset* pSequence = sequenceOf(strSequence);
    m_strLastId = pSequence != nullptr ? pSequence->getSequenceID() : QString();
    const QString infoPath = pSequence != nullptr ? pSequence->getSequenceInfoPath() : QString();
    CPLSettingsFileWrapper index;
    index.setMenuNameTag(QStringLiteral("MenuName"));
    index.setFileNameTag(QStringLiteral("FileName"));
    index.setAutoMenuNameTag(m_strAutoMenuNameTag);
    // A sequence without saved results has no index, and that is nothing to tell of.
    if (!infoPath.isEmpty() && QFileInfo::exists(infoPath + m_strFileName)) {
        index.load(infoPath + m_strFileName);
    }
    m_saved = index.getMenuNames(m_strSectionTag);
    m_bMayDelete = m_bMayLoad = m_bMaySave = true;
    if (m_pCombo) {
        const orv::SavedNames before{{}, m_pCombo->currentIndex(), m_pCombo->currentText()};
        const QString strNew = m_bResultModified ? index.getNextAutoMenuName() : QString();
        const orv::SavedNames now = orv::updatedNames(before, m_saved, strNew);
        const QSignalBlocker blocker(m_pCombo);
        m_pCombo->clear();
        m_pCombo->addItems(now.m_entries);
        m_pCombo->setCurrentIndex(now.m_nCurrent);
        m_pCombo->setEditText(now.m_strText);
    }
    updateButtons();
}

void CORVResultsTabControl::setStatusOfButtons(bool bDelete, bool bLoad, bool bSave)
{
    m_bMayDelete = bDelete;
    m_bMayLoad = bLoad;
    m_bMaySave = bSave;
    updateButtons();
}

void CORVResultsTabControl::setHasResult(bool bHasResult)
{
    m_bHasResult = bHasResult;
    updateButtons();
}

void CORVResultsTabControl::updateButtons()
{
    const bool bSavedName = m_pCombo && m_saved.contains(m_pCombo->currentText(), Qt::CaseInsensitive);
    const auto enable = [](QAbstractButton* pButton, bool bEnabled) {
        if (pButton != nullptr) {
            pButton->setEnabled(bEnabled);
        }
    };
    enable(m_pDelete, m_bMayDelete && bSavedName);
    enable(m_pLoad, m_bMayLoad && bSavedName);
    enable(m_pSave, m_bMaySave && (m_bHasResult || m_bResultModified));
}
