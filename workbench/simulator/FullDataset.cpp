// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/FullDataset.h"

#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ImageNames.h"
#include "workbench/simulator/BodyPictures.h"
#include "workbench/simulator/SimulationOptions.h"

#include <cmath>

namespace {

using Entries = QList<QPair<QString, QString>>;

void addSection(CPLClickInfo& info, const QString& strKey, const Entries& entries)
{
    CPLSection section(strKey);
    for (const auto& entry : entries) {
        section.addKeyValue(entry.first, entry.second);
    }
    info.addSection(&section);
}

QString text(const char* pText)
{
    return QString::fromLatin1(pText);
}

// Sections that an instrument writes for people.
void addNotes(CPLClickInfo& info)
{
    addSection(info, text("User Input"),
               {{text("User"), text("simulation")},
                {text("Comment"), text("first line\nsecond line: 100 % simulated")},
                {text("Animal Number"), text("1")},
                {text("Folder"), text("C:\\data\\mouse 1")}});
    addSection(info, text("Analysis User Input"), {{text("Analysis Comment"), text("none")}});
    addSection(info, text("User Label Name Set"), {{text("Label Set"), text("simulation")}});
    addSection(info, text("Graph Controls"), {{text("Minimum"), text("0")}, {text("Maximum"), text("1000")}});
}

void addAcquisition(CPLClickInfo& info, tag_eimagetype eType, const CILImage& image, const char* pExposure)
{
    addSection(info, imageSection(eType),
               {{text(ClickKeys::kExposureTime), text(pExposure)},
                {text(ClickKeys::kBinning), QString::number(static_cast<double>(image.m_fBinning))},
                {text(ClickKeys::kFNumber), text("8")}});
}

// A region of each shape over the trunk, in whole pixels of the sensor, of which `side` lie along the field of view.
void addRegions(CPLClickInfo& info, double side)
{
    const auto outline = [side](std::initializer_list<tagROIInfo::Point> shares) {
        QVector<tagROIInfo::Point> points;
        for (const tagROIInfo::Point& share : shares) {
            points.append({std::round(share.x * side), std::round(share.y * side)});
        }
        return points;
    };
    tagROIInfo rectangle;
    rectangle.name = text("Back");
    rectangle.x = std::round(0.44 * side);
    rectangle.y = std::round(0.40 * side);
    rectangle.width = std::round(0.12 * side);
    rectangle.height = std::round(0.20 * side);
    tagROIInfo ellipse = rectangle;
    ellipse.name = text("Head");
    ellipse.shape = ROISHAPE_ELLIPSE;
    ellipse.y = std::round(0.16 * side);
    ellipse.height = std::round(0.14 * side);
    tagROIInfo polygon;
    polygon.name = text("Hind back");
    polygon.shape = ROISHAPE_POLYGON;
    polygon.points = outline({{0.42, 0.60}, {0.58, 0.60}, {0.55, 0.70}, {0.45, 0.70}});
    tagROIInfo freehand;
    freehand.name = text("Shoulder");
    freehand.shape = ROISHAPE_FREEHAND;
    freehand.points = outline({{0.42, 0.36}, {0.45, 0.33}, {0.48, 0.34}, {0.49, 0.38}, {0.46, 0.40}, {0.43, 0.39}});
    CROIManager regions;
    for (const tagROIInfo& region : {rectangle, ellipse, polygon, freehand}) {
        regions.addRegion(region);
    }
    regions.saveROIData(&info);
}

} // namespace

bool FullDataset::prepare(const SimulationOptions& options, const MouseShape& shape, const CILImage& photograph)
{
    const int side = static_cast<int>(photograph.m_lWidth);
    m_reference = takeStructuredLight(shape, side, false);
    m_structure = takeStructuredLight(shape, side, true);
    m_xRay = takeXRay(shape, side);
    for (CILImage* pImage : {&m_reference, &m_structure, &m_xRay}) {
        pImage->m_fBinning = photograph.m_fBinning;
    }
    m_pPhotograph = &photograph;
    m_bExcited = isFluorescent(options.kind);
    return !m_reference.isEmpty() && !m_structure.isEmpty() && !m_xRay.isEmpty();
}

void FullDataset::addTo(DatasetDescription& dataset, SequenceWriter::Images& images, const CILImage& data,
                        bool bFirst) const
{
    CPLSection& luminescent = *dataset.info[text(ClickKeys::kLuminescentImage)];
    const auto set = [](CPLSection& section, const char* pKey, const QString& strValue) {
        section.setValue(text(pKey), strValue);
    };
    set(luminescent, ClickKeys::kBackgroundCorrected, text("0"));
    set(luminescent, ClickKeys::kFlatFieldCorrected, text("1"));
    set(luminescent, ClickKeys::kFLBackgroundCorrected, text("0"));
    set(luminescent, ClickKeys::kNativeUnit, m_bExcited ? text("Radiant Efficiency") : text("Radiance"));
    set(luminescent, ClickKeys::kImageExtent, QStringLiteral("%1 x %1").arg(data.m_lWidth));

    // The main data image was taken with the luminescent one; its section repeats what the calibration asks for.
    CPLSection main(text(ClickKeys::kMainDataImage));
    for (const char* pKey :
         {ClickKeys::kExposureTime, ClickKeys::kBinning, ClickKeys::kFNumber, ClickKeys::kReadBiasLevel}) {
        QString value;
        if (luminescent.getValue(text(pKey), &value) == 0) {
            set(main, pKey, value);
        }
    }
    set(main, ClickKeys::kBackgroundCorrected, text("0"));
    dataset.info.addSection(&main);
    images.append({IMAGETYPE_MAIN_DATA, &data});
    addNotes(dataset.info);
    if (!bFirst) {
        return;
    }
    addRegions(dataset.info, static_cast<double>(data.m_fBinning) * static_cast<double>(data.m_lWidth));
    images.append({IMAGETYPE_REFERENCE, &m_reference});
    addAcquisition(dataset.info, IMAGETYPE_REFERENCE, m_reference, "0.2");
    images.append({IMAGETYPE_STRUCTURE, &m_structure});
    addAcquisition(dataset.info, IMAGETYPE_STRUCTURE, m_structure, "0.2");
    images.append({IMAGETYPE_XRAY, &m_xRay});
    addAcquisition(dataset.info, IMAGETYPE_XRAY, m_xRay, "10");
    images.append({IMAGETYPE_XRAY_PHOTOGRAPH, m_pPhotograph});
    addAcquisition(dataset.info, IMAGETYPE_XRAY_PHOTOGRAPH, *m_pPhotograph, "0.1");
}
