// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_window.h"

#include <algorithm>

namespace m47::trend {
namespace {

constexpr double kShortest = 2;  // seconds: two rows
constexpr double kLeastWhole = 60;
constexpr double kRoomBehind = 0.02;  // of what is shown, behind the newest row

}  // namespace

void TrendWindow::rows_came(TrendRange held, double newest) {
    const bool first = !any_;
    held_ = held;
    newest_ = newest;
    any_ = true;
    if (first || (follows_ && whole_))
        show_all();
    else if (follows_)
        show_newest();
}

void TrendWindow::choose(TrendRange asked) {
    const double most = std::max(held_.span() * 1.2, 2 * kLeastWhole);
    const double span = std::clamp(asked.span(), kShortest, most);
    // Something of what is held stays in sight.
    const double centre = std::clamp((asked.lower + asked.upper) / 2, held_.lower,
                                     std::max(held_.lower, held_.upper));
    shown_ = {centre - span / 2, centre + span / 2};
    whole_ = false;
    if (newest_ < shown_.lower || newest_ > shown_.upper) follows_ = false;
}

void TrendWindow::reset() {
    whole_ = true;
    show_all();
}

void TrendWindow::set_follows(bool follows) {
    follows_ = follows;
    if (!follows) return;
    if (whole_)
        show_all();
    else
        show_newest();
}

void TrendWindow::show_all() {
    if (!any_) return;
    const double missing = std::max(0.0, kLeastWhole - held_.span()) / 2;
    const double room = kRoomBehind * held_.span() + missing;
    shown_ = {held_.lower - room, held_.upper + room};
}

void TrendWindow::show_newest() {
    if (!any_) return;
    const double span = shown_.span();
    shown_.upper = newest_ + kRoomBehind * span;
    shown_.lower = shown_.upper - span;
}

}  // namespace m47::trend
