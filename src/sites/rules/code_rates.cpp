// SPDX-License-Identifier: GPL-3.0-or-later
#include "code_rates.h"

#include "program_row.h"
#include "tables.h"

namespace m47::sites {

std::optional<programme::CodeRate> CodeRates::of(const measurement::Measurement& measured) {
    if (measured.program.plan.isEmpty() || !measured.frequency) return {};
    const Plan& known = plan(measured.program.plan);
    const auto supply = known.supplies.find(measured.program.number);
    if (supply == known.supplies.end()) return {};
    return programme::code_rate_of(
        db::code_of(known.names, static_cast<double>(*measured.frequency), supply->second));
}

const CodeRates::Plan& CodeRates::plan(const QString& name) {
    const auto met = read_.find(name);
    if (met != read_.end()) return met->second;
    Plan plan{db::read_names(plans_.connection(), db::stored_plan_name(name)), {}};
    db::Recordset programs = plans_.of_plan(QString::fromLatin1(db::table::kProgrammi), name);
    const programme::ProgramRow row(programs);
    for (; !programs.end_of_set(); programs.move_next())
        plan.supplies[row.pg_num()] = row.whole(&programme::ProgramRecord::lnb_volt);
    return read_.emplace(name, std::move(plan)).first->second;
}

}  // namespace m47::sites
