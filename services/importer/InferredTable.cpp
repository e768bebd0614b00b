// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/InferredTable.h"

#include "platform/orvutils/NumberText.h"
#include "services/importer/CsvLine.h"
#include "services/importer/ImageKeys.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

// Figures closer than this are one, written with more or fewer digits.
constexpr double closeShare = 1e-6;
// Wavelengths beyond this are no numbers of nanometres that count.
constexpr double maxRounded = 1e9;

bool isSame(double a, double b)
{
    return std::abs(a - b) <= closeShare * std::max({1.0, std::abs(a), std::abs(b)});
}

// Without what a change of units leaves in the last digits.
double rounded(double value)
{
    constexpr double digits = 1e9;
    return std::round(value * digits) / digits;
}

// The figures of one kind, which must agree. Two that differ give none, and the sentence.
std::optional<Figure> oneOf(const FoundImage& image, Figure::Kind kind, const char* what, QString* pDoubt)
{
    std::optional<Figure> one;
    for (const Figure& figure : image.figures) {
        if (figure.kind != kind) {
            continue;
        }
        if (one && !isSame(one->value, figure.value)) {
            *pDoubt = QStringLiteral("%1: the %2 is %3 (%4) or %5 (%6)")
                          .arg(image.name, QLatin1String(what), orv::shortestText(one->value), one->origin,
                               orv::shortestText(figure.value), figure.origin);
            return std::nullopt;
        }
        one = one ? one : figure;
    }
    return one;
}

void addOrigin(InferredTable::Row& row, const Figure& figure)
{
    QStringList parts = row.origin.split(QStringLiteral("; "), Qt::SkipEmptyParts);
    const int at = figure.origin.indexOf(QLatin1String(": "));
    const QString what = figure.origin.left(at + 2);
    const QString text = figure.origin.mid(at + 2);
    // Several figures of one name are told with it.
    const auto same = std::find_if(parts.begin(), parts.end(), [&](const QString& part) {
        return at > 0 ? part.startsWith(what) : part == figure.origin;
    });
    if (same == parts.end()) {
        parts.append(figure.origin);
    } else if (at > 0 && !same->mid(at + 2).split(QStringLiteral(", ")).contains(text)) {
        *same += QStringLiteral(", ") + text;
    }
    row.origin = parts.join(QStringLiteral("; "));
}

// Whether the values, in ascending order, go up by one each time.
bool countsUp(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    for (std::size_t i = 1; i < values.size(); ++i) {
        if (!isSame(values[i] - values[i - 1], 1.0)) {
            return false;
        }
    }
    return true;
}

} // namespace

InferredTable::InferredTable(const QVector<FoundImage>& images, const QStringList& doubts,
                             std::optional<double> interval, bool bNumber)
    : m_doubts(doubts), m_questions(doubts)
{
    takeFigures(images, interval);
    choose();
    m_bInterval = interval.has_value();
    if (m_bInterval && m_bSpectral && !bNumber) {
        doubt(QStringLiteral("wavelengths tell the images apart, and --interval S asks for a series of times: leave it "
                             "out for a spectral sequence, or give the times in a table"));
    }
    const bool bSaid = std::any_of(m_rows.cbegin(), m_rows.cend(), [](const Row& row) { return row.facts.numbered; });
    if (bNumber) {
        // What is doubted are wavelengths and times.
        m_doubts.clear();
        m_questions.clear();
        m_notes.clear();
        m_notes.append(QStringLiteral("the images are numbered as channels, as was asked"));
    }
    if (bNumber || bSaid || (m_doubts.isEmpty() && mustBeNumbered(images))) {
        number(images);
        refuseLineEnds(images);
        noteFacts();
        return;
    }
    refuseLineEnds(images);
    refuseMissing();
    refuseDuplicates();
    noteFacts();
    if (m_bTemporal) {
        std::stable_sort(m_rows.begin(), m_rows.end(),
                         [](const Row& a, const Row& b) { return a.time.value_or(0.0) < b.time.value_or(0.0); });
    }
}

