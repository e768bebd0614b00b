// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/RoiCommand.h"

#include "files/AtomicFile.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvapi/imagePadding.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/regions/RoiMeasurement.h"
#include "services/regions/RoiStore.h"
#include "services/results/resultFolder.h"
#include "services/session/RegionFiles.h"
#include "services/session/UnitForecast.h"
#include "services/session/openingAdvice.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/RoiCall.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace {

constexpr int widestShape = 60;

// Size in pixels and binning of a dataset's images, without what an import added to them.
struct Geometry
{
    bool operator==(const Geometry& other) const { return size == other.size && binning == other.binning; }
    QSize size;
    double binning = 1.0;
};

// Each once, that of the first image first.
QList<Geometry> geometriesOf(const CORVSequenceDataset& sequence)
{
    QList<Geometry> geometries;
    for (auto* dataset : sequence.getDatasets()) {
        long width = 0;
        long height = 0;
        if (!dataset->getImageSize(IMAGETYPE_MAIN_DATA, &width, &height)) {
            continue;
        }
        const Geometry geometry{ownSize(extentBeforePadding(*dataset).value_or(QSize()), width, height),
                                static_cast<double>(dataset->getBinningForImage(IMAGETYPE_MAIN_DATA))};
        if (!geometries.contains(geometry)) {
            geometries.append(geometry);
        }
    }
    return geometries;
}

void scale(tagROIInfo& region, double factor)
{
    for (double* number : {&region.x, &region.y, &region.width, &region.height}) {
        *number *= factor;
    }
    for (auto& point : region.points) {
        point.x *= factor;
        point.y *= factor;
    }
}

// `pWhat` is what the user gave the name by.
void refuseTakenName(const QString& strName, const char* pWhat, const RoiStore& store)
{
    if (store.names().contains(strName)) {
        throw Failure(QStringLiteral("there is a region \"%1\" already; remove it first or choose another %2")
                          .arg(strName, QLatin1String(pWhat)));
    }
}

[[noreturn]] void failForAbsent(const QString& strName, const RoiStore& store)
{
    const QStringList names = store.names();
    throw Failure(names.isEmpty() ? QStringLiteral("there is no region \"%1\", and no other").arg(strName)
                                  : QStringLiteral("there is no region \"%1\"; the regions are: \"%2\"")
                                        .arg(strName, names.join(QStringLiteral("\", \""))));
}

// The largest number of pixels that the region holds in an image; throws when it is none.
qint64 pixelsIn(const tagROIInfo& region, const QList<Geometry>& geometries, CliSession& session)
{
    qint64 pixels = 0;
    double width = 0.0;
    double height = 0.0;
    for (const Geometry& geometry : geometries) {
        pixels = std::max(
            pixels, ROIShape::pixelCount(region, geometry.size.width(), geometry.size.height(), geometry.binning));
        width = std::max(width, geometry.size.width() * geometry.binning);
        height = std::max(height, geometry.size.height() * geometry.binning);
    }
    if (pixels == 0) {
        throw Failure(
            QStringLiteral("the region holds no pixel of the images, which are %1 x %2 pixels of the unbinned sensor "
                           "at binning %3; --image-pixels takes a shape in pixels of the first image")
                .arg(width)
                .arg(height)
                .arg(geometries.first().binning));
    }
    const ROIShape::Bounds bounds = ROIShape::boundsOf(region);
    if (bounds.left < 0.0 || bounds.top < 0.0 || bounds.right > width || bounds.bottom > height) {
        session.warn(QStringLiteral("a part of the region lies outside the images"));
    }
    return pixels;
}

QString shortShape(const tagROIInfo& region)
{
    const QString text = ROIShape::toText(region);
    return text.size() <= widestShape ? text : text.left(widestShape) + QStringLiteral("...");
}

QString noRegion(const QString& strSequence)
{
    return QStringLiteral("%1 has no region of interest; \"spum roi SEQ add --shape rect:x,y,width,height\" makes one")
        .arg(strSequence);
}

tag_edisplayunit unitOf(const RoiCall& call, const CORVSequenceDataset& sequence)
{
    int unit = call.unit;
    if (unit < 0) {
        QStringList clicks;
        for (auto* dataset : sequence.getDatasets()) {
            if (dataset->hasROIData()) {
                clicks.append(dataset->getClickNumber());
            }
        }
        unit = forecastUnit(sequence, clicks).unit;
    }
    if (unit < 0) {
        throw Failure(QStringLiteral("the images can be had in no common unit"),
                      QStringLiteral("\"spum info\" tells the units of each"));
    }
    return static_cast<tag_edisplayunit>(unit);
}

