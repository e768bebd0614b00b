// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RangePanel.h"

#include "host/CILImage.h"
#include "host/QDoubleSpinBoxEx.h"
#include "host/QSpanSlider.h"
#include "workbench/application/HistogramView.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include <limits>

namespace {

constexpr int kDecimals = 20; // of efficiencies as small as 1e-12 too
constexpr double kStepPart = 0.01;

QDoubleSpinBoxEx* makeBox(const char* pName, const QString& text, QWidget* pParent)
{
    auto* pBox = new QDoubleSpinBoxEx(pParent);
    pBox->setObjectName(QString::fromLatin1(pName));
    pBox->setAccessibleName(text);
    pBox->m_bExponentDisplay = true;
    pBox->setDecimals(kDecimals);
    pBox->setRange(std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
    // Its hint follows the widest number there could be.
    pBox->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    pBox->setMinimumWidth(pBox->fontMetrics().horizontalAdvance(QStringLiteral("-1.23457e+09")) + 36);
    pBox->setMaximumWidth(2 * pBox->minimumWidth());
    return pBox;
}

} // namespace

RangePanel::RangePanel(QWidget* pParent)
    : QWidget(pParent), m_pHistogram(new HistogramView(this)), m_pSlider(new QSpanSlider(this)),
      m_pMinimumBox(makeBox("m_pRangeMinimumBox", tr("Minimum"), this)),
      m_pMaximumBox(makeBox("m_pRangeMaximumBox", tr("Maximum"), this)),
      m_pAutoButton(new QPushButton(tr("&Auto"), this)), m_pWholeButton(new QPushButton(tr("Whole Ran&ge"), this))
{
    m_pSlider->setObjectName(QStringLiteral("m_pRangeSlider"));
    m_pSlider->setAccessibleName(tr("Minimum and maximum"));
    m_pSlider->setRange(0, RangeScale::kSteps);
    m_pAutoButton->setObjectName(QStringLiteral("m_pAutoRangeButton"));
    m_pAutoButton->setToolTip(tr("From the value that 0.1 % of the pixels lie below to the one that 0.02 % lie above"));
    m_pWholeButton->setObjectName(QStringLiteral("m_pWholeRangeButton"));
    m_pWholeButton->setToolTip(tr("From the least value to the greatest"));
    m_pAutoButton->setAutoDefault(false);
    m_pWholeButton->setAutoDefault(false);
    auto* pLayout = new QGridLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    auto* pMinimum = new QLabel(tr("Mi&nimum:"), this);
    auto* pMaximum = new QLabel(tr("Ma&ximum:"), this);
    pMinimum->setBuddy(m_pMinimumBox);
    pMaximum->setBuddy(m_pMaximumBox);
    pLayout->addWidget(m_pHistogram, 0, 0, 1, 2);
    pLayout->addWidget(m_pSlider, 1, 0, 1, 2);
    pLayout->addWidget(pMinimum, 2, 0);
    pLayout->addWidget(pMaximum, 2, 1);
    pLayout->addWidget(m_pMinimumBox, 3, 0);
    pLayout->addWidget(m_pMaximumBox, 3, 1);
    pLayout->addWidget(m_pAutoButton, 4, 0);
    pLayout->addWidget(m_pWholeButton, 4, 1);
    connect(m_pSlider, &QSpanSlider::lowerValueChanged, this,
            [this](int nStep) { choose(m_range.withMinimum(m_scale.value(nStep))); });
    connect(m_pSlider, &QSpanSlider::upperValueChanged, this,
            [this](int nStep) { choose(m_range.withMaximum(m_scale.value(nStep))); });
    const auto changed = QOverload<double>::of(&QDoubleSpinBox::valueChanged);
    connect(m_pMinimumBox, changed, this, [this](double dValue) { choose(m_range.withMinimum(dValue)); });
    connect(m_pMaximumBox, changed, this, [this](double dValue) { choose(m_range.withMaximum(dValue)); });
    for (QDoubleSpinBoxEx* pBox : {m_pMinimumBox, m_pMaximumBox}) {
        pBox->setKeyboardTracking(false); // half a number is none
    }
    connect(m_pAutoButton, &QPushButton::clicked, this, &RangePanel::automaticWanted);
    connect(m_pWholeButton, &QPushButton::clicked, this, [this] { choose(m_scale.whole()); });
}

void RangePanel::setImage(const CILImage& image, const DisplayRange& whole, const DisplayRange& range)
{
    setEnabled(true);
    m_scale = RangeScale(whole);
    m_range = range;
    m_pHistogram->setImage(image, whole);
    const double step = (whole.maximum - whole.minimum) * kStepPart;
    for (QDoubleSpinBoxEx* pBox : {m_pMinimumBox, m_pMaximumBox}) {
        pBox->setSingleStep(step > 0.0 ? step : 1.0);
    }
    showRange();
}

void RangePanel::clearImage()
{
    m_pHistogram->clearImage();
    setEnabled(false);
}

void RangePanel::setColors(const CILPalette& palette)
{
    m_palette = palette;
    m_pHistogram->setRange(m_palette, m_range);
}

void RangePanel::setRange(const DisplayRange& range)
{
    m_range = range;
    showRange();
}

void RangePanel::showRange()
{
    const QSignalBlocker slider(m_pSlider);
    const QSignalBlocker minimum(m_pMinimumBox);
    const QSignalBlocker maximum(m_pMaximumBox);
    m_pSlider->setSpan(m_scale.step(m_range.minimum), m_scale.step(m_range.maximum));
    m_pMinimumBox->setValue(m_range.minimum);
    m_pMaximumBox->setValue(m_range.maximum);
    m_pHistogram->setRange(m_palette, m_range);
}

void RangePanel::choose(const DisplayRange& range)
{
    if (range == m_range) {
        return;
    }
    m_range = range;
    showRange();
    Q_EMIT rangeChanged();
}
