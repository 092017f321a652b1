// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>
#include <deque>
#include <optional>

namespace m47::publish {

/// When rows were measured whose times say another one, as the clock was set back behind them. Of
/// those close together one is remembered.
class AppendTimes {
  public:
    /// A row of the time `milliseconds` was measured at `steady`, seconds on the steady clock.
    void note(qint64 milliseconds, double steady);
    /// From the one of the time `milliseconds` on rows have their own times again.
    void end(qint64 milliseconds);
    /// When that of the time `milliseconds` was; nothing where its time says it.
    std::optional<double> of(qint64 milliseconds);
    void clear() { times_.clear(); }

  private:
    struct Time {
        qint64 milliseconds;
        std::optional<double> steady;
    };
    std::deque<Time> times_;
};

}  // namespace m47::publish
