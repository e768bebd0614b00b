// SPDX-License-Identifier: GPL-3.0-or-later
// The report of a result as a page for a browser and as PDF.
#include "services/results/MapsPdf.h"
#include "services/results/ReportHtml.h"
#include "services/results/ReportPdf.h"
#include "services/results/ResultFacts.h"
#include "services/results/ResultReport.h"

#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/pngBytes.h"
#include "services/support/SmallAnalysis.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

QImage picture(int nWidth, int nHeight, const QColor& color)
{
    QImage image(nWidth, nHeight, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

ReportFigure figure(const QString& strTitle, int nWidth = 40, int nHeight = 30)
{
    return {strTitle, orvimage::pngBytes(picture(nWidth, nHeight, Qt::red)), QSize(nWidth, nHeight), QByteArray(),
            nullptr};
}

ReportContent smallContent()
{
    ReportContent content;
    content.title = QStringLiteral("Spectral Unmixing");
    content.subtitle = QStringLiteral("mouse");
    content.facts = {{QStringLiteral("Method"), QStringLiteral("Automatic")}};
    content.composites = {figure(QStringLiteral("Composite"))};
    content.maps = {figure(QStringLiteral("Dye A")), figure(QStringLiteral("Dye B"))};
    content.plots = {figure(QStringLiteral("Pure spectra"))};
    content.components.header = QStringList{QStringLiteral("Component"), QStringLiteral("Share")};
    content.components.rows = {{QStringLiteral("Dye A"), QStringLiteral("25 %")}};
    content.components.colors = QStringList{QStringLiteral("lime")};
    content.tables = {
        ReportTable{QStringLiteral("Properties"), {}, {{QStringLiteral("DataMask"), QStringLiteral("No")}}, {}}};
    content.command = QStringLiteral("spum unmix mouse");
    content.program = QStringLiteral("spum 1");
    return content;
}

// Every source of a picture in the page.
QStringList sourcesIn(const QString& strHtml)
{
    QStringList sources;
    auto found = QRegularExpression(QStringLiteral("src=\"([^\"]*)\"")).globalMatch(strHtml);
    while (found.hasNext()) {
        sources.append(found.next().captured(1));
    }
    return sources;
}

int pagesOf(const QByteArray& pdf)
{
    return pdf.count("/Type /Page\n");
}

// What another program makes of a PDF file: the files of that name, "%d" in it the number of the page.
void readByGhostscript(const QByteArray& pdf, const QStringList& options, const QString& strOut)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("a report.pdf"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(pdf);
    file.close();
    QProcess reader;
    reader.start("gs", QStringList{"-q", "-dNOPAUSE", "-dBATCH"} + options +
                           QStringList{"-sOutputFile=" + strOut, file.fileName()});
    EXPECT_TRUE(reader.waitForFinished(120000));
    EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().constData();
}

// The letters of each page; those of pictures made of pixels are none.
QStringList textsOf(const QByteArray& pdf)
{
    QTemporaryDir folder;
    readByGhostscript(pdf, {"-sDEVICE=txtwrite"}, folder.filePath("%d.txt"));
    QStringList pages;
    for (int i = 1; QFile::exists(folder.filePath(QStringLiteral("%1.txt").arg(i))); ++i) {
        QFile page(folder.filePath(QStringLiteral("%1.txt").arg(i)));
        EXPECT_TRUE(page.open(QIODevice::ReadOnly));
        pages.append(QString::fromUtf8(page.readAll()).simplified());
    }
    return pages;
}

// How many pixels of the right margin of the first page are not white.
int inkInMargin(const QByteArray& pdf)
{
    QTemporaryDir folder;
    readByGhostscript(pdf, {"-sDEVICE=png16m", "-r72", "-dLastPage=1"}, folder.filePath("page.png"));
    const QImage page(folder.filePath("page.png"));
    EXPECT_FALSE(page.isNull());
    constexpr int margin = 40; // of 42.5: 15 mm
    int ink = 0;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = page.width() - margin; x < page.width(); ++x) {
            ink += page.pixel(x, y) == qRgb(255, 255, 255) ? 0 : 1;
        }
    }
    return ink;
}

