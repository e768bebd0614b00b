// SPDX-License-Identifier: GPL-3.0-or-later
// The unmixed images of the engine and what it hands to the view of a result.
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "support/Numbers.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/SpectrumPlotParams.h"

#include <gtest/gtest.h>

namespace {

using testsupport::matrixOf;

const char* const invalidFile = "Invalid xml file used..";
const char* const retired = "SpumKyvo: Unable to locate the required dataset. It looks like the first image has been "
                            "retired. Please close and restart. ";

// A sequence of two images of 2 x 2 pixels with a result of two components in shades of grey.
class ResultPicturesTest : public ::testing::Test
{
protected:
    ResultPicturesTest() : m_engine(m_sequence.id())
    {
        m_sequence->isFluorescence = true;
        for (int j = 0; j < 2; ++j) {
            TestImage image;
            image.excitation = "640nm";
            image.emission = QString("%1nm").arg(700 + 20 * j);
            image.side = 2;
            m_datasets.append(m_sequence.add(image));
        }
        EXPECT_TRUE(m_engine.buildDatasetInfo());
        EXPECT_TRUE(m_engine.createImageList());
        EXPECT_TRUE(m_engine.setBinningAndSize(true));
        takeSpectra(m_engine, {{1.0, 0.0}, {0.0, 1.0}});
        m_engine.m_spectrumPlots.at(0)->settings.name = "GFP";
        m_engine.m_spectrumPlots.at(0)->settings.color = "red";
        m_engine.m_spectrumPlots.at(1)->settings.name = "TissueAF";
        m_engine.m_spectrumPlots.at(1)->settings.color = "lime";
        m_engine.m_scaleRatios = {ScaleRatio(), ScaleRatio()};
        m_engine.m_concentrations = matrixOf({{0, 5, 10, 10}, {20, 10, 0, 0}});
        m_sequence->getImageAdjust()->m_nColorTable = 0;
        m_engine.m_bReverse = false;
    }

    const OwnResultView& view() const { return m_engine.ownResultView(); }
    QStringList labels() const
    {
        QStringList all;
        for (const UnmixedTile& tile : view().tiles()) {
            all.append(tile.label);
        }
        return all;
    }
    // Grey levels of the pixels of a tile.
    std::vector<int> levels(int nTile) const
    {
        const QImage picture = view().tiles().at(nTile).image->toQImage();
        std::vector<int> all;
        for (int i = 0; i < picture.width() * picture.height(); ++i) {
            const QRgb pixel = picture.pixel(i % picture.width(), i / picture.width());
            EXPECT_EQ(qRed(pixel), qBlue(pixel));
            all.push_back(qRed(pixel));
        }
        return all;
    }

