// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/SpUnmixWizardPage.h"

SpUnmixWizardPage::SpUnmixWizardPage(QWidget* pParent) : QWizardPage(pParent) {}

void SpUnmixWizardPage::initializePage()
{
    m_bComplete = m_bInitialComplete;
}

bool SpUnmixWizardPage::isComplete() const
{
    return m_bComplete;
}
