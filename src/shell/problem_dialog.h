// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QListWidget>
#include <QPlainTextEdit>
#include <vector>

#include "problem_report.h"

namespace m47::shell {

/// Shows what a report of a problem has in it before it is written; the user unticks what shall
/// stay at home.
class ProblemDialog : public QDialog {
    Q_OBJECT
  public:
    ProblemDialog(std::vector<unattended::ProblemItem> items, const Texts& texts, QWidget* parent);

    /// The items as they are ticked now.
    std::vector<unattended::ProblemItem> items() const;

  private:
    void add_row(const unattended::ProblemItem& item, const Texts& texts);
    void show_preview(int row);

    std::vector<unattended::ProblemItem> items_;
    QListWidget* list_;
    QPlainTextEdit* preview_;
};

}  // namespace m47::shell