// A figure of vectors that says its title.
ReportFigure drawing(const QString& strTitle)
{
    ReportFigure made = figure(strTitle, 600, 500);
    made.paint = [strTitle](QPainter& painter) {
        QFont font("DejaVu Sans");
        font.setPixelSize(30);
        painter.setFont(font);
        painter.drawRect(0, 0, 599, 499);
        painter.drawText(100, 250, strTitle);
    };
    return made;
}

} // namespace

TEST(ReportHtmlTest, ThePageHoldsItsPicturesAndNeedsNothingElse)
{
    const QString html = QString::fromUtf8(reportHtml(smallContent()));
    const QStringList sources = sourcesIn(html);
    ASSERT_EQ(sources.size(), 4);
    for (const QString& source : sources) {
        ASSERT_TRUE(source.startsWith(QStringLiteral("data:image/png;base64,"))) << qPrintable(source.left(40));
        const QByteArray bytes = QByteArray::fromBase64(source.mid(source.indexOf(',') + 1).toLatin1());
        EXPECT_EQ(QImage::fromData(bytes), picture(40, 30, Qt::red));
    }
    EXPECT_FALSE(html.contains(QStringLiteral("http")));
    EXPECT_FALSE(html.contains(QStringLiteral("<link")));
    EXPECT_FALSE(html.contains(QStringLiteral("<script")));
}

TEST(ReportHtmlTest, ADrawingThatScalesIsTakenBeforeItsPixels)
{
    ReportContent content = smallContent();
    content.plots[0].svg = "<svg/>";
    const QStringList sources = sourcesIn(QString::fromUtf8(reportHtml(content)));
    EXPECT_EQ(sources.last(), QStringLiteral("data:image/svg+xml;base64,") + QByteArray("<svg/>").toBase64());
}

TEST(ReportHtmlTest, TextsOfTheUserStayTexts)
{
    ReportContent content = smallContent();
    const QString hostile = QStringLiteral("<b>&\"%1 '");
    content.subtitle = content.note = content.command = content.program = hostile;
    content.warnings = QStringList{hostile};
    content.facts = {{hostile, hostile}};
    content.maps[0].title = hostile;
    content.components.rows = {{hostile, hostile}};
    content.components.colors = QStringList{QStringLiteral("red;} body{display:none")};
    content.tables[0].title = hostile;
    const QString html = QString::fromUtf8(reportHtml(content));
    EXPECT_FALSE(html.contains(QStringLiteral("<b>")));
    EXPECT_EQ(html.count(QStringLiteral("&lt;b&gt;&amp;&quot;%1 '")), 12);
    EXPECT_FALSE(html.contains(QStringLiteral("display:none")));
}

TEST(ReportHtmlTest, WhatIsNotThereHasNoHeading)
{
    ReportContent content;
    content.title = QStringLiteral("Empty");
    const QString html = QString::fromUtf8(reportHtml(content));
    EXPECT_TRUE(html.contains(QStringLiteral("<h1>Empty</h1>")));
    EXPECT_FALSE(html.contains(QStringLiteral("<h2>")));
    EXPECT_TRUE(html.trimmed().endsWith(QStringLiteral("</html>")));
}

TEST(ReportPdfTest, AShortReportFitsOnAPage)
{
    const QByteArray pdf = reportPdf(smallContent());
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    EXPECT_EQ(pagesOf(pdf), 1);
}

TEST(ReportPdfTest, AnEmptyReportIsAPage)
{
    EXPECT_EQ(pagesOf(reportPdf(ReportContent())), 1);
}

TEST(ReportPdfTest, MoreThanAPageHoldsGoesToTheNext)
{
    ReportContent content = smallContent();
    content.maps.clear();
    for (int i = 0; i < 12; ++i) {
        content.maps.append(figure(QString::number(i), 600, 600));
    }
    const int pages = pagesOf(reportPdf(content));
    EXPECT_GE(pages, 2);
    EXPECT_LE(pages, 4);
}

TEST(ReportPdfTest, ATableHigherThanAPageIsCut)
{
    ReportContent content;
    ReportTable table;
    for (int i = 0; i < 400; ++i) {
        table.rows.append({QString::number(i), QStringLiteral("value")});
    }
    content.tables = {table};
    const int pages = pagesOf(reportPdf(content));
    EXPECT_GE(pages, 5);
    EXPECT_LE(pages, 20);
}

