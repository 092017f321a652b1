// SPDX-License-Identifier: GPL-3.0-or-later
#include "series_key.h"

#include <QHashFunctions>

namespace m47::measurement {

bool SeriesKey::operator==(const SeriesKey& other) const {
    if (unit != other.unit || !(program == other.program)) return false;
    return program.known() || (frequency == other.frequency && oscillator == other.oscillator);
}

QString SeriesKey::oscillator_text() const {
    return oscillator ? QString::number(static_cast<double>(*oscillator), 'g', 7) : QString();
}

QString SeriesKey::name() const {
    QString tuned = frequency ? frequency_text(*frequency) : QString();
    if (oscillator) tuned += QStringLiteral(" / ") + oscillator_text();
    if (!program.known()) return tuned;
    return tuned.isEmpty() ? program.text() : program.text() + QStringLiteral(" · ") + tuned;
}

SeriesKey series_key(const Measurement& measurement) {
    return {measurement.program, measurement.frequency, measurement.oscillator, measurement.unit};
}

std::size_t SeriesKeyHash::operator()(const SeriesKey& key) const {
    const int unit = key.unit ? *key.unit : -1;
    if (key.program.known()) return qHashMulti(0, key.program.plan, key.program.number, unit);
    return qHashMulti(0, key.frequency.value_or(0), key.oscillator.value_or(0), unit);
}

}  // namespace m47::measurement
