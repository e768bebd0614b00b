// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/keySelection.h"

#include "engine/EngineEnums.h"

#include <algorithm>

namespace {

constexpr int wavelengthLength = 3;
constexpr int fewestKeys = 2;

bool isWavelength(QString strKey)
{
    return wavelengthDigits(strKey);
}

void appendIfAbsent(QStringList& keys, const QString& strKey)
{
    if (!keys.contains(strKey)) {
        keys.append(strKey);
    }
}

void appendWavelength(QStringList& keys, QString strKey)
{
    if (wavelengthDigits(strKey)) {
        appendIfAbsent(keys, strKey);
    }
}

SelectionCheck unusable(const QString& strMessage)
{
    SelectionCheck check;
    check.strMessage = strMessage.arg(fewestKeys);
    return check;
}

void removeRepeatedTimes(QList<KeyPair>& selection)
{
    for (int i = 0; i + 1 < selection.size();) {
        if (selection.at(i).second == selection.at(i + 1).second) {
            selection.removeAt(i);
        } else {
            ++i;
        }
    }
}

void removeInvalid(QList<KeyPair>& selection, int eAxis)
{
    const auto isInvalid = [eAxis](const KeyPair& pair) {
        return !isWavelength(eAxis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second);
    };
    selection.erase(std::remove_if(selection.begin(), selection.end(), isInvalid), selection.end());
}

} // namespace

bool wavelengthDigits(QString& strKey)
{
    QString strDigits = strKey;
    strDigits.remove("nm");
    for (int i = strDigits.size() - 1; i >= 0; --i) {
        const QChar c = strDigits.at(i);
        const bool bDigit = c.unicode() > 127 ? c.isDigit() : (c >= '0' && c <= '9');
        if (!bDigit) {
            strDigits.remove(i, 1);
        }
    }
    if (strDigits.size() < wavelengthLength) {
        return false;
    }
    strKey = strDigits.left(wavelengthLength);
    return true;
}

SelectionCheck checkSelection(QList<KeyPair>& selection, bool bTemporal)
{
    QStringList secondKeys;
    QStringList firstKeys;
    for (const KeyPair& pair : qAsConst(selection)) {
        if (bTemporal) {
            appendIfAbsent(secondKeys, pair.second);
            appendIfAbsent(firstKeys, pair.first);
        } else {
            appendWavelength(secondKeys, pair.second);
            appendWavelength(firstKeys, pair.first);
        }
    }
    if (bTemporal && secondKeys.size() < fewestKeys) {
        return unusable("SpumKyvo: need at least %1 time points to unmix!");
    }
    if (secondKeys.size() < fewestKeys && firstKeys.size() < fewestKeys) {
        return unusable("SpumKyvo: need at least %1 wavelengths to unmix!");
    }

    SelectionCheck check;
    const int nBefore = selection.size();
    if (bTemporal) {
        check.axis = SPECTRUMAXIS_TIME;
        removeRepeatedTimes(selection);
    } else {
        check.axis = secondKeys.size() < firstKeys.size() ? SPECTRUMAXIS_EXCITATION : SPECTRUMAXIS_EMISSION;
        removeInvalid(selection, check.axis);
    }
    check.result = selection.size() == nBefore ? SelectionCheck::Usable : SelectionCheck::Adjusted;
    if (check.result == SelectionCheck::Adjusted) {
        check.strMessage = "SpumKyvo: removed invalid selections!";
    }
    return check;
}

AxisKeys axisKeys(const QList<KeyPair>& selection, int eAxis)
{
    AxisKeys keys;
    for (const KeyPair& pair : selection) {
        QString strPrimary = eAxis == SPECTRUMAXIS_EXCITATION ? pair.first : pair.second;
        const QString& strSecondary = eAxis == SPECTRUMAXIS_EXCITATION ? pair.second : pair.first;
        if (eAxis != SPECTRUMAXIS_TIME) {
            wavelengthDigits(strPrimary);
        }
        appendIfAbsent(keys.primary, strPrimary);
        appendIfAbsent(keys.secondary, strSecondary);
    }
    return keys;
}
