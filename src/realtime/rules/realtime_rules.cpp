// SPDX-License-Identifier: GPL-3.0-or-later
#include "realtime_rules.h"

#include "work.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kBrokenOff{
    "a measurement was broken off and has no row, rows on the page: %1",
    "una misura è stata interrotta e non ha riga, righe nella pagina: %1"};
constexpr Bilingual kMeasured{"the measurement was whole, rows on the page: %1",
                              "la misura era completa, righe nella pagina: %1"};

}  // namespace

RealtimeRules::RealtimeRules(link::Link& the_link, ProgramState& the_program,
                             db::Database& the_database)
    : link(the_link),
      program(the_program),
      database(the_database),
      tuning(link, program, panel, state),
      diseqc(link, panel, state),
      steps(link, program, panel, state, tuning),
      modes(link, program, database, panel, state, tuning, diseqc),
      cycle(link, panel, state, tuning, steps, page, log),
      plans(link, database, panel, state, modes),
      program_tuning(link, program, panel, modes),
      costs(link, program, panel, state, modes) {
    panel.cmdlev = program.unit_index;
    steps.cmdlev_Click = [this](int index) { modes.cmdlev_Click(index); };
}

void RealtimeRules::tick_measures(int mode) {
    if (mode == kDigitalMode) {
        for (const int measure : {kDcpLevel, kChber, kPvBer, kCfo, kMer})
            panel.meas_stated[static_cast<std::size_t>(measure)] = true;
    } else {
        panel.meas_statea[kLevel] = true;
    }
}

void RealtimeRules::measure_once(const std::function<void()>& prepare,
                                 const measurement::ProgramIdentity& identity) {
    link::Work work(link, kBrokenOff, {QString::number(cycle.rows())});
    costs.begin();
    cycle.measure(prepare, identity);
    cycle.storemeas();
    work.at(kMeasured, {QString::number(cycle.rows())});
    // What is in doubt is no measurement, so nothing of it was lost.
    if (cycle.doubt().isEmpty()) costs.end();
}

}  // namespace m47::realtime
