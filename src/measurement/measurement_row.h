// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "measurement.h"

namespace m47::measurement {

/// What the real-time screen shows when a cycle ends: the texts of its fields and labels as they
/// stand, range marks included.
struct MeasurementTexts {
    QDateTime date_time;
    /// The presentation in force: a MeasureMode, or any other number.
    int meas_mode = static_cast<int>(MeasureMode::analog);
    QString fsat;
    QString ol_freq;
    QString level;
    QString ber;
    QString pvber;
    QString cfo;
    QString mer;
    QString ru;
    QString status;
};

/// The 11 cells of a row of the measurement page, blanks around each text removed. An analog row
/// leaves BER to RU empty, whatever the hidden digital labels still show; in any other mode there
/// is nothing between the time and the status.
QStringList measurement_row(const MeasurementTexts& shown);

}  // namespace m47::measurement
