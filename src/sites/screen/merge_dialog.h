// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QListWidget>
#include <QTableWidget>

#include "site_merge.h"

namespace m47::sites {

/// What an import will do, and each side of what is not alike: the user chooses of each, or of all.
class MergeDialog : public QDialog {
    Q_OBJECT
  public:
    MergeDialog(SiteMerge merge, const QString& title, const Texts& texts, QWidget* parent);

    /// With what was chosen.
    const SiteMerge& merge() const { return merge_; }

  private:
    void make_conflicts(QBoxLayout* layout);
    void give_room();
    void add_choice_key(QBoxLayout* row, const char* name, const Bilingual& caption, bool theirs);
    void show_conflict(int row);
    void take_choice(const QListWidgetItem* item);

    const Texts& texts_;
    SiteMerge merge_;
    QListWidget* conflicts_ = nullptr;  ///< made where there are any
    QTableWidget* sides_ = nullptr;
};

}  // namespace m47::sites
