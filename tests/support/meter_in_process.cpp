// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_in_process.h"

#include <sstream>

#include "instrument.h"
#include "replay.h"

namespace m47 {
namespace {

constexpr std::size_t kLoggerBytes = 20000;
constexpr double kByteTime = 11.0 / 38400;
constexpr qsizetype kPiece = 64;
constexpr double kProcessingTime = 0.002;
constexpr double kTrickleInterval = 0.25;
/// Longer than any limit of the link.
constexpr double kForEver = 260;
constexpr double kBlockTime = 0.5;   // of an endless answer
constexpr double kTimeToRead = 0.3;  // before the line is pulled

double seconds(std::chrono::microseconds time) {
    return std::chrono::duration<double>(time).count();
}

const meter::FaultKind* kind_named(const QString& name) {
    for (const meter::FaultKind& kind : meter::fault_kinds())
        if (name.toStdString() == kind.name) return &kind;
    qFatal("no fault %s", qPrintable(name));
}

}  // namespace

struct MeterInProcess::Inside {
    explicit Inside(quint64 seed, double fade_db = 0)
        : instrument(options(fade_db)), random(seed) {}
    Inside(quint64 seed, const DishInProcess& dish)
        : instrument(options(dish), [] { return 0.0; }), random(seed) {}

    static meter::Options options(double fade_db) {
        meter::Options chosen;
        chosen.sky.fade_db = fade_db;
        chosen.logger_bytes = kLoggerBytes;
        return chosen;
    }
    static meter::Options options(const DishInProcess& dish) {
        meter::Options chosen = options(0.0);
        chosen.sky.orbit = true;
        chosen.sky.tables = dish.tables.toStdString();
        chosen.sky.point_east = dish.east;
        chosen.sky.chance.seed = dish.seed;
        chosen.sky.chance.cn_db = dish.cn_db;
        chosen.sky.chance.off_air_percent = dish.off_air_percent;
        return chosen;
    }

    meter::Instrument instrument;
    meter::Jitter random;
    bool asleep = false;
    const meter::FaultKind* planned = nullptr;  ///< when `commands` reaches `planned_at`
    int planned_at = 0;
    std::istringstream recording;
    std::unique_ptr<meter::Replay> replay;
};

MeterInProcess::MeterInProcess(FakePort& port, quint64 seed, double fade_db)
    : port_(port), inside_(std::make_unique<Inside>(seed, fade_db)) {
    listen();
}

MeterInProcess::MeterInProcess(FakePort& port, quint64 seed, const DishInProcess& dish)
    : port_(port), inside_(std::make_unique<Inside>(seed, dish)) {
    listen();
}

MeterInProcess::MeterInProcess(FakePort& port, const Recorded& recorded)
    : port_(port), inside_(std::make_unique<Inside>(1)) {
    inside_->recording.str(recorded.text.toStdString());
    inside_->replay = std::make_unique<meter::Replay>(inside_->recording, 1.0, true);
    listen();
}

void MeterInProcess::listen() {
    port_.answer = [this](const QByteArray& command) {
        answer(command);
        return QByteArray();
    };
}

MeterInProcess::~MeterInProcess() {
    port_.answer = nullptr;
}

QByteArray MeterInProcess::kept() const {
    return QByteArray::fromStdString(inside_->instrument.state().report());
}

void MeterInProcess::spoil(const QString& kind, int nth) {
    inside_->planned = kind_named(kind);
    inside_->planned_at = commands + nth;
}

QByteArray MeterInProcess::never_recorded() const {
    return QByteArray::fromStdString(inside_->replay->never_recorded());
}

void MeterInProcess::replay(const QByteArray& command) {
    const meter::Delivery delivery = inside_->replay->handle(command.toStdString());
    const QByteArray bytes = QByteArray::fromStdString(delivery.bytes);
    if (!delivery.recorded) return port_.feed(bytes);
    qsizetype sent = 0;
    for (const meter::RecordedPace::Piece& piece : delivery.recorded->pieces) {
        const auto end = static_cast<qsizetype>(piece.end);
        port_.feed(bytes.mid(sent, end - sent), seconds(piece.last));
        sent = end;
    }
    if (delivery.recorded->lost) port_.vanish_in(seconds(*delivery.recorded->lost));
}

void MeterInProcess::answer(const QByteArray& command) {
    if (inside_->replay) return replay(command);
    if (command.isEmpty()) inside_->asleep = false;
    if (inside_->asleep || command.isEmpty()) return;
    // Another command ends what has no end.
    port_.hush();
    ++commands;
    const std::string line = command.toStdString();
    const meter::FaultKind* kind = nullptr;
    if (bad_in > 0 && inside_->random.below(static_cast<std::size_t>(bad_in)) == 0) {
        const auto kinds = meter::fault_kinds();
        kind = &kinds[inside_->random.below(kinds.size())];
        ++faults;
    }
    if (inside_->planned && commands == inside_->planned_at) kind = inside_->planned;
    if (on_command)
        on_command(command, kind ? QString::fromUtf8(kind->name.data(),
                                                     static_cast<qsizetype>(kind->name.size()))
                                 : QString());
    meter::Delivery delivery;
    if (!kind || kind->carried_out) delivery = inside_->instrument.handle(line);
    if (kind) kind->spoil(delivery, {line, inside_->random, 3.0});
    inside_->asleep = delivery.falls_asleep;

    const double begin = kProcessingTime + delivery.wait_seconds;
    const QByteArray bytes = QByteArray::fromStdString(delivery.bytes);
    const double end = begin + kByteTime * static_cast<double>(bytes.size());
    // In pieces, as a line brings it.
    for (qsizetype at = 0; at < bytes.size(); at += kPiece) {
        const QByteArray piece = bytes.mid(at, kPiece);
        port_.feed(piece, begin + kByteTime * static_cast<double>(at + piece.size()));
    }
    if (delivery.ending == meter::Ending::close_line) port_.vanish_in(end);
    if (delivery.ending == meter::Ending::unplug) port_.vanish_in(end + kTimeToRead);
    if (delivery.ending == meter::Ending::trickle) go_on(false, end);
    if (delivery.ending == meter::Ending::endless) go_on(true, end);
}

void MeterInProcess::go_on(bool full_speed, double from) {
    const double interval = full_speed ? kBlockTime : kTrickleInterval;
    const auto block = full_speed ? static_cast<qsizetype>(kBlockTime / kByteTime) : 1;
    const QByteArray bytes = QByteArray("0123456789.").repeated(block / 11 + 1).first(block);
    for (double at = from + interval; at < from + kForEver; at += interval) port_.feed(bytes, at);
}

}  // namespace m47
