// SPDX-License-Identifier: GPL-3.0-or-later
// `spum unmix` where the memory is not there.
#include "workbench/program/ProgramFixture.h"

namespace {

using MemoryProgramTest = ProgramFixture;

} // namespace

// Two hundred GiB and more: nothing is read, and nothing is begun.
TEST_F(MemoryProgramTest, ARunBeyondTheMemoryOfTheMachineIsRefusedAheadOfIt)
{
    succeed({"simulate", "seq", "--size", "512", "--bands", "8", "--binning", "64", "--quiet"});
    const QString said =
        refusal({"unmix", "seq", "--ncomponents", "4", "--mask", "none", "--binning", "1", "--out", "out"});
    EXPECT_TRUE(said.startsWith("the run takes about ")) << qPrintable(said);
    EXPECT_TRUE(said.contains("GiB of memory, where")) << qPrintable(said);
    EXPECT_TRUE(said.contains("--binning")) << qPrintable(said);
    EXPECT_FALSE(entriesOf(path(".")).contains("out"));
}
