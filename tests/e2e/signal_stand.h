// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "process_support.h"

namespace m47 {

/// Something that the program's window is told to do, and how to know that it is in the middle of
/// it.
struct WindowWork {
    const char* name;
    QStringList meter_options;
    /// For the hand in the window, see hand.cpp; "FOLDER" stands for the program's folder.
    QStringList orders;
    /// A command of the meter that begins so, the `times`-th of them; empty: the hand is ready.
    QString busy_at;
    int times = 1;
    /// What the line on stderr says behind "ended by SIGTERM: ", as an expression.
    QString how_far;
    /// The command behind which nothing more was sent, as it begins; empty: any.
    QString last;
};

/// The works that are stopped in the middle.
QList<WindowWork> window_works();

/// The real program with its window on a platform without a display, a meter on port 1, a plan of
/// five programs, and a hand that uses the window.
class WindowStand {
  public:
    explicit WindowStand(const QStringList& meter_options);

    TestStand stand;

    void start(const QStringList& more = {});
    void order(const QStringList& orders);
    /// Waits until the hand has nothing to do. False after a minute.
    bool wait_until_ready();
    /// Waits for the `times`-th command that begins with `words`. False after a minute.
    bool wait_for(const QString& words, int times = 1);
    /// What is wrong in the folder, the database and the lock files after the end; empty: nothing.
    QString damage();

  private:
    int told_ready_ = 0;
};

/// A database with the plan ROOF of five programs; more of its rows are in the tests that need it.
void make_plan_of_five(TestStand& stand);

/// The answer of a database, its cells joined by "|"; the engine's words where there is none.
QStringList cells_of(const QString& database, const QString& statement);

/// What the program told on stderr, without what the toolkit says of a platform without a display.
QByteArray told(const Ending& ending);

/// Waits until the process of `remote` is stopped, or goes on. False after a minute.
bool wait_until_stopped(RemoteProcess& remote, bool stopped);

/// Files in the folders of locks that belong to the process `id`, or claim the device `node`.
QStringList locks_of(qint64 id, const QString& node);

}  // namespace m47
