// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "activity.h"
#include "clock.h"
#include "late_answers.h"
#include "link_view.h"
#include "meter_settings.h"
#include "reply.h"
#include "serial_port.h"
#include "texts.h"

namespace m47::link {

/// The link to the meter: one command at a time, each a whole transaction that opens the port,
/// sends character by character, polls for the answer, retries, closes the port and reduces the
/// answer; a block has rules of its own. Not re-entrant; single-threaded.
class Link {
  public:
    Link(SerialPort& port, Clock& clock, LinkView& view);

    /// The meter has been identified on a port. While false nothing is sent.
    bool port_connected = false;
    /// A screen only refreshes its controls from stored records. While true nothing is sent.
    bool commands_suspended = false;
    /// Number (1 to 10) of the port in use, for the status text; 0 before the first choice.
    int port_number = 0;
    /// A value is at stake: an answer that is not surely the one to its question ends ask in a
    /// DoubtfulAnswer, and no question goes out while an older answer to the same words may
    /// still come. See Measuring.
    bool refuse_doubtful = false;
    /// How the meter is set, as far as commands and answers have shown.
    MeterSettings settings;
    /// What is done over it; the user's wish to stop ends the work before its next command, with
    /// Interrupted.
    Activity activity;
    /// Asked while waiting; true ends the wait or the next transaction with Interrupted. A
    /// transaction that runs goes on to its end.
    std::function<bool()> interrupted;
    /// True ends even a transaction that runs, and what is undivided, with Interrupted.
    std::function<bool()> cut_off;
    /// Above 0 `interrupted` and a stop are put off; see Undivided.
    int undivided = 0;
    /// Above 0 a meter that has refused a command, over which the link was lost, still gets the
    /// commands that set it back; see InOrder.
    int in_order = 0;
    /// How far the work in hand is, see Work; once the program has been told to end, how far it
    /// came. Without any work the last command tells.
    std::optional<Said> left_off;
    /// Told when the link is lost over refused().
    std::function<void()> on_refused;
    /// Told of a command that does not go out as no meter is connected.
    std::function<void()> on_unsent;
    /// Told before each pump of the windows how many bytes of the answer have arrived so far (echo
    /// included; a new attempt starts from 0). It may show them and nothing else: the line is being
    /// read meanwhile.
    std::function<void(qsizetype bytes)> on_received;
    /// Told before each pump of the windows, whether or not anything has come: what is shown may be
    /// growing old. As on_received, it may show and nothing else.
    std::function<void()> on_waited;

    /// Sends `command`, without terminator. Its reduced answer: "OK" for a setting, the value for a
    /// query, "0" for a query answered "Invalid Parameter(s)". Nothing where it could not be sent
    /// or the link was lost over it. A call from inside a running transaction is a Fault. Late
    /// answers to other commands are dropped; behind a command that was asked more than once those
    /// to its earlier attempts are waited for, as long as the first answer took.
    [[nodiscard]] std::optional<QString> ask(const QString& command);

    /// As ask, for a command of whose answer nothing is read. True when there was one.
    bool send(const QString& command) { return ask(command).has_value(); }

    /// As ask, for what must not be done twice, such as turning a motor by so many steps: it goes
    /// out once. Nothing where the meter has not surely taken it, of which nobody knows then
    /// whether it was done; the link stays, unless it is lost.
    [[nodiscard]] std::optional<QString> ask_once(const QString& command);

    /// Sends `block`, a long text such as that of a satellite, in one piece. The raw text received,
    /// echo included; nothing where it could not be sent or the link was lost over it. The answer
    /// is complete at its first CR, within 60 s of the first character; without one the link is
    /// lost. Neither retry nor waking nor a look for errors; what arrives in the half second after
    /// the CR, or behind it, is dropped.
    std::optional<QString> send_block(const QString& block);

    /// True when ask, send or send_block would put something on the wire.
    bool can_send() const { return (port_connected || still_there()) && !commands_suspended; }

    /// What the exchange before has left: its answer, empty after a lost link; what could not be
    /// sent leaves it as it was. For a box or a file that shows this even then.
    const QString& last_answer() const { return reply_text_; }
    /// The command whose every attempt the meter answered with an error, which lost the link; empty
    /// where it was lost otherwise, and behind any later command.
    const QString& refused() const { return refused_; }
    /// The answer before belongs to another port.
    void forget_answer() {
        reply_text_.clear();
        refuses_ = false;
    }
    /// What the meter before may still have sent comes no more: another device is on the line.
    void forget_late_answers() { late_ = LateAnswers(); }

