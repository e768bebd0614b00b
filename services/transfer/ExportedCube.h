// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/UnitLimit.h"
#include "services/session/OpenedSequence.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class CILImage;
class CORVDataset;
class JobMonitor;

// The calibrated images of a sequence on their way to other programs, all of one size, in one unit. Pixels are what the
// host gives, floats, negative ones included; what an import added to make squares of the images is left off.
class ExportedCube
{
public:
    // What is known of one image. Wavelengths are those of filters that name one.
    struct Image
    {
        QString click;
        // As an import reads it: "ex640_em700", "em700", "int2_t12.5s", "ex640_em700_spot x-0.45 y1.6".
        QString name;
        // The same with the filters of an image of a time that is alone. As a name without more it would hide the time.
        QString fullName;
        std::optional<double> excitation; // nm
        std::optional<double> emission;   // nm
        bool numbered = false;            // a channel without filters
        std::optional<double> wavelength; // nm, of a numbered channel
        std::optional<double> wavenumber; // 1/cm, of a numbered channel
        std::optional<double> time;       // s
        std::optional<double> exposure;   // s
        QString start;                    // of the exposure, UTC, "yyyy-MM-ddTHH:mm:ss.zzz"; empty when it is not known
    };

    // Opens the sequence and hands on its warnings. `strSelect` as --select, empty for all images; `nUnit` -1 for the
    // best that the images have. Throws Failure for a selection or a unit that cannot be had, and for images that
    // differ in size or binning.
    ExportedCube(const QString& strSequence, const QString& strSelect, int nUnit, JobMonitor& monitor);
    ExportedCube(const ExportedCube&) = delete;
    ExportedCube& operator=(const ExportedCube&) = delete;

    QString name();
    const QList<Image>& images() const { return m_images; }
    int count() const { return m_images.size(); }
    bool isTemporal() const { return m_bTemporal; }
    // Whether all images are numbered channels.
    bool isNumbered() const;
    long width() const { return m_lWidth; }
    long height() const { return m_lHeight; }
    int unit() const { return m_nUnit; }
    // The isotope that all images name; empty without.
    const QString& isotope() const { return m_strIsotope; }
    // Side of a pixel in the object, in micrometres, where all images tell the same.
    std::optional<double> pixelSize() const { return m_pixelSize; }

    // Fills `out` with image i. Throws Failure when it cannot be read; shows progress and stops when
    // the user interrupts.
    void read(int i, CILImage& out);
    // Shows how much of a file has been written, from 0 to 1, and stops when the user wants that.
    void showWriting(double dFraction);

private:
    QList<CORVDataset*> selected(const QString& strSelect);
    void describe(CORVDataset& dataset);
    void settleTimes();
    void checkSizes();
    void cropToExtent();
    void chooseUnit(int nUnit);

    JobMonitor& m_monitor;
    OpenedSequence m_opened;
    UnitLimit m_unitLimit;
    QList<Image> m_images;
    bool m_bTemporal = false;
    long m_lWidth = 0; // of what is exported
    long m_lHeight = 0;
    long m_lStoredWidth = 0;
    long m_lStoredHeight = 0;
    QString m_strIsotope;
    int m_nUnit = -1;
    std::optional<double> m_pixelSize;
};
