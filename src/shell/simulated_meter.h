// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QString>

#include "texts.h"

namespace m47::shell {

/// The simulated meter that comes with the program, as long as this program runs.
class SimulatedMeter {
  public:
    /// `program` is the file of the meter, by default the one beside this program.
    explicit SimulatedMeter(const QString& program = bundled());
    ~SimulatedMeter();
    SimulatedMeter(const SimulatedMeter&) = delete;
    SimulatedMeter& operator=(const SimulatedMeter&) = delete;

    /// Starts it unless it runs. The device that it answers behind; empty where it does not start,
    /// fault() says why.
    QString start();
    QString fault(const Texts& texts) const;

    /// True where it answers behind `device`.
    bool is_behind(const QString& device) const;

    static QString bundled();

  private:
    QString program_;
    QProcess process_;
    QString device_;
};

}  // namespace m47::shell
