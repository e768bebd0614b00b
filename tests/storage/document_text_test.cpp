// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/documentText.h"

#include <QDomDocument>
#include <QRegularExpression>
#include <QStringList>
#include <QTextCodec>

#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// The text with the attributes of each element sorted.
QString sortedAttributes(const QString& strText)
{
    static const QRegularExpression attribute(" [^ =<>\"]+=\"[^\"]*\"");
    QStringList lines = strText.split('\n');
    for (QString& strLine : lines) {
        QStringList found;
        QRegularExpressionMatchIterator i = attribute.globalMatch(strLine);
        while (i.hasNext()) {
            found += i.next().captured();
        }
        std::sort(found.begin(), found.end());
        strLine.remove(attribute);
        strLine += "|" + found.join("|");
    }
    return lines.join('\n');
}

QDomElement newRoot(QDomDocument& document)
{
    return document.appendChild(document.createElement("R")).toElement();
}

QString valueText(const QString& strValue)
{
    QDomDocument document("T");
    newRoot(document).setAttribute("a", strValue);
    EXPECT_EQ(documentText::toText(document), document.toString(1));
    return documentText::toText(document);
}

QString readBack(const QString& strText)
{
    QDomDocument document;
    QString strReason;
    EXPECT_TRUE(documentText::parse(strText, &document, &strReason)) << strReason.toStdString();
    return document.documentElement().attribute("a");
}

QString nested(int nDepth)
{
    return QString("<a>").repeated(nDepth) + QString("</a>").repeated(nDepth);
}

// A character of a text that may stand in a name that a user types: markup, blanks, breaks, beyond ASCII, beyond 16
// bits.
QString anyText(const std::vector<int>& choices)
{
    static const QStringList pieces{"a",      "Z",      "\"",         "&",      "<",  ">", "]]>",
                                    "'",      " ",      "\n",         "\r",     "\t", ";", "&amp;",
                                    "\u00e9", "\u65e5", "\U0001F600", "\u0001", "=",  "]", "\u2028"};
    QString strText;
    for (const int n : choices) {
        strText += pieces.at(static_cast<int>(static_cast<unsigned>(n) % static_cast<unsigned>(pieces.size())));
    }
    return strText;
}

} // namespace

TEST(DocumentTextTest, ADocumentBeginsWithItsTypeAndIsIndentedByOne)
{
    QDomDocument document(documentText::documentType());
    QDomElement root = newRoot(document);
    QDomElement child = root.appendChild(document.createElement("B")).toElement();
    child.appendChild(document.createElement("C"));
    root.appendChild(document.createElement("D"));
    const QString strExpected = "<!DOCTYPE ORV.SpectralUnmixingResults.Data>\n<R>\n <B>\n  <C/>\n </B>\n <D/>\n</R>\n";
    EXPECT_EQ(documentText::toText(document), strExpected);
    EXPECT_EQ(document.toString(1), strExpected);
}

