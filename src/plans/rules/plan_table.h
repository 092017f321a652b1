// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <functional>
#include <vector>

#include "oscillators.h"
#include "plan_rows.h"
#include "texts.h"
#include "transponder_names.h"

namespace m47::plans {

class PlanSets;

/// The programs of a plan as a table, a row each, in the order of the plan. It keeps what it has
/// read and reads again only what has changed.
class PlanTable : public QAbstractTableModel {
  public:
    enum Column {
        kNumber,
        kFrequency,
        kPolarisation,
        kMonitored,
        kLogger,
        kLine,
        kName,
        kSymbolRate,
        kBand,
        kFirstLimit,
        kColumns = kFirstLimit + 8
    };
    /// Numbers as numbers, to sort by.
    static constexpr int kSortRole = Qt::UserRole;

    /// The headings are of the language in use now.
    explicit PlanTable(const Texts& texts);

    /// Told what the user has entered in a cell: the member and what stands there now, "1" or "0"
    /// for a tick. Whoever stores it lets the table follow.
    std::function<void(int row, const programme::ProgramField::Member& member, const QString& text)>
        on_entry;

    /// Shows the plan of `sets`: rows that have come and those of `changed` are read, the current
    /// program is taken from `sets`, all else stays as it was read. Another plan is read whole.
    void follow(const PlanSets& sets, const std::vector<db::Bookmark>& changed = {});
    /// The same, with every row read anew.
    void follow_anew(const PlanSets& sets);

    const PlanRow& program(int row) const { return rows_[static_cast<std::size_t>(row)]; }
    /// Where the program of that row stands; -1 where it does not.
    int place_of(db::Bookmark row) const;
    /// True where a transponder of the plan has a name.
    bool has_names() const { return !names_.empty(); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  private:
    void remove_gone(const std::vector<db::Bookmark>& rows);
    void insert_come(const PlanSets& sets);
    void take(const PlanRow& row);
    void take_names(const PlanSets& sets);
    QString text_of(const programme::ProgramRecord& program, int column) const;
    QVariant sort_value(const programme::ProgramRecord& program, int column) const;
    QString band_of(const programme::ProgramRecord& program) const;

    QStringList headings_;
    QStringList tips_;
    QStringList bands_;
    QString plan_;
    std::vector<PlanRow> rows_;
    programme::Oscillators oscillators_;
    std::vector<db::TransponderName> names_;
};

}  // namespace m47::plans
