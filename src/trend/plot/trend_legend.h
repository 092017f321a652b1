// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <vector>

#include "custom_plot.h"

namespace m47::trend {

/// The legend beside an axis rect: a line for each curve with its colour, its name and its figures
/// in columns under their captions. Where there is no room for all, the last line says how many
/// are left out.
class TrendLegend : public QCPLayoutElement {
  public:
    static constexpr std::size_t kFigures = 3;
    struct Line {
        QColor colour;
        QString name;
        std::array<QString, kFigures> figures;

        bool operator==(const Line&) const = default;
    };

    explicit TrendLegend(QCustomPlot* plot);

    void set_captions(const std::array<QString, kFigures>& captions);
    void set_lines(std::vector<Line> lines);
    void set_font(const QFont& font);
    void set_text_colour(const QColor& colour) { text_colour_ = colour; }
    const std::vector<Line>& lines() const { return lines_; }

    QSize minimumOuterSizeHint() const override;
    QSize maximumOuterSizeHint() const override;

  protected:
    void draw(QCPPainter* painter) override;

  private:
    void measure();
    void draw_text(QCPPainter* painter, int top, const QString& text) const;
    void draw_line(QCPPainter* painter, const Line& line, int top) const;
    void draw_figures(QCPPainter* painter, const std::array<QString, kFigures>& figures,
                      int top) const;

    std::array<QString, kFigures> captions_;
    std::vector<Line> lines_;
    QFont font_;
    QColor text_colour_;
    // Measured whenever one of the above has changed: every frame asks for them.
    int line_height_ = 0;
    int name_left_ = 0;
    std::array<int, kFigures> figure_rights_{};
    std::array<int, kFigures> figure_widths_{};
};

}  // namespace m47::trend
