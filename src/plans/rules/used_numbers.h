// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>

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

}  // namespace m47
