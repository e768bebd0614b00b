// SPDX-License-Identifier: GPL-3.0-or-later
// The selection of images.
#include "engine/CORVSpumKyvo.h"

#include "engine/keySelection.h"
#include "spectra/logLine.h"

#include "host/CORVLog.h"

bool CORVSpumKyvo::wavelengthDigits(QString& strKey)
{
    return ::wavelengthDigits(strKey);
}

int CORVSpumKyvo::validateSelection(QList<KeyPair>& selection, int* pAxis, bool bLog)
{
    const SelectionCheck check = checkSelection(selection, m_eSeqKind == SEQKIND_TEMPORAL);
    if (bLog && !check.strMessage.isEmpty()) {
        logLine(check.strMessage, CORVLOG_WARNING);
    }
    if (check.result != SelectionCheck::Unusable) {
        *pAxis = check.axis;
    }
    return check.result;
}

bool CORVSpumKyvo::applySelection(QList<KeyPair>& selection)
{
    switch (validateSelection(selection, &m_eAxis, true)) {
    case SelectionCheck::Usable:
        m_selectedKeyPairs = selection;
        updateKeys();
        return true;
    case SelectionCheck::Adjusted:
        // The keys are left as they were; the caller learns that its selection was not taken as it stood.
        m_selectedKeyPairs = selection;
        return false;
    default:
        selection = m_selectedKeyPairs;
        return false;
    }
}

void CORVSpumKyvo::updateKeys()
{
    const AxisKeys keys = axisKeys(m_selectedKeyPairs, m_eAxis);
    m_primaryKeys = keys.primary;
    m_secondaryKeys = keys.secondary;
}
