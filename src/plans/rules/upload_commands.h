// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <vector>

#include "logger_table.h"
#include "program_record.h"

namespace m47::plans {

/// All that an upload needs to know of a plan.
struct UploadPlan {
    std::vector<programme::ProgramRecord> programs;
    programme::Oscillators oscillators;
    QString bandwidth;   ///< of the program that is shown, MHz; it goes for all
    int unit_index = 0;  ///< a LevelUnit
};

/// Takes the programs out that have no frequency yet. Where one of them is shown, the bandwidth is
/// that of the first program that is left.
void leave_out_blank(UploadPlan& plan);

// The parts of an upload in the order they are sent.

/// What comes before the meter's logger table can be known. In mode kDisable it ends with the query
/// for that table.
QStringList opening_commands(UploadMode mode);

/// Disables the active ones of `lines`, the lines of the logger table.
QStringList disabling_commands(const QStringList& lines);

/// Bandwidth and unit, which go for every program.
QStringList settings_commands(const UploadPlan& plan);

/// These and every program.
QStringList plan_commands(const UploadPlan& plan);

/// The whole upload; `table` is the meter's answer to the query of mode kDisable.
QStringList upload_commands(const UploadPlan& plan, UploadMode mode, const QString& table);

}  // namespace m47::plans