TEST(ReportPdfTest, DrawingsStayLettersAndLines)
{
    ReportContent content = smallContent();
    content.plots = {drawing("Emission 700 nm")};
    const QStringList pages = textsOf(reportPdf(content));
    ASSERT_EQ(pages.size(), 1);
    EXPECT_TRUE(pages[0].contains("Emission 700 nm")) << qPrintable(pages[0]);
}

TEST(ReportPdfTest, ALongNameLeavesRoomForTheNumbersBesideIt)
{
    for (const QString& name :
         {QString("Autofluorescence of the tissue below the fur and of all regions together"), QString(150, 'W')}) {
        ReportContent content = smallContent();
        content.components.header = QStringList{"Component"};
        content.components.rows = {QStringList{name}};
        for (int i = 0; i < 8; ++i) {
            content.components.header << QStringLiteral("Number%1").arg(i);
            content.components.rows[0] << QString::number(1.2345 + i);
        }
        EXPECT_EQ(inkInMargin(reportPdf(content)), 0) << qPrintable(name);
        const QString text = textsOf(reportPdf(content)).join(' ');
        EXPECT_TRUE(text.contains("8.2345")) << qPrintable(text);
        EXPECT_TRUE(text.contains("Number7")) << qPrintable(text);
    }
}

TEST(ReportPdfTest, NoPageIsEmptyHoweverManyPicturesThereAre)
{
    for (const int count : {1, 2, 3, 5, 6, 7, 12}) {
        ReportContent content = smallContent();
        content.maps.clear();
        content.composites.clear();
        for (int i = 0; i < count; ++i) {
            content.maps.append(drawing(QStringLiteral("map%1").arg(i)));
            content.composites.append(drawing(QStringLiteral("composite%1").arg(i)));
        }
        content.plots = {drawing("plot")};
        const QStringList pages = textsOf(reportPdf(content));
        EXPECT_LE(pages.size(), 2 + count / 3) << count;
        const QString all = pages.join(' ');
        for (int i = 0; i < count; ++i) {
            EXPECT_TRUE(all.contains(QStringLiteral("map%1").arg(i))) << count;
        }
        for (int i = 0; i < pages.size(); ++i) {
            QString text = pages[i];
            text.remove(content.program).remove(QStringLiteral("%1 / %2").arg(i + 1).arg(pages.size()));
            EXPECT_FALSE(text.trimmed().isEmpty()) << count << " pictures, page " << i + 1;
        }
    }
}

TEST(MapsPdfTest, SixMapsAPageWithLettersAndNoEmptyPage)
{
    CILImage map;
    map.InitWithType(ORVTYPE_FLOAT, 8, 8);
    for (const int count : {1, 6, 7, 12, 13}) {
        MapsPdf pdf("Spectral Unmixing", "spum");
        for (int i = 0; i < count; ++i) {
            orvimage::RenderMapOptions options;
            options.title = QStringLiteral("Dye%1").arg(i);
            options.note = "one scale for all spots";
            options.hasRange = true;
            options.maximum = 1.0;
            pdf.add(orvimage::MapPicture(map, nullptr, options));
        }
        const QStringList pages = textsOf(pdf.finish());
        ASSERT_EQ(pages.size(), (count + 5) / 6) << count;
        EXPECT_TRUE(pages.last().contains(QStringLiteral("Dye%1").arg(count - 1))) << qPrintable(pages.last());
        EXPECT_TRUE(pages.last().contains("one scale for all spots"));
        EXPECT_TRUE(pages.last().contains("0.8")) << "numbers at the bar";
    }
}

TEST(MapsPdfTest, WithoutMapsAPage)
{
    MapsPdf pdf("Spectral Unmixing", "spum");
    pdf.add(orvimage::MapPicture(CILImage(), nullptr, {}));
    EXPECT_TRUE(pdf.finish().startsWith("%PDF-"));
}

TEST(ReportPdfTest, APictureThatIsNoneLeavesItsTitle)
{
    ReportContent content = smallContent();
    content.maps[0].png = "no picture";
    const QByteArray pdf = reportPdf(content);
    EXPECT_EQ(pagesOf(pdf), 1);
    EXPECT_TRUE(textsOf(pdf).value(0).contains(content.maps[0].title));
}

