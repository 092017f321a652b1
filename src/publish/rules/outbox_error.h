// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>

#include "fault.h"

namespace m47::publish {

/// Why the outbox cannot be used.
struct OutboxError {
    enum class Kind : std::uint8_t {
        newer,       ///< a later version of the program has written it
        foreign,     ///< no outbox
        damaged,     ///< the engine finds damage in it
        in_use,      ///< another process has it
        full,        ///< no room on its disk
        unreadable,  ///< it or its disk cannot be read or written
        read_only,   ///< it or its folder takes no writing
        moved,       ///< the open file was taken away, or another put in its place
        other,
    };
    Kind kind = Kind::other;
    QString path;
    QString detail;  ///< the engine's own words; may be empty
};

/// What to tell the user in the current language: what is wrong with which file, what helps, and
/// behind it the engine's own words where there are any.
QString outbox_error_text(const OutboxError& error, const Texts& texts);

/// The outbox could not be read or written; it is as it was.
class OutboxFault : public Fault {
  public:
    explicit OutboxFault(const OutboxError& error)
        : Fault(error.detail.toStdString()), error_(error) {}

    const OutboxError& error() const { return error_; }
    QString text(const Texts& texts) const override { return outbox_error_text(error_, texts); }

  private:
    OutboxError error_;
};

}  // namespace m47::publish
