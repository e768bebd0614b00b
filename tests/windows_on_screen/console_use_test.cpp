// SPDX-License-Identifier: GPL-3.0-or-later
// The console under assistive tools, and under a hand that clicks and types anything while the cube comes and goes.
#include "ConsoleFixture.h"

#include "engine/LogCapture.h"
#include "host/CORVMessageBox.h"
#include "platform/orvwidgets/recordedResponder.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include <random>

namespace {

class ConsoleUseTest : public ConsoleTest
{
};

bool isInside(const QWidget* pWidget)
{
    // Parts of other controls, which have a name themselves.
    const QWidget* pParent = pWidget->parentWidget();
    return qobject_cast<const QAbstractSpinBox*>(pParent) != nullptr ||
           qobject_cast<const QComboBox*>(pParent) != nullptr || pWidget->inherits("QScrollBar") ||
           pParent->inherits("QTabBar") || pParent->inherits("QTabWidget");
}

TEST_F(ConsoleUseTest, EveryControlHasATextANameOrALabel)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    QSet<const QWidget*> labelled;
    for (const QLabel* pLabel : m_window.findChildren<QLabel*>()) {
        labelled.insert(pLabel->buddy());
    }
    int nControls = 0;
    for (const QWidget* pWidget : m_window.findChildren<QWidget*>()) {
        const auto* pButton = qobject_cast<const QAbstractButton*>(pWidget);
        const bool bControl = pButton != nullptr || qobject_cast<const QAbstractSlider*>(pWidget) != nullptr ||
                              qobject_cast<const QAbstractSpinBox*>(pWidget) != nullptr ||
                              qobject_cast<const QComboBox*>(pWidget) != nullptr ||
                              qobject_cast<const QLineEdit*>(pWidget) != nullptr;
        if (!bControl || isInside(pWidget)) {
            continue;
        }
        ++nControls;
        const bool bText = pButton != nullptr && !pButton->text().isEmpty();
        EXPECT_TRUE(bText || !pWidget->accessibleName().isEmpty() || labelled.contains(pWidget))
            << qPrintable(pWidget->objectName());
    }
    EXPECT_GT(nControls, 25);
}

TEST_F(ConsoleUseTest, NoButtonIsPressedByEnter)
{
    openCube();
    for (const QPushButton* pButton : m_window.findChildren<QPushButton*>()) {
        EXPECT_FALSE(pButton->autoDefault()) << qPrintable(pButton->objectName());
        EXPECT_FALSE(pButton->isDefault()) << qPrintable(pButton->objectName());
    }
}

// A mask of every third pixel.
std::vector<int> someMask()
{
    std::vector<int> mask;
    for (int i = 0; i < kCubeWidth * kCubeHeight; i += 3) {
        mask.push_back(i);
    }
    return mask;
}

TEST_F(ConsoleUseTest, SurvivesWhatAHandDoesWhileTheCubeComesAndGoes)
{
    openCube();
    const RecordedResponder no(CORVMessageBox::CancelButton);
    const LogCapture log;
    std::mt19937 random(20240506);
    const auto upTo = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto anyPixel = [&upTo] { return QPointF(upTo(kCubeWidth + 10) - 5, upTo(kCubeHeight + 10) - 5); };
    // Who is asked for spectra goes on to something else.
    QTimer leaving;
    QObject::connect(&leaving, &QTimer::timeout, [] {
        if (auto* pAsking = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            pAsking->reject();
        }
    });
    leaving.start(0);
    for (int step = 0; step < 600; ++step) {
        const QList<QAbstractButton*> buttons = m_window.findChildren<QAbstractButton*>();
        const QPointF from = anyPixel();
        const QPointF to = anyPixel();
        switch (upTo(9)) {
        case 0:
        case 1:
        case 2:
            buttons.at(upTo(buttons.size()))->click();
            break;
        case 3:
            paint(from.x(), from.y(), to.x(), to.y());
            break;
        case 4:
            pointer::move(*m_pConsole->m_pImageCubeView, at(to.x(), to.y()));
            break;
        case 5:
            m_pConsole->m_pImageIndexSlider->setValue(upTo(8));
            m_pConsole->m_ImageScaleSlider->setValue(upTo(12));
            break;
        case 6:
            if (QWidget* pFocus = QApplication::focusWidget()) {
                QTest::keyClick(pFocus, static_cast<Qt::Key>(Qt::Key_A + upTo(26)));
                QTest::keyClick(pFocus, Qt::Key_Tab);
            }
            break;
        case 7:
            if (upTo(2) == 0) {
                m_cube.clear();
            } else {
                m_cube.init(upTo(2) == 0 ? kCubeWidth : 9, kCubeHeight, 1, kCubeImages,
                            upTo(2) == 0 ? someMask() : std::vector<int>());
            }
            break;
        default:
            if (upTo(4) == 0) {
                fillCube(m_cube);
                m_pConsole->setImageCube(cubeKeys(step % 3), step % 3, m_cube);
                m_pConsole->setBackgroundMode(upTo(2) == 0);
            }
            QApplication::processEvents();
        }
        ASSERT_EQ(m_pConsole->m_spectra.size(), m_pConsole->m_spectrumCtrls.size()) << "step " << step;
    }
    QApplication::processEvents();
}

} // namespace
