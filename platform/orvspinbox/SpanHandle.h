// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractSlider>

class QSpanSlider;

namespace orv {

// One end of a QSpanSlider. Its range is where this end may go, from the slider's end to the other handle, so keys,
// wheel and assistive tools cannot move it further. The handle of the lower end lies before its place and that of the
// upper end behind it: ends that meet stand side by side, and each can be taken.
class SpanHandle : public QAbstractSlider
{
    Q_OBJECT

public:
    explicit SpanHandle(QSpanSlider* pSlider);

    // Extent along the groove, and across it.
    static constexpr int extent = 9;
    static constexpr int thickness = 18;

    // For the keys that the slider itself receives.
    void pressKey(QKeyEvent* pEvent) { keyPressEvent(pEvent); }

protected:
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QSpanSlider* m_pSlider;
    QPoint m_grip; // from this end's place to the pointer when it was pressed
};

} // namespace orv
