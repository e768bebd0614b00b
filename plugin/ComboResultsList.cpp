// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ComboResultsList.h"

#include "host/CORVResultsTabControl.h"

#include <QComboBox>

ComboResultsList::ComboResultsList(CORVResultsTabControl& control, QComboBox& combo)
    : ResultsList(control.m_bResultModified), m_control(control), m_combo(combo)
{
}

QString ComboResultsList::currentText() const
{
    return m_combo.currentText();
}

int ComboResultsList::currentIndex() const
{
    return m_combo.currentIndex();
}

void ComboResultsList::setCurrentIndex(int nIndex)
{
    if (nIndex < 0 || nIndex >= m_combo.count()) {
        return;
    }
    m_combo.setCurrentIndex(nIndex);
    // The item may be the current one already, under a text that was typed.
    m_combo.setEditText(m_combo.itemText(nIndex));
}

QString ComboResultsList::itemText(int nIndex) const
{
    return m_combo.itemText(nIndex);
}

QStringList ComboResultsList::getSavedMenuNames() const
{
    return m_control.getSavedMenuNames();
}

void ComboResultsList::updateSavedResultsForSelSeqId(const QString& strSequence)
{
    m_control.updateSavedResultsForSelSeqId(strSequence);
}
