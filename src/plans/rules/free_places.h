// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>
#include <optional>

#include "program_record.h"

namespace m47 {

/// The numbers of a plan's programs that are in use.
class UsedNumbers {
  public:
    void take(const ProgramRecord& program);

    /// The lowest number, "000" to "099", that is not; empty where all are.
    QString first_free() const;

  private:
    std::array<bool, 100> used_{};
};

/// The entry of `oscillators` for `mhz`, taken there if need be; best the one that is `preferred`.
std::optional<int> place_oscillator(Oscillators& oscillators, int preferred, const QString& mhz);

}  // namespace m47
