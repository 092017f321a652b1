// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "fault.h"
#include "recordset.h"
#include "stored_rows.h"
#include "texts.h"

namespace m47::plans {

/// What a row of the database file was and what it has become; nothing where there was, or is, no
/// such row.
struct RowChange {
    const char* table;
    db::Bookmark row;
    std::optional<db::StoredRow> before{};
    std::optional<db::StoredRow> after{};
};

/// What one deed of the user's has changed in the file, to be taken back and made again.
struct PlanChange {
    QString plan;  ///< that it has changed
    std::vector<RowChange> rows;

    bool empty() const { return rows.empty(); }
};

/// A change was not taken: the file does not hold what it has left there, or what would come back
/// does not go with what another program has stored since.
class ChangeRefused : public Fault {
  public:
    using Fault::Fault;
};

/// Which way a change is taken: back to what was there before it, or forth again.
enum class Direction { back, forth };

/// What `row` is once its change has been taken to `direction`.
const std::optional<db::StoredRow>& outcome_of(const RowChange& row, Direction direction);

/// The change in a few words: "program 003", "programs: 12", "plan ROOF".
Said change_in_words(const PlanChange& change);

/// Notes what a deed changes while it goes on.
class ChangeRecorder {
  public:
    void begin(const QString& plan);
    /// It is not the plan that was current when the deed began.
    void concerns(const QString& plan) { change_.plan = plan; }
    /// The current row of `set`, a set on `table` that has just been read, is about to be changed
    /// or deleted.
    void will_change(const char* table, const db::Recordset& set);
    void was_added(const char* table, db::Bookmark row);

    /// What the file holds now of what was noted, read by `database`; rows that have come out as
    /// they were are left out.
    PlanChange finish(const QSqlDatabase& database);

  private:
    RowChange& note(const char* table, db::Bookmark row, bool& is_new);

    PlanChange change_;
};

}  // namespace m47::plans
