// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/NameFigures.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace {

// A name longer than this is a text, in which numbers can mean anything.
constexpr int maxNameLength = 300;
// Stands for what has been read, so that no later pattern sees across it.
const QChar readMark = QLatin1Char('|');

QRegularExpression pattern(const char* text)
{
    return QRegularExpression(QString::fromLatin1(text), QRegularExpression::CaseInsensitiveOption);
}

// Reads a name bit by bit; what was understood is blanked.
class NameReader
{
public:
    NameReader(const QString& name, const QString& what) : m_text(name), m_what(what) {}

    NameFigures read()
    {
        readSpot();
        readWavelength(Figure::Excitation);
        readWavelength(Figure::Emission);
        if (!has(Figure::Excitation) && !has(Figure::Emission) && m_found.doubts.isEmpty()) {
            readPair();
        }
        if (!has(Figure::Excitation) && !has(Figure::Emission) && m_found.doubts.isEmpty()) {
            readNanometres();
        }
        if (has(Figure::Excitation) != has(Figure::Emission)) {
            refuseOthers();
        }
        readTime();
        readNumbers();
        return m_found;
    }

private:
    bool has(Figure::Kind kind) const
    {
        return std::any_of(m_found.figures.cbegin(), m_found.figures.cend(),
                           [kind](const Figure& figure) { return figure.kind == kind; });
    }
    void doubt(const QString& sentence) { m_found.doubts.append(sentence); }
    void take(Figure::Kind kind, double value, const QString& text)
    {
        m_found.figures.append({kind, value, QStringLiteral("%1: %2").arg(m_what, text.trimmed())});
    }
    // All matches, which are then blanked.
    QVector<QRegularExpressionMatch> matches(const QRegularExpression& expression)
    {
        QVector<QRegularExpressionMatch> found;
        QRegularExpressionMatchIterator it = expression.globalMatch(m_text);
        while (it.hasNext()) {
            found.append(it.next());
        }
        for (const QRegularExpressionMatch& match : found) {
            m_text.replace(match.capturedStart(), match.capturedLength(), QString(match.capturedLength(), readMark));
        }
        return found;
    }
    // One figure of all matches; two that differ are a doubt.
    void takeOne(Figure::Kind kind, const char* name, const QVector<QRegularExpressionMatch>& found,
                 const QVector<double>& values)
    {
        for (int i = 1; i < values.size(); ++i) {
            if (values.at(i) < values.first() || values.at(i) > values.first()) {
                return doubt(QStringLiteral("\"%1\" and \"%2\" could both be the %3")
                                 .arg(found.first().captured().trimmed(), found.at(i).captured().trimmed(),
                                      QLatin1String(name)));
            }
        }
        if (!values.isEmpty()) {
            take(kind, values.first(), found.first().captured());
        }
    }

    // The same of the numbers that the first part of the expression takes.
    void takeOne(Figure::Kind kind, const char* name, const QVector<QRegularExpressionMatch>& found)
    {
        QVector<double> values;
        for (const QRegularExpressionMatch& match : found) {
            values.append(match.captured(1).toDouble());
        }
        takeOne(kind, name, found, values);
    }

    void readSpot();
    void readWavelength(Figure::Kind kind);
    void readPair();
    void readNanometres();
    void refuseOthers();
    void readTime();
    void readNumbers();

    QString m_text;
    QString m_what;
    NameFigures m_found;
};

// First, so that its numbers are taken for nothing else.
void NameReader::readSpot()
{
    static const QRegularExpression spot =
        pattern(R"((?<![a-z])spot[\s_=:]*x\s?=?([+-]?\d+(?:\.\d+)?)[\s_,;]*y\s?=?([+-]?\d+(?:\.\d+)?)(?![\da-z.]))");
    const QVector<QRegularExpressionMatch> found = matches(spot);
    if (found.size() > 1) {
        return doubt(QStringLiteral("\"%1\" and \"%2\" could both be the scan spot")
                         .arg(found.at(0).captured(), found.at(1).captured()));
    }
    if (!found.isEmpty()) {
        const QRegularExpressionMatch& match = found.first();
        for (const auto& [kind, group] : {std::pair(Figure::SpotX, 1), std::pair(Figure::SpotY, 2)}) {
            take(kind, match.captured(group).toDouble(), match.captured());
            m_found.figures.last().text = match.captured(group);
        }
    }
}

void NameReader::readWavelength(Figure::Kind kind)
{
    static const QRegularExpression excitation = pattern(
        R"((?:(?<![a-z])|(?<=\dnm))(?:excitation|exc|ex)[\s_=:-]*([2-9]\d\d)(?!\d)(?:\s?nm(?![a-df-z]))?(-\d{2,3}(?![\d]))?)");
    static const QRegularExpression emission = pattern(
        R"((?:(?<![a-z])|(?<=\dnm))(?:emission|emi|em)[\s_=:-]*([2-9]\d\d)(?!\d)(?:\s?nm(?![a-df-z]))?(-\d{2,3}(?![\d]))?)");
    const bool exciting = kind == Figure::Excitation;
    const QVector<QRegularExpressionMatch> found = matches(exciting ? excitation : emission);
    for (const QRegularExpressionMatch& match : found) {
        if (!match.captured(2).isEmpty()) {
            return doubt(QStringLiteral("\"%1\" could be a range, or a pair of excitation and emission")
                             .arg(match.captured().trimmed()));
        }
    }
    takeOne(kind, exciting ? "excitation" : "emission", found);
}

