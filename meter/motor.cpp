// SPDX-License-Identifier: GPL-3.0-or-later
#include "motor.h"

#include <algorithm>

namespace meter {

namespace {

constexpr int kStepsPerSecond = 10;

std::string limit_text(const std::optional<int>& limit) {
    return limit ? std::to_string(*limit) : "none";
}

}  // namespace

void Motor::tick() {
    if (direction_ != 0) move_to(position_ + direction_);
}

void Motor::move_to(int position) {
    position_ = position;
    if (east_limit_) position_ = std::min(position_, *east_limit_);
    if (west_limit_) position_ = std::max(position_, *west_limit_);
}

void Motor::stop() {
    direction_ = 0;
}

void Motor::start_east() {
    direction_ = 1;
}

void Motor::start_west() {
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
    if (found != stored_.end()) {
        direction_ = 0;
        move_to(found->second);
    }
}

void Motor::drive(bool east, int amount, bool in_steps) {
    const int steps = in_steps ? amount : amount * kStepsPerSecond;
    direction_ = 0;
    move_to(east ? position_ + steps : position_ - steps);
}

void Motor::recalculate() {
    for (auto& [number, steps] : stored_) steps -= position_;
    position_ = 0;
}

void Motor::reset() {
    *this = Motor();
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
