// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"
#include "platform/orvwidgets/CropGeometry.h"

#include <QList>
#include <QPoint>
#include <QSize>

#include <optional>

class QPainter;

// Regions of interest over a displayed picture: drawing new ones, choosing, moving and resizing. What is drawn, moved
// or resized by hand lies on whole pixels of the image. `shown` is where the image lies in the view. Regions themselves
// are kept by whoever uses this; a change is handed out, and comes back by setRegions().
class RegionEditor
{
public:
    enum class Tool
    {
        None, // a press chooses and moves
        Rectangle,
        Ellipse
    };

    // Size in pixels; a pixel has `dBinning` pixels of the sensor on a side, in which regions are told.
    void setImage(const QSize& size, double dBinning);
    // The chosen one stays chosen if it is still there by its name.
    void setRegions(const QList<tagROIInfo>& regions);
    const QList<tagROIInfo>& regions() const { return m_regions; }
    void setTool(Tool eTool) { m_eTool = eTool; }
    Tool tool() const { return m_eTool; }
    // -1 for none.
    int chosen() const { return m_nChosen; }
    void choose(int nRegion);

    // A press that means a region: false leaves it to the view, and nothing is chosen then.
    bool press(const QPointF& point, const QRectF& shown);
    void dragTo(const QPointF& point, const QRectF& shown);
    bool isDragging() const { return m_crop.isDragging(); }
    // The end of a drag: what became of the chosen region, or, with isNew(), a new one without a name; nothing when
    // all is as it was.
    std::optional<tagROIInfo> release(const QRectF& shown);
    bool isNew() const { return m_bNew; }
    // Ends a drag without a change.
    void giveUp();
    // The chosen region so many pixels farther, kept on the image; nothing when it cannot move.
    std::optional<tagROIInfo> moved(const QPoint& pixels) const;

    // What a press there would mean.
    orvwidgets::CropPart partAt(const QPointF& point, const QRectF& shown) const;
    void paint(QPainter& painter, const QRectF& shown) const;

private:
    QSizeF sensor() const { return QSizeF(m_size) * m_dBinning; }
    // The rectangle around a region, in parts of the image.
    QRectF parts(const tagROIInfo& region) const;
    // A rectangle or an ellipse that lies on the image.
    bool isEditable(const tagROIInfo& region) const;
    int regionAt(const QPointF& point, const QRectF& shown) const;
    // The region of the crop.
    tagROIInfo drawn() const;

    QList<tagROIInfo> m_regions;
    QSize m_size;
    double m_dBinning = 1.0;
    Tool m_eTool = Tool::None;
    int m_nChosen = -1;
    orvwidgets::CropGeometry m_crop; // that of the chosen region, or of the new one
    bool m_bNew = false;
    bool m_bMoving = false;
};
