// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpectrumPlotParams.h"

#include "spectra/SpumKyvoSpectrumCtrl.h"

#include <QDomDocument>
#include <QDomElement>
#include <QHash>
#include <QSharedPointer>

#include <cmath>

namespace {

constexpr int axisExcitation = 1;
constexpr int axisTime = 2;
constexpr double xmlVersion = 1.0;

QString matchText(const QString& first, const QString& second)
{
    return first.toLower() + QLatin1Char(',') + second.toLower();
}

// Where each pair stands among the points. Inserting in order lets the last of duplicates stay.
QHash<QString, int> indexByPair(const QVector<SpectrumPoint>& points)
{
    QHash<QString, int> index;
    index.reserve(points.size());
    for (int i = 0; i < points.size(); ++i) {
        index.insert(matchText(points.at(i).first, points.at(i).second), i);
    }
    return index;
}

// The text that QDomElement::setAttribute(QString, double) makes, but for its decimal point: that one follows the
// locale of the C library.
QString doubleText(double value)
{
    return QString::number(value, 'g', 16);
}

QString axisText(int axis)
{
    if (axis == axisExcitation) {
        return QStringLiteral("Excitation");
    }
    return axis == axisTime ? QStringLiteral("Time") : QStringLiteral("Emission");
}

int axisFromText(const QString& text)
{
    if (text.compare(QLatin1String("Excitation"), Qt::CaseInsensitive) == 0) {
        return axisExcitation;
    }
    return text.compare(QLatin1String("Time"), Qt::CaseInsensitive) == 0 ? axisTime : 0;
}

bool isSpectrumElement(const QDomElement& element)
{
    return element.tagName().compare(QLatin1String("Spectrum"), Qt::CaseInsensitive) == 0;
}

QVector<SpectrumPoint> readPoints(const QDomElement& in)
{
    QVector<SpectrumPoint> read;
    int count = 0;
    for (QDomElement e = in.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        count += isSpectrumElement(e) ? 1 : 0;
    }
    read.reserve(count);
    for (QDomElement e = in.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        if (isSpectrumElement(e)) {
            read.append({e.attribute(QStringLiteral("Col")), e.attribute(QStringLiteral("Row")),
                         e.attribute(QStringLiteral("Data")).toDouble()});
        }
    }
    return read;
}

} // namespace

XTNT::Vector<double> SpectrumPlotParams::axisValues() const
{
    XTNT::Vector<double> result(points.size());
    for (int i = 0; i < points.size(); ++i) {
        const SpectrumPoint& point = points.at(i);
        result[i] = (axis == axisExcitation ? point.first : point.second).toDouble();
    }
    return result;
}

XTNT::Vector<double> SpectrumPlotParams::values() const
{
    XTNT::Vector<double> result(points.size());
    for (int i = 0; i < points.size(); ++i) {
        result[i] = points.at(i).value;
    }
    return result;
}

bool SpectrumPlotParams::setValues(const XTNT::Vector<double>& newValues)
{
    if (newValues.size() != points.size()) {
        return false;
    }
    for (int i = 0; i < points.size(); ++i) {
        points[i].value = newValues[i];
    }
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = control.toStrongRef();
    if (row && !points.isEmpty()) {
        row->setControlsEnabled(true, false);
    }
    return true;
}

void SpectrumPlotParams::setPairs(const QList<KeyPair>& pairs)
{
    points.clear();
    points.reserve(pairs.size());
    for (const KeyPair& pair : pairs) {
        points.append({pair.first, pair.second, 0.0});
    }
}

bool SpectrumPlotParams::hasData() const
{
    // The norm is above 0 exactly when a value differs from 0 and none is NaN; taken so, nothing underflows.
    bool bNonZero = false;
    for (const SpectrumPoint& point : points) {
        if (std::isnan(point.value)) {
            return false;
        }
        bNonZero = bNonZero || point.value != 0.0;
    }
    return bNonZero;
}

void SpectrumPlotParams::attachControl(const QWeakPointer<SpumKyvoSpectrumCtrl>& row, bool force)
{
    control = row;
    if (const QSharedPointer<SpumKyvoSpectrumCtrl> live = control.toStrongRef()) {
        live->setControlsEnabled(hasData(), force);
        live->setSettings(settings);
    }
}

