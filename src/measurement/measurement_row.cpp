// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_row.h"

namespace m47::measurement {

QStringList measurement_row(const MeasurementTexts& shown) {
    const bool digital = shown.meas_mode == static_cast<int>(MeasureMode::digital);
    const bool measured = digital || shown.meas_mode == static_cast<int>(MeasureMode::analog);
    const auto text = [](const QString& value, bool wanted) {
        return wanted ? value.trimmed() : QString();
    };
    return {
        shown.date_time.toString(QStringLiteral("dd/MM/yy")),
        shown.date_time.toString(QStringLiteral("HH:mm:ss")),
        text(shown.fsat, measured),
        text(shown.ol_freq, measured),
        text(shown.level, measured),
        text(shown.ber, digital),
        text(shown.pvber, digital),
        text(shown.cfo, digital),
        text(shown.mer, digital),
        text(shown.ru, digital),
        text(shown.status, true),
    };
}

}  // namespace m47::measurement
