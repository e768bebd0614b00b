// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVTextTag.h"

#include "host/CORVPreference.h"
#include "host/S3DViewSettings.h"

#include <QFontMetricsF>

#include <algorithm>

namespace {

constexpr double kBox = 1.25; // font heights of a number with the room around it

} // namespace

CORVTextTag::CORVTextTag()
{
    updateFontByPreference();
}

void CORVTextTag::updateFontByPreference()
{
    S3DViewSettings settings;
    CORVPreference::get3DViewPreferences(settings);
    m_font.setFamily(settings.fontFamily);
    m_font.setStyleHint(QFont::SansSerif);
    m_font.setPointSize(settings.barFontSize);
}

double CORVTextTag::fontHeight() const
{
    return QFontMetricsF(m_font).height();
}

double CORVTextTag::height() const
{
    return kBox * fontHeight();
}

double CORVTextTag::width() const
{
    const QFontMetricsF metrics(m_font);
    double widest = metrics.horizontalAdvance(m_strText);
    for (const QString& line : m_lines) {
        widest = std::max(widest, metrics.horizontalAdvance(line));
    }
    return widest;
}
