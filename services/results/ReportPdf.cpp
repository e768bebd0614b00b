// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ReportPdf.h"

#include "XTNT/xtnt_parallel.h"
#include "platform/orvimage/PictureFont.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QTextDocument>
#include <QTextOption>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

// Pixels of the page's layout an inch; text and pictures are placed in them and painted at the resolution of the file.
constexpr int layoutDpi = 96;
constexpr int fileDpi = 300;
constexpr double marginMillimetres = 15.0;
constexpr double footerPixels = 24.0;
constexpr int footerTextPixels = 10;
constexpr double textPoints = 8.5;
// Pictures side by side: with three, the numbers at their bars could not be read.
constexpr int pairARow = 2;
constexpr int factsARow = 3;
// Room between the pictures of a row, in pixels.
constexpr int gap = 10;
// Between one block of the page and the next.
constexpr double blockGap = 12.0;
// Of the page, at most, for a picture alone.
constexpr double pictureShare = 0.4;
// And for a row of them: three fit on a page.
constexpr double rowShare = 0.31;

const char* const pageStyle = "h1 { font-size: 18pt; margin: 0; } h2 { font-size: 12pt; margin-top: 14px; }"
                              "h3 { font-size: 10pt; margin-top: 8px; margin-bottom: 2px; } .soft { color: #5c6670; }";

QString escaped(const QString& strText)
{
    return strText.toHtmlEscaped();
}

// What stays together on a page.
class Block
{
public:
    Block() = default;
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    virtual ~Block() = default;

    virtual double height() = 0;
    // The part from `dFrom` on, no higher than `dHeight`, at the painter's origin.
    virtual void paint(QPainter& painter, double dFrom, double dHeight) const = 0;
};

// A piece of rich text: a subset of HTML 4, in which tables stand for grids.
class TextBlock : public Block
{
public:
    explicit TextBlock(double dWidth)
    {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(textPoints);
        m_document.setDefaultFont(font);
        m_document.setDocumentMargin(0);
        m_document.setDefaultStyleSheet(QLatin1String(pageStyle));
        // Names as long as a page is wide are broken too.
        QTextOption option = m_document.defaultTextOption();
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        m_document.setDefaultTextOption(option);
        m_document.setTextWidth(dWidth);
    }

    TextBlock& operator+=(const QString& strHtml)
    {
        m_strHtml += strHtml;
        return *this;
    }

    double height() override
    {
        XTNT::cancellationPoint();
        if (m_strHtml.isEmpty()) {
            return 0.0;
        }
        m_document.setHtml(m_strHtml);
        return m_document.size().height();
    }

    void paint(QPainter& painter, double dFrom, double dHeight) const override
    {
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = QRectF(0, dFrom, m_document.size().width(), dHeight);
        context.palette.setColor(QPalette::Text, Qt::black);
        painter.save();
        painter.translate(0, -dFrom);
        painter.setClipRect(context.clip);
        m_document.documentLayout()->draw(&painter, context);
        painter.restore();
    }

private:
    QTextDocument m_document;
    QString m_strHtml;
};

// Pictures side by side below a heading, each as large as its part of the row allows; those that are made of vectors
// stay so. A picture that cannot be read leaves its title.
class PictureBlock : public Block
{
public:
    PictureBlock(const QString& strHeading, const QList<ReportFigure>& figures, int nColumns, const QSizeF& page)
        : m_heading(page.width())
    {
        m_heading += strHeading;
        m_dTop = m_heading.height();
        const QSizeF room((page.width() - gap * (nColumns - 1)) / nColumns,
                          page.height() * (nColumns > 1 ? rowShare : pictureShare));
        double left = (page.width() - figures.size() * room.width() - gap * (figures.size() - 1)) / 2.0;
        for (const ReportFigure& figure : figures) {
            XTNT::cancellationPoint();
            Picture picture{figure, figure.paint ? QImage() : QImage::fromData(figure.png), QRectF()};
            const QSizeF size = figure.paint ? QSizeF(figure.size) : QSizeF(picture.image.size());
            const double fitting =
                std::min(room.width() / std::max(1.0, size.width()), room.height() / std::max(1.0, size.height()));
            const double factor = figure.paint ? fitting : std::min(1.0, fitting); // pixels are not made larger
            const QSizeF shown = size.isEmpty() ? QSizeF(room.width(), footerPixels) : size * factor;
            picture.place = QRectF(QPointF(left + (room.width() - shown.width()) / 2.0, m_dTop), shown);
            m_dHeight = std::max(m_dHeight, shown.height());
            m_pictures.push_back(picture);
            left += room.width() + gap;
        }
    }

    double height() override { return m_dTop + m_dHeight; }

