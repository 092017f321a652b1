// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "modes.h"

#include <QTest>

#include "answer_before.h"
#include "realtime_fixture.h"

namespace m47::realtime {

inline const QStringList kLoadCommands{"MEASURE", "ATTEN 6",   "TONE22K 00", "SYMBRATEQPSK?",
                                       "UNIT?",   "LOCOSC 00", "FREQ 1000"};

/// A program with a value of its own in every field that the screen shows.
inline QMap<QString, QVariant> whole_program() {
    return {
        {"pg_num", " 007 "},   {"frequenza", 11727.5},
        {"loc_osc", false},    {"loc_osc0", 0},
        {"sat_ad", 0},         {"qpsk_symbolrate", "22000"},
        {"lnb_volt", 1},       {"K22", 0},
        {"monitor_state", 1},  {"lev_min", "35"},
        {"lev_max", "85"},     {"noise_min", "6"},
        {"noise_max", "26"},   {"chber_min", "1E-7"},
        {"chber_max", "2E-2"}, {"mer_min", "8"},
        {"mer_max", "28"},
    };
}

/// How the screen prepares the meter, changes its presentation and recalls stored programs.
class ModesTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void load();
    void load_is_one_recall();
    void load_shows_the_screen_first();
    void load_starts_the_noise_boxes_where_c_n_is_complete();
    void load_without_a_link();
    void load_while_commands_are_suspended();
    void load_goes_on_after_a_refusal_data();
    void load_goes_on_after_a_refusal();
    void load_ended_by_the_user();
    void unit_of_the_meter_data();
    void unit_of_the_meter();
    void coming_to_the_front();
    void coming_to_the_front_keeps_the_mode_where_chosen();
    void analog_presentation();
    void digital_presentation();
    void digital_presentation_while_commands_are_suspended();
    void digital_presentation_without_the_satellite_frame();
    void satellite_defaults();
    void satellite_defaults_without_a_link();
    void a_symbol_rate_that_was_not_answered_data();
    void a_symbol_rate_that_was_not_answered();
    void unit_menu_data();
    void unit_menu();
    void the_same_unit_twice();
    void unit_menu_during_a_recall();

    void recall_of_an_analog_program();
    void recall_of_a_digital_program();
    void recall_leaves_the_results_as_those_of_the_program_before();
    void recall_while_commands_are_suspended();
    void recall_that_changes_the_oscillator_choice_data();
    void recall_that_changes_the_oscillator_choice();
    void oscillator_of_the_plan_data();
    void oscillator_of_the_plan();
    void bandwidth_of_the_program_data();
    void bandwidth_of_the_program();
    void noise_boxes_begin_at_the_frequency_of_the_program();
    void presentation_of_the_program_data();
    void presentation_of_the_program();
    void digital_program_without_the_satellite_frame();
    void program_that_is_not_monitored_data();
    void program_that_is_not_monitored();
    void empty_fields();
    void numbers_of_the_database_data();
    void numbers_of_the_database();
    void plan_name_with_quotes_data();
    void plan_name_with_quotes();
    void plan_that_does_not_exist();
    void plan_named_in_other_letters();
    void plan_without_a_configuration();
    void first_program_of_a_plan();
    void nothing_recalled_before_a_plan_is_open();
    void behind_the_last_program();
    void recall_that_fails_in_the_middle();
    void recall_that_loses_the_link();
    void recall_ended_by_the_user();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    RealtimeState& state() { return f_->state(); }
    Modes& modes() { return f_->rules.modes; }

    void change_program(const QMap<QString, QVariant>& fields);
    void change_configuration(const QMap<QString, QVariant>& fields);
    /// A second plan of one program.
    void add_plan(const QString& name, const QMap<QString, QVariant>& program);
    /// What the recall of a program shows and the frames, to tell that nothing has changed.
    QStringList everything_shown();
    QString frames();
    static QString analog_frames();
    static QString digital_frames();

    std::unique_ptr<RealtimeFixture> f_;
};

}  // namespace m47::realtime
