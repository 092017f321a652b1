// SPDX-License-Identifier: GPL-3.0-or-later
// The whole program in its windows, clicked and typed at as a technician does, against the
// simulated meter on a pseudo-terminal.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

#include "process_support.h"
#include "program_in_folder.h"
#include "realtime.h"

namespace m47 {

class GuiTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<MeterProcess> meter_;

    void start(const QStringList& meter_options = {});
    /// Picks a number in the list of ports with the keyboard.
    void pick_port(int number);
    realtime::Realtime* open_realtime();
    /// The commands since the last call.
    QStringList new_commands();
    qsizetype seen_ = 0;

    void tick(const char* name, QObject* screen);
    void type(const char* name, QObject* screen, const QString& text);
    QStringList row(const realtime::Realtime* screen, int number);
    /// What the meter says of itself now, one subject a line.
    QString meter_state(const QString& file);
    /// Adds a monitored or unmonitored analog program to the plan that a new database holds.
    void add_program(const char* number, double frequency, int monitored);

  private Q_SLOTS:
    void init() { seen_ = 0; }
    void cleanup();

    void a_meter_that_was_unplugged_is_connected_again_by_the_menu();
    void the_meter_of_a_recording_is_connected_where_it_lost_its_line_too();
    void another_meter_after_reconnect_is_asked_for_its_unit();
    void a_meter_that_is_picked_anew_is_asked_for_its_unit();
    void another_meter_after_reconnect_takes_the_first_ones_satellites_off_the_screen();
    void picking_a_port_identifies_the_meter();
    void the_version_decides_over_the_satellite_key_data();
    void the_version_decides_over_the_satellite_key();
    void an_analog_measurement_becomes_a_row_and_a_line();
    void a_digital_measurement_asks_for_what_is_ticked();
    void tuning_controls_send_what_they_show();
    void dish_and_switches_obey_the_screen();
    void the_unit_of_the_meter_is_taken_over();
    void a_plan_is_measured_program_by_program();
    void a_pass_whose_database_is_locked_says_that_it_was_cut_short();
    void timed_acquisition_measures_every_second_and_stops();
    void a_vanished_meter_turns_the_status_red_within_a_moment();
    void clicks_and_ticks_wait_while_the_meter_answers();
};

}  // namespace m47
