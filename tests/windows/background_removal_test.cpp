// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/backgroundRemoval.h"

#include "engine/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using Values = XTNT::Vector<double>;

Values valuesOf(const std::vector<double>& list)
{
    Values values(static_cast<long long>(list.size()));
    for (std::size_t i = 0; i < list.size(); ++i) {
        values[static_cast<long long>(i)] = list[i];
    }
    return values;
}

std::vector<double> listOf(const Values& values)
{
    return {values.data, values.data + values.n_};
}

// Owns its spectra.
class Spectra
{
public:
    void add(const QString& strName, const std::vector<double>& values, bool bSelected = true)
    {
        m_owned.push_back(std::make_unique<SpectrumPlotParams>());
        SpectrumPlotParams& spectrum = *m_owned.back();
        QList<KeyPair> pairs;
        for (std::size_t i = 0; i < values.size(); ++i) {
            pairs.append({"500", QString::number(600 + 20 * i)});
        }
        spectrum.setPairs(pairs);
        spectrum.setValues(valuesOf(values));
        spectrum.settings.name = strName;
        spectrum.settings.selected = bSelected;
        spectrum.settings.index = 7;
    }
    QList<SpectrumPlotParams*> list() const
    {
        QList<SpectrumPlotParams*> all;
        for (const auto& pSpectrum : m_owned) {
            all.append(pSpectrum.get());
        }
        return all;
    }

private:
    std::vector<std::unique_ptr<SpectrumPlotParams>> m_owned;
};

TEST(BackgroundRemovalTest, TakesOffAsMuchAsLeavesNoBandBelowZero)
{
    Values spectrum = valuesOf({3.0, 5.0, 4.0});
    ASSERT_TRUE(removeBackground(spectrum, valuesOf({1.0, 2.0, 1.0})));
    const std::vector<double> rest = listOf(spectrum);
    ASSERT_EQ(rest.size(), 3U);
    EXPECT_DOUBLE_EQ(rest[0], 0.5);
    EXPECT_DOUBLE_EQ(rest[1], 0.0);
    EXPECT_DOUBLE_EQ(rest[2], 1.5);
}

TEST(BackgroundRemovalTest, ABackgroundThatIsTheSpectrumLeavesNothing)
{
    Values spectrum = valuesOf({2.0, 4.0, 6.0});
    ASSERT_TRUE(removeBackground(spectrum, valuesOf({1.0, 2.0, 3.0})));
    for (const double value : listOf(spectrum)) {
        EXPECT_NEAR(value, 0.0, 1e-12);
    }
}

TEST(BackgroundRemovalTest, AFitThatFailsIsToldAndLeavesTheSpectrum)
{
    const LogCapture log;
    Values shorter = valuesOf({1.0, 2.0});
    EXPECT_FALSE(removeBackground(shorter, valuesOf({1.0, 2.0, 3.0})));
    EXPECT_EQ(listOf(shorter), (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(log.count("SpumKyvo: unable to remove the background spectrum!", 2), 1);
}

TEST(BackgroundRowTest, IsTheFirstThatIsSelectedAndHasData)
{
    Spectra spectra;
    EXPECT_EQ(backgroundRow(spectra.list()), -1);
    spectra.add("not selected", {1.0, 2.0}, false);
    spectra.add("no data", {0.0, 0.0});
    EXPECT_EQ(backgroundRow(spectra.list()), -1);
    spectra.add("background", {1.0, 0.0});
    spectra.add("another", {1.0, 1.0});
    EXPECT_EQ(backgroundRow(spectra.list()), 2);
}

TEST(SpectraToUnmixTest, TakesAllThatHaveDataTickedOrNot)
{
    Spectra spectra;
    spectra.add("ticked", {1.0, 2.0});
    spectra.add("no data", {0.0, 0.0});
    spectra.add("not ticked", {3.0, 1.0}, false);
    const QList<SpectrumPlotParams*> taken = spectraToUnmix(spectra.list(), false);
    ASSERT_EQ(taken.size(), 2);
    EXPECT_EQ(taken[0]->settings.name, "ticked");
    EXPECT_EQ(taken[1]->settings.name, "not ticked");
    for (int i = 0; i < taken.size(); ++i) {
        EXPECT_TRUE(taken[i]->settings.selected);
        EXPECT_EQ(taken[i]->settings.index, i);
        EXPECT_TRUE(taken[i]->control.isNull());
    }
    EXPECT_EQ(listOf(taken[1]->values()), (std::vector<double>{3.0, 1.0}));
    EXPECT_EQ(spectra.list()[2]->settings.index, 7);
    qDeleteAll(taken);
}

TEST(SpectraToUnmixTest, InTheDrawingStepAllButTheBackgroundLoseIt)
{
    Spectra spectra;
    spectra.add("label", {3.0, 5.0, 4.0}, false);
    spectra.add("TissueAF", {1.0, 2.0, 1.0});
    const QList<SpectrumPlotParams*> taken = spectraToUnmix(spectra.list(), true);
    ASSERT_EQ(taken.size(), 2);
    EXPECT_DOUBLE_EQ(taken[0]->points[0].value, 0.5);
    EXPECT_DOUBLE_EQ(taken[0]->points[1].value, 0.0);
    EXPECT_EQ(listOf(taken[1]->values()), (std::vector<double>{1.0, 2.0, 1.0}));
    EXPECT_EQ(listOf(spectra.list()[0]->values()), (std::vector<double>{3.0, 5.0, 4.0}));
    qDeleteAll(taken);
}

TEST(SpectraToUnmixTest, WithoutABackgroundNothingIsTakenOff)
{
    Spectra spectra;
    spectra.add("a", {3.0, 5.0}, false);
    spectra.add("b", {1.0, 2.0}, false);
    const QList<SpectrumPlotParams*> taken = spectraToUnmix(spectra.list(), true);
    ASSERT_EQ(taken.size(), 2);
    EXPECT_EQ(listOf(taken[0]->values()), (std::vector<double>{3.0, 5.0}));
    qDeleteAll(taken);
}

} // namespace
