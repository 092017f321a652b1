// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <memory>

#include "realtime_rules.h"

namespace m47::shell {

/// Writes a picture of the real-time screen as it would show `rules`, the newest row in sight. The
/// kind of picture follows from `file`; a name that tells none is PNG. It takes a QApplication.
/// Returns why there is no picture, empty when it was written.
QString write_run_picture(std::unique_ptr<realtime::RealtimeRules> rules, const QString& file);

}  // namespace m47::shell
