// SPDX-License-Identifier: GPL-3.0-or-later
#include "service_notes.h"

#include <utility>

#include "service_manager.h"
#include "texts.h"

namespace m47::unattended {
namespace {

constexpr double kStatusInterval = 5;  // seconds
constexpr double kPingsInTime = 3;

}  // namespace

ServiceNotes::Manager ServiceNotes::found() {
    if (qEnvironmentVariableIsEmpty("NOTIFY_SOCKET")) return {};
    return {[](const QByteArray& lines) { platform::tell_service_manager(lines); },
            platform::watchdog_time()};
}

ServiceNotes::ServiceNotes(const link::Clock& clock, Manager manager)
    : clock_(clock), manager_(std::move(manager)) {}

void ServiceNotes::ready() {
    if (ready_) return;
    ready_ = true;
    tell("READY=1");
    alive();
}

void ServiceNotes::status(const QString& text, bool urgent) {
    if (!manager_.tell || text == told_) return;
    const double now = clock_.steady();
    if (!urgent && last_status_ && now - *last_status_ < kStatusInterval) return;
    last_status_ = now;
    told_ = text;
    tell("STATUS=" + on_one_line(text).toUtf8());
}

void ServiceNotes::alive() {
    if (!manager_.tell || !manager_.watchdog || !ready_) return;
    const double now = clock_.steady();
    const double time = std::chrono::duration<double>(*manager_.watchdog).count();
    if (last_ping_ && now - *last_ping_ < time / kPingsInTime) return;
    last_ping_ = now;
    tell("WATCHDOG=1");
}

void ServiceNotes::stopping() {
    tell("STOPPING=1");
}

void ServiceNotes::tell(const QByteArray& lines) const {
    if (manager_.tell) manager_.tell(lines);
}

}  // namespace m47::unattended
