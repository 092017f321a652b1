// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileSystemWatcher>
#include <QTimer>

#include "database.h"
#include "mdi.h"
#include "meter_connection.h"
#include "simulated_meter.h"
#include "start_page.h"

namespace m47::shell {

/// Works the start page: which devices there are, what its keys do.
class StartDesk : public QObject {
    Q_OBJECT
  public:
    /// All outlive it.
    StartDesk(M47MDI& window, unattended::MeterConnection& connection, ProgramState& state,
              db::Database& database);

    /// Puts the page behind the screens; at the start once the window is painted, as looking for
    /// devices takes longer than all else.
    void open();
    /// Shows what there is now; nothing before open().
    void refresh();
    void show_texts();

    /// A port has been picked, by the page or not: whether the meter there is the simulated one.
    void port_picked();
    /// The page does not go on saying that a meter answers which no longer does.
    void look_at_link();

    // The keys of the page.
    void start_connect_Click(int number);
    void start_search_Click();
    void start_simulated_Click();

    /// The menu entry "Open recording…": the meter of a recording that the user chooses.
    void cmdreplay_Click();
    /// Starts the meter of the recording `path` and connects it; told where it does not start.
    void open_recording(const QString& path);

    SimulatedMeter& simulated() { return simulated_; }

  Q_SIGNALS:
    void manual_asked();

  private:
    void watch_devices();
    void connect_page();
    void show_answer(int number);
    QString answer_text(int number) const;
    void show_result(const QString& text);
    /// Connects the meter that was started behind `device`; tells why where that is empty.
    void connect_started(const QString& device);
    QList<StartPage::Device> devices();
    QList<StartPage::Recent> plans();
    QList<StartPage::Recent> logs() const;
    void open_log(const QString& path);
    void open_plan(const QString& name);

    M47MDI& window_;
    unattended::MeterConnection& connection_;
    ProgramState& state_;
    db::Database& database_;
    SimulatedMeter simulated_;
    int simulated_port_ = 0;
    bool answers_ = false;  ///< says the page
    StartPage* page_ = nullptr;
    QFileSystemWatcher* watcher_ = nullptr;
    QTimer settle_;
};

}  // namespace m47::shell
