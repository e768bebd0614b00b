// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

// A source's spectrum: n wavelengths in nm, ascending, with an intensity each.
struct sSourceSpecFileParameters
{
    int n = 0;
    QVector<double> wavelength;
    QVector<double> intensity;
};

// A tissue's optical properties at n wavelengths in nm, ascending; absorption and reduced scattering in 1/cm.
struct sTissuePropFileParameters
{
    int n = 0;
    QVector<double> wavelength;
    QVector<double> absorption;
    QVector<double> scattering;
};

// The response of a colour sensor at n wavelengths in nm, ascending; channels 0 to 1.
struct sColorSensorRGBspecFileParameters
{
    int n = 0;
    QVector<double> wavelength;
    QVector<double> red;
    QVector<double> green;
    QVector<double> blue;
};

// A probe: its name without suffix, what it is ("fluorophore", ...), which spectra there are, and other names in use.
struct sProbeParameters
{
    QString name;
    QString kind;
    bool hasEmission = false;
    bool hasExcitation = false;
    QStringList aliases;
};

// The host's read-only database of sources, tissues, sensors and isotopes: CSV tables installed with the program, to
// which tables of the same form in the user's data folder add (a user's entry of the same name wins). Read once, on
// first use, from any thread.
class CORVDatabase
{
public:
    // Names of luminescent sources, each once and without a suffix; of fluorescent library sources, with their suffix
    // "Em" or "Ex"; and of radioactive sources, which have none. Sorted by insensitiveLessThan, but for "Undefined",
    // the isotope whose half life the user states, which stands first among the radioactive ones and has no curve.
    static QStringList getSourceList();
    static QStringList getLIBSourceList();
    static QStringList getRADSourceList();

    // A source (with its suffix, if it has one), tissue or sensor by its exact name; false when it is absent, the
    // record is then empty. A null record only asks.
    static bool readSource(const QString& strName, sSourceSpecFileParameters* pSource);
    static bool readLIBSource(const QString& strName, sSourceSpecFileParameters* pSource);
    static bool readRADSource(const QString& strName, sSourceSpecFileParameters* pSource);
    static bool readOpticalProperty(const QString& strTissue, sTissuePropFileParameters* pTissue);
    static bool readColorResponse(const QString& strSensor, sColorSensorRGBspecFileParameters* pResponse);

    // Half life in seconds by the isotope's name, without regard to case; 0 for "Undefined" and for an unknown name.
    static double getCherenkovRADHalflife(const QString& strIsotope);
    // Every isotope that the database knows, "Undefined" first.
    static QStringList isotopeList();
    // Whether the isotope's decay gives Cherenkov light; by name without regard to case. *pName (may be null) receives
    // the name as the database spells it.
    static bool isCherenkovIsotope(const QString& strIsotope, QString* pName = nullptr);

    // Every probe in file order, and one by its name or another name in use, without regard to case; false when
    // unknown.
    static QList<sProbeParameters> probeList();
    static bool findProbe(const QString& strName, sProbeParameters* pProbe);

    static bool insensitiveLessThan(const QString& strA, const QString& strB);

    // What was wrong in the tables, a line each with file and place; the rest of a table still serves.
    static QStringList problems();
    // Forgets all tables; the next call reads them anew. Not while another thread may ask.
    static void reload();
};
