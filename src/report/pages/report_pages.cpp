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

constexpr double kLogoHeight = 64;
constexpr double kLogoWidth = 230;
constexpr double kLetterheadGap = 16;
constexpr double kSignatureHeight = 84;
constexpr double kDrawingsGap = 12;

const QColor kRule(0x99, 0x99, 0x99);

/// On white paper.
QColor tone_colour(CellTone tone) {
    static const QColor kDoubtful(0x8A, 0x5A, 0x00);
    switch (tone) {
        case CellTone::good:
            return verdict_colour(true);
        case CellTone::bad:
            return verdict_colour(false);
        case CellTone::doubtful:
            return kDoubtful;
        case CellTone::plain:
            break;
    }
    return Qt::black;
}

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

ReportPages::ReportPages(QSizeF size, const QString& page_number, const QString& footer)
    : size_(size),
      page_number_(page_number),
      footer_(footer),
      body_(paper_font(12, false)),
      bold_(paper_font(12, true)),
      title_(paper_font(24, true)),
      heading_(paper_font(15, true)),
      small_(paper_font(10, false)),
      cell_(small_),
      head_(paper_font(10, true)) {
    pages_.append(Page());
}

ReportPages::ReportPages(const CustomerReport& report, QSizeF size, bool has_trend)
    : ReportPages(size, report.page_number) {
    cell_ = body_;
    head_ = bold_;
    lay_out(report, has_trend);
}

void ReportPages::add_letterhead(const QImage& logo, const QStringList& lines) {
    if (logo.isNull() && lines.isEmpty()) return;
    const double text = height_of(Kind::heading) +
                        static_cast<double>(lines.size() - 1) * QFontMetricsF(small_).height();
    const double height = std::max(logo.isNull() ? 0 : kLogoHeight, lines.isEmpty() ? 0 : text);
    add({.kind = Kind::letterhead, .cells = lines, .height = height + kCellGap, .logo = logo});
    add_gap(kSectionGap);
}

void ReportPages::add_title(const QString& text) {
    add_text(Kind::title, text);
    add_gap(kSectionGap / 2);
}

void ReportPages::add_heading(const QString& text, double with) {
    add_gap(kSectionGap);
    make_room(height_of(Kind::heading) + std::max(with, 2 * height_of(Kind::row)));
    add_text(Kind::heading, text);
}

void ReportPages::add_paragraph(const QString& text, CellTone tone) {
    add_text(tone == CellTone::plain ? Kind::text : Kind::strong, text, QString(), tone);
}

void ReportPages::add_fact(const QString& caption, const QString& value) {
    if (!value.isEmpty()) add_text(Kind::fact, value, caption);
}

void ReportPages::add_drawings(const QString& caption, const QList<DrawTrend>& drawings,
                               double height) {
    make_room(height_of(Kind::caption) + height + kDrawingsGap);
    add_text(Kind::caption,
             QFontMetricsF(bold_).elidedText(caption, Qt::ElideRight, size_.width()));
    add({.kind = Kind::drawings, .height = height, .drawings = drawings});
    add_gap(kDrawingsGap);
}

void ReportPages::add_signatures(const QStringList& captions) {
    add({.kind = Kind::signatures, .cells = captions, .height = kSignatureHeight});
}

void ReportPages::add_gap() {
    add_gap(kSectionGap / 2);
}

void ReportPages::add_page() {
    if (pages_.last().isEmpty()) return;
    pages_.append(Page());
    y_ = 0;
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
        add({.kind = Kind::trend});
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
        case Kind::strong:
        case Kind::caption:
            return bold_;
        case Kind::groups:
        case Kind::head:
            return head_;
        case Kind::row:
            return cell_;
        default:
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
    if (line.height <= 0) line.height = height_of(line.kind);
    make_room(line.height);
    line.y = y_;
    y_ += line.height;
    pages_.last().append(std::move(line));
}

void ReportPages::add_text(Kind kind, const QString& text, const QString& before, CellTone tone) {
    const double indent = kind == Kind::fact ? kFactCaptionWidth : 0;
    QString caption = before;
    for (const QString& piece : wrapped(text, font_of(kind), size_.width() - indent)) {
        if (kind == Kind::fact)
            add({.kind = kind, .cells = {caption, piece}});
        else
            add({.kind = kind, .cells = {piece}, .tones = {tone}});
        caption.clear();
    }
}

QList<double> ReportPages::column_widths(const ReportTable& table) const {
    QList<double> widths;
    const QFontMetricsF bold(head_);
    const QFontMetricsF body(cell_);
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
    add_head(table, widths);
    for (qsizetype k = 0; k < table.rows.size(); ++k) {
        const qsizetype page = pages_.size();
        make_room(height_of(Kind::row));
        if (pages_.size() != page) add_head(table, widths);
        add({.kind = Kind::row,
             .cells = table.rows[k],
             .widths = widths,
             .tones = table.tones.value(k),
             .numbers = table.numbers});
    }
}

void ReportPages::add_head(const ReportTable& table, const QList<double>& widths) {
    if (!table.groups.isEmpty()) {
        Line over{.kind = Kind::groups};
        qsizetype column = 0;
        for (const auto& [caption, columns] : table.groups) {
            double width = 0;
            for (int k = 0; k < columns; ++k) width += widths.value(column++);
            over.cells += caption;
            over.widths += width;
        }
        add(over);
    }
    add({.kind = Kind::head, .cells = table.header, .widths = widths, .numbers = table.numbers});
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
    draw_footer(number, painter);
}

