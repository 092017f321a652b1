// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <optional>

#include "measurement.h"

namespace m47::publish {

/// Who measures: the tags that each line has.
struct Station {
    QString site;
    QString meter;
};

/// How a run is, for whoever watches many of them.
struct Health {
    bool link_up = false;
    qint64 passes = 0;                       ///< ended since the start
    std::optional<double> seconds_a_pass{};  ///< of the last one; nothing before its end
    qint64 retries = 0;                      ///< measurements taken again since the start
    qint64 reconnects = 0;                   ///< since the start
    qint64 rows_waiting = 0;                 ///< measured and not yet acknowledged
    double oldest_waiting = 0;               ///< seconds since the oldest of them was measured
    qint64 rows_dropped = 0;                 ///< for want of room, since the outbox was made
    qint64 rows_set_aside = 0;               ///< which the engine refused, since then
};

/// A measurement as a line of the InfluxDB line protocol, with its end. `milliseconds` since 1970
/// UTC are told in nanoseconds, which engines take without being told. What was not measured is
/// left out, as a number the protocol cannot say; levels are told in dBuV whatever the meter was
/// asked in, and left out where that is not known.
QByteArray measurement_line(const Station& station, const measurement::Measurement& measured,
                            qint64 milliseconds);

/// The same of the health of a run.
QByteArray health_line(const Station& station, const Health& health, qint64 milliseconds);

}  // namespace m47::publish
