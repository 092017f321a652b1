// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include "fault.h"
#include "program_record.h"

namespace m47 {

/// A program and the oscillators of its plan as the file held them when they were read, whatever
/// unset DiSEqC commands are shown as.
struct StoredProgram {
    ProgramRecord program;
    Oscillators oscillators;

    bool operator==(const StoredProgram&) const = default;
};

/// Nothing was stored: another program has changed meanwhile what would have been overwritten.
class ChangedMeanwhile : public Fault {
  public:
    /// `typed` and `typed_oscillator` were to be stored; `replaces` is false for a new program,
    /// of which the oscillator alone overwrites something.
    ChangedMeanwhile(StoredProgram in_file, ProgramRecord typed, QString typed_oscillator,
                     bool replaces);

    StoredProgram now;
    ProgramRecord program;
    QString oscillator;
    bool over;
};

/// A field that differs, and what stands in it on both sides.
struct ChangedField {
    const char* field;
    QString stored;
    QString typed;
};

/// The fields in which what the file holds differs from what was to be stored.
QList<ChangedField> changed_fields(const ChangedMeanwhile& change);

/// Throws ChangedMeanwhile where `change.now` is neither what was read before (`known`) nor what is
/// to be stored.
void need_unchanged(const StoredProgram& known, const ChangedMeanwhile& change);

}  // namespace m47