    TestSequence m_sequence;
    CORVSpumKyvo m_engine;
    QList<CORVDataset*> m_datasets;
};

TEST_F(ResultPicturesTest, ATileForEachComponentAndTheComposite)
{
    LogCapture log;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(labels(), (QStringList{"GFP", "TissueAF", "Composite"}));
    EXPECT_EQ(levels(0), (std::vector<int>{0, 128, 255, 255}));
    EXPECT_EQ(levels(1), (std::vector<int>{255, 128, 0, 0}));
    EXPECT_EQ(log.reports(), "");
}

TEST_F(ResultPicturesTest, AViewWithoutUseForTilesGetsTheCompositeAlone)
{
    m_engine.ownResultView().setShowsUnmixedImages(false);
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_TRUE(labels().isEmpty());
    EXPECT_EQ(m_engine.m_unmixedImages.size(), 1);
    EXPECT_EQ(m_engine.ownResultView().composite().channels.size(), 2);
}

TEST_F(ResultPicturesTest, TheEngineOwnsThePhotographsCopyFirst)
{
    m_engine.m_pPhoto->setGLFormat(0x1909);
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    ASSERT_EQ(m_engine.m_unmixedImages.size(), 8); // the photograph, the composite, 2 for each component, the last two
    CILImage* const pPhoto = m_engine.m_unmixedImages.first();
    EXPECT_NE(pPhoto, m_engine.m_pPhoto);
    EXPECT_EQ(pPhoto->m_lWidth, m_engine.m_pPhoto->m_lWidth);
    EXPECT_EQ(pPhoto->value(0), m_engine.m_pPhoto->value(0));
    EXPECT_EQ(pPhoto->getGLFormat(), 0x1907U);
    EXPECT_EQ(m_engine.m_pPhoto->getGLFormat(), 0x1909U) << "the host's own stays as it is";
    for (const UnmixedTile& tile : view().tiles()) {
        EXPECT_TRUE(m_engine.m_unmixedImages.contains(tile.image));
    }
}

TEST_F(ResultPicturesTest, OnlyAPhotographOfAnotherFormatBecomesOpaque)
{
    m_engine.m_pPhoto->getPalette()->setAlphaMode(1, 0.5);
    m_engine.m_pPhoto->setGLFormat(0x1907);
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(m_engine.m_unmixedImages.first()->getPalette()->alphaMode(), 1);
    EXPECT_EQ(m_engine.m_unmixedImages.last()->getPalette()->alphaMode(), 1);
    m_engine.m_pPhoto->setGLFormat(0x1908);
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(m_engine.m_unmixedImages.first()->getPalette()->alphaMode(), 0);
    EXPECT_EQ(m_engine.m_unmixedImages.last()->getPalette()->alphaMode(), 1)
        << "the hint of it is of the photograph itself";
}

TEST_F(ResultPicturesTest, TheColourBarShowsTheCommonRange)
{
    m_engine.m_bLogScale = true;
    m_engine.m_bReverse = true;
    m_sequence->getImageAdjust()->m_nColorTable = 2;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(m_engine.m_nColorMap, 2) << "the sequence's is read anew";
    const ColorBarState& bar = view().colorBar();
    EXPECT_EQ(bar.unit, m_engine.m_eUnit);
    EXPECT_FALSE(bar.ntf);
    EXPECT_EQ(bar.colorTable, 2);
    EXPECT_DOUBLE_EQ(bar.minimum, 1.0); // 5 and 95 % of 0 to 20
    EXPECT_DOUBLE_EQ(bar.maximum, 19.0);
    EXPECT_TRUE(bar.reversed);
    EXPECT_TRUE(bar.logScale);
    EXPECT_TRUE(view().isColorBarHidden());

    m_engine.ownResultView().setScaleRange(0.25, 0.5);
    m_engine.m_eSeqKind = SEQKIND_TRANSILLUMINATION;
    m_engine.m_eUnit = 3;
    ASSERT_TRUE(m_engine.updateUnmixedImages(false));
    EXPECT_DOUBLE_EQ(view().colorBar().minimum, 5.0);
    EXPECT_DOUBLE_EQ(view().colorBar().maximum, 10.0);
    EXPECT_TRUE(view().colorBar().ntf);
    EXPECT_EQ(view().colorBar().unit, 3);
    for (const int eKind : {SEQKIND_LUMINESCENT, SEQKIND_EPI_FLUORESCENT, SEQKIND_TEMPORAL, SEQKIND_3D_SCENE}) {
        m_engine.m_eSeqKind = eKind;
        ASSERT_TRUE(m_engine.updateUnmixedImages(false));
        EXPECT_FALSE(view().colorBar().ntf) << eKind;
    }
}

TEST_F(ResultPicturesTest, OnACommonScaleAllMapsHaveTheSameRange)
{
    m_engine.ownResultView().setScaleRange(0.0, 1.0);
    m_engine.onAutoScaleClicked(false);
    EXPECT_FALSE(m_engine.m_bIndividualScale);
    EXPECT_FALSE(view().isColorBarHidden());
    EXPECT_EQ(levels(0), (std::vector<int>{0, 64, 128, 128})); // of 20: a quarter and a half
    EXPECT_EQ(levels(1), (std::vector<int>{255, 128, 0, 0}));
    m_engine.onAutoScaleClicked(true);
    EXPECT_TRUE(m_engine.m_bIndividualScale);
    EXPECT_TRUE(view().isColorBarHidden());
    EXPECT_EQ(levels(0), (std::vector<int>{0, 128, 255, 255}));
    EXPECT_EQ(view().tiles().size(), 3) << "those of before are gone";
}

// A view that leaves the range to its caller.
class RangelessView : public OwnResultView
{
public:
    explicit RangelessView(CORVSpumKyvo& engine)
        : OwnResultView(engine.m_spectrumPlots, engine.m_analysisInput, [](CImageCube&) {})
    {
    }
    void getScaleRange(double* pLower, double* pUpper) const override
    {
        m_dLowerGiven = *pLower;
        m_dUpperGiven = *pUpper;
    }
    QList<SpectrumPlotParams*> m_spectra;
    void setSpectra(const QList<SpectrumPlotParams*>& spectra) override { m_spectra = spectra; }
    DecayState m_decay{"none", -1.0, true};
    void setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply) override
    {
        m_decay = {strIsotope, dHalfLifeSeconds, bApply};
    }
    DecayState getDecayState() const override { return m_decay; }
    mutable double m_dLowerGiven = -1.0;
    mutable double m_dUpperGiven = -1.0;
};

