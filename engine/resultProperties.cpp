// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/resultProperties.h"

#include "engine/runTexts.h"

namespace {

QString dataUnitText(const ResultFacts& facts)
{
    const QString strUnit = unitText(facts.unit);
    return facts.transillumination && strUnit == "Efficiency" ? QStringLiteral("NTF Efficiency") : strUnit;
}

} // namespace

QList<QPair<QString, QString>> resultProperties(const ResultFacts& facts)
{
    return {{"DataMask", facts.useMask ? "Yes" : "No"},
            {"SelectedImages", QString::number(facts.selectedImages)},
            {"SpectrumType", axisText(facts.axis)},
            {"Method", facts.current ? runModeText(facts.mode) : QStringLiteral("MCR")},
            {"AnalysisBinning", QString::number(facts.binning)},
            {"ImageWidth", QString::number(facts.width)},
            {"ImageHeight", QString::number(facts.height)},
            {"DataUnit", dataUnitText(facts)},
            {"SPUM_Ver", facts.current ? "2.0" : "1.0"},
            {"Orvia", facts.current ? facts.appVersion : QStringLiteral("Unknown")}};
}
