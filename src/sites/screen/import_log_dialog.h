// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QTabWidget>
#include <QTableView>

#include "log_import.h"
#include "site_picker.h"

namespace m47::sites {

/// "Import log…": what each line of a log becomes, and at which site.
class ImportLogDialog : public QDialog {
    Q_OBJECT
  public:
    /// `log` as it was read for any site, of the file `name`; the sites of `store`, none where it
    /// is nullptr.
    ImportLogDialog(LogPreview log, const QString& name, const SiteStore* store, const Texts& texts,
                    QWidget* parent);

    /// Once it was accepted.
    Site site() const { return picker_->site().value_or(Site{}); }
    /// Puts `site` into the boxes.
    void choose(const QUuid& site) { picker_->choose(site); }

  private:
    void add_table(const char* name, const Bilingual& caption, const QStringList& heading, int rows,
                   const std::function<QStringList(int row)>& cells);
    void make_tables();
    QDialogButtonBox* make_buttons();
    QStringList visit_cells(int number) const;
    QStringList row_cells(int number) const;

    const Texts& texts_;
    const LogPreview log_;
    std::vector<int> first_rows_;  ///< of each visit, among those of all
    QTabWidget* tables_;
    SitePicker* picker_;
};

}  // namespace m47::sites
