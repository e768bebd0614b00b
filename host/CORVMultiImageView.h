// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/GLImageView.h"

#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <memory>

class CILImage;
class CILPalette;
class CORVTextTag;

// Images side by side in tiles of one size, with a colour bar in a margin at the right.
//
// The grid is near-square; images of several spots (labels that end in "_001", "_002", ...) take one row a spot, and
// where the rows do not find room, they are scrolled: by the wheel (which zooms with Ctrl) and by Page Up and Page
// Down. Else the wheel zooms the grid; the middle button moves it. On the keyboard the arrows choose a tile and Return
// activates it.
//
// Object coordinates are logical pixels of the view from its upper left, y downwards.
class CORVMultiImageView : public GLImageView
{
    Q_OBJECT

public:
    explicit CORVMultiImageView(QWidget* pParent = nullptr, const char* name = nullptr);
    ~CORVMultiImageView() override;

    // Adds a tile after the others. The image is borrowed until removeAllImages(): its picture (CILImage::toQImage) is
    // made when the tile is first drawn, and again only to be drawn larger. bFrame draws a frame around the tile;
    // nSmooth other than 0 interpolates between its pixels. A null image adds nothing.
    void addImage(CILImage* pImage, bool bFrame, const QString& strLabel, int nSmooth);
    // A tile without label whose image fills the part dScale (0 to 1) of it.
    virtual void addScaledImage(CILImage* pImage, double dScale);
    // Every pointer and every picture is dropped at once; the zoom is kept, for as many images of the same size.
    void removeAllImages();
    int getImageNumber() const;

    QString imageLabel(int nIndex) const;
    // The borrowed image of a tile; null for an index out of range.
    const CILImage* image(int nIndex) const;
    // A second line for the tool tip of a tile, under its whole label.
    void setImageToolTip(int nIndex, const QString& strText);
    // Where a tile's image is shown; empty for an index out of range.
    QRectF imageRect(int nIndex) const;
    // The tile whose image is shown at a point of the view, or -1.
    int imageAt(const QPointF& view) const;
    // The tile chosen with the keyboard; -1 without images.
    int currentImage() const;

    // Points; both are the user's preference at first, and again after updateFontByPreference().
    void setFontSize(int nPoints);
    int fontSize() const;
    void updateFontByPreference();

    // Height in object coordinates of a length in pixels of the window.
    void convertWindowToObjectHeight(int nHeight, double& dHeight) const;

    // The bar is shown while m_bShowColorBar is set and it is not hidden.
    void setHideColorBar(bool bHide);
    bool isColorBarShown() const;
    // The values at its ends; sets the texts of the tags.
    void updateColorBar(float fMin, float fMax);
    void setColorTable(int nIndex);
    void setReversed(bool bReversed);
    // Table, sense and logarithm of the bar at once.
    void setColorBarPalette(const CILPalette& palette);
    // Tags of the caller instead of the view's own; they outlive the view or are taken away by null. The lower one's
    // lines tell the unit.
    void setColorBarTags(CORVTextTag* pLower, CORVTextTag* pUpper);
    const CORVTextTag& lowerTag() const;
    const CORVTextTag& upperTag() const;
    // The margin that the bar and its texts have; empty while no bar is shown.
    QRectF colorBarMargin() const;
    // The bar in the margin, tags beneath and above it. Without a call, or after resetColorBarPlace(), the view places
    // it.
    void setColorBarPlace(const QPointF& bottomLeft, double dHeight);
    void resetColorBarPlace();
    QRectF colorBarRect() const;
    // Of the numbers and texts at the bar.
    QColor colorBarTextColor() const;

    // Draws a text with its baseline at (x, y); z and the list base are of no effect. To be called from
    // drawColorBarTexts() alone. The colour is the current one of OpenGL (glColor3f) when there is a context, else
    // colorBarTextColor().
    void renderText(double x, double y, double z, const QString& strText, const QFont& font,
                    int nListBase = 2000) const;

    // The view as it is seen, or with bAll all tiles; see renderImage(). False without a size.
    bool getImageByRender(QImage& image, bool bAll = false) const;

    bool m_bShowLabels = true;
    bool m_bShowColorBar = false;

Q_SIGNALS:
    // The room for the bar is another one: after a change of the view's size or font, or when the bar is shown.
    void colorBarMarginChanged();
    // Return was pressed on a tile.
    void imageActivated(int nIndex);
    // The pixel of a tile's image under the pointer; (-1, -1, -1) once there is none.
    void imagePixelUnderPointer(int nIndex, int x, int y);

protected:
    bool event(QEvent* pEvent) override;
    void wheelEvent(QWheelEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void paintGL() override;
    void paintScene(QPainter& painter) const override;
    void paintFocus(QPainter& painter) const override;
    QImage pictureToKeep() const override;
    QSizeF contentSize() const override;
    QSizeF contentArea() const override;
    double leastFittedZoom() const override;

    // The texts of the unit, through renderText(), while OpenGL may be used directly (inside native painting); a
    // picture that is made without OpenGL calls it too. The base draws the lines of the lower tag under it.
    virtual void drawColorBarTexts() const;

private:
    struct State;
    struct Tile;
    void tellPixel(const QPointF& view);
    bool moveCurrent(int nKey);
    void showCurrent();
    bool isScrolled() const;
    void paintTile(QPainter& painter, int nIndex) const;
    void paintScrollMark(QPainter& painter) const;
    void paintColorBar(QPainter& painter) const;
    void paintTexts(QPainter& painter) const;
    void placeTags() const;

    std::unique_ptr<State> m_state;
};
