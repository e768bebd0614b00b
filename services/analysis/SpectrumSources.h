// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class OpenedSequence;
class SpectrumPlotParams;

// Spectra made for a library: taken from other files, from the database of sources, or measured in images, of one or
// of several sequences. Each operation adds to the list and throws Failure when it cannot; all spectra of a list have
// values at the same images, and spectra of different sources different names.
class SpectrumSources
{
public:
    SpectrumSources();
    ~SpectrumSources();
    SpectrumSources(const SpectrumSources&) = delete;
    SpectrumSources& operator=(const SpectrumSources&) = delete;

    // Which images of each sequence count from here on (as selectPairs() has it; empty: all), and in which unit regions
    // are measured (-1: the best that the images have).
    void setImages(const QString& strSelect, int nUnit);

    // A library as it is; a plain table of spectra at the images of the spectra that are there already.
    void fromLibrary(const QString& strFileOrName);
    // Either at the images of a sequence; of a library those that are not selected, too.
    void fromLibrary(const QString& strFileOrName, const QString& strSequence);
    // Sources of the database by name, "A,B": at each pair of the sequence the excitation curve at `first` times the
    // emission curve at `second`, maximum 1, without the influence of tissue. A source without an excitation curve
    // serves where all images have one excitation.
    void fromDatabase(const QString& strNames, const QString& strSequence);
    // Rectangles "NAME=X,Y,W,H" in pixels of the analysis, or "NAME=" and what analysedRegion() takes: the mean over
    // their pixels in each image, maximum 1. All that are measured for one list are in one unit.
    void fromRegions(const QStringList& regions, const QString& strSequence);

    // Throws (bad request) where a text is no such rectangle.
    static void checkRegion(const QString& strText);

    // Owned by this object.
    QList<SpectrumPlotParams*> spectra() const;
    // What is told of each source, once, without commas (a library's note ends at its first).
    QString note() const;

private:
    // Notes from which on the names of earlier sources are taken.
    void beginSource(const QString& strNote);
    SpectrumPlotParams& append(const QString& strName, const QString& strOrigin);
    void take(std::unique_ptr<SpectrumPlotParams> pSpectrum);
    void bringToImages(SpectrumPlotParams& spectrum) const;
    std::unique_ptr<OpenedSequence> open(const QString& strSequence) const;
    void takeUnit(int nUnit, const QString& strSequence);

    std::vector<std::unique_ptr<SpectrumPlotParams>> m_spectra;
    QSet<QString> m_names; // of earlier sources
    QStringList m_notes;
    QString m_strSelect;
    int m_nUnit = -1;
    int m_nMeasuredUnit = -1;
    QString m_strMeasured; // the first sequence that was measured
};
