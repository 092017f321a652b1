// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace m47 {

/// Told the name of each handler that begins because of what the user did, before it runs.
using HandlerWatch = std::function<void(const char* name)>;
/// `who` watches from now on, instead of what it gave before; no more where `watch` is empty.
void watch_handlers(const void* who, const HandlerWatch& watch);

/// True for the name of a handler of what a user does ("plan_table_Click"), not for what a screen
/// asks by itself when it is shown, or a run.
bool is_of_user(const char* name);

/// The handler `name` begins: whoever watches is told, where it is one of what a user does.
void tell_handler_watches(const char* name);

}  // namespace m47
