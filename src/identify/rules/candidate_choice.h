// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "candidates.h"
#include "database.h"
#include "program_record.h"

namespace m47::identify {

/// Where the package dtv-scan-tables puts its tables of satellites.
inline constexpr const char* kTablesFolder = "/usr/share/dvb/dvb-s";

/// A part of the arc between two places, degrees east, west below 0: the shorter way round.
struct ArcPart {
    double one = 0;
    double other = 0;

    bool holds(double east) const;
};

/// "19.2E", "5w": degrees east, west below 0, from 0 to 180; nothing where it is no such place.
std::optional<double> place_on_arc(const QString& text);

/// "10E:30E", in either order.
std::optional<ArcPart> arc_part_of(const QString& text);

/// A plan of the user's: its programs, and the oscillators that they name.
struct PlanPrograms {
    QString name;
    std::vector<programme::ProgramRecord> programs;
    programme::Oscillators oscillators;
};

/// All plans of the database, none of which is opened by that.
std::vector<PlanPrograms> read_plans(const db::Database& database);

/// A candidate for each of `plans` that has a digital program which says all of its carrier:
/// supply, tone, frequency and symbol rate.
std::vector<Candidate> candidates_of_plans(const std::vector<PlanPrograms>& plans, const Lnb& lnb);

/// The diameters of dishes, cm, that an identification can be told.
inline constexpr int kLeastDish = 30;
inline constexpr int kMostDish = 1000;

/// The diameter of the dish that usually stands before an LNB, cm: a large one for C band.
int usual_dish(const Lnb& lnb);

/// What an identification chooses from.
struct CandidateChoice {
    QString folder = QString::fromLatin1(kTablesFolder);
    std::optional<ArcPart> part{};  ///< nothing: all of the arc
    bool plans = false;             ///< the user's plans in place of the tables
    Lnb lnb{};
    std::optional<int> dish{};  ///< its diameter, cm; nothing: the usual one of the LNB

    int dish_cm() const { return dish.value_or(usual_dish(lnb)); }
};

/// The candidates of `choice`; `database` for those of plans, where there is one. Empty where there
/// are none, see why_none().
std::vector<Candidate> candidates_of(const CandidateChoice& choice, const db::Database* database);

/// One sentence about why there is no candidate and what helps.
QString why_none(const CandidateChoice& choice, const Texts& texts);

}  // namespace m47::identify
