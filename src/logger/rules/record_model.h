// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QByteArray>
#include <QStringList>
#include <string_view>
#include <vector>

#include "record_lines.h"

namespace m47::logger {

/// The logged data as a table, a row for each line that is not empty: the line's number, the log it
/// belongs to, then a column for each name that the text's own headings give (so that levels in two
/// units never share one). A record stands under its names; any other line stands as it is in the
/// last column. The table is a view: the text stays the truth.
class RecordModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    explicit RecordModel(QObject* parent = nullptr);

    /// What the columns of the line's number, of its log and of other lines are called.
    void name_columns(const QStringList& line_log_text);

    /// Shows `text`, whose lines are ended by CR LF, in the order of its lines.
    void set_text(const QByteArray& text);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// Sorts by one column: numbers by their value, before texts; an empty cell always comes last.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    /// The table's rows `rows`, or all where there are none, below the names of the columns: TAB
    /// between the cells, LF behind each row.
    QString tab_separated(const std::vector<int>& rows) const;

  private:
    struct Row {
        qsizetype begin = 0;
        qsizetype length = 0;
        int number = 0;     ///< the line's, from 1
        int title = -1;     ///< the row of the log's title, -1 before the first
        int headings = -1;  ///< which of `headings_` names the fields; -1: shown as it is
    };
    /// The columns of a line of headings, field by field.
    using Headings = std::vector<int>;

    void read_lines();
    void add_line(qsizetype begin, qsizetype length);
    int add_headings(std::string_view line);
    int column_of(const QString& name);
    int text_column() const { return static_cast<int>(columns_.size()) - 1; }
    std::string_view line(const Row& row) const;
    std::string_view cell(const Row& row, int column) const;
    QString shown(const Row& row, int column) const;

    QByteArray text_;
    QStringList own_columns_{QStringLiteral("Line"), QStringLiteral("Log"), QStringLiteral("Text")};
    QStringList columns_;
    std::vector<Headings> headings_;
    std::vector<Row> lines_;  ///< in the order of the text
    std::vector<int> order_;  ///< the table's rows as places in `lines_`
    int last_title_ = -1;
    int analog_ = -1;
    int digital_ = -1;
};

}  // namespace m47::logger
