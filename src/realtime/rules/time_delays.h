// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTime>
#include <array>

namespace m47::realtime {

/// An entry of the list `time_delay` and the seconds that it puts between two timed firings.
struct TimeDelay {
    const char* entry;
    int seconds;
};

/// The first entry loads one second although it reads "5 sec"; technicians rely on it.
inline constexpr std::array<TimeDelay, 15> kTimeDelays{{
    {"5 sec", 1},
    {"10 sec", 10},
    {"20 sec", 20},
    {"40 sec", 40},
    {"1 Min", 60},
    {"2 Min", 120},
    {"4 Min", 240},
    {"8 Min", 480},
    {"10 Min", 600},
    {"20 Min", 1200},
    {"30 Min", 1800},
    {"40 Min", 2400},
    {"50 Min", 3000},
    {"1 Hour", 3600},
    {"2 Hour", 7200},
}};

/// The time until the next firing, "h:mm:ss"; 0 below 0.
inline QString time_left_text(int seconds) {
    return QTime(0, 0).addSecs(qMax(0, seconds)).toString(QStringLiteral("h:mm:ss"));
}

}  // namespace m47::realtime
