// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>

#include "options.h"

namespace m47::unattended {

/// The command line as it is read, without anything being done.
class OptionsTest : public QObject {
    Q_OBJECT

  private:
    using Action = Options::Action;
    static Offer remote();
    static Options parse(const QStringList& arguments) {
        return parse_options(arguments, remote());
    }
    static QStringList measuring(const QStringList& options);

  private Q_SLOTS:
    void nothing();
    void window_options();
    void user_data();
    void measurement_options();
    void plan_options();
    void value_behind_an_equals_sign();
    void several_ports_and_alarms();
    void alarm_limits_as_typed();
    void bounds_of_numbers_data();
    void bounds_of_numbers();
    void screens_data();
    void screens();
    void help_and_version_come_first();
    void wrong_data();
    void wrong();
    void a_value_out_of_range_is_told_its_range();
    void twice_with_different_values();
    void antenna_options();
    void formats();
    void plan_files();
    void wrong_antenna_options();
    void no_file_of_an_option_is_written_over();
    void wrong_options_keep_nothing();
    void help_names_every_option();
    void sweeps();
    void visits();
    void peaks();
    void identifications();
    void publishing_data();
    void publishing();
    void publishing_keeps_secrets();
    void what_a_probe_takes();
};

}  // namespace m47::unattended
