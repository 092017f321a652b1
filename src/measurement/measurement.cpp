// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement.h"

namespace m47::measurement {

QString verdict_text(Verdict verdict) {
    if (verdict == Verdict::none) return {};
    return verdict == Verdict::fail ? QStringLiteral("FAIL") : QStringLiteral("PASS");
}

QString ProgramIdentity::text() const {
    if (plan.isEmpty() || number.isEmpty()) return plan + number;
    return plan + u' ' + number;
}

QString unit_text(std::optional<LevelUnit> unit) {
    return unit ? unit_name(*unit) : QString();
}

std::optional<LevelUnit> unit_of_index(std::optional<int> index) {
    if (!index || *index < kDbuv || *index > kDbm) return {};
    return static_cast<LevelUnit>(*index);
}

QString frequency_text(float mhz) {
    return QString::number(static_cast<double>(mhz), 'f', 1);
}

}  // namespace m47::measurement
