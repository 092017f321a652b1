// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

#include "fake_port.h"

namespace m47 {

/// A recording of the line, as a file of it holds it.
struct Recorded {
    QByteArray text;
};

/// A dish under the simulated orbit.
struct DishInProcess {
    QString tables;    ///< the folder with the scan tables that the sky is made of
    double east = 0;   ///< where the dish looks, degrees
    quint64 seed = 1;  ///< of the sky
    double cn_db = 12;
    double off_air_percent = 20;
};

/// The simulated meter behind a fake port, on the virtual clock: what takes minutes on a line takes
/// an instant here. It answers well, but for one command in `bad_in` and the one that spoil() says.
class MeterInProcess {
  public:
    /// Answers on `port` from now on; both have to outlive it. Every carrier is weaker by
    /// `fade_db`.
    MeterInProcess(FakePort& port, quint64 seed, double fade_db = 0);
    /// The same under the orbit, whose weather stands still.
    MeterInProcess(FakePort& port, quint64 seed, const DishInProcess& dish);
    /// The meter of a recording.
    MeterInProcess(FakePort& port, const Recorded& recorded);
    ~MeterInProcess();
    MeterInProcess(const MeterInProcess&) = delete;
    MeterInProcess& operator=(const MeterInProcess&) = delete;

    /// What the meter keeps, as the program of the simulated meter writes it with --state.
    QByteArray kept() const;

    /// The `nth` command from now on, counted from 1, gets a fault of this kind.
    void spoil(const QString& kind, int nth);
    /// What was asked and never recorded, as the program of the simulated meter tells it.
    QByteArray never_recorded() const;

    /// One command in so many, drawn by the seed, gets a fault drawn from all kinds; 0: none does.
    int bad_in = 0;

    int commands = 0;
    int faults = 0;
    /// Told of each command and of the kind of fault that hits it, empty for none.
    std::function<void(const QByteArray& command, const QString& fault)> on_command;

  private:
    struct Inside;

    void listen();
    void answer(const QByteArray& command);
    void replay(const QByteArray& command);
    void go_on(bool full_speed, double from);

    FakePort& port_;
    std::unique_ptr<Inside> inside_;
};

}  // namespace m47
