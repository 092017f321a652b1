// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVariantList>
#include <optional>

#include "engine.h"
#include "site_records.h"

namespace m47::sites {

// How what is kept of sites stands in the columns of the file, there and back. An unset number is a
// null value.

QVariant value_of(const QUuid& id);
QUuid id_in(const db::Query& row, int column);

/// Of the next columns: the UTC and the offset.
QVariantList values_of(const std::optional<Instant>& instant);
Instant instant_in(const db::Query& row, int column);

/// An empty text is none that is missing.
QVariant value_of(const QString& text);

/// The shortest decimal number that is `number` in single precision: 58.3, not 58.2999992.
QVariant value_of(std::optional<float> number);
std::optional<float> number_in(const db::Query& row, int column);

/// The readings of all quantities, and the range marks of all as one number.
QVariantList values_of_readings(const measurement::Measurement& measured);
/// Of the next columns: the value of each quantity.
void take_values(const db::Query& row, int column, measurement::Measurement& measured);
/// Mode, verdict, unit and range marks, one behind the other in one number, 4, 4, 8 and 14 bits.
/// Gives what is above them, the offset of the instant.
int take_small(const db::Query& row, int column, measurement::Measurement& measured);

/// Which quantities are checked, then minimum and maximum of each.
QVariantList values_of(const measurement::LimitsInForce& limits);
measurement::LimitsInForce limits_in(const db::Query& row, int column);

}  // namespace m47::sites
