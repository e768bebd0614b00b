// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ResultReader.h"

#include "storage/resultElements.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVLog.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/logLine.h"

#include <QtAlgorithms>

bool ResultReader::read(const QDomElement& root)
{
    m_engine.m_roiResults.clear();
    m_engine.m_scaleRatios.clear();
    qDeleteAll(m_engine.m_spectrumPlots);
    m_engine.m_spectrumPlots.clear();

    m_nChild = 0;
    m_nChildren = 0;
    for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        ++m_nChildren;
    }
    for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement(), ++m_nChild) {
        if (!readChild(e)) {
            return false;
        }
    }
    return true;
}

bool ResultReader::readChild(const QDomElement& element) const
{
    const QString strName = element.tagName();
    for (const Entry& entry : m_entries) {
        if (strName.compare(entry.name, Qt::CaseInsensitive) == 0) {
            return entry.readElement(element);
        }
    }
    return true;
}

void ResultReader::addEntry(const QString& strName, const std::function<bool(const QDomElement&)>& readElement)
{
    m_entries.push_back({strName, readElement});
}

bool ResultReader::fail(const QString& strReason)
{
    logLine(strReason, CORVLOG_ERROR);
    return false;
}

bool ResultReader::readSequence(const QDomElement& element)
{
    return element.attribute("id").compare(m_engine.m_strSeqId, Qt::CaseInsensitive) == 0 ||
           fail("SpumKyvo: sequence id mismatch in the result file!");
}

bool ResultReader::readSelection(const QDomElement& element, const QString& strFirst, const QString& strSecond)
{
    QList<KeyPair> pairs = resultElements::readPairs(element, strFirst, strSecond);
    return m_engine.applySelection(pairs) ||
           fail("SpumKyvo: Cannot match the image selections in the result to current sequence.");
}

bool ResultReader::readPixels(const QDomElement& element, const QString& strCountName)
{
    long long nCount = 0;
    return resultElements::readPixels(element, strCountName, &m_engine.m_maskIndices, &nCount) ||
           fail(QStringLiteral("SpumKyvo: a mask of %1 pixels is not what the result file can hold!").arg(nCount));
}

bool ResultReader::readProperties(const QDomElement& element)
{
    m_engine.m_properties = resultElements::readProperties(element);
    return true;
}

bool ResultReader::readRegions(const QDomElement& element)
{
    m_engine.m_roiResults += resultElements::readRegions(element);
    return true;
}

bool ResultReader::readDisplay(const QDomElement& element)
{
    const resultElements::DisplayRecord display = resultElements::readDisplay(element);
    m_engine.m_nColorMap = display.colorMap;
    m_engine.m_bReverse = display.reverse;
    m_engine.m_bLogScale = display.logScale;
    m_engine.m_scaleRatios += display.ratios;
    return true;
}
