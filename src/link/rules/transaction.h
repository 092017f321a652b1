// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

#include "fault.h"

namespace m47::link {

/// How long one look at the line waits for input; a wait that polls costs the processor little.
inline constexpr std::chrono::milliseconds kPollSlice{5};

inline constexpr Bilingual kLinkBusy{
    "The meter has not answered the last command yet. Try again when it has.",
    "Lo strumento non ha ancora risposto all'ultimo comando. Riprovare quando ha risposto."};

/// No two transactions overlap: whoever starts one from inside another is at fault.
class Transaction {
  public:
    explicit Transaction(bool& busy) : busy_(busy) {
        if (busy_) throw Fault(kLinkBusy);
        busy_ = true;
    }
    ~Transaction() { busy_ = false; }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

  private:
    bool& busy_;
};

}  // namespace m47::link
