// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_levels.h"

#include <algorithm>

#include "commands.h"
#include "fault.h"
#include "measure_replies.h"
#include "measurement.h"
#include "numbers.h"
#include "program_limits.h"
#include "program_state.h"
#include "qpsk_mode.h"

namespace m47::band {
namespace {

const QString kDone = QStringLiteral("OK");
/// The meter needs this pause in seconds before its reading has settled, once for all of a sweep.
constexpr double kAfterRanging = 1;
/// An LNB or a switch that is fed goes over to another voltage or tone within so many seconds.
constexpr double kAfterFeed = 0.1;
/// How far beyond the meter's range a level lies that is in no unit, or in another one, dB.
constexpr double kBeyondRange = 5;
/// A doubtful answer is asked for again so often.
constexpr int kTries = 2;

/// What `asked` gives; its empty value where an answer is doubtful.
template <typename Asked>
auto sure(link::Link& link, Asked asked) -> decltype(asked()) {
    const link::Measuring measuring(link);
    try {
        return asked();
    } catch (const DoubtfulAnswer&) {
        return {};
    }
}

measurement::Reading reading_behind(const QString& label, measurement::Quantity quantity,
                                    const QString& answer) {
    const std::optional<QString> text = link::labelled(label, answer);
    if (!text || !link::can_be_value(*text)) return {};
    return measurement::reading_of(quantity, *text);
}

bool can_be_of(LevelUnit unit, double level) {
    const programme::LevelRange range = programme::level_range(unit_offset(unit));
    return level >= range.minimum - kBeyondRange && level <= range.maximum + kBeyondRange;
}

}  // namespace

bool Quality::locked() const {
    return measured() && double(mer.value) > link::kNoLockMer;
}

void MeterLevels::send(const QString& command) {
    if (!lost()) link_.send(command);
}

/// True when the meter has surely taken it.
bool MeterLevels::take(const QString& command) {
    if (lost()) return false;
    return sure(link_, [&] { return link_.ask(command) == kDone; });
}

void MeterLevels::feed_supply(int volts) {
    const bool powered = fed_.volts.value_or(0) > 0;
    fed_.volts.reset();
    if (volts == 0) {
        if (take(link::command::kSupplyOff)) fed_.volts = volts;
        return;
    }
    const bool set = take(with_digits(link::command::kSupplyVoltage, volts));
    const bool on = powered || take(link::command::kSupplyOn);
    if (set && on) fed_.volts = volts;
}

void MeterLevels::feed_tone(bool on) {
    fed_.tone.reset();
    if (take(on ? link::command::kToneOn : link::command::kToneOff)) fed_.tone = on;
}

void MeterLevels::attenuate() {
    send(link::command::kFullAttenuation);
    if (!lost()) link_.wait_time(kAfterRanging);
    attenuated_ = true;
}

void MeterLevels::prepare(const Feed& feed) {
    kept_.note_tuning();
    kept_.note_feed(feed);
    unit_.begin();
    strayed_ = told_apart_ = false;
    told_.clear();
    if (!lost()) kept_.changed();
    send(link::command::kMeasure);
    send(link::command::kNoOscillator);
    fed_ = {};
    if (feed.volts) feed_supply(*feed.volts);
    if (feed.tone) feed_tone(*feed.tone);
    attenuate();
}

bool MeterLevels::change_feed(const Feed& feed) {
    if (feed == fed_) return true;
    kept_.note_feed(feed);
    if (feed.volts && feed.volts != fed_.volts) feed_supply(*feed.volts);
    if (feed.tone && feed.tone != fed_.tone) feed_tone(*feed.tone);
    if (!lost()) link_.wait_time(kAfterFeed);
    return feed == fed_;
}

/// What the meter has not tuned to is the level of another frequency.
bool MeterLevels::tune(double mhz) {
    const QString tuned = link::format_number(mhz, "0000.0");
    return link_.ask(link::command::kFrequency + u' ' + tuned) == kDone;
}

/// Nothing where an answer is doubtful; a level that is none where the meter has none to give.
std::optional<measurement::Reading> MeterLevels::ask_level(double mhz) {
    if (!tune(mhz)) return std::nullopt;
    const auto answer = link_.ask(link::command::query(link::command::kLevel));
    if (!answer) return std::nullopt;
    const QString text = link::trimmed_from(*answer, 2);
    if (!link::can_be_value(text)) return std::nullopt;
    return measurement::reading_of(measurement::Quantity::level, text);
}

measurement::Reading MeterLevels::level(double mhz) {
    if (!attenuated_) attenuate();
    for (int tried = 0; tried < kTries && !lost(); ++tried)
        if (const auto reading = sure(link_, [&] { return ask_level(mhz); })) {
            look_at_unit(*reading);
            return *reading;
        }
    return {};
}

/// A level that the meter cannot measure in the unit of the sweep is in another one: somebody may
/// have set that back before it is asked for again.
void MeterLevels::look_at_unit(const measurement::Reading& reading) {
    const std::optional<LevelUnit> unit = measurement::unit_of_index(unit_.first());
    if (strayed_ || !unit || !reading.measured()) return;
    const auto value = static_cast<double>(reading.value);
    if (!can_be_of(*unit, value)) strayed_ = unit_.changed();
    if (!strayed_) return told_.push_back(value);
    const std::optional<LevelUnit> now = measurement::unit_of_index(link_.settings.unit());
    told_apart_ =
        now && std::ranges::none_of(told_, [&](double told) { return can_be_of(*now, told); });
}

Quality MeterLevels::ask_quality(double mhz, int kilosymbols) {
    if (!tune(mhz) || !change_symbol_rate(kilosymbols)) return {};
    attenuated_ = false;
    if (link_.ask(with_digits(link::command::kAttenuator, 0)) != kDone) return {};
    link::QpskMode mode(link_);
    mode.enter();
    const auto answer = mode.ask();
    if (!answer) return {};
    return {reading_behind(link::kMerLabel, measurement::Quantity::mer, *answer),
            reading_behind(link::kOffsetLabel, measurement::Quantity::cfo, *answer)};
}

bool MeterLevels::change_symbol_rate(int kilosymbols) {
    kept_.note_symbol_rate();
    return take(link::command::kSymbolRate + link::format_number(kilosymbols, " 00000"));
}

Quality MeterLevels::quality(double mhz, int kilosymbols) {
    // Before the tuning, so that nothing stands between the carrier and its lock.
    kept_.note_symbol_rate();
    for (int tried = 0; tried < kTries && !lost(); ++tried) {
        const Quality found = sure(link_, [&] { return ask_quality(mhz, kilosymbols); });
        if (found.measured()) return found;
    }
    return {};
}

std::vector<Bilingual> MeterLevels::set_back() {
    fed_ = {};
    attenuated_ = false;
    return kept_.set_back();
}

}  // namespace m47::band
