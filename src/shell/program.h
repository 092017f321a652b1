// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <memory>
#include <optional>

#include "band_desk.h"
#include "database.h"
#include "device_watch.h"
#include "help_key.h"
#include "identify_command.h"
#include "import_command.h"
#include "line_recording.h"
#include "link.h"
#include "mdi.h"
#include "meter_connection.h"
#include "open_sites.h"
#include "port_list.h"
#include "problem_command.h"
#include "program_state.h"
#include "real_clock.h"
#include "recording_command.h"
#include "serial_port.h"
#include "start_desk.h"
#include "visit_command.h"
#include "visit_of_window.h"

namespace m47::shell {

/// The whole program: the parts that live as long as it does, and who knows whom.
class Program {
  public:
    /// `state` with `base_dir` set and `database` already open. `time_of_day` sets the pace of the
    /// characters on the line.
    Program(ProgramState& state, std::unique_ptr<db::Database> database, link::PortList ports,
            link::RealClock::TimeOfDay time_of_day = platform::local_time_of_day);
    /// The same on another time and line than those of this machine.
    Program(ProgramState& state, std::unique_ptr<db::Database> database, link::PortList ports,
            std::unique_ptr<link::Clock> clock, std::unique_ptr<link::SerialPort> port);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    M47MDI& window() { return window_; }
    unattended::MeterConnection& connection() { return connection_; }
    link::Link& link() { return connection_.link(); }
    unattended::LineRecording& recording() { return recording_; }
    db::Database& database() { return *database_; }
    sites::OpenSites& sites() { return sites_; }
    sites::VisitOfWindow& visit() { return visit_; }
    ProgramState& state() { return state_; }
    const ProgramState& state() const { return state_; }

    /// How far the work is that goes on, or came before the program was told to end; nothing where
    /// there is none.
    std::optional<Said> left_off() const;

    /// Offers to go on with a visit that was cut off, where there is one.
    void look_for_visit() { visit_command_.look_for_cut_off(); }

    /// Identifies the meter on port `number` (1 to 10), as picking it on the port screen does.
    void identify(int number) { connection_.identify(number); }

    /// What works the page behind the screens.
    StartDesk& start_desk() { return start_; }

    void cmdmanual_Click();
    /// Opens the manual at the page `name`, or at that of the screen in front where it is empty,
    /// from the first of `folders` that has it; one message where none has.
    void open_manual(const QStringList& folders, const QString& name = {});

  private:
    void add_screens();
    void connect_connection();
    void connect_activity();
    void connect_visit();
    void activity_stop_Click();
    void reconnect();
    void another_device();
    QString link_fault() const;
    void watch_device();

    ProgramState& state_;
    std::unique_ptr<db::Database> database_;
    sites::OpenSites sites_;  ///< the screens let go of it first
    sites::VisitOfWindow visit_;
    band::BandDesk band_;
    M47MDI window_;
    unattended::MeterConnection connection_;
    unattended::LineRecording recording_;
    RecordingCommand recording_command_;
    ProblemCommand problem_command_;
    StartDesk start_;
    link::DeviceWatch watch_;
    QTimer watch_timer_;
    std::unique_ptr<HelpKey> help_key_;
    ImportCommand import_;
    IdentifyCommand identify_;
    VisitCommand visit_command_;
};

}  // namespace m47::shell
