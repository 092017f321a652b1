// SPDX-License-Identifier: GPL-3.0-or-later
#include "qpsk_mode.h"

#include "commands.h"
#include "measure_replies.h"
#include "work.h"

namespace m47::link {

QpskMode::~QpskMode() {
    send_at_the_end(link_, command::kMeasure);
}

void QpskMode::enter() {
    link_.send(command::kQpskQuality);
    link_.wait_time(kAfterQpsk);
}

std::optional<QString> QpskMode::ask() {
    return link_.ask(command::query(command::kQpskQuality));
}

std::optional<QString> labelled(const QString& label, const QString& answer) {
    if (!answer.contains(label)) return std::nullopt;
    return delete_cr(label, answer).trimmed();
}

}  // namespace m47::link
