// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/paletteReason.h"

#include <QStringList>

namespace {

// The tabs that show a sequence or its analysis.
bool isTabOfAnalysis(const QString& strTab)
{
    const QStringList tabs{QStringLiteral("Sequence View"), QStringLiteral("3D View"), QStringLiteral("Auto Unmix"),
                           QStringLiteral("Composite"), QStringLiteral("Unmixing")};
    return tabs.contains(strTab, Qt::CaseInsensitive);
}

// A name without blanks would make the panel as wide as itself.
QString shortName(const QString& strName)
{
    constexpr int most = 32;
    return strName.size() <= most ? strName
                                  : strName.left(most / 2) + QStringLiteral("\u2026") + strName.right(most / 2 - 1);
}

// Paths may break behind their separators.
QString breakable(QString strText)
{
    return strText.replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
}

QString withComplaint(const QString& strText, const QString& strComplaint)
{
    return strComplaint.isEmpty() ? strText
                                  : strText + QStringLiteral("\n\nThe log says: %1").arg(breakable(strComplaint));
}

} // namespace

QString paletteReason(const PaletteFacts& facts)
{
    if (facts.running) {
        return QStringLiteral("An analysis is running. The tools are back when it has ended.");
    }
    if (!facts.anythingOpen) {
        return QStringLiteral("Open a sequence to unmix its images.");
    }
    if (!facts.sequenceInFront) {
        return facts.name.isEmpty()
                   ? QStringLiteral("No sequence is in front. Activate the window of one to unmix its images.")
                   : QStringLiteral("The window in front shows the image \"%1\". Activate the window of a sequence to "
                                    "unmix its images.")
                         .arg(shortName(facts.name));
    }
    if (facts.images < 2) {
        return withComplaint(QStringLiteral("The sequence \"%1\" has a single image. Unmixing takes two images at "
                                            "least, of different filters or times.")
                                 .arg(shortName(facts.name)),
                             facts.lastComplaint);
    }
    if (!facts.analysable) {
        return withComplaint(
            QStringLiteral("The images of the sequence \"%1\" cannot be unmixed. That takes images of different "
                           "filters, given by wavelengths, or of different times, and a photograph.")
                .arg(shortName(facts.name)),
            facts.lastComplaint);
    }
    if (!facts.tab.isEmpty() && !isTabOfAnalysis(facts.tab)) {
        return QStringLiteral("The tab \"%1\" is no part of an analysis. Change to \"Sequence View\" to go on.")
            .arg(shortName(facts.tab));
    }
    return withComplaint(QStringLiteral("The sequence \"%1\" was not taken up.").arg(shortName(facts.name)),
                         facts.lastComplaint);
}
