// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/documentText.h"

#include <QByteArray>
#include <QDomElement>
#include <QDomNamedNodeMap>
#include <QHash>
#include <QStringList>
#include <QVector>

#include <algorithm>

namespace {

constexpr int deepestElement = 256;

// Place of each attribute among those of its element. No two elements disagree, so one list serves all.
const QHash<QString, int>& attributePlaces()
{
    static const QHash<QString, int> places = [] {
        const QStringList names{"Date.Time",
                                "Version",
                                "Note",
                                "id",
                                "Selected",
                                "Name",
                                "Color",
                                "Shape",
                                "Axis",
                                "Origin",
                                "Col",
                                "Row",
                                "Data",
                                "ImageBinning",
                                "ImageWidth",
                                "ImageHeight",
                                "UseMask",
                                "Pixels",
                                "ConcentrationMap",
                                "value",
                                "ColorMap",
                                "Reverse",
                                "Logscale",
                                "MinRatio",
                                "MaxRatio",
                                "IsotopeName",
                                "HalfLife",
                                "IsDecayCorrectionApplied"};
        QHash<QString, int> result;
        for (const QString& name : names) {
            result.insert(name, result.size());
        }
        return result;
    }();
    return places;
}

// In the order of attributePlaces(); those that it does not know come last, by name.
QVector<QDomAttr> orderedAttributes(const QDomElement& element)
{
    const QDomNamedNodeMap map = element.attributes();
    QVector<QDomAttr> attributes;
    attributes.reserve(map.size());
    for (int i = 0; i < map.size(); ++i) {
        attributes.append(map.item(i).toAttr());
    }
    const QHash<QString, int>& places = attributePlaces();
    std::sort(attributes.begin(), attributes.end(), [&places](const QDomAttr& a, const QDomAttr& b) {
        const int nA = places.value(a.name(), places.size());
        const int nB = places.value(b.name(), places.size());
        return nA != nB ? nA < nB : a.name() < b.name();
    });
    return attributes;
}

// What stands for a character in an attribute's value; null for one that stands for itself.
QString escapeOf(const QString& value, int i)
{
    switch (value.at(i).unicode()) {
    case '<':
        return QStringLiteral("&lt;");
    case '"':
        return QStringLiteral("&quot;");
    case '&':
        return QStringLiteral("&amp;");
    case '>':
        return i >= 2 && value.at(i - 1) == QLatin1Char(']') && value.at(i - 2) == QLatin1Char(']')
                   ? QStringLiteral("&gt;")
                   : QString();
    case '\n':
        return QStringLiteral("&#xa;");
    case '\r':
        return QStringLiteral("&#xd;");
    case '\t':
        return QStringLiteral("&#x9;");
    case 0xFFFE:
    case 0xFFFF:
        return QString(QLatin1String(""));
    default:
        return QString();
    }
}

bool standsForItself(ushort c)
{
    return c > '>' ? c < 0xFFFE : c != '<' && c != '"' && c != '&' && c != '>' && c != '\n' && c != '\r' && c != '\t';
}

void appendValue(QString& out, const QString& value)
{
    int nPlain = 0; // from here to i stands for itself
    for (int i = 0; i < value.size(); ++i) {
        if (standsForItself(value.at(i).unicode())) {
            continue;
        }
        const QString escape = escapeOf(value, i);
        if (!escape.isNull()) {
            out.append(value.constData() + nPlain, i - nPlain);
            out += escape;
            nPlain = i + 1;
        }
    }
    out.append(value.constData() + nPlain, value.size() - nPlain);
}

void appendElement(QString& out, const QDomElement& element, int nDepth)
{
    const QString indent(nDepth, QLatin1Char(' '));
    out += indent + QLatin1Char('<') + element.tagName();
    for (const QDomAttr& attribute : orderedAttributes(element)) {
        out += QLatin1Char(' ') + attribute.name() + QLatin1String("=\"");
        appendValue(out, attribute.value());
        out += QLatin1Char('"');
    }
    QDomElement child = element.firstChildElement();
    if (child.isNull()) {
        out += QLatin1String("/>\n");
        return;
    }
    out += QLatin1String(">\n");
    for (; !child.isNull(); child = child.nextSiblingElement()) {
        appendElement(out, child, nDepth + 1);
    }
    out += indent + QLatin1String("</") + element.tagName() + QLatin1String(">\n");
}

bool standsAt(const QString& text, int i, const char* pWord)
{
    const QLatin1String word(pWord);
    return text.midRef(i, word.size()) == word;
}

// Where to go on behind the next `pEnd` from i; the text's end when there is none.
int behind(const QString& text, int i, const char* pEnd)
{
    const QLatin1String end(pEnd);
    const int nAt = text.indexOf(end, i);
    return nAt < 0 ? text.size() : nAt + end.size();
}

// Behind the start tag whose name begins at i; quoted values may hold a ">".
int behindTag(const QString& text, int i)
{
    while (i < text.size() && text.at(i) != QLatin1Char('>')) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            const int nEnd = text.indexOf(c, i + 1);
            i = nEnd < 0 ? text.size() : nEnd;
        }
        ++i;
    }
    return std::min(i + 1, text.size());
}

