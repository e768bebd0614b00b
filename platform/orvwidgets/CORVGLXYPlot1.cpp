// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVGLXYPlot1.h"

#include "files/AtomicFile.h"
#include "platform/orvwidgets/PlotChart.h"
#include "platform/orvwidgets/PlotLegend.h"
#include "platform/orvwidgets/PlotView.h"
#include "platform/orvwidgets/plotLines.h"

#include <QEvent>
#include <QFile>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// The legend takes a third of the plot's height at most.
constexpr int shareOfLegend = 3;

} // namespace

struct CORVGLXYPlot1::Private
{
    QString m_strTitle;
    QString m_strFormat = QStringLiteral("%.2f");
    QString m_strXLabel;
    bool m_bLegend = true;
    QVector<orv::PlotLine> m_lines;
    orv::PlotLegend* m_pLegend = nullptr;
    std::unique_ptr<orv::PlotChart> m_pChart; // null until it is built

    int place(const QString& strKey) const
    {
        const auto found = std::find_if(m_lines.begin(), m_lines.end(),
                                        [&strKey](const orv::PlotLine& line) { return line.m_strKey == strKey; });
        return found != m_lines.end() ? static_cast<int>(found - m_lines.begin()) : -1;
    }
};

CORVGLXYPlot1::CORVGLXYPlot1(QWidget* pParent, const QString& strTitle)
    : QWidget(pParent), m_p(std::make_unique<Private>())
{
    m_p->m_strTitle = strTitle;
    setAccessibleName(strTitle);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
}

CORVGLXYPlot1::~CORVGLXYPlot1() = default;

void CORVGLXYPlot1::initInstance()
{
    if (m_p->m_pChart) {
        return;
    }
    auto* pView = new orv::PlotView(this);
    m_p->m_pLegend = new orv::PlotLegend(this);
    static_cast<QVBoxLayout*>(layout())->addWidget(pView, 1);
    layout()->addWidget(m_p->m_pLegend);
    m_p->m_pLegend->setVisible(m_p->m_bLegend);
    m_p->m_pLegend->setRoom(width(), height() / shareOfLegend);
    m_p->m_pChart = std::make_unique<orv::PlotChart>(pView, m_p->m_pLegend, m_p->m_strTitle);
    m_p->m_pChart->setColors(palette());
    m_p->m_pChart->setYDecimals(m_p->m_strFormat);
    m_p->m_pChart->show(m_p->m_lines, m_p->m_strXLabel);
}

void CORVGLXYPlot1::setYLabelFormat(const QString& strFormat)
{
    m_p->m_strFormat = strFormat;
    if (m_p->m_pChart) {
        m_p->m_pChart->setYDecimals(strFormat);
    }
}

void CORVGLXYPlot1::setXAxisLabel(const QString& strLabel)
{
    m_p->m_strXLabel = strLabel;
}

void CORVGLXYPlot1::setLegendVisible(bool bVisible)
{
    m_p->m_bLegend = bVisible;
    if (m_p->m_pLegend != nullptr) {
        m_p->m_pLegend->setVisible(bVisible);
    }
}

bool CORVGLXYPlot1::isLegendVisible() const
{
    return m_p->m_bLegend;
}

void CORVGLXYPlot1::clear()
{
    m_p->m_lines.clear();
    m_p->m_strXLabel.clear();
    if (m_p->m_pChart) {
        m_p->m_pChart->clear();
    }
}

bool CORVGLXYPlot1::addDataLine(const QString& strKey, const QString& strLabel, const QVector<double>& x,
                                const QVector<double>& y)
{
    if (x.size() != y.size()) {
        return false;
    }
    const orv::PlotLine line{strKey, strLabel, x, y};
    const int nPlace = m_p->place(strKey);
    if (nPlace >= 0) {
        m_p->m_lines[nPlace] = line;
    } else {
        m_p->m_lines.append(line);
    }
    if (m_p->m_pChart) {
        m_p->m_pChart->setChanged(strKey);
    }
    return true;
}

bool CORVGLXYPlot1::addDataLine(const QString& strLabel, const QVector<double>& x, const QVector<double>& y)
{
    return addDataLine(strLabel, strLabel, x, y);
}

void CORVGLXYPlot1::removeDataLine(const QString& strKey)
{
    const int nPlace = m_p->place(strKey);
    if (nPlace < 0) {
        return;
    }
    m_p->m_lines.remove(nPlace);
    if (m_p->m_pChart) {
        m_p->m_pChart->remove(strKey);
    }
}

void CORVGLXYPlot1::setDisplaySettings(const QString& strKey, const SPlotDisplaySettings& settings)
{
    initInstance();
    m_p->m_pChart->setDisplaySettings(strKey, settings);
}

QStringList CORVGLXYPlot1::dataLines() const
{
    QStringList keys;
    for (const orv::PlotLine& line : m_p->m_lines) {
        keys.append(line.m_strKey);
    }
    return keys;
}

void CORVGLXYPlot1::plotData()
{
    initInstance();
    m_p->m_pChart->show(m_p->m_lines, m_p->m_strXLabel);
}

bool CORVGLXYPlot1::saveData(const char* pPath, int nFlag, char cSeparator) const
{
    if (pPath == nullptr || *pPath == '\0' || nFlag != 0) {
        return false;
    }
    const QByteArray table = orv::plotTable(m_p->m_strXLabel, m_p->m_lines, cSeparator);
    return orv::writeFileAtomically(QFile::decodeName(pPath), table);
}

QRectF CORVGLXYPlot1::zoom() const
{
    return m_p->m_pChart ? m_p->m_pChart->zoom() : QRectF();
}

void CORVGLXYPlot1::setZoom(const QRectF& part)
{
    initInstance();
    m_p->m_pChart->setZoom(part);
}

void CORVGLXYPlot1::changeEvent(QEvent* pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange && m_p->m_pChart) {
        m_p->m_pChart->setColors(palette());
    }
}

void CORVGLXYPlot1::resizeEvent(QResizeEvent* pEvent)
{
    QWidget::resizeEvent(pEvent);
    if (m_p->m_pLegend != nullptr) {
        m_p->m_pLegend->setRoom(width(), height() / shareOfLegend);
    }
}
