// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QListWidget>
#include <QPageSize>
#include <functional>
#include <vector>

#include "program_state.h"
#include "visit_report.h"

class QFormLayout;
class QPushButton;

namespace m47::sites {

/// Asks which visits at a site a report is wanted of, and with what each is compared.
class VisitReportForm : public QDialog {
    Q_OBJECT
  public:
    /// `visits` are those at `site`, the latest first; `ticked` are chosen, the latest where it is
    /// empty. `program` outlives it.
    VisitReportForm(const ProgramState& program, const Site& site, const std::vector<Visit>& visits,
                    const std::vector<QUuid>& ticked, QWidget* parent = nullptr);

    VisitReportWish wish() const;
    QPageSize::PageSizeId paper() const;

    /// What "Save PDF…" does; true where that is the end of it.
    std::function<bool()> on_save;

  private:
    void add_visits(const std::vector<Visit>& visits, const std::vector<QUuid>& ticked);
    void add_choices(QFormLayout* form, const std::vector<Visit>& visits);
    void add_buttons(QFormLayout* form);
    void look();

    const ProgramState& program_;
    QListWidget* visits_;
    QComboBox* before_;
    QComboBox* paper_;
    QPushButton* save_ = nullptr;
};

}  // namespace m47::sites
