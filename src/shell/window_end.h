// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include "program.h"

namespace m47::shell {

/// Ends the windows when the program is told to end: once the running exchange is over, and with
/// every box that is open answered as if it had been closed.
class WindowEnd : public QObject {
    Q_OBJECT
  public:
    /// Wants listen_to_end_signals() before.
    explicit WindowEnd(Program& program);
    ~WindowEnd() override;

    /// Tells on stderr how far the work had come. Returns the exit status.
    static int tell(const Program& program);

  private:
    void end_when_free();

    Program& program_;
    QSocketNotifier told_;
};

}  // namespace m47::shell
