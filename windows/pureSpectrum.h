// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "spectra/SpectrumPlotParams.h"

#include <QList>
#include <QString>
#include <QStringList>

// Arithmetic of spectra: what is left of a mixed spectrum when amounts of known spectra are taken off it.

struct PureSpectrumTask
{
    XTNT::Vector<double> mixed;        // A
    QList<XTNT::Vector<double>> known; // B, as many bands each
    bool autoScale = true;             // amounts that take off as much as they can; else 1 of each
    double tolerance = 0.0;            // how far the rest may fall below 0, as a fraction of A's largest value
    bool fitOffset = false;            // the rest's smallest value is taken off as well
};

// The last rest that could be computed: C = A - sum of amount * B, negative values set to 0.
class PureSpectrum
{
public:
    // XTNT::simplexFit finds the amounts. False when the task has no solution, or its spectra differ in length:
    // amounts, rest and equation are then those of the task before; an offset is taken off as this task says.
    bool compute(const PureSpectrumTask& task);
    // As if nothing had been computed.
    void reset();

    const XTNT::Vector<double>& amounts() const { return m_amounts; }
    // C, without its offset if that was asked for. Empty before the first task.
    const XTNT::Vector<double>& values() const { return m_values; }
    const QString& equation() const { return m_strEquation; }
    // Whether anything is left. The offset does not count: of a constant rest nothing remains, and it may be kept.
    bool isLeft() const;

private:
    XTNT::Vector<double> m_amounts;
    XTNT::Vector<double> m_rest;
    XTNT::Vector<double> m_values;
    QString m_strEquation;
};

// "A-0.5*B", with several amounts "A-0.5*B1-0.25*B2". Two significant digits.
QString pureSpectrumEquation(const XTNT::Vector<double>& amounts);

// The tolerance that a slider from 0 to nMaximum stands for: 0.1 at its end.
double errorTolerance(int nValue, int nMaximum);

// The entry of a list for a row of the console (from 0), and the row that an entry names; -1 for none.
QString rowText(int nRow, const QString& strName);
int rowOfText(const QString& strText);

// Where the result may be stored: each row by its number, and "New" as long as there are fewer than nine.
QStringList savePlaces(int nRows);

struct SaveSuggestion
{
    QString name;
    int colorPosition = 0; // among the twelve colours
};

// Name and colour that go with a place: those of its row, but for the last of nPlaces those of a new row. A colour that
// is none of the twelve counts as the first.
SaveSuggestion saveSuggestion(const QList<SpectrumPlotParams*>& spectra, int nPlace, int nPlaces);

// The first of the twelve colours, from nStart on, that no spectrum has; -1 when there is none.
int unusedColorPosition(const QList<SpectrumPlotParams*>& spectra, int nStart);

// Whether a button with this text applies, also one with a key marked in it.
bool isApplyText(QString strText);
