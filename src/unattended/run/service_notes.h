// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

#include "clock.h"

namespace m47::unattended {

/// What the service manager that started the program wants to know of a run: that it is ready, what
/// it does, that it is alive, that it ends. Where there is none nothing is told.
class ServiceNotes {
  public:
    /// What was found of the service manager at the start.
    struct Manager {
        std::function<void(const QByteArray& lines)> tell;  ///< empty where there is none
        std::optional<std::chrono::microseconds> watchdog;
    };
    static Manager found();

    /// The clock outlives it.
    ServiceNotes(const link::Clock& clock, Manager manager);

    /// The meter has answered or the run has begun to measure; told once.
    void ready();
    /// What the run does, a text of one line; at most every five seconds where it is not `urgent`.
    void status(const QString& text, bool urgent = false);
    /// Called between two exchanges: whoever watches hears of it three times in the time it waits.
    void alive();
    void stopping();

  private:
    void tell(const QByteArray& lines) const;

    const link::Clock& clock_;
    Manager manager_;
    QString told_;
    std::optional<double> last_status_;  ///< on the steady clock
    std::optional<double> last_ping_;
    bool ready_ = false;
};

}  // namespace m47::unattended
