// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

class UnmixFolder;

// What is different between two folders with results of the same thing, file by file. Reports are not looked at, as
// they tell the time at which they were made; of a summary the times, places and the origin are not.
class ResultDifference
{
public:
    struct File
    {
        QString name;
        bool same = false;
        bool missing = false;  // in one of the folders
        double largest = -1.0; // of maps of one size: largest difference of a pixel, of the first map's largest value
    };

    // Throws Failure for a map that cannot be read.
    ResultDifference(const UnmixFolder& before, const UnmixFolder& after);

    bool isSame() const;
    const QList<File>& files() const { return m_files; }
    // "01_A.tif (largest difference 2e-07 of its maximum), spectra.csv"; empty where nothing differs.
    QString text() const;
    int sameCount() const;

private:
    QList<File> m_files;
};

// Inputs of a result that are not what they were: sentences such as "image 1/luminescent.TIF has changed". `strFolder`
// is the sequence's folder now. Reads every byte of them.
QStringList changedInputs(const QJsonObject& provenance, const QString& strFolder);
