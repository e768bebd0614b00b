// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/FoodLook.h"

#include "services/results/KnownSpectra.h"
#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"

#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr int side = 24; // six squares of four pixels a side
constexpr int images = 7;
const QStringList others = {"TissueAF"};

class FoodLookTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        write("dark", [](int, int) { return 0.0F; });
        m_tissue = sourceSpectra(engine(), "TissueAF").front();
        m_food = sourceSpectra(engine(), "Food").front();
        ASSERT_EQ(m_tissue.size(), static_cast<std::size_t>(images));
    }
    // Opens a sequence of these images (image, pixel), its cube filled.
    void write(const QString& strName, const std::function<float(int, int)>& value)
    {
        SmallSequence sequence;
        for (int j = 0; j < images; ++j) {
            SmallImage image;
            image.emission = QStringLiteral("%1nm").arg(680 + 20 * j);
            image.width = image.height = side;
            image.value = [value, j](int i) { return value(j, i); };
            sequence.images.append(image);
        }
        m_pOpened.reset();
        sequence.writeTo(path(strName));
        m_pOpened = std::make_unique<OpenedSequence>(path(strName));
        engine().resetAnalysis(RUNMODE_AUTOMATIC);
        EXPECT_TRUE(engine().buildImageCube());
    }
    // Tissue everywhere, and so much food in the middle.
    void animal(double dFood)
    {
        write("animal", [this, dFood](int j, int i) {
            const auto image = static_cast<std::size_t>(j);
            return static_cast<float>(100.0 * m_tissue[image] + (isGut(i) ? dFood : 0.0) * m_food[image]);
        });
    }
    static bool isGut(int i)
    {
        const int x = i % side;
        const int y = i / side;
        return x >= 8 && x < 16 && y >= 8 && y < 16;
    }
    CORVSpumKyvo& engine() { return m_pOpened->engine(); }

    std::unique_ptr<OpenedSequence> m_pOpened;
    std::vector<double> m_tissue;
    std::vector<double> m_food;
};

} // namespace

TEST_F(FoodLookTest, AGutThatTissueDoesNotExplainIsFed)
{
    animal(100.0);
    const FoodLook look = FoodLook::of(engine(), others);
    EXPECT_TRUE(look.looked);
    EXPECT_EQ(look.squares, 36);
    EXPECT_EQ(look.fed, 4);
    EXPECT_TRUE(look.isFed());
    EXPECT_GT(look.without, 0.04);
    EXPECT_LT(look.with, 0.01 * look.without);
}

TEST_F(FoodLookTest, WithoutFoodNothingIsSeen)
{
    animal(0.0);
    const FoodLook look = FoodLook::of(engine(), others);
    EXPECT_TRUE(look.looked);
    EXPECT_FALSE(look.isFed());
    EXPECT_EQ(look.without, 0.0);
}

// What a curve that was measured elsewhere leaves is no food.
TEST_F(FoodLookTest, ATraceIsNotTakenForFood)
{
    animal(1.0);
    EXPECT_FALSE(FoodLook::of(engine(), others).isFed());
}

TEST_F(FoodLookTest, ASourceThatNobodyKnowsLeavesTheQuestionOpen)
{
    animal(100.0);
    EXPECT_FALSE(FoodLook::of(engine(), {"TissueAF", "of nobody"}).looked);
    EXPECT_FALSE(FoodLook::of(engine(), {}).looked);
}

TEST_F(FoodLookTest, InTheDarkThereIsNothingToLookAt)
{
    write("night", [](int, int) { return 0.0F; });
    const FoodLook look = FoodLook::of(engine(), others);
    EXPECT_FALSE(look.looked);
    EXPECT_EQ(look.squares, 0);
}
