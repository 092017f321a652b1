// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_picker.h"

#include <QKeyEvent>
#include <QPalette>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "row_time.h"
#include "site_file.h"
#include "visit_recorder.h"

namespace m47::sites {
namespace {

constexpr Bilingual kSiteName{"&Site:", "&Sito:"};
constexpr Bilingual kSiteNameTip{
    "Type any word of a known site, or the name of a new one; the arrow key goes into the list",
    "Scrivere una parola di un sito noto, o il nome di uno nuovo; la freccia porta nell'elenco"};
constexpr Bilingual kKnownSites{"Known sites", "Siti noti"};
constexpr Bilingual kSiteAddress{"&Address:", "&Indirizzo:"};
constexpr Bilingual kSiteAddressTip{
    "Of a new site; a known one is changed on the screen \"Sites\"",
    "Di un sito nuovo; uno noto si cambia nella schermata \"Siti\""};
constexpr Bilingual kSiteCustomer{"C&ustomer:", "C&liente:"};
constexpr Bilingual kSiteCustomerTip{"For whom the work is done", "Per chi si lavora"};
constexpr Bilingual kSiteRemarks{"Rem&arks on the site:", "N&ote sul sito:"};
constexpr Bilingual kSiteRemarksTip{"What stays true of the site: keys, way, mast",
                                    "Ciò che resta vero del sito: chiavi, accesso, palo"};
constexpr Bilingual kNoSite{"Which site? Choose one or type the name of a new one.",
                            "Quale sito? Sceglierne uno o scrivere il nome di uno nuovo."};
constexpr Bilingual kSeveral{"More than one site has this name: choose one in the list.",
                             "Più di un sito ha questo nome: sceglierne uno nell'elenco."};
constexpr Bilingual kNewSite{"A new site.", "Un sito nuovo."};
constexpr Bilingual kNeverVisited{"A known site without a visit yet.",
                                  "Un sito noto, ancora senza visite."};
constexpr Bilingual kVisits{"A known site; visits: %1, the last one on %2.",
                            "Un sito noto; visite: %1, l'ultima il %2."};

/// More than somebody looks through; further words find the others.
constexpr std::size_t kMostListed = 300;
constexpr int kListedRows = 5;
constexpr int kIdRole = Qt::UserRole;

QString listed(const Site& site) {
    QStringList words{site.name};
    for (const QString& more : {site.address, site.customer})
        if (!more.isEmpty()) words += more;
    return words.join(QStringLiteral(" – "));
}

}  // namespace

SitePicker::SitePicker(const SiteStore* store, const Texts& texts, QWidget* parent)
    : QWidget(parent), texts_(texts) {
    if (store) {
        known_ = store->site_lines();
        search_ = std::make_unique<SiteSearch>(*store);
    }
    auto* form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form_ = form;
    name_ = add_box(form, "site_name", kSiteName, kSiteNameTip);
    auto* found = new QVBoxLayout;
    make_list(found);
    form->addRow(found);
    address_ = add_box(form, "site_address", kSiteAddress, kSiteAddressTip);
    customer_ = add_box(form, "site_customer", kSiteCustomer, kSiteCustomerTip);
    remarks_ = add_box(form, "site_remarks", kSiteRemarks, kSiteRemarksTip);
    name_->installEventFilter(this);
    setFocusProxy(name_);
    connect(name_, &QLineEdit::textEdited, this, [this] { find(); });
    connect(list_, &QListWidget::currentRowChanged, this, &SitePicker::pick);
    list_sites({});
    show_choice(nullptr);
}

QLineEdit* SitePicker::add_box(QFormLayout* form, const char* name, const Bilingual& caption,
                               const Bilingual& tip) {
    auto* box = new QLineEdit;
    box->setMaxLength(static_cast<int>(kMostSiteText));
    box->setObjectName(QLatin1String(name));
    box->setToolTip(texts_.pick(tip));
    form->addRow(texts_.pick(caption), box);
    return box;
}

void SitePicker::make_list(QBoxLayout* layout) {
    list_ = new QListWidget;
    list_->setObjectName(QStringLiteral("site_matches"));
    list_->setAccessibleName(texts_.pick(kKnownSites));
    list_->setUniformItemSizes(true);
    list_->setTextElideMode(Qt::ElideRight);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int least = list_->minimumSizeHint().height();
    list_->setMinimumHeight(least);
    list_->setMaximumHeight(qMax(least, (fontMetrics().height() + 4) * kListedRows));
    list_->setVisible(!known_.empty());
    state_ = new QLabel;
    state_->setObjectName(QStringLiteral("site_state"));
    state_->setTextFormat(Qt::PlainText);
    state_->setWordWrap(true);
    layout->addWidget(list_);
    layout->addWidget(state_);
}

/// Down goes from the name into the list.
bool SitePicker::eventFilter(QObject* watched, QEvent* event) {
    if (watched == name_ && event->type() == QEvent::KeyPress && list_->count() > 0 &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Down) {
        list_->setFocus();
        list_->setCurrentRow(std::max(0, list_->currentRow()));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

const SiteLine* SitePicker::line_of(const QUuid& site) const {
    const auto found =
        std::ranges::find_if(known_, [&](const SiteLine& line) { return line.site.id == site; });
    return found == known_.end() ? nullptr : &*found;
}

std::vector<const SiteLine*> SitePicker::named(const QString& name) const {
    std::vector<const SiteLine*> found;
    for (const SiteLine& line : known_)
        if (is_called(line.site, name)) found.push_back(&line);
    return found;
}

void SitePicker::find() {
    list_sites(name_->text());
    const std::vector<const SiteLine*> meant = named(name_->text());
    show_choice(meant.size() == 1 ? meant.front() : nullptr);
}

/// The name alone does not say which.
bool SitePicker::is_ambiguous() const {
    return chosen_.isNull() && named(name_->text()).size() > 1;
}

void SitePicker::list_sites(const QString& typed) {
    const QSignalBlocker quiet(list_);
    list_->clear();
    if (!search_) return;
    std::vector<QUuid> found = search_->find(typed);
    found.resize(std::min(found.size(), kMostListed));
    for (const QUuid& id : found) {
        const SiteLine* line = line_of(id);
        if (!line) continue;
        auto* item = new QListWidgetItem(listed(line->site), list_);
        item->setData(kIdRole, id);
        item->setToolTip(listed(line->site));
    }
    list_->setCurrentRow(-1);
}

void SitePicker::pick(int row) {
    const QListWidgetItem* item = list_->item(row);
    if (item) choose(item->data(kIdRole).toUuid());
}

void SitePicker::choose(const QUuid& site) {
    const SiteLine* line = line_of(site);
    if (!line) return;
    name_->setText(line->site.name);
    show_choice(line);
}

/// `known` is nullptr for a new site.
void SitePicker::show_choice(const SiteLine* known) {
    const bool was_known = !chosen_.isNull();
    chosen_ = known ? known->site.id : QUuid();
    if (known || was_known) {
        address_->setText(known ? known->site.address : QString());
        customer_->setText(known ? known->site.customer : QString());
        remarks_->setText(known ? known->site.remarks : QString());
    }
    for (QLineEdit* box : {address_, customer_, remarks_}) {
        // To be read, and seen to be no box to type into.
        box->setReadOnly(known != nullptr);
        box->setFocusPolicy(known ? Qt::ClickFocus : Qt::StrongFocus);
        QPalette colours = palette();
        if (known) colours.setColor(QPalette::Base, colours.color(QPalette::Window));
        box->setPalette(colours);
    }
    if (is_ambiguous())
        state_->setText(texts_.pick(kSeveral));
    else if (!known)
        state_->setText(texts_.pick(name_->text().trimmed().isEmpty() ? kNoSite : kNewSite));
    else if (known->visits == 0)
        state_->setText(texts_.pick(kNeverVisited));
    else
        state_->setText(
            Said{kVisits,
                 {QString::number(known->visits),
                  QString::fromStdString(measurement::time_text(known->last->wall())).left(10)}}
                .in(texts_));
    Q_EMIT changed();
}

std::optional<Site> SitePicker::site() const {
    if (const SiteLine* known = line_of(chosen_)) return known->site;
    if (name_->text().trimmed().isEmpty() || is_ambiguous()) return std::nullopt;
    return Site{.id = fresh_,
                .name = name_->text().simplified(),
                .address = address_->text().simplified(),
                .customer = customer_->text().simplified(),
                .remarks = remarks_->text().simplified()};
}

}  // namespace m47::sites
