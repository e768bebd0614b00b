// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>

class CORVSequenceDataset;

namespace orvexport {

// What a sequence tells of the subject of its images, in the words of the user.
struct DicomSubject
{
    QString m_strType;   // "Mouse"
    QString m_strNumber; // of the animal
    QString m_strStudy;  // name of the sequence
    QString m_strUser;
    QString m_strComment;
    QDateTime m_acquired; // start of the first exposure, UTC; not valid when unknown

    // What stands for the subject's name: type and number.
    QString name() const;
};

// Of each text the first that a dataset of the sequence has. Nothing for a null sequence.
DicomSubject subjectOf(const CORVSequenceDataset* pSequence);

// A text as an attribute of DICOM can hold it: on one line, at most so many characters, without the signs that part
// values; those that part the components of a name go too with `bName`.
QString dicomText(const QString& strText, int nLongest, bool bName = false);

} // namespace orvexport
