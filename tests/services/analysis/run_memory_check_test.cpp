// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/AnalysisSetUp.h"
#include "services/support/CliFixture.h"
#include "services/support/QuietMonitor.h"
#include "services/support/SmallSequence.h"

#include "engine/EngineEnums.h"

namespace {

constexpr qint64 gibibyte = 1 << 30;

// Three images of 4 x 4 pixels, set up for a resolution.
class RunMemoryCheckTest : public CliFixture
{
protected:
    std::unique_ptr<AnalysisSetUp> setUp()
    {
        SmallSequence sequence;
        const auto value = [](int i) { return static_cast<float>(i); };
        sequence.addBands({value, value, value});
        sequence.writeTo(path("seq"));
        AnalysisRequest request;
        request.sequence = path("seq");
        request.mask.asked = true;
        auto made = std::make_unique<AnalysisSetUp>(request, m_monitor);
        made->select();
        made->reset(RUNMODE_AUTOMATIC);
        made->takeMask(1);
        return made;
    }

    QuietMonitor m_monitor;
};

} // namespace

TEST_F(RunMemoryCheckTest, WhatIsThereIsTakenWithoutAWord)
{
    const auto made = setUp();
    made->checkMemory({gibibyte, gibibyte});
    EXPECT_TRUE(m_monitor.warnings.isEmpty());
}

TEST_F(RunMemoryCheckTest, LessThanIsFreeIsToldBeforehand)
{
    const auto made = setUp();
    made->checkMemory({1024, gibibyte});
    ASSERT_EQ(m_monitor.warnings.size(), 1);
    EXPECT_TRUE(m_monitor.warnings[0].contains("GiB of memory, where"));
    EXPECT_TRUE(m_monitor.warnings[0].contains("--binning"));
}

TEST_F(RunMemoryCheckTest, WhatTheMachineCannotHoldIsRefused)
{
    const auto made = setUp();
    const QString refused = failureOf([&] { made->checkMemory({1024, 2048}); });
    EXPECT_TRUE(refused.startsWith("the run takes about 0.07")) << qPrintable(refused);
    EXPECT_TRUE(m_monitor.warnings.isEmpty());
}

// A machine that tells nothing of itself.
TEST_F(RunMemoryCheckTest, WithoutAWordOfTheSystemNothingIsRefused)
{
    const auto made = setUp();
    made->checkMemory({1024, 0});
    EXPECT_EQ(m_monitor.warnings.size(), 1);
}
