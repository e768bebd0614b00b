// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

// What the page of the wizard shows for an analysis, apart from its probes.
struct WizardLook
{
    bool kinetics = false; // the tip is that for time courses instead of that for spectra
    QString pointInfo;     // how many images take part
    QString groupTitle;    // of the table of probes
    QString tissueText;    // of the tissue's own signal
    bool background = true;
    std::optional<bool> foodShown; // without a value it stays as it is; so do the checks
    std::optional<bool> tissueChecked;
    std::optional<bool> foodChecked;
};

// By the type of analysis, see probeOffer.h; nothing for another type.
std::optional<WizardLook> wizardLook(int nAnalysisType, int nImages);
