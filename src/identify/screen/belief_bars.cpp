// SPDX-License-Identifier: GPL-3.0-or-later
#include "belief_bars.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "contrast.h"
#include "identification_run.h"

namespace m47::identify {
namespace {

constexpr int kGap = 6;
constexpr int kBarMargin = 3;
/// An advance is rounded: the longest name would be cut where it was rounded down.
constexpr int kRounding = 1;
/// A name takes this part of the width at most.
constexpr double kNameShare = 0.55;
/// What is shown of a name at least, and of a bar, in characters.
constexpr int kLeastName = 14;
constexpr int kLeastBar = 8;
/// As many as there are while it asks: the place stays as high as it will be.
constexpr int kUsualLines = 12;

}  // namespace

BeliefBars::BeliefBars(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("identify_bars"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void BeliefBars::show_bars(std::vector<Bar> bars) {
    bars_ = std::move(bars);
    QStringList told;
    for (const Bar& bar : bars_) told += bar.name + u' ' + percent_text(bar.chance);
    setAccessibleDescription(told.join(QStringLiteral(", ")));
    updateGeometry();
    update();
}

void BeliefBars::set_remark(const QString& text) {
    remark_ = text;
    update();
}

int BeliefBars::line() const {
    return fontMetrics().height() + kBarMargin;
}

int BeliefBars::lines() const {
    return std::max(kUsualLines, static_cast<int>(bars_.size()));
}

QSize BeliefBars::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 50, line() * lines()};
}

QSize BeliefBars::minimumSizeHint() const {
    const int percent = fontMetrics().horizontalAdvance(percent_text(1));
    return {fontMetrics().averageCharWidth() * (kLeastName + kLeastBar) + percent + 4 * kGap,
            line() * lines()};
}

int BeliefBars::name_width() const {
    int widest = 0;
    for (const Bar& bar : bars_)
        widest = std::max(widest, fontMetrics().horizontalAdvance(bar.name) + kRounding);
    return std::min(widest, static_cast<int>(width() * kNameShare));
}

void BeliefBars::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) updateGeometry();
    QWidget::changeEvent(event);
}

void BeliefBars::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    if (bars_.empty()) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect().adjusted(kGap, kGap, -kGap, -kGap),
                         Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, remark_);
    }
    const int names = name_width();
    const int percents = fontMetrics().horizontalAdvance(percent_text(1));
    int top = 0;
    for (const Bar& bar : bars_) {
        const QRect name(kGap, top, names, line());
        const QRect percent(width() - percents - kGap, top, percents, line());
        const int left = kGap + names + kGap;
        paint_words(painter, name, percent, bar);
        paint_bar(painter, QRectF(left, top, percent.left() - kGap - left, line()), bar.chance);
        top += line();
    }
}

void BeliefBars::paint_words(QPainter& painter, const QRect& name, const QRect& percent,
                             const Bar& bar) const {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(name, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(bar.name, Qt::ElideRight, name.width()));
    painter.drawText(percent, Qt::AlignRight | Qt::AlignVCenter, percent_text(bar.chance));
}

void BeliefBars::paint_bar(QPainter& painter, const QRectF& room, double chance) const {
    const QColor ground = palette().color(QPalette::Base);
    const QColor colour = palette().color(QPalette::Highlight);
    const QColor outline = just_seen(palette().color(QPalette::Text), ground, kOutlineContrast);
    const bool seen = contrast(colour, ground) >= kOutlineContrast;
    // Where the bars begin is seen where there is none, too.
    painter.fillRect(QRectF(room.left(), room.top(), 1, room.height()), outline);
    const QRectF bar(room.left(), room.top() + kBarMargin,
                     room.width() * std::clamp(chance, 0.0, 1.0), room.height() - 2 * kBarMargin);
    painter.fillRect(bar, seen ? colour : outline);
}

}  // namespace m47::identify
