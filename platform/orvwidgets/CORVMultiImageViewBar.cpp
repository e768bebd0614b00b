// SPDX-License-Identifier: GPL-3.0-or-later
// The colour bar of CORVMultiImageView.
#include "platform/orvimage/StackedColorBar.h"
#include "platform/orvwidgets/MultiImageState.h"
#include "platform/orvwidgets/barTicks.h"

#include <QFontMetricsF>
#include <QOpenGLContext>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kStripWidth = 1.5; // font heights of the bar's text
constexpr double kTick = 0.3;
constexpr double kFrame = 3.0; // object units above the bar

} // namespace

void CORVMultiImageView::convertWindowToObjectHeight(int nHeight, double& dHeight) const
{
    // The window counts in the same logical pixels, at every ratio of device pixels.
    dHeight = nHeight;
}

void CORVMultiImageView::setHideColorBar(bool bHide)
{
    if (bHide != m_state->m_bHideBar) {
        m_state->m_bHideBar = bHide;
        update();
        Q_EMIT colorBarMarginChanged();
    }
}

bool CORVMultiImageView::isColorBarShown() const
{
    return m_bShowColorBar && !m_state->m_bHideBar;
}

void CORVMultiImageView::updateColorBar(float fMin, float fMax)
{
    m_state->m_dMin = static_cast<double>(fMin);
    m_state->m_dMax = static_cast<double>(fMax);
    m_state->lower().setText(orvimage::colorBarNumber(m_state->m_dMin));
    m_state->upper().setText(orvimage::colorBarNumber(m_state->m_dMax));
    update();
    Q_EMIT colorBarMarginChanged();
}

void CORVMultiImageView::setColorTable(int nIndex)
{
    m_state->m_palette.setColorTable(nIndex);
    update();
}

void CORVMultiImageView::setReversed(bool bReversed)
{
    m_state->m_palette.setReversed(bReversed ? 1 : 0);
    update();
}

void CORVMultiImageView::setColorBarPalette(const CILPalette& palette)
{
    m_state->m_palette = palette;
    update();
}

void CORVMultiImageView::setColorBarTags(CORVTextTag* pLower, CORVTextTag* pUpper)
{
    m_state->m_pLower = pLower;
    m_state->m_pUpper = pUpper;
    updateColorBar(static_cast<float>(m_state->m_dMin), static_cast<float>(m_state->m_dMax));
}

const CORVTextTag& CORVMultiImageView::lowerTag() const
{
    placeTags();
    return m_state->lower();
}

const CORVTextTag& CORVMultiImageView::upperTag() const
{
    placeTags();
    return m_state->upper();
}

QRectF CORVMultiImageView::colorBarMargin() const
{
    if (!isColorBarShown()) {
        return {};
    }
    State& s = *m_state;
    const double em = s.lower().fontHeight();
    const QFontMetricsF metrics(s.lower().font());
    double ticks = 0.0;
    for (const auto& tick : orvwidgets::barTicks(s.m_palette, s.m_dMin, s.m_dMax, height(), em)) {
        ticks = std::max(ticks, metrics.horizontalAdvance(tick.text));
    }
    const double widest = std::max({s.lower().width(), s.upper().width(), (kStripWidth + 2.0 * kTick) * em + ticks});
    // At most half of the view, however long a text is.
    const double room = std::min(std::ceil(widest + em), width() / 2.0);
    return {width() - room, 0.0, room, static_cast<double>(height())};
}

void CORVMultiImageView::setColorBarPlace(const QPointF& bottomLeft, double dHeight)
{
    m_state->m_bPlaced = true;
    m_state->m_barBottomLeft = bottomLeft;
    m_state->m_dBarHeight = std::max(0.0, dHeight);
    update();
}

void CORVMultiImageView::resetColorBarPlace()
{
    m_state->m_bPlaced = false;
    update();
}

