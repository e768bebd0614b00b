// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "spectra/KeyPair.h"
#include "spectra/SpectrumPoint.h"
#include "spectra/SpectrumSettings.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QWeakPointer>

class QDomDocument;
class QDomElement;
class SpumKyvoSpectrumCtrl;

// The record of one spectrum: its settings and its values over the band list. It lives with or without a row of the
// list on screen; when a row is attached, the two are kept in step by the operations that say so, and by nothing else.
// Copies share nothing but the weak pointer to the row.
//
// A pair matches a point when the texts `first` and `second`, in lower case and joined by ",", are equal. Where points
// are duplicates in that sense the last one counts.
class SpectrumPlotParams
{
public:
    SpectrumPlotParams() = default;
    SpectrumPlotParams(const SpectrumPlotParams&) = default;
    SpectrumPlotParams& operator=(const SpectrumPlotParams&) = default;
    virtual ~SpectrumPlotParams() = default;

    int axis = 0; // 0 emission, 1 excitation, 2 time
    SpectrumSettings settings;
    QVector<SpectrumPoint> points;
    QString origin; // where the spectrum came from
    QWeakPointer<SpumKyvoSpectrumCtrl> control;

    // The points' places along the axis, one a point: `first` if `axis` is 1, else `second`, as a number; 0 for a text
    // that is none.
    XTNT::Vector<double> axisValues() const;
    // The points' values.
    XTNT::Vector<double> values() const;
    // Writes the values in order. False, with nothing changed, when the length differs from that of `points`. With a
    // row attached and any points, enables the row's select box and name edit.
    bool setValues(const XTNT::Vector<double>& newValues);
    // One point per pair, of value 0, in place of what was there.
    void setPairs(const QList<KeyPair>& pairs);
    // True if there are points and the Euclidean norm of the values is above 0 (so not if one of them is NaN).
    bool hasData() const;

    // Keeps a weak pointer to `row` (null detaches). A live row is enabled by hasData() or `force`, then shows the
    // settings; these come last, so the name edit ends as `settings.enabled` has it.
    void attachControl(const QWeakPointer<SpumKyvoSpectrumCtrl>& row, bool force);
    // With a live row, takes all settings from it. Returns the settings.
    const SpectrumSettings& readControl();
    // Stores the settings. A live row shows them; its select box and name edit are then enabled by hasData().
    void applySettings(const SpectrumSettings& newSettings);

    // The values that belong to `pairs`, in their order; an empty vector if any pair has no match.
    XTNT::Vector<double> valuesAt(const QList<KeyPair>& pairs) const;
    // True if every pair has a match; so too for an empty list.
    bool coversPairs(const QList<KeyPair>& pairs) const;

    // Index (from 1), name, origin and wavelength pairs, one line each.
    QStringList toolTipLines() const;

    // Appends an element "Component%1" to `out`, an element of `doc`. Values are written with 16 significant digits, in
    // the C locale whatever the process is set to. `curveId`, `curveFlag` and `enabled` are not written.
    void writeXml(QDomElement& out, QDomDocument& doc) const;
    // Reads what writeXml() made from the element "Component%1" itself. False if the tag does not say "Component" (in
    // any case) and an integer, or the version is not 1.0; the members are then left as they were. Attributes that are
    // missing count as empty, and as 0.
    bool readXml(const QDomElement& in);
};