TEST(ShellLineTest, AShellTakesTheLineApartAgain)
{
    const QStringList arguments{QStringLiteral("printf"),
                                QStringLiteral("%s|"),
                                QStringLiteral("plain-1.0"),
                                QStringLiteral("two words"),
                                QStringLiteral("it's"),
                                QString(),
                                QStringLiteral("$HOME `x` \\ \"q\" *"),
                                QString::fromUtf8("\xC3\xA4")};
    QProcess shell;
    shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), shellLine(arguments)});
    ASSERT_TRUE(shell.waitForFinished(120000));
    EXPECT_EQ(QString::fromUtf8(shell.readAllStandardOutput()), arguments.mid(2).join('|') + '|');
    EXPECT_EQ(shellLine({QStringLiteral("spum"), QStringLiteral("unmix"), QStringLiteral("a/b_c.tif")}),
              QStringLiteral("spum unmix a/b_c.tif"));
}

namespace {

class ResultReportTest : public SmallAnalysis
{
};

QString factOf(const ReportContent& content, const QString& strLabel)
{
    for (const auto& fact : content.facts) {
        if (fact.first == strLabel) {
            return fact.second;
        }
    }
    return QStringLiteral("none");
}

} // namespace

TEST_F(ResultReportTest, TellsNumbersSettingsAndCommand)
{
    analyse();
    ResultFacts facts;
    facts.method = QStringLiteral("library");
    facts.explainedVariance = 98.4375;
    facts.residual = 0.125;
    ComponentFacts dye;
    dye.name = QStringLiteral("Dye A");
    dye.color = QStringLiteral("lime");
    dye.share = 0.25;
    dye.maximum = 4.0;
    facts.components.append(dye);
    dye.name = QStringLiteral("Dye B");
    dye.color = QStringLiteral("red");
    dye.share = 0.75;
    dye.maximum = 2.0;
    facts.components.append(dye);
    facts.warnings = {{RunWarning::Severity::Error, QStringLiteral("saturated"), QStringLiteral("too bright"),
                       QStringLiteral("wait")}};
    ReportFrame frame;
    frame.sequenceName = QStringLiteral("mouse");
    frame.note = QStringLiteral("a note");
    frame.command = QStringLiteral("spum unmix mouse");
    frame.made = QStringLiteral("2026-01-31 12:00");
    const ReportContent content = contentOfReport(engine(), facts, frame);
    EXPECT_EQ(content.title, QStringLiteral("Spectral Unmixing"));
    EXPECT_EQ(content.subtitle, frame.sequenceName);
    EXPECT_EQ(content.note, frame.note);
    EXPECT_EQ(content.warnings, QStringList(QStringLiteral("too bright; wait")));
    EXPECT_EQ(factOf(content, QStringLiteral("Variance explained")), QStringLiteral("98.4375 %"));
    EXPECT_EQ(factOf(content, QStringLiteral("Residual of the data's norm")), QStringLiteral("12.5 %"));
    EXPECT_EQ(factOf(content, QStringLiteral("Method")), QStringLiteral("Library"));
    EXPECT_EQ(factOf(content, QStringLiteral("Ending")), QStringLiteral("none"));
    ASSERT_EQ(content.components.rows.size(), 2);
    EXPECT_EQ(content.components.rows[0].mid(0, 3),
              (QStringList{QStringLiteral("Dye A"), QStringLiteral("25 %"), QStringLiteral("4")}));
    // The images in which the components' spectra are largest.
    EXPECT_EQ(content.components.header.value(3), QStringLiteral("Peak"));
    EXPECT_EQ(content.components.rows[0].value(3), QStringLiteral("640 / 700"));
    EXPECT_EQ(content.components.rows[1].value(3), QStringLiteral("640 / 740"));
    EXPECT_EQ(content.components.colors, (QStringList{QStringLiteral("lime"), QStringLiteral("red")}));
    EXPECT_EQ(content.plots.size(), 1);
    EXPECT_EQ(content.command, frame.command);
    EXPECT_TRUE(content.program.endsWith(QStringLiteral(", 2026-01-31 12:00")));
    QStringList titles;
    for (const ReportTable& table : content.tables) {
        titles.append(table.title);
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Properties of the result"), QStringLiteral("Images")}));
}