void NameReader::readPair()
{
    static const QRegularExpression pair =
        pattern(R"((?<![\da-z.])([2-9]\d\d)(?:\s?nm)?\s?[-_ ]\s?([2-9]\d\d)(?:\s?nm)?(?![\da-z.]))");
    static const QRegularExpression other = pattern(R"((?<![\da-z.])[2-9]\d\d(?:\s?nm)?(?![\da-z.]))");
    const QVector<QRegularExpressionMatch> found = matches(pair);
    if (found.isEmpty()) {
        return;
    }
    const QRegularExpressionMatch third = other.match(m_text);
    if (found.size() > 1 || third.hasMatch()) {
        return doubt(QStringLiteral("beside \"%1\", \"%2\" could be a wavelength too")
                         .arg(found.first().captured(), found.size() > 1 ? found.at(1).captured() : third.captured()));
    }
    const double first = found.first().captured(1).toDouble();
    const double second = found.first().captured(2).toDouble();
    if (!(first < second)) {
        return doubt(
            QStringLiteral("\"%1\" does not ascend, as excitation and emission do").arg(found.first().captured()));
    }
    take(Figure::Excitation, first, found.first().captured());
    take(Figure::Emission, second, found.first().captured());
}

// "700nm" alone; two of them that ascend are a pair whatever stands between them.
void NameReader::readNanometres()
{
    static const QRegularExpression expression = pattern(R"((?<![\d.])([2-9]\d\d)\s?nm(?![a-z]))");
    const QVector<QRegularExpressionMatch> found = matches(expression);
    if (found.size() == 1) {
        take(Figure::Emission, found.first().captured(1).toDouble(), found.first().captured());
    } else if (found.size() == 2 && found.at(0).captured(1) < found.at(1).captured(1)) {
        take(Figure::Excitation, found.at(0).captured(1).toDouble(), found.at(0).captured());
        take(Figure::Emission, found.at(1).captured(1).toDouble(), found.at(1).captured());
    } else if (!found.isEmpty()) {
        doubt(QStringLiteral("\"%1\" and \"%2\" could both be the emission")
                  .arg(found.at(0).captured(), found.at(1).captured()));
    }
}

// With one wavelength of two, another number could be the other one.
void NameReader::refuseOthers()
{
    static const QRegularExpression other = pattern(R"((?<![\da-z.])[2-9]\d\d(?:\s?nm)?(?![\da-z.]))");
    const QRegularExpressionMatch match = other.match(m_text);
    if (match.hasMatch()) {
        doubt(QStringLiteral("\"%1\" could be the %2")
                  .arg(match.captured(),
                       has(Figure::Excitation) ? QStringLiteral("emission") : QStringLiteral("excitation")));
    }
}

double secondsOf(const QString& unit)
{
    const QString lower = unit.toLower();
    return lower == QLatin1String("ms")         ? 1e-3
           : lower == QLatin1String("min")      ? 60.0
           : lower.startsWith(QLatin1Char('h')) ? 3600.0
                                                : 1.0;
}

void NameReader::readTime()
{
    static const QRegularExpression negative = pattern(R"((?<![a-z])(?:time|t)[_ =]?-\s?\d)");
    static const QRegularExpression withUnit = pattern(
        R"((?:(?<![a-z])(?:time|t)[_ =]?|(?<![a-z\d.]))(\d+(?:\.\d+)?)\s?(ms|seconds|secs|sec|s|min|hr|h)(?![a-z]))");
    // A dash alone could stand between two parts of the name.
    static const QRegularExpression below =
        pattern(R"((?<![a-z])(?:time|t)=(-\d+(?:\.\d+)?)\s?(ms|seconds|secs|sec|s|min|hr|h)(?![a-z]))");
    static const QRegularExpression without = pattern(R"((?<![a-z])(?:time|t)[_ =]?(\d+(?:\.\d+)?)(?![\da-z.]))");
    static const QRegularExpression interval = pattern(R"((?<![a-z])(?:interval|int)[_ =]?(\d{1,6})(?![\da-z.]))");
    takeOne(Figure::Interval, "interval", matches(interval));
    QVector<QRegularExpressionMatch> times = matches(below);
    const QRegularExpressionMatch unclear = negative.match(m_text);
    if (unclear.hasMatch()) {
        return doubt(QStringLiteral("\"%1\" could be a time before 0").arg(unclear.captured()));
    }
    times += matches(withUnit);
    QVector<double> values;
    for (const QRegularExpressionMatch& match : times) {
        // Divided rather than multiplied, so that 250 ms are 0.25 s as they are written.
        const double factor = secondsOf(match.captured(2));
        const double number = match.captured(1).toDouble();
        values.append(factor < 1.0 ? number / 1000.0 : number * factor);
    }
    takeOne(Figure::Time, "time", times, values);
    takeOne(Figure::TimeNumber, "time", matches(without));
}

void NameReader::readNumbers()
{
    static const QRegularExpression frame =
        pattern(R"((?<![a-z])(?:frame|fr|f|timepoint|tp|image|img|nr|no)[_ =.#-]?(\d{1,9})(?![\da-z.]))");
    static const QRegularExpression atEnd = pattern(R"((?<![\d.])(\d{1,9})$)");
    takeOne(Figure::Frame, "frame", matches(frame));
    const QRegularExpressionMatch last = atEnd.match(m_text);
    if (m_found.figures.isEmpty() && m_found.doubts.isEmpty() && last.hasMatch()) {
        take(Figure::Frame, last.captured(1).toDouble(), last.captured());
    }
}

} // namespace

NameFigures NameFigures::read(const QString& strName, const QString& strWhat)
{
    return strName.size() > maxNameLength ? NameFigures() : NameReader(strName, strWhat).read();
}
