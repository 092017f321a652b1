// SPDX-License-Identifier: GPL-3.0-or-later
#include "turns.h"

#include <cstring>
#include <thread>

namespace m47 {

Turns::Turns(quint32 seed) : random_(seed), patience_(1U << (1 + random_.bounded(4U))) {}

void Turns::fill_disk(std::size_t program, int number) {
    filled_for_ = program;
    room_ = number;
}

void Turns::run(const std::function<void()>& one, const std::function<void()>& other) {
    std::thread first([&] { live(0, one); });
    std::thread second([&] { live(1, other); });
    first.join();
    second.join();
}

void Turns::live(std::size_t program, const std::function<void()>& body) {
    Gate gate(*this, program);
    pass(program, "begin");
    set_disk_gate(&gate);
    body();
    set_disk_gate(nullptr);
    const std::lock_guard lock(mutex_);
    state_[program] = State::ended;
    choose();
}

DiskFate Turns::pass(std::size_t program, const char* call) {
    std::unique_lock lock(mutex_);
    state_[program] = State::waiting;
    chosen_ = false;
    choose();
    changed_.wait(lock, [&] { return chosen_ && turn_ == program; });
    state_[program] = State::under_way;
    return fate(program, call);
}

/// Both wait, or one has ended: never while a program is at work.
void Turns::choose() {
    const bool free[] = {state_[0] == State::waiting, state_[1] == State::waiting};
    if (state_[0] == State::under_way || state_[1] == State::under_way) return;
    if (!free[0] && !free[1]) return;
    std::size_t next = turn_;
    if (!free[next] || (free[1 - next] && random_.bounded(patience_) == 0)) next = 1 - next;
    if (next != turn_) ++changes_;
    turn_ = next;
    chosen_ = true;
    changed_.notify_all();
}

DiskFate Turns::fate(std::size_t program, const char* call) {
    if (filled_for_ != program) return DiskFate::goes;
    if (std::strstr(call, "truncate") != nullptr) filled_for_.reset();
    if (std::strcmp(call, "write") != 0 || --room_ > 0) return DiskFate::goes;
    return room_ == 0 ? DiskFate::halved : DiskFate::full;
}

}  // namespace m47
