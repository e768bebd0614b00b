// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace orv {
class SpanHandle;
}

// A slider with two ends. The ends may meet and cannot cross: an end that is told to pass the other stops there. Each
// end is a control of its own, so the Tab key goes from one to the other, arrows step the one with the focus, the page
// keys move it by ten, Home and End as far as it can go, and assistive tools see two values. A click beside the handles
// brings the nearer one.
class QSpanSlider : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(int maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(int lowerValue READ lowerValue WRITE setLowerValue NOTIFY lowerValueChanged)
    Q_PROPERTY(int upperValue READ upperValue WRITE setUpperValue NOTIFY upperValueChanged)
    Q_PROPERTY(Qt::Orientation orientation READ orientation WRITE setOrientation)

public:
    // Of the range 0 to 99, with the ends at its ends.
    explicit QSpanSlider(QWidget* pParent = nullptr);
    explicit QSpanSlider(Qt::Orientation eOrientation, QWidget* pParent = nullptr);

    int minimum() const { return m_nMinimum; }
    int maximum() const { return m_nMaximum; }
    int lowerValue() const { return m_nLower; }
    int upperValue() const { return m_nUpper; }
    Qt::Orientation orientation() const { return m_eOrientation; }
    void setOrientation(Qt::Orientation eOrientation);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    // A maximum below the minimum becomes the minimum. Ends outside the new range move to its ends.
    void setRange(int nMinimum, int nMaximum);
    void setMinimum(int nMinimum);
    void setMaximum(int nMaximum);
    void setLowerValue(int nValue);
    void setUpperValue(int nValue);
    // Both ends at once, where one after the other would stop at the old place of the other. The smaller value is the
    // lower end.
    void setSpan(int nLower, int nUpper);

Q_SIGNALS:
    void lowerValueChanged(int nValue);
    void upperValueChanged(int nValue);

protected:
    void changeEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    friend class orv::SpanHandle;

    // Brings the handles up to date with ends and range, then tells whoever listens.
    void apply(int nLower, int nUpper);
    void placeHandles();
    // Of a place in this widget along the groove.
    int valueAt(const QPoint& place) const;
    orv::SpanHandle* nearerHandle(const QPoint& place) const;
    void drag(orv::SpanHandle* pHandle, int nValue);
    bool isReversed() const;
    int grooveLength() const;

    Qt::Orientation m_eOrientation = Qt::Horizontal;
    int m_nMinimum = 0;
    int m_nMaximum = 99;
    int m_nLower = 0;
    int m_nUpper = 99;
    orv::SpanHandle* m_pLowerHandle = nullptr;
    orv::SpanHandle* m_pUpperHandle = nullptr;
    orv::SpanHandle* m_pActive = nullptr; // the one that was used last
};
