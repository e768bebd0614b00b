// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWizardPage>

// The one page of the wizard. The wizard says whether it is complete; the page only remembers it, and goes back to what
// it was told for the beginning whenever the wizard starts anew. It does not send completeChanged().
class SpUnmixWizardPage : public QWizardPage
{
    Q_OBJECT

public:
    explicit SpUnmixWizardPage(QWidget* pParent = nullptr);

    void initializePage() override;
    bool isComplete() const override;

    void setComplete(bool bComplete) { m_bComplete = bComplete; }
    void setInitialComplete(bool bComplete) { m_bInitialComplete = bComplete; }

private:
    bool m_bComplete = false;
    bool m_bInitialComplete = false;
};
