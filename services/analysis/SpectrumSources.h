// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class SpectrumPlotParams;

// Spectra made for a library: taken from another file, from the database of sources, or measured in images. Each
// operation adds to the list and throws Failure when it cannot.
class SpectrumSources
{
public:
    SpectrumSources();
    ~SpectrumSources();
    SpectrumSources(const SpectrumSources&) = delete;
    SpectrumSources& operator=(const SpectrumSources&) = delete;

    void fromLibrary(const QString& strFileOrName);
    // Sources of the database by name, "A,B": at each pair of the sequence the excitation curve at `first` times the
    // emission curve at `second`, maximum 1, without the influence of tissue. A source without an excitation curve
    // serves where all images have one excitation.
    void fromDatabase(const QString& strNames, const QString& strSequence);
    // Rectangles "NAME=X,Y,W,H" in pixels of the analysis: the mean over their pixels in each image, maximum 1, in the
    // best unit that the images have.
    void fromRegions(const QStringList& regions, const QString& strSequence);

    // Owned by this object.
    QList<SpectrumPlotParams*> spectra() const;
    const QString& note() const { return m_strNote; }

private:
    SpectrumPlotParams& append(const QString& strName, const QString& strOrigin);

    std::vector<std::unique_ptr<SpectrumPlotParams>> m_spectra;
    QString m_strNote;
};
