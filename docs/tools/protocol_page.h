// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47 {

/// The page about the protocol in Markdown: every command of the program's table with the exchange
/// that a simulated meter makes of it. The same text at each call.
QString protocol_page();

}  // namespace m47
