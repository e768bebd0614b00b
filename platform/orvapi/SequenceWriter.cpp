// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/SequenceWriter.h"

#include "host/CILImage.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ImageNames.h"
#include "platform/orvapi/SectionIn.h"
#include "platform/orvapi/SequenceInfo.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/WrittenFiles.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int kLongestFolderName = 80;

bool hasControlCharacter(const QString& strText)
{
    return std::any_of(strText.cbegin(), strText.cend(), [](QChar c) { return c.category() == QChar::Other_Control; });
}

// A folder's name from any text: what a file system or a shell could take amiss becomes an underscore.
QString folderNameFrom(const QString& strText)
{
    QString name;
    for (const QChar c : strText.left(kLongestFolderName)) {
        const bool plain = c.isLetterOrNumber() || QStringLiteral("-_. ").contains(c);
        name.append(plain && !c.isSurrogate() ? c : QLatin1Char('_'));
    }
    if (name.startsWith(QLatin1Char('.'))) {
        name[0] = QLatin1Char('_');
    }
    return name.trimmed();
}

bool isPlainName(const QString& strName)
{
    return !strName.isEmpty() && !strName.startsWith(QLatin1Char('.')) && !strName.contains(QLatin1Char('/')) &&
           !hasControlCharacter(strName);
}

} // namespace

SequenceWriter::SequenceWriter() = default;
SequenceWriter::~SequenceWriter() = default;

bool SequenceWriter::fail(const QString& strReason, QString* pError)
{
    m_state = State::Failed;
    if (pError != nullptr) {
        *pError = strReason;
    }
    return false;
}

bool SequenceWriter::begin(const QString& strTarget, const SequenceDescription& description, bool bForce,
                           QString* pError, const QStringList& givenUp)
{
    if (m_state != State::Idle) {
        return fail(QStringLiteral("a sequence writer writes one sequence"), pError);
    }
    if (description.id.trimmed().isEmpty() || hasControlCharacter(description.id) ||
        hasControlCharacter(description.name)) {
        return fail(QStringLiteral("%1: a sequence needs an id of printable characters").arg(strTarget), pError);
    }
    QString reason;
    if (!m_folder.begin(strTarget, bForce, QString::fromLatin1(SequenceFiles::kSequenceInfo), &reason)) {
        return fail(reason, pError);
    }
    m_description = description;
    m_bForce = bForce;
    m_givenUp = givenUp;
    reason = reasonAgainstReplacing();
    if (!reason.isEmpty()) {
        return fail(reason, pError);
    }
    m_taken.insert(QString::fromLatin1(SequenceFiles::kSequenceInfo).toLower());
    m_state = State::Open;
    return true;
}

QString SequenceWriter::reasonAgainstReplacing() const
{
    const QString target = m_folder.target();
    return m_bForce ? orv::reasonAgainstReplacing(target, orv::foreignFiles(target, m_givenUp)) : QString();
}

QString SequenceWriter::freeFolderName(const QString& strClickNumber) const
{
    const QString base = folderNameFrom(strClickNumber);
    QString name = base;
    for (int number = 2; m_taken.contains(name.toLower()); ++number) {
        name = QStringLiteral("%1_%2").arg(base, QString::number(number));
    }
    return name;
}

bool SequenceWriter::checkDataset(const DatasetDescription& dataset, const Images& images, QString* pError)
{
    const QString target = m_folder.target();
    if (m_state != State::Open) {
        return fail(QStringLiteral("%1: the sequence is not being written").arg(target), pError);
    }
    if (dataset.clickNumber.isEmpty() || dataset.clickNumber != dataset.clickNumber.trimmed() ||
        hasControlCharacter(dataset.clickNumber)) {
        return fail(QStringLiteral("%1: \"%2\" is no click number").arg(target, dataset.clickNumber), pError);
    }
    if (m_clickNumbers.contains(dataset.clickNumber)) {
        return fail(QStringLiteral("%1: two datasets have the click number %2").arg(target, dataset.clickNumber),
                    pError);
    }
    QSet<int> types;
    for (const auto& image : images) {
        if (imageFileNames(image.first).isEmpty() || types.contains(image.first)) {
            return fail(QStringLiteral("%1: dataset %2 has two images of type %3, or there is no such type")
                            .arg(target, dataset.clickNumber, QString::number(image.first)),
                        pError);
        }
        if (image.second == nullptr || image.second->isEmpty()) {
            return fail(QStringLiteral("%1: dataset %2 has an empty image of type %3")
                            .arg(target, dataset.clickNumber, QString::number(image.first)),
                        pError);
        }
        types.insert(image.first);
    }
    return true;
}

