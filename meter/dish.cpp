// SPDX-License-Identifier: GPL-3.0-or-later
#include "dish.h"

#include <algorithm>

namespace meter {

namespace {

constexpr double kStepsPerDegree = 10.0;

}  // namespace

Dish::Dish(double east, int backlash, int slack)
    : start_(east), backlash_(backlash), slack_(slack) {}

void Dish::follow(int shaft) {
    // The shaft moves freely between two teeth and takes the dish along at either.
    const int pushed_east = shaft - slack_;
    dish_ = std::clamp(dish_, pushed_east, pushed_east + backlash_);
}

double Dish::east() const {
    return start_ + dish_ / kStepsPerDegree;
}

}  // namespace meter
