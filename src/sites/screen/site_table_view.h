// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableView>

#include "site_table_model.h"

namespace m47::sites {

/// A table of the screen: rows are read, sorted by a click on a heading, and chosen by a double
/// click or Enter. What is good or bad has its colour.
class SiteTableView : public QTableView {
    Q_OBJECT
  public:
    explicit SiteTableView(QWidget* parent = nullptr);

    /// Shows `table` in its own order, or in that of the column that was clicked on before.
    void show_table(std::unique_ptr<SiteTable> table, const Texts& texts);
    void show_details(bool wanted);

    /// What is shown, column by column and row by row as it stands there.
    ShownTable shown() const;
    /// The row of the table that is the current one; -1 where none is.
    int current_row() const;

  Q_SIGNALS:
    /// The row `row` of the table, wherever it stands.
    void chosen(int row);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void fit_columns();

    SiteTableModel* model_;
    bool details_ = false;
};

}  // namespace m47::sites
