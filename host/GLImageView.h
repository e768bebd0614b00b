// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QOpenGLWidget>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <memory>

class QMenu;

// A picture on an OpenGL widget, drawn by QPainter: no textures of our own, so that the widget can move to another
// window. The wheel zooms about the pointer, a double click fits the picture, dragging with the middle button moves it;
// on the keyboard + and - zoom, 0 fits and the arrows move.
//
// Without an OpenGL context (no display) the widget stays empty and grabFramebuffer() gives a null image; all else,
// renderImage() included, works.
//
// Coordinates of the view are logical pixels from its upper left, those of the picture its pixels from its upper left.
class GLImageView : public QOpenGLWidget
{
    Q_OBJECT

public:
    // `name` becomes the object name; null leaves it empty.
    explicit GLImageView(QWidget* pParent = nullptr, const char* name = nullptr);
    ~GLImageView() override;

    // Shares the picture. One of the same size lies where the earlier one did, another is fitted; null shows nothing.
    void setPicture(const QImage& picture);
    const QImage& picture() const;
    // Whether pixels are interpolated when they are scaled; true at first.
    void setSmooth(bool bSmooth);
    bool isSmooth() const;

    // View pixels that a pixel of the picture takes up; 0 without a picture.
    double zoom() const;
    // Limited to what the view allows; about its middle.
    void setZoom(double dZoom);
    bool isFitted() const;

    // Where the picture is shown, parts beyond the view included; empty without one.
    QRectF pictureRect() const;
    QPointF toPicture(const QPointF& view) const;
    QPointF toView(const QPointF& picture) const;
    // The pixel of the picture under a point of the view. False beside the picture; `pixel` is then (-1, -1).
    bool pixelAt(const QPointF& view, QPoint& pixel) const;

    // What the view shows, without the mark of the focus, at its size times the ratio of device pixels and with that
    // ratio set; with bWhole all of it, however it is zoomed. Also while the view is hidden and without OpenGL.
    QImage renderImage(bool bWhole = false) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void zoomIn();
    void zoomOut();
    void fit();
    void copyPicture();
    // Asks for a name; nothing happens without a picture.
    void savePicture();

Q_SIGNALS:
    // The pixel of the picture under the pointer, whenever it changes; (-1, -1) once there is none.
    void pixelUnderPointer(int x, int y);

protected:
    void paintGL() override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void wheelEvent(QWheelEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;
    void contextMenuEvent(QContextMenuEvent* pEvent) override;

    // Draws all of the view on its background; the base draws the picture and then paintOverlay().
    virtual void paintScene(QPainter& painter) const;
    virtual void paintOverlay(QPainter& painter) const;
    // Marks that the view has the focus; the base draws a frame.
    virtual void paintFocus(QPainter& painter) const;
    // The entries of the context menu; the base's are those of `nItems`, see MenuItem.
    virtual void fillContextMenu(QMenu& menu);
    // What is copied and saved; the base gives the picture.
    virtual QImage pictureToKeep() const;
    // Asks for a name and writes that picture; nothing happens without one.
    void saveAs(const QImage& picture);
    // The size of what is zoomed and moved, in its own units; the base gives that of the picture.
    virtual QSizeF contentSize() const;
    // Fitted, the content is not shown smaller as long as the view is wide enough; the base gives 0.
    virtual double leastFittedZoom() const;
    // The part of the view that the content may take up, from the upper left; the base gives all of it.
    virtual QSizeF contentArea() const;

    void setZoomAbout(double dZoom, const QPointF& about);
    void panBy(const QPointF& delta);

    enum MenuItem
    {
        CopyItem = 1,
        SaveItem = 2,
        ZoomItem = 4
    };
    void setMenuItems(int nItems);
    int menuItems() const;

private:
    struct State;
    void syncTransform() const;
    void tellPixel(const QPointF& view);

    std::unique_ptr<State> m_state;
};
