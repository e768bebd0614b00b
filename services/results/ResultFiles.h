// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/PictureStyle.h"
#include "services/pictures/ResultComposite.h"
#include "services/results/Provenance.h"
#include "services/results/ResultFacts.h"
#include "services/results/ResultNumbers.h"
#include "services/results/ResultReport.h"

#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class CILImage;
class CORVSpumKyvo;
class MapsPdf;
class ResultMapPictures;

// Writes a result's files into a folder: per component (and scan spot) a map as float32 TIFF and as a picture over the
// photograph, where there are standard errors a map of them, what the components leave as a map and by image,
// composites where the engine has made its pictures, spectra as a library file and as a plot, the mask, the properties,
// a report, the summary.
class ResultFiles
{
public:
    // `strFolder` ends with its separator.
    ResultFiles(const CORVSpumKyvo& engine, const ResultNumbers& numbers, const QString& strFolder);
    ResultFiles(const ResultFiles&) = delete;
    ResultFiles& operator=(const ResultFiles&) = delete;
    ~ResultFiles();

    // The name of the folder that the files will be in, as which the tables tell the run.
    void setRun(const QString& strRun) { m_facts.run = strRun; }

    // What the summary tells of the result's origin; it is finished as the summary is written.
    void setProvenance(const Provenance& provenance) { m_provenance = provenance; }

    // A report (report.html, with `bPdf` report.pdf and maps.pdf too) is written with the other files. Its maps are
    // those of the result.
    void setReport(const ReportFrame& frame, bool bPdf);

    // How pictures look; without it as the engine shows its result.
    void setStyle(const PictureStyle& style);

    // Composites as a window shows them, instead of those that come of the engine's own view.
    void setComposites(const QList<CompositeFile>& composites) { m_composites = composites; }

    // Calls `step(fraction)` between files, which may throw to stop, and passes cancellation points. Throws Failure
    // when a file cannot be written.
    void write(const std::function<void(double fraction)>& step);

    // The table of the summary as text and the same as JSON, with the names of the files.
    QString summaryText() const;
    QJsonObject summaryJson() const;

private:
    void writeMap(ResultMapPictures& pictures, int nComponent, int nSpot);
    void writeAllMaps();
    void writeMapTiff(const QString& strName, const CILImage& map, const QString& strDescription);
    void writeOverview();
    void writeComposites();
    void writeSpectra();
    void writePlot();
    void writeRest(const ResultMapPictures& pictures);
    void writeMask();
    void writeProperties();
    void writeReport();
    void writePdf();
    void writeSummary();
    QJsonObject jsonOf(const QStringList& files) const;
    void put(const QString& strName, const QByteArray& bytes);

    const CORVSpumKyvo& m_engine;
    ResultFacts m_facts;
    const XTNT::Matrix<double> m_errors;
    PictureStyle m_style;
    QString m_strFolder;
    std::optional<Provenance> m_provenance;
    QStringList m_files;
    QStringList m_errorMaps;  // among them
    QList<QImage> m_pictures; // of the overview
    std::optional<QList<CompositeFile>> m_composites;
    bool m_bReport = false;
    bool m_bPdf = false;
    ReportFrame m_frame;
    std::unique_ptr<MapsPdf> m_pMapsPdf; // while the maps are written
};
