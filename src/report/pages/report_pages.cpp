// SPDX-License-Identifier: GPL-3.0-or-later
#include "report_pages.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTextLayout>
#include <algorithm>

#include "verdict_colours.h"

namespace m47::report {
namespace {

// In units of 1/96 inch.
constexpr double kFactCaptionWidth = 130;
constexpr double kCellGap = 8;
constexpr double kSectionGap = 14;
constexpr double kTrendHeight = 430;
constexpr double kFooterHeight = 24;

const QColor kRule(0x99, 0x99, 0x99);

QFont paper_font(double pixels, bool bold) {
    QFont font(QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    font.setPixelSize(static_cast<int>(pixels));
    font.setBold(bold);
    // On paper the letters stand where the font puts them, not where a screen's pixels are.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QStringList wrapped(const QString& text, const QFont& font, double width) {
    QStringList lines;
    for (const QString& paragraph : text.split(u'\n')) {
        QTextLayout layout(paragraph, font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        bool any = false;
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines += paragraph.mid(line.textStart(), line.textLength());
            any = true;
        }
        layout.endLayout();
        if (!any) lines += QString();
    }
    return lines;
}

}  // namespace

ReportPages::ReportPages(const CustomerReport& report, QSizeF size, bool has_trend)
    : size_(size),
      page_number_(report.page_number),
      body_(paper_font(12, false)),
      bold_(paper_font(12, true)),
      title_(paper_font(24, true)),
      heading_(paper_font(15, true)),
      small_(paper_font(10, false)) {
    pages_.append(Page());
    lay_out(report, has_trend);
}

void ReportPages::lay_out(const CustomerReport& report, bool has_trend) {
    add_text(Kind::title, report.title);
    add_gap(kSectionGap);
    for (const auto& [caption, value] : report.facts) add_text(Kind::fact, value, caption);
    if (!report.notes.isEmpty()) add_text(Kind::fact, report.notes, report.notes_caption);
    add_table(report.summary);
    add_table(report.limits);
    add_gap(kSectionGap);
    make_room(height_of(Kind::heading) +
              (has_trend ? height_of(Kind::trend) : height_of(Kind::text)));
    add_text(Kind::heading, report.trend_caption);
    if (has_trend)
        add({.kind = Kind::trend, .cells = {}, .widths = {}});
    else
        add_text(Kind::text, report.no_trend);
    add_table(report.measurements);
}

const QFont& ReportPages::font_of(Kind kind) const {
    switch (kind) {
        case Kind::title:
            return title_;
        case Kind::heading:
            return heading_;
        case Kind::head:
            return bold_;
        case Kind::text:
        case Kind::fact:
        case Kind::row:
        case Kind::trend:
            break;
    }
    return body_;
}

double ReportPages::height_of(Kind kind) const {
    if (kind == Kind::trend) return kTrendHeight;
    const double room = kind == Kind::heading || kind == Kind::title ? 6 : 2;
    return QFontMetricsF(font_of(kind)).height() + room;
}

void ReportPages::make_room(double height) {
    if (y_ + height <= size_.height() - kFooterHeight) return;
    pages_.append(Page());
    y_ = 0;
}

void ReportPages::add_gap(double height) {
    if (y_ > 0) y_ += height;
}

void ReportPages::add(Line line) {
    line.height = height_of(line.kind);
    make_room(line.height);
    line.y = y_;
    y_ += line.height;
    pages_.last().append(std::move(line));
}

void ReportPages::add_text(Kind kind, const QString& text, const QString& before) {
    const double indent = kind == Kind::fact ? kFactCaptionWidth : 0;
    QString caption = before;
    for (const QString& piece : wrapped(text, font_of(kind), size_.width() - indent)) {
        if (kind == Kind::fact)
            add({.kind = kind, .cells = {caption, piece}, .widths = {}});
        else
            add({.kind = kind, .cells = {piece}, .widths = {}});
        caption.clear();
    }
}

QList<double> ReportPages::column_widths(const ReportTable& table) const {
    QList<double> widths;
    const QFontMetricsF bold(bold_);
    const QFontMetricsF body(body_);
    for (const QString& name : table.header) widths += bold.horizontalAdvance(name) + kCellGap;
    for (const QStringList& row : table.rows)
        for (qsizetype k = 0; k < widths.size() && k < row.size(); ++k)
            widths[k] = std::max(widths[k], body.horizontalAdvance(row[k]) + kCellGap);
    double sum = 0;
    for (const double width : widths) sum += width;
    // A cell that is too long for the page gives way to the others, with "…" at its end.
    const double fair = size_.width() / static_cast<double>(widths.size());
    double spare = size_.width();
    double wide = 0;
    for (const double width : widths) {
        if (width > fair)
            wide += width;
        else
            spare -= width;
    }
    for (double& width : widths) {
        if (sum <= size_.width())
            width *= size_.width() / sum;
        else if (width > fair)
            width *= spare / wide;
    }
    return widths;
}

void ReportPages::add_table(const ReportTable& table) {
    add_gap(kSectionGap);
    make_room(height_of(Kind::heading) + 4 * height_of(Kind::row));
    add_text(Kind::heading, table.caption);
    add_text(Kind::text, table.remark);
    if (table.rows.isEmpty()) return;
    const QList<double> widths = column_widths(table);
    const Line head{.kind = Kind::head, .cells = table.header, .widths = widths};
    add(head);
    for (const QStringList& row : table.rows) {
        const qsizetype page = pages_.size();
        make_room(height_of(Kind::row));
        if (pages_.size() != page) add(head);
        add({.kind = Kind::row, .cells = row, .widths = widths});
    }
}

void ReportPages::draw(int number, QPainter& painter, const DrawTrend& draw_trend) const {
    for (const Line& line : pages_[number]) {
        painter.save();
        painter.translate(0, line.y);
        painter.setFont(font_of(line.kind));
        painter.setPen(Qt::black);
        if (line.kind == Kind::trend)
            draw_trend({size_.width(), line.height});
        else
            draw_line(line, painter);
        painter.restore();
    }
    painter.setFont(small_);
    painter.setPen(Qt::black);
    painter.drawText(QRectF(0, size_.height() - kFooterHeight, size_.width(), kFooterHeight),
                     Qt::AlignRight | Qt::AlignBottom,
                     page_number_.arg(number + 1).arg(pages_.size()));
}

void ReportPages::draw_line(const Line& line, QPainter& painter) const {
    const QRectF whole(0, 0, size_.width(), line.height);
    switch (line.kind) {
        case Kind::head:
        case Kind::row:
            draw_cells(line, painter);
            break;
        case Kind::fact:
            painter.setFont(bold_);
            painter.drawText(whole, Qt::AlignLeft | Qt::AlignVCenter, line.cells[0]);
            painter.setFont(body_);
            painter.drawText(whole.adjusted(kFactCaptionWidth, 0, 0, 0),
                             Qt::AlignLeft | Qt::AlignVCenter, line.cells[1]);
            break;
        default:
            painter.drawText(whole, Qt::AlignLeft | Qt::AlignVCenter, line.cells[0]);
    }
}

void ReportPages::draw_cells(const Line& line, QPainter& painter) const {
    const QFontMetricsF metrics(painter.font());
    double x = 0;
    for (qsizetype k = 0; k < line.widths.size() && k < line.cells.size(); ++k) {
        const double room = line.widths[k] - kCellGap;
        const QString text = metrics.horizontalAdvance(line.cells[k]) <= room + 0.5
                                 ? line.cells[k]
                                 : metrics.elidedText(line.cells[k], Qt::ElideRight, room);
        if (line.kind == Kind::row && text == QLatin1String("FAIL"))
            painter.setPen(verdict_colour(false));
        if (line.kind == Kind::row && text == QLatin1String("PASS"))
            painter.setPen(verdict_colour(true));
        painter.drawText(QRectF(x, 0, line.widths[k], line.height),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, text);
        painter.setPen(Qt::black);
        x += line.widths[k];
    }
    painter.setPen(QPen(kRule, line.kind == Kind::head ? 1 : 0.25));
    painter.drawLine(QPointF(0, line.height), QPointF(size_.width(), line.height));
}

}  // namespace m47::report
