// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/FullDataset.h"

#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ImageNames.h"
#include "workbench/simulator/BodyPictures.h"
#include "workbench/simulator/SimulationOptions.h"

namespace {

using Entries = QList<QPair<QString, QString>>;

void addSection(CPLClickInfo& info, const QString& strKey, const Entries& entries)
{
    CPLSection section(strKey);
    for (const auto& entry : entries)
        section.addKeyValue(entry.first, entry.second);
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

} // namespace

bool FullDataset::prepare(const SimulationOptions& options, const MouseShape& shape, const CILImage& photograph)
{
    const int side = static_cast<int>(photograph.m_lWidth);
    m_reference = takeStructuredLight(shape, side, false);
    m_structure = takeStructuredLight(shape, side, true);
    m_xRay = takeXRay(shape, side);
    for (CILImage* pImage : {&m_reference, &m_structure, &m_xRay})
        pImage->m_fBinning = photograph.m_fBinning;
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
        if (luminescent.getValue(text(pKey), &value) == 0)
            set(main, pKey, value);
    }
    set(main, ClickKeys::kBackgroundCorrected, text("0"));
    dataset.info.addSection(&main);
    images.append({IMAGETYPE_MAIN_DATA, &data});
    addNotes(dataset.info);
    if (!bFirst)
        return;
    images.append({IMAGETYPE_REFERENCE, &m_reference});
    addAcquisition(dataset.info, IMAGETYPE_REFERENCE, m_reference, "0.2");
    images.append({IMAGETYPE_STRUCTURE, &m_structure});
    addAcquisition(dataset.info, IMAGETYPE_STRUCTURE, m_structure, "0.2");
    images.append({IMAGETYPE_XRAY, &m_xRay});
    addAcquisition(dataset.info, IMAGETYPE_XRAY, m_xRay, "10");
    images.append({IMAGETYPE_XRAY_PHOTOGRAPH, m_pPhotograph});
    addAcquisition(dataset.info, IMAGETYPE_XRAY_PHOTOGRAPH, *m_pPhotograph, "0.1");
}