bool goesOn()
{
    return !CliSession::isInterrupted();
}

} // namespace

// The sequence and its regions, under a lock where they are to be changed.
struct RoiCommand::Work
{
    explicit Work(const QString& strSequence, bool bChanges) : store(sequence), files(strSequence)
    {
        if (!bChanges) {
            const QString warning = RegionFiles::settle(strSequence, goesOn);
            if (!warning.isEmpty()) {
                warnings.append(warning);
            }
            open(strSequence);
            return;
        }
        // What is no sequence gets no lock beside it; what is one is read once nobody else changes it.
        open(strSequence);
        const int images = sequence.getDatasets().size();
        warnings.clear();
        files.lock(goesOn);
        open(strSequence);
        if (sequence.getDatasets().size() < images) {
            throw Failure(
                QStringLiteral("the images of the sequence cannot all be read, and regions are stored with all "
                               "of them: %1")
                    .arg(warnings.join(QLatin1String("; "))));
        }
    }

    void open(const QString& strSequence)
    {
        QString error;
        if (sequence.open(strSequence, &error, &warnings) != ESTATUS_SUCCESS) {
            throw Failure(error, openingAdvice(strSequence));
        }
    }

    QStringList warnings;
    CORVSequenceDataset sequence;
    RoiStore store;
    RegionFiles files;
};

void RoiCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    parser.addPositionalArgument(QStringLiteral("add|list|measure|remove|rename"), QStringLiteral("What to do."));
    parser.addPositionalArgument(QStringLiteral("NAME"),
                                 QStringLiteral("remove, rename: the region; remove: or \"all\"."),
                                 QStringLiteral("[NAME"));
    parser.addPositionalArgument(QStringLiteral("NEW"), QStringLiteral("rename: its new name."),
                                 QStringLiteral("[NEW]]"));
    const auto option = [&parser](const char* pName, const QString& strText, const char* pValue) {
        parser.addOption({QLatin1String(pName), strText, QLatin1String(pValue)});
    };
    option(
        "shape",
        QStringLiteral("add: rect:x,y,width,height, ellipse: with the rectangle around it, polygon:x1,y1,x2,y2,... "
                       "or freehand: with the outline. In pixels of the unbinned sensor, from the upper left corner."),
        "SHAPE");
    parser.addOption(
        {QStringLiteral("image-pixels"), QStringLiteral("add: --shape is in pixels of the first image instead.")});
    addValueOption(parser, "name", QStringLiteral("add: name of the region; \"ROI 1\" and so on."), "NAME");
    addChoiceOption(parser, "unit",
                    QStringLiteral("measure: counts, radiance, radiant-efficiency or efficiency; that of an analysis."),
                    "UNIT", UnitNames::options());
    addValueOption(
        parser, "result",
        QStringLiteral("measure: also over the maps of this folder of \"spum unmix\", or of its name in SEQ; may be "
                       "repeated."),
        "DIR");
    addValueOption(parser, "csv", QStringLiteral("measure: write the table into this file."), "FILE");
    parser.addOption({QStringLiteral("force"), QStringLiteral("measure: replace that file.")});
    parser.addOption(
        {QStringLiteral("save"), QStringLiteral("measure: keep the numbers of the images with the regions.")});
}

QList<CommandManual::Example> RoiCommand::examples() const
{
    return {{QStringLiteral("spum roi mouse add --name tumour --shape ellipse:430,370,70,70"),
             QStringLiteral("Keep a region with the sequence.")},
            {QStringLiteral("spum roi mouse measure --result by-name --csv regions.csv"),
             QStringLiteral("Its light in every image, and over the maps of a result.")}};
}

void RoiCommand::check(const QCommandLineParser& parser) const
{
    RoiCall::of(parser);
}

void RoiCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const RoiCall call = RoiCall::of(parser);
    Work work(call.sequence, call.changes());
    session.warnAll(work.warnings);
    session.setCommand(QStringLiteral("roi ") + call.action);
    if (call.action == QLatin1String("add")) {
        add(call, work, session);
    } else if (call.action == QLatin1String("list")) {
        list(work, session);
    } else if (call.action == QLatin1String("measure")) {
        measure(call, work, session);
    } else if (call.action == QLatin1String("remove")) {
        remove(call.name, work, session);
    } else {
        rename(call, work, session);
    }
}

