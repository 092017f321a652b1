// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileDialog>

#include "program_state.h"

namespace m47 {

/// Shows `dialog`, set up for one file, in the folder that a file was chosen in last; before the
/// first one that is the folder the program works in. The chosen file, empty when cancelled.
QString ask_for_file(QFileDialog& dialog, const ProgramState& program, FilePurpose purpose);

/// A name to propose for a new file, `stem`, the day and `suffix`, where there is one (else that of
/// the kind of file that is chosen comes behind it): "measures-20261122.log".
QString proposed_name(const QString& stem, const QString& suffix);

/// The same with the time of day, for what is made more than once a day:
/// "line-20261122-140512.trace".
QString proposed_name_with_time(const QString& stem, const QString& suffix);

}  // namespace m47
