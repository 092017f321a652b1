// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QList>
#include <memory>

#include "import_plan.h"

namespace Ui {
class ClashDialog;
}

namespace m47::olddb {

/// Asks for each plan and satellite of an import that is there already what is to become of it.
class ClashDialog : public QDialog {
    Q_OBJECT
  public:
    /// `plan` with its clashes marked.
    ClashDialog(ImportPlan& plan, const Texts& texts, QWidget* parent);
    ~ClashDialog() override;

    /// Shows it until it is answered. True with the choices in the plan; false when the user
    /// cancelled.
    bool ask();

  private:
    void add_row(ImportItem& item, const Bilingual& kind);
    void order_tabs() const;
    void fill(QComboBox* choices) const;

    const Texts& texts_;
    std::unique_ptr<Ui::ClashDialog> ui_;
    QList<ImportItem*> items_;
    QList<QComboBox*> choices_;
};

}  // namespace m47::olddb
