// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <memory>

#include "customer_report.h"
#include "program_state.h"

namespace Ui {
class ReportForm;
}

namespace m47::report {

/// Asks what the report for the customer cannot know: where, who, and into which file.
class ReportForm : public QDialog {
    Q_OBJECT
  public:
    /// `program` outlives the form.
    ReportForm(const ProgramState& program, QWidget* parent);
    ~ReportForm() override;

    ReportEntry entry() const;
    /// The file with its suffix; one without a folder lies in the directory proposed.
    QString path() const;

  private:
    void set_captions(const Texts& texts);
    void browse();
    void confirm();

    const ProgramState& program_;
    std::unique_ptr<Ui::ReportForm> ui_;
    QString directory_;  ///< where the file is proposed
    QString confirmed_;  ///< a file that the file dialog has already asked about
};

}  // namespace m47::report
