// SPDX-License-Identifier: GPL-3.0-or-later
#include "export_sites_dialog.h"

#include <QDialogButtonBox>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "dialog_buttons.h"

namespace m47::sites {
namespace {

constexpr Bilingual kExportTitle{"Export sites", "Esporta siti"};
constexpr Bilingual kExportKey{"&Export…", "&Esporta…"};
constexpr Bilingual kSearch{"Search: any word of a site", "Cerca: una parola del sito"};
constexpr Bilingual kSites{"Sites", "Siti"};
constexpr Bilingual kTickShown{"Tick &all shown", "Spunta &tutti i mostrati"};
constexpr Bilingual kTickNone{"Tick &none", "Spunta &nessuno"};
constexpr Bilingual kCount{"Sites ticked: %1, with %2 visits. All their measurements go along.",
                           "Siti spuntati: %1, con %2 visite. Vanno con loro tutte le misure."};

constexpr int kSiteRole = Qt::UserRole;

}  // namespace

ExportSitesDialog::ExportSitesDialog(const SiteStore& store, const QList<QUuid>& chosen,
                                     const Texts& texts, QWidget* parent)
    : QDialog(parent),
      texts_(texts),
      search_(store),
      known_(store.site_lines()),
      chosen_(chosen.begin(), chosen.end()) {
    setObjectName(QStringLiteral("export_sites"));
    setWindowTitle(texts.pick(kExportTitle));
    setProperty("manual_page", QStringLiteral("visits"));
    auto* layout = new QVBoxLayout(this);
    make_list(layout);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    export_ = buttons->button(QDialogButtonBox::Ok);
    export_->setText(texts.pick(kExportKey));
    name_buttons(buttons, texts);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    list_sites();
    show_count();
    resize(fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 22);
}

void ExportSitesDialog::make_list(QBoxLayout* layout) {
    typed_ = new QLineEdit;
    typed_->setObjectName(QStringLiteral("export_search"));
    typed_->setPlaceholderText(texts_.pick(kSearch));
    typed_->setAccessibleName(texts_.pick(kSearch));
    typed_->setClearButtonEnabled(true);
    list_ = new QListWidget;
    list_->setObjectName(QStringLiteral("export_list"));
    list_->setAccessibleName(texts_.pick(kSites));
    list_->setUniformItemSizes(true);
    count_ = new QLabel;
    count_->setObjectName(QStringLiteral("export_count"));
    count_->setTextFormat(Qt::PlainText);
    count_->setWordWrap(true);
    auto* keys = new QHBoxLayout;
    add_tick_key(keys, "export_all", kTickShown, true);
    add_tick_key(keys, "export_none", kTickNone, false);
    keys->addStretch();
    layout->addWidget(typed_);
    layout->addLayout(keys);
    layout->addWidget(list_, 1);
    layout->addWidget(count_);
    connect(typed_, &QLineEdit::textEdited, this, [this] { list_sites(); });
    connect(list_, &QListWidget::itemChanged, this, &ExportSitesDialog::take_choice);
}

void ExportSitesDialog::add_tick_key(QBoxLayout* row, const char* name, const Bilingual& caption,
                                     bool tick) {
    auto* key = new QPushButton(texts_.pick(caption));
    key->setObjectName(QLatin1String(name));
    key->setAutoDefault(false);
    connect(key, &QPushButton::clicked, this, [this, tick] {
        if (!tick) chosen_.clear();
        for (int k = 0; tick && k < list_->count(); ++k)
            chosen_.insert(list_->item(k)->data(kSiteRole).toUuid());
        list_sites();
        show_count();
    });
    row->addWidget(key);
}

void ExportSitesDialog::list_sites() {
    const QSignalBlocker quiet(list_);
    list_->clear();
    const std::vector<QUuid> found = search_.find(typed_->text());
    const QSet<QUuid> shown(found.begin(), found.end());
    for (const SiteLine& line : known_) {
        if (!shown.contains(line.site.id)) continue;
        const QString text = line.site.address.isEmpty()
                                 ? line.site.name
                                 : line.site.name + QStringLiteral(" – ") + line.site.address;
        auto* item = new QListWidgetItem(text, list_);
        item->setData(kSiteRole, line.site.id);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(chosen_.contains(line.site.id) ? Qt::Checked : Qt::Unchecked);
    }
}

void ExportSitesDialog::take_choice(const QListWidgetItem* item) {
    const QUuid site = item->data(kSiteRole).toUuid();
    if (item->checkState() == Qt::Checked)
        chosen_.insert(site);
    else
        chosen_.remove(site);
    show_count();
}

void ExportSitesDialog::show_count() {
    int visits = 0;
    for (const SiteLine& line : known_)
        if (chosen_.contains(line.site.id)) visits += line.visits;
    const qsizetype sites = chosen().size();
    count_->setText(Said{kCount, {QString::number(sites), QString::number(visits)}}.in(texts_));
    export_->setEnabled(sites > 0);
}

QList<QUuid> ExportSitesDialog::chosen() const {
    QList<QUuid> chosen;
    for (const SiteLine& line : known_)
        if (chosen_.contains(line.site.id)) chosen += line.site.id;
    return chosen;
}

}  // namespace m47::sites
