// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/batchFiles.h"

#include "files/AtomicFile.h"
#include "files/TemporaryTarget.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/batchTables.h"

#include <QElapsedTimer>
#include <QJsonDocument>

namespace {

constexpr int keepMilliseconds = 5000;

void put(const QString& strPath, const QByteArray& bytes)
{
    QString error;
    if (!orv::writeFileAtomically(strPath, bytes, &error)) {
        throw Failure(error);
    }
}

} // namespace

void writeBatchFiles(const BatchPlaces& places, const QList<BatchEntry>& entries, const BatchPageFrame& frame,
                     JobMonitor& monitor, const std::function<void()>& keep)
{
    monitor.startProgress(QStringLiteral("Writing the overall files"));
    put(places.csv(), batchCsv(entries));
    put(places.json(), QJsonDocument(batchJson(entries)).toJson(QJsonDocument::Indented));
    orv::TemporaryTarget page(places.html());
    QElapsedTimer sinceKept;
    sinceKept.start();
    int pieces = 0;
    writeBatchPage(places, entries, frame, [&](const QByteArray& bytes) {
        monitor.stopIfRequested();
        if (sinceKept.elapsed() > keepMilliseconds) {
            sinceKept.restart();
            keep();
        }
        // Head and foot are pieces, too.
        monitor.showProgress(QStringLiteral("Writing the overall files"), pieces++ / (entries.size() + 3.0));
        if (!page.isValid() || !page.write(bytes)) {
            throw Failure(page.error());
        }
    });
    if (!page.commit()) {
        throw Failure(page.error());
    }
    monitor.endProgress();
}
