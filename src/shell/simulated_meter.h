// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <memory>

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

    /// Starts it unless it runs, or anew as the meter of the file `recording` where one is named.
    /// The device that it answers behind; empty where it does not start, fault() says why.
    QString start(const QString& recording = {});
    QString fault(const Texts& texts) const;

    /// The recording that it answers from; empty where what it measures is simulated.
    const QString& recording() const { return recording_; }

    /// True where it answers behind `device`.
    bool is_behind(const QString& device) const;

    static QString bundled();

  private:
    void end();
    QStringList arguments();
    void pass_on_words();

    QString program_;
    QString recording_;
    std::unique_ptr<QTemporaryDir> folder_;  ///< for a device that may go and come back
    QProcess process_;
    QString device_;
    QString said_last_;  ///< by itself, on stderr
};

}  // namespace m47::shell
