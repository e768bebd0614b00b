// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/transfer/ResultExport.h"

#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/basis/LoggedErrors.h"
#include "services/transfer/ExportPlace.h"
#include "services/transfer/MovedMaps.h"

#include "engine/CORVSpumKyvo.h"
#include "files/StagedFolder.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvutils/MessageResponder.h"
#include "platform/orvutils/WrittenFiles.h"
#include "storage/savedResultsAtStake.h"

#include <QDir>
#include <QFileInfo>

namespace {

// Answers the question for the component; no other comes up in an export.
class ComponentResponder : public orv::MessageResponder
{
public:
    explicit ComponentResponder(int nNumber) : m_strItem(QStringLiteral("No.%1").arg(nNumber)) {}
    int ask(const orv::MessageRequest& request) override { return request.defaultAnswer(); }
    std::optional<QString> chooseItem(const orv::ItemRequest&) override { return m_strItem; }

private:
    QString m_strItem;
};

// Puts that responder in the place of the earlier one, as long as it lives.
class AnsweredComponent
{
public:
    explicit AnsweredComponent(int nNumber)
        : m_pEarlier(orv::setMessageResponder(std::make_unique<ComponentResponder>(nNumber)))
    {
    }
    ~AnsweredComponent() { orv::setMessageResponder(std::move(m_pEarlier)); }
    AnsweredComponent(const AnsweredComponent&) = delete;
    AnsweredComponent& operator=(const AnsweredComponent&) = delete;

private:
    std::unique_ptr<orv::MessageResponder> m_pEarlier;
};

void checkRequest(const CORVSpumKyvo& engine, std::optional<int> component)
{
    const long long count = engine.m_concentrations.num_rows();
    if (count < 1) {
        throw Failure(QStringLiteral("there is no result to export"));
    }
    if (!component) {
        return;
    }
    if (engine.m_spots.size() < 2) {
        throw Failure(QStringLiteral("all components are exported; one is chosen only in a scan of several spots"),
                      Failure::Kind::BadRequest);
    }
    if (*component < 1 || *component > count) {
        throw Failure(QStringLiteral("there is no component %1: the result has %2").arg(*component).arg(count),
                      Failure::Kind::BadRequest);
    }
}

// Has the engine make the datasets; paths of their click infos.
QStringList makeDatasets(CORVSpumKyvo& engine, std::optional<int> component)
{
    QStringList paths;
    const LoggedErrors errors;
    const std::unique_ptr<AnsweredComponent> answer =
        component ? std::make_unique<AnsweredComponent>(*component) : nullptr;
    const QMetaObject::Connection connection = QObject::connect(
        &engine, &CORVSpumKyvo::createSpumKyvoSequence, [&paths](const QStringList& made, bool) { paths = made; });
    engine.onClickExportAsSequence();
    QObject::disconnect(connection);
    if (!paths.isEmpty()) {
        return paths;
    }
    if (!errors.lines().isEmpty()) {
        throw Failure(errors.lines().join(QStringLiteral("; ")));
    }
    throw Failure(
        QStringLiteral("no component was chosen: of a scan of several spots the maps of one component are exported; "
                       "--component N names it"),
        Failure::Kind::BadRequest);
}

} // namespace

ExportedMaps exportResult(CORVSpumKyvo& engine, std::optional<int> component, const QString& strOutFolder, bool bForce,
                          JobMonitor* pMonitor)
{
    checkRequest(engine, component);
    CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.getSequenceId());
    if (pSequence == nullptr) {
        throw Failure(QStringLiteral("the sequence %1 is not open").arg(engine.getSequenceId()));
    }
    QString error = savedResultsAtStake(strOutFolder);
    if (bForce && !error.isEmpty()) {
        throw Failure(error);
    }
    StagedFolder staged;
    if (!staged.begin(strOutFolder, bForce, QString::fromLatin1(SequenceFiles::kSequenceInfo), &error)) {
        throw Failure(error);
    }
    error = orv::reasonAgainstReplacing(staged.target(),
                                        orv::foreignFiles(staged.target(), emptyResultsIndexes(staged.target())));
    if (!error.isEmpty()) {
        throw Failure(error);
    }

    ExportPlace place(engine.getSequenceId(), pMonitor);
    const auto stopIfRequested = [pMonitor] {
        if (pMonitor != nullptr) {
            pMonitor->stopIfRequested();
        }
    };
    stopIfRequested();
    const QStringList paths = makeDatasets(engine, component);
    MovedMaps maps(engine, *pSequence, staged);
    for (const QString& path : paths) {
        stopIfRequested();
        place.keep();
        maps.add(path);
    }
    maps.finish();
    stopIfRequested();
    if (!orv::noteWrittenFiles(staged.path(), &error) || !staged.commit(&error)) {
        throw Failure(error);
    }
    return {staged.target(), maps.sequenceId(), maps.names()};
}
