// SPDX-License-Identifier: GPL-3.0-or-later
// What the windows export, read back by programs that are not ours: every pixel, in every format, at the size at which
// the windows open and at three times it.
#include "CompositeFixture.h"
#include "ConsoleFixture.h"
#include "Exports.h"

#include "platform/orvexport/PictureReaders.h"
#include "windows/graphicsFormats.h"

#include "host/CORVMultiImageView.h"
#include "windows/CORVDistributionView.h"

#include <QToolButton>

#include <cmath>

namespace {

constexpr double kLossyMean = 2.0; // of a colour, over all pixels: letters that are smeared change many of them

const readers::Format& formatOf(const QString& strSuffix)
{
    for (const readers::Format& format : readers::formats) {
        if (strSuffix == QLatin1String(format.suffix)) {
            return format;
        }
    }
    ADD_FAILURE() << "nobody reads " << qPrintable(strSuffix);
    return readers::formats[0];
}

double meanDifference(const QImage& one, const QImage& other)
{
    double dSum = 0.0;
    for (int y = 0; y < one.height(); ++y) {
        const auto* pOne = reinterpret_cast<const QRgb*>(one.constScanLine(y));
        const auto* pOther = reinterpret_cast<const QRgb*>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            dSum += std::abs(qGray(pOne[x]) - qGray(pOther[x]));
        }
    }
    return dSum / (static_cast<double>(one.width()) * one.height());
}

// Exports by a click on the button once in each format, and compares what others read with the picture.
void expectExported(QToolButton& button, const QImage& picture, const char* name)
{
    const QImage shown = picture.convertToFormat(QImage::Format_RGB32);
    Exports exports;
    for (const QString& strSuffix : graphicsFormats::suffixes()) {
        const QString strFile = exports.path("picture." + strSuffix);
        exports.m_talk.files << strFile;
        button.click();
        const readers::Format& format = formatOf(strSuffix);
        const QImage back = format.read(strFile);
        ASSERT_EQ(back.size(), shown.size()) << qPrintable(strSuffix);
        if (format.tolerance == 0) {
            EXPECT_TRUE(back == shown) << qPrintable(strSuffix) << ": " << readers::difference(shown, back);
        } else {
            EXPECT_LE(meanDifference(shown, back), kLossyMean) << qPrintable(strSuffix);
            screen::keep(back, name);
        }
    }
    EXPECT_EQ(exports.m_talk.questions.size(), graphicsFormats::suffixes().size()) << "and nothing went wrong";
}

class ExportedCompositeTest : public CompositeWindowTest, public ::testing::WithParamInterface<int>
{
};

TEST_P(ExportedCompositeTest, IsReadBackInEveryFormat)
{
    m_photo = constantImage(640L * GetParam(), 480L * GetParam(), 50.0);
    fillAndShow();
    const QImage picture = m_window.getCompositeImage();
    ASSERT_EQ(picture.size(), QSize(640, 480) * GetParam());
    m_window.m_pToolbarFrame->show();
    expectExported(*m_window.m_pExportGraphicButton, picture,
                   GetParam() == 1 ? "exported_composite" : "exported_composite_large");
}

INSTANTIATE_TEST_SUITE_P(Sizes, ExportedCompositeTest, ::testing::Values(1, 3));

// The maps under one scale, with their labels and the bar of that scale.
class ExportedMapsTest : public ConsoleTest, public ::testing::WithParamInterface<int>
{
protected:
    ~ExportedMapsTest() override { m_pConsole->removeAllUnmixedImages(); }

    void showMaps()
    {
        openCube();
        m_window.resize(QSize(640, 480) * GetParam());
        for (const char* pLabel : {"TissueAF", "Cy5.5", "AlexaFluor 750"}) {
            QImage map(64, 48, QImage::Format_RGB32);
            for (int y = 0; y < map.height(); ++y) {
                for (int x = 0; x < map.width(); ++x) {
                    map.setPixelColor(x, y, QColor::fromHsv(240 - 240 * x / map.width(), 255, 80 + 3 * y));
                }
            }
            m_maps.push_back(std::make_unique<CILImage>());
            m_maps.back()->setRGBImage(map);
            m_pConsole->addUnmixedImage(m_maps.back().get(), pLabel);
        }
        m_pConsole->selectUnmixedTab(false);
        m_pConsole->setColorBar(2, false, 0, 1.2e6, 3.4e8, false, false);
        m_pConsole->setHideColorBar(false);
        QApplication::processEvents();
    }

    std::vector<std::unique_ptr<CILImage>> m_maps;
};

TEST_P(ExportedMapsTest, AreReadBackInEveryFormatWithLabelsAndColorBar)
{
    showMaps();
    const CORVDistributionView& view = *m_pConsole->m_pDistributionView;
    ASSERT_TRUE(view.isColorBarShown());
    QImage picture;
    m_pConsole->getViewImage(&picture);
    EXPECT_EQ(picture.size(), m_pConsole->size() * m_pConsole->devicePixelRatioF());
    // What is exported holds the view as it is drawn, the bar and the labels included.
    const QImage drawn = view.renderImage();
    const QPoint corner = view.mapTo(m_pConsole, QPoint(0, 0)) * m_pConsole->devicePixelRatioF();
    const QImage exported = picture.copy(QRect(corner, drawn.size()));
    EXPECT_LE(
        meanDifference(exported.convertToFormat(QImage::Format_RGB32), drawn.convertToFormat(QImage::Format_RGB32)),
        0.5)
        << "but for a frame of the focus";
    expectExported(*m_pConsole->m_pExportGraphicsButton, picture,
                   GetParam() == 1 ? "exported_maps" : "exported_maps_large");
}

INSTANTIATE_TEST_SUITE_P(Sizes, ExportedMapsTest, ::testing::Values(1, 3));

} // namespace
