// SPDX-License-Identifier: GPL-3.0-or-later
// One map as a dataset.
#include "storage/ExportFixture.h"

#include "engine/OwnResultView.h"
#include "support/ForkedChild.h"

#include <QFile>

namespace {

// Remembers whose window was closed.
class ClosingView : public OwnResultView
{
public:
    explicit ClosingView(CORVSpumKyvo& engine)
        : OwnResultView(engine.m_spectrumPlots, engine.m_analysisInput, [](CImageCube&) {})
    {
    }
    void closeImageWindow(const QString& strClickNumber) override { m_closed.append(strClickNumber); }
    QStringList m_closed;
};

class ExportDatasetTest : public ExportFixture
{
protected:
    // Folder of the dataset of that index; empty when it could not be made.
    QString make(int nIndex)
    {
        QString strPath;
        m_strLabel = "untouched";
        if (!engine().openUnmixedDataset(nIndex, &m_strLabel, &strPath)) {
            EXPECT_EQ(m_strLabel, "untouched");
            EXPECT_EQ(strPath, "");
            return QString();
        }
        EXPECT_EQ(QFileInfo(strPath).fileName(), "ClickInfo.txt");
        return QFileInfo(strPath).absolutePath();
    }
    void addImage(CORVDataset& source, tag_eimagetype eType, float fValue)
    {
        source.setCoreImage(eType, squareImage(2, 1, [fValue](int) { return fValue; }));
    }
    static void addSection(CORVDataset& source, const QString& strKey, const QString& strValue)
    {
        CPLSection section(strKey);
        section.setValue("Mark", strValue);
        source.clickInfo.addSection(&section);
    }

    QString m_strLabel;
    LogCapture m_log;
};

} // namespace

TEST_F(ExportDatasetTest, AMapBecomesAFolderOfFilesInTheTemporaryDirectory)
{
    makeResult(2, 3);
    const QString strFolder = make(1);
    EXPECT_EQ(strFolder, target() + "/Unmixed Result 2");
    EXPECT_EQ(m_strLabel, "SEQ12UMX2");
    EXPECT_EQ(namesIn(strFolder),
              QStringList({"AnalyzedClickInfo.txt", "ClickInfo.txt", "luminescent.TIF", "photograph.TIF"}));
    ORVDataTypes eType = ORVTYPE_NONE;
    // 100 + i, divided by the spectrum's maximum of 2.
    EXPECT_EQ(pixelsAt(strFolder + "/luminescent.TIF", &eType), (std::vector<double>{50.0, 50.5, 51.0, 51.5}));
    EXPECT_EQ(eType, ORVTYPE_FLOAT);
    EXPECT_EQ(pixelsAt(strFolder + "/photograph.TIF"), std::vector<double>(4, 1.0));
    EXPECT_EQ(m_log.reports(), "");
    EXPECT_EQ(engine().m_nComponents, 2);
}

TEST_F(ExportDatasetTest, TheSourceIsTheImageInWhichTheComponentIsBrightest)
{
    makeResult(2, 3);
    engine().m_spectra[1][1] = 0.5;
    engine().m_spectra[1][2] = 3.0;
    EXPECT_EQ(engine().unmixedSource(1, 0), &dataset(2));
    const CPLClickInfo info = clickInfoAt(make(1) + "/ClickInfo.txt");
    EXPECT_TRUE(entriesOf(info, "luminescent image").contains("Emission Filter=740nm"));
    // Of equal maxima the first.
    engine().m_spectra[1][0] = 3.0;
    EXPECT_EQ(engine().unmixedSource(1, 0), &dataset(0));
}

TEST_F(ExportDatasetTest, AnotherSpotTakesItsOwnSourceAndPixels)
{
    makeResult(3, 4, 2);
    const QString strFolder = make(1 * 4 + 2); // spot 1, component 2
    EXPECT_EQ(strFolder, target() + "/Unmixed Result 3002");
    EXPECT_EQ(m_strLabel, "SEQ12UMX3");
    EXPECT_EQ(engine().unmixedSource(2, 1), &dataset(4 + 2));
    const QStringList entries = entriesOf(clickInfoAt(strFolder + "/ClickInfo.txt"), "luminescent image");
    EXPECT_TRUE(entries.contains("Emission Filter=740nm"));
    EXPECT_TRUE(entries.contains("FL x-spot=1.5"));
    EXPECT_TRUE(entries.contains("Igor Wave Note=ClickNumber=2;FL x-spot=1.5;FL y-spot=-1;"));
    const float fThird = 3.0F;
    std::vector<double> expected;
    for (const float fValue : {210.0F, 211.0F, 212.0F, 213.0F}) {
        expected.push_back(static_cast<double>(fValue / fThird));
    }
    EXPECT_EQ(pixelsAt(strFolder + "/luminescent.TIF"), expected);
}

