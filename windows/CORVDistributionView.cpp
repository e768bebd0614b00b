// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/CORVDistributionView.h"

#include "host/CILImage.h"
#include "host/CORVTextTag.h"
#include "host/ReadOut.h"
#include "host/UnitTexts.h"
#include "windows/colorBarUnit.h"
#include "windows/widgets/sendReadOut.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPointer>

CORVDistributionView::CORVDistributionView(QWidget* pParent, const char* name) : CORVMultiImageView(pParent, name)
{
    connect(this, &CORVMultiImageView::imageActivated, this, &CORVDistributionView::openImage);
    connect(this, &CORVMultiImageView::imagePixelUnderPointer, this, &CORVDistributionView::tellPixel);
}

CORVDistributionView::~CORVDistributionView()
{
    // Who hears of an image may be the one that deletes the view; a locked mutex would complain.
    m_openMutex.tryLock();
    m_openMutex.unlock();
}

void CORVDistributionView::setUnit(int nUnit, bool bNTF)
{
    m_nUnit = nUnit;
    m_bNTF = bNTF;
    update();
}

void CORVDistributionView::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    const int index = imageAt(pEvent->localPos());
    if (pEvent->button() != Qt::LeftButton || index < 0) {
        CORVMultiImageView::mouseDoubleClickEvent(pEvent);
        return;
    }
    pEvent->accept();
    openImage(index);
}

void CORVDistributionView::openImage(int nIndex)
{
    if (nIndex < 0 || nIndex >= getImageNumber() || !m_openMutex.tryLock()) {
        return;
    }
    const QPointer<CORVDistributionView> alive(this);
    Q_EMIT imageDoubleClickedSignal(nIndex);
    if (!alive.isNull()) {
        m_openMutex.unlock();
    }
}

void CORVDistributionView::drawColorBarTexts() const
{
    const CORVTextTag& tag = lowerTag();
    double dFontHeight = 0.0;
    convertWindowToObjectHeight(QFontMetrics(tag.font()).height(), dFontHeight);
    const double dTop = colorBarUnitTop(tag.y(), tag.height(), dFontHeight);
    for (const ColorBarUnitLine& line : colorBarUnitLines(m_nUnit, m_bNTF)) {
        renderText(tag.x(), dTop + line.offset * dFontHeight, 0.0, line.text, tag.font(), 2000);
    }
}

void CORVDistributionView::tellPixel(int nIndex, int x, int y)
{
    const CILImage* pImage = image(nIndex);
    if (pImage == nullptr) {
        sendReadOut(*this, QString());
        return;
    }
    ReadOut found;
    found.image = imageLabel(nIndex);
    found.pixel = QPoint(x, y);
    if (!m_values.size.isEmpty()) {
        const QSize picture(static_cast<int>(pImage->m_lWidth), static_cast<int>(pImage->m_lHeight));
        found.pixel = m_values.place(found.pixel, picture); // which is that of the cube
        found.value = m_values.value(nIndex, found.pixel);
        found.quantity = displayUnitQuantity(m_nUnit);
    }
    sendReadOut(*this, found.text());
}
