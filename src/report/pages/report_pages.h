// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QImage>
#include <QList>
#include <QPainter>
#include <QSizeF>
#include <functional>

#include "customer_report.h"

namespace m47::report {

/// Draws the trend with the given painter into a rectangle of this size, its top left at the
/// painter's origin.
using DrawTrend = std::function<void(QSizeF size)>;

/// A report broken into pages of `size` (in units of 1/96 inch), piece by piece in the order in
/// which it is read.
class ReportPages {
  public:
    /// Nothing yet. `page_number` is "Page %1 of %2", `footer` stands at its left on every page.
    ReportPages(QSizeF size, const QString& page_number, const QString& footer = {});
    /// That of the page, its tables in larger letters. `has_trend`: room is left for one, else the
    /// report says that there is none.
    ReportPages(const CustomerReport& report, QSizeF size, bool has_trend);

    /// The logo, which may be null, and beside it who writes, the first line larger.
    void add_letterhead(const QImage& logo, const QStringList& lines);
    void add_title(const QString& text);
    /// Stands on one page with what follows it, `with` high.
    void add_heading(const QString& text, double with = 0);
    void add_paragraph(const QString& text, CellTone tone = CellTone::plain);
    void add_fact(const QString& caption, const QString& value);
    void add_table(const ReportTable& table);
    /// A row of drawings of equal width under `caption`, on one page.
    void add_drawings(const QString& caption, const QList<DrawTrend>& drawings, double height);
    /// Places for signatures side by side, on one page.
    void add_signatures(const QStringList& captions);
    void add_gap();
    void add_page();

    int count() const { return static_cast<int>(pages_.size()); }

    /// Draws page `number`, counted from 0.
    void draw(int number, QPainter& painter, const DrawTrend& draw_trend = {}) const;

  private:
    enum class Kind {
        title,
        heading,
        text,
        strong,
        caption,
        fact,
        groups,
        head,
        row,
        trend,
        drawings,
        letterhead,
        signatures
    };
    struct Line {
        Kind kind = Kind::text;
        QStringList cells{};
        QList<double> widths{};  ///< of the cells
        double y = 0;
        double height = 0;
        QList<CellTone> tones{};
        QList<bool> numbers{};
        QList<DrawTrend> drawings{};
        QImage logo{};
    };
    using Page = QList<Line>;

    void lay_out(const CustomerReport& report, bool has_trend);
    void add_text(Kind kind, const QString& text, const QString& before = QString(),
                  CellTone tone = CellTone::plain);
    void add_head(const ReportTable& table, const QList<double>& widths);
    void add(Line line);
    void make_room(double height);
    void add_gap(double height);
    double height_of(Kind kind) const;
    const QFont& font_of(Kind kind) const;
    QList<double> column_widths(const ReportTable& table) const;
    void draw_footer(int number, QPainter& painter) const;
    void draw_line(const Line& line, QPainter& painter) const;
    void draw_cells(const Line& line, QPainter& painter) const;
    void draw_groups(const Line& line, QPainter& painter) const;
    void draw_drawings(const Line& line, QPainter& painter) const;
    void draw_letterhead(const Line& line, QPainter& painter) const;
    void draw_signatures(const Line& line, QPainter& painter) const;

    QSizeF size_;
    QString page_number_;
    QString footer_;
    QFont body_, bold_, title_, heading_, small_;
    QFont cell_, head_;  ///< of tables
    QList<Page> pages_;
    double y_ = 0;
};

}  // namespace m47::report
