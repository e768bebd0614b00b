// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/isotopeControls.h"

#include "host/CORVDatabase.h"
#include "host/CORVSequenceDataset.h"
#include "windows/halfLife.h"

#include <QComboBox>
#include <QLineEdit>

bool isUndefinedIsotope(const QString& strIsotope)
{
    return strIsotope == QLatin1String("Undefined");
}

bool showIsotopeOf(const QString& strSequenceID, const QStringList& isotopes, QWidget& group, QComboBox& box)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(strSequenceID);
    QString strIsotope;
    const bool bPresent = pSequence != nullptr && pSequence->isCherenkovIsotopeInData(strIsotope);
    group.setVisible(bPresent);
    if (bPresent) {
        box.setCurrentIndex(isotopes.indexOf(strIsotope));
    }
    return bPresent;
}

void showHalfLifeOf(const QString& strIsotope, QLineEdit& edit)
{
    const bool bUndefined = isUndefinedIsotope(strIsotope);
    edit.setEnabled(bUndefined);
    if (!bUndefined) {
        edit.setText(halfLifeText(CORVDatabase::getCherenkovRADHalflife(strIsotope)));
    }
}
