// SPDX-License-Identifier: GPL-3.0-or-later
#include "handler_watch.h"

#include <QByteArray>
#include <QList>
#include <map>

namespace m47 {
namespace {

std::map<const void*, HandlerWatch>& handler_watches() {
    static std::map<const void*, HandlerWatch> watches;
    return watches;
}

}  // namespace

void watch_handlers(const void* who, const HandlerWatch& watch) {
    if (watch)
        handler_watches()[who] = watch;
    else
        handler_watches().erase(who);
}

bool is_of_user(const char* name) {
    // Behind the kind may stand which key of a toolbar it was.
    const QByteArray kind = QByteArray(name).split(' ').constFirst();
    return kind.endsWith("Click") || kind.endsWith("KeyPress");
}

void tell_handler_watches(const char* name) {
    if (!is_of_user(name)) return;
    // A copy: who watches may cease to while it is told.
    const std::map<const void*, HandlerWatch> watches = handler_watches();
    for (const auto& [who, watch] : watches) watch(name);
}

}  // namespace m47
