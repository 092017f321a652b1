// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <deque>
#include <functional>
#include <memory>
#include <string_view>

#include "clock.h"
#include "line_protocol.h"
#include "measurement.h"
#include "options.h"
#include "part.h"
#include "publisher.h"
#include "texts.h"

namespace m47::unattended {

/// How long an engine is waited for in the end, in seconds, and where a run goes on with another
/// outbox.
inline constexpr double kLongestEngineWait = 10;
inline constexpr double kLongestHandover = 2;

/// What a run that goes on with another configuration takes along.
struct PublishedSoFar {
    std::deque<publish::HeldLine> held{};  ///< which the outbox had no room for
    publish::Health health{};              ///< counted since the start
};

/// The outbox of a run that publishes, beside its log, else in `folder`; empty for one that does
/// not.
QString outbox_file(const Options& options, const QString& folder);

/// The rows of a run with nobody at the screen on their way to an engine. Without an address it
/// does nothing, and loads nothing.
class Publishing {
  public:
    Publishing(const Options& options, const Texts& texts) : options_(options), texts_(texts) {}

    /// Told a text of one line: what fails, when rows wait and when they go again.
    std::function<void(const QString& text)> on_remark;

    /// Opens the outbox beside the log, else in `folder`. What fails is told: without an outbox
    /// nothing is published, without a token that can be read the rows wait in it.
    void open(link::Clock& clock, const QString& folder);

    /// A row of `moment` is kept, before it stands in the log as `line`.
    void before_row(const measurement::Measurement& measured, std::string_view line,
                    const QDateTime& moment);
    /// The row is in the log, where there is one.
    void after_row();

    void link_is(bool up);  ///< A change is published.
    void reconnected() { ++health_.reconnects; }
    void taken_again() { ++health_.retries; }
    void pass_ended(double seconds);

    /// Lets `seconds` pass on the clock given to open(), and delivers meanwhile.
    void pass_time(double seconds);
    /// Delivers for at most `seconds`, or until `told_to_stop`, and tells what still waits.
    void finish(double seconds, const std::function<bool()>& told_to_stop);

    /// For a run that goes on. Where that has the same outbox it has what this one could not take.
    PublishedSoFar so_far(bool same_outbox);
    /// Goes on from there, once it is open.
    void go_on(PublishedSoFar so_far);

    bool wanted() const { return !options_.publish.address.isEmpty(); }
    /// Rows are missing in the outbox.
    bool lost() const { return lost_ || (publisher_ && publisher_->lost()); }

  private:
    publish::PublishOrder order(const QString& folder) const;
    QByteArray secret(QString& error) const;
    void report();

    const Options& options_;
    const Texts& texts_;
    link::Clock* clock_ = nullptr;
    Part part_{"m47-http"};
    std::unique_ptr<publish::HttpSender> no_sender_;
    std::unique_ptr<publish::Publisher> publisher_;
    publish::Health health_;
    double next_report_ = 0;  ///< on the steady clock
    bool lost_ = false;
};

}  // namespace m47::unattended
