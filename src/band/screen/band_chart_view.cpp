// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_chart_view.h"

#include <QLabel>
#include <QVBoxLayout>

#include "busy_input.h"

namespace m47::band {
namespace {

constexpr Bilingual kNoChart{"No chart: %1 is missing or damaged.",
                             "Nessun grafico: %1 manca o è danneggiato."};
constexpr Bilingual kChartName{"Levels of the band", "Livelli della banda"};
/// The least height of the chart, in lines.
constexpr int kChartLines = 9;

}  // namespace

BandChartView::BandChartView(QWidget* parent) : QWidget(parent), layout_(new QVBoxLayout(this)) {
    layout_->setContentsMargins(0, 0, 0, 0);
    setMinimumHeight(fontMetrics().height() * kChartLines);
}

BandChart* BandChartView::chart(const Texts& texts) {
    if (chart_) return chart_;
    auto* const charts = part_.offer<BandCharts>();
    if (!charts) {
        show_missing(texts);
        return nullptr;
    }
    chart_ = charts->make(this);
    chart_->on_place_clicked = [this](double mhz, std::size_t marker) {
        Q_EMIT place_clicked(mhz, marker);
    };
    chart_->on_marker_moved = [this](std::size_t marker, bool up) {
        Q_EMIT marker_moved(marker, up);
    };
    chart_->on_flag_clicked = [this](std::size_t flag) { Q_EMIT flag_clicked(flag); };
    chart_->widget()->setAccessibleName(texts.pick(kChartName));
    // A sweep takes minutes: who looks at it wants to zoom and to mark meanwhile.
    act_while_busy(chart_->widget());
    layout_->addWidget(chart_->widget());
    return chart_;
}

void BandChartView::show_missing(const Texts& texts) {
    if (!missing_) layout_->addWidget(missing_ = new QLabel);
    missing_->setWordWrap(true);
    missing_->setText(texts.pick(kNoChart).arg(part_.fault()));
}

}  // namespace m47::band
