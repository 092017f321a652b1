// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUuid>
#include <optional>

#include "measurement.h"

namespace m47::sites {

/// An instant that is the same wherever it is read, with what the wall clock there showed.
struct Instant {
    double utc = 0;  ///< seconds since 1970
    int offset = 0;  ///< seconds that the wall clock of the place was ahead of UTC

    /// On the wall clock of the place, seconds since 1970 without a time zone, as a row tells it.
    double wall() const { return utc + offset; }
    bool operator==(const Instant&) const = default;
};

/// A place with an installation.
struct Site {
    QUuid id;
    QString name;
    QString address{};
    QString customer{};
    QString remarks{};
    bool operator==(const Site&) const = default;
};

/// One stay of a technician at a site.
struct Visit {
    QUuid id;
    QUuid site;
    Instant begun{};
    std::optional<Instant> ended{};  ///< nothing while it runs, or where it was cut off
    QString technician{};
    QString instrument{};  ///< what the meter says of its version
    QString logo{};        ///< the text that stands in the meter
    QString plan{};
    QString remarks{};
    bool operator==(const Visit&) const = default;
};

/// A measurement as a visit keeps it; `measurement.instant` is `instant.wall()`.
struct VisitMeasurement {
    QUuid id;
    QUuid visit;
    Instant instant{};
    measurement::Measurement measurement{};
};

}  // namespace m47::sites
