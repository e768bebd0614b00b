// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/exportClickInfo.h"

#include "host/CILImage.h"
#include "host/CPLClickInfo.h"

#include <QList>
#include <QPair>
#include <QStringList>

namespace {

constexpr const char* keyClickNumber = "ClickNumber";
constexpr const char* keyFolder = "Folder On Disk";
constexpr const char* keyVersion = "Orvia Version";
constexpr const char* keyWaveNote = "Igor Wave Note";
constexpr const char* keySequence = "Sequence ID";
constexpr const char* keyIndex = "ClickNumber Index";
constexpr const char* keySpotX = "FL x-spot";
constexpr const char* keySpotY = "FL y-spot";

QString flag(bool bSet)
{
    return bSet ? QStringLiteral("1") : QStringLiteral("0");
}

// Empty when there is no such section or entry.
QString valueOf(const CPLSection* pSection, const QString& strKey)
{
    QString strValue;
    if (pSection != nullptr) {
        pSection->getValue(strKey, &strValue);
    }
    return strValue;
}

// One click info on its way from a source.
class Maker
{
public:
    Maker(const CPLClickInfo& source, const CILImage& map, const ExportClickFacts& facts)
        : m_source(source), m_map(map), m_facts(facts)
    {
    }

    CPLSection clickNumber() const;
    // The source's section with its entries.
    CPLSection copied(const QString& strKey) const { return taken(strKey, QStringList()); }
    CPLSection luminescentImage() const;
    CPLSection photographicImage() const;
    CPLSection graphControls() const;

private:
    // A section with key and name of the source's and, when the source is merged, all of its entries but those.
    CPLSection taken(const QString& strKey, const QStringList& left) const;
    bool hasSpot() const { return !m_facts.spotX.isEmpty() || !m_facts.spotY.isEmpty(); }
    // Wave note and what refers to the sequence, in the section of that key, from the source's.
    void setOrigin(const QString& strKey, CPLSection& section) const;
    QString waveNote(const QString& strSource) const;

    const CPLClickInfo& m_source;
    const CILImage& m_map;
    const ExportClickFacts& m_facts;
};

CPLSection Maker::taken(const QString& strKey, const QStringList& left) const
{
    CPLSection section(strKey);
    const CPLSection* pSource = m_source[strKey];
    if (pSource == nullptr) {
        return section;
    }
    QString strText;
    if (pSource->getSectionKey(&strText) == 0) {
        section.setSectionKey(strText);
    }
    if (pSource->getSectionName(&strText, false) == 0) {
        section.setSectionName(strText);
    }
    QStringList keys;
    QStringList values;
    pSource->getKeyList(&keys);
    pSource->getValueList(&values);
    for (int i = 0; m_facts.merge && i < keys.size(); ++i) {
        if (!left.contains(keys.at(i))) {
            section.addKeyValue(keys.at(i), values.at(i));
        }
    }
    return section;
}

CPLSection Maker::clickNumber() const
{
    QStringList left{keyVersion};
    if (!m_facts.keepInfo) {
        left << keyClickNumber << keyFolder;
    }
    CPLSection section = taken(keyClickNumber, left);
    section.addKeyValue(keyVersion, QStringLiteral("%1(%2)").arg(m_facts.version, m_facts.buildDate));
    if (!m_facts.keepInfo) {
        section.addKeyValue(keyFolder, QString());
    }
    return section;
}

// Pairs of the source's note that are not ours are kept.
QString Maker::waveNote(const QString& strSource) const
{
    QList<QPair<QString, QString>> pairs;
    const QStringList own{keyClickNumber, keySpotX, keySpotY};
    const QStringList parts = strSource.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString& strPart : parts) {
        const int nSign = strPart.indexOf(QLatin1Char('='));
        const QString strKey = strPart.left(nSign).trimmed();
        if (nSign > 0 && !own.contains(strKey)) {
            pairs.append({strKey, strPart.mid(nSign + 1)});
        }
    }
    pairs.append({keyClickNumber, QString::number(m_facts.clickNumber)});
    if (hasSpot()) {
        pairs.append({keySpotX, m_facts.spotX});
        pairs.append({keySpotY, m_facts.spotY});
    }
    QString strNote;
    for (const auto& pair : qAsConst(pairs)) {
        strNote += pair.first + QLatin1Char('=') + pair.second + QLatin1Char(';');
    }
    return strNote;
}

