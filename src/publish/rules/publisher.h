// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <deque>
#include <functional>
#include <memory>
#include <string_view>

#include "append_times.h"
#include "clock.h"
#include "delivery.h"
#include "line_protocol.h"
#include "texts.h"

namespace m47::publish {

/// What a run is to publish, and where it is kept until it is delivered.
struct PublishOrder {
    Station station;
    QString outbox;    ///< its file
    QString log;       ///< the log that has the rows as well; empty for none
    qint64 limit = 0;  ///< bytes of the outbox
};

/// A line that a failing file has not taken yet.
struct HeldLine {
    LineKind kind;
    qint64 milliseconds;
    QByteArray line;
};

/// The rows of a run on their way to an engine. Nothing of it ever waits for the engine or throws:
/// what fails is told, and measuring goes on.
class Publisher {
  public:
    Publisher(PublishOrder order, HttpSender& sender, link::Clock& clock, const Texts& texts,
              std::function<double()> chance);

    /// Told a text of one line.
    std::function<void(const QString& text)> on_remark;

    /// Opens the outbox. False, told, where it cannot be used: nothing is published then.
    bool open();

    /// A row of `moment` is in the outbox, before it is in the log as `line`.
    void before_row(const measurement::Measurement& measured, std::string_view line,
                    const QDateTime& moment);
    /// The row counts as measured.
    void after_row();

    /// Publishes how the run is; what waits is filled in.
    void report(Health health);

    /// Delivers what can be without waiting: between two measurements.
    void step();
    /// Lets `seconds` pass, and delivers meanwhile.
    void pass_time(double seconds);
    /// Delivers for at most `seconds`, or until `told_to_stop`, and tells what still waits.
    void finish(double seconds, const std::function<bool()>& told_to_stop);

    /// What the outbox has not taken yet, for the publisher that goes on with it.
    std::deque<HeldLine> take_held();
    /// Takes over what the one before it had.
    void hold_on(std::deque<HeldLine> lines);

    /// A row is neither in the outbox nor delivered.
    bool lost() const { return lost_; }

  private:
    bool told(const std::function<void()>& work);
    void settle_last_row();
    void put(LineKind kind, const QDateTime& moment,
             const std::function<QByteArray(qint64 milliseconds)>& line_at,
             const std::optional<LogPlace>& place);
    bool put_held();
    void look_for_file();
    double oldest_waiting(const QDateTime& moment);
    void tell_waiting();
    void hold(HeldLine line);
    void send_held(double end, const std::function<bool()>& told_to_stop);
    bool send(const QByteArray& body, double end, const std::function<bool()>& told_to_stop);
    void tell_set_back(qint64 now, qint64 milliseconds);
    void tell_far_back(qint64 seconds) const;
    void remark(const QString& text) const;

    PublishOrder order_;
    HttpSender& sender_;
    link::Clock& clock_;
    const Texts& texts_;
    std::function<double()> chance_;
    std::unique_ptr<Outbox> outbox_;
    std::unique_ptr<Delivery> delivery_;
    AppendTimes times_;
    std::deque<HeldLine> held_;
    qsizetype held_bytes_ = 0;
    double next_try_ = 0;  ///< to put what is held
    bool fault_told_ = false;
    bool set_back_told_ = false;
    bool dropping_told_ = false;
    bool gone_ = false;  ///< the file of the outbox is not where it was
    bool lost_ = false;
};

}  // namespace m47::publish
