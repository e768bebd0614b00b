// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvparser/SectionText.h"

#include "platform/orvparser/QuotedText.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <cerrno>

namespace SectionText {

namespace {

// A file that begins with the first line and lacks the last one was cut off. Both are comments, so a file written by
// hand needs neither.
constexpr char firstLine[] = "# Orvia sections 1";
constexpr char lastLine[] = "# end";

constexpr int mibUtf8 = 106;

class Parser
{
public:
    Parser(const QByteArray& text, const QString& strPath, QList<QSharedPointer<CPLSection>>* pSections,
           QStringList* pWarnings)
        : m_text(text), m_strPath(strPath), m_sections(*pSections), m_pWarnings(pWarnings)
    {
    }

    Outcome run();

private:
    // The next line without its end; CR LF, LF and CR end a line. False behind the last one.
    bool nextLine(QString* pLine);
    QString decode(const QByteArray& line);
    void readLine(const QString& strLine);
    void readHeader(const QString& strLine);
    void readEntry(const QString& strLine);
    void warn(const QString& strWhat);
    void skip(const QString& strWhat);
    Outcome refuse(const QString& strWhat);
    void summariseWarnings();

    const QByteArray& m_text;
    const QString& m_strPath;
    QList<QSharedPointer<CPLSection>>& m_sections;
    QStringList* m_pWarnings;
    int m_nPosition = 0;
    int m_nLine = 0;
    int m_nWarnings = 0;
    bool m_bSkipped = false;
    bool m_bMustEnd = false;
    bool m_bEnded = false;
};

Outcome Parser::run()
{
    m_sections.clear();
    if (m_text.size() > maximumBytes) {
        return refuse(QStringLiteral("more than %1 MiB, no text of keys is that large").arg(maximumBytes >> 20));
    }
    if (m_text.startsWith("\xff\xfe") || m_text.startsWith("\xfe\xff")) {
        return refuse(QStringLiteral("the text is UTF-16; save it as UTF-8"));
    }
    const int binary = m_text.indexOf('\0');
    if (binary >= 0) {
        m_nLine = m_text.left(binary).count('\n') + 1;
        return refuse(QStringLiteral("a zero byte, this is no text"));
    }
    QString line;
    if (m_text.startsWith("\xef\xbb\xbf")) {
        m_nPosition = 3;
    }
    while (nextLine(&line)) {
        if (m_nLine > maximumLines) {
            return refuse(QStringLiteral("more than %1 lines").arg(maximumLines));
        }
        readLine(line.trimmed());
    }
    summariseWarnings();
    if (m_bMustEnd && !m_bEnded) {
        return refuse(
            QStringLiteral("the file is cut off here, its last line \"%1\" is missing").arg(QLatin1String(lastLine)));
    }
    if (m_sections.isEmpty() && !m_bEnded) {
        return refuse(QStringLiteral("no section, a line \"[key] name\", in the file"));
    }
    return m_bSkipped ? Outcome::LinesSkipped : Outcome::Complete;
}

bool Parser::nextLine(QString* pLine)
{
    if (m_nPosition >= m_text.size()) {
        return false;
    }
    int end = m_nPosition;
    while (end < m_text.size() && m_text[end] != '\n' && m_text[end] != '\r') {
        ++end;
    }
    ++m_nLine;
    *pLine = decode(QByteArray::fromRawData(m_text.constData() + m_nPosition, end - m_nPosition));
    m_nPosition = end + 1;
    if (m_text.mid(end, 2) == "\r\n") {
        ++m_nPosition;
    }
    return true;
}

QString Parser::decode(const QByteArray& line)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = QTextCodec::codecForMib(mibUtf8)->toUnicode(line.constData(), line.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0) {
        return text;
    }
    warn(QStringLiteral("not UTF-8, read as Latin-1"));
    return QString::fromLatin1(line);
}

void Parser::readLine(const QString& strLine)
{
    if (m_nLine == 1 && strLine == QLatin1String(firstLine)) {
        m_bMustEnd = true;
    } else if (m_bMustEnd && strLine == QLatin1String(lastLine)) {
        m_bEnded = true;
    } else if (strLine.startsWith(QLatin1Char('['))) {
        readHeader(strLine);
    } else if (!strLine.isEmpty() && !strLine.startsWith(QLatin1Char('#'))) {
        readEntry(strLine);
    }
}

void Parser::readHeader(const QString& strLine)
{
    int start = 1;
    while (start < strLine.size() && strLine[start].isSpace()) {
        ++start;
    }
    QString key;
    int end = 0;
    if (QuotedText::read(strLine, start, &key, &end)) {
        while (end < strLine.size() && strLine[end].isSpace()) {
            ++end;
        }
        if (end < strLine.size() && strLine[end] == QLatin1Char(']')) {
            m_sections.append(QSharedPointer<CPLSection>::create(key, QuotedText::readRest(strLine.mid(end + 1))));
            return;
        }
    }
    end = strLine.indexOf(QLatin1Char(']'));
    // A section all the same: the entries below must not end up in the section above.
    if (end < 0) {
        warn(QStringLiteral("the section's key is not closed by \"]\""));
        end = strLine.size();
    }
    m_sections.append(QSharedPointer<CPLSection>::create(strLine.mid(1, end - 1).trimmed(),
                                                         QuotedText::readRest(strLine.mid(end + 1))));
}

void Parser::readEntry(const QString& strLine)
{
    QString key;
    int colon = 0;
    bool quoted = QuotedText::read(strLine, 0, &key, &colon);
    if (quoted) {
        while (colon < strLine.size() && strLine[colon].isSpace()) {
            ++colon;
        }
        quoted = colon < strLine.size() && strLine[colon] == QLatin1Char(':');
    }
    if (!quoted) {
        colon = strLine.indexOf(QLatin1Char(':'));
        key = strLine.left(colon).trimmed();
    }
    if (colon < 0) {
        skip(QStringLiteral("neither \"[section]\" nor \"key: value\", the line is skipped"));
    } else if (m_sections.isEmpty()) {
        skip(QStringLiteral("an entry before the first section, the line is skipped"));
    } else {
        m_sections.last()->addKeyValue(key, QuotedText::readRest(strLine.mid(colon + 1)));
    }
}

void Parser::warn(const QString& strWhat)
{
    if (++m_nWarnings <= maximumWarnings && m_pWarnings) {
        m_pWarnings->append(QStringLiteral("%1:%2: %3").arg(m_strPath, QString::number(m_nLine), strWhat));
    }
}

void Parser::skip(const QString& strWhat)
{
    m_bSkipped = true;
    warn(strWhat);
}

void Parser::summariseWarnings()
{
    if (m_nWarnings > maximumWarnings && m_pWarnings) {
        m_pWarnings->append(
            QStringLiteral("%1: %2 more warnings").arg(m_strPath, QString::number(m_nWarnings - maximumWarnings)));
    }
}

Outcome Parser::refuse(const QString& strWhat)
{
    m_sections.clear();
    if (m_pWarnings) {
        m_pWarnings->append(m_nLine > 0 ? QStringLiteral("%1:%2: %3").arg(m_strPath, QString::number(m_nLine), strWhat)
                                        : QStringLiteral("%1: %2").arg(m_strPath, strWhat));
    }
    return Outcome::Refused;
}

QString headerLine(const CPLSection& section)
{
    QString key;
    QString name;
    section.getSectionKey(&key);
    section.getSectionName(&name, false);
    const QString header = QLatin1Char('[') + QuotedText::write(key, QStringLiteral("]")) + QLatin1Char(']');
    return name.isEmpty() ? header : header + QLatin1Char(' ') + QuotedText::write(name);
}

QString entryLine(const QString& strKey, const QString& strValue)
{
    // An empty key is quoted: a line that begins with a colon looks like a slip.
    const QString key = strKey.isEmpty() ? QStringLiteral("\"\"")
                                         : QuotedText::write(strKey, QStringLiteral(":"), QStringLiteral("[#"));
    return strValue.isEmpty() ? key + QLatin1Char(':') : key + QLatin1String(": ") + QuotedText::write(strValue);
}

} // namespace

