// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/resultElements.h"

#include "storage/hexText.h"

#include "spectra/SpectrumPlotParams.h"

#include <QDomDocument>

#include <algorithm>
#include <cstdint>

namespace {

constexpr double maskVersion = 1.0;

void setWhole(QDomElement& element, const char* pName, qlonglong nValue)
{
    element.setAttribute(QLatin1String(pName), nValue);
}

void setNumber(QDomElement& element, const char* pName, double dValue)
{
    element.setAttribute(QLatin1String(pName), resultElements::numberText(dValue));
}

int wholeOf(const QDomElement& element, const char* pName)
{
    return element.attribute(QLatin1String(pName)).toInt();
}

double limitOf(const QDomElement& element, const char* pName, double dMissing)
{
    const QString strName = QLatin1String(pName);
    return element.hasAttribute(strName) ? element.attribute(strName).toDouble() : dMissing;
}

bool isElementName(const QString& strName)
{
    if (strName.isEmpty() || !(strName.at(0).isLetter() || QLatin1String("_:").contains(strName.at(0)))) {
        return false;
    }
    return std::all_of(strName.cbegin(), strName.cend(),
                       [](QChar c) { return c.isLetterOrNumber() || QLatin1String("_-.:").contains(c); });
}

QString withoutBlanks(QString strText)
{
    return strText.remove(QLatin1Char(' '));
}

} // namespace

namespace resultElements {

QString numberText(double dValue)
{
    constexpr int significantDigits = 16;
    return QString::number(dValue, 'g', significantDigits);
}

QDomElement appendElement(QDomElement& parent, const QString& strName)
{
    return parent.appendChild(parent.ownerDocument().createElement(strName)).toElement();
}

QList<KeyPair> pairsOfResult(const QList<KeyPair>& selected, const QList<SpectrumPlotParams*>& spectra)
{
    if (spectra.isEmpty()) {
        return {};
    }
    const QVector<SpectrumPoint>& points = spectra.first()->points;
    if (selected.size() == points.size()) {
        return selected;
    }
    QList<KeyPair> pairs;
    for (const SpectrumPoint& point : points) {
        pairs.append(KeyPair{point.first, point.second});
    }
    return pairs;
}

void appendPairs(QDomElement& root, const QList<KeyPair>& pairs)
{
    QDomElement list = appendElement(root, "SelectedKeyPairs");
    for (const KeyPair& pair : pairs) {
        QDomElement element = appendElement(list, "KeyPair");
        element.setAttribute("Col", pair.first);
        element.setAttribute("Row", pair.second);
    }
}

QList<KeyPair> readPairs(const QDomElement& element, const QString& strFirst, const QString& strSecond)
{
    QList<KeyPair> pairs;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        pairs.append(KeyPair{e.attribute(strFirst), e.attribute(strSecond)});
    }
    return pairs;
}

void appendMask(QDomElement& root, const MaskRecord& mask, const std::vector<int>& indices)
{
    QDomElement element = appendElement(root, "DataMask");
    setNumber(element, "Version", maskVersion);
    setWhole(element, "ImageBinning", mask.binning);
    setWhole(element, "ImageWidth", mask.width);
    setWhole(element, "ImageHeight", mask.height);
    setWhole(element, "UseMask", mask.useMask ? 1 : 0);
    if (mask.useMask) {
        setWhole(element, "Pixels", static_cast<qlonglong>(indices.size()));
        const std::vector<std::uint32_t> values(indices.begin(), indices.end());
        appendElement(element, "Index").setAttribute("Text.Data", hexText::fromIndices(values));
    }
}

MaskRecord readMask(const QDomElement& element)
{
    MaskRecord mask;
    mask.binning = wholeOf(element, "ImageBinning");
    mask.width = wholeOf(element, "ImageWidth");
    mask.height = wholeOf(element, "ImageHeight");
    mask.useMask = wholeOf(element, "UseMask") != 0;
    return mask;
}

