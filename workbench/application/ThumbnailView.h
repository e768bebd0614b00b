// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QTableView>

class ThumbnailDelegate;
class ThumbnailModel;

// The table of a sequence's thumbnails. Arrows move between them, from the end of a row to the next one where they
// follow one another; Return, Enter and a double click activate one. Ctrl with the wheel changes their size.
class ThumbnailView : public QTableView
{
    Q_OBJECT

public:
    static constexpr int kSmallest = 64;
    static constexpr int kLargest = 512;

    // The model outlives the view.
    explicit ThumbnailView(ThumbnailModel& model, QWidget* pParent = nullptr);

    // The side of a thumbnail in logical pixels, kSmallest to kLargest. Until it is set, it is one at which all find
    // room if they can.
    int side() const { return m_nSide; }
    void setSide(int nSide);
    int currentTile() const;
    void setCurrentTile(int nTile);
    // Cells and, where tiles follow one another, how many stand in a row, from the size of the view and of the tiles;
    // the current tile stays.
    void layOut();

Q_SIGNALS:
    void sideChanged(int nSide);
    void tileActivated(int nTile);
    // The place under the pointer in parts (0 to 1) of the tile's picture; -1 once there is none.
    void pointed(int nTile, const QPointF& place);

protected:
    bool viewportEvent(QEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void wheelEvent(QWheelEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    QModelIndex moveCursor(CursorAction eAction, Qt::KeyboardModifiers keys) override;

private:
    void tellPlace(const QPoint& at);
    void takeSide(int nSide);

    ThumbnailModel& m_model;
    int m_nSide = 128;
    bool m_bOwnSide = false; // the user has chosen one
};