TEST_F(ExportDatasetTest, ASingleSpotHasClickNumberZero)
{
    makeResult(2, 3, 1);
    const QString strFolder = make(0);
    EXPECT_EQ(strFolder, target() + "/Unmixed Result 1");
    EXPECT_TRUE(entriesOf(clickInfoAt(strFolder + "/ClickInfo.txt"), "luminescent image")
                    .contains("Igor Wave Note=ClickNumber=0;FL x-spot=0.5;FL y-spot=-0;"));
}

TEST_F(ExportDatasetTest, TheCompositesPlaceIsNoDataset)
{
    makeResult(2, 3);
    EXPECT_EQ(make(2), "");
    EXPECT_FALSE(QFileInfo::exists(target()));
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(ExportDatasetTest, WithoutAResultThereIsNoDataset)
{
    makeResult(2, 3);
    engine().m_concentrations = XTNT::Matrix<double>();
    EXPECT_EQ(make(0), "");
    EXPECT_FALSE(QFileInfo::exists(target()));
}

TEST_F(ExportDatasetTest, AMaskedResultIsZeroOutsideTheMask)
{
    makeResult(2, 3);
    engine().m_bUseMask = 1;
    engine().m_maskIndices = {3, 1};
    fillResult(2, 3, 1, 2);
    EXPECT_EQ(pixelsAt(make(1) + "/luminescent.TIF"), (std::vector<double>{0.0, 50.5, 0.0, 50.0}));
}

TEST_F(ExportDatasetTest, TheTwoClickInfosDifferInTheCameraSectionAlone)
{
    makeResult(2, 3);
    const QString strFolder = make(0);
    const CPLClickInfo analyzed = clickInfoAt(strFolder + "/AnalyzedClickInfo.txt");
    CPLClickInfo whole = clickInfoAt(strFolder + "/ClickInfo.txt");
    EXPECT_EQ(entriesOf(analyzed, "Camera System Info"), QStringList("(no section)"));
    EXPECT_EQ(entriesOf(whole, "Camera System Info"), entriesOf(dataset(0).clickInfo, "Camera System Info"));
    ASSERT_EQ(whole.removeSection("Camera System Info"), 0);
    EXPECT_EQ(whole.toText(), analyzed.toText());
}

TEST_F(ExportDatasetTest, ASourceWithoutACameraSectionGivesTwoEqualClickInfos)
{
    makeResult(2, 3);
    dataset(0).clickInfo.removeSection("Camera System Info");
    const QString strFolder = make(0);
    EXPECT_EQ(clickInfoAt(strFolder + "/ClickInfo.txt").toText(),
              clickInfoAt(strFolder + "/AnalyzedClickInfo.txt").toText());
}

TEST_F(ExportDatasetTest, ClickNumberAndFolderOfTheSourceAreLeftOutAndItsOtherEntriesKept)
{
    makeResult(2, 3);
    CPLSection& click = *dataset(0).clickInfo[QString("ClickNumber")];
    click.setValue("Folder On Disk", "C:\\data");
    click.setValue("KyVo Interval", "2");
    const QStringList entries = entriesOf(clickInfoAt(make(0) + "/ClickInfo.txt"), "ClickNumber");
    EXPECT_TRUE(entries.filter(QRegExp("^ClickNumber=")).isEmpty());
    EXPECT_TRUE(entries.contains("Folder On Disk="));
    EXPECT_TRUE(entries.contains("KyVo Interval=2"));
}

TEST_F(ExportDatasetTest, TheSourceIsLeftAsItWas)
{
    makeResult(2, 3);
    const QByteArray before = dataset(0).clickInfo.toText();
    const double dPixel = dataset(0).getCoreImage(IMAGETYPE_LUMINESCENT)->value(3);
    ASSERT_NE(make(0), "");
    EXPECT_EQ(dataset(0).clickInfo.toText(), before);
    EXPECT_EQ(dataset(0).getCoreImage(IMAGETYPE_LUMINESCENT)->value(3), dPixel);
}

TEST_F(ExportDatasetTest, OfAStructuredLightScanTheFirstDatasetIsTakenAlong)
{
    makeResult(2, 3);
    addImage(dataset(1), IMAGETYPE_STRUCTURE, 5.0F);
    addImage(dataset(1), IMAGETYPE_REFERENCE, 6.0F);
    addSection(dataset(1), "structure image", "s");
    addSection(dataset(1), "reference image", "r");
    addImage(dataset(2), IMAGETYPE_STRUCTURE, 7.0F);
    addSection(dataset(2), "structure image", "other");
    const QString strFolder = make(0);
    EXPECT_EQ(pixelsAt(strFolder + "/structure.TIF"), std::vector<double>(4, 5.0));
    EXPECT_EQ(pixelsAt(strFolder + "/reference.TIF"), std::vector<double>(4, 6.0));
    const CPLClickInfo info = clickInfoAt(strFolder + "/AnalyzedClickInfo.txt");
    EXPECT_EQ(entriesOf(info, "structure image"), QStringList("Mark=s"));
    EXPECT_EQ(entriesOf(info, "reference image"), QStringList("Mark=r"));
}

TEST_F(ExportDatasetTest, AStructuredLightDatasetWithoutAReferenceGivesItsStructureAlone)
{
    makeResult(2, 3);
    addImage(dataset(1), IMAGETYPE_STRUCTURE, 5.0F);
    const QString strFolder = make(0);
    EXPECT_TRUE(QFileInfo::exists(strFolder + "/structure.TIF"));
    EXPECT_FALSE(QFileInfo::exists(strFolder + "/reference.TIF"));
    EXPECT_EQ(entriesOf(clickInfoAt(strFolder + "/ClickInfo.txt"), "structure image"), QStringList("(no section)"));
}

TEST_F(ExportDatasetTest, AFluorescentReferenceGoesUnderTheNameOfItsKind)
{
    makeResult(2, 3);
    for (int n = 0; n < 2; ++n) {
        addImage(dataset(n), IMAGETYPE_FLUORESCENT_REFERENCE, 9.0F);
    }
    addSection(dataset(0), "fluorescent reference image", "f");
    dataset(1).hasTransmissionImage = true;
    const QString strEpi = make(0);
    EXPECT_EQ(pixelsAt(strEpi + "/FluorescentReference.TIF"), std::vector<double>(4, 9.0));
    EXPECT_FALSE(QFileInfo::exists(strEpi + "/transmission.tif"));
    EXPECT_EQ(entriesOf(clickInfoAt(strEpi + "/ClickInfo.txt"), "fluorescent reference image"), QStringList("Mark=f"));
    const QString strTrans = make(1);
    EXPECT_EQ(pixelsAt(strTrans + "/transmission.tif"), std::vector<double>(4, 9.0));
    EXPECT_FALSE(QFileInfo::exists(strTrans + "/FluorescentReference.TIF"));
    // The image is saved though there is no section to copy.
    EXPECT_EQ(entriesOf(clickInfoAt(strTrans + "/ClickInfo.txt"), "fluorescent reference image"),
              QStringList("(no section)"));
}

TEST_F(ExportDatasetTest, AnXRayImageIsTakenWhenTheSourceHasTheFlag)
{
    makeResult(2, 3);
    for (int n = 0; n < 2; ++n) {
        addImage(dataset(n), IMAGETYPE_XRAY, 12.0F);
        addSection(dataset(n), "x-ray image", "x");
    }
    dataset(1).hasXRayImage = false;
    const QString strWith = make(0);
    EXPECT_EQ(pixelsAt(strWith + "/X-ray.TIF"), std::vector<double>(4, 12.0));
    EXPECT_EQ(entriesOf(clickInfoAt(strWith + "/ClickInfo.txt"), "x-ray image"), QStringList("Mark=x"));
    const QString strWithout = make(1);
    EXPECT_FALSE(QFileInfo::exists(strWithout + "/X-ray.TIF"));
    EXPECT_EQ(entriesOf(clickInfoAt(strWithout + "/ClickInfo.txt"), "x-ray image"), QStringList("(no section)"));
}

TEST_F(ExportDatasetTest, ASourceWithoutAPhotographGivesNone)
{
    makeResult(2, 3);
    TestImage bare;
    bare.excitation = "640nm";
    bare.emission = "700nm";
    bare.side = side;
    bare.photograph = false;
    CORVDataset* pBare = sequence().add(bare);
    engine().m_imageList[0] = pBare->getClickNumber();
    EXPECT_EQ(namesIn(make(0)), QStringList({"AnalyzedClickInfo.txt", "ClickInfo.txt", "luminescent.TIF"}));
}

TEST_F(ExportDatasetTest, AMapInRadianceKeepsItsValuesThoughItIsScaledByTheSource)
{
    makeResult(2, 3, 0, DISPLAYUNIT_RADIANCE);
    dataset(1).clickInfo[QString("Camera System Info")]->setValue("Photons per Count", "4");
    const std::vector<double> pixels = pixelsAt(make(1) + "/luminescent.TIF");
    const std::vector<double> expected{50.0, 50.5, 51.0, 51.5};
    ASSERT_EQ(pixels.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(pixels[i], expected[i], 1e-5) << i;
    }
}

TEST_F(ExportDatasetTest, InOtherUnitsTheCalibrationDoesNotCount)
{
    for (const int eUnit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
        makeResult(2, 3, 0, eUnit);
        dataset(1).clickInfo.removeSection("Camera System Info");
        EXPECT_EQ(pixelsAt(make(1) + "/luminescent.TIF"), (std::vector<double>{50.0, 50.5, 51.0, 51.5})) << eUnit;
    }
}

TEST_F(ExportDatasetTest, TheOpenedDatasetGivesTheMapInTheUnitOfTheAnalysis)
{
    for (int eUnit = DISPLAYUNIT_COUNTS; eUnit <= DISPLAYUNIT_EFFICIENCY; ++eUnit) {
        makeResult(2, 3, 0, eUnit);
        CPLSection& luminescent = *dataset(1).clickInfo[QString("luminescent image")];
        luminescent.setValue("Background Corrected", "0");
        luminescent.setValue("Read Bias Level", "100");
        const QString strFolder = make(1);
        // As a host does that takes the dataset in.
        CPLClickInfo info = clickInfoAt(strFolder + "/ClickInfo.txt");
        info[QString("ClickNumber")]->setValue("ClickNumber", "taken-in");
        ASSERT_EQ(info.saveClickInfo(strFolder + "/ClickInfo.txt"), 0);
        CORVDataset opened;
        QString strError;
        ASSERT_EQ(opened.open(strFolder, &strError), ESTATUS_SUCCESS) << qPrintable(strError);
        CILImage image;
        ASSERT_EQ(opened.getCalibratedLuminImage(static_cast<tag_edisplayunit>(eUnit), &image, "test"), ESTATUS_SUCCESS)
            << eUnit;
        EXPECT_NEAR(image.value(1), 50.5, 1e-5) << eUnit; // no bias was taken off again
    }
}

TEST_F(ExportDatasetTest, ASecondExportReplacesTheFolderOfTheFirst)
{
    makeResult(2, 3);
    const QString strFolder = make(0);
    QFile left(strFolder + "/left over");
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    engine().m_concentrations[0][0] = 77.0;
    EXPECT_EQ(make(0), strFolder);
    EXPECT_FALSE(QFileInfo::exists(strFolder + "/left over"));
    EXPECT_EQ(pixelsAt(strFolder + "/luminescent.TIF").front(), 77.0);
}

TEST_F(ExportDatasetTest, TheWindowOfALoadedDatasetIsClosedUnlessItWasModified)
{
    makeResult(2, 3);
    ClosingView view(engine());
    engine().setResultView(&view);
    const QString strFolder = make(0);
    CORVDataset loaded;
    CPLSection click("ClickNumber");
    click.setValue("ClickNumber", "loaded-1");
    loaded.clickInfo.addSection(&click);
    loaded.setFolderPath(strFolder);
    EXPECT_TRUE(view.m_closed.isEmpty());
    make(1); // another folder
    EXPECT_TRUE(view.m_closed.isEmpty());
    loaded.setModified(true);
    EXPECT_NE(make(0), "");
    EXPECT_TRUE(view.m_closed.isEmpty());
    loaded.setModified(false);
    EXPECT_NE(make(0), "");
    EXPECT_EQ(view.m_closed, QStringList("loaded-1"));
    engine().setResultView(nullptr);
}

TEST_F(ExportDatasetTest, AFileInTheTargetsPlaceIsToldAndKept)
{
    makeResult(2, 3);
    QFile file(target());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(make(0), "");
    EXPECT_EQ(m_log.reports(), noFolderLine.toStdString() + "\n");
    EXPECT_EQ(m_log.count(noFolderLine, 3), 1);
    EXPECT_TRUE(QFileInfo(target()).isFile());
}

TEST_F(ExportDatasetTest, AFileInTheDatasetsPlaceIsToldAndKept)
{
    makeResult(2, 3);
    ASSERT_TRUE(QDir().mkpath(target()));
    QFile file(target() + "/Unmixed Result 1");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(make(0), "");
    EXPECT_EQ(m_log.count(noFolderLine, 3), 1);
    EXPECT_TRUE(QFileInfo(target() + "/Unmixed Result 1").isFile());
}

TEST_F(ExportDatasetTest, AMissingSourceIsToldAndTheFolderRemains)
{
    makeResult(2, 3);
    engine().m_imageList[0] = "retired";
    EXPECT_EQ(make(0), "");
    EXPECT_EQ(m_log.reports(), noDatasetLine.toStdString() + "\n");
    EXPECT_EQ(m_log.count(noDatasetLine, 3), 1);
    EXPECT_EQ(namesIn(target() + "/Unmixed Result 1"), QStringList());
}

TEST_F(ExportDatasetTest, AnIndexBeyondTheSpotsOrAResultThatDoesNotFitHasNoSource)
{
    makeResult(2, 3);
    EXPECT_EQ(make(3), ""); // spot 1 of 1
    EXPECT_EQ(make(-1), "");
    engine().m_imageList.clear();
    EXPECT_EQ(make(0), "");
    ASSERT_TRUE(engine().createImageList());
    engine().m_nWidth = 3; // the concentrations are of 2 x 2 pixels
    EXPECT_EQ(make(0), "");
    EXPECT_EQ(m_log.count(noDatasetLine, 3), 4);
}

TEST_F(ExportDatasetTest, ASourceWithoutALuminescentImageIsTold)
{
    makeResult(2, 3);
    TestImage bare;
    bare.dataImage = false;
    engine().m_imageList[0] = sequence().add(bare)->getClickNumber();
    EXPECT_EQ(make(0), "");
    EXPECT_EQ(m_log.reports(), noImageLine.toStdString() + "\n");
    EXPECT_EQ(m_log.count(noImageLine, 3), 1);
}

TEST_F(ExportDatasetTest, OutputsMayBeLeftOut)
{
    makeResult(2, 3);
    EXPECT_TRUE(engine().openUnmixedDataset(0, nullptr, nullptr));
}

TEST_F(ExportDatasetTest, AFullDiskIsToldAtWhateverFileItStrikes)
{
    makeResult(2, 3);
    const auto largest = static_cast<rlim_t>(QFileInfo(make(0) + "/ClickInfo.txt").size());
    ASSERT_GT(largest, 400U);
    // From the first image to the last click info.
    for (const rlim_t bytes : {rlim_t{0}, rlim_t{50}, rlim_t{200}, rlim_t{400}, largest - 1}) {
        const int nAnswer = inForkedChild([this, bytes] {
            if (!limitFileSize(bytes)) {
                return 99;
            }
            const bool bMade = engine().openUnmixedDataset(0, nullptr, nullptr);
            return (bMade ? 1 : 0) + (m_log.count(noFolderLine, 3) == 1 ? 0 : 2);
        });
        EXPECT_EQ(nAnswer, 0) << bytes;
        EXPECT_FALSE(QFileInfo::exists(target() + "/Unmixed Result 1/luminescent.TIF")) << bytes;
    }
    EXPECT_NE(make(0), ""); // and once there is room, all is well
}

TEST_F(ExportDatasetTest, ATemporaryDirectoryThatMayNotBeWrittenToIsTold)
{
    makeResult(2, 3);
    ASSERT_TRUE(QDir().mkpath(target()));
    ASSERT_EQ(::chmod(QFile::encodeName(target()).constData(), 0555), 0);
    const int nAnswer = inForkedChild([this] {
        if (!becomePlainUser()) {
            return 99;
        }
        const bool bMade = engine().openUnmixedDataset(0, nullptr, nullptr);
        return (bMade ? 1 : 0) + (m_log.count(noFolderLine, 3) == 1 ? 0 : 2);
    });
    EXPECT_EQ(nAnswer, 0);
    ASSERT_EQ(::chmod(QFile::encodeName(target()).constData(), 0755), 0);
}