// What is recorded beside the table that is shown.
void InferredTable::noteFacts()
{
    QStringList known;
    const auto add = [&](const char* what, const std::function<bool(const Row&)>& has) {
        if (std::any_of(m_rows.cbegin(), m_rows.cend(), has)) {
            known.append(QLatin1String(what));
        }
    };
    add("exposures", [](const Row& row) { return row.facts.exposure.has_value(); });
    add("the size of a pixel", [](const Row& row) { return row.facts.pixelSize.has_value(); });
    add("the starts of the exposures", [](const Row& row) { return !row.facts.start.isEmpty(); });
    add("the isotope", [](const Row& row) { return !row.facts.isotope.isEmpty(); });
    add("the unit", [](const Row& row) { return !row.facts.unit.isEmpty(); });
    if (!known.isEmpty()) {
        m_notes.append(QStringLiteral("the metadata also tell: %1").arg(known.join(QStringLiteral(", "))));
    }
}

void InferredTable::doubt(const QString& strSentence)
{
    if (!strSentence.isEmpty()) {
        m_doubts.append(strSentence);
        m_questions.append(strSentence);
    }
}

void InferredTable::takeFigures(const QVector<FoundImage>& images, std::optional<double> interval)
{
    for (const FoundImage& image : images) {
        Row row;
        row.file = image.file;
        row.page = image.page;
        row.projection = image.projection;
        row.band = image.band;
        row.name = image.name;
        QString first;
        QString second;
        QString third;
        const auto excitation = oneOf(image, Figure::Excitation, "excitation", &first);
        const auto emission = oneOf(image, Figure::Emission, "emission", &second);
        const auto block = oneOf(image, Figure::Interval, "interval", &third);
        if (excitation) {
            row.excitation = rounded(excitation->value);
            addOrigin(row, *excitation);
        }
        if (emission) {
            row.emission = rounded(emission->value);
            addOrigin(row, *emission);
        }
        if (block && block->value >= 1.0) {
            row.interval = static_cast<int>(block->value);
        }
        takeSpot(image, row);
        row.facts = image.facts;
        row.channel = image.channel;
        doubt(first);
        doubt(second);
        doubt(third);
        m_rows.append(row);
    }
    takeTimes(images, interval);
}

void InferredTable::refuseLineEnds(const QVector<FoundImage>& images)
{
    for (const FoundImage& image : images) {
        if (image.file.contains(QLatin1Char('\n'))) {
            doubt(QStringLiteral("%1: a name with a line end cannot stand in a table").arg(image.name.simplified()));
        }
    }
}

// Whether emissions alone tell the images apart, but not as filters of whole nanometres from 100 to 999.
bool InferredTable::isOutOfFilters() const
{
    QSet<int> filters;
    QSet<double> emissions;
    bool bOutside = false;
    for (const Row& row : m_rows) {
        if (row.excitation || !row.emission || !row.spotX.isEmpty()) {
            return false;
        }
        bOutside = bOutside || !reasonAgainstWavelength(QString(), *row.emission).isEmpty();
        emissions.insert(*row.emission);
        filters.insert(static_cast<int>(std::round(std::clamp(*row.emission, -maxRounded, maxRounded))));
    }
    return bOutside || (emissions.size() == m_rows.size() && filters.size() < m_rows.size());
}

// Whether what is told of the images makes neither a spectral sequence nor one of times; the note tells why.
bool InferredTable::mustBeNumbered(const QVector<FoundImage>& images)
{
    const auto all = [this](const std::function<bool(const Row&)>& has) {
        return std::all_of(m_rows.cbegin(), m_rows.cend(), has);
    };
    if (m_bTemporal || m_rows.isEmpty()) {
        return false;
    }
    if (!m_bSpectral && m_bInterval) {
        return false; // times were asked for
    }
    if (!m_bSpectral) {
        const bool bFramed =
            std::any_of(images.cbegin(), images.cend(), [](const auto& image) { return image.framed; });
        m_notes.append(bFramed ? QStringLiteral("the images are said to be a series of times, and not how far apart: "
                                                "they are numbered as channels; --interval S makes times of them")
                               : QStringLiteral("nothing tells the images' wavelengths or times: they are numbered as "
                                                "channels; --interval S makes times of numbered frames"));
        return true;
    }
    if (isOutOfFilters()) {
        m_notes.append(QStringLiteral("filters have whole nanometres from 100 to 999: the images are numbered as "
                                      "channels, which keep their wavelengths"));
        return true;
    }
    const bool bOneFile = all([this](const Row& row) { return row.file == m_rows.first().file; });
    const bool bEmissions = all([](const Row& row) { return row.emission.has_value(); });
    const bool bExcitations = all([](const Row& row) { return row.excitation.has_value(); });
    const auto count = [this](const std::function<bool(const Row&)>& has) {
        return std::count_if(m_rows.cbegin(), m_rows.cend(), has);
    };
    const bool bSome = (!bEmissions && count([](const Row& row) { return row.emission.has_value(); }) > 0) ||
                       (!bExcitations && count([](const Row& row) { return row.excitation.has_value(); }) > 0);
    if (bOneFile && bSome) {
        m_notes.append(
            QStringLiteral("the file tells the wavelengths of some of its channels only: they are numbered"));
        return true;
    }
    return false;
}

