// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ROISection.h"

#include "host/CPLSection.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvutils/NumberText.h"

#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace ROISection {

namespace {

constexpr int kShownText = 40;

// A number of the statistics and the end of its key.
struct NumberField
{
    const char* name;
    double tagROIStatistics::*member;
};

constexpr NumberField kNumbers[] = {
    {"Area cm2", &tagROIStatistics::area},   {"Sum", &tagROIStatistics::sum},
    {"Mean", &tagROIStatistics::mean},       {"Minimum", &tagROIStatistics::minimum},
    {"Maximum", &tagROIStatistics::maximum}, {"Standard Deviation", &tagROIStatistics::deviation},
};

struct KeyParts
{
    int number;
    QString field;
};

std::optional<KeyParts> partsOf(const QString& strKey)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*ROI\\s*([0-9]{1,6})\\s*([^0-9\\s].*)$"),
                                            QRegularExpression::CaseInsensitiveOption |
                                                QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = pattern.match(strKey);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return KeyParts{match.captured(1).toInt(), match.captured(2).trimmed()};
}

QString withoutBlanks(const QString& strText)
{
    QString text;
    std::copy_if(strText.begin(), strText.end(), std::back_inserter(text), [](QChar c) { return !c.isSpace(); });
    return text;
}

bool isField(const QString& strField, const char* pName)
{
    return withoutBlanks(strField).compare(withoutBlanks(QLatin1String(pName)), Qt::CaseInsensitive) == 0;
}

bool canEndAnElementName(const QString& strField)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z_][A-Za-z0-9_.-]*$"));
    return pattern.match(withoutBlanks(strField)).hasMatch();
}

QString shown(const QString& strText)
{
    return strText.size() <= kShownText ? strText : strText.left(kShownText) + QStringLiteral("...");
}

QString numberText(double dValue)
{
    return orv::shortestText(dValue);
}

// The entries of one region, in file order.
class RegionReader
{
public:
    RegionReader(int nNumber, const Entries& entries, QStringList* pMessages)
        : m_nNumber(nNumber), m_entries(entries), m_messages(*pMessages)
    {
    }

    // False when there is no region in them.
    bool read(tagROIInfo* pRegion);

private:
    void readEntry(const QString& strField, const QString& strValue);
    bool readShape(const QString& strField, const QString& strValue);
    bool readStatistics(const QString& strField, const QString& strValue);
    void readCount(const QString& strField, const QString& strValue, qint64* pCount);
    void settleName();
    // `strWhat` goes on behind the key.
    void tell(const QString& strField, const QString& strWhat)
    {
        m_messages.append(QStringLiteral("\"ROI %1 %2\" %3").arg(QString::number(m_nNumber), shown(strField), strWhat));
    }

    int m_nNumber;
    const Entries& m_entries;
    QStringList& m_messages;
    QSet<QString> m_seen;
    tagROIInfo m_region;
    bool m_bHasShape = false;
    bool m_bHasName = false;
};

bool RegionReader::read(tagROIInfo* pRegion)
{
    for (const auto& entry : m_entries) {
        const QString field = withoutBlanks(entry.first).toLower();
        if (m_seen.contains(field)) {
            tell(entry.first, QStringLiteral("comes twice, the first counts"));
            continue;
        }
        m_seen.insert(field);
        readEntry(entry.first, entry.second);
    }
    if (!m_seen.contains(QStringLiteral("shape"))) {
        tell(QStringLiteral("Shape"), QStringLiteral("is missing, the region is left out"));
    }
    if (!m_bHasShape) {
        return false;
    }
    settleName();
    // Numbers without a count of pixels were not written by a measurement.
    if (!m_region.statistics.isMeasured()) {
        m_region.statistics = tagROIStatistics();
    }
    *pRegion = m_region;
    return true;
}

void RegionReader::readEntry(const QString& strField, const QString& strValue)
{
    if (isField(strField, "Name")) {
        m_region.name = strValue.trimmed();
    } else if (isField(strField, "Shape")) {
        m_bHasShape = readShape(strField, strValue);
    } else if (readStatistics(strField, strValue)) {
        return;
    } else if (canEndAnElementName(strField)) {
        m_region.extra.append({strField, strValue});
    } else {
        tell(strField, QStringLiteral("cannot name an element, the entry is left out"));
    }
}

bool RegionReader::readShape(const QString& strField, const QString& strValue)
{
    QString reason;
    if (ROIShape::fromText(strValue, &m_region, &reason)) {
        return true;
    }
    tell(strField, QStringLiteral("is \"%1\": %2; the region is left out").arg(shown(strValue), reason));
    return false;
}

bool RegionReader::readStatistics(const QString& strField, const QString& strValue)
{
    tagROIStatistics& statistics = m_region.statistics;
    if (isField(strField, "Unit")) {
        statistics.unit = strValue;
        return true;
    }
    if (isField(strField, "Pixels")) {
        readCount(strField, strValue, &statistics.pixels);
        return true;
    }
    if (isField(strField, "Invalid Pixels")) {
        readCount(strField, strValue, &statistics.invalidPixels);
        return true;
    }
    for (const NumberField& number : kNumbers) {
        if (!isField(strField, number.name)) {
            continue;
        }
        bool ok = false;
        const double value = strValue.trimmed().toDouble(&ok);
        if (ok && std::isfinite(value)) {
            statistics.*number.member = value;
        } else {
            tell(strField, QStringLiteral("is \"%1\", which is no number").arg(shown(strValue)));
        }
        return true;
    }
    return false;
}

