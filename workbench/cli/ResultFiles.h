// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AutomaticRunFacts.h"
#include "workbench/cli/TruthComparison.h"

#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class CORVSpumKyvo;

// The numbers of a result beside its maps.
struct ResultNumbers
{
    std::vector<double> shares;
    double residual = 0.0; // relative, against the data of the cube
    std::vector<TrueComparison> truth;
    double seconds = 0.0; // of the run
    bool automatic = false;
    AutomaticRunFacts facts; // of an automatic run
};

// Writes a result's files into a folder: per component (and scan spot) a map as float32 TIFF and as a picture over the
// photograph, spectra as a library file and as a plot, the mask, the properties, the summary.
class ResultFiles
{
public:
    // `strFolder` ends with its separator.
    ResultFiles(const CORVSpumKyvo& engine, const ResultNumbers& numbers, const QString& strFolder);

    // Calls `step(fraction)` between files, which may throw to stop. Throws CliFailure when a file cannot be written.
    void write(const std::function<void(double fraction)>& step);

    // The table of the summary as text and the same as JSON, with the names of the files.
    QString summaryText() const;
    QJsonObject summaryJson() const;

    // Name of a component as part of a file name: letters, digits, dot and dash stay, blanks become "_", the rest goes.
    static QString fileNameOf(const QString& strLabel);

private:
    void writeMap(int nComponent, int nSpot);
    void writeOverview();
    void writeSpectra();
    void writePlot();
    void writeMask();
    void writeProperties();
    void writeSummary();
    QJsonObject componentJson(int nComponent) const;
    void addRunFacts(QJsonObject& json) const;
    QString tableText() const;
    QString mapName(int nComponent, int nSpot) const;
    void put(const QString& strName, const QByteArray& bytes);

    const CORVSpumKyvo& m_engine;
    const ResultNumbers& m_numbers;
    QString m_strFolder;
    QStringList m_files;
    QList<QImage> m_pictures; // of the overview
};
