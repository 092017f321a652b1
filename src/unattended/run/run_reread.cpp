// SPDX-License-Identifier: GPL-3.0-or-later
#include "run_reread.h"

#include <utility>

#include "database.h"
#include "end_signals.h"
#include "fault.h"
#include "file_options.h"
#include "program_row.h"
#include "recordset.h"
#include "tables.h"

namespace m47::unattended {
namespace {

/// Why `plan` cannot be measured; empty where it can. In sets of its own, as the run may still
/// stand at a program.
QString plan_fault(const db::Database& database, const QString& plan) try {
    const QString name = plan.trimmed().toUpper();
    if (name.isEmpty()) return {};
    if (database.of_plan(QLatin1String(db::table::kGruppo), name).empty()) return kNoPlan.arg(name);
    db::Recordset programs = database.of_plan(QLatin1String(db::table::kProgrammi), name);
    for (; !programs.empty() && !programs.end_of_set(); programs.move_next())
        if (programme::ProgramRow(programs).monitored()) return {};
    return kNothingMonitored.arg(name);
} catch (const Fault& fault) {
    return QString::fromUtf8(fault.what());
}

/// Why a run cannot go on with `next` in place of `before`; empty where it can.
QString refusal_of(const Options& next, const Run& run) {
    const Options& before = run.options;
    if (next.action != Options::Action::run) return next.error;
    if (next.directory != before.directory || next.user_data != before.user_data)
        return QStringLiteral("another folder to work in takes a new start");
    const QString fault = plan_fault(run.rules->database, next.plan);
    return fault.isEmpty() ? file_option_fault(next, run.state.base_dir) : fault;
}

}  // namespace

bool rereads(const Run& run) {
    return !run.options.configuration.isEmpty() && !run.options.plan.isEmpty() &&
           run.options.read_again != nullptr;
}

bool read_again(Run& run) {
    const int times = platform::times_asked_to_read_again();
    if (times == std::exchange(run.asked, times)) return false;
    Options next = run.options.read_again();
    const QString refusal = refusal_of(next, run);
    if (!refusal.isEmpty()) {
        complain(QStringLiteral("the configuration stays as it was: %1").arg(refusal));
        return false;
    }
    complain(QStringLiteral("the configuration %1 was read again").arg(next.configuration));
    // The rows of both go into one visit.
    next.visit.resumed = next.visit.resumed || next.visit.site == run.options.visit.site;
    run.next = std::move(next);
    return true;
}

}  // namespace m47::unattended
