// SPDX-License-Identifier: GPL-3.0-or-later
// The components of the wizard: which it starts with, how many may be resolved, and when it can be finished.
#include "windows_on_screen/WizardFixture.h"

namespace {

using WizardComponentsTest = WizardTest;

TEST_F(WizardComponentsTest, FluorescentSequenceWithOneRowIsComplete)
{
    open(m_photo);
    EXPECT_EQ(m_wizard.m_pProbeTable->rowCount(), 1);
    EXPECT_EQ(number(), 2);
    EXPECT_EQ(warning(), "");
    EXPECT_TRUE(m_wizard.m_bMaskValid);
    EXPECT_TRUE(finish().isEnabled());
    EXPECT_EQ(m_wizard.getComponentNames(), (QStringList{"TissueAF", "Unknown"}));
}

} // namespace