void ReportPages::draw_footer(int number, QPainter& painter) const {
    painter.setFont(small_);
    painter.setPen(Qt::black);
    const QRectF room(0, size_.height() - kFooterHeight, size_.width(), kFooterHeight);
    const QString page = page_number_.arg(number + 1).arg(pages_.size());
    painter.drawText(room, Qt::AlignRight | Qt::AlignBottom, page);
    const QFontMetricsF metrics(small_);
    const double rest = room.width() - metrics.horizontalAdvance(page) - 4 * kCellGap;
    painter.drawText(room, Qt::AlignLeft | Qt::AlignBottom,
                     metrics.elidedText(footer_, Qt::ElideRight, rest));
}

void ReportPages::draw_line(const Line& line, QPainter& painter) const {
    const QRectF whole(0, 0, size_.width(), line.height);
    switch (line.kind) {
        case Kind::head:
        case Kind::row:
            draw_cells(line, painter);
            break;
        case Kind::groups:
            return draw_groups(line, painter);
        case Kind::drawings:
            return draw_drawings(line, painter);
        case Kind::letterhead:
            return draw_letterhead(line, painter);
        case Kind::signatures:
            return draw_signatures(line, painter);
        case Kind::fact:
            painter.setFont(bold_);
            painter.drawText(whole, Qt::AlignLeft | Qt::AlignVCenter, line.cells[0]);
            painter.setFont(body_);
            painter.drawText(whole.adjusted(kFactCaptionWidth, 0, 0, 0),
                             Qt::AlignLeft | Qt::AlignVCenter, line.cells[1]);
            break;
        default:
            painter.setPen(tone_colour(line.tones.value(0)));
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
        CellTone tone = line.tones.value(k);
        if (line.kind == Kind::row && text == QLatin1String("FAIL")) tone = CellTone::bad;
        if (line.kind == Kind::row && text == QLatin1String("PASS")) tone = CellTone::good;
        painter.setPen(tone_colour(tone));
        const Qt::Alignment side = line.numbers.value(k) ? Qt::AlignRight : Qt::AlignLeft;
        painter.drawText(QRectF(x, 0, room, line.height),
                         static_cast<int>(side | Qt::AlignVCenter) | Qt::TextDontClip, text);
        painter.setPen(Qt::black);
        x += line.widths[k];
    }
    painter.setPen(QPen(kRule, line.kind == Kind::head ? 1 : 0.25));
    painter.drawLine(QPointF(0, line.height), QPointF(size_.width(), line.height));
}

void ReportPages::draw_groups(const Line& line, QPainter& painter) const {
    double x = 0;
    for (qsizetype k = 0; k < line.cells.size(); ++k) {
        const QRectF room(x, 0, line.widths[k] - kCellGap, line.height);
        x += line.widths[k];
        if (line.cells[k].isEmpty()) continue;
        painter.setPen(Qt::black);
        painter.drawText(room, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextDontClip,
                         line.cells[k]);
        painter.setPen(QPen(kRule, 0.5));
        painter.drawLine(room.bottomLeft(), room.bottomRight());
    }
}

void ReportPages::draw_drawings(const Line& line, QPainter& painter) const {
    const auto count = static_cast<double>(line.drawings.size());
    const double width = (size_.width() - (count - 1) * kDrawingsGap) / count;
    for (const DrawTrend& draw : line.drawings) {
        painter.save();
        draw({width, line.height});
        painter.restore();
        painter.translate(width + kDrawingsGap, 0);
    }
}

void ReportPages::draw_letterhead(const Line& line, QPainter& painter) const {
    double x = 0;
    if (!line.logo.isNull()) {
        QSizeF size = line.logo.size();
        size.scale(kLogoWidth, kLogoHeight, Qt::KeepAspectRatio);
        painter.drawImage(QRectF(QPointF(0, 0), size), line.logo);
        x = size.width() + kLetterheadGap;
    }
    double y = 0;
    for (qsizetype k = 0; k < line.cells.size(); ++k) {
        const QFont& font = k == 0 ? heading_ : small_;
        const QFontMetricsF metrics(font);
        painter.setFont(font);
        painter.drawText(QPointF(x, y + metrics.ascent()),
                         metrics.elidedText(line.cells[k], Qt::ElideRight, size_.width() - x));
        y += metrics.height();
    }
    painter.setPen(QPen(kRule, 1));
    painter.drawLine(QPointF(0, line.height), QPointF(size_.width(), line.height));
}

void ReportPages::draw_signatures(const Line& line, QPainter& painter) const {
    const auto count = static_cast<double>(line.cells.size());
    const double width = (size_.width() - (count - 1) * 3 * kCellGap) / count;
    const double rule = line.height - QFontMetricsF(small_).height() - 4;
    painter.setFont(small_);
    const QFontMetricsF metrics(small_);
    for (const QString& caption : line.cells) {
        painter.setPen(QPen(Qt::black, 0.5));
        painter.drawLine(QPointF(0, rule), QPointF(width, rule));
        painter.drawText(QPointF(0, rule + 3 + metrics.ascent()),
                         metrics.elidedText(caption, Qt::ElideRight, width));
        painter.translate(width + 3 * kCellGap, 0);
    }
}

}  // namespace m47::report