    void paint(QPainter& painter, double dFrom, double /*dHeight*/) const override
    {
        painter.save();
        painter.translate(0, -dFrom);
        m_heading.paint(painter, 0.0, m_dTop);
        for (const Picture& picture : m_pictures) {
            XTNT::cancellationPoint();
            paintPicture(painter, picture);
        }
        painter.restore();
    }

private:
    struct Picture
    {
        ReportFigure figure;
        QImage image; // of one that is not made of vectors
        QRectF place;
    };

    static void paintPicture(QPainter& painter, const Picture& picture)
    {
        painter.save();
        if (picture.figure.paint) {
            painter.translate(picture.place.topLeft());
            painter.scale(picture.place.width() / picture.figure.size.width(),
                          picture.place.height() / picture.figure.size.height());
            picture.figure.paint(painter);
        } else if (!picture.image.isNull()) {
            painter.drawImage(picture.place, picture.image);
        } else {
            painter.drawText(picture.place, Qt::AlignCenter, picture.figure.title);
        }
        painter.restore();
    }

    TextBlock m_heading;
    std::vector<Picture> m_pictures;
    double m_dTop = 0.0;    // below the heading
    double m_dHeight = 0.0; // of the highest picture
};

using Blocks = std::vector<std::unique_ptr<Block>>;

// The report taken apart into blocks.
class Composer
{
public:
    explicit Composer(const QSizeF& page) : m_page(page) {}

    Blocks compose(const ReportContent& content)
    {
        addHead(content);
        addPictures(QStringLiteral("Composite"), content.composites, content.composites.size() > 1 ? pairARow : 1);
        addPictures(QStringLiteral("Maps"), content.maps, content.maps.size() > 1 ? pairARow : 1);
        addPictures(QStringLiteral("Spectra"), content.plots, 1);
        if (!content.components.rows.isEmpty()) {
            addTable(QStringLiteral("<h2>Components</h2>"), content.components);
        }
        for (int i = 0; i < content.tables.size(); ++i) {
            addTable((i == 0 ? QStringLiteral("<h2>Settings</h2>") : QString()) + QStringLiteral("<h3>") +
                         escaped(content.tables[i].title) + QStringLiteral("</h3>"),
                     content.tables[i]);
        }
        if (!content.command.isEmpty()) {
            add() += QStringLiteral("<h2>Command</h2><p style=\"font-family:'DejaVu Sans Mono',monospace\">") +
                     escaped(content.command) + QStringLiteral("</p>");
        }
        return std::move(m_blocks);
    }

private:
    TextBlock& add()
    {
        auto block = std::make_unique<TextBlock>(m_page.width());
        TextBlock& added = *block;
        m_blocks.push_back(std::move(block));
        return added;
    }

    void addHead(const ReportContent& content)
    {
        TextBlock& block = add();
        block += QStringLiteral("<h1>") + escaped(content.title) + QStringLiteral("</h1><p class=\"soft\">") +
                 escaped(content.subtitle) + QStringLiteral("</p>");
        if (!content.note.isEmpty()) {
            block += QStringLiteral("<p style=\"white-space:pre-wrap\"><b>Note:</b> ") + escaped(content.note) +
                     QStringLiteral("</p>");
        }
        for (const QString& warning : content.warnings) {
            block += QStringLiteral("<p><b>Warning:</b> ") + escaped(warning) + QStringLiteral("</p>");
        }
        block += QStringLiteral("<table width=\"100%\" cellpadding=\"3\">");
        for (int i = 0; i < content.facts.size(); i += factsARow) {
            block += QStringLiteral("<tr>");
            for (int k = i; k < i + factsARow; ++k) {
                const auto fact = content.facts.value(k);
                block += QStringLiteral("<td width=\"33%\"><span class=\"soft\">") + escaped(fact.first) +
                         QStringLiteral("</span><br><b>") + escaped(fact.second) + QStringLiteral("</b></td>");
            }
            block += QStringLiteral("</tr>");
        }
        block += QStringLiteral("</table>");
    }

    void addPictures(const QString& strTitle, const QList<ReportFigure>& figures, int nColumns)
    {
        for (int i = 0; i < figures.size(); i += nColumns) {
            const QString heading =
                i == 0 ? QStringLiteral("<h2>") + escaped(strTitle) + QStringLiteral("</h2>") : QString();
            m_blocks.push_back(std::make_unique<PictureBlock>(heading, figures.mid(i, nColumns), nColumns, m_page));
        }
    }

