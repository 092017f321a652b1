// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "own_file_error.h"

namespace m47::publish {

/// Why the outbox cannot be used.
using OutboxError = db::OwnFileError;

/// What to tell the user in the current language: what is wrong with which file, what helps, and
/// behind it the engine's own words where there are any.
QString outbox_error_text(const OutboxError& error, const Texts& texts);

/// The outbox could not be read or written; it is as it was.
class OutboxFault : public db::OwnFileFault {
  public:
    using OwnFileFault::OwnFileFault;

    QString text(const Texts& texts) const override { return outbox_error_text(error(), texts); }
};

}  // namespace m47::publish
