// SPDX-License-Identifier: GPL-3.0-or-later
#include "span_view.h"

#include <QLabel>
#include <QVBoxLayout>
#include <utility>

namespace m47::logger {
namespace {

constexpr Bilingual kNotLoaded{"No curve: %1 is missing or damaged.",
                               "Nessuna curva: %1 manca o è danneggiato."};

}  // namespace

SpanView::SpanView(QWidget* parent) : QWidget(parent), layout_(new QVBoxLayout(this)) {
    layout_->setContentsMargins(0, 0, 0, 0);
}

void SpanView::make_chart(const Texts& texts) {
    auto* const charts = part_.offer<SpanCharts>();
    if (charts) {
        chart_ = charts->make(this);
        chart_->on_point_clicked = [this](int row) { Q_EMIT point_clicked(row); };
        layout_->addWidget(chart_->widget());
        return;
    }
    if (!missing_) layout_->addWidget(missing_ = new QLabel);
    missing_->setWordWrap(true);
    missing_->setText(texts.pick(kNotLoaded).arg(part_.fault()));
}

void SpanView::show_points(SpanPoints points, const Texts& texts) {
    points_ = std::move(points);
    if (!chart_) make_chart(texts);
    if (chart_) chart_->show_points(points_);
}

}  // namespace m47::logger
