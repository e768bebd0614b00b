// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultDifference.h"

#include "host/CILImage.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/fileHash.h"
#include "services/results/Provenance.h"
#include "services/results/UnmixFolder.h"
#include "services/results/resultSummary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace {

const QString summaryName = QStringLiteral("summary.json");
const QString tableName = QStringLiteral("summary.csv");

// PDF files tell a time, too.
bool isReport(const QString& strName)
{
    return strName == QLatin1String("report.html") || strName.endsWith(QLatin1String(".pdf"));
}

QStringList filesOf(const UnmixFolder& folder)
{
    QStringList names;
    for (const auto& value : folder.summary().value(QStringLiteral("files")).toArray()) {
        const QString name = QFileInfo(value.toString()).fileName(); // a summary that leads elsewhere is not followed
        if (!isReport(name)) {
            names.append(name);
        }
    }
    return names;
}

// Of the table of a summary.
QByteArray bytesOf(const QString& strPath)
{
    constexpr int maxMebibytes = 64; // that of the largest summary takes a fraction
    QByteArray bytes;
    QString error;
    if (!orv::readInput(strPath, maxMebibytes, QStringLiteral("result"), &bytes, &error)) {
        throw Failure(error);
    }
    return bytes;
}

void openFor(QFile& file)
{
    QString reason;
    if (!orv::openInput(file, &reason)) {
        throw Failure(QStringLiteral("%1: %2").arg(file.fileName(), reason));
    }
}

// Files of any size, a piece at a time.
bool sameBytes(const QString& strOne, const QString& strOther)
{
    constexpr qint64 pieceBytes = 4 << 20;
    QFile one(strOne);
    QFile other(strOther);
    openFor(one);
    openFor(other);
    for (bool more = true; more;) {
        const QByteArray piece = one.read(pieceBytes);
        if (piece != other.read(pieceBytes)) {
            return false;
        }
        more = !piece.isEmpty();
    }
    for (const QFile* pFile : {&one, &other}) {
        if (pFile->error() != QFileDevice::NoError) {
            throw Failure(QStringLiteral("%1: %2").arg(pFile->fileName(), pFile->errorString()));
        }
    }
    return true;
}

// What the numbers are, wherever they lie and whatever they come from.
QJsonObject numbersOf(const UnmixFolder& folder)
{
    QJsonObject summary = folder.summary();
    summary.remove(QStringLiteral("provenance"));
    summary.remove(QStringLiteral("run"));
    return summary;
}

// The table of a summary says what the summary says, but for the name of the folder.
bool sameTables(const UnmixFolder& before, const UnmixFolder& after)
{
    return bytesOf(before.path() + tableName) == resultCsv(before.summary()) &&
           bytesOf(after.path() + tableName) == resultCsv(after.summary()) && numbersOf(before) == numbersOf(after);
}

// Negative for maps of different sizes.
double largestDifference(const QString& strBefore, const QString& strAfter)
{
    CILImage before = UnmixFolder::readMap(strBefore);
    CILImage after = UnmixFolder::readMap(strAfter);
    if (before.m_lWidth != after.m_lWidth || before.m_lHeight != after.m_lHeight) {
        return -1.0;
    }
    double largest = 0.0;
    double maximum = 0.0;
    const auto count = static_cast<std::size_t>(before.m_lWidth) * static_cast<std::size_t>(before.m_lHeight);
    for (std::size_t i = 0; i < count; ++i) {
        maximum = std::max(maximum, std::abs(before.value(i)));
        largest = std::max(largest, std::abs(before.value(i) - after.value(i)));
    }
    return maximum > 0.0 ? largest / maximum : largest;
}

ResultDifference::File compared(const QString& strName, const UnmixFolder& before, const UnmixFolder& after)
{
    ResultDifference::File file;
    file.name = strName;
    const QString first = before.path() + strName;
    const QString second = after.path() + strName;
    file.missing = !QFileInfo(first).isFile() || !QFileInfo(second).isFile();
    if (file.missing) {
        return file;
    }
    if (strName == summaryName) {
        file.same = numbersOf(before) == numbersOf(after);
    } else if (strName == tableName) {
        file.same = sameTables(before, after);
    } else {
        file.same = sameBytes(first, second);
    }
    if (!file.same && strName.endsWith(QLatin1String(".tif"))) {
        file.largest = largestDifference(first, second);
    }
    return file;
}

QString stateOf(const QString& strWhat, const QString& strPath, const QString& strHash)
{
    if (!QFileInfo(strPath).isFile()) {
        return QStringLiteral("%1 is not there").arg(strWhat);
    }
    return fileHash(strPath) == strHash ? QString() : QStringLiteral("%1 has changed").arg(strWhat);
}

} // namespace

ResultDifference::ResultDifference(const UnmixFolder& before, const UnmixFolder& after)
{
    QStringList names = filesOf(before);
    for (const QString& name : filesOf(after)) {
        if (!names.contains(name)) {
            names.append(name);
        }
    }
    for (const QString& name : qAsConst(names)) {
        m_files.append(compared(name, before, after));
    }
}

bool ResultDifference::isSame() const
{
    return sameCount() == m_files.size();
}

int ResultDifference::sameCount() const
{
    return static_cast<int>(std::count_if(m_files.begin(), m_files.end(), [](const File& file) { return file.same; }));
}

QString ResultDifference::text() const
{
    QStringList list;
    for (const File& file : m_files) {
        if (file.missing) {
            list.append(file.name + QStringLiteral(" (missing in one of them)"));
        } else if (!file.same && file.largest >= 0.0) {
            list.append(QStringLiteral("%1 (largest difference %2 of its maximum)")
                            .arg(file.name, TextTable::number(file.largest, 2)));
        } else if (!file.same) {
            list.append(file.name);
        }
    }
    return list.join(QStringLiteral(", "));
}

QStringList changedInputs(const QJsonObject& provenance, const QString& strFolder)
{
    QStringList changes;
    const auto add = [&changes](const QString& strWhat, const QString& strPath, const QString& strHash) {
        const QString state = stateOf(strWhat, strPath, strHash);
        if (!state.isEmpty()) {
            changes.append(state);
        }
    };
    const QJsonObject sequence = provenance.value(QStringLiteral("sequence")).toObject();
    const QDir root(strFolder);
    for (const auto& value : sequence.value(QStringLiteral("files")).toArray()) {
        const QJsonObject file = value.toObject();
        const QString name = file.value(QStringLiteral("file")).toString();
        const bool image = name.endsWith(QLatin1String(".tif"), Qt::CaseInsensitive) ||
                           name.endsWith(QLatin1String(".tiff"), Qt::CaseInsensitive);
        add((image ? QStringLiteral("the image ") : QStringLiteral("the file ")) + name, root.filePath(name),
            file.value(QStringLiteral("sha1")).toString());
    }
    const QJsonObject library = provenance.value(QStringLiteral("library")).toObject();
    if (!library.isEmpty()) {
        const QString path = library.value(QStringLiteral("file")).toString();
        add(QStringLiteral("the library ") + path, path, library.value(QStringLiteral("sha1")).toString());
    }
    const QJsonObject mask = provenance.value(QStringLiteral("mask")).toObject();
    if (mask.contains(QStringLiteral("file"))) {
        const QString path = mask.value(QStringLiteral("file")).toString();
        add(QStringLiteral("the mask ") + path, path, mask.value(QStringLiteral("fileSha1")).toString());
    }
    return changes;
}
