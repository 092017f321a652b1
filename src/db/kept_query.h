// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "engine.h"

namespace m47::db {

/// A statement that is read and planned by the engine at its first use and kept for the next ones.
/// It must not outlive its connection.
class KeptQuery {
  public:
    /// `statement` has to live as long as this object.
    explicit KeptQuery(const char* statement) : statement_(statement) {}

    /// Runs it with `values`; the answer stands until it is finished or runs again.
    Query& run(const QSqlDatabase& database, const QVariantList& values = {});

  private:
    const char* statement_;
    std::optional<Query> query_;
};

}  // namespace m47::db
