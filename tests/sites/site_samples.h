// SPDX-License-Identifier: GPL-3.0-or-later
// Measurements of visits in few words.
#pragma once

#include <QString>
#include <initializer_list>
#include <utility>

#include "site_records.h"

namespace m47::sites {

using Shown = std::initializer_list<std::pair<measurement::Quantity, const char*>>;

/// A digital measurement of program `number` of the plan "ASTRA", in dBuV, with `shown` as the
/// meter shows it. No program where `number` is empty.
inline VisitMeasurement measured(const char* number, Shown shown, float mhz = 11778.0F) {
    VisitMeasurement made{.id = QUuid::createUuid(), .visit = QUuid(), .instant = {1e9, 3600}};
    measurement::Measurement& one = made.measurement;
    if (*number) one.program = {QStringLiteral("ASTRA"), QLatin1String(number)};
    one.mode = measurement::MeasureMode::digital;
    one.frequency = mhz;
    one.oscillator = 10600.0F;
    one.unit = kDbuv;
    one.instant = made.instant.wall();
    for (const auto& [quantity, text] : shown)
        one.reading(quantity) = measurement::reading_of(quantity, QLatin1String(text));
    return made;
}

}  // namespace m47::sites
