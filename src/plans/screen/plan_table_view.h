// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSortFilterProxyModel>
#include <QTableView>

#include "plan_table.h"

namespace m47::plans {

/// The table of the plan's programs beside the record. It stores nothing: what the user does in it
/// is told.
class PlanTableView : public QTableView {
    Q_OBJECT
  public:
    explicit PlanTableView(const Texts& texts);

    /// As PlanTable::follow(); what is selected stays so.
    void follow(const PlanSets& sets, const std::vector<db::Bookmark>& changed);
    /// Selects the program of that row, which is the one in the record, when another one was there
    /// before; one that is selected with others stays so.
    void show_current(std::optional<db::Bookmark> row);
    /// The same, whatever the user has selected meanwhile.
    void show_current_again(std::optional<db::Bookmark> row);

    /// The selected programs, in the order in which they are shown.
    std::vector<PlanRow> selected() const;
    /// The rows of all programs, in the order in which they are shown.
    std::vector<db::Bookmark> shown_order() const;
    /// Selects the programs of those rows and no other.
    void select(const std::vector<db::Bookmark>& rows);
    /// True while the order of the plan is shown, not one by a column.
    bool shows_plan_order() const;
    void show_plan_order();

    /// Order and widths of the columns as the user has left them; empty where they are as they
    /// come.
    QString columns() const;
    /// Sets them so; what is no such text, or of another table, changes nothing.
    void set_columns(const QString& columns);

  Q_SIGNALS:
    /// One program alone has been selected by the user.
    void recalled(qint64 row);
    /// `text` is to stand in `member` of `rows`.
    void entered(const std::vector<m47::plans::PlanRow>& rows,
                 const m47::programme::ProgramField::Member& member, const QString& text);

  protected:
    QSize sizeHint() const override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;

  private:
    void fit_columns();
    void take_entry(int row, const programme::ProgramField::Member& member, const QString& text);
    void select_rows_of(const std::vector<PlanRow>& rows);

    PlanTable table_;
    QSortFilterProxyModel order_;
    /// While the table itself is brought into step nobody has selected anything.
    bool following_ = false;
    std::optional<db::Bookmark> current_;
    bool fitted_ = false;
    /// The columns are being set; else it is the user who changes them.
    bool fitting_ = false;
    bool columns_are_users_ = false;
};

}  // namespace m47::plans