void RoiCommand::add(const RoiCall& call, Work& work, CliSession& session) const
{
    const QList<Geometry> geometries = geometriesOf(work.sequence);
    if (geometries.isEmpty()) {
        throw Failure(QStringLiteral("the sequence holds no image that could have a region"));
    }
    tagROIInfo region = call.shape;
    if (call.imagePixels) {
        scale(region, geometries.first().binning);
    }
    refuseTakenName(call.name, "--name", work.store);
    region.name = call.name.isEmpty() ? work.store.freeName() : call.name;
    const qint64 pixels = pixelsIn(region, geometries, session);
    work.store.add(region);
    session.stopIfRequested();
    work.store.save(work.files);
    const int images = work.sequence.getDatasets().size();
    session.answer(QStringLiteral("region \"%1\" (%2) stored with %3 images; it holds %4\n")
                       .arg(region.name, shortShape(region), QString::number(images),
                            pixels == 1 ? QStringLiteral("1 pixel") : QStringLiteral("%1 pixels").arg(pixels)));
    session.answerJson(QJsonObject{
        {"name", region.name}, {"shape", ROIShape::toText(region)}, {"pixels", pixels}, {"images", images}});
}

void RoiCommand::list(const Work& work, CliSession& session) const
{
    TextTable table({QStringLiteral("region"), QStringLiteral("images"), QStringLiteral("shape")});
    QJsonArray regions;
    for (const RoiStore::Entry& entry : work.store.distinct()) {
        table.addRow({entry.region.name, QString::number(entry.images), shortShape(entry.region)});
        regions.append(QJsonObject{
            {"name", entry.region.name}, {"shape", ROIShape::toText(entry.region)}, {"images", entry.images}});
    }
    session.answer(table.rowCount() > 0 ? table.toText() : QStringLiteral("no region of interest\n"));
    session.answerJson(QJsonObject{{"regions", regions}});
}

void RoiCommand::measure(const RoiCall& call, Work& work, CliSession& session) const
{
    CORVSequenceDataset& sequence = work.sequence;
    QList<tagROIInfo> regions;
    for (const RoiStore::Entry& entry : work.store.distinct()) {
        regions.append(entry.region);
    }
    if (regions.isEmpty()) {
        throw Failure(noRegion(sequence.getSequenceName()));
    }
    if (!call.csv.isEmpty() && QFileInfo::exists(call.csv) && !call.force) {
        throw Failure(QStringLiteral("%1 exists already").arg(call.csv), QStringLiteral("--force replaces it"));
    }
    const tag_edisplayunit unit = unitOf(call, sequence);

    session.startProgress(QStringLiteral("measuring"));
    const auto step = [&session, &work](double fraction) {
        session.stopIfRequested();
        work.files.keep();
        session.showProgress(QStringLiteral("measuring"), fraction);
    };
    RoiMeasurement measurement;
    measurement.measureImages(sequence, unit, step);
    for (const QString& name : call.results) {
        measurement.measureMaps(sequence, regions, resultFolder(name, sequence.getSequenceInfoPath(), session), step);
    }
    session.stopIfRequested();
    session.endProgress();

    QString error;
    if (!call.csv.isEmpty() && !orv::writeFileAtomically(call.csv, measurement.toCsv().toUtf8(), &error)) {
        throw Failure(error);
    }
    if (call.save) {
        work.store.save(work.files);
    }
    session.warnAll(measurement.warnings());
    session.answer(measurement.toText());
    session.answerJson(QJsonObject{{"unit", UnitNames::text(unit)}, {"measurements", measurement.toJson()}});
}

void RoiCommand::remove(const QString& strName, Work& work, CliSession& session) const
{
    QStringList removed{strName};
    if (strName == QLatin1String("all")) {
        removed = work.store.names();
        work.store.removeAll();
    } else if (work.store.remove(strName) == 0) {
        failForAbsent(strName, work.store);
    }
    session.stopIfRequested();
    work.store.save(work.files);
    session.answer(removed.size() == 1 ? QStringLiteral("removed the region \"%1\"\n").arg(removed.first())
                                       : QStringLiteral("removed %1 regions\n").arg(removed.size()));
    session.answerJson(QJsonObject{{"removed", QJsonArray::fromStringList(removed)}});
}

void RoiCommand::rename(const RoiCall& call, Work& work, CliSession& session) const
{
    if (!work.store.names().contains(call.name)) {
        failForAbsent(call.name, work.store);
    }
    refuseTakenName(call.newName, "NEW", work.store);
    const int images = work.store.rename(call.name, call.newName);
    session.stopIfRequested();
    work.store.save(work.files);
    session.answer(QStringLiteral("region \"%1\" is now \"%2\"\n").arg(call.name, call.newName));
    session.answerJson(QJsonObject{{"name", call.newName}, {"before", call.name}, {"images", images}});
}
