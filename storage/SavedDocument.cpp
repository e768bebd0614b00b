// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SavedDocument.h"

#include "storage/documentText.h"

#include <QDomDocument>
#include <QFileInfo>

namespace {

constexpr double oldestVersion = 1.1;

int countElements(const QDomElement& parent)
{
    int count = 0;
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        ++count;
    }
    return count;
}

bool isCalled(const QDomElement& element, const char* pName)
{
    return element.tagName().compare(QLatin1String(pName), Qt::CaseInsensitive) == 0;
}

SavedDocument::Spectrum spectrumOf(const QDomElement& element)
{
    SavedDocument::Spectrum spectrum;
    spectrum.name = element.attribute(QStringLiteral("Name"));
    spectrum.color = element.attribute(QStringLiteral("Color"));
    for (QDomElement point = element.firstChildElement(); !point.isNull(); point = point.nextSiblingElement()) {
        spectrum.pairs.append({point.attribute(QStringLiteral("Col")), point.attribute(QStringLiteral("Row"))});
        spectrum.values.append(point.attribute(QStringLiteral("Data")).toDouble());
    }
    return spectrum;
}

void readSection(const QDomElement& section, SavedDocument& document)
{
    const QDomElement first = section.firstChildElement();
    if (isCalled(section, "SeqDataset")) {
        document.sequence = section.attribute(QStringLiteral("id"));
    }
    if (isCalled(section, "SelectedKeyPairs") || isCalled(section, "SelectedWavelengths")) {
        document.images = countElements(section);
    }
    if (isCalled(section, "ROIData")) {
        document.regions = countElements(section);
    }
    if (isCalled(section, "SpectrumList")) {
        for (QDomElement child = first; !child.isNull(); child = child.nextSiblingElement()) {
            document.spectra.append(spectrumOf(child));
        }
    }
    if (isCalled(section, "Results")) {
        for (QDomElement child = first; !child.isNull(); child = child.nextSiblingElement()) {
            document.properties.append({child.tagName(), child.attribute(QStringLiteral("value"))});
        }
    }
    if (isCalled(section, "Cherenkov_Decay_Correction")) {
        document.isotope = section.attribute(QStringLiteral("IsotopeName"));
        document.halfLifeMinutes = section.attribute(QStringLiteral("HalfLife"));
        document.decayCorrected =
            section.attribute(QStringLiteral("IsDecayCorrectionApplied")) == QLatin1String("true");
    }
}

} // namespace

QString SavedDocument::property(const QString& strKey) const
{
    for (const auto& property : properties) {
        if (property.first == strKey) {
            return property.second;
        }
    }
    return QString();
}

QStringList SavedDocument::names() const
{
    QStringList list;
    for (const Spectrum& spectrum : spectra) {
        list.append(spectrum.name);
    }
    return list;
}

SavedDocument readSavedDocument(const QString& strPath)
{
    SavedDocument document;
    document.path = strPath;
    if (strPath.isEmpty()) {
        document.error = QStringLiteral("the list names no file");
        return document;
    }
    if (!QFileInfo::exists(strPath) && !QFileInfo(strPath).isSymLink()) {
        document.error = QStringLiteral("the file is missing");
        return document;
    }
    QDomDocument dom;
    if (!documentText::readFile(strPath, &dom, &document.error)) {
        return document;
    }
    const QDomElement root = dom.documentElement();
    const double version = root.attribute(QStringLiteral("Version")).toDouble();
    if (!(version >= oldestVersion)) {
        document.error = QStringLiteral("this is no saved result (a version of %1 at least)").arg(oldestVersion);
        return document;
    }
    document.date = root.attribute(QStringLiteral("Date.Time"));
    document.version = root.attribute(QStringLiteral("Version"));
    document.note = root.attribute(QStringLiteral("Note"));
    for (QDomElement section = root.firstChildElement(); !section.isNull(); section = section.nextSiblingElement()) {
        readSection(section, document);
    }
    return document;
}
