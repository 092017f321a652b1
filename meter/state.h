// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "logger.h"
#include "motor.h"
#include "satellites.h"
#include "settings.h"

namespace meter {

/// Stored oscillators: numbers 1 to 4 in two banks, A and B.
class OscillatorTable {
  public:
    static constexpr int count = 4;

    /// Frequency in MHz of an oscillator that exists (number 1..4, bank A or B).
    int get(int number, char bank) const;
    void set(int number, char bank, int mhz);

  private:
    std::array<std::array<int, count>, 2> mhz_{
        {{10600, 9750, 5150, 10000}, {10600, 9750, 5150, 10000}}};
};

enum class Mode { measuring, error_rate };

/// Everything that the meter keeps between commands.
struct State {
    /// Factory state: some stored programs, logger lines and satellites; no logs yet.
    explicit State(std::string version_text);

    std::string version;
    Settings settings;
    OscillatorTable oscillators;
    Mode mode = Mode::measuring;
    int selected_program = 0;
    std::map<int, Settings> programs;
    Logger logger;
    SatelliteTable satellites;
    BlockReceiver block;
    Motor motor;
    std::string logo = "M47 FIELD METER";
    int device = 0;
    int output_mode = 0;
    int diseqc_sent = 0;

    /// The stored programs of the active logger lines, in the order of the lines.
    std::vector<std::pair<int, Settings>> logged_programs() const;

    /// The whole state as readable text.
    std::string report() const;
};

/// Fills the logger: three logs, or, when `bytes` is given, as many logs as make up that many
/// bytes of text.
void prefill_logger(State& state, std::optional<std::size_t> bytes, Receiver& receiver);

}  // namespace meter
