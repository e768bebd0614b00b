// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/GLImageView.h"

#include <QRect>

#include <array>
#include <memory>

class CILImage;

// An image with a crop that can be drawn over it. The image keeps its aspect and fits the view.
//
// Once enableCropMenu(true) was called, a drag draws a crop, one that starts inside it moves it, one of its corners
// resizes it. On the keyboard the arrows move it (with Ctrl by ten view pixels), with Shift they move its lower right
// corner; Ctrl+A takes the whole image, Esc takes the last change back, Del clears.
class CORVSimpleImageView : public GLImageView
{
    Q_OBJECT

public:
    // Bits of showMenuItems(). Each group stands in the context menu and in the strip of buttons that the view shows
    // while the pointer is over it.
    enum Items
    {
        CopyItems = 1,
        SaveItems = 2,
        ZoomItems = 4,
        CropItems = 8 // only while the crop is enabled
    };

    // `name` becomes the object name. The image may be null.
    CORVSimpleImageView(QWidget* pParent, const char* name, CILImage* pImage);
    ~CORVSimpleImageView() override;

    // The image as it is shown (CILImage::toQImage) at this moment; null shows nothing. It is not kept. One of another
    // size drops the crop.
    void setImage(CILImage* pImage);

    // All at first.
    void showMenuItems(int nItems);
    // Whether the crop is shown and can be changed; false at first. The crop itself stays.
    void enableCropMenu(bool bEnable);
    bool isCropMenuEnabled() const;
    // True for the ellipse inside the crop instead of the rectangle. Sends nothing.
    void setCropShape(bool bEllipse);
    bool getCropShape() const;

    // The crop, to be read as x1, y1, x2, y2 (QRect::getCoords) in view pixels: relative to the displayed image, x from
    // its left edge and y upwards from its lower edge, (x1, y1) the upper left corner. Each is 1 or more and at most
    // the side of the displayed image. All 0 without a crop.
    QRect getImageViewCrop() const;
    // The displayed image in view pixels: left, top, width, height. While the legend is shown both sides are those that
    // it leaves free, 25 view pixels less; the crop goes on to count over the whole image.
    std::array<float, 4> getImageRect() const;

    // A legend of pixel numbers, 25 view pixels wide, along the right and the lower edge of the image.
    bool m_bShowLegend = false;

Q_SIGNALS:
    // At the end of a drag that changed the crop, and after a change by key or menu. The number is always 0. Never
    // while the crop is not enabled.
    void cropModifiedSignal(int nMode);
    // The user chose a shape in the menu.
    void cropShapeChanged(bool bEllipse);

protected:
    bool event(QEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void enterEvent(QEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void paintOverlay(QPainter& painter) const override;
    void fillContextMenu(QMenu& menu) override;

private:
    struct State;
    bool isCropShown() const;
    bool isCropKey(const QKeyEvent& event) const;
    bool cropKey(QKeyEvent* pEvent);
    void describeCrop();
    void cropChanged(bool bChanged);
    void chooseShape(bool bEllipse);
    void showCursorOf(const QPointF& point);
    void makeActions();
    void updateActions();
    void fillStrip();
    void placeStrip();

    std::unique_ptr<State> m_state;
};