TEST_F(ResultPicturesTest, TheRangeStartsAsTheWholeOne)
{
    RangelessView other(m_engine);
    m_engine.setResultView(&other);
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(other.m_dLowerGiven, 0.0);
    EXPECT_EQ(other.m_dUpperGiven, 1.0);
    EXPECT_EQ(other.colorBar().minimum, 0.0);
    EXPECT_EQ(other.colorBar().maximum, 20.0);
    m_engine.setResultView(nullptr);
}

// A view that writes down which tiles and ranges it is told.
class RangesView : public OwnResultView
{
public:
    explicit RangesView(CORVSpumKyvo& engine)
        : OwnResultView(engine.m_spectrumPlots, engine.m_analysisInput, [](CImageCube&) {})
    {
    }
    void addUnmixedImage(CILImage* pImage, const QString& strLabel) override
    {
        m_told << strLabel;
        OwnResultView::addUnmixedImage(pImage, strLabel);
    }
    void setUnmixedImageRange(double dMin, double dMax) override { m_told << QString("%1 to %2").arg(dMin).arg(dMax); }
    QStringList m_told;
};

TEST_F(ResultPicturesTest, MapsTellTheRangeThatTheyAreShownOver)
{
    RangesView other(m_engine);
    m_engine.setResultView(&other);
    m_engine.m_scaleRatios[0].MaxRatio = 0.5;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(other.m_told, (QStringList{"GFP", "1 to 5", "TissueAF", "2 to 18", "Composite"}));
    other.m_told.clear();
    other.setScaleRange(0.25, 0.75);
    m_engine.onAutoScaleClicked(false);
    EXPECT_EQ(other.m_told, (QStringList{"GFP", "5 to 15", "TissueAF", "5 to 15", "Composite"}));
    m_engine.setResultView(nullptr);
}

TEST_F(ResultPicturesTest, PixelsOutsideTheMaskKeepTheLowestConcentration)
{
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices = {1, 2};
    m_engine.m_concentrations = matrixOf({{6, 10}, {2, 4}});
    m_engine.ownResultView().setScaleRange(0.0, 1.0);
    m_engine.m_bIndividualScale = false;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(levels(0), (std::vector<int>{0, 128, 255, 0})); // 2 to 10
    EXPECT_EQ(levels(1), (std::vector<int>{0, 0, 64, 0}));
}

TEST_F(ResultPicturesTest, WithoutUseOfAMaskItsIndicesAreLeftToTheComposite)
{
    m_engine.m_bUseMask = 0;
    m_engine.m_maskIndices = {1, 2};
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(view().composite().pixelIndices, (std::vector<int>{1, 2}));
    EXPECT_EQ(levels(0), (std::vector<int>{0, 128, 255, 255}));
}