// How deep the elements of a well-formed text lie, or of the part of another that a parser gets through.
int deepestNesting(const QString& text)
{
    int nDepth = 0;
    int nDeepest = 0;
    int i = text.indexOf(QLatin1Char('<'));
    while (i >= 0 && i < text.size()) {
        if (standsAt(text, i, "<!--")) {
            i = behind(text, i + 4, "-->");
        } else if (standsAt(text, i, "<![CDATA[")) {
            i = behind(text, i, "]]>");
        } else if (standsAt(text, i, "<?")) {
            i = behind(text, i, "?>");
        } else if (standsAt(text, i, "</")) {
            nDepth = std::max(0, nDepth - 1);
            i += 2;
        } else if (standsAt(text, i, "<!")) {
            i += 2;
        } else {
            const int nEnd = behindTag(text, i + 1);
            nDeepest = std::max(nDeepest, nDepth + 1);
            nDepth += standsAt(text, nEnd - 2, "/>") ? 0 : 1;
            i = nEnd;
        }
        i = text.indexOf(QLatin1Char('<'), i);
    }
    return nDeepest;
}

bool refuseDepth(const QString& text, QDomDocument* pDocument, QString* pReason)
{
    if (deepestNesting(text) <= deepestElement) {
        return false;
    }
    *pDocument = QDomDocument();
    *pReason = QStringLiteral("elements lie more than %1 deep").arg(deepestElement);
    return true;
}

template <class Content>
bool setContent(const Content& content, QDomDocument* pDocument, QString* pReason)
{
    QString strMessage;
    int nLine = 0;
    int nColumn = 0;
    if (pDocument->setContent(content, false, &strMessage, &nLine, &nColumn)) {
        return true;
    }
    *pReason = QStringLiteral("line %1, column %2: %3").arg(nLine).arg(nColumn).arg(strMessage);
    return false;
}

} // namespace

namespace documentText {

QString documentType()
{
    return QStringLiteral("ORV.SpectralUnmixingResults.Data");
}

QString prologue()
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
}

QString toText(const QDomDocument& document)
{
    QString text;
    const QString strType = document.doctype().name();
    if (!strType.isEmpty()) {
        text += QStringLiteral("<!DOCTYPE %1>\n").arg(strType);
    }
    const QDomElement root = document.documentElement();
    if (!root.isNull()) {
        appendElement(text, root, 0);
    }
    return text;
}

bool parse(const QString& text, QDomDocument* pDocument, QString* pReason)
{
    return !refuseDepth(text, pDocument, pReason) && setContent(text, pDocument, pReason);
}

bool parse(const QByteArray& bytes, QDomDocument* pDocument, QString* pReason)
{
    // The marks of elements are the same in every encoding that has ASCII in it; one of two bytes a character counts by its marks.
    return !refuseDepth(QString::fromLatin1(bytes), pDocument, pReason) && setContent(bytes, pDocument, pReason);
}

} // namespace documentText
