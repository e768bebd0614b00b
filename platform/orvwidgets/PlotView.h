// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChartView>
#include <QRubberBand>

namespace orv {

// The view of a chart that tells of the gestures of its user.
class PlotView : public QtCharts::QChartView
{
    Q_OBJECT

public:
    explicit PlotView(QWidget* pParent);

Q_SIGNALS:
    // A rectangle was drawn, in pixels of the view.
    void rectangleDrawn(const QRect& rect);
    void doubleClicked();
    // The pointer is there, without a button pressed.
    void pointed(const QPoint& place);
    void left();
    void resized();

protected:
    void leaveEvent(QEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    QRubberBand m_band;
    QPoint m_origin;
};

} // namespace orv
