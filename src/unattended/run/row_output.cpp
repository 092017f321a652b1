// SPDX-License-Identifier: GPL-3.0-or-later
#include "row_output.h"

#include <QDeadlineTimer>

namespace m47::unattended {
namespace {

constexpr qsizetype kMostPending = qsizetype{1024} * 1024;
constexpr int kWaitSlice = 100;  // ms; how late a wish to stop is seen

const QString kStalledReader = QStringLiteral("its reader has stalled");

}  // namespace

void RowOutput::write(const QByteArray& line) {
    if (closed_) return;
    write_pending();
    if (pending_.size() + line.size() > kMostPending)
        lose();
    else
        pending_ += line;
    write_pending();
}

void RowOutput::write_pending() {
    trouble_.clear();
    while (!pending_.isEmpty() && trouble_.isEmpty()) {
        if (!output_.wait_until_ready(0)) return stall(kStalledReader);
        const platform::PatientOutput::Written written = output_.write(pending_);
        pending_.remove(0, written.bytes);
        if (written.error) take_fault(written);
    }
}

void RowOutput::take_fault(const platform::PatientOutput::Written& written) {
    const QString reason = qt_error_string(written.error.value());
    if (written.stalled()) return stall(kStalledReader);
    // A disk may have room again later.
    if (written.full()) return stall(reason);
    trouble_ = reason;
    closed_ = true;
    pending_.clear();
    lose();
}

void RowOutput::finish(double seconds, const std::function<bool()>& told_to_stop) {
    const QDeadlineTimer deadline(static_cast<qint64>(seconds * 1000));
    if (!closed_) write_pending();
    while (trouble_ == kStalledReader && !told_to_stop() && !deadline.hasExpired())
        if (output_.wait_until_ready(kWaitSlice)) write_pending();
    if (!pending_.isEmpty()) lose();
}

void RowOutput::stall(const QString& reason) {
    trouble_ = reason;
    if (!stalled_ && on_remark)
        on_remark(QStringLiteral("stdout takes no rows now, the run goes on: %1").arg(reason));
    stalled_ = true;
}

void RowOutput::lose() {
    if (!lost_ && on_remark)
        on_remark(QStringLiteral("not every row went to stdout: %1").arg(trouble_));
    lost_ = true;
}

}  // namespace m47::unattended
