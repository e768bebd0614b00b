// SPDX-License-Identifier: GPL-3.0-or-later
// What is done with the pictures of a result in its windows.
#include "WorkArea.h"

#include "host/CORVDataset.h"
#include "host/CORVImageWindow.h"
#include "host/CORVPreference.h"
#include "host/CORVPreferenceSignals.h"
#include "host/CROIManager.h"
#include "host/UnitTexts.h"
#include "host/tagROIInfo.h"
#include "support/pointer.h"
#include "windows/CORVDistributionView.h"
#include "windows_on_screen/StatusTips.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QToolTip>

#include <algorithm>
#include <iterator>

using namespace workarea;

// The host's, which only hands it on.
struct downloaded_save_data
{
};

namespace {

class PicturesTest : public WorkAreaTest
{
protected:
    void SetUp() override
    {
        // The host opens what it is asked to.
        QObject::connect(
            m_palette.get(),
            qOverload<QString, bool, ESTATUS*, downloaded_save_data*>(&CORVSpumKyvoPalette::loadSpumResult),
            m_palette.get(), [this](const QString& strPath, bool bShow, ESTATUS* pStatus, downloaded_save_data*) {
                auto pDataset = std::make_unique<CORVDataset>();
                *pStatus = m_bHostOpens ? pDataset->openMade(QFileInfo(strPath).path()) : ESTATUS_FAILURE;
                m_requests << QString("%1 %2").arg(QFileInfo(strPath).fileName()).arg(bShow ? "shown" : "hidden");
                m_maps.push_back(std::move(pDataset));
            });
    }
    void unmix(const Plan& plan = Plan())
    {
        open(plan);
        unmixAutomatically();
    }

