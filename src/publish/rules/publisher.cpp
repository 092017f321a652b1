// SPDX-License-Identifier: GPL-3.0-or-later
#include "publisher.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <utility>

namespace m47::publish {
namespace {

constexpr qsizetype kMostHeld = qsizetype{4} * 1024 * 1024;  // bytes
constexpr qsizetype kMostAtOnce = qsizetype{64} * 1024;      // bytes of a request from memory
constexpr double kTryEvery = 10;                             // seconds, to put what is held
constexpr double kWorkSlice = 0.05;                          // seconds
constexpr qint64 kToldSetBack = 2000;                        // ms

/// Whether the log has the line in its place, or where it was followed by others'. A log that was
/// put away since says nothing: its rows count.
bool log_has(const QString& path, const LogPlace& place) {
    constexpr qint64 kLooked = 65536;
    QFile log(path);
    if (!log.open(QIODevice::ReadOnly) || log.size() < place.size) return true;
    log.seek(place.size);
    return log.read(kLooked).contains(place.line + "\r\n");
}

}  // namespace

Publisher::Publisher(PublishOrder order, HttpSender& sender, link::Clock& clock, const Texts& texts,
                     std::function<double()> chance)
    : order_(std::move(order)),
      sender_(sender),
      clock_(clock),
      texts_(texts),
      chance_(std::move(chance)) {}

/// False where the outbox fails, which is told once until it works again.
bool Publisher::told(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const OutboxFault& fault) {
        if (!fault_told_) remark(fault.text(texts_));
        fault_told_ = true;
        return false;
    }
}

bool Publisher::open() {
    OutboxError error;
    outbox_ = Outbox::open(order_.outbox, order_.limit, error);
    if (!outbox_ || !told([this] { settle_last_row(); })) {
        if (!outbox_) remark(outbox_error_text(error, texts_));
        remark(QStringLiteral("nothing is published, measuring goes on"));
        outbox_.reset();
        lost_ = true;
        return false;
    }
    delivery_ = std::make_unique<Delivery>(*outbox_, sender_, clock_, chance_);
    delivery_->on_remark = [this](const QString& text) { remark(text); };
    return true;
}

/// The process before this one may have been ended between outbox and log.
void Publisher::settle_last_row() {
    if (!outbox_->uncounted_place()) return;
    if (log_has(order_.log, *outbox_->uncounted_place()))
        outbox_->count_all();
    else
        outbox_->drop_uncounted();
    outbox_->tend();
}

void Publisher::before_row(const measurement::Measurement& measured, std::string_view line,
                           const QDateTime& moment) {
    std::optional<LogPlace> place;
    if (!order_.log.isEmpty())
        place = LogPlace{QFileInfo(order_.log).size(),
                         QByteArray(line.data(), static_cast<qsizetype>(line.size()))};
    put(
        LineKind::row, moment,
        [&](qint64 milliseconds) {
            return measurement_line(order_.station, measured, milliseconds);
        },
        place);
}

void Publisher::after_row() {
    if (!outbox_) return;
    outbox_->count_all();
    delivery_->look();
}

void Publisher::put(LineKind kind, const QDateTime& moment,
                    const std::function<QByteArray(qint64 milliseconds)>& line_at,
                    const std::optional<LogPlace>& place) {
    if (!outbox_) return;
    const qint64 now = moment.toMSecsSinceEpoch();
    const qint64 last = outbox_->last_time();
    const qint64 milliseconds = outbox_->time_after_all(now);
    if (milliseconds < last)
        tell_far_back((last - milliseconds) / 1000);
    else
        tell_set_back(now, milliseconds);
    if (milliseconds > now)
        times_.note(milliseconds, clock_.steady());
    else
        times_.end(milliseconds);
    const QByteArray line = line_at(milliseconds);
    const bool kept = put_held() && told([&] { outbox_->append(kind, milliseconds, line, place); });
    if (kept)
        fault_told_ = false;
    else
        hold({kind, milliseconds, line});
    if (outbox_->rows_dropped() > 0 && !std::exchange(dropping_told_, true))
        remark(QStringLiteral("the outbox is full: its oldest rows go undelivered"));
}

/// Who sets a clock back finds the rows of that time close together, in their order.
void Publisher::tell_set_back(qint64 now, qint64 milliseconds) {
    const bool back = milliseconds - now > kToldSetBack;
    if (back && !set_back_told_)
        remark(QStringLiteral("the clock was set back by %1 s: until then rows are published with "
                              "times just behind the last one")
                   .arg((milliseconds - now) / 1000));
    set_back_told_ = back;
}

void Publisher::tell_far_back(qint64 seconds) const {
    remark(
        QStringLiteral("the clock was set back by %1 s, more than a day: rows are published with "
                       "its times again; an engine may have left out those that lay so far ahead")
            .arg(seconds));
}

/// False where the file still takes nothing.
bool Publisher::put_held() {
    while (!held_.empty()) {
        const HeldLine& line = held_.front();
        if (!told([&] { outbox_->append(line.kind, line.milliseconds, line.line); })) return false;
        held_bytes_ -= line.line.size();
        held_.pop_front();
        delivery_->look();
    }
    return true;
}

