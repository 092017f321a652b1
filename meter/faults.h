// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "delivery.h"
#include "jitter.h"

namespace meter {

/// What a fault needs to spoil an answer.
struct FaultContext {
    const std::string& line;  ///< the command, without CR
    Jitter& noise;
    double late_seconds;
};

/// One kind of fault. `spoil` turns the good answer in the delivery into the faulty one.
struct FaultKind {
    std::string_view name;
    std::string_view help;
    bool carried_out;  ///< the command is obeyed although its answer is spoilt
    void (*spoil)(Delivery& delivery, const FaultContext& context);
};

/// All kinds, in the order in which the help lists them.
std::span<const FaultKind> fault_kinds();

/// A fault and the number of commands that it hits; without a number it hits for ever.
struct Fault {
    const FaultKind* kind = nullptr;
    std::optional<int> remaining;
};

/// Reads KIND or KIND:N (N at least 1); nothing for any other text.
std::optional<Fault> parse_fault(std::string_view text);

/// Decides which commands are hit. The faults take effect one after the other.
class FaultPlan {
  public:
    FaultPlan() = default;

    /// `after`: commands let through well first; `on`: only commands containing this text count.
    FaultPlan(std::vector<Fault> faults, int after, std::string on);

    /// The fault that hits this command, or null. Counts the command.
    const FaultKind* next(std::string_view line);

  private:
    std::vector<Fault> faults_;
    int after_ = 0;
    std::string on_;
};

}  // namespace meter
