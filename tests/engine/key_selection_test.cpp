// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/keySelection.h"

#include "engine/EngineEnums.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <ostream>

namespace {

struct WavelengthCase
{
    QString text;
    QString key;
    bool accepted;
};

void PrintTo(const WavelengthCase& c, std::ostream* out)
{
    *out << '"' << c.text.toStdString() << '"';
}

class WavelengthDigitsTest : public ::testing::TestWithParam<WavelengthCase>
{
};

TEST_P(WavelengthDigitsTest, MakesAThreeDigitKeyOrLeavesTheText)
{
    QString strKey = GetParam().text;
    EXPECT_EQ(wavelengthDigits(strKey), GetParam().accepted);
    EXPECT_EQ(strKey, GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WavelengthDigitsTest,
    ::testing::Values(WavelengthCase{"500nm", "500", true}, WavelengthCase{"500 nm", "500", true},
                      WavelengthCase{"Open", "Open", false}, WavelengthCase{"5", "5", false},
                      WavelengthCase{"50nm", "50nm", false}, WavelengthCase{"1200", "120", true},
                      WavelengthCase{"520/30", "520", true}, WavelengthCase{"", "", false},
                      WavelengthCase{"nm", "nm", false}, WavelengthCase{"BP 5-2-0 NM", "520", true},
                      // A superscript two is no decimal digit; an Arabic-Indic four is.
                      WavelengthCase{QString::fromUtf8("50\u00B2"), QString::fromUtf8("50\u00B2"), false},
                      WavelengthCase{QString::fromUtf8("50\u0664"), QString::fromUtf8("50\u0664"), true}));

RC_GTEST_PROP(WavelengthDigitsLawTest, AnAcceptedKeyIsAcceptedAgainUnchanged, (const std::string& text))
{
    const QString strText = QString::fromLatin1(text.data(), static_cast<int>(text.size()));
    QString strKey = strText;
    if (wavelengthDigits(strKey)) {
        RC_ASSERT(strKey.size() == 3);
        QString strAgain = strKey;
        RC_ASSERT(wavelengthDigits(strAgain));
        RC_ASSERT(strAgain == strKey);
    } else {
        RC_ASSERT(strKey == strText);
    }
}

TEST(CheckSelectionTest, EmissionOnlyTakesTheEmissionAxis)
{
    QList<KeyPair> selection{{"500", "560"}, {"500", "600"}, {"500", "620"}};
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Usable);
    EXPECT_EQ(check.axis, SPECTRUMAXIS_EMISSION);
    EXPECT_EQ(check.strMessage, QString());
    EXPECT_EQ(selection.size(), 3);
}

TEST(CheckSelectionTest, ExcitationOnlyTakesTheExcitationAxis)
{
    QList<KeyPair> selection{{"500", "620"}, {"520", "620"}, {"540", "620"}};
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Usable);
    EXPECT_EQ(check.axis, SPECTRUMAXIS_EXCITATION);
}

TEST(CheckSelectionTest, ATieGoesToEmission)
{
    QList<KeyPair> selection;
    for (const char* pExcitation : {"500", "520", "540"}) {
        for (const char* pEmission : {"600", "620", "640"}) {
            selection.append(KeyPair{pExcitation, pEmission});
        }
    }
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Usable);
    EXPECT_EQ(check.axis, SPECTRUMAXIS_EMISSION);
    EXPECT_EQ(selection.size(), 9);
}

TEST(CheckSelectionTest, WavelengthsThatNormaliseAlikeCountOnce)
{
    QList<KeyPair> selection{{"Open", "600nm"}, {"Open", "600 nm"}};
    EXPECT_EQ(checkSelection(selection, false).result, SelectionCheck::Unusable);
}

TEST(CheckSelectionTest, ASingleImageIsUnusableAndTellsTheWavelengths)
{
    QList<KeyPair> selection{{"500", "560"}};
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Unusable);
    EXPECT_EQ(check.strMessage, QString("SpumKyvo: need at least 2 wavelengths to unmix!"));
    EXPECT_EQ(selection.size(), 1);
}

