// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "letterhead.h"
#include "program_state.h"

class QFormLayout;

namespace m47::sites {

/// Asks who writes the reports: company, technician, logo; keeps it when it is accepted.
class LetterheadDialog : public QDialog {
    Q_OBJECT
  public:
    /// `program` outlives it.
    explicit LetterheadDialog(const ProgramState& program, QWidget* parent = nullptr);

    Letterhead letterhead() const;
    /// Takes the logo in the file at `path`; where it is none, that is told and the one before
    /// stays.
    void take_logo(const QString& path);

  private:
    void count_lines();
    void add_logo(QFormLayout* form);
    void show_logo(const QString& fault);
    void letterhead_logo_Click();
    void keep();

    const ProgramState& program_;
    QPlainTextEdit* company_;
    QLabel* left_out_;
    QLineEdit* technician_;
    QLabel* picture_;
    QImage logo_;
};

}  // namespace m47::sites