    bool m_bHostOpens = true;
    QStringList m_requests;
    std::vector<std::unique_ptr<CORVDataset>> m_maps;
};

TEST_F(PicturesTest, AMapOpensAsADatasetOfTheHost)
{
    unmix();
    engine().onImageDoubleClicked(1);
    EXPECT_EQ(m_requests, QStringList("ClickInfo.txt shown"));
    ASSERT_EQ(m_maps.size(), 1U);
    EXPECT_TRUE(m_maps[0]->isModified());
    EXPECT_TRUE(m_maps[0]->isSequenceWindowMember);
    EXPECT_EQ(QDir(m_maps[0]->folderPath()).dirName(), "Unmixed Result 2");
    EXPECT_EQ(complaints(), "");
}

TEST_F(PicturesTest, RegionsThatAreDrawnOnAMapComeBackWithItsResult)
{
    const QTemporaryDir folder;
    Plan plan;
    plan.folder = folder.filePath("mouse");
    unmix(plan);
    engine().onImageDoubleClicked(1);
    tagROIInfo drawn;
    drawn.name = "kidney";
    drawn.width = 4.0;
    drawn.height = 4.0;
    ASSERT_EQ(m_maps.size(), 1U);
    ASSERT_TRUE(m_maps[0]->roiManager()->addRegion(drawn));
    m_palette->m_pSaveButton->click();
    m_maps.clear();
    m_palette->m_pLoadButton->click();
    EXPECT_EQ(complaints(), "");
    engine().onImageDoubleClicked(1);
    ASSERT_EQ(m_maps.size(), 1U);
    ASSERT_EQ(m_maps[0]->roiManager()->regions().size(), 1);
    EXPECT_EQ(m_maps[0]->roiManager()->regions().first().name, "kidney");
    // The open map has it now: once, and not at all when it is removed there.
    EXPECT_EQ(engine().resultToXml().count("kidney"), 1);
    ASSERT_TRUE(m_maps[0]->roiManager()->removeRegion("kidney"));
    EXPECT_FALSE(engine().resultToXml().contains("kidney"));
    engine().onImageDoubleClicked(0);
    EXPECT_TRUE(m_maps[1]->roiManager()->regions().isEmpty());
}

// The tool tip of a tile.
QString tipOf(CORVDistributionView& view, int nTile)
{
    const QPoint at = view.imageRect(nTile).center().toPoint();
    QHelpEvent help(QEvent::ToolTip, at, view.mapToGlobal(at));
    QApplication::sendEvent(&view, &help);
    const QString text = QToolTip::text();
    QToolTip::hideText();
    return text;
}

TEST_F(PicturesTest, ATileTellsTheRangeOfItsMapInTheUnitOfTheResult)
{
    unmix();
    CORVDistributionView& view = *engine().m_pConsole->distributionView();
    ASSERT_EQ(view.getImageNumber(), 3);
    for (int i = 0; i < 2; ++i) {
        const QString tip = tipOf(view, i);
        EXPECT_TRUE(QRegularExpression("<br>[0-9.e+-]+ to [0-9.e+-]+ \\([A-Z][A-Za-z ]+\\)$").match(tip).hasMatch())
            << qPrintable(tip);
    }
    EXPECT_EQ(tipOf(view, 2), "Composite");
}

TEST_F(PicturesTest, ATileAndTheCubeTellTheNumberUnderThePointerInTheUnitOfTheResult)
{
    unmix();
    CORVDistributionView& view = *engine().m_pConsole->distributionView();
    const StatusTips tips(*engine().m_pConsole);
    const QString unit = ' ' + displayUnitQuantity(engine().m_eUnit);
    // The pixel of the map beside the middle, and its column among those that were unmixed.
    const QRectF tile = view.imageRect(1);
    pointer::move(view, tile.center() +
                            QPointF(0.5 * tile.width() / engine().m_nWidth, 0.5 * tile.height() / engine().m_nHeight));
    const int nPixel = engine().m_nHeight / 2 * engine().m_nWidth + engine().m_nWidth / 2;
    const auto found = std::find(engine().m_maskIndices.begin(), engine().m_maskIndices.end(), nPixel);
    ASSERT_NE(found, engine().m_maskIndices.end());
    const double dValue = engine().m_concentrations[1][std::distance(engine().m_maskIndices.begin(), found)];
    EXPECT_TRUE(tips.last().endsWith(
        QString("x %1, y %2: %3").arg(engine().m_nWidth / 2).arg(engine().m_nHeight / 2).arg(dValue, 0, 'g', 4) + unit))
        << qPrintable(tips.last());
    EXPECT_EQ(engine().m_pConsole->m_nCubeUnit, engine().m_eUnit);
}

TEST_F(PicturesTest, AHostThatOpensNothingIsStood)
{
    unmix();
    m_bHostOpens = false;
    engine().onImageDoubleClicked(0);
    EXPECT_EQ(m_requests.size(), 1);
    EXPECT_FALSE(m_maps[0]->isModified());
}

TEST_F(PicturesTest, TheLastTileOpensTheComposite)
{
    unmix();
    auto& opened = *m_opened.front();
    engine().onImageDoubleClicked(2);
    EXPECT_TRUE(m_requests.isEmpty());
    EXPECT_EQ(opened.tabs(), (QStringList{"Unmixing", "Composite"}));
    EXPECT_EQ(opened.window().getCurrentTabName(), "Composite");
    EXPECT_FALSE(engine().m_pComposite->isHidden());
    opened.window().setActiveTab("Unmixing");
    engine().onImageDoubleClicked(2);
    EXPECT_EQ(opened.window().getCurrentTabName(), "Composite");
    // It says so twice, and the second is stood.
    engine().onClickCompositeFinished(1);
    engine().onClickCompositeFinished(1);
    EXPECT_EQ(opened.tabs(), QStringList("Unmixing"));
}

TEST_F(PicturesTest, EverySpotHasItsTilesAndItsComposite)
{
    Plan plan;
    plan.scan = true;
    unmix(plan);
    CORVDistributionView& view = *console().distributionView();
    ASSERT_EQ(view.getImageNumber(), 6);
    EXPECT_TRUE(view.imageLabel(0).endsWith("_001"));
    EXPECT_EQ(view.imageLabel(2), "Composite_001");
    EXPECT_TRUE(view.imageLabel(4).endsWith("_002"));
    EXPECT_EQ(view.imageLabel(5), "Composite_002");
    engine().onImageDoubleClicked(5);
    EXPECT_EQ(engine().m_pComposite->m_nCurrentSpot, 1);
    engine().onImageDoubleClicked(2);
    EXPECT_EQ(engine().m_pComposite->m_nCurrentSpot, 0);
}

TEST_F(PicturesTest, TheCompositeBecomesTheOverview)
{
    unmix();
    engine().onImageDoubleClicked(2);
    const QImage composite = engine().m_pComposite->getCompositeImage();
    ASSERT_FALSE(composite.isNull());
    Q_EMIT engine().m_pComposite->updateImageCubeRGB();
    const QImage expected = composite.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_EQ(console().m_pseudoColorImage.convertToFormat(expected.format()), expected);
}

TEST_F(PicturesTest, WithoutBothWindowsThereIsNoOverviewToChange)
{
    open();
    engine().onUpdateImageCubeRGB();
    EXPECT_EQ(engine().m_pConsole, nullptr);
}

TEST_F(PicturesTest, TheScaleIsCommonOnDemand)
{
    unmix();
    CORVDistributionView& view = *console().distributionView();
    EXPECT_FALSE(view.isColorBarShown());
    console().m_pIndividualScaleCkB->setChecked(false);
    EXPECT_FALSE(engine().m_bIndividualScale);
    EXPECT_EQ(view.getImageNumber(), 3);
    EXPECT_TRUE(view.isColorBarShown());
    EXPECT_FALSE(console().m_bSpectraModified);
}

TEST_F(PicturesTest, PreferencesReachTheTilesOnlyWhileTheirTabIsThere)
{
    unmix();
    tag_simageadjust* pAdjust = m_opened.front()->sequence().getImageAdjust();
    const bool bBefore = engine().m_bReverse;
    pAdjust->m_bReversed = !bBefore;
    Q_EMIT CORVPreference::getSignalHandler()->updatePreferenceSetting();
    EXPECT_EQ(engine().m_bReverse, !bBefore);
    EXPECT_EQ(console().distributionView()->getImageNumber(), 3);
    engine().onClickDrawingFinished(0);
    pAdjust->m_bReversed = bBefore;
    Q_EMIT CORVPreference::getSignalHandler()->updatePreferenceSetting();
    EXPECT_EQ(engine().m_bReverse, !bBefore);
}

TEST_F(PicturesTest, PrintAndCopyTakeTheWindowOfTheirToolbar)
{
    m_main.show();
    unmix();
    QSignalSpy printed(m_palette.get(), SIGNAL(printPixmap(QPixmap)));
    console().m_pPrintButton->setEnabled(true);
    console().m_pPrintButton->click();
    ASSERT_EQ(printed.count(), 1);
    EXPECT_FALSE(printed.first().first().value<QPixmap>().isNull());
    QGuiApplication::clipboard()->clear();
    console().m_pCopyToClipboardButton->click();
    EXPECT_FALSE(QGuiApplication::clipboard()->image().isNull());
    engine().onImageDoubleClicked(2);
    engine().m_pComposite->m_pPrintButton->setEnabled(true);
    engine().m_pComposite->m_pPrintButton->click();
    EXPECT_EQ(printed.count(), 2);
    QToolButton stranger;
    QObject::connect(&stranger, &QToolButton::clicked, &engine(), &CORVSpumKyvo::onClickPrintButtons);
    stranger.click();
    EXPECT_EQ(printed.count(), 2);
}

TEST_F(PicturesTest, ThePaletteCopiesAndPrintsByTheNameOfTheTab)
{
    m_main.show();
    unmix();
    QGuiApplication::clipboard()->setText("before");
    m_palette->CopyToClipboard("Sequence View");
    m_palette->CopyToClipboard("Composite_");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "before");
    m_palette->CopyToClipboard("unmixing");
    EXPECT_FALSE(QGuiApplication::clipboard()->image().isNull());
    EXPECT_FALSE(m_palette->getPrintPreviewPixmap().isNull());
    m_opened.front()->window().setActiveTab("Sequence View");
    EXPECT_TRUE(m_palette->getPrintPreviewPixmap().isNull());
}

TEST_F(PicturesTest, AnExportHasTheHostGroupTheMaps)
{
    unmix();
    QSignalSpy made(m_palette.get(), SIGNAL(createSpumKyvoSequence(QStringList, bool)));
    ASSERT_TRUE(console().m_pExportAsSequence->isEnabled());
    console().m_pExportAsSequence->click();
    ASSERT_EQ(made.count(), 1);
    EXPECT_EQ(made.first().first().toStringList().size(), 2);
}

TEST_F(PicturesTest, ATileThatIsOpenAndUnchangedClosesItsWindowBeforeItIsMadeAnew)
{
    unmix();
    engine().onImageDoubleClicked(0);
    m_maps[0]->setModified(false);
    const QPointer<CORVImageWindow> pWindow(new CORVImageWindow(m_maps[0].get()));
    pWindow->setAttribute(Qt::WA_DeleteOnClose);
    pWindow->show();
    engine().onImageDoubleClicked(0);
    EXPECT_TRUE(pWindow.isNull() || !pWindow->isVisible());
}

} // namespace