TEST(CheckSelectionTest, NothingSelectedIsUnusable)
{
    QList<KeyPair> selection;
    EXPECT_EQ(checkSelection(selection, false).strMessage, QString("SpumKyvo: need at least 2 wavelengths to unmix!"));
    EXPECT_EQ(checkSelection(selection, true).strMessage, QString("SpumKyvo: need at least 2 time points to unmix!"));
}

TEST(CheckSelectionTest, AFilterOffTheAxisIsNotInspected)
{
    QList<KeyPair> selection{{"520", "560"}, {"520", "600"}, {"Open", "620"}};
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Usable);
    EXPECT_EQ(check.axis, SPECTRUMAXIS_EMISSION);
    EXPECT_EQ(selection.size(), 3);
}

TEST(CheckSelectionTest, AnInvalidFilterOnTheAxisIsRemoved)
{
    QList<KeyPair> selection{{"520", "560"}, {"520", "Open"}, {"520", "620"}};
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Adjusted);
    EXPECT_EQ(check.strMessage, QString("SpumKyvo: removed invalid selections!"));
    EXPECT_EQ(selection, (QList<KeyPair>{{"520", "560"}, {"520", "620"}}));
}

TEST(CheckSelectionTest, OnTheExcitationAxisTheExcitationIsInspected)
{
    QList<KeyPair> selection{{"500", "Open"}, {"Open", "620"}, {"540", "Open"}};
    const SelectionCheck check = checkSelection(selection, false);
    EXPECT_EQ(check.result, SelectionCheck::Adjusted);
    EXPECT_EQ(check.axis, SPECTRUMAXIS_EXCITATION);
    EXPECT_EQ(selection, (QList<KeyPair>{{"500", "Open"}, {"540", "Open"}}));
}

TEST(CheckSelectionTest, TimesTakeTheTimeAxisAsTheyAre)
{
    QList<KeyPair> selection{{"Int1", "0"}, {"Int1", "5"}};
    const SelectionCheck check = checkSelection(selection, true);
    EXPECT_EQ(check.result, SelectionCheck::Usable);
    EXPECT_EQ(check.axis, SPECTRUMAXIS_TIME);
}

TEST(CheckSelectionTest, OfNeighboursWithOneTimeTheFirstGoes)
{
    QList<KeyPair> selection{{"Int1", "0"}, {"Int2", "0"}, {"Int3", "0"}, {"Int1", "5"}, {"Int1", "0"}};
    const SelectionCheck check = checkSelection(selection, true);
    EXPECT_EQ(check.result, SelectionCheck::Adjusted);
    // The last one is no neighbour of its like.
    EXPECT_EQ(selection, (QList<KeyPair>{{"Int3", "0"}, {"Int1", "5"}, {"Int1", "0"}}));
}

TEST(AxisKeysTest, EmissionKeysAreNormalisedAndDistinct)
{
    const AxisKeys keys = axisKeys({{"640nm", "700 nm"}, {"640nm", "720nm"}, {"Open", "700nm"}}, SPECTRUMAXIS_EMISSION);
    EXPECT_EQ(keys.primary, (QStringList{"700", "720"}));
    EXPECT_EQ(keys.secondary, (QStringList{"640nm", "Open"}));
}

TEST(AxisKeysTest, OnTheExcitationAxisTheKeysChangePlaces)
{
    const AxisKeys keys = axisKeys({{"640nm", "700nm"}, {"660nm", "700nm"}}, SPECTRUMAXIS_EXCITATION);
    EXPECT_EQ(keys.primary, (QStringList{"640", "660"}));
    EXPECT_EQ(keys.secondary, (QStringList{"700nm"}));
}

TEST(AxisKeysTest, TimesStayAsTheyAre)
{
    const AxisKeys keys = axisKeys({{"Int1", "1200"}, {"Int2", "600"}}, SPECTRUMAXIS_TIME);
    EXPECT_EQ(keys.primary, (QStringList{"1200", "600"}));
    EXPECT_EQ(keys.secondary, (QStringList{"Int1", "Int2"}));
}

} // namespace
