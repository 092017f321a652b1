// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSet>
#include <vector>

#include "site_search.h"
#include "site_store.h"
#include "texts.h"

namespace m47::sites {

/// "Export sites…": which ones.
class ExportSitesDialog : public QDialog {
    Q_OBJECT
  public:
    /// The sites of `store`, with `chosen` ticked. A StoreFault where it cannot be read.
    ExportSitesDialog(const SiteStore& store, const QList<QUuid>& chosen, const Texts& texts,
                      QWidget* parent);

    /// In the order of their names.
    QList<QUuid> chosen() const;

  private:
    void make_list(QBoxLayout* layout);
    void add_tick_key(QBoxLayout* row, const char* name, const Bilingual& caption, bool tick);
    void list_sites();
    void take_choice(const QListWidgetItem* item);
    void show_count();

    const Texts& texts_;
    const SiteSearch search_;
    std::vector<SiteLine> known_;
    QSet<QUuid> chosen_;
    QLineEdit* typed_ = nullptr;
    QListWidget* list_ = nullptr;
    QLabel* count_ = nullptr;
    QPushButton* export_ = nullptr;
};

}  // namespace m47::sites
