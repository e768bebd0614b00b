// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/CORVOverlayImage.h"
#include "host/orv_types.h"
#include "workbench/application/DisplayRange.h"
#include "workbench/application/DisplayUnits.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <QString>

#include <optional>

class CORVDataset;

// One image of a dataset, in a unit, and the picture that is made of it: through a colour table, over the photograph if
// that is wanted. The dataset is borrowed; its images are copied, never changed.
class DatasetImage
{
public:
    explicit DatasetImage(CORVDataset* pDataset);

    // What the dataset holds, the main data image first.
    QList<tag_eimagetype> types() const;
    // For people: "Luminescent image".
    static QString typeText(tag_eimagetype eType);
    QVector<UnitOffer> offers() const;

    // Reads the image; the range becomes the automatic one. A type that is not in types() is the first of these. False
    // with error() when it cannot be had; there is then no picture.
    bool load(tag_eimagetype eType, tag_edisplayunit eUnit);
    // Its two steps, for who lets events through in between: the pixels alone, and then the ranges.
    void read(tag_eimagetype eType, tag_edisplayunit eUnit);
    bool measure();
    const QString& error() const { return m_strError; }
    tag_eimagetype type() const { return m_eType; }
    // Only the main data image has a unit.
    bool hasUnit() const { return m_eType == IMAGETYPE_MAIN_DATA; }
    tag_edisplayunit unit() const { return m_eUnit; }
    QString quantity() const;
    // A picture in colours has neither table nor range.
    bool isColored() const { return m_image.isRGB(); }
    const CILImage& image() const { return m_image; }
    QSize size() const { return {static_cast<int>(m_image.m_lWidth), static_cast<int>(m_image.m_lHeight)}; }
    const DisplayRange& whole() const { return m_whole; }
    const DisplayRange& automatic() const { return m_automatic; }

    void setColors(int nTable, bool bReversed, bool bLogScale);
    // Table, sense, logarithm and range.
    const CILPalette& palette() const { return *m_image.getPalette(); }
    void setRange(const DisplayRange& range);
    const DisplayRange& range() const { return m_range; }

    // Whether the photograph can lie beneath: there is one, and another image is shown.
    bool canOverlay() const { return m_bPhotograph && m_eType != IMAGETYPE_PHOTOGRAPH; }
    // From 0, the photograph alone, to 1, where nothing of it is seen but below the minimum.
    void setOverlay(bool bOverlay, double dOpacity);
    bool isOverlay() const { return m_bOverlay && canOverlay(); }

    // At the size of the image or, over the photograph, of that; null without an image.
    QImage picture();
    // Nothing beside the image, and in a picture in colours.
    std::optional<double> valueAt(const QPoint& pixel) const;

private:
    void readPixels();
    // That of the dataset, or the one that its sequence lends; null without.
    CILImage* photograph() const;
    void takePhotograph();

    CORVDataset* m_pDataset;
    tag_eimagetype m_eType = IMAGETYPE_MAIN_DATA;
    tag_edisplayunit m_eUnit = DISPLAYUNIT_COUNTS;
    CILImage m_image;
    QString m_strError;
    DisplayRange m_whole;
    DisplayRange m_automatic;
    DisplayRange m_range;
    CORVOverlayImage m_overlay;
    bool m_bPhotograph = false;
    bool m_bPhotographTaken = false; // it is the overlay's background
    bool m_bOverlay = false;
    double m_dOpacity = 0.7;
};
