// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>

class CORVDataset;
class CORVSequenceDataset;

// Entries of the section "luminescent image" by which the dataset of an unmixed map tells where it comes from.
namespace UnmixedMapKeys {
constexpr const char* const kConcentration = "Unmixed Concentration"; // the dataset's label
constexpr const char* const kSequence = "Spectral Unmix Seq Dataset"; // id of the sequence that was unmixed
constexpr const char* const kComponent = "Unmixed Component";         // the component's name
} // namespace UnmixedMapKeys

// Where the datasets of a sequence that are unmixed maps come from.
class UnmixedMapLinks
{
public:
    explicit UnmixedMapLinks(const CORVSequenceDataset& sequence);

    bool isEmpty() const { return m_links.isEmpty(); }
    // Whether every dataset of the sequence is a map.
    bool isComplete() const { return m_bComplete; }
    // Ids of the sequences that were unmixed, each once.
    QStringList sources() const;
    // A table with a row for each map.
    QString toText() const;
    QJsonArray toJson() const;

private:
    struct Link
    {
        QString click;
        QString sequence;
        QString concentration;
        QString component;
        QString unit; // of the stored pixels
        QString spot; // "x,y" of a scan
    };

    QList<Link> m_links;
    bool m_bComplete = true;
};