bool readPixels(const QDomElement& element, const QString& strCountName, std::vector<int>* pIndices, long long* pCount)
{
    const QString strText = element.firstChildElement().attribute("Text.Data");
    *pCount = element.attribute(strCountName).toLongLong();
    if (!hexText::isIndexCount(*pCount, strText)) {
        return false;
    }
    const std::vector<std::uint32_t> values = hexText::toIndices(strText, static_cast<std::size_t>(*pCount));
    pIndices->resize(values.size());
    std::transform(values.begin(), values.end(), pIndices->begin(),
                   [](std::uint32_t n) { return static_cast<int>(n); });
    return true;
}

void appendProperties(QDomElement& root, const QList<QPair<QString, QString>>& properties)
{
    QDomElement list = appendElement(root, "Results");
    for (const QPair<QString, QString>& property : properties) {
        appendElement(list, property.first).setAttribute("value", property.second);
    }
}

QList<QPair<QString, QString>> readProperties(const QDomElement& element)
{
    QList<QPair<QString, QString>> properties;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        properties.append({e.tagName(), e.attribute("value")});
    }
    return properties;
}

QStringList appendRegions(QDomElement& root, const QList<RoiRecord>& records)
{
    QStringList leftOut;
    QDomElement list = appendElement(root, "ROIData");
    for (const RoiRecord& record : records) {
        for (int i = 0; i < record.keys.size(); ++i) {
            const QString strName = withoutBlanks(record.keys.at(i));
            if (!isElementName(strName)) {
                leftOut.append(record.keys.at(i));
                continue;
            }
            QDomElement element = appendElement(list, strName);
            element.setAttribute("ConcentrationMap", record.concentrationMap);
            element.setAttribute("value", record.values.value(i));
        }
    }
    return leftOut;
}

QList<RoiRecord> readRegions(const QDomElement& element)
{
    QList<RoiRecord> records;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        RoiRecord record;
        record.keys.append(e.tagName());
        record.values.append(e.attribute("value"));
        record.concentrationMap = e.attribute("ConcentrationMap");
        records.append(record);
    }
    return records;
}

void appendDisplay(QDomElement& root, const DisplayRecord& display)
{
    QDomElement element = appendElement(root, "ImageControl");
    setWhole(element, "ColorMap", display.colorMap);
    setWhole(element, "Reverse", display.reverse ? 1 : 0);
    setWhole(element, "Logscale", display.logScale ? 1 : 0);
    for (const ScaleRatio& ratio : display.ratios) {
        QDomElement child = appendElement(element, "MinMaxRatio");
        setNumber(child, "MinRatio", ratio.MinRatio);
        setNumber(child, "MaxRatio", ratio.MaxRatio);
    }
}

DisplayRecord readDisplay(const QDomElement& element)
{
    DisplayRecord display;
    display.colorMap = wholeOf(element, "ColorMap");
    display.reverse = wholeOf(element, "Reverse") != 0;
    display.logScale = wholeOf(element, "Logscale") != 0;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        ScaleRatio ratio;
        ratio.MinRatio = limitOf(e, "MinRatio", ratio.MinRatio);
        ratio.MaxRatio = limitOf(e, "MaxRatio", ratio.MaxRatio);
        display.ratios.append(ratio);
    }
    return display;
}

void appendDecay(QDomElement& root, const DecayRecord& decay)
{
    QDomElement element = appendElement(root, "Cherenkov_Decay_Correction");
    element.setAttribute("IsotopeName", decay.isotope);
    element.setAttribute("HalfLife", static_cast<float>(decay.halfLifeMinutes));
    element.setAttribute("IsDecayCorrectionApplied", decay.applied ? QStringLiteral("true") : QStringLiteral("false"));
}

DecayRecord readDecay(const QDomElement& element)
{
    DecayRecord decay;
    decay.isotope = element.attribute("IsotopeName");
    decay.halfLifeMinutes = element.attribute("HalfLife").toDouble();
    decay.applied = element.attribute("IsDecayCorrectionApplied") == QLatin1String("true");
    return decay;
}

} // namespace resultElements
