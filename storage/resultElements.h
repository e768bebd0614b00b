// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/RoiRecord.h"
#include "engine/ScaleRatio.h"
#include "spectra/KeyPair.h"

#include <QDomElement>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <vector>

class SpectrumPlotParams;

// The elements of a results document, apart from the spectra, which write and read themselves. Writers append to the
// root or to the element that is told; readers take the element itself. Numbers are in the C locale. A number that is
// missing or none reads as 0, a flag is set by any number but 0.
namespace resultElements {

// With 16 significant digits.
QString numberText(double dValue);

// Appends an element and gives it back.
QDomElement appendElement(QDomElement& parent, const QString& strName);

// --- images ----------------------------------------------------------------------------------------------------------

// The pairs that a result is told to be made of: none without spectra; the selected ones when there are as many as the
// first spectrum has points; otherwise the points' own, since the selection may have been changed after the run.
QList<KeyPair> pairsOfResult(const QList<KeyPair>& selected, const QList<SpectrumPlotParams*>& spectra);
void appendPairs(QDomElement& root, const QList<KeyPair>& pairs);
// One pair a child, whatever its name, from the two attributes named.
QList<KeyPair> readPairs(const QDomElement& element, const QString& strFirst, const QString& strSecond);

// --- mask ------------------------------------------------------------------------------------------------------------

struct MaskRecord
{
    int binning = 0;
    int width = 0;
    int height = 0;
    bool useMask = false;
};

// The indices, which must not be negative, are written only with useMask.
void appendMask(QDomElement& root, const MaskRecord& mask, const std::vector<int>& indices);
MaskRecord readMask(const QDomElement& element);
// As many pixel indices as the attribute says, from the first child's text. False, with the count told in *pCount, when
// a file cannot hold so many (hexText::isIndexCount); the indices are untouched then. Those of 2^31 and above come out
// negative.
bool readPixels(const QDomElement& element, const QString& strCountName, std::vector<int>* pIndices, long long* pCount);

// --- properties and regions ------------------------------------------------------------------------------------------

void appendProperties(QDomElement& root, const QList<QPair<QString, QString>>& properties);
QList<QPair<QString, QString>> readProperties(const QDomElement& element);

// One child a key, the blanks of the key removed. A key that is then no name of an element is left out, or the file
// could not be read any more; these are given back.
QStringList appendRegions(QDomElement& root, const QList<RoiRecord>& records);
// One record a child, of one key and one value.
QList<RoiRecord> readRegions(const QDomElement& element);

// --- display ---------------------------------------------------------------------------------------------------------

struct DisplayRecord
{
    int colorMap = 0;
    bool reverse = false;
    bool logScale = false;
    QList<ScaleRatio> ratios; // the third number of each is neither written nor read
};

void appendDisplay(QDomElement& root, const DisplayRecord& display);
// One ratio a child, whatever its name; a limit that is missing is that of a new ScaleRatio.
DisplayRecord readDisplay(const QDomElement& element);

// --- decay -----------------------------------------------------------------------------------------------------------

struct DecayRecord
{
    QString isotope;
    double halfLifeMinutes = 0.0;
    bool applied = false;
};

// The half life is written as a float.
void appendDecay(QDomElement& root, const DecayRecord& decay);
DecayRecord readDecay(const QDomElement& element);

} // namespace resultElements
