// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ImageNames.h"

#include "platform/orvapi/ClickInfoKeys.h"

namespace {

struct ImageName
{
    tag_eimagetype type;
    const char* file;
    const char* otherFile;
    const char* section;
};

constexpr ImageName kNames[] = {
    {IMAGETYPE_PHOTOGRAPH, "photograph.TIF", nullptr, ClickKeys::kPhotographicImage},
    {IMAGETYPE_LUMINESCENT, "luminescent.TIF", nullptr, ClickKeys::kLuminescentImage},
    {IMAGETYPE_REFERENCE, "reference.TIF", nullptr, ClickKeys::kReferenceImage},
    {IMAGETYPE_STRUCTURE, "structure.TIF", nullptr, ClickKeys::kStructureImage},
    {IMAGETYPE_FLUORESCENT_REFERENCE, "FluorescentReference.TIF", "transmission.tif",
     ClickKeys::kFluorescentReferenceImage},
    {IMAGETYPE_XRAY, "X-ray.TIF", nullptr, ClickKeys::kXRayImage},
    {IMAGETYPE_XRAY_PHOTOGRAPH, "X-rayPhotograph.TIF", nullptr, ClickKeys::kXRayPhotographicImage},
    {IMAGETYPE_MAIN_DATA, "data.TIF", nullptr, ClickKeys::kMainDataImage},
};

const ImageName* nameOf(tag_eimagetype eType)
{
    for (const ImageName& name : kNames) {
        if (name.type == eType) {
            return &name;
        }
    }
    return nullptr;
}

} // namespace

QList<tag_eimagetype> allImageTypes()
{
    QList<tag_eimagetype> types;
    for (const ImageName& name : kNames) {
        types.append(name.type);
    }
    return types;
}

QStringList imageFileNames(tag_eimagetype eType)
{
    QStringList files;
    if (const ImageName* pName = nameOf(eType)) {
        files.append(QString::fromLatin1(pName->file));
        if (pName->otherFile != nullptr) {
            files.append(QString::fromLatin1(pName->otherFile));
        }
    }
    return files;
}

QString imageSection(tag_eimagetype eType)
{
    const ImageName* pName = nameOf(eType);
    return pName == nullptr ? QString() : QString::fromLatin1(pName->section);
}

QStringList acquisitionSections(tag_eimagetype eType)
{
    QStringList sections{imageSection(eType)};
    if (eType == IMAGETYPE_MAIN_DATA) {
        sections.append(imageSection(IMAGETYPE_LUMINESCENT));
    }
    return sections;
}