void InferredTable::number(const QVector<FoundImage>& images)
{
    m_bNumbered = true;
    m_bSpectral = false;
    m_bTemporal = false;
    auto image = images.cbegin();
    for (Row& row : m_rows) {
        QString contradiction;
        const auto wavenumber = oneOf(*image++, Figure::Wavenumber, "wavenumber", &contradiction);
        if (row.channel.isEmpty() && row.excitation) {
            row.channel = row.emission
                              ? QStringLiteral("ex %1 em %2").arg(csvNumber(row.excitation), csvNumber(row.emission))
                              : QStringLiteral("ex %1").arg(csvNumber(row.excitation));
        }
        if (row.emission.value_or(0.0) > 0.0) {
            row.wavelength = row.emission;
        }
        row.wavenumber = row.facts.wavenumber;
        if (wavenumber && wavenumber->value > 0.0) {
            row.wavenumber = wavenumber->value;
            addOrigin(row, *wavenumber);
        }
        row.excitation.reset();
        row.emission.reset();
        row.time.reset();
        row.interval.reset();
        row.spotX.clear();
        row.spotY.clear();
    }
}

void InferredTable::takeSpot(const FoundImage& image, Row& row)
{
    QString sentence;
    const auto x = oneOf(image, Figure::SpotX, "scan spot's x", &sentence);
    const auto y = sentence.isEmpty() ? oneOf(image, Figure::SpotY, "scan spot's y", &sentence) : std::nullopt;
    doubt(sentence);
    if (x && y) {
        row.spotX = x->text;
        row.spotY = y->text;
        addOrigin(row, *x);
    }
}

void InferredTable::takeTimes(const QVector<FoundImage>& images, std::optional<double> interval)
{
    QString sentence;
    std::vector<double> numbers; // times without a unit, of images that have no other
    QVector<std::optional<Figure>> times;
    for (const FoundImage& image : images) {
        std::optional<Figure> time = oneOf(image, Figure::Time, "time", &sentence);
        const auto number = oneOf(image, Figure::TimeNumber, "time", &sentence);
        const auto frame = oneOf(image, Figure::Frame, "frame", &sentence);
        doubt(sentence);
        sentence.clear();
        if (!time && interval && (number || frame)) {
            time = number ? number : frame;
            time->value = rounded(time->value * *interval);
            time->origin += QStringLiteral(" x %1 s").arg(orv::shortestText(*interval));
        } else if (!time && number) {
            numbers.push_back(number->value);
            time = number;
            time->origin += QStringLiteral(", taken as s");
        }
        times.append(time);
    }
    auto row = m_rows.begin();
    for (const auto& time : qAsConst(times)) {
        if (time) {
            row->time = time->value;
        }
        ++row;
    }
    // Which of the two it is only matters where times tell the images apart.
    choose();
    if (m_bTemporal && !numbers.empty() && countsUp(numbers)) {
        doubt(QStringLiteral("the times without a unit count up by one and could be frames: --interval S tells the "
                             "seconds between frames (1 when they are seconds)"));
    } else if (m_bTemporal && !numbers.empty()) {
        m_notes.append(QStringLiteral("times without a unit are taken as seconds; --interval S makes frames of them"));
    }
    for (int i = 0; i < m_rows.size(); ++i) {
        if (times.at(i) && (m_bTemporal || !m_bSpectral)) {
            addOrigin(m_rows[i], *times.at(i));
        }
    }
}

