// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "fault.h"

namespace m47::sites {

/// Why the file of sites cannot be used.
struct StoreError {
    enum class Kind {
        newer,       ///< a later version of the program has written it
        foreign,     ///< no file of sites and visits
        damaged,     ///< the engine finds damage in it
        locked,      ///< another program holds it locked for longer than 3 s
        full,        ///< no room on its disk
        unreadable,  ///< it, its journal or its disk cannot be read or written
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
QString store_error_text(const StoreError& error, const Texts& texts);

/// The file of sites could not be read or written; it is as it was.
class StoreFault : public Fault {
  public:
    explicit StoreFault(const StoreError& error)
        : Fault(error.detail.toStdString()), error_(error) {}

    const StoreError& error() const { return error_; }
    QString text(const Texts& texts) const override { return store_error_text(error_, texts); }

  private:
    StoreError error_;
};

}  // namespace m47::sites
