// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/probeOffer.h"

#include "host/CORVDatabase.h"

#include <algorithm>

namespace {

constexpr int kFilterCharacters = 2;
constexpr int kLuminescent = 0;
constexpr int kTemporal = 3;

} // namespace

QStringList namesWithoutFilter(QStringList libraryNames)
{
    for (QString& strName : libraryNames) {
        strName.chop(kFilterCharacters);
    }
    libraryNames.removeDuplicates();
    return libraryNames;
}

QStringList offeredProbes(int nAnalysisType, bool bFluorescent)
{
    if (nAnalysisType < kLuminescent || nAnalysisType > kTemporal) {
        return QStringList();
    }
    const bool bLibrary = nAnalysisType == kTemporal ? bFluorescent : nAnalysisType != kLuminescent;
    QStringList names = bLibrary ? namesWithoutFilter(CORVDatabase::getLIBSourceList()) : CORVDatabase::getSourceList();
    std::stable_sort(names.begin(), names.end(), CORVDatabase::insensitiveLessThan);
    names.prepend(QString::fromLatin1(kUnknownProbe));
    return names;
}

ProbeProposal proposeProbes(const QStringList& initialProbes, const QStringList& offered)
{
    const QString strRadioactive = QStringLiteral("RAD-");
    ProbeProposal proposal;
    proposal.offered = offered;
    for (int i = 0; i < initialProbes.size(); ++i) {
        QString strName = initialProbes.at(i).trimmed();
        if (strName.contains(strRadioactive)) {
            strName.remove(strRadioactive);
            if (i == 0) {
                proposal.offered = CORVDatabase::getRADSourceList();
            }
        }
        if (proposal.offered.contains(strName, Qt::CaseInsensitive)) {
            proposal.names.append(strName);
        }
    }
    return proposal;
}

QStringList proposedProbes(const QStringList& initialProbes, const QStringList& offered, int nAnalysisType)
{
    const ProbeProposal proposal = proposeProbes(initialProbes, offered);
    const QString strFirst = proposal.offered.value(0);
    QStringList rows;
    for (const QString& strName : proposal.names) {
        rows.append(proposal.offered.contains(strName, Qt::CaseSensitive) ? strName : QString(QLatin1String("")));
    }
    const int nFewest = nAnalysisType == kTemporal ? 2 : 1;
    while (rows.size() < nFewest) {
        rows.append(strFirst);
    }
    return rows;
}

QString otherSpelling(const QString& strName, const QStringList& offered)
{
    if (offered.contains(strName, Qt::CaseSensitive)) {
        return QString();
    }
    const auto nearest = std::find_if(offered.cbegin(), offered.cend(), [&strName](const QString& strOffered) {
        return strOffered.compare(strName, Qt::CaseInsensitive) == 0;
    });
    return nearest != offered.cend() ? *nearest : QString();
}

bool isTissueByDefault(int nAnalysisType)
{
    return nAnalysisType != kTemporal;
}

bool isConstrainedByDefault(int nAnalysisType)
{
    return nAnalysisType != kTemporal;
}

QStringList componentNames(bool bTissue, bool bFood, const QStringList& rows)
{
    QStringList names;
    if (bTissue) {
        names.append(QStringLiteral("TissueAF"));
    }
    if (bFood) {
        names.append(QStringLiteral("Food"));
    }
    return names + rows;
}
