// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <system_error>

#include "fault.h"

namespace m47::db {

/// The system made no file, or did not put it in its place.
class FileFault : public Fault {
  public:
    explicit FileFault(const std::error_code& code) : Fault(code.message()), code_(code) {}
    const std::error_code& code() const { return code_; }

  private:
    std::error_code code_;
};

/// Makes a file of the engine at `path`, whole or not at all: `fill` gets its connection while it
/// stands under another name beside it. What is at `path` already is left alone. A FileFault, or
/// the EngineFault of `fill`, where it cannot be made.
void make_database_file(const QString& path,
                        const std::function<void(const QSqlDatabase& database)>& fill);

}  // namespace m47::db
