// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/wizardLook.h"

namespace {

WizardLook spectralLook(int nImages, bool bFluorescent)
{
    WizardLook look;
    look.pointInfo = QStringLiteral("%1 wavelength pairs selected").arg(nImages);
    look.groupTitle = QStringLiteral("Probe Information");
    look.tissueText =
        bFluorescent ? QStringLiteral("Tissue Autofluorescence") : QStringLiteral("Tissue Autobioluminescence");
    look.foodShown = bFluorescent;
    if (bFluorescent) {
        look.tissueChecked = true;
    } else {
        look.foodChecked = false;
    }
    return look;
}

WizardLook temporalLook(int nImages)
{
    WizardLook look;
    look.kinetics = true;
    look.pointInfo = QStringLiteral("%1 time points selected").arg(nImages);
    look.groupTitle = QStringLiteral("Kinectics Information"); // as users' instructions spell it
    look.tissueText = QStringLiteral("Background");
    look.background = false;
    look.tissueChecked = false;
    look.foodChecked = false;
    return look;
}

} // namespace

std::optional<WizardLook> wizardLook(int nAnalysisType, int nImages)
{
    switch (nAnalysisType) {
    case 0:
        return spectralLook(nImages, false);
    case 1:
    case 2:
        return spectralLook(nImages, true);
    case 3:
        return temporalLook(nImages);
    default:
        return std::nullopt;
    }
}