void Maker::setOrigin(const QString& strKey, CPLSection& section) const
{
    const CPLSection* pSource = m_source[strKey];
    for (const char* pEntry : {keySequence, keyIndex}) {
        section.setValue(pEntry, valueOf(pSource, pEntry) + QLatin1Char(';'));
    }
    section.setValue(keyWaveNote, waveNote(valueOf(pSource, keyWaveNote)));
}

CPLSection Maker::luminescentImage() const
{
    const QString strSection = QStringLiteral("luminescent image");
    CPLSection section = taken(strSection, QStringList());
    // Where and when the light was taken is the source's, merged or not.
    const CPLSection* pSource = m_source[strSection];
    for (const QString& strKey : {QStringLiteral("Binning Factor"), QStringLiteral("Acquisition Date")}) {
        if (pSource != nullptr && pSource->isKeyPresent(strKey)) {
            section.setValue(strKey, valueOf(pSource, strKey));
        }
    }
    section.setValue(QStringLiteral("Saturated"), QStringLiteral("0"));
    section.setValue(QStringLiteral("CCD Corrected"), QStringLiteral("1"));
    section.setValue(QStringLiteral("Background Corrected"), flag(m_facts.backgroundSubtracted));
    section.setValue(QStringLiteral("Flat Field Corrected"), flag(m_facts.flatFieldCorrected));
    section.setValue(QStringLiteral("FL Background Corrected"), flag(m_facts.fluorescentBackgroundSubtracted));
    section.setValue(QStringLiteral("Unmixed Concentration"), m_facts.label);
    section.setValue(QStringLiteral("Spectral Unmix Seq Dataset"), m_facts.sequenceId);
    // The pixels are calibrated already.
    section.setValue(QStringLiteral("Stored Unit"), m_facts.unit);
    if (hasSpot()) {
        section.setValue(keySpotX, m_facts.spotX);
        section.setValue(keySpotY, m_facts.spotY);
    }
    setOrigin(strSection, section);
    return section;
}

CPLSection Maker::photographicImage() const
{
    const QString strSection = QStringLiteral("photographic image");
    CPLSection section = taken(strSection, QStringList());
    setOrigin(strSection, section);
    return section;
}

CPLSection Maker::graphControls() const
{
    const auto fixed = [](double dValue) { return QString::number(dValue, 'f', 6); };
    CPLSection section = taken(QStringLiteral("Graph Controls"), QStringList());
    // Of these two there is nothing but what the source says; else the picture is shown as it is.
    int nBrightness = 0;
    double dGamma = 1.0;
    section.getValue(QStringLiteral("Brightness"), &nBrightness);
    section.getValue(QStringLiteral("Gamma"), &dGamma);
    section.setValue(QStringLiteral("Intensity Calibration"), QStringLiteral("Counts"));
    section.setValue(QStringLiteral("Reversed"), flag(m_facts.display.reversed));
    section.setValue(QStringLiteral("Color Table"), m_facts.display.colorTable);
    section.setValue(QStringLiteral("ColorTableIsLog"), flag(m_facts.display.logScale));
    section.setValue(QStringLiteral("Alpha Blend"), m_facts.display.opacity);
    section.setValue(QStringLiteral("Color Table Min"), fixed(m_map.getMin()));
    section.setValue(QStringLiteral("Color Table Max"), fixed(m_map.getMax()));
    section.setValue(QStringLiteral("Raw Color Table Min"), fixed(m_map.getMin()));
    section.setValue(QStringLiteral("Raw Color Table Max"), fixed(m_map.getMax()));
    section.setValue(QStringLiteral("Brightness"), nBrightness);
    section.setValue(QStringLiteral("Gamma"), fixed(dGamma));
    return section;
}

} // namespace

void exportClickInfo(const CPLClickInfo& source, const CILImage& map, const ExportClickFacts& facts, CPLClickInfo& out)
{
    const Maker maker(source, map, facts);
    for (const CPLSection& section :
         {maker.clickNumber(), maker.copied(QStringLiteral("User Input")),
          maker.copied(QStringLiteral("Analysis User Input")), maker.luminescentImage(),
          maker.copied(QStringLiteral("User Label Name Set")), maker.photographicImage(), maker.graphControls()}) {
        out.addSection(&section);
    }
}
