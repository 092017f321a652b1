// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <array>

#include "program_limits.h"
#include "program_record.h"

namespace m47::plans {

/// The numbers of a plan's programs that are in use.
class UsedNumbers {
  public:
    void take(const programme::ProgramRecord& program);

    /// The lowest number, "000" to "099", that is not; empty where all are.
    QString first_free() const;

  private:
    std::array<bool, programme::kHighestProgram + 1> used_{};
};

}  // namespace m47::plans
