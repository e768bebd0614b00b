// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/MapsPdf.h"

#include "platform/orvimage/MapPicture.h"

#include <QPageLayout>

#include <algorithm>

namespace {

constexpr int dotsPerInch = 300;
constexpr double marginMillimetres = 15.0;
constexpr int columns = 2;
constexpr int rows = 3;
constexpr double gapPart = 0.02; // of the page's width

} // namespace

MapsPdf::MapsPdf(const QString& strTitle, const QString& strCreator) : m_buffer(&m_bytes), m_writer(&m_buffer)
{
    m_buffer.open(QIODevice::WriteOnly);
    m_writer.setPageSize(QPageSize(QPageSize::A4));
    m_writer.setPageMargins(QMarginsF(marginMillimetres, marginMillimetres, marginMillimetres, marginMillimetres),
                            QPageLayout::Millimeter);
    m_writer.setResolution(dotsPerInch);
    m_writer.setTitle(strTitle);
    m_writer.setCreator(strCreator);
    m_painter.begin(&m_writer);
    m_painter.setRenderHint(QPainter::LosslessImageRendering);
}

void MapsPdf::add(const orvimage::MapPicture& picture)
{
    if (picture.isNull() || !m_painter.isActive()) {
        return;
    }
    const int place = m_nAdded % (columns * rows);
    if (place == 0 && m_nAdded > 0) {
        m_writer.newPage();
    }
    ++m_nAdded;
    const QSizeF page(m_writer.width(), m_writer.height());
    const double gap = page.width() * gapPart;
    const QSizeF cell((page.width() - gap * (columns - 1)) / columns, (page.height() - gap * (rows - 1)) / rows);
    const double factor = std::min(cell.width() / picture.size().width(), cell.height() / picture.size().height());
    m_painter.save();
    const int row = place / columns;
    m_painter.translate((place % columns) * (cell.width() + gap), row * (cell.height() + gap));
    m_painter.scale(factor, factor);
    picture.draw(m_painter);
    m_painter.restore();
}

QByteArray MapsPdf::finish()
{
    const bool made = m_painter.isActive() && m_painter.end();
    m_buffer.close();
    return made ? m_bytes : QByteArray();
}
