// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::olddb {

/// Loads the tables of every code page that a file of the old engine can name, so that none is
/// looked for among the files of the system later, when this process may open none.
void load_code_pages();

}  // namespace m47::olddb
