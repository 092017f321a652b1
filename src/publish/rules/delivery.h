// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <deque>
#include <functional>

#include "clock.h"
#include "http_sender.h"
#include "outbox.h"

namespace m47::publish {

/// Hands what is in an outbox to an engine, in order, and never waits for it. An engine that is
/// killed loses what it acknowledged within the last seconds: so everything is sent a second time
/// after kRepeatAfter, is kept for kKept, and is all sent again once an engine that was away or
/// answered otherwise is back. Engines keep one of two lines of the same series and time. An
/// engine leaves out without a word what its own clock calls too old or not yet measured: where the
/// two clocks differ by kClocksDiffer, that is told.
class Delivery {
  public:
    /// `chance` gives numbers from 0 to 1, so that a thousand probes do not come back at once.
    Delivery(Outbox& outbox, HttpSender& sender, link::Clock& clock,
             std::function<double()> chance);
    ~Delivery();
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    /// Told when the engine takes nothing, when it does again, and of the first lines it refuses; a
    /// text of one line.
    std::function<void(const QString& text)> on_remark;

    /// Takes an answer that has come and begins what is due.
    void step();
    /// There is something new in the outbox.
    void look() { more_ = true; }
    /// The next try is made at once.
    void hurry() { resume_at_ = 0; }
    /// A request is under way.
    bool busy() const { return sending_; }
    /// A request is under way or the next one is due within `seconds`.
    bool due_within(double seconds) const;
    /// Everything that is in the outbox was acknowledged once.
    bool done() const { return !sending_ && !more_ && !failing_; }

    // seconds
    static constexpr double kRepeatAfter = 60;
    static constexpr double kKept = 900;
    static constexpr double kLongestAnswer = 30;
    static constexpr double kFirstPause = 1;
    static constexpr double kLongestPause = 60;
    static constexpr double kLongestRetryAfter = 3600;
    static constexpr double kClocksDiffer = 600;
    static constexpr int kMostLines = 1000;

  private:
    /// What was acknowledged together, once or twice.
    struct Sent {
        qint64 first;
        qint64 last;
        double when;  ///< first acknowledged, on the steady clock
        bool twice;
    };

    void step_trapped();
    void take_answer(const HttpAnswer& answer);
    void begin();
    bool begin_new();
    void begin_repeat();
    void post(const Batch& batch, bool repeat);
    void acknowledged();
    void sent_twice();
    void split();
    void refused(const HttpAnswer& answer);
    void failed(const HttpAnswer& answer);
    void look_at_clock(const HttpAnswer& answer);
    void pause(double at_least);
    void forget_old();
    double now() const { return clock_.steady(); }
    void remark(const QString& text) const;

    Outbox& outbox_;
    HttpSender& sender_;
    link::Clock& clock_;
    std::function<double()> chance_;
    std::deque<Sent> sent_;
    Batch batch_;           ///< under way, without its body
    qint64 sent_last_ = 0;  ///< id up to which all was acknowledged since the engine is there
    double began_ = 0;      ///< of the request under way
    double resume_at_ = 0;  ///< no request before
    double failing_since_ = 0;
    double next_forget_ = 0;
    double pause_ = kFirstPause;
    int most_lines_ = kMostLines;
    bool more_ = true;  ///< the outbox may hold something to send
    bool sending_ = false;
    bool repeat_ = false;  ///< what is under way is sent the second time
    bool failing_ = false;
    bool refusal_told_ = false;
    bool clock_told_ = false;
    bool fault_told_ = false;
};

}  // namespace m47::publish