bool SequenceWriter::writeImages(const QString& strFolder, const Images& images, CPLClickInfo& info, QString* pError)
{
    const bool separate = std::any_of(images.cbegin(), images.cend(),
                                      [](const auto& image) { return image.first == IMAGETYPE_LUMINESCENT; });
    for (const auto& image : images) {
        // The main data image is the luminescent one, unless both are given.
        const tag_eimagetype type =
            image.first == IMAGETYPE_MAIN_DATA && !separate ? IMAGETYPE_LUMINESCENT : image.first;
        const QStringList names = imageFileNames(type);
        const QString path = m_folder.path() + strFolder + QLatin1Char('/') +
                             (m_description.transillumination ? names.last() : names.first());
        QString reason;
        if (!writeTiff(path, *image.second, TiffWriteOptions(), &reason)) {
            return fail(reason.replace(m_folder.path(), m_folder.target() + QLatin1Char('/')), pError);
        }
        CPLSection& section = sectionIn(info, imageSection(type));
        const QString binning = QString::fromLatin1(ClickKeys::kBinning);
        if (!section.isKeyPresent(binning)) {
            section.setValue(binning, QString::number(static_cast<double>(image.second->m_fBinning)));
        }
    }
    return true;
}

bool SequenceWriter::addDataset(const DatasetDescription& dataset, const Images& images, QString* pError)
{
    if (!checkDataset(dataset, images, pError)) {
        return false;
    }
    const QString name = freeFolderName(dataset.clickNumber);
    if (!QDir(m_folder.path()).mkdir(name)) {
        return fail(QStringLiteral("%1/%2: cannot be made").arg(m_folder.target(), name), pError);
    }
    CPLClickInfo info = dataset.info;
    CPLSection& click = sectionIn(info, QString::fromLatin1(ClickKeys::kClickNumber));
    click.setValue(QString::fromLatin1(ClickKeys::kClickNumber), dataset.clickNumber);
    click.setValue(QString::fromLatin1(ClickKeys::kFolderOnDisk), name);
    if (!writeImages(name, images, info, pError)) {
        return false;
    }
    const QString file = name + QLatin1Char('/') + QLatin1String(SequenceFiles::kClickInfo);
    if (info.saveClickInfo(m_folder.path() + file) != 0) {
        return fail(QStringLiteral("%1/%2: cannot be written").arg(m_folder.target(), file), pError);
    }
    m_folders.append(name);
    m_clickNumbers.insert(dataset.clickNumber);
    m_taken.insert(name.toLower());
    return true;
}

QString SequenceWriter::extraFolder(const QString& strName)
{
    if (m_state != State::Open || !isPlainName(strName) || m_folders.contains(strName)) {
        return QString();
    }
    if (!QDir(m_folder.path()).mkpath(strName)) {
        return QString();
    }
    m_taken.insert(strName.toLower());
    return m_folder.path() + strName + QLatin1Char('/');
}

QString SequenceWriter::extraFile(const QString& strName)
{
    if (m_state != State::Open || !isPlainName(strName) || m_taken.contains(strName.toLower())) {
        return QString();
    }
    m_taken.insert(strName.toLower());
    return m_folder.path() + strName;
}

CPLClickInfo SequenceWriter::sequenceInfo() const
{
    SequenceInfo info;
    info.id = m_description.id.trimmed();
    info.name = m_description.name.trimmed().isEmpty() ? info.id : m_description.name.trimmed();
    info.temporal = m_description.temporal;
    info.fluorescence = m_description.fluorescence;
    info.transillumination = m_description.transillumination;
    info.secondKind = m_description.secondKind;
    info.sceneOnly3D = m_description.sceneOnly3D;
    info.ctScan = m_description.ctScan;
    info.ctComplete = m_description.ctScan && m_description.ctComplete;
    info.adjust = m_description.adjust;
    info.folders = m_folders;
    CPLClickInfo sections = sequenceInfoSections(info);
    CPLSection& sequence = *sections[QString::fromLatin1(SequenceKeys::kSequence)];
    if (!m_description.photographOrigin.isEmpty()) {
        sequence.setValue(QString::fromLatin1(SequenceKeys::kPhotographOrigin), m_description.photographOrigin);
    }
    if (!m_description.truthFolder.isEmpty()) {
        sequence.setValue(QString::fromLatin1(SequenceKeys::kTruthFolder), m_description.truthFolder);
    }
    int count = 0;
    m_description.extraSections.getSectionCount(&count);
    for (int i = 0; i < count; ++i) {
        sections.addSection(m_description.extraSections.section(i));
    }
    return sections;
}

bool SequenceWriter::finish(QString* pError)
{
    if (m_state != State::Open) {
        return fail(QStringLiteral("%1: the sequence is not being written").arg(m_folder.target()), pError);
    }
    const QString target = m_folder.target();
    if (m_folders.isEmpty()) {
        return fail(QStringLiteral("%1: a sequence needs a dataset").arg(target), pError);
    }
    if (sequenceInfo().saveClickInfo(m_folder.path() + QLatin1String(SequenceFiles::kSequenceInfo)) != 0) {
        return fail(QStringLiteral("%1/%2: cannot be written").arg(target, QLatin1String(SequenceFiles::kSequenceInfo)),
                    pError);
    }
    if (!m_bForce && QFileInfo::exists(target)) {
        return fail(QStringLiteral("%1 exists already").arg(target), pError);
    }
    QString reason;
    if (!orv::noteWrittenFiles(m_folder.path(), &reason)) {
        return fail(reason.replace(m_folder.path(), target + QLatin1Char('/')), pError);
    }
    // Somebody may have put something there meanwhile.
    reason = reasonAgainstReplacing();
    if (!reason.isEmpty() || !m_folder.commit(&reason)) {
        return fail(reason, pError);
    }
    m_state = State::Done;
    return true;
}
