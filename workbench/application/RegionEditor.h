// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"
#include "platform/orvwidgets/CropGeometry.h"
#include "workbench/application/OutlineGrip.h"
#include "workbench/application/OutlineSketch.h"

#include <QList>
#include <QPoint>
#include <QSize>
#include <QString>

#include <optional>

class QPainter;

// Regions of interest over a displayed picture: drawing new ones, choosing, moving and resizing. What is drawn, moved
// or resized by hand lies on whole pixels of the image, but for a line drawn by hand, which lies where the hand was.
// `shown` is where the image lies in the view. Regions themselves are kept by whoever uses this; a change is handed
// out, and comes back by setRegions().
//
// Rectangle, ellipse and the line are drawn in one drag, a polygon corner by corner over several presses, between which
// isDrawing() holds; a press on its first corner or close() ends it.
class RegionEditor
{
public:
    enum class Tool
    {
        None, // a press chooses and moves
        Rectangle,
        Ellipse,
        Polygon,
        FreeHand
    };

    // Size in pixels; a pixel has `dBinning` pixels of the sensor on a side, in which regions are told. A polygon that
    // is being drawn over another image is given up.
    void setImage(const QSize& size, double dBinning);
    // The chosen one stays chosen if it is still there by its name.
    void setRegions(const QList<tagROIInfo>& regions);
    const QList<tagROIInfo>& regions() const { return m_regions; }
    // Another one ends what is being drawn.
    void setTool(Tool eTool);
    Tool tool() const { return m_eTool; }
    // -1 for none.
    int chosen() const { return m_nChosen; }
    void choose(int nRegion);

    // A press that means a region: false leaves it to the view, and nothing is chosen then.
    bool press(const QPointF& point, const QRectF& shown);
    void dragTo(const QPointF& point, const QRectF& shown);
    bool isDragging() const { return m_crop.isDragging() || m_grip.isHeld() || m_sketch.isPressed(); }
    // The end of a drag: what became of the chosen region, or, with isNew(), a new one without a name; nothing when
    // all is as it was. Where what was drawn is no region, *pReason tells why.
    std::optional<tagROIInfo> release(const QRectF& shown, QString* pReason);
    bool isNew() const { return m_bNew; }
    // Ends a drag without a change. A polygon that is being drawn keeps its corners.
    void cancelDrag();
    // Ends a drag, or what is being drawn, without a change.
    void giveUp();

    bool isDrawing() const { return m_sketch.isPolygon(); }
    void hover(const QPointF& point, const QRectF& shown) { m_sketch.hover(point, shown); }
    // With the only one the polygon is given up.
    void takeBackCorner();
    // The polygon as a new region without a name; nothing, with the reason, as long as it is none: it goes on then.
    std::optional<tagROIInfo> close(QString* pReason);

    // The chosen region so many pixels farther, kept on the image; nothing when it cannot move.
    std::optional<tagROIInfo> moved(const QPoint& pixels) const;

    // What a press there would mean.
    orvwidgets::CropPart partAt(const QPointF& point, const QRectF& shown) const;
    void paint(QPainter& painter, const QRectF& shown) const;

private:
    QSizeF sensor() const { return QSizeF(m_size) * m_dBinning; }
    OutlineGrip::Image image() const { return {sensor(), m_dBinning}; }
    // The rectangle around a region, in parts of the image.
    QRectF parts(const tagROIInfo& region) const;
    // Whether it lies on the image as a whole.
    bool isEditable(const tagROIInfo& region) const;
    bool isChosenEditable() const { return m_nChosen >= 0 && isEditable(m_regions.at(m_nChosen)); }
    int placeOf(const QString& strName) const;
    int regionAt(const QPointF& point, const QRectF& shown) const;
    // Takes hold of the chosen region where the press means that.
    bool grip(const QPointF& point, const QRectF& shown);
    void begin(const QPointF& point, const QRectF& shown);
    // The chosen region as the drag has it, or the new box.
    tagROIInfo drawn(const QRectF& shown) const;
    tagROIInfo drawnBox() const;
    tagROIInfo sketched() const;
    // Why it is none over this image; empty for a good one.
    QString reasonAgainst(const tagROIInfo& region) const;
    void paintRegion(QPainter& painter, const QRectF& shown, const tagROIInfo& region, bool bChosen) const;

    QList<tagROIInfo> m_regions;
    QSize m_size;
    double m_dBinning = 1.0;
    Tool m_eTool = Tool::None;
    int m_nChosen = -1;
    orvwidgets::CropGeometry m_crop; // that of the chosen region, or of the new one, where it is a box
    OutlineGrip m_grip;              // of the chosen region where it is an outline
    OutlineSketch m_sketch;
    bool m_bNew = false;
    bool m_bMoving = false;
};
