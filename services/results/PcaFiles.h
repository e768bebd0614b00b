// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "services/results/ComponentNumber.h"
#include "windows/explainedVariance.h"

#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QStringList>

class CORVSpumKyvo;
class SpectrumPlot;

// What a principal component analysis came to: the table of explained variance, the suggestion, and the scree plot.
class PcaFiles
{
public:
    // After a run: its cube tells how many components stand above the noise.
    PcaFiles(const CORVSpumKyvo& engine, const XTNT::Vector<double>& eigenvalues);

    // False when the eigenvalues explain nothing: none above 0, or no numbers.
    bool isMeaningful() const { return !m_explained.isEmpty(); }
    QString text() const;
    QJsonObject json() const;
    // scree.png, scree.svg, pca.csv, mask.png where a part of the pixels was taken, and last pca.json, into a folder
    // (with its separator). Throws Failure.
    void write(const QString& strFolder);

private:
    QString tableCell(int i, bool bShare) const;
    SpectrumPlot screePlot() const;
    void put(const QString& strPath, const QByteArray& bytes);

    const CORVSpumKyvo& m_engine;
    const QSize m_extent; // of the images
    XTNT::Vector<double> m_eigenvalues;
    ExplainedVariance m_explained;
    ComponentNumber m_above;
    QStringList m_files;
};
