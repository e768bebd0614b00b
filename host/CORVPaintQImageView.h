// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVQImageView.h"

#include <QColor>
#include <QList>
#include <QString>

#include <memory>

// A picture on which regions can be painted, each in a channel of its own (1 to 255; 0 is none). A pixel may belong to
// several channels.
//
// While painting is on, dragging with the left button paints the current channel with its pen, with Shift or with the
// right button it erases; Ctrl+Z takes the channel's last stroke back, [ and ] take the next pen. R and E have a drag
// fill (or erase) a rectangle or an ellipse instead, which Escape gives up, and B has it paint again. A right click
// opens the context menu. While painting is off, the pixel under the pointer is told.
class CORVPaintQImageView : public CORVQImageView
{
    Q_OBJECT

public:
    // What a drag paints.
    enum PaintShape
    {
        Brush,
        Rectangle,
        Ellipse
    };

    explicit CORVPaintQImageView(QWidget* pParent = nullptr, const char* name = nullptr);
    ~CORVPaintQImageView() override;

    // Shares the picture. One of another size drops what was painted. False for a null picture; the one before stays.
    bool replaceImage(const QImage& image);

    void setPaintEnabled(bool bEnabled);
    bool isPaintEnabled() const;
    void setCurrentChannel(unsigned char nChannel);

    // Of every channel; the brush at first.
    void setPaintShape(PaintShape eShape);
    PaintShape paintShape() const;

    // A pen by its name: "Thin", "Medium", "Thick" are 1, 3 and 7 pixels of the picture wide, round. Another name
    // leaves the pen as it is.
    void setPenSize(unsigned char nChannel, const QString& strPen);
    // Adds the channel, or gives it another colour. Channels lie side by side without gaps, so that bFirst, which tells
    // that none was removed yet, makes no difference.
    void setUpChannelColor(unsigned char nChannel, const QColor& color, bool bFirst);
    // The channel is painted and shown no more; what was painted stays until resetMask().
    void removeChannelColor(unsigned char nChannel, const QColor& color);
    bool containsChannel(unsigned char nChannel) const;
    void resetMask(unsigned char nChannel);

    // The painted pixels of the picture, row-major, ascending, each once.
    void getPaintPixelIndex(unsigned char nChannel, QList<int>& indices) const;
    // The current channel with its pixels; 0 and none while there is no such channel.
    unsigned char getCurrentChannel(QList<int>& indices) const;

Q_SIGNALS:
    // 1: the region of the current channel changed, at the end of a stroke or by taking one back. 2: it shall count for
    // every channel, which only the context menu says, after a question.
    void signalDrawComplete(int nButton);
    // The pixel under the pointer while painting is off; (-1, -1) once there is none.
    void updateCursorPosition(int nImgX, int nImgY);
    // The user took another pen for the current channel.
    void penChanged(const QString& strPen);
    // The current channel has as many painted pixels now, in the middle of a stroke too; -1 once nothing is painted
    // any more, or the pointer is elsewhere.
    void paintedPixelsChanged(int nPixels);

public Q_SLOTS:
    void takeStrokeBack();
    void useRegionForAll();

protected:
    bool event(QEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void contextMenuEvent(QContextMenuEvent* pEvent) override;
    void paintOverlay(QPainter& painter) const override;
    void fillContextMenu(QMenu& menu) override;

private:
    void addShapes(QMenu& menu);
    struct State;
    bool isPainting() const;
    bool beginStroke(const QPointF& at, bool bErase);
    void continueStroke(const QPointF& at);
    void endStroke();
    void dropShape();
    void takePenBeside(bool bThinner);
    bool pressPaintKey(int nKey);
    void tellPixels();
    void tellPixels(int nPixels);
    void endLostStroke(Qt::MouseButtons held);
    void tellCursor(const QPoint& pixel);
    void showCursorShape();

    std::unique_ptr<State> m_state;
};
