// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "host/CORVQImageView.h"
#include "workbench/application/DisplayRange.h"
#include "workbench/application/RegionEditor.h"

#include <QSize>
#include <QString>

// The view of an image window: dragging moves the picture or draws and moves regions of interest, pixels stay squares
// when they are enlarged. The arrow keys move the chosen region by a pixel, with Shift by ten, Del asks for its
// removal, and Esc ends a drag or the choice. A polygon is closed by a double click or Return, Backspace or Ctrl+Z
// takes its last corner back, and Esc gives it up. It is measured in pixels of the image, whatever size the picture has
// that is shown of it. Instead of a picture a message can stand.
class DatasetView : public CORVQImageView
{
    Q_OBJECT

public:
    explicit DatasetView(QWidget* pParent = nullptr);

    // The picture of an image of that size.
    void showPicture(const QImage& picture, const QSize& image);
    void showMessage(const QString& strText);
    // A text over whatever is shown, until the next picture or message.
    void showNotice(const QString& strText);
    // The bar that stands beside a picture that is copied, saved or printed; none for an empty range.
    void setBar(const CILPalette& palette, const DisplayRange& range, const QString& strQuantity);
    QImage pictureToKeep() const override;

    // Those over the picture; after a change of what they show, update() is to be called.
    RegionEditor& regions() { return m_regions; }

public Q_SLOTS:
    // One pixel of the image takes one of the screen.
    void showActualSize();

Q_SIGNALS:
    // A region was drawn (-1), moved or resized, by mouse or keys; it goes on while a key is held.
    void regionEdited(int nRegion, const tagROIInfo& region, bool bGoesOn);
    void regionChosen(int nRegion); // -1: none
    void regionRemovalWanted(int nRegion);
    // What was drawn is no region.
    void drawingRefused(const QString& strReason);

protected:
    bool event(QEvent* pEvent) override;
    QSizeF contentSize() const override;
    void fillContextMenu(QMenu& menu) override;
    void paintGL() override;
    void paintOverlay(QPainter& painter) const override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    bool regionKey(const QKeyEvent& event);
    bool polygonKey(const QKeyEvent& event);
    void closePolygon();
    // Hands out what became of a region (-1: a new one).
    void tell(int nRegion, const std::optional<tagROIInfo>& region, const QString& strReason);
    void showCursorAt(const QPointF& point);

    RegionEditor m_regions;
    QSize m_image;
    QString m_strMessage;
    QString m_strNotice;
    CILPalette m_palette;
    DisplayRange m_range;
    QString m_strQuantity;
    bool m_bDragged = false;
    QPoint m_last;
};
