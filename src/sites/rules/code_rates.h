// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <map>
#include <optional>
#include <vector>

#include "code_rate.h"
#include "database.h"
#include "measurement.h"
#include "transponder_names.h"

namespace m47::sites {

/// The code rates that scan tables have brought into the plans. Each plan is read once, when it is
/// first asked for; a fault of the file goes on to whoever asks.
class CodeRates {
  public:
    explicit CodeRates(const db::Database& plans) : plans_(plans) {}

    /// That of the program of a plan that `measured` is of, at the frequency that was sent; nothing
    /// where it has no program, the plan is gone or no table knew the rate.
    std::optional<programme::CodeRate> of(const measurement::Measurement& measured);

  private:
    struct Plan {
        std::vector<db::TransponderName> names;
        std::map<QString, int> supplies;  ///< of the LNB, by the program's number
    };

    const Plan& plan(const QString& name);

    const db::Database& plans_;
    std::map<QString, Plan> read_;
};

}  // namespace m47::sites
