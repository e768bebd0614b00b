// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvexport/DicomSubject.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"

namespace orvexport {

namespace {

// Written by the instrument for people; nothing else here reads them.
constexpr const char* const userInput = "User Input";
constexpr const char* const animalNumber = "Animal Number";
constexpr const char* const user = "User";
constexpr const char* const comment = "Comment";

// Takes the value unless there is one.
void take(const CPLClickInfo& info, const char* pSection, const char* pKey, QString* pValue)
{
    const CPLSection* pFound = info[QString::fromLatin1(pSection)];
    QString strValue;
    if (pValue->isEmpty() && pFound != nullptr && pFound->getValue(QString::fromLatin1(pKey), &strValue) == 0) {
        *pValue = strValue.trimmed();
    }
}

} // namespace

QString DicomSubject::name() const
{
    return QStringList{m_strType, m_strNumber}.join(QLatin1Char(' ')).trimmed();
}

DicomSubject subjectOf(const CORVSequenceDataset* pSequence)
{
    DicomSubject subject;
    if (pSequence == nullptr) {
        return subject;
    }
    subject.m_strStudy = pSequence->getSequenceName();
    for (const CORVDataset* pDataset : pSequence->getDatasets()) {
        const CPLClickInfo& info = pDataset->clickInfo;
        take(info, ClickKeys::kLuminescentImage, ClickKeys::kSubjectType, &subject.m_strType);
        take(info, userInput, animalNumber, &subject.m_strNumber);
        take(info, userInput, user, &subject.m_strUser);
        take(info, userInput, comment, &subject.m_strComment);
        double dSeconds = 0.0;
        if (pDataset->getExposureStart(&dSeconds)) {
            const QDateTime start = QDateTime::fromMSecsSinceEpoch(qRound64(1000.0 * dSeconds), Qt::UTC);
            subject.m_acquired = subject.m_acquired.isValid() ? qMin(subject.m_acquired, start) : start;
        }
    }
    return subject;
}

QString dicomText(const QString& strText, int nLongest, bool bName)
{
    QString text = strText;
    for (QChar& letter : text) {
        if (letter == QLatin1Char('\\')) {
            letter = QLatin1Char('/');
        } else if (letter.category() == QChar::Other_Control ||
                   (bName && (letter == QLatin1Char('^') || letter == QLatin1Char('=')))) {
            letter = QLatin1Char(' ');
        }
    }
    text = text.simplified().left(nLongest);
    if (!text.isEmpty() && text.at(text.size() - 1).isHighSurrogate()) {
        text.chop(1);
    }
    return text.trimmed();
}

} // namespace orvexport