QRectF CORVMultiImageView::colorBarRect() const
{
    if (!isColorBarShown()) {
        return {};
    }
    State& s = *m_state;
    const double em = s.lower().fontHeight();
    QPointF bottomLeft = s.m_barBottomLeft;
    double barHeight = s.m_dBarHeight;
    if (!s.m_bPlaced) {
        // Half a font height around, the upper number above, the lower one and the unit's lines beneath.
        const double gap = em / 2.0;
        const double beneath = em * (2.5 + s.lower().getStringList().size());
        bottomLeft = QPointF(colorBarMargin().left() + gap, std::max(0.0, height() - beneath));
        barHeight = std::max(0.0, bottomLeft.y() - s.upper().height() - kFrame - gap);
    }
    return {bottomLeft.x(), bottomLeft.y() - barHeight, kStripWidth * em, barHeight};
}

QColor CORVMultiImageView::colorBarTextColor() const
{
    return palette().color(QPalette::WindowText);
}

void CORVMultiImageView::placeTags() const
{
    const QRectF bar = colorBarRect();
    m_state->lower().setPosition(bar.bottomLeft());
    m_state->upper().setPosition(QPointF(bar.left(), bar.top() - kFrame - m_state->upper().height()));
}

void CORVMultiImageView::paintColorBar(QPainter& painter) const
{
    placeTags();
    State& s = *m_state;
    const QRectF bar = colorBarRect();
    const double em = s.lower().fontHeight();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawImage(bar, orvwidgets::barStrip(s.m_palette));
    painter.setPen(colorBarTextColor());
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(bar);
    painter.setFont(s.lower().font());
    for (const auto& tick : orvwidgets::barTicks(s.m_palette, s.m_dMin, s.m_dMax, bar.height(), em)) {
        const double y = bar.bottom() - tick.place * bar.height();
        painter.drawLine(QPointF(bar.right(), y), QPointF(bar.right() + kTick * em, y));
        painter.drawText(QRectF(bar.right() + 2.0 * kTick * em, y - em, width(), 2.0 * em),
                         Qt::AlignLeft | Qt::AlignVCenter, tick.text);
    }
    for (const CORVTextTag* pTag : {&s.lower(), &s.upper()}) {
        const QFontMetricsF metrics(pTag->font());
        painter.setFont(pTag->font());
        const double lead = (pTag->height() - metrics.height()) / 2.0;
        painter.drawText(pTag->position() + QPointF(0.0, lead + metrics.ascent()), pTag->text());
    }
}

void CORVMultiImageView::paintTexts(QPainter& painter) const
{
    State& s = *m_state;
    s.m_texts.clear();
    s.m_bCollecting = true;
    const QOpenGLContext* pContext = QOpenGLContext::currentContext();
    // Whatever the painter draws on: a grab of the window comes with a context, too. A core profile has no current
    // colour.
    s.m_bOpenGL =
        pContext != nullptr && !pContext->isOpenGLES() && pContext->format().profile() != QSurfaceFormat::CoreProfile;
    painter.beginNativePainting();
    if (s.m_bOpenGL) {
        const QColor ink = colorBarTextColor();
        glColor3f(static_cast<float>(ink.redF()), static_cast<float>(ink.greenF()), static_cast<float>(ink.blueF()));
    }
    drawColorBarTexts();
    painter.endNativePainting();
    s.m_bCollecting = false;
    for (const State::PlacedText& text : s.m_texts) {
        painter.setPen(text.color);
        painter.setFont(text.font);
        painter.drawText(text.at, text.text);
    }
    s.m_texts.clear();
}

void CORVMultiImageView::renderText(double x, double y, double /*z*/, const QString& strText, const QFont& font,
                                    int /*nListBase*/) const
{
    State& s = *m_state;
    if (!s.m_bCollecting) {
        return;
    }
    QColor color = colorBarTextColor();
    if (s.m_bOpenGL) {
        float current[4] = {};
        glGetFloatv(GL_CURRENT_COLOR, current);
        color = QColor::fromRgbF(static_cast<double>(current[0]), static_cast<double>(current[1]),
                                 static_cast<double>(current[2]));
    }
    s.m_texts.push_back({QPointF(x, y), strText, font, color});
}

void CORVMultiImageView::drawColorBarTexts() const
{
    const CORVTextTag& tag = lowerTag();
    double y = tag.y() + tag.height() + tag.fontHeight() / 2.0;
    for (const QString& line : tag.getStringList()) {
        renderText(tag.x(), y, 0.0, line, tag.font());
        y += tag.fontHeight();
    }
}
