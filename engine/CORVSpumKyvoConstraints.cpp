// SPDX-License-Identifier: GPL-3.0-or-later
// What an automatic run knows beforehand: known spectra and suggested constraints.
#include "engine/CORVSpumKyvo.h"

#include "engine/sourceCurves.h"
#include "engine/suggestedConstraints.h"

#include "host/CORVDatabase.h"
#include "host/CORVLog.h"

XTNT::Vector<double> CORVSpumKyvo::guessSpectrum(int spectrumType, const QString& name)
{
    if (name.contains("Auto")) {
        return XTNT::Vector<double>();
    }
    if (spectrumType != 0) {
        reportStatus("do not support this type of initial guess!", CORVLOG_WARNING);
        return XTNT::Vector<double>(m_selectedKeyPairs.size());
    }
    return spectrumOfSelection(
        m_selectedKeyPairs, m_eAxis, name, m_eSeqKind != SEQKIND_LUMINESCENT,
        [this](const QString& strCurve, const QString& strWavelength) { return lookupCurve(strCurve, strWavelength); });
}

double CORVSpumKyvo::lookupCurve(const QString& name, const QString& wavelength) const
{
    sSourceSpecFileParameters curve;
    readSourceCurve(name, m_eSeqKind, m_bCherenkov, curve);
    return curveValue(curve, wavelength.toDouble());
}

void CORVSpumKyvo::suggestConstraints(QList<ComponentConstraint>& out)
{
    out.clear();
    if (!canPredict(m_labels, m_eSeqKind)) {
        for (int i = 0; i < m_labels.size(); ++i) {
            out.append(ComponentConstraint());
        }
        return;
    }
    const QStringList bandKeys = m_primaryKeys;
    const QString strTissue = tissueOfSubject(m_strSubjectType);
    QList<ComponentPrediction> predictions;
    for (const QString& strLabel : qAsConst(m_labels)) {
        const QString strSource = sourceOfLabel(strLabel);
        XTNT::Vector<double> spectrum = sourceSpectrum(strSource + sourceSuffix(m_eAxis), bandKeys);
        if (!isAutofluorescence(strSource) && !strTissue.isEmpty()) {
            // Tissue takes the blue side of what crosses it.
            spectrum = spectrum * tissueAttenuation(strTissue, bandKeys);
        }
        predictions.append(predictComponent(spectrum, bandKeys, isAutofluorescence(strSource)));
    }
    const SuggestedConstraints suggested = orderedConstraints(m_labels, predictions, bandKeys);
    out = suggested.constraints;
    m_suggestedLabels = suggested.labels;
}

XTNT::Vector<double> CORVSpumKyvo::sourceSpectrum(const QString& strName, const QStringList& bandKeys) const
{
    sSourceSpecFileParameters curve;
    readSourceCurve(strName, m_eSeqKind, m_bCherenkov, curve);
    return sampledSource(curve, bandKeys);
}

XTNT::Vector<double> CORVSpumKyvo::tissueAttenuation(const QString& strTissue, const QStringList& bandKeys) const
{
    QString strName = strTissue.isEmpty() ? tissueOfSubject(m_strSubjectType) : strTissue;
    if (strName.isEmpty() && m_strSubjectType.isEmpty()) {
        strName = "RMP-7";
    }
    sTissuePropFileParameters tissue;
    if (!strName.isEmpty()) {
        CORVDatabase::readOpticalProperty(strName, &tissue);
    }
    return attenuationFactors(tissue, bandKeys);
}

void CORVSpumKyvo::takeComponents()
{
    QList<ComponentConstraint> defaults;
    m_labels.clear();
    for (const QString& strName : qAsConst(m_analysisInput.componentNames)) {
        defaults.append(ComponentConstraint());
        m_labels.append(strName.trimmed());
    }
    m_params.Constraints.clear();
    if (m_eSeqKind == SEQKIND_TEMPORAL || !m_analysisInput.useConstraints) {
        m_params.Constraints = defaults;
        return;
    }
    QList<ComponentConstraint> suggested;
    suggestConstraints(suggested);
    if (suggested.size() == defaults.size()) {
        m_params.Constraints = suggested;
    }
}