Outcome parse(const QByteArray& text, const QString& strPath, QList<QSharedPointer<CPLSection>>* pSections,
              QStringList* pWarnings)
{
    return Parser(text, strPath, pSections, pWarnings).run();
}

QByteArray toText(const QList<QSharedPointer<CPLSection>>& sections)
{
    QString text = QLatin1String(firstLine) + QLatin1Char('\n');
    for (const auto& pSection : sections) {
        text += QLatin1Char('\n') + headerLine(*pSection) + QLatin1Char('\n');
        QStringList keys;
        QStringList values;
        pSection->getKeyList(&keys);
        pSection->getValueList(&values);
        for (int i = 0; i < keys.size(); ++i) {
            text += entryLine(keys[i], values[i]) + QLatin1Char('\n');
        }
    }
    text += QLatin1Char('\n') + QLatin1String(lastLine) + QLatin1Char('\n');
    return text.toUtf8();
}

bool readFile(const QString& strPath, QByteArray* pBytes, QString* pError)
{
    const auto fail = [&strPath, pError](const QString& strReason) {
        *pError = QStringLiteral("%1: cannot be read: %2").arg(strPath, strReason);
        return false;
    };
    const QFileInfo info(strPath);
    // A pipe would wait for ever, a device never end.
    if (info.exists() && !info.isFile()) {
        return fail(QStringLiteral("not a file"));
    }
    if (info.size() > maximumBytes) {
        return fail(QStringLiteral("more than %1 MiB, no text of keys is that large").arg(maximumBytes >> 20));
    }
    QFile file(strPath);
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(errno == ENOENT ? QStringLiteral("no such file") : file.errorString());
    }
    *pBytes = file.read(maximumBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        return fail(file.errorString());
    }
    return true;
}

} // namespace SectionText