/// A row waits for room on the disk; how the run was is of no use later.
void Publisher::hold(HeldLine line) {
    next_try_ = clock_.steady() + kTryEvery;
    if (line.kind == LineKind::health) return;
    held_bytes_ += line.line.size();
    held_.push_back(std::move(line));
    for (; held_bytes_ > kMostHeld; held_.pop_front()) {
        held_bytes_ -= held_.front().line.size();
        lost_ = true;
    }
}

/// Seconds, also where the clock stands behind the row's own time.
double Publisher::oldest_waiting(const QDateTime& moment) {
    const std::optional<qint64> oldest = outbox_->oldest_waiting();
    if (!oldest) times_.clear();
    if (!oldest) return 0;
    const double by_time = static_cast<double>(moment.toMSecsSinceEpoch() - *oldest) / 1000;
    const std::optional<double> measured = times_.of(*oldest);
    return std::max({by_time, measured ? clock_.steady() - *measured : 0, 0.0});
}

void Publisher::report(Health health) {
    if (!outbox_) return;
    const QDateTime moment = clock_.date_time();
    health.rows_waiting = outbox_->rows_waiting() + static_cast<qint64>(held_.size());
    health.rows_dropped = outbox_->rows_dropped();
    health.rows_set_aside = outbox_->rows_set_aside();
    told([&] { health.oldest_waiting = oldest_waiting(moment); });
    look_for_file();
    put(LineKind::health, moment,
        [&](qint64 milliseconds) { return health_line(order_.station, health, milliseconds); }, {});
    delivery_->look();
}

void Publisher::step() {
    if (!outbox_) return;
    if (!held_.empty() && clock_.steady() >= next_try_) {
        next_try_ = clock_.steady() + kTryEvery;
        put_held();
    }
    delivery_->step();
    told([this] { outbox_->tend(); });
}

void Publisher::pass_time(double seconds) {
    const double end = clock_.steady() + seconds;
    step();
    double left = seconds;
    while (left > 0) {
        if (!outbox_ || !delivery_->due_within(left)) {
            clock_.sleep(left);
            return;
        }
        if (delivery_->busy())
            sender_.work(left);
        else
            clock_.sleep(std::min(left, kWorkSlice));
        step();
        left = end - clock_.steady();
    }
}

void Publisher::finish(double seconds, const std::function<bool()>& told_to_stop) {
    if (!outbox_) return;
    const double end = clock_.steady() + seconds;
    put_held();
    delivery_->hurry();
    step();
    while (!delivery_->done() && !told_to_stop() && clock_.steady() < end)
        pass_time(std::min(kWorkSlice, end - clock_.steady()));
    if (!put_held()) send_held(end, told_to_stop);
    lost_ = lost_ || !held_.empty();
    told([this] { outbox_->tend(); });
    look_for_file();
    tell_waiting();
}

/// What no file has goes from memory, behind all the rest: no later start would have it.
void Publisher::send_held(double end, const std::function<bool()>& told_to_stop) {
    while (!held_.empty() && delivery_->done()) {
        QByteArray body;
        std::size_t lines = 0;
        while (lines < held_.size() && (lines == 0 || body.size() < kMostAtOnce))
            body += held_[lines++].line;
        if (!send(body, end, told_to_stop)) return;
        held_.erase(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(lines));
    }
}

/// True where the engine has taken it before the time is over.
bool Publisher::send(const QByteArray& body, double end,
                     const std::function<bool()>& told_to_stop) {
    sender_.post(body);
    while (clock_.steady() < end && !told_to_stop()) {
        if (const auto answer = sender_.answer()) return is_taken(*answer);
        sender_.work(kWorkSlice);
    }
    sender_.give_up();
    return false;
}

std::deque<HeldLine> Publisher::take_held() {
    held_bytes_ = 0;
    return std::exchange(held_, {});
}

void Publisher::hold_on(std::deque<HeldLine> lines) {
    if (!outbox_) lost_ = lost_ || !lines.empty();
    if (!outbox_) return;
    for (HeldLine& line : lines) {
        // What comes is behind it.
        static_cast<void>(outbox_->time_after_all(line.milliseconds));
        hold(std::move(line));
    }
    put_held();
}

/// Rows in a file that is gone are delivered while the process lives.
void Publisher::look_for_file() {
    if (gone_ || outbox_->in_place()) return;
    gone_ = true;
    remark(outbox_error_text({OutboxError::Kind::moved, order_.outbox, {}}, texts_));
}

void Publisher::tell_waiting() {
    if (!held_.empty())
        remark(QStringLiteral("rows for which the outbox %1 had no room and which were not "
                              "delivered: %2")
                   .arg(order_.outbox)
                   .arg(held_.size()));
    const qint64 waiting = outbox_->rows_waiting();
    if (waiting == 0) return;
    lost_ = lost_ || gone_;
    const QString text =
        gone_ ? QStringLiteral(
                    "rows that were not delivered, and no start will: %2, in what was "
                    "the outbox %1")
              : QStringLiteral("rows that wait in the outbox %1 for the next start: %2");
    remark(text.arg(order_.outbox).arg(waiting));
}

void Publisher::remark(const QString& text) const {
    if (on_remark) on_remark(text);
}

}  // namespace m47::publish
