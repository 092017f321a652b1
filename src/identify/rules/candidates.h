// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "lnb.h"

namespace m47::identify {

/// A transponder as the LNB at hand delivers it.
struct Carrier {
    int state = 0;                 ///< of the LNB, 0 to 3
    double if_mhz = 0;             ///< where it is without any drift
    double rate = 0;               ///< symbol rate, MS/s
    bool lockable = true;          ///< DVB-S; the meter measures the power alone of all others
    double sky_mhz = 0;            ///< before the LNB
    char polarisation = 'V';       ///< H, V, L or R
    double loss = 0;               ///< dB, where the LNB is for another kind of polarisation
    std::optional<double> east{};  ///< of its satellite, degrees, west below 0
};

/// One possible answer: all satellites of a position, or a plan of the user's.
struct Candidate {
    QString name;                     ///< "13.0E", or that of the plan
    QStringList satellites{};         ///< names of the tables that it is made of
    std::vector<double> positions{};  ///< degrees east, from west to east; none for a plan
    std::vector<Carrier> carriers{};
    /// A plan has what its user measures, of which standard nobody knows; a table has all there is.
    bool is_plan = false;

    int lockable() const;
};

/// What a scan table is and says.
struct NamedTable {
    QString name;  ///< of its file, which ends with the position: "Hotbird-13.0E"
    QString text;
};

/// Where the name of a table says that its satellite is: degrees east, west below 0.
std::optional<double> position_of(const QString& name);

/// The position as tables write it, "13.0E".
QString position_text(double east);

/// How far apart two positions on the arc are, degrees, 0 to 180.
double arc_between(double one, double other);

/// The candidates that `tables` describe, from west to east, each with what `lnb` can receive of
/// it. Positions half a degree apart and less are one answer, as no dish of a meter's user parts
/// them. Left out is what has no position in its name or nothing that the LNB receives.
std::vector<Candidate> candidates_of_tables(const std::vector<NamedTable>& tables, const Lnb& lnb);

/// The tables in `folder`; empty where there are none or the folder cannot be read.
std::vector<NamedTable> read_tables(const QString& folder);

/// Drops the carriers that are named twice.
void join_same_carriers(Candidate& candidate);

}  // namespace m47::identify
