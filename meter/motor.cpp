// SPDX-License-Identifier: GPL-3.0-or-later
#include "motor.h"

#include <algorithm>
#include <cmath>

namespace meter {

namespace {

constexpr int kStepsPerSecond = 10;
constexpr int kTimedStepsPerSecond = 15;

std::string limit_text(const std::optional<int>& limit) {
    return limit ? std::to_string(*limit) : "none";
}

}  // namespace

void Motor::tick() {
    if (!takes_time_ && direction_ != 0) position_ = within_limits(position_ + direction_);
}

void Motor::turn_for(double seconds) {
    if (!takes_time_ || direction_ == 0) return;
    steps_due_ += seconds * kTimedStepsPerSecond;
    while (direction_ != 0 && steps_due_ >= 1.0) {
        steps_due_ -= 1.0;
        step();
    }
}

void Motor::step() {
    const int next = within_limits(position_ + direction_);
    if (next == position_ || next == target_) stop();
    position_ = next;
}

int Motor::within_limits(int position) const {
    if (east_limit_) position = std::min(position, *east_limit_);
    if (west_limit_) position = std::max(position, *west_limit_);
    return position;
}

void Motor::move_to(int position) {
    stop();
    const int target = within_limits(position);
    if (!takes_time_) {
        position_ = target;
    } else if (target != position_) {
        direction_ = target > position_ ? 1 : -1;
        target_ = target;
    }
}

void Motor::stop() {
    direction_ = 0;
    steps_due_ = 0.0;
    target_.reset();
}

void Motor::start_east() {
    stop();
    direction_ = 1;
}

void Motor::start_west() {
    stop();
    direction_ = -1;
}

void Motor::disable_limits() {
    east_limit_.reset();
    west_limit_.reset();
}

void Motor::delete_east_limit() {
    east_limit_.reset();
}

void Motor::delete_west_limit() {
    west_limit_.reset();
}

void Motor::store(int position) {
    stored_[position] = position_;
}

void Motor::recall(int position) {
    const auto found = stored_.find(position);
    if (found != stored_.end()) move_to(found->second);
}

void Motor::drive(bool east, int amount, bool in_steps) {
    const int a_second = takes_time_ ? kTimedStepsPerSecond : kStepsPerSecond;
    const int steps = in_steps ? amount : amount * a_second;
    move_to(east ? position_ + steps : position_ - steps);
}

void Motor::recalculate() {
    for (auto& [number, steps] : stored_) steps -= position_;
    if (target_) *target_ -= position_;
    recounted_ += position_;
    position_ = 0;
}

void Motor::reset() {
    const int reference_away = shaft();
    const bool takes_time = takes_time_;
    *this = Motor();
    if (!takes_time) return;
    // The shaft is not put back by forgetting where it stands.
    take_time();
    position_ = reference_away;
    move_to(0);
}

std::string Motor::describe() const {
    std::string text = "position " + std::to_string(position_);
    text += direction_ == 0 ? " stopped" : direction_ > 0 ? " driving east" : " driving west";
    text += " east-limit " + limit_text(east_limit_) + " west-limit " + limit_text(west_limit_);
    for (const auto& [number, steps] : stored_)
        text += " stored[" + std::to_string(number) + "]=" + std::to_string(steps);
    return text;
}

}  // namespace meter
