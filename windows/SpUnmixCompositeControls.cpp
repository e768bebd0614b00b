// SPDX-License-Identifier: GPL-3.0-or-later
// The controls of the composite's layers. Each writes back to the channel of the current entry.
#include "windows/SpUnmixCompositeWnd.h"

#include "host/CORVColorDialog.h"
#include "windows/compositeControls.h"

#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr double kPercent = 100.0;

void showRange(QDoubleSpinBoxEx& box, const DataRange& range, int nDecimals, bool bExponent, double dValue)
{
    const QSignalBlocker blocker(&box);
    box.m_bExponentDisplay = bExponent;
    box.setDecimals(nDecimals); // first: range and value are rounded to them
    box.setRange(range.first, range.second);
    box.setSingleStep(spinStep(range));
    box.setValue(dValue);
}

} // namespace

CompositeChannel* SpUnmixCompositeWnd::currentChannel() const
{
    const int nRow = m_pImageList->currentRow();
    return nRow >= 0 && nRow < m_channels.size() ? m_channels[nRow] : nullptr;
}

const QPair<double, double>& SpUnmixCompositeWnd::currentRange() const
{
    return m_ranges[m_pImageList->currentRow()];
}

void SpUnmixCompositeWnd::onImageListItemSelectionChanged()
{
    const CompositeChannel* pChannel = currentChannel();
    groupBox->setEnabled(pChannel != nullptr);
    if (pChannel == nullptr) {
        return;
    }
    const int nRow = m_pImageList->currentRow();
    const bool bBackground = isBackground(nRow);
    if (bBackground && m_pImageList->item(nRow)->text() != pChannel->label) {
        const QSignalBlocker list(m_pImageList);
        m_pImageList->item(nRow)->setText(pChannel->label);
    }
    const DataRange& range = currentRange();
    const int nLower = sliderOfFraction(pChannel->minFraction);
    const int nUpper = sliderOfFraction(pChannel->maxFraction);
    {
        const QSignalBlocker slider(m_pDataSpanSlider);
        m_pDataSpanSlider->setRange(0, 100);
        m_pDataSpanSlider->setSpan(std::min(nLower, nUpper), nUpper);
    }
    const int nUnit = m_pUnitCB->currentIndex();
    const bool bExponent = showsExponent(nUnit, bBackground);
    showRange(*m_pMinSpinBox, range, shownDecimals(nUnit), bExponent, valueOfSlider(range, nLower));
    showRange(*m_pMaxSpinBox, range, shownDecimals(nUnit), bExponent, valueOfSlider(range, nUpper));
    setBrightness(pChannel->brightness * kPercent);

    const QSignalBlocker edit(m_pLabelEdit);
    const QSignalBlocker logScale(m_pLogScaleChkBox);
    m_pLabelEdit->setEnabled(!bBackground);
    m_pLabelEdit->setText(pChannel->label);
    m_pColorBtn->setEnabled(!bBackground);
    m_pColorBtn->setStyleSheet(colorButtonStyle(pChannel->color));
    m_pLogScaleChkBox->setChecked(pChannel->logScale);
}

// Shows it in both controls.
void SpUnmixCompositeWnd::setBrightness(double dPercent)
{
    const QSignalBlocker slider(m_pBrightnessSlider);
    const QSignalBlocker spinBox(m_pBrightnessSpinBox);
    m_pBrightnessSlider->setValue(qRound(dPercent));
    m_pBrightnessSpinBox->setValue(dPercent);
}

// An end of the slider goes to its spin box and to the channel.
void SpUnmixCompositeWnd::takeSpan(int nValue, QDoubleSpinBoxEx& box, double CompositeChannel::*pFraction)
{
    CompositeChannel* pChannel = currentChannel();
    if (pChannel == nullptr) {
        return;
    }
    const QSignalBlocker blocker(&box);
    box.setValue(valueOfSlider(currentRange(), nValue));
    pChannel->*pFraction = nValue / kPercent;
    updateComposite();
}

void SpUnmixCompositeWnd::onChangeLowerSpan(int nValue)
{
    takeSpan(nValue, *m_pMinSpinBox, &CompositeChannel::minFraction);
}

