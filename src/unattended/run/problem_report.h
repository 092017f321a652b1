// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <vector>

#include "impersonal.h"
#include "meter_connection.h"
#include "program_state.h"

namespace m47::unattended {

/// A file of the report for whoever looks for a fault.
struct ProblemItem {
    QString name;        ///< of the file
    Bilingual what;      ///< for the user
    QByteArray bytes;    ///< empty where make() has it
    bool text = true;    ///< that a user can read
    bool wanted = true;  ///< goes into the report
    /// Makes the file at `path` when it is wanted, instead of `bytes`; a Fault where it cannot.
    std::function<void(const QString& path)> make;
};

/// What there is to tell of a fault, without the name of a person: versions, ports, preferences,
/// what was told on stderr and, where `recording` names a file, the recording of the line; of a
/// long one its end.
std::vector<ProblemItem> problem_items(const ProgramState& program, MeterConnection& connection,
                                       const QString& recording, const Person& person);

/// Writes what is wanted of `items` as the file `path`, a .tar.gz, whole or not at all. Nothing on
/// success, else why it could not be.
QString write_problem_report(const QString& path, const std::vector<ProblemItem>& items,
                             const Texts& texts);

}  // namespace m47::unattended