const SpectrumSettings& SpectrumPlotParams::readControl()
{
    if (const QSharedPointer<SpumKyvoSpectrumCtrl> live = control.toStrongRef()) {
        settings = live->settings();
    }
    return settings;
}

void SpectrumPlotParams::applySettings(const SpectrumSettings& newSettings)
{
    settings = newSettings;
    if (const QSharedPointer<SpumKyvoSpectrumCtrl> live = control.toStrongRef()) {
        live->setSettings(settings);
        live->setControlsEnabled(hasData(), false);
    }
}

XTNT::Vector<double> SpectrumPlotParams::valuesAt(const QList<KeyPair>& pairs) const
{
    const QHash<QString, int> index = indexByPair(points);
    XTNT::Vector<double> result(pairs.size());
    for (int i = 0; i < pairs.size(); ++i) {
        const auto found = index.constFind(matchText(pairs.at(i).first, pairs.at(i).second));
        if (found == index.constEnd()) {
            return XTNT::Vector<double>();
        }
        result[i] = points.at(*found).value;
    }
    return result;
}

bool SpectrumPlotParams::coversPairs(const QList<KeyPair>& pairs) const
{
    const QHash<QString, int> index = indexByPair(points);
    for (const KeyPair& pair : pairs) {
        if (!index.contains(matchText(pair.first, pair.second))) {
            return false;
        }
    }
    return true;
}

QStringList SpectrumPlotParams::toolTipLines() const
{
    QString pairs = QStringLiteral("WavelengthPairs: ");
    for (const SpectrumPoint& point : points) {
        pairs += matchText(point.first, point.second) + QLatin1Char(';');
    }
    return {QStringLiteral("Index: %1").arg(settings.index + 1), QStringLiteral("Name: %1").arg(settings.name),
            QStringLiteral("Origin: %1").arg(origin), pairs};
}

void SpectrumPlotParams::writeXml(QDomElement& out, QDomDocument& doc) const
{
    QDomElement component = doc.createElement(QStringLiteral("Component%1").arg(settings.index));
    component.setAttribute(QStringLiteral("Version"), doubleText(xmlVersion));
    component.setAttribute(QStringLiteral("Selected"), settings.selected ? 1 : 0);
    component.setAttribute(QStringLiteral("Name"), settings.name);
    component.setAttribute(QStringLiteral("Color"), settings.color);
    component.setAttribute(QStringLiteral("Shape"), settings.shape);
    component.setAttribute(QStringLiteral("Axis"), axisText(axis));
    component.setAttribute(QStringLiteral("Origin"), origin);
    for (const SpectrumPoint& point : points) {
        QDomElement element = doc.createElement(QStringLiteral("Spectrum"));
        element.setAttribute(QStringLiteral("Col"), point.first);
        element.setAttribute(QStringLiteral("Row"), point.second);
        element.setAttribute(QStringLiteral("Data"), doubleText(point.value));
        component.appendChild(element);
    }
    out.appendChild(component);
}

bool SpectrumPlotParams::readXml(const QDomElement& in)
{
    const QString tagStart = QStringLiteral("Component");
    const QString tag = in.tagName();
    const int at = tag.indexOf(tagStart, 0, Qt::CaseInsensitive);
    if (at < 0) {
        return false;
    }
    if (in.attribute(QStringLiteral("Version")).toDouble() != xmlVersion) {
        return false;
    }
    bool bNumber = false;
    const int index = tag.mid(at + tagStart.size()).toInt(&bNumber);
    if (!bNumber) {
        return false;
    }
    settings.index = index;
    settings.selected = in.attribute(QStringLiteral("Selected")).toInt() != 0;
    settings.name = in.attribute(QStringLiteral("Name"));
    settings.color = in.attribute(QStringLiteral("Color"));
    settings.shape = in.attribute(QStringLiteral("Shape")).toInt();
    axis = axisFromText(in.attribute(QStringLiteral("Axis")));
    origin = in.attribute(QStringLiteral("Origin"));
    points = readPoints(in);
    return true;
}
