// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "own_file_error.h"

namespace m47::sites {

/// Why the file of sites cannot be used.
using StoreError = db::OwnFileError;

/// What to tell the user in the current language: what is wrong with which file, what helps, and
/// behind it the engine's own words where there are any.
QString store_error_text(const StoreError& error, const Texts& texts);

/// The file of sites could not be read or written; it is as it was.
class StoreFault : public db::OwnFileFault {
  public:
    using OwnFileFault::OwnFileFault;

    QString text(const Texts& texts) const override { return store_error_text(error(), texts); }
};

}  // namespace m47::sites
