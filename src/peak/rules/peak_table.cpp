// SPDX-License-Identifier: GPL-3.0-or-later
#include "peak_table.h"

#include "measurement_output.h"

namespace m47::peak {
namespace {

QByteArray in_tenths(double value) {
    return QByteArray::number(value, 'f', 1);
}

QByteArray line_of(int steps, const QByteArrayList& cells) {
    const QByteArrayList place{QByteArray::number(steps),
                               in_tenths(double(steps) / kStepsOfDegree)};
    return (place + cells).join('\t') + '\n';
}

}  // namespace

QByteArray peak_header() {
    return "steps\tdegrees\tquantity\tvalue\tvalue_mark\tunit\n";
}

QByteArray peak_line(const Taken& taken, std::optional<LevelUnit> unit) {
    const bool mer = taken.quantity == measurement::Quantity::mer;
    return line_of(taken.steps, {mer ? "mer" : "level", in_tenths(taken.reading.value),
                                 measurement::mark_text(taken.reading.mark),
                                 mer ? QByteArray("dB") : measurement::unit_text(unit).toLatin1()});
}

QByteArray gain_line(const PeakOutcome& outcome) {
    if (outcome.search.end != SearchEnd::found || !outcome.gain()) return {};
    return line_of(outcome.search.shaft, {"gain", in_tenths(*outcome.gain()), "", "dB"});
}

}  // namespace m47::peak
