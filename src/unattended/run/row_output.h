// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

#include "patient_output.h"

namespace m47::unattended {

/// How long the reader of the rows is waited for in the end, in seconds.
inline constexpr double kLongestReaderWait = 10;

/// Lines for a reader at the other end of a descriptor, such as stdout. A reader that stalls holds
/// nothing up: what it does not take waits here, up to 1 MiB, and goes out with a later line.
class RowOutput {
  public:
    explicit RowOutput(int descriptor) : output_(descriptor) {}

    /// Told once when the reader stalls, once when a line is lost; a text of one line.
    std::function<void(const QString& text)> on_remark;

    /// Takes a line with its end and writes what can be written without waiting.
    void write(const QByteArray& line);

    /// Waits for the reader to take the rest, at most `seconds`, or until `told_to_stop`.
    void finish(double seconds, const std::function<bool()>& told_to_stop);

    /// Nobody will ever take another line.
    bool closed() const { return closed_; }
    /// A line did not go out. What still waits is not lost before finish().
    bool lost() const { return lost_; }

  private:
    void write_pending();
    void take_fault(const platform::PatientOutput::Written& written);
    void stall(const QString& reason);
    void lose();

    platform::PatientOutput output_;
    QByteArray pending_;
    QString trouble_;  ///< why the last try did not write all of it
    bool stalled_ = false;
    bool closed_ = false;
    bool lost_ = false;
};

}  // namespace m47::unattended
