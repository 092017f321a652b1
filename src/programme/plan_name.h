// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::programme {

/// A plan's name as it is kept: the first 10 characters, trimmed, in upper case, of which again 10
/// are kept.
QString plan_name(const QString& text);

}  // namespace m47::programme