    /// Waits until more than `seconds` (0 or more) have passed on the clock; 0 waits for the next
    /// clock tick. No midnight correction of its own.
    void wait_time(double seconds);

    /// Throws Interrupted where the program has been told to end or the work to stop, as each
    /// transaction does before it begins.
    void end_when_interrupted() const;

    /// Declares the link lost: `port_connected` false, the answer empty, port closed, status red.
    void show_port_state();

    /// The S0 header record of satellite slot `slot` (0 to 999). Leaves its text ("ASL 001") as the
    /// last answer.
    QString make_srecord(int slot);

    SerialPort& port() { return port_; }
    Clock& clock() { return clock_; }
    LinkView& view() { return view_; }

  private:
    enum class Outcome { answered, failed, lost };

    friend class InOrder;

    bool still_there() const { return in_order > 0 && refuses_; }
    /// The answer while the link is up.
    std::optional<QString> answer() const;
    /// One transaction around `exchange`, which sends `command` and waits: the link is lost unless
    /// it was answered. What `rest` does is done before the port is closed. False when nothing can
    /// be sent.
    bool transact(const QString& command, const std::function<Outcome()>& exchange,
                  const std::function<void()>& rest);
    /// Sends the frame over a line opened anew; the time at which it began, nothing when the port
    /// does not open.
    std::optional<float> send_anew();
    Outcome run_attempts();
    Outcome run_attempt();
    Outcome poll_answer(float start, float sent);
    /// What `reply_text_` is so far, once whatever belongs to other commands has been dropped.
    ReplyWatch::Verdict judge(ReplyWatch& watch);
    bool drop_late_answer();
    bool is_mere_noise(qsizetype begin) const;
    bool another_may_come() const;
    void settle_error();
    void settle_answer();
    void wait_for_late_answers();
    void note_late_answers(const QString& received);
    void wait_until_unambiguous(const QString& command);
    Outcome run_block();
    Outcome poll_block(float start);
    bool is_late_to_block();
    void collect_input();
    bool open_port();
    void close_port();
    void send_frame(const QString& frame);
    void wake_meter();
    void show_progress(int value);
    void advance_progress();
    void wait(double seconds, bool interruptible);
    void wait_tick();
    void pump_when_due();
    bool told_to_end() const;
    bool told_to_stop() const;
    void end_when_cut_off() const;
    void note_left_off();

    SerialPort& port_;
    Clock& clock_;
    LinkView& view_;
    float last_pump_ = 0;
    bool busy_ = false;
    bool once_ = false;     ///< the command goes out once
    bool failed_ = false;   ///< and was not taken
    bool refuses_ = false;  ///< the link was lost over a refusal: the meter has not gone
    bool gone_on_ = false;  ///< all the same, see in_order
    int progress_ = 0;      ///< steps of the exchange, 0 to kProgressSteps
    QString command_text_;  ///< that is sent, without terminator
    QString refused_;       ///< see refused()
    QString reply_text_;    ///< what has been received; at the end of the exchange its answer

    LateAnswers late_;
    // Of the present exchange; times on the steady clock
    int asked_ = 0;     ///< attempts
    int answered_ = 0;  ///< attempts whose answer has come
    int errors_ = 0;    ///< attempts that the meter answered with an error
    double first_sent_ = 0;
    double last_sent_ = 0;
    double answer_took_ = 0;
    QString behind_;  ///< what came behind the answer
    bool doubtful_ = false;
};

/// While it lives values are at stake.
class Measuring {
  public:
    explicit Measuring(Link& link) : link_(link), before_(link.refuse_doubtful) {
        link_.refuse_doubtful = true;
    }
    ~Measuring() { link_.refuse_doubtful = before_; }
    Measuring(const Measuring&) = delete;
    Measuring& operator=(const Measuring&) = delete;

  private:
    Link& link_;
    bool before_;
};

/// While it lives a recall only refreshes the screen.
class Suspended {
  public:
    explicit Suspended(Link& link) : link_(link) { link_.commands_suspended = true; }
    ~Suspended() { link_.commands_suspended = false; }
    Suspended(const Suspended&) = delete;
    Suspended& operator=(const Suspended&) = delete;

  private:
    Link& link_;
};

/// "RS232 ComPort 2 Connected" or "RS232 ComPort 2 NOT Connected".
QString port_state_text(int port_number, bool connected);

}  // namespace m47::link