void SpUnmixCompositeWnd::onChangeUpperSpan(int nValue)
{
    takeSpan(nValue, *m_pMaxSpinBox, &CompositeChannel::maxFraction);
}

// A number goes to its end of the slider and, not rounded to that, to the channel.
void SpUnmixCompositeWnd::takeNumber(double dValue, void (QSpanSlider::*setEnd)(int),
                                     double CompositeChannel::*pFraction)
{
    CompositeChannel* pChannel = currentChannel();
    const auto fraction = pChannel != nullptr ? fractionOfValue(currentRange(), dValue) : std::nullopt;
    if (!fraction) {
        return;
    }
    const QSignalBlocker blocker(m_pDataSpanSlider);
    (m_pDataSpanSlider->*setEnd)(sliderOfValue(currentRange(), dValue));
    pChannel->*pFraction = *fraction;
    updateComposite();
}

void SpUnmixCompositeWnd::onMinSpinBoxChanged(double dValue)
{
    takeNumber(dValue, &QSpanSlider::setLowerValue, &CompositeChannel::minFraction);
}

void SpUnmixCompositeWnd::onMaxSpinBoxChanged(double dValue)
{
    takeNumber(dValue, &QSpanSlider::setUpperValue, &CompositeChannel::maxFraction);
}

void SpUnmixCompositeWnd::takeBrightness(double dPercent)
{
    if (CompositeChannel* pChannel = currentChannel()) {
        pChannel->brightness = dPercent / kPercent;
        updateComposite();
    }
}

// Each shows its number in the other alone: one that is being typed is left as it is.
void SpUnmixCompositeWnd::onBrightnessChanged(double dValue)
{
    {
        const QSignalBlocker blocker(m_pBrightnessSlider);
        m_pBrightnessSlider->setValue(qRound(dValue));
    }
    takeBrightness(dValue);
}

void SpUnmixCompositeWnd::onBrightnessSliderChanged(int nValue)
{
    {
        const QSignalBlocker blocker(m_pBrightnessSpinBox);
        m_pBrightnessSpinBox->setValue(nValue);
    }
    takeBrightness(nValue);
}

void SpUnmixCompositeWnd::onToggleLogScale(bool bValue)
{
    if (CompositeChannel* pChannel = currentChannel()) {
        pChannel->logScale = bValue;
        updateComposite();
    }
}

void SpUnmixCompositeWnd::onClickColorLabel()
{
    const CompositeChannel* pAsked = currentChannel();
    if (pAsked == nullptr) {
        return;
    }
    const QPointer<SpUnmixCompositeWnd> pSelf(this);
    const QColor color = CORVColorDialog::getColor(pAsked->color, this, tr("Select Solid Color"));
    // The list may be another once the question is answered.
    CompositeChannel* pChannel = pSelf != nullptr ? currentChannel() : nullptr;
    if (pChannel == nullptr || pChannel != pAsked || !color.isValid()) {
        return;
    }
    m_pColorBtn->setStyleSheet(colorButtonStyle(color));
    pChannel->color = color;
    {
        const QSignalBlocker blocker(m_pImageList);
        m_pImageList->currentItem()->setForeground(QBrush(color));
    }
    updateComposite();
}

// The picture has no labels, only the view.
void SpUnmixCompositeWnd::onLabelChanged()
{
    CompositeChannel* pChannel = currentChannel();
    if (pChannel == nullptr) {
        return;
    }
    pChannel->label = m_pLabelEdit->text();
    {
        const QSignalBlocker blocker(m_pImageList);
        m_pImageList->currentItem()->setText(pChannel->label);
    }
    showLabels();
}

void SpUnmixCompositeWnd::onImageItemChanged(QListWidgetItem*)
{
    updateComposite();
}

void SpUnmixCompositeWnd::onUnitChanged(int nIndex)
{
    for (QDoubleSpinBoxEx* pBox : {m_pMinSpinBox, m_pMaxSpinBox}) {
        pBox->m_bExponentDisplay = nIndex > 0;
        pBox->setValue(pBox->value()); // shows it anew
    }
}
