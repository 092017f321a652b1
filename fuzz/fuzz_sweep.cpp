// SPDX-License-Identifier: GPL-3.0-or-later
// A table of a band sweep, as a user opens it, and the carriers in what it holds.
#include <cmath>

#include "carriers.h"
#include "fuzzing.h"
#include "sweep_table.h"

namespace {

QByteArray table_of(const std::vector<m47::band::SweepRow>& rows) {
    QByteArray table = m47::band::sweep_header();
    for (const m47::band::SweepRow& row : rows) table += m47::band::sweep_line(row);
    return table;
}

void check_rows(const m47::band::SweepRead& read, const QByteArray& bytes) {
    HOLDS(static_cast<qsizetype>(read.rows.size()) <= bytes.count('\n'));
    for (const m47::band::SweepRow& row : read.rows) {
        HOLDS(row.sample.mhz >= 920 && row.sample.mhz <= 2150);
        HOLDS(!row.sample.level.measured() || std::isfinite(row.sample.level.value));
    }
}

/// What was read is written and read alike.
void check_inverse(const m47::band::SweepRead& read) {
    const QByteArray written = table_of(read.rows);
    const m47::band::SweepRead again = m47::band::read_sweep(written);
    HOLDS(!again.fault);
    HOLDS(again.rows.size() == read.rows.size());
    HOLDS(table_of(again.rows) == written);
}

void check_carriers(const m47::band::SweepRead& read) {
    m47::band::BandCurve curve;
    for (const m47::band::SweepRow& row : read.rows) curve.take(row.sample);
    for (const m47::band::Carrier& carrier : m47::band::find_carriers(curve)) {
        HOLDS(std::isfinite(carrier.width) && std::isfinite(carrier.level));
        HOLDS(carrier.centre >= 920 && carrier.centre <= 2150);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The line of names in front, or none would get behind it.
    const QByteArray bytes = m47::band::sweep_header() + fuzzing::Input(data, size).byte_array();
    const m47::band::SweepRead read = m47::band::read_sweep(bytes);
    check_rows(read, bytes);
    check_inverse(read);
    check_carriers(read);
    return 0;
}
