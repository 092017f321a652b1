// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRandomGenerator>
#include <array>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>

#include "disk_gate.h"

namespace m47 {

/// Two programs on one disk, which take turns at each call to it in an order that the seed gives.
class Turns {
  public:
    explicit Turns(quint32 seed);

    /// The disk is full for `program` (0 or 1) from its write `number` (from 1) on, of which half
    /// is written, until that program has taken back what it wrote.
    void fill_disk(std::size_t program, int number);

    /// Runs both to their ends.
    void run(const std::function<void()>& one, const std::function<void()>& other);

    /// How often the disk went from one program to the other.
    int changes() const { return changes_; }

  private:
    class Gate : public DiskGate {
      public:
        Gate(Turns& turns, std::size_t program) : turns_(turns), program_(program) {}
        DiskFate pass(const char* call) override { return turns_.pass(program_, call); }

      private:
        Turns& turns_;
        std::size_t program_;
    };

    void live(std::size_t program, const std::function<void()>& body);
    DiskFate pass(std::size_t program, const char* call);
    DiskFate fate(std::size_t program, const char* call);
    void choose();

    enum class State { under_way, waiting, ended };
    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<State, 2> state_{};
    std::size_t turn_ = 0;
    bool chosen_ = false;
    int changes_ = 0;
    QRandomGenerator random_;
    /// In how many of so many calls the disk goes to the other one.
    quint32 patience_;
    std::optional<std::size_t> filled_for_;
    int room_ = 0;  ///< writes until the disk is full
};

}  // namespace m47