// What tells the images apart: wavelengths, or times at one pair of wavelengths. Of an image alone that has both, only
// its metadata can say.
void InferredTable::choose()
{
    QSet<QString> pairs;
    int wavelengths = 0;
    int times = 0;
    for (const Row& row : m_rows) {
        wavelengths += row.excitation || row.emission ? 1 : 0;
        times += row.time ? 1 : 0;
        pairs.insert(QStringList{csvNumber(row.excitation), csvNumber(row.emission), row.spotX, row.spotY}.join(
            QLatin1Char('/')));
    }
    const bool bApart = pairs.size() == m_rows.size();
    const bool bSaid = std::any_of(m_rows.cbegin(), m_rows.cend(), [](const Row& row) { return row.facts.temporal; });
    m_bSpectral = !bSaid && wavelengths > 0 && (bApart || times == 0 || pairs.size() > 1);
    m_bTemporal = bSaid || (times > 0 && !m_bSpectral);
}

void InferredTable::refuseMissing()
{
    const auto lacking = [this](const std::function<bool(const Row&)>& has, const char* what) {
        const Row* first = nullptr;
        int missing = 0;
        for (const Row& row : m_rows) {
            if (!has(row)) {
                first = first != nullptr ? first : &row;
                ++missing;
            }
        }
        if (missing > 0) {
            doubtOfRows(QStringLiteral("%1 of %2 lack the %3, the first is %4")
                            .arg(missing)
                            .arg(m_rows.size())
                            .arg(QLatin1String(what), first->name));
        }
        return missing;
    };
    const auto excited = [](const Row& row) { return row.excitation.has_value(); };
    const auto emitting = [](const Row& row) { return row.emission.has_value(); };
    if (!m_bSpectral && !m_bTemporal) {
        doubtOfRows(
            QStringLiteral("nothing tells the images' wavelengths or times; names can (ex640_em700, 640-700, t12.5s), "
                           "and --interval S makes times of numbered frames"));
    } else if (m_bTemporal) {
        if (lacking([](const Row& row) { return row.time.has_value(); }, "time")) {
            doubtOfRows(QStringLiteral("--interval S makes times of numbered frames"));
        }
    } else {
        if (std::any_of(m_rows.cbegin(), m_rows.cend(), excited)) {
            lacking(excited, "excitation");
        }
        if (std::any_of(m_rows.cbegin(), m_rows.cend(), emitting)) {
            lacking(emitting, "emission");
        }
        const auto scanned = [](const Row& row) { return !row.spotX.isEmpty(); };
        if (std::any_of(m_rows.cbegin(), m_rows.cend(), scanned)) {
            lacking(scanned, "scan spot");
        }
    }
}

void InferredTable::refuseDuplicates()
{
    QHash<QString, const Row*> first;
    int nTold = 0;
    for (const Row& row : m_rows) {
        QString key;
        if (m_bTemporal && row.time) {
            // Datasets are told apart by their whole second, as single precision holds it.
            key = QStringLiteral("second %1").arg(static_cast<qint64>(static_cast<float>(*row.time)));
        } else if (m_bSpectral && (row.excitation || row.emission)) {
            QStringList parts;
            if (row.excitation) {
                parts.append(QStringLiteral("excitation %1 nm").arg(std::round(*row.excitation)));
            }
            if (row.emission) {
                parts.append(QStringLiteral("emission %1 nm").arg(std::round(*row.emission)));
            }
            if (!row.spotX.isEmpty()) {
                parts.append(QStringLiteral("the spot %1, %2").arg(row.spotX, row.spotY));
            }
            key = parts.join(QStringLiteral(" and "));
        } else {
            continue;
        }
        if (!first.contains(key)) {
            first.insert(key, &row);
        } else if (++nTold <= 3) {
            doubtOfRows(QStringLiteral("%1 and %2 share %3").arg(first.value(key)->name, row.name, key));
        }
    }
    if (nTold > 3) {
        doubtOfRows(QStringLiteral("%1 more share them with another").arg(nTold - 3));
    }
    if (nTold > 0 && m_bTemporal) {
        doubtOfRows(QStringLiteral("images are told apart by the whole seconds of their times"));
    }
    const bool bTimes =
        std::any_of(m_rows.cbegin(), m_rows.cend(), [](const Row& row) { return row.time.has_value(); });
    if (m_bSpectral && bTimes) {
        if (nTold > 0) {
            doubtOfRows(QStringLiteral("both wavelengths and times differ: a sequence is either spectral or temporal"));
        } else {
            m_notes.append(QStringLiteral("the images' times are not used: wavelengths tell them apart"));
        }
    } else if (m_bTemporal && m_rows.size() > 1 && (m_rows.first().excitation || m_rows.first().emission)) {
        m_notes.append(QStringLiteral("the images' times tell them apart: their wavelengths are the same in all"));
    }
}
