// SPDX-License-Identifier: GPL-3.0-or-later
#include "peak_run.h"

#include <cstdlib>
#include <utility>

#include "commands.h"
#include "fault.h"
#include "numbers.h"
#include "work.h"

namespace m47::peak {
namespace {

constexpr Bilingual kSearching{"Searching the peak", "Ricerca del massimo"};
constexpr Bilingual kNotFinished{"the peak was being searched: the motor was stopped",
                                 "si cercava il massimo: il motore è stato fermato"};

const QString kDone = QStringLiteral("OK");

}  // namespace

bool PeakOutcome::came_to_its_end() const {
    const bool whole = search.end == SearchEnd::found || search.end == SearchEnd::nothing_better;
    return motor_stopped && whole;
}

std::optional<double> PeakOutcome::gain() const {
    if (!search.peak_db || !search.start_db) return std::nullopt;
    return *search.peak_db - *search.start_db;
}

PeakRun::PeakRun(link::Link& link, const SearchOptions& options, QStringList tuning)
    : link_(link), options_(options), tuning_(std::move(tuning)) {}

PeakOutcome PeakRun::run() {
    link::Work work(link_, kNotFinished);
    work.doing(kSearching);
    PeakOutcome outcome;
    LinkAntenna antenna(link_);
    antenna.on_reading = on_reading;
    PeakSearch search(antenna, options_);
    search.cancelled = cancelled;
    try {
        prepare();
        antenna.begin();
        static_cast<void>(search.run());
    } catch (const Interrupted&) {
        // What was found so far stands in its result.
    } catch (...) {
        set_back();
        throw;
    }
    outcome.search = search.result();
    outcome.motor_stopped = !outcome.search.moved || antenna.stopped();
    outcome.refused = antenna.refused();
    outcome.place = antenna.place();
    outcome.attenuator_back = set_back();
    outcome.linked = link_.port_connected;
    return outcome;
}

void PeakRun::prepare() {
    const auto answer = link_.ask(link::command::query(link::command::kAttenuator));
    bool whole = false;
    const int value = answer.value_or(QString()).trimmed().toInt(&whole);
    if (whole) attenuator_ = value;
    link_.send(link::command::query(link::command::kUnit));
    prepared_ = link_.port_connected;
    link_.send(link::command::kMeasure);
    for (const QString& command : tuning_) link_.send(command);
}

bool PeakRun::set_back() {
    if (!prepared_) return true;
    const link::InOrder in_order(link_);
    if (!attenuator_ || !link_.can_send()) return false;
    try {
        return link_.ask(link::command::kAttenuator + link::format_number(*attenuator_, " 00")) ==
               kDone;
    } catch (const Interrupted&) {
        return false;
    }
}

}  // namespace m47::peak