TEST(DocumentTextTest, ThePrologueIsALine)
{
    EXPECT_EQ(documentText::prologue(), QString("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
}

TEST(DocumentTextTest, AnEmptyDocumentIsAnEmptyText)
{
    EXPECT_EQ(documentText::toText(QDomDocument()), QDomDocument().toString(1));
}

TEST(DocumentTextTest, AttributesStandInTheirOrderAndUnknownOnesLast)
{
    QDomDocument document;
    QDomElement root = newRoot(document);
    for (const char* pName : {"zeta", "Origin", "Row", "alpha", "Note", "Version", "Name", "Col", "Date.Time"}) {
        root.setAttribute(pName, "1");
    }
    EXPECT_EQ(
        documentText::toText(document),
        QString("<R Date.Time=\"1\" Version=\"1\" Note=\"1\" Name=\"1\" Origin=\"1\" Col=\"1\" Row=\"1\" alpha=\"1\" "
                "zeta=\"1\"/>\n"));
}

TEST(DocumentTextTest, MarkupAndBreaksAreEscaped)
{
    EXPECT_TRUE(valueText("a\"b&c<d>e]]>f\ng\rh\ti").contains("a=\"a&quot;b&amp;c&lt;d>e]]&gt;f&#xa;g&#xd;h&#x9;i\""));
    EXPECT_TRUE(valueText(QString::fromUtf8("caf\u00e9 \u65e5\u672c \U0001F600"))
                    .contains(QString::fromUtf8("caf\u00e9 \u65e5\u672c \U0001F600")));
    EXPECT_TRUE(valueText("  blanks  ").contains("\"  blanks  \""));
    EXPECT_TRUE(valueText(QString()).contains("a=\"\""));
    EXPECT_TRUE(valueText(">]]").contains("\">]]\""));
}

TEST(DocumentTextTest, CharactersAtWhichReadersStopAreLeftOut)
{
    QDomDocument document;
    newRoot(document).setAttribute("a", QString("x") + QChar(0xFFFE) + "y" + QChar(0xFFFF) + "&");
    EXPECT_EQ(documentText::toText(document), QString("<R a=\"xy&amp;\"/>\n"));
}

TEST(DocumentTextTest, WhatWasReadBeforeTheDamageIsKept)
{
    QDomDocument document;
    QString strReason;
    EXPECT_FALSE(documentText::parse(QString("<R a=\"1\">\n<B/><C"), &document, &strReason));
    EXPECT_EQ(document.documentElement().attribute("a"), QString("1"));
    EXPECT_EQ(document.documentElement().firstChildElement().tagName(), QString("B"));
    EXPECT_TRUE(strReason.startsWith("line 2, column ")) << strReason.toStdString();
}

TEST(DocumentTextTest, WhatIsNoDocumentIsEmpty)
{
    QDomDocument document;
    QString strReason;
    for (const char* pText : {"", "no document", "<", "<!--", "<a b='", "\xEF\xBB\xBF"}) {
        EXPECT_FALSE(documentText::parse(QString::fromUtf8(pText), &document, &strReason)) << pText;
        EXPECT_FALSE(documentText::parse(QByteArray(pText), &document, &strReason)) << pText;
    }
}

TEST(DocumentTextTest, ADepthThatWouldOverrunTheStackIsRefused)
{
    QDomDocument document;
    QString strReason;
    EXPECT_TRUE(documentText::parse(nested(256), &document, &strReason));
    EXPECT_FALSE(documentText::parse(nested(257), &document, &strReason));
    EXPECT_TRUE(document.isNull() || document.documentElement().isNull());
    EXPECT_EQ(strReason, QString("elements lie more than 256 deep"));
    const QString strDeep = nested(300000);
    EXPECT_FALSE(documentText::parse(strDeep, &document, &strReason));
    EXPECT_FALSE(documentText::parse(strDeep.toLatin1(), &document, &strReason));
    EXPECT_FALSE(documentText::parse(QString("<a>").repeated(300000), &document, &strReason));
}

TEST(DocumentTextTest, TheDepthIsThatOfElementsOnly)
{
    QDomDocument document;
    QString strReason;
    const QString strMany = QString("<B c=\"1>2\" d='\"'/><C></C><!-- <x><x> -->").repeated(1000);
    EXPECT_TRUE(documentText::parse("<?xml version=\"1.0\"?><!DOCTYPE R><R>" + strMany + "<![CDATA[<a><a>]]></R>",
                                    &document, &strReason));
    // A comment or a section of data does not make the way back up.
    const QString strHidden = QString("<a><!-- </a> --><![CDATA[</a>]]>").repeated(300000);
    EXPECT_FALSE(documentText::parse(strHidden, &document, &strReason));
}

TEST(DocumentTextTest, MoreElementsOrAttributesThanAResultHasAreRefused)
{
    QDomDocument document;
    QString strReason;
    EXPECT_FALSE(documentText::parse("<R>" + QString("<a/>").repeated(500000) + "</R>", &document, &strReason));
    EXPECT_EQ(strReason, QString("more than 500000 elements"));
    QString strMany = "<R";
    for (int i = 0; i < 1000; ++i) {
        strMany += QString(" a%1='>'").arg(i);
    }
    EXPECT_TRUE(documentText::parse(strMany + "/>", &document, &strReason));
    EXPECT_FALSE(documentText::parse(strMany + " b=\"\"/>", &document, &strReason));
    EXPECT_EQ(strReason, QString("more than 1000 attributes in an element"));
    EXPECT_TRUE(document.documentElement().isNull());
}

TEST(DocumentTextTest, DeclaredEntitiesAreRefusedInEveryEncoding)
{
    const QString strText = "<!DOCTYPE R [<!ENTITY a \"b\">]><R c=\"&a;\"/>";
    QDomDocument document;
    QString strReason;
    EXPECT_FALSE(documentText::parse(strText, &document, &strReason));
    EXPECT_EQ(strReason, QString("it declares entities, no saved result does"));
    for (const char* pName : {"UTF-8", "UTF-16", "UTF-16LE", "UTF-16BE"}) {
        strReason.clear();
        const QByteArray bytes = QTextCodec::codecForName(pName)->fromUnicode(strText);
        EXPECT_FALSE(documentText::parse(bytes, &document, &strReason)) << pName;
        EXPECT_EQ(strReason, QString("it declares entities, no saved result does")) << pName;
    }
}

TEST(DocumentTextTest, BytesAreReadInTheEncodingThatTheyName)
{
    QDomDocument document;
    QString strReason;
    ASSERT_TRUE(documentText::parse(QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?><R a=\"caf\xC3\xA9\"/>"),
                                    &document, &strReason));
    EXPECT_EQ(document.documentElement().attribute("a"), QString::fromUtf8("caf\u00e9"));
}

// Only UTF-8 is in doubt: its writers take the bytes of their locale.
TEST(DocumentTextTest, WrongBytesAreReadInTheCodePageOfTheLocale)
{
    QTextCodec* const pBefore = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    QDomDocument document;
    QString strReason;
    QString strWarning;
    EXPECT_TRUE(documentText::parse(QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?><R a=\"caf\xE9\"/>"),
                                    &document, &strReason, &strWarning));
    QTextCodec::setCodecForLocale(pBefore);
    EXPECT_EQ(document.documentElement().attribute("a"), QString::fromUtf8("caf\u00e9"));
    EXPECT_TRUE(strWarning.isEmpty());
}

