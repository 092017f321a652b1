// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QTableWidget>
#include <functional>

#include "import_choices.h"
#include "plan_file.h"
#include "plan_import.h"

namespace m47::plans {

/// What an import of these candidates will do.
using ImportPreviewer =
    std::function<ImportPreview(const std::vector<ImportCandidate>&, const ImportChoices&)>;

/// Shows what an import will add, replace, correct and leave out, before anything is written, and
/// lets the user choose its rows; accepted when the user wants it.
class ImportDialog : public QDialog {
    Q_OBJECT
  public:
    ImportDialog(const ImportFile& file, ImportPreviewer previewer, const Texts& texts,
                 QWidget* parent);

    /// As the rows are ticked.
    const ImportPreview& preview() const { return preview_; }

  private:
    QTableWidget* make_table();
    QLayout* make_choices();
    ImportChoices choices() const;
    QCheckBox* choice_of(QLayout* row, const char* name, const Bilingual& caption,
                         const Bilingual& tip);
    void add_tick_key(QLayout* row, const char* name, const Bilingual& caption, bool wanted);
    void tick(QTableWidgetItem* item);
    void tick_all(bool wanted);
    void look_again();
    void show_row(int row);

    ImportFile file_;
    ImportPreviewer previewer_;
    const Texts& texts_;
    ImportPreview preview_;
    QLabel* summary_;
    QCheckBox* replace_;
    QCheckBox* logger_;
    QCheckBox* monitored_;
    QTableWidget* table_;
    QPushButton* import_;
};

}  // namespace m47::plans
