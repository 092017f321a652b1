// SPDX-License-Identifier: GPL-3.0-or-later
#include "recording_port.h"

namespace m47::link {

bool RecordingPort::open() {
    open_ = port_.open();
    if (open_)
        recorder_.opened(port_.path());
    else
        recorder_.open_failed(port_.fault());
    return open_;
}

void RecordingPort::close() {
    look_for_loss();
    port_.close();
    if (open_) recorder_.closed();
    open_ = false;
}

QByteArray RecordingPort::read_all() {
    const QByteArray bytes = port_.read_all();
    if (!bytes.isEmpty()) recorder_.received(bytes);
    look_for_loss();
    return bytes;
}

bool RecordingPort::write(char character) {
    const bool gone_out = port_.write(character);
    if (gone_out)
        recorder_.sent(character);
    else
        look_for_loss();
    return gone_out;
}

bool RecordingPort::wait_for_input(std::chrono::milliseconds limit) {
    const bool some = port_.wait_for_input(limit);
    look_for_loss();
    return some;
}

void RecordingPort::look_for_loss() {
    if (!open_ || port_.is_open()) return;
    open_ = false;
    recorder_.lost(port_.fault());
}

}  // namespace m47::link