void RegionReader::readCount(const QString& strField, const QString& strValue, qint64* pCount)
{
    bool ok = false;
    const qint64 count = strValue.trimmed().toLongLong(&ok);
    if (ok && count >= 0) {
        *pCount = count;
    } else {
        tell(strField, QStringLiteral("is \"%1\", which is no number of pixels").arg(shown(strValue)));
    }
}

void RegionReader::settleName()
{
    const QString fallback = QStringLiteral("ROI %1").arg(m_nNumber);
    const QString reason = reasonAgainstName(m_region.name);
    if (reason.isEmpty()) {
        return;
    }
    tell(QStringLiteral("Name"), QStringLiteral("%1, the region is called \"%2\"")
                                     .arg(m_region.name.isEmpty() ? QStringLiteral("is missing") : reason, fallback));
    m_region.name = fallback;
}

// Gives the later of two regions of one name another.
void settleNames(Reading& reading)
{
    QSet<QString> names;
    for (tagROIInfo& region : reading.regions) {
        const QString name =
            freeName(region.name, [&names](const QString& strName) { return names.contains(strName); });
        if (name != region.name) {
            reading.messages.append(
                QStringLiteral("two regions are called \"%1\", the later becomes \"%2\"").arg(region.name, name));
        }
        region.name = name;
        names.insert(name);
    }
}

void limitMessages(QStringList& messages)
{
    const int more = messages.size() - kMaximumMessages;
    if (more <= 0) {
        return;
    }
    messages = messages.mid(0, kMaximumMessages);
    messages.append(QStringLiteral("%1 more messages on regions of interest").arg(more));
}

} // namespace

Reading read(const Entries& entries)
{
    QMap<int, Entries> groups;
    for (const auto& entry : entries) {
        if (const std::optional<KeyParts> parts = partsOf(entry.first)) {
            groups[parts->number].append({parts->field, entry.second});
        }
    }
    Reading reading;
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (reading.regions.size() == kMaximumRegions) {
            reading.messages.append(QStringLiteral("more than %1 regions, the rest is left out").arg(kMaximumRegions));
            break;
        }
        tagROIInfo region;
        if (!RegionReader(group.key(), group.value(), &reading.messages).read(&region)) {
            continue;
        }
        reading.regions.append(region);
        reading.numbers.insert(group.key());
    }
    settleNames(reading);
    limitMessages(reading.messages);
    return reading;
}

Entries entriesOf(const CPLSection& section)
{
    QStringList keys;
    QStringList values;
    section.getKeyList(&keys);
    section.getValueList(&values);
    Entries entries;
    for (int i = 0; i < keys.size(); ++i) {
        entries.append({keys[i], values[i]});
    }
    return entries;
}

std::optional<int> regionNumber(const QString& strKey)
{
    const std::optional<KeyParts> parts = partsOf(strKey);
    return parts ? std::optional<int>(parts->number) : std::nullopt;
}

void write(const tagROIInfo& region, int nNumber, CPLSection& section)
{
    const auto add = [&](const QString& strField, const QString& strValue) {
        section.addKeyValue(QStringLiteral("ROI %1 %2").arg(nNumber).arg(strField), strValue);
    };
    add(QStringLiteral("Name"), region.name);
    add(QStringLiteral("Shape"), ROIShape::toText(region));
    const tagROIStatistics& statistics = region.statistics;
    if (statistics.isMeasured()) {
        add(QStringLiteral("Unit"), statistics.unit);
        add(QStringLiteral("Pixels"), QString::number(statistics.pixels));
        add(QStringLiteral("Invalid Pixels"), QString::number(statistics.invalidPixels));
        for (const NumberField& number : kNumbers) {
            if (std::isfinite(statistics.*number.member)) {
                add(QLatin1String(number.name), numberText(statistics.*number.member));
            }
        }
    }
    for (const auto& entry : region.extra) {
        add(entry.first, entry.second);
    }
}

QString reasonAgainstName(const QString& strName)
{
    if (strName.trimmed().isEmpty()) {
        return QStringLiteral("is empty");
    }
    if (strName != strName.trimmed()) {
        return QStringLiteral("has blanks at an end");
    }
    if (strName.size() > kLongestName) {
        return QStringLiteral("is longer than %1 characters").arg(kLongestName);
    }
    const auto unfit = [](QChar c) {
        return c.category() == QChar::Other_Control || c.unicode() == 0xfffe || c.unicode() == 0xffff;
    };
    if (!strName.isValidUtf16() || std::any_of(strName.begin(), strName.end(), unfit)) {
        return QStringLiteral("has characters that cannot be shown");
    }
    return QString();
}

} // namespace ROISection
