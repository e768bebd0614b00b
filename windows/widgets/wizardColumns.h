// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace Ui {
class SpUnmixWizardWnd;
}

// Lays the two columns of the wizard's page out for its width. On a small screen texts are wrapped and what stands side
// by side comes below each other, so that the column of components scrolls downward alone.
void fitWizardColumns(Ui::SpUnmixWizardWnd& form, int nPageWidth);
