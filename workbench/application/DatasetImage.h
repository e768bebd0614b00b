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

#include <functional>
#include <optional>

class CORVDataset;

// One image of a dataset, in a unit, and the picture that is made of it: through a colour table, over the photograph if
// that is wanted. It has its own shape, without what an import added to make a square of it. The dataset is borrowed;
// its images are copied, never changed.
class DatasetImage
{
public:
    explicit DatasetImage(CORVDataset* pDataset);

    // What the dataset holds, the main data image first.
    QList<tag_eimagetype> types() const;
    // For people: "Luminescent image".
    static QString typeText(tag_eimagetype eType);
    QVector<UnitOffer> offers() const;

    // An image as it was read, and what it shows of itself.
    struct Loaded
    {
        tag_eimagetype type = IMAGETYPE_MAIN_DATA;
        tag_edisplayunit unit = DISPLAYUNIT_COUNTS;
        CILImage image;
        QString error;
        DisplayRange whole;
        DisplayRange automatic;
    };
    // What reads the image of that type; of one that is not in types() the first of these. To be called once, on any
    // thread and whatever becomes of this object and of the dataset.
    std::function<Loaded()> reader(tag_eimagetype eType, tag_edisplayunit eUnit) const;
    // Shows what was read; the range becomes the automatic one. False with error() when it could not be had; there is
    // then no picture.
    bool take(Loaded loaded);
    // Both at once.
    bool load(tag_eimagetype eType, tag_edisplayunit eUnit) { return take(reader(eType, eUnit)()); }
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
    // Puts image or error into what is loaded: of the main data image; of any other.
    using Filling = std::function<void(Loaded&)>;
    Filling unitFilling(tag_edisplayunit eUnit) const;
    Filling coreFilling(tag_eimagetype eType) const;
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