TEST_F(ResultPicturesTest, AMaskInUseWithoutPixelsShowsTheLowestConcentrationAlone)
{
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices.clear();
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(levels(0), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(levels(1), (std::vector<int>{0, 0, 0, 0}));
}

TEST_F(ResultPicturesTest, EachSpotOfAScanHasItsTiles)
{
    m_engine.m_spots = QStringList{"0,0", "0,1"};
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices = {0, 3};
    m_engine.m_concentrations = matrixOf({{0, 10, 10, 5}, {1, 2, 3, 4}});
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(labels(),
              (QStringList{"GFP_001", "TissueAF_001", "Composite_001", "GFP_002", "TissueAF_002", "Composite_002"}));
    EXPECT_EQ(levels(0), (std::vector<int>{0, 0, 0, 255}));
    EXPECT_EQ(levels(3), (std::vector<int>{255, 0, 0, 128}));
    EXPECT_EQ(m_engine.m_unmixedImages.size(), 15); // the photograph and 7 a spot
    EXPECT_EQ(view().composite().spots, 2);
}

TEST_F(ResultPicturesTest, TheCompositeGetsTheWholeResult)
{
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices = {0, 3};
    m_engine.m_concentrations = matrixOf({{0, 10}, {1, 2}});
    m_engine.m_scaleRatios[1] = {0.3, 0.6, 1.0};
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    const CompositeInput& composite = view().composite();
    EXPECT_EQ(composite.photo, m_engine.m_pPhoto);
    EXPECT_EQ(composite.xray, nullptr);
    EXPECT_EQ(composite.data.num_rows(), 2);
    EXPECT_EQ(composite.data[0][1], 10.0);
    EXPECT_EQ(composite.unit, m_engine.m_eUnit);
    EXPECT_EQ(composite.pixelIndices, (std::vector<int>{0, 3}));
    EXPECT_EQ(composite.width, 2);
    EXPECT_EQ(composite.height, 2);
    EXPECT_EQ(composite.spots, 1);
    ASSERT_EQ(composite.channels.size(), 2);
    EXPECT_EQ(composite.channels.at(0).label, QString("GFP"));
    EXPECT_EQ(composite.channels.at(0).color, QColor(255, 0, 0));
    EXPECT_EQ(composite.channels.at(1).minFraction, 0.3);
    EXPECT_EQ(composite.channels.at(1).maxFraction, 0.6);
    EXPECT_EQ(composite.channels.at(1).color, QColor(0, 76, 0));
}

TEST_F(ResultPicturesTest, AnXRayImageGoesToTheComposite)
{
    m_datasets.first()->setCoreImage(IMAGETYPE_XRAY, squareImage(2, 1, [](int) { return 3.0F; }));
    m_datasets.first()->hasXRayImage = false;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(view().composite().xray, nullptr);
    m_datasets.first()->hasXRayImage = true;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(view().composite().xray, m_datasets.first()->getCoreImage(IMAGETYPE_XRAY));
}

TEST_F(ResultPicturesTest, OnlyANewResultHasUnmodifiedSpectra)
{
    m_engine.resultView().setSpectraModified(true);
    ASSERT_TRUE(m_engine.updateUnmixedImages(false));
    EXPECT_TRUE(view().isSpectraModified());
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_FALSE(view().isSpectraModified());
}

TEST_F(ResultPicturesTest, WithoutConcentrationsNothingHappens)
{
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    m_engine.m_concentrations.reshape(0, 0);
    LogCapture log;
    EXPECT_FALSE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(view().tiles().size(), 3);
    EXPECT_EQ(m_engine.m_unmixedImages.size(), 8);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ResultPicturesTest, WithoutTheSequenceNothingHappens)
{
    m_engine.m_strSeqId = "gone";
    LogCapture log;
    EXPECT_FALSE(m_engine.updateUnmixedImages(true));
    EXPECT_TRUE(m_engine.m_unmixedImages.isEmpty());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(ResultPicturesTest, AFirstImageThatIsGoneIsTold)
{
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    const QVector<QString> images = m_engine.m_imageList;
    for (const QVector<QString>& list : {QVector<QString>{"gone", images.at(1)}, QVector<QString>()}) {
        m_engine.m_imageList = list;
        LogCapture log;
        EXPECT_FALSE(m_engine.updateUnmixedImages(true));
        EXPECT_EQ(log.count(retired, 3), 1);
        EXPECT_TRUE(m_engine.m_unmixedImages.isEmpty());
        EXPECT_TRUE(view().tiles().isEmpty());
    }
    m_engine.m_imageList = {images.at(0), "gone"};
    EXPECT_TRUE(m_engine.updateUnmixedImages(true));
}

TEST_F(ResultPicturesTest, AResultWithoutPlotsIsInvalid)
{
    qDeleteAll(m_engine.m_spectrumPlots);
    m_engine.m_spectrumPlots.clear();
    m_engine.m_pPhoto->setGLFormat(0x1909);
    LogCapture log;
    EXPECT_FALSE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(log.count(invalidFile, 1), 1);
    ASSERT_EQ(m_engine.m_unmixedImages.size(), 1);
    EXPECT_EQ(m_engine.m_unmixedImages.first()->getGLFormat(), 0x1909U);
    EXPECT_TRUE(view().tiles().isEmpty());
    EXPECT_EQ(view().colorBar().maximum, 0.0) << "the colour bar comes later";
}

TEST_F(ResultPicturesTest, FewerRatiosThanComponentsAreInvalid)
{
    m_engine.m_scaleRatios.removeLast();
    LogCapture log;
    EXPECT_FALSE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(log.count(invalidFile, 1), 1);
    EXPECT_TRUE(view().tiles().isEmpty());
    EXPECT_DOUBLE_EQ(view().colorBar().maximum, 19.0) << "the colour bar comes before";
}

TEST_F(ResultPicturesTest, MoreRatiosThanComponentsAreNot)
{
    m_engine.m_scaleRatios.append(ScaleRatio());
    EXPECT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(view().composite().channels.size(), 2);
}

TEST_F(ResultPicturesTest, WhatElseDoesNotGoTogetherIsInvalidToo)
{
    const auto isRefused = [this] {
        LogCapture log;
        return !m_engine.updateUnmixedImages(true) && log.count(invalidFile, 1) == 1 && view().tiles().isEmpty();
    };
    m_engine.m_nWidth = 3;
    EXPECT_TRUE(isRefused()) << "fewer columns than pixels";
    m_engine.m_nWidth = 2;
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices = {0, 4};
    EXPECT_TRUE(isRefused()) << "a pixel outside the image";
    m_engine.m_bUseMask = 0;
    delete m_engine.m_spectrumPlots.takeLast();
    EXPECT_TRUE(isRefused()) << "fewer plots than components";
}

TEST_F(ResultPicturesTest, WithoutAPhotographTheMapsStandAlone)
{
    m_engine.m_pPhoto = nullptr;
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    EXPECT_EQ(m_engine.m_unmixedImages.size(), 8);
    EXPECT_TRUE(m_engine.m_unmixedImages.first()->isEmpty());
    EXPECT_EQ(levels(0), (std::vector<int>{0, 128, 255, 255}));
    EXPECT_EQ(view().composite().photo, nullptr);
}

TEST_F(ResultPicturesTest, AResetTakesThePicturesOffTheView)
{
    ASSERT_TRUE(m_engine.updateUnmixedImages(true));
    m_engine.resetAnalysis(RUNMODE_MANUAL);
    EXPECT_TRUE(view().tiles().isEmpty());
    EXPECT_TRUE(m_engine.m_unmixedImages.isEmpty());
    EXPECT_TRUE(view().composite().data.empty());
}

TEST_F(ResultPicturesTest, OnlyAnAutomaticRunHandsItsSpectraOver)
{
    RangelessView other(m_engine);
    m_engine.setResultView(&other);
    for (const int eMode : {RUNMODE_LIBRARY, RUNMODE_GUIDED, RUNMODE_MANUAL}) {
        m_engine.m_eMode = eMode;
        m_engine.updateConsoleSpectra();
        EXPECT_TRUE(other.m_spectra.isEmpty()) << eMode;
    }
    m_engine.m_eMode = RUNMODE_AUTOMATIC;
    m_engine.updateConsoleSpectra();
    EXPECT_EQ(other.m_spectra, m_engine.m_spectrumPlots);
    m_engine.setResultView(nullptr);
}

TEST_F(ResultPicturesTest, OnlyAnAutomaticRunOnCherenkovDataHandsItsDecayOver)
{
    RangelessView other(m_engine);
    m_engine.setResultView(&other);
    m_engine.m_analysisInput.isotope = "F-18";
    m_engine.m_analysisInput.halfLifeSeconds = 6586.0;
    m_engine.m_analysisInput.decayCorrection = false;
    m_engine.m_eMode = RUNMODE_AUTOMATIC;
    m_engine.m_bCherenkov = false;
    m_engine.refreshDecayPanel();
    EXPECT_EQ(other.m_decay.isotope, QString("none"));
    m_engine.m_bCherenkov = true;
    m_engine.m_eMode = RUNMODE_MANUAL;
    m_engine.refreshDecayPanel();
    EXPECT_EQ(other.m_decay.isotope, QString("none"));
    m_engine.m_eMode = RUNMODE_AUTOMATIC;
    m_engine.refreshDecayPanel();
    EXPECT_EQ(other.m_decay.isotope, QString("F-18"));
    EXPECT_EQ(other.m_decay.halfLifeSeconds, 6586.0);
    EXPECT_FALSE(other.m_decay.applied);
    m_engine.setResultView(nullptr);
}

TEST_F(ResultPicturesTest, TheResultTakesTheViewsDecay)
{
    RangelessView other(m_engine);
    other.m_decay = {"Cu-64", 45721.0, true};
    m_engine.setResultView(&other);
    m_engine.storeDecayState();
    EXPECT_TRUE(m_engine.m_bDecayApplied);
    EXPECT_EQ(m_engine.m_dHalfLifeSec, 45721.0);
    EXPECT_EQ(m_engine.m_strIsotope, QString("Cu-64"));
    m_engine.setResultView(nullptr);
}

} // namespace
