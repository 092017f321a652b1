// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <system_error>

namespace m47::platform {

/// A pipe, a terminal or a file behind a descriptor such as stdout, written to without ever waiting
/// for its reader.
class PatientOutput {
  public:
    explicit PatientOutput(int descriptor);
    ~PatientOutput();
    PatientOutput(const PatientOutput&) = delete;
    PatientOutput& operator=(const PatientOutput&) = delete;

    /// What became of a write.
    struct Written {
        qsizetype bytes = 0;
        std::error_code error;
        /// The reader takes nothing now.
        bool stalled() const;
        /// There is no room now; there may be again later.
        bool full() const;
    };

    /// True as soon as the reader takes something; waits `milliseconds` for that at most.
    bool wait_until_ready(int milliseconds) const;

    /// Writes of `bytes` what is taken at once by a reader that is ready.
    Written write(QByteArrayView bytes) const;

  private:
    int descriptor_;
    bool own_ = false;
};

}  // namespace m47::platform
