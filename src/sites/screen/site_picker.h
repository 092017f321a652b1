// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <memory>
#include <optional>
#include <vector>

#include "site_search.h"
#include "site_store.h"
#include "texts.h"

namespace m47::sites {

/// Asks for a site: one of those that are known, found as somebody types, or a new one.
class SitePicker : public QWidget {
    Q_OBJECT
  public:
    /// The sites of `store`, which is read now; none are known where it is nullptr. A StoreFault
    /// where it cannot be read.
    SitePicker(const SiteStore* store, const Texts& texts, QWidget* parent = nullptr);

    /// Nothing without a name. A new site has a new id.
    std::optional<Site> site() const;

    /// Its rows; more can stand below them.
    QFormLayout* rows() const { return form_; }

    /// Puts `site` of those that are known into the boxes; one that is not changes nothing.
    void choose(const QUuid& site);

  Q_SIGNALS:
    /// There is another site, or none.
    void changed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QLineEdit* add_box(QFormLayout* form, const char* name, const Bilingual& caption,
                       const Bilingual& tip);
    void make_list(QBoxLayout* layout);
    void find();
    void list_sites(const QString& typed);
    void pick(int row);
    void show_choice(const SiteLine* known);
    const SiteLine* line_of(const QUuid& site) const;
    std::vector<const SiteLine*> named(const QString& name) const;
    bool is_ambiguous() const;

    const Texts& texts_;
    std::vector<SiteLine> known_;
    std::unique_ptr<SiteSearch> search_;
    QFormLayout* form_ = nullptr;
    QLineEdit* name_ = nullptr;
    QListWidget* list_ = nullptr;
    QLabel* state_ = nullptr;
    QLineEdit* address_ = nullptr;
    QLineEdit* customer_ = nullptr;
    QLineEdit* remarks_ = nullptr;
    QUuid chosen_;                       ///< null for a new one
    QUuid fresh_ = QUuid::createUuid();  ///< of a new one
};

}  // namespace m47::sites
