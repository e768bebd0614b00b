// SPDX-License-Identifier: GPL-3.0-or-later
// The windows of images on all kinds of sequences, in light and dark palettes, kept in the build folder to be looked
// at. What can be told of them without eyes is tested here.
#include "look.h"
#include "support/screen.h"
#include "support/simulated.h"

#include "host/CORVSequenceDataset.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/SequenceTab.h"
#include "workbench/application/ThumbnailView.h"
#include "workbench/application/Thumbnails.h"

namespace {

struct LookCase
{
    const char* name;
    QStringList options;
    QSize size;
    bool dark;
};

class WindowsLookTest : public ::testing::TestWithParam<LookCase>
{
protected:
    void SetUp() override
    {
        m_before = QApplication::palette();
        if (GetParam().dark) {
            QApplication::setPalette(screen::darkPalette());
        }
        QString error;
        ASSERT_EQ(m_sequence.open(simulated::sequence(GetParam().options), &error), ESTATUS_SUCCESS)
            << qPrintable(error);
    }
    void TearDown() override { QApplication::setPalette(m_before); }

    QPalette m_before;
    CORVSequenceDataset m_sequence;
};

TEST_P(WindowsLookTest, ShowEverything)
{
    SequenceTab tab(&m_sequence);
    tab.resize(GetParam().size);
    tab.setAutoFillBackground(true);
    screen::show(tab);
    ASSERT_TRUE(QTest::qWaitFor([&] { return tab.thumbnails().isFinished(); }, 20000));
    tab.view()->setFocus();
    tab.view()->setCurrentTile(1);
    look::keep(tab, (std::string("sequence_") + GetParam().name).c_str());
    for (int i = 0; i < tab.thumbnails().tiles().count(); ++i) {
        EXPECT_EQ(tab.thumbnails().state(i), Thumbnails::State::Ready) << i;
    }

    DatasetWindow window(m_sequence.getDatasets().first());
    window.resize(GetParam().size);
    window.setAutoFillBackground(true);
    screen::show(window);
    look::keep(window, (std::string("dataset_") + GetParam().name).c_str());
}

const QSize kSmall(690, 520);   // beside the palette at 1024 x 700
const QSize kLarge(1240, 1000); // at 1600 x 1200

INSTANTIATE_TEST_SUITE_P(
    Kinds, WindowsLookTest,
    ::testing::Values(LookCase{"epi", {}, kSmall, false}, LookCase{"epi_large", {}, kLarge, false},
                      LookCase{"epi_dark", {}, kSmall, true},
                      LookCase{"scan", {"--kind", "transillumination", "--spots", "9", "--bands", "4"}, kSmall, false},
                      LookCase{
                          "scan_pair", {"--kind", "transillumination", "--spots", "9", "--bands", "2"}, kSmall, true},
                      LookCase{"temporal", {"--kind", "temporal"}, kSmall, false},
                      LookCase{"cherenkov", {"--kind", "cherenkov"}, kSmall, false},
                      LookCase{"luminescent", {"--kind", "luminescent"}, kLarge, true}));

} // namespace