TEST(DocumentTextTest, WrongBytesOfNoCodePageAreReplaced)
{
    QTextCodec* const pBefore = QTextCodec::codecForLocale();
    for (const char* pName : {"UTF-8", "US-ASCII", "Shift_JIS"}) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(pName));
        QDomDocument document;
        QString strReason;
        QString strWarning;
        EXPECT_TRUE(documentText::parse(QByteArray("<R a=\"x\xFF\xE9\"/>"), &document, &strReason, &strWarning))
            << pName;
        EXPECT_TRUE(document.documentElement().attribute("a").startsWith(QString("x") + QChar(0xFFFD))) << pName;
        EXPECT_EQ(strWarning, QString("its text is in the bytes of another code page; what cannot be read is replaced"))
            << pName;
    }
    QTextCodec::setCodecForLocale(pBefore);
}

RC_GTEST_PROP(DocumentTextLaw, ItIsQtsTextButForTheOrderOfAttributes, (const std::vector<std::vector<int>>& values))
{
    static const QStringList names{"Version", "Name", "Col", "Row", "value", "Text.Data", "other", "Note"};
    QDomDocument document("D");
    std::vector<QDomElement> open{newRoot(document)};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto nParent = *rc::gen::inRange<std::size_t>(0, open.size());
        QDomElement element = open[nParent].appendChild(document.createElement(QString("E%1").arg(i))).toElement();
        for (int a = 0; a < static_cast<int>(values[i].size() % 6); ++a) {
            element.setAttribute(names.at((a * 3 + static_cast<int>(i)) % names.size()), anyText(values[i]));
        }
        open.push_back(element);
    }
    RC_ASSERT(sortedAttributes(documentText::toText(document)) == sortedAttributes(document.toString(1)));
}

RC_GTEST_PROP(DocumentTextLaw, AnyValueComesBack, (const std::vector<int>& choices))
{
    const QString strValue = anyText(choices);
    RC_ASSERT(readBack(valueText(strValue)) == strValue);
}
