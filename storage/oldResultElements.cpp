// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/oldResultElements.h"

#include "storage/hexText.h"

#include "spectra/DefaultColors.h"

#include <QColor>
#include <QHash>

namespace {

constexpr int resolvedSpectrum = 2;

int wholeOf(const QDomElement& element, const char* pName)
{
    return element.attribute(QLatin1String(pName)).toInt();
}

bool flagOf(const QDomElement& element, const char* pName)
{
    return wholeOf(element, pName) != 0;
}

// Of colours with one value the last counts.
const QHash<QRgb, QString>& colorNames()
{
    static const QHash<QRgb, QString> names = [] {
        QHash<QRgb, QString> result;
        for (const QString& strName : defaultSpectrumColors()) {
            result.insert(QColor(strName).rgb(), strName);
        }
        return result;
    }();
    return names;
}

} // namespace

namespace oldResultElements {

void readParams(const QDomElement& element, MCRParams* pParams)
{
    pParams->TransMode = flagOf(element, "TransMode");
    pParams->AutoSorting = flagOf(element, "AutoSorting");
    pParams->ForceAF = flagOf(element, "ForceAF");
    pParams->Components = wholeOf(element, "Components");
    pParams->DownSplRate = wholeOf(element, "DownSplRate");
    pParams->MaxIterations = wholeOf(element, "MaxIterations");
    pParams->PCAMode = wholeOf(element, "PCAMode");
    pParams->WeightingMode = wholeOf(element, "WeightingMode");
    pParams->Normalization = wholeOf(element, "Normalization");
    pParams->NonNegMode = wholeOf(element, "NonNegMode");
    pParams->UnimodTol = element.attribute("UnimodTol").toDouble();
    pParams->DenoisePCA = wholeOf(element, "DenoisePCA");
}

QList<ComponentConstraint> readConstraints(const QDomElement& element)
{
    QList<ComponentConstraint> constraints;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        ComponentConstraint constraint;
        constraint.SpectrumType = wholeOf(e, "SpectrumType");
        constraint.InitGuess = e.attribute("InitGuess");
        constraint.Unimodality = e.attribute("Unimodality");
        constraint.HighPass = e.attribute("HighPass");
        constraint.LowPass = e.attribute("LowPass");
        constraint.SolutionMask = e.attribute("SolutionMask");
        constraint.PureMask = e.attribute("PureMask");
        constraint.Locked = flagOf(e, "Locked");
        constraints.append(constraint);
    }
    return constraints;
}

QList<OldSpectrum> readSpectra(const QDomElement& element)
{
    QList<OldSpectrum> spectra;
    int nChild = 0;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement(), ++nChild) {
        if (wholeOf(e, "SpectrumType") != resolvedSpectrum) {
            continue;
        }
        const QRgb color = e.attribute("LineColor").toUInt();
        spectra.append({e.attribute("SpectrumLabel"), colorNames().value(color, defaultSpectrumColor(nChild))});
    }
    return spectra;
}

bool readMatrix(const QDomElement& element, XTNT::Matrix<double>* pMatrix, QString* pSize)
{
    const long long nRows = element.attribute("Total.Rows").toLongLong();
    const long long nColumns = element.attribute("Total.Cols").toLongLong();
    const QString strText = element.firstChildElement().attribute("Text.Data");
    long long nCount = 0;
    // Rows without columns take memory too.
    if (nRows < 0 || nColumns < 0 || __builtin_mul_overflow(nRows, nColumns, &nCount) ||
        !hexText::isDoubleCount(nCount, strText) || !hexText::isDoubleCount(nRows, strText)) {
        *pSize = QStringLiteral("%1 x %2").arg(nRows).arg(nColumns);
        return false;
    }
    pMatrix->reshape(nRows, nColumns);
    hexText::toDoubles(strText, pMatrix->storage.data, static_cast<std::size_t>(nCount));
    return true;
}

} // namespace oldResultElements
