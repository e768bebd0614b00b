// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/wizardLook.h"

namespace {

WizardLook spectralLook(int nImages)
{
    WizardLook look;
    look.pointInfo = QStringLiteral("%1 wavelength pairs selected").arg(nImages);
    look.groupTitle = QStringLiteral("Probe Information");
    return look;
}

WizardLook luminescentLook(int nImages)
{
    WizardLook look = spectralLook(nImages);
    look.tissueText = QStringLiteral("Tissue Autobioluminescence");
    look.foodShown = false;
    look.foodChecked = false;
    return look;
}

WizardLook fluorescentLook(int nImages)
{
    WizardLook look = spectralLook(nImages);
    look.tissueText = QStringLiteral("Tissue Autofluorescence");
    look.foodShown = true;
    look.tissueChecked = true;
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
        return luminescentLook(nImages);
    case 1:
    case 2:
        return fluorescentLook(nImages);
    case 3:
        return temporalLook(nImages);
    default:
        return std::nullopt;
    }
}
