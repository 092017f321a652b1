// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QTableView>

#include "record_model.h"
#include "texts.h"

namespace m47::logger {

/// The logged data as a table that is sorted by a click on a column's name. Ctrl+C and the context
/// menu copy the selected rows, or all, to the clipboard.
class RecordTable : public QTableView {
    Q_OBJECT
  public:
    explicit RecordTable(QWidget* parent = nullptr);

    /// Shows `text`, in the order of its lines.
    void set_text(const QByteArray& text);

    /// What is called otherwise in each language, in the one in use now.
    void show_texts(const Texts& texts);

    /// Puts the selected rows (all where none is selected) on the clipboard, TAB-separated.
    void copy_rows();

  Q_SIGNALS:
    /// So many rows are on the clipboard; with 0 it is as before.
    void copied(int rows);

  private:
    RecordModel* records_;
    QAction* copy_;
};

}  // namespace m47::logger
