// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchFolder.h"

#include "services/batch/batchFiles.h"
#include "services/support/QuietMonitor.h"

#include <QRegularExpression>

namespace {

class BatchPageTest : public BatchFolder
{
protected:
    QString page() const
    {
        QByteArray html;
        writeBatchPage(places(), entries(), {"spum batch x", "spum 1"},
                       [&](const QByteArray& bytes) { html += bytes; });
        return QString::fromUtf8(html);
    }
    static QStringList found(const QString& strHtml, const QString& strPattern)
    {
        QStringList all;
        auto matches = QRegularExpression(strPattern).globalMatch(strHtml);
        while (matches.hasNext()) {
            all.append(matches.next().captured(1));
        }
        return all;
    }
};

} // namespace

TEST_F(BatchPageTest, ShowsEverySequenceThoseThatNeedALookFirst)
{
    addDone("well", 0.01);
    addDone("warned", 0.01, {"odd"});
    addFailed("broken", "no image");
    const QString html = page();
    EXPECT_EQ(found(html, "data-v=\"([^\"]*)\">(?:<a [^>]*>)?(?:well|warned|broken)"),
              (QStringList{"broken", "warned", "well"}));
    EXPECT_TRUE(html.contains("3 in all, 2 done, 1 of them with warnings, 1 without a result"));
    EXPECT_TRUE(html.contains("<li>odd</li>"));
    EXPECT_TRUE(html.contains("<li>no image</li>"));
    EXPECT_TRUE(html.contains("<a href=\"well/report.html\">well</a>"));
    EXPECT_FALSE(html.contains("broken/report.html"));
    EXPECT_TRUE(html.contains("spum batch x"));
    EXPECT_TRUE(html.contains("Dye A <span class=\"share\">50 %</span>"));
}

TEST_F(BatchPageTest, HoldsItsPicturesAndNeedsNothingElse)
{
    addDone("one", 0.01);
    addDone("two", 0.01);
    const QString html = page();
    const QStringList sources = found(html, "src=\"([^\"]*)\"");
    ASSERT_EQ(sources.size(), 2);
    for (const QString& source : sources) {
        ASSERT_TRUE(source.startsWith("data:image/jpeg;base64,"));
        const QImage picture = QImage::fromData(QByteArray::fromBase64(source.mid(source.indexOf(',') + 1).toLatin1()));
        EXPECT_EQ(picture.size(), QSize(320, 240));
    }
    EXPECT_FALSE(html.contains("http"));
    EXPECT_FALSE(html.contains("<link"));
}

// Every column but that of the pictures has a button, and every row as many cells.
TEST_F(BatchPageTest, CanBeSortedByEveryColumn)
{
    addDone("one", 0.01);
    addFailed("two", "no");
    const QString html = page();
    const int columns = html.count("<th") - html.count("<thead");
    EXPECT_EQ(html.count("<button type=\"button\">"), columns - 1);
    for (const QString& row : found(html, "<tr>(<td.*)</tr>")) {
        EXPECT_EQ(row.count("<td"), columns) << qPrintable(row);
    }
    EXPECT_TRUE(html.contains("addEventListener('click'"));
    EXPECT_TRUE(html.contains("@media print"));
}

TEST_F(BatchPageTest, TextsStayTexts)
{
    const QString hostile = "<b>&\"%1 '";
    addDone("well", 0.01, {hostile}, {hostile});
    addFailed("broken", hostile);
    m_jobs[0].group = m_jobs[0].sequence = hostile;
    const QString html = page();
    EXPECT_FALSE(html.contains("<b>"));
    EXPECT_EQ(html.count("&lt;b&gt;&amp;&quot;%1 '"), 5);
}

TEST_F(BatchPageTest, ANameBecomesALinkThatLeadsThere)
{
    addDone("a#b %20?", 0.01);
    EXPECT_TRUE(page().contains("<a href=\"a%23b%20%2520%3F/report.html\">a#b %20?</a>"));
}

TEST_F(BatchPageTest, AFolderWithoutPicturesHasItsRow)
{
    addDone("one", 0.01);
    write("out/one/composite.png", "no picture");
    EXPECT_EQ(found(page(), "src=\"([^\"]*)\""), QStringList());
    EXPECT_TRUE(page().contains(">one</a>"));
}

TEST_F(BatchPageTest, OverallFilesAppearAsAWhole)
{
    addDone("one", 0.01);
    QuietMonitor monitor;
    writeBatchFiles(places(), entries(), {}, monitor, [] {});
    EXPECT_EQ(contentOf(path("out/batch.html")).count("<tr>"), 2);
    const QByteArray before = contentOf(path("out/batch.html"));
    addDone("two", 0.01);
    monitor.stop = true;
    EXPECT_EQ(failureOf([&] { writeBatchFiles(places(), entries(), {}, monitor, [] {}); }), "aborted by user");
    EXPECT_EQ(contentOf(path("out/batch.html")), before);
    EXPECT_EQ(entriesOf(path("out")), (QStringList{".batch", "batch.csv", "batch.html", "batch.json", "one", "two"}));
}
