// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QList>
#include <QPainter>
#include <QSizeF>
#include <functional>

#include "customer_report.h"

namespace m47::report {

/// Draws the trend with the given painter into a rectangle of this size, its top left at the
/// painter's origin.
using DrawTrend = std::function<void(QSizeF size)>;

/// The report broken into pages of `size` (in units of 1/96 inch).
class ReportPages {
  public:
    /// `has_trend`: room is left for one, else the report says that there is none.
    ReportPages(const CustomerReport& report, QSizeF size, bool has_trend);

    int count() const { return static_cast<int>(pages_.size()); }

    /// Draws page `number`, counted from 0.
    void draw(int number, QPainter& painter, const DrawTrend& draw_trend) const;

  private:
    enum class Kind { title, heading, text, fact, head, row, trend };
    struct Line {
        Kind kind;
        QStringList cells;
        QList<double> widths;  ///< of the cells
        double y = 0;
        double height = 0;
    };
    using Page = QList<Line>;

    void lay_out(const CustomerReport& report, bool has_trend);
    void add_text(Kind kind, const QString& text, const QString& before = QString());
    void add_table(const ReportTable& table);
    void add(Line line);
    void make_room(double height);
    void add_gap(double height);
    double height_of(Kind kind) const;
    const QFont& font_of(Kind kind) const;
    QList<double> column_widths(const ReportTable& table) const;
    void draw_line(const Line& line, QPainter& painter) const;
    void draw_cells(const Line& line, QPainter& painter) const;

    QSizeF size_;
    QString page_number_;
    QFont body_, bold_, title_, heading_, small_;
    QList<Page> pages_;
    double y_ = 0;
};

}  // namespace m47::report
