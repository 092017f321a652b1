// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <map>

#include "fault.h"
#include "program_record.h"
#include "recordset.h"

namespace m47::plans {

/// What an unset DiSEqC command is read as where it is to be told from the first one.
inline constexpr int kNoDiseqcChosen = -1;

/// A program and the oscillators of its plan as the file held them when they were read, whatever
/// unset DiSEqC commands are shown as.
struct StoredProgram {
    programme::ProgramRecord program;
    programme::Oscillators oscillators;

    bool operator==(const StoredProgram&) const = default;
};

/// Nothing was stored: another program has changed meanwhile what would have been overwritten.
class ChangedMeanwhile : public Fault {
  public:
    /// `typed` and `typed_oscillator` were to be stored; `replaces` is false for a new program,
    /// of which the oscillator alone overwrites something.
    ChangedMeanwhile(StoredProgram in_file, programme::ProgramRecord typed,
                     QString typed_oscillator, bool replaces);

    StoredProgram now;
    programme::ProgramRecord program;
    QString oscillator;
    bool over;
};

/// What a deletion takes away: programs by their rows and, where their plan goes as well, its
/// oscillators. As the user has seen it, or as the file holds it.
struct RemovedRows {
    std::map<db::Bookmark, programme::ProgramRecord> programs;
    programme::Oscillators oscillators;
};

/// Nothing was deleted: another program has changed meanwhile what would have gone.
class RemovalChanged : public Fault {
  public:
    RemovalChanged(RemovedRows in_file, RemovedRows known);

    RemovedRows now;
    RemovedRows seen;
};

/// A field that differs, and what stands in it on both sides.
struct ChangedField {
    const char* field;
    QString stored;
    QString typed;     ///< or shown, of what is to be deleted
    QString number{};  ///< of the program, where more than one can be meant
};

/// The fields in which what the file holds differs from what was to be stored.
QList<ChangedField> changed_fields(const ChangedMeanwhile& change);

/// The fields in which what would be deleted differs from what the user has seen.
QList<ChangedField> changed_fields(const RemovalChanged& change);

/// Throws RemovalChanged where `now` holds what is not as `seen`. What others have deleted already
/// is no loss.
void need_unchanged(const RemovedRows& seen, const RemovedRows& now);

/// Throws ChangedMeanwhile where `change.now` is neither what was read before (`known`) nor what is
/// to be stored.
void need_unchanged(const StoredProgram& known, const ChangedMeanwhile& change);

}  // namespace m47::plans
