// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "program_record.h"

namespace m47::plans {

/// What stands in the boxes of a program: the record and the text of its oscillator.
struct BoxedProgram {
    programme::ProgramRecord record;
    QString oscillator;

    bool operator==(const BoxedProgram&) const = default;
};

/// True where `typed` differs from what was `shown` by more than leaving a box writes into it by
/// itself.
bool is_edited(const BoxedProgram& typed, const BoxedProgram& shown);

/// What has become `now` of what was `shown`, with everything that `typed` had otherwise.
BoxedProgram with_edits(const BoxedProgram& typed, const BoxedProgram& shown,
                        const BoxedProgram& now);

/// True where something that `typed` has otherwise than what was `shown` has become a third thing
/// `now`.
bool edits_clash(const BoxedProgram& typed, const BoxedProgram& shown, const BoxedProgram& now);

}  // namespace m47::plans
