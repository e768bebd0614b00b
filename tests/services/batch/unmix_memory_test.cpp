// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/unmixMemory.h"

#include "services/batch/UnmixDemand.h"
#include "services/batch/sequenceContent.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

namespace {

constexpr qint64 mebibyte = 1 << 20;

double mebibytes(qint64 bytes)
{
    return static_cast<double>(bytes) / static_cast<double>(mebibyte);
}

class UnmixMemoryTest : public CliFixture
{
protected:
    SequenceSize sizeOf(const QString& strName) const
    {
        return sizeOfSequence(path(strName), contentOfSequence(path(strName)));
    }
};

SequenceSize images(int nCount, qint64 nSide)
{
    SequenceSize size;
    size.images = nCount;
    size.pixels = nSide * nSide;
    return size;
}

UnmixDemand demand(bool bAutomatic, int nBinning = 0)
{
    UnmixDemand made;
    made.automatic = bAutomatic;
    made.binning = nBinning;
    return made;
}

} // namespace

TEST_F(UnmixMemoryTest, HeadersTellTheSizeOfASequence)
{
    SmallSequence sequence;
    const auto one = [](int) { return 1.0F; };
    sequence.addBands({one, one, one});
    sequence.images[0].binning = sequence.images[1].binning = sequence.images[2].binning = 4;
    sequence.images[1].width = sequence.images[1].height = 8;
    sequence.writeTo(path("seq"));
    const SequenceSize size = sizeOf("seq");
    EXPECT_EQ(size.images, 3);
    EXPECT_EQ(size.pixels, 64);
    EXPECT_GT(size.pictureBytes, 0);
    EXPECT_EQ(size.binning, 4.0);
}

TEST_F(UnmixMemoryTest, ABrokenImageCountsForNothing)
{
    write("seq/C1/luminescent.TIF", "no image");
    write("seq/C1/ClickInfo.txt", "no info");
    const SequenceSize size = sizeOf("seq");
    EXPECT_EQ(size.images, 0);
    EXPECT_EQ(size.binning, 1.0);
    EXPECT_EQ(sizeOf("nowhere").images, 0);
}

// What the program was seen to take, in MiB, with 4 components: the estimate is above, and not by half as much again
// but for the room that a small one takes.
TEST_F(UnmixMemoryTest, TheEstimateStaysAboveWhatIsTaken)
{
    struct Seen
    {
        int images;
        int side;
        double fit;
        double resolution;
    };
    for (const Seen& seen : {Seen{6, 64, 65.4, 65.1},
                             {24, 64, 68.0, 69.5},
                             {6, 512, 99.2, 114.6},
                             {24, 512, 134.3, 154.8},
                             {6, 1024, 218.0, 236.8},
                             {24, 1024, 362.2, 525.6},
                             {6, 2048, 724.3, 0.0}}) {
        const double fit = mebibytes(unmixMemory(images(seen.images, seen.side), demand(false)));
        EXPECT_GT(fit, seen.fit) << seen.side;
        EXPECT_LT(fit, 1.5 * seen.fit + 20.0) << seen.side;
        if (seen.resolution > 0.0) {
            const double resolution = mebibytes(unmixMemory(images(seen.images, seen.side), demand(true)));
            EXPECT_GT(resolution, seen.resolution) << seen.side;
            EXPECT_LT(resolution, 1.5 * seen.resolution + 20.0) << seen.side;
        }
    }
}

TEST_F(UnmixMemoryTest, AFinerBinningTakesMoreAndACoarserOneNoLess)
{
    SequenceSize size = images(6, 512);
    size.binning = 4.0;
    EXPECT_EQ(unmixMemory(size, demand(true, 2)), unmixMemory(images(6, 1024), demand(true)));
    EXPECT_EQ(unmixMemory(size, demand(true, 8)), unmixMemory(size, demand(true)));
}

TEST_F(UnmixMemoryTest, AnAbsurdHeaderStaysWithinTheNumbers)
{
    SequenceSize size = images(1000000, 2000000000);
    size.binning = 1024.0;
    EXPECT_GT(unmixMemory(size, demand(true, 1)), 0);
}

TEST_F(UnmixMemoryTest, TheSystemHasSome)
{
    EXPECT_GT(memoryToBeHad(), 16 * mebibyte);
}
