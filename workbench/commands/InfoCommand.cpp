// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/InfoCommand.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runTexts.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvutils/printable.h"
#include "services/analysis/AutomaticSetUp.h"
#include "services/basis/ModeNames.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/basis/jsonNumber.h"
#include "services/importer/PreparedImage.h"
#include "services/session/DatasetContents.h"
#include "services/session/OpenedSequence.h"
#include "services/session/UnitForecast.h"
#include "services/session/UnmixedMapLinks.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QJsonArray>

#include <algorithm>
#include <optional>

namespace {

// What is told of one image, in the order of the table.
struct ImageRow
{
    QString click;
    QString first;
    QString second;
    std::optional<ChannelInfo> channel; // of a numbered one
    int number = 0;                     // its number
    QString spot;
    QString size;
    QString binning;
    QString exposure;
    QString units;
    bool used = false;
    DatasetContents contents;
    PreparedImage prepared; // by an import
};

QString sizeText(CORVDataset& dataset)
{
    long width = 0;
    long height = 0;
    if (!dataset.getImageSize(IMAGETYPE_MAIN_DATA, &width, &height)) {
        return QStringLiteral("-");
    }
    return QStringLiteral("%1 x %2").arg(width).arg(height);
}

QString availableUnits(const CORVDataset& dataset)
{
    QStringList units;
    for (int unit = DISPLAYUNIT_COUNTS; unit <= DISPLAYUNIT_EFFICIENCY; ++unit) {
        if (dataset.unitUnavailableReason(static_cast<tag_edisplayunit>(unit)).isEmpty()) {
            units.append(UnitNames::options()[unit]);
        }
    }
    return units.isEmpty() ? QStringLiteral("none") : units.join(QLatin1Char(' '));
}

ImageRow describeImage(CORVDataset& dataset, const CORVSpumKyvo& engine)
{
    ImageRow row;
    row.click = dataset.getClickNumber();
    row.used = engine.m_imageRecords.contains(row.click);
    const ImageRecord record = engine.m_imageRecords.value(row.click);
    const bool temporal = engine.m_eSeqKind == SEQKIND_TEMPORAL;
    row.first = temporal ? record.interval : (row.used ? record.excitation : dataset.getExcitationFilter());
    row.second = temporal ? record.time : (row.used ? record.emission : dataset.getEmissionFilter());
    row.channel = ChannelInfo::of(dataset.clickInfo);
    if (row.channel) {
        row.number = ChannelInfo::numberOf(dataset.getEmissionFilter());
        row.second = row.used ? row.second : ChannelInfo::keyText(row.number);
    }
    row.spot = record.spot;
    row.size = sizeText(dataset);
    row.binning = TextTable::number(static_cast<double>(dataset.getBinningForImage(IMAGETYPE_MAIN_DATA)));
    double seconds = 0.0;
    row.exposure = dataset.getExposureTime(&seconds) ? TextTable::number(seconds) : QStringLiteral("-");
    row.units = availableUnits(dataset);
    row.contents = DatasetContents::of(dataset);
    row.prepared = PreparedImage::of(dataset.clickInfo);
    return row;
}

bool isNumbered(const QList<ImageRow>& rows)
{
    return std::any_of(rows.cbegin(), rows.cend(), [](const ImageRow& row) { return row.channel.has_value(); });
}

// What is known of a numbered channel: "DAPI (1650.5 nm)".
QString channelText(const ImageRow& row)
{
    if (!row.channel) {
        return QStringLiteral("-");
    }
    const QString label = row.channel->label(row.number);
    const QString place = row.channel->placeText();
    return place.isEmpty() || place == label ? label : QStringLiteral("%1 (%2)").arg(label, place);
}

// What the import has taken off: "dark.tif, 98.5 (percentile:1)".
QString subtractedText(const PreparedImage& prepared)
{
    QStringList parts;
    if (!prepared.dark.isEmpty()) {
        parts.append(prepared.dark);
    }
    if (prepared.background) {
        parts.append(QStringLiteral("%1 (%2)").arg(TextTable::number(*prepared.background), prepared.rule));
    }
    return parts.isEmpty() ? QStringLiteral("-") : parts.join(QStringLiteral(", "));
}

QString kindText(const CORVSpumKyvo& engine)
{
    static const QStringList texts = {QStringLiteral("luminescent"), QStringLiteral("fluorescent, epi-illumination"),
                                      QStringLiteral("fluorescent, transillumination"), QStringLiteral("temporal")};
    return texts.value(engine.m_eSeqKind);
}

QString photographText(CORVSequenceDataset& sequence, const CORVSpumKyvo& engine)
{
    if (engine.m_pPhoto == nullptr) {
        return QStringLiteral("none");
    }
    QString origin;
    CPLSection* section = sequence.sequenceInfo()[QLatin1String(SequenceKeys::kSequence)];
    if (section != nullptr) {
        section->getValue(QLatin1String(SequenceKeys::kPhotographOrigin), &origin);
    }
    const QString size = QStringLiteral("%1 x %2").arg(engine.m_pPhoto->m_lWidth).arg(engine.m_pPhoto->m_lHeight);
    return origin.isEmpty() ? size : QStringLiteral("%1 (no photograph was given; this is the %2)").arg(size, origin);
}

QStringList modeTexts(const CORVSpumKyvo& engine)
{
    QStringList texts;
    for (const int mode : engine.availableModes()) {
        texts.append(ModeNames::option(mode));
    }
    return texts;
}

// The binning and unit that an analysis of all images would have; empty texts when there is none.
struct AnalysisOutlook
{
    QString binning;
    QString size;
    QString unit;
    QStringList refusals;
};

AnalysisOutlook lookAhead(OpenedSequence& opened)
{
    AnalysisOutlook outlook;
    auto& engine = opened.engine();
    if (!opened.canBeAnalysed() || !engine.createImageList() || !engine.setBinningAndSize(true)) {
        return outlook;
    }
    outlook.binning = QString::number(engine.m_nBinning);
    outlook.size = QStringLiteral("%1 x %2").arg(engine.m_nWidth).arg(engine.m_nHeight);
    QStringList clicks;
    for (const auto& click : engine.m_imageList) {
        clicks.append(click);
    }
    const UnitForecast forecast = forecastUnit(opened.sequence(), clicks);
    outlook.unit = forecast.unit < 0 ? QStringLiteral("none") : UnitNames::text(forecast.unit);
    outlook.refusals = forecast.refusals;
    return outlook;
}

// What the automatic method resolves without being told; none where it has no choice to make.
QStringList proposal(OpenedSequence& opened)
{
    const bool automatic = opened.canBeAnalysed() && opened.engine().availableModes().contains(RUNMODE_AUTOMATIC);
    return automatic ? proposedComponents(opened.engine()) : QStringList();
}

QString proposalText(OpenedSequence& opened)
{
    const QStringList names = proposal(opened);
    const QStringList notes = QStringList{QStringLiteral("proposed for the automatic method")} +
                              (names.isEmpty() ? QStringList() : notesOfProbes(opened.engine()));
    return names.isEmpty()
               ? QString()
               : QStringLiteral("%1 (%2)").arg(names.join(QStringLiteral(", ")), notes.join(QStringLiteral("; ")));
}

// What the user should know of an analysis of maps; empty for a sequence of images.
QString cautionText(OpenedSequence& opened, const UnmixedMapLinks& maps)
{
    if (maps.isEmpty() || !opened.canBeAnalysed()) {
        return QString();
    }
    QStringList sentences{maps.isComplete()
                              ? QStringLiteral("these are unmixed maps, each at the filters where its component is "
                                               "brightest; what they hold has been unmixed already")
                              : QStringLiteral("some of the images are unmixed maps")};
    const auto& engine = opened.engine();
    const int places = engine.getAllKeyPairs().size() * std::max(1, static_cast<int>(engine.m_spots.size()));
    if (engine.m_imageRecords.size() > places) {
        sentences.append(QStringLiteral("of images at the same filters an analysis takes one"));
    }
    return sentences.join(QStringLiteral("; "));
}

// An image a row.
TextTable imagesTable(const QList<ImageRow>& rows, bool bTemporal)
{
    const bool numbered = isNumbered(rows);
    const QStringList keys = bTemporal  ? QStringList{QStringLiteral("interval"), QStringLiteral("time")}
                             : numbered ? QStringList{QStringLiteral("number"), QStringLiteral("channel")}
                                        : QStringList{QStringLiteral("excitation"), QStringLiteral("emission")};
    const bool subtracted =
        std::any_of(rows.cbegin(), rows.cend(), [](const ImageRow& row) { return row.prepared.isSubtracted(); });
    const bool projected =
        std::any_of(rows.cbegin(), rows.cend(), [](const ImageRow& row) { return !row.prepared.projection.isEmpty(); });
    TextTable table(
        QStringList{QStringLiteral("image")} + keys +
        QStringList{QStringLiteral("spot"), QStringLiteral("size"), QStringLiteral("binning"),
                    QStringLiteral("exposure"), QStringLiteral("used"), QStringLiteral("units")} +
        (projected ? QStringList{QStringLiteral("made of")} : QStringList()) +
        (subtracted ? QStringList{QStringLiteral("subtracted"), QStringLiteral("below 0")} : QStringList()));
    for (const auto& row : rows) {
        table.addRow(QStringList{row.click, numbered ? row.second : row.first, numbered ? channelText(row) : row.second,
                                 row.spot, row.size, row.binning, row.exposure,
                                 row.used ? QStringLiteral("yes") : QStringLiteral("no"), row.units} +
                     (projected ? QStringList{row.prepared.projection} : QStringList()) +
                     (subtracted ? QStringList{subtractedText(row.prepared), QString::number(row.prepared.negatives)}
                                 : QStringList()));
    }
    return table;
}

QString textAnswer(OpenedSequence& opened, const QList<ImageRow>& rows, const AnalysisOutlook& outlook)
{
    auto& engine = opened.engine();
    auto& sequence = opened.sequence();
    const bool temporal = engine.m_eSeqKind == SEQKIND_TEMPORAL;
    QString text;
    const auto line = [&text](const QString& strKey, const QString& strValue) {
        text += (strKey + QLatin1Char(':')).leftJustified(14) +
                (strValue.isEmpty() ? QStringLiteral("-") : orv::printableLine(strValue)) + QLatin1Char('\n');
    };
    line(QStringLiteral("Sequence"),
         QStringLiteral("%1 (%2)").arg(sequence.getSequenceName(), sequence.getSequenceID()));
    const bool numbered = isNumbered(rows);
    line(QStringLiteral("Kind"),
         numbered ? QStringLiteral("numbered channels, analysed as luminescent") : kindText(engine));
    line(QStringLiteral("Axis"), opened.canBeAnalysed() ? axisText(engine.m_eAxis) : QString());
    line(QStringLiteral("Images"), QString::number(rows.size()));
    line(QStringLiteral("Photograph"), photographText(sequence, engine));
    line(QStringLiteral("Subject"), engine.m_strSubjectType);
    line(QStringLiteral("Probes"), engine.m_probes.join(QStringLiteral(", ")));
    line(QStringLiteral("Components"), proposalText(opened));
    line(QStringLiteral("Binning"), outlook.binning);
    line(QStringLiteral("Cube"), outlook.size);
    line(QStringLiteral("Unit"), outlook.unit);
    for (const auto& refusal : outlook.refusals) {
        text +=
            QString(14, QLatin1Char(' ')) + QStringLiteral("not ") + orv::printableLine(refusal) + QLatin1Char('\n');
    }
    line(QStringLiteral("Analysis"), opened.canBeAnalysed()
                                         ? modeTexts(engine).join(QStringLiteral(", "))
                                         : QStringLiteral("not possible: ") + opened.reasonAgainst());
    QList<DatasetContents> contents;
    for (const auto& row : rows) {
        contents.append(row.contents);
    }
    const auto held = contentsOfSequence(sequence, contents);
    for (const auto& entry : held) {
        line(entry.first, entry.second);
    }
    const UnmixedMapLinks maps(sequence);
    if (!maps.isEmpty()) {
        line(QStringLiteral("Maps of"), maps.sources().join(QStringLiteral(", ")));
    }
    if (!cautionText(opened, maps).isEmpty()) {
        line(QStringLiteral("Note"), cautionText(opened, maps));
    }
    text += QLatin1Char('\n') + imagesTable(rows, temporal).toText();
    return maps.isEmpty() ? text : text + QLatin1Char('\n') + maps.toText();
}

QJsonObject jsonAnswer(OpenedSequence& opened, const QList<ImageRow>& rows, const AnalysisOutlook& outlook)
{
    auto& engine = opened.engine();
    QJsonArray images;
    for (const auto& row : rows) {
        QJsonObject image{{"image", row.click},
                          {"first", row.first},
                          {"second", row.second},
                          {"spot", row.spot},
                          {"size", row.size},
                          {"binning", row.binning.toDouble()},
                          {"exposure", jsonNumberIn(row.exposure)},
                          {"used", row.used},
                          {"contents", row.contents.json()},
                          {"units", QJsonArray::fromStringList(row.units.split(QLatin1Char(' ')))}};
        const QJsonObject prepared = row.prepared.json();
        for (auto it = prepared.begin(); it != prepared.end(); ++it) {
            image.insert(it.key(), it.value());
        }
        if (row.channel) {
            image.insert(QStringLiteral("channel"), row.channel->name);
            const auto number = [](const std::optional<double>& value) {
                return value ? QJsonValue(*value) : QJsonValue();
            };
            image.insert(QStringLiteral("wavelength"), number(row.channel->wavelength));
            image.insert(QStringLiteral("wavenumber"), number(row.channel->wavenumber));
        }
        images.append(image);
    }
    return QJsonObject{
        {"id", opened.sequence().getSequenceID()},
        {"name", opened.sequence().getSequenceName()},
        {"kind", kindText(engine)},
        {"numbered", isNumbered(rows)},
        {"axis", opened.canBeAnalysed() ? axisText(engine.m_eAxis) : QString()},
        {"photograph", photographText(opened.sequence(), engine)},
        {"subject", engine.m_strSubjectType},
        {"probes", QJsonArray::fromStringList(engine.m_probes)},
        {"proposedComponents", QJsonArray::fromStringList(proposal(opened))},
        {"binning", outlook.binning.toInt()},
        {"cube", outlook.size},
        {"unit", outlook.unit},
        {"unitRefusals", QJsonArray::fromStringList(outlook.refusals)},
        {"analysable", opened.canBeAnalysed()},
        {"reason", opened.reasonAgainst()},
        {"methods", QJsonArray::fromStringList(opened.canBeAnalysed() ? modeTexts(engine) : QStringList())},
        {"maps", UnmixedMapLinks(opened.sequence()).toJson()},
        {"caution", cautionText(opened, UnmixedMapLinks(opened.sequence()))},
        {"warnings", QJsonArray::fromStringList(opened.warnings())},
        {"images", images}};
}

} // namespace

void InfoCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
}

QList<CommandManual::Example> InfoCommand::examples() const
{
    return {
        {QStringLiteral("spum info mouse"), QStringLiteral("What the sequence holds, and how it would be analysed.")},
        {QStringLiteral("spum info mouse --json"), QStringLiteral("The same for a script.")}};
}

void InfoCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1) {
        refuseUsage("info", QStringLiteral("info takes one sequence."));
    }
    OpenedSequence opened(arguments[0]);
    session.warnAll(opened.warnings());
    QList<ImageRow> rows;
    for (auto* dataset : opened.sequence().getDatasets()) {
        session.stopIfRequested();
        rows.append(describeImage(*dataset, opened.engine()));
    }
    const AnalysisOutlook outlook = lookAhead(opened);
    session.answer(textAnswer(opened, rows, outlook));
    session.answerJson(jsonAnswer(opened, rows, outlook));
}