    void addTable(const QString& strTitle, const ReportTable& table)
    {
        const bool pairs = table.header.isEmpty();
        TextBlock& block = add();
        block += strTitle + QStringLiteral("<table width=\"100%\" cellspacing=\"0\" cellpadding=\"3\">");
        if (!pairs) {
            block += QStringLiteral("<tr>");
            for (int k = 0; k < table.header.size(); ++k) {
                block += cellBegin(k, pairs) + QStringLiteral("<span class=\"soft\">") + escaped(table.header[k]) +
                         QStringLiteral("</span></td>");
            }
            block += QStringLiteral("</tr>");
        }
        for (int i = 0; i < table.rows.size(); ++i) {
            block += i % 2 == 0 ? QStringLiteral("<tr bgcolor=\"#f2f4f6\">") : QStringLiteral("<tr>");
            for (int k = 0; k < table.rows[i].size(); ++k) {
                block += cellBegin(k, pairs) + (k == 0 ? patch(table.colors.value(i)) : QString()) +
                         escaped(table.rows[i][k]) + QStringLiteral("</td>");
            }
            block += QStringLiteral("</tr>");
        }
        block += QStringLiteral("</table>");
    }

    // Names and values stand close together in a table of pairs, numbers to the right in a table with a header.
    static QString cellBegin(int nColumn, bool bPairs)
    {
        if (bPairs) {
            return nColumn == 0 ? QStringLiteral("<td width=\"35%\">") : QStringLiteral("<td>");
        }
        return nColumn == 0 ? QStringLiteral("<td style=\"font-size:7.5pt\">")
                            : QStringLiteral("<td align=\"right\" style=\"white-space:nowrap; font-size:7.5pt\">");
    }

    static QString patch(const QString& strColor)
    {
        const QColor color(strColor);
        return color.isValid() ? QStringLiteral("<span style=\"background-color:%1\">&nbsp;&nbsp;&nbsp;</span>&nbsp;")
                                     .arg(color.name())
                               : QString();
    }

    QSizeF m_page;
    Blocks m_blocks;
};

// A piece of a block and where it stands.
struct Piece
{
    const Block* block = nullptr;
    double from = 0.0; // within the block
    double height = 0.0;
    int page = 0;
    double top = 0.0; // on the page
};

// Blocks one below the other; one that does not fit what is left of a page goes to the next, one higher than a page is
// cut.
std::vector<Piece> placed(const Blocks& blocks, double dPageHeight)
{
    std::vector<Piece> pieces;
    int page = 0;
    double top = 0.0;
    for (const auto& block : blocks) {
        const double height = block->height();
        if (top > 0.0 && top + height > dPageHeight) {
            ++page;
            top = 0.0;
        }
        const int parts = static_cast<int>(std::ceil(height / dPageHeight));
        for (int part = 0; part < parts; ++part) {
            const double from = part * dPageHeight;
            page += part > 0 ? 1 : 0;
            pieces.push_back({block.get(), from, std::min(dPageHeight, height - from), page, top});
        }
        top = blockGap + (height > dPageHeight ? std::fmod(height, dPageHeight) : top + height);
    }
    return pieces;
}

void paintFooter(QPainter& painter, const QSizeF& page, const QString& strText, const QString& strNumber)
{
    const QRectF footer(0, page.height() + footerPixels / 4, page.width(), footerPixels);
    painter.setPen(QColor(0x5c, 0x66, 0x70));
    // In pixels of the layout: points would be taken at the file's resolution.
    painter.setFont(orvimage::pictureFont(footerTextPixels));
    painter.drawText(footer, Qt::AlignLeft | Qt::AlignVCenter, strText);
    painter.drawText(footer, Qt::AlignRight | Qt::AlignVCenter, strNumber);
}

} // namespace

QByteArray reportPdf(const ReportContent& content)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly)) {
        return QByteArray();
    }
    QPdfWriter writer(&buffer);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(marginMillimetres, marginMillimetres, marginMillimetres, marginMillimetres),
                          QPageLayout::Millimeter);
    writer.setResolution(fileDpi);
    writer.setTitle(content.title);
    writer.setCreator(content.program);

    const QSizeF paper = writer.pageLayout().paintRectPixels(layoutDpi).size();
    const QSizeF page(std::floor(paper.width()), std::floor(paper.height() - footerPixels));
    const Blocks blocks = Composer(page).compose(content);
    const std::vector<Piece> pieces = placed(blocks, page.height());
    QPainter painter;
    if (!painter.begin(&writer)) {
        return QByteArray();
    }
    painter.setRenderHint(QPainter::LosslessImageRendering);
    painter.scale(static_cast<double>(fileDpi) / layoutDpi, static_cast<double>(fileDpi) / layoutDpi);
    const int pages = pieces.empty() ? 1 : pieces.back().page + 1;
    int shown = -1;
    for (const Piece& piece : pieces) {
        XTNT::cancellationPoint();
        if (piece.page != shown) {
            if (shown >= 0) {
                writer.newPage();
            }
            shown = piece.page;
            paintFooter(painter, page, content.program, QStringLiteral("%1 / %2").arg(shown + 1).arg(pages));
        }
        painter.save();
        painter.translate(0, piece.top);
        piece.block->paint(painter, piece.from, piece.height);
        painter.restore();
    }
    painter.end();
    return bytes;
}
