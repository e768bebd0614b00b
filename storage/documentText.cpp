// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/documentText.h"

#include "host/CORVLog.h"
#include "spectra/logLine.h"

#include <QByteArray>
#include <QDomElement>
#include <QDomNamedNodeMap>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QStringList>
#include <QTextCodec>
#include <QVector>

#include <algorithm>

namespace {

constexpr int deepestElement = 256;
// An element with three attributes takes a kilobyte and a half; thirty components of ten thousand images are well below
// this.
constexpr int mostElements = 500000;
constexpr int mostAttributes = 1000; // of an element
// Sixteen components of two million pixels in a document of the first generation.
constexpr qint64 largestFile = qint64{512} << 20;
constexpr int utf8Mib = 106; // its number in the registry of character sets

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

// Behind the start tag whose name begins at i, and how many values are in it; quoted values may hold a ">".
int behindTag(const QString& text, int i, int* pValues)
{
    *pValues = 0;
    while (i < text.size() && text.at(i) != QLatin1Char('>')) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            const int nEnd = text.indexOf(c, i + 1);
            ++*pValues;
            i = nEnd < 0 ? text.size() : nEnd;
        }
        ++i;
    }
    return std::min(i + 1, text.size());
}

struct Extent
{
    int depth = 0;
    int elements = 0;
    int attributes = 0;    // most in an element
    bool entities = false; // it declares some
};

// Of a well-formed text or of the part of another that a parser gets through.
Extent extentOf(const QString& text)
{
    Extent extent;
    int nDepth = 0;
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
            extent.entities = extent.entities || standsAt(text, i, "<!ENTITY");
            i += 2;
        } else {
            int nValues = 0;
            const int nEnd = behindTag(text, i + 1, &nValues);
            extent.attributes = std::max(extent.attributes, nValues);
            extent.depth = std::max(extent.depth, nDepth + 1);
            ++extent.elements;
            nDepth += standsAt(text, nEnd - 2, "/>") ? 0 : 1;
            i = nEnd;
        }
        i = text.indexOf(QLatin1Char('<'), i);
    }
    return extent;
}

bool refuseExtent(const QString& text, QDomDocument* pDocument, QString* pReason)
{
    const Extent extent = extentOf(text);
    if (extent.depth > deepestElement) {
        *pReason = QStringLiteral("elements lie more than %1 deep").arg(deepestElement);
    } else if (extent.elements > mostElements) {
        *pReason = QStringLiteral("more than %1 elements").arg(mostElements);
    } else if (extent.attributes > mostAttributes) {
        *pReason = QStringLiteral("more than %1 attributes in an element").arg(mostAttributes);
    } else if (extent.entities) {
        *pReason = QStringLiteral("it declares entities, no saved result does");
    } else {
        return false;
    }
    *pDocument = QDomDocument();
    return true;
}

// The encoding of a document: by its mark, else by its zero bytes, else as its first line says, else UTF-8. Null for
// one that is unknown.
QTextCodec* codecOf(const QByteArray& bytes)
{
    static const QRegularExpression declared(QStringLiteral("^<\\?xml[^>]*\\sencoding\\s*=\\s*[\"']([^\"']*)[\"']"));
    constexpr int longestDeclaration = 256;
    if (bytes.size() > 1 && (bytes.at(0) == '\0') != (bytes.at(1) == '\0')) {
        return QTextCodec::codecForName(bytes.at(0) == '\0' ? "UTF-16BE" : "UTF-16LE");
    }
    const auto match = declared.match(QString::fromLatin1(bytes.left(longestDeclaration)));
    const QByteArray name = match.hasMatch() ? match.captured(1).toLatin1() : QByteArrayLiteral("UTF-8");
    return QTextCodec::codecForUtfText(bytes, QTextCodec::codecForName(name));
}

struct Decoded
{
    QString text;
    bool whole = true; // nothing had to be replaced
};

Decoded decodeAs(const QByteArray& bytes, const QTextCodec* pCodec)
{
    QTextCodec::ConverterState state;
    Decoded decoded;
    decoded.text = pCodec->toUnicode(bytes.constData(), bytes.size(), &state);
    // Not every codec counts what it replaces.
    decoded.whole = state.invalidChars == 0 && state.remainingChars == 0 &&
                    (pCodec->mibEnum() == utf8Mib || !decoded.text.contains(QChar::ReplacementCharacter));
    return decoded;
}

// Bytes that are wrong in UTF-8 may be those of the locale, in which results are written.
Decoded decode(const QByteArray& bytes, const QTextCodec* pCodec)
{
    const Decoded asNamed = decodeAs(bytes, pCodec);
    if (asNamed.whole || pCodec->mibEnum() != utf8Mib) {
        return asNamed;
    }
    const Decoded asLocale = decodeAs(bytes, QTextCodec::codecForLocale());
    return asLocale.whole ? asLocale : asNamed;
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
    if (refuseExtent(text, pDocument, pReason)) {
        return false;
    }
    QString strMessage;
    int nLine = 0;
    int nColumn = 0;
    if (pDocument->setContent(text, false, &strMessage, &nLine, &nColumn)) {
        return true;
    }
    *pReason = QStringLiteral("line %1, column %2: %3").arg(nLine).arg(nColumn).arg(strMessage);
    return false;
}

bool parse(const QByteArray& bytes, QDomDocument* pDocument, QString* pReason, QString* pWarning)
{
    *pDocument = QDomDocument();
    QTextCodec* const pCodec = codecOf(bytes);
    if (pCodec == nullptr) {
        *pReason = QStringLiteral("its encoding is unknown");
        return false;
    }
    const Decoded decoded = decode(bytes, pCodec);
    if (pWarning != nullptr) {
        *pWarning = decoded.whole ? QString()
                                  : QStringLiteral("its text is in the bytes of another code page; what cannot be read "
                                                   "is replaced");
    }
    return parse(decoded.text, pDocument, pReason);
}

bool readFile(const QString& strPath, QDomDocument* pDocument, QString* pReason)
{
    *pDocument = QDomDocument();
    QFile file(strPath);
    // A pipe would let us wait for ever. A link that leads nowhere does not exist either; opening it tells why.
    const QFileInfo info(strPath);
    if (info.exists() && !info.isFile()) {
        *pReason = QStringLiteral("not a file");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        *pReason = file.errorString();
        return false;
    }
    if (file.size() > largestFile) {
        *pReason = QStringLiteral("more than %1 MiB, no saved result is that large").arg(largestFile >> 20);
        return false;
    }
    const QByteArray bytes = file.read(largestFile);
    if (file.error() != QFileDevice::NoError) {
        *pReason = file.errorString();
        return false;
    }
    QString strWarning;
    const bool bParsed = parse(bytes, pDocument, pReason, &strWarning);
    if (bParsed && !strWarning.isEmpty()) {
        logLine(strPath + QStringLiteral(": ") + strWarning, CORVLOG_WARNING);
    }
    return bParsed;
}

} // namespace documentText
