// SPDX-License-Identifier: GPL-3.0-or-later
#include "sites.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>

#include "busy_input.h"
#include "fault.h"
#include "file_question.h"
#include "handler.h"
#include "message_box.h"
#include "save_file.h"
#include "site_commands.h"
#include "site_dialog.h"
#include "sites_tooltips.h"
#include "tone_delegate.h"
#include "ui_sites.h"
#include "visit_claim.h"
#include "visit_words.h"

namespace m47::sites {
namespace {

/// The size at which the screen opens, in characters and in lines.
constexpr int kSitesColumns = 150;
constexpr int kSitesLines = 34;
constexpr int kTreeColumns = 38;
/// Some styles leave the text of a spin box so many pixels less than its line.
constexpr int kForText = 4;
/// The share of the width that is the tree's.
constexpr int kTreeShare = 1;
constexpr int kViewShare = 3;
/// The file is looked at for what others have written to it so often, in ms.
constexpr int kLookEvery = 2000;
/// The dates proposed span so many days before the latest visit.
constexpr int kUsualDays = 365;

constexpr Bilingual kSitesTitle{"Sites", "Siti"};
constexpr Bilingual kNoSites{
    "No sites yet.\n\nA site comes with its first visit on the real-time screen, with an imported "
    "log, or by \"New site…\".",
    "Nessun sito finora.\n\nUn sito nasce con la prima visita nella schermata delle misure, con un "
    "log importato o con \"Nuovo sito…\"."};
constexpr Bilingual kNothingToRead{"There are no sites to look at.",
                                   "Non ci sono siti da guardare."};
constexpr Bilingual kReadAgain{"F5 reads the file again.", "F5 rilegge il file."};
constexpr Bilingual kFoundVisits{"Sites: %1, visits: %2", "Siti: %1, visite: %2"};
constexpr Bilingual kSearchHere{"Search sites", "Cerca siti"};
constexpr Bilingual kVerdicts[] = {{"All visits", "Tutte le visite"},
                                   {"Visits with a failure", "Visite con misure fallite"},
                                   {"Visits without failure", "Visite senza misure fallite"}};
constexpr Bilingual kSiteGone{"What was shown has been removed by another program.",
                              "Ciò che si vedeva è stato eliminato da un altro programma."};
constexpr Bilingual kSiteChanged{
    "Nothing was stored: another program has changed or removed this site meanwhile.",
    "Nulla è stato salvato: intanto un altro programma ha modificato o eliminato questo sito."};
constexpr Bilingual kChooseSite{"Choose a site first.", "Scegliere prima un sito."};
constexpr Bilingual kNoVisit{"There is no visit at this site to report on.",
                             "Non c'è una visita a questo sito di cui fare un rapporto."};
constexpr Bilingual kChooseWhat{"Choose a site or a visit first.",
                                "Scegliere prima un sito o una visita."};
constexpr Bilingual kVisitRuns{"This visit is being recorded: end it first.",
                               "Questa visita è in corso: concluderla prima."};
constexpr Bilingual kVisitRunsElsewhere{
    "Another window or run keeps this visit just now: end it there first.",
    "Un'altra finestra o un altro ciclo tiene questa visita in questo momento: concluderla prima "
    "lì."};
constexpr Bilingual kSameName{"There is a site of this name already: %1.",
                              "Esiste già un sito con questo nome: %1."};
constexpr Bilingual kRemoveTitle{"Remove", "Elimina"};
constexpr Bilingual kRemoveSite{"Remove the site %1?", "Eliminare il sito %1?"};
constexpr Bilingual kRemoveVisit{"Remove the visit of %2 at %1?",
                                 "Eliminare la visita del %2 a %1?"};
constexpr Bilingual kSiteGoes{"Its visits (%1) and their measurements (%2) go with it.",
                              "Se ne vanno anche le sue visite (%1) e le loro misure (%2)."};
constexpr Bilingual kVisitGoes{"Its measurements (%1) go with it; the site stays.",
                               "Se ne vanno anche le sue misure (%1); il sito resta."};

std::size_t count_rows(const SiteStore& store, const std::vector<Visit>& visits) {
    std::size_t rows = 0;
    for (const Visit& each : visits) rows += store.measurements(each.id).size();
    return rows;
}

}  // namespace

Sites::Sites(OpenSites& sites, ProgramState& program, const db::Database& database, QWidget* parent)
    : Screen(parent),
      sites_(sites),
      program_(program),
      database_(database),
      ui_(std::make_unique<Ui::Sites>()) {
    ui_->setupUi(this);
    set_up_looks();
    connect_keys();
    connect_lists();
    connect_views();
    take_exit(ui_->cmdexit);
    guard_lists();
}

Sites::~Sites() {
    sites_.on_changed = nullptr;
}

QSize Sites::sizeHint() const {
    return {fontMetrics().averageCharWidth() * kSitesColumns, fontMetrics().height() * kSitesLines};
}

void Sites::set_up_looks() {
    QFont title = ui_->sites_title->font();
    title.setBold(true);
    ui_->sites_title->setFont(title);
    ui_->sites_tree->setModel(&tree_);
    ui_->sites_tree->setItemDelegate(new ToneDelegate(this));
    ui_->sites_tree->setMinimumWidth(fontMetrics().averageCharWidth() * kTreeColumns);
    QHeaderView* header = ui_->sites_tree->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    header->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    ui_->sites_work->setStretchFactor(0, kTreeShare);
    ui_->sites_work->setStretchFactor(1, kViewShare);
    ui_->sites_by->setSuffix(QStringLiteral(" dB"));
    ui_->sites_by->setMinimumHeight(ui_->sites_by->sizeHint().height() + kForText);
    for (QComboBox* list : {ui_->sites_with, ui_->sites_program, ui_->sites_first}) {
        list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        list->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    }
    ui_->sites_first->hide();
    for (QDateEdit* day : {ui_->sites_from, ui_->sites_to}) {
        day->setEnabled(false);
        day->setMinimumHeight(day->sizeHint().height() + kForText);
    }
    for (std::size_t k = 0; k < std::size(kVerdicts); ++k) ui_->sites_verdict->addItem(QString());
    ui_->sites_pages->setCurrentWidget(ui_->sites_nothing);
}

void Sites::connect_keys() {
    const auto click = [this](QPushButton* key, QAction* entry, const char* name,
                              void (Sites::*work)()) {
        when(key, &QPushButton::clicked, name, [this, work] { (this->*work)(); });
        if (entry) connect(entry, &QAction::triggered, key, &QPushButton::click);
    };
    click(ui_->sites_new, ui_->cmdsitenew, "sites_new_Click", &Sites::sites_new_Click);
    click(ui_->sites_edit, ui_->cmdsiteedit, "sites_edit_Click", &Sites::sites_edit_Click);
    click(ui_->sites_remove, ui_->cmdsiteremove, "sites_remove_Click", &Sites::sites_remove_Click);
    click(ui_->sites_report, ui_->cmdsitereport, "sites_report_Click", &Sites::sites_report_Click);
    ui_->sites_report->setVisible(false);
    ui_->cmdsitereport->setVisible(false);
    click(ui_->sites_save, ui_->cmdsitesave, "sites_save_Click", &Sites::sites_save_Click);
    when(ui_->cmdsitesfind, &QAction::triggered, "cmdsitesfind_Click", [this] {
        if (!list_ || list_->empty()) return program_.costs.tell_each(kNothingToRead);
        ui_->sites_search->setFocus();
        ui_->sites_search->selectAll();
    });
    when(ui_->cmdsitesreload, &QAction::triggered, "cmdsitesreload_Click", [this] {
        reload();
        if (!list_) program_.costs.tell_each(kNothingToRead);
    });
    connect_files();
}

void Sites::connect_files() {
    auto* files = new QMenu(this);
    files->addActions({ui_->cmdsitelog, ui_->cmdsitesimport, ui_->cmdsitesexport});
    ui_->sites_files->setMenu(files);
    // A new site is proposed where none is chosen.
    when(ui_->cmdsitelog, &QAction::triggered, "cmdsitelog_Click",
         [this] { import_log(this, sites_, program_, site_ ? site_->id : QUuid()); });
    when(ui_->cmdsitesimport, &QAction::triggered, "cmdsitesimport_Click",
         [this] { import_sites(this, sites_, program_); });
    when(ui_->cmdsitesexport, &QAction::triggered, "cmdsitesexport_Click", [this] {
        export_sites(this, sites_, program_, site_ ? QList{site_->id} : QList<QUuid>());
    });
}

void Sites::connect_lists() {
    tree_.visits_of = [this](const QUuid& site) { return list_->visits(site, wanted()); };
    tree_.has_failed = [this](const QUuid& visit) { return list_ && list_->has_failed(visit); };
    tree_.on_fault = [this](const StoreError& error) {
        // The view goes on with its own work first.
        QTimer::singleShot(0, this, [this, error] { file_failed(error); });
    };
    when(ui_->sites_tree->selectionModel(), &QItemSelectionModel::currentChanged,
         "sites_tree_Click", [this] { choose(ui_->sites_tree->currentIndex()); });
    when(ui_->sites_search, &QLineEdit::textChanged, "sites_search_KeyPress",
         [this] { show_list(); });
    connect(ui_->sites_dates, &QCheckBox::toggled, this, [this](bool ticked) {
        for (QDateEdit* day : {ui_->sites_from, ui_->sites_to}) day->setEnabled(ticked);
    });
    when(ui_->sites_dates, &QCheckBox::clicked, "sites_dates_Click", [this] { show_list(); });
    for (QDateEdit* day : {ui_->sites_from, ui_->sites_to})
        when(day, &QDateEdit::dateChanged, "sites_day_KeyPress", [this] { show_list(); });
    when(ui_->sites_verdict, &QComboBox::activated, "sites_verdict_Click", [this] { show_list(); });
    // They change nothing but the view: what is done to them in a wait is done after it.
    for (QWidget* view :
         {static_cast<QWidget*>(ui_->sites_tree), static_cast<QWidget*>(ui_->sites_search),
          static_cast<QWidget*>(ui_->sites_views)})
        keep_while_busy(view);
    connect(&watch_, &QTimer::timeout, this, [this] { look_at_file(); });
    sites_.on_changed = [this] {
        if (isVisible()) reload();
    };
}

void Sites::Form_Load() {
    setWindowTitle(program_.texts.pick(kSitesTitle));
    set_captions(this, sites_captions(), program_.texts);
    set_tooltips(this, sites_tooltips(), program_.texts);
    ui_->sites_search->setPlaceholderText(program_.texts.pick(kSearchHere));
    for (std::size_t k = 0; k < std::size(kVerdicts); ++k)
        ui_->sites_verdict->setItemText(static_cast<int>(k), program_.texts.pick(kVerdicts[k]));
    name_views();
    reload();
}

void Sites::Form_Activate() {
    look_at_file();
}

void Sites::showEvent(QShowEvent* event) {
    Screen::showEvent(event);
    watch_.start(kLookEvery);
    look_at_file();
}

void Sites::hideEvent(QHideEvent* event) {
    Screen::hideEvent(event);
    watch_.stop();
}

/// Changes with each thing that is written to the file, and is found without opening it.
QString Sites::file_signature() const {
    const QFileInfo file(sites_.path());
    if (!file.exists()) return {};
    return QStringLiteral("%1 %2").arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
}

void Sites::look_at_file() {
    if (file_signature() != signature_) handle("look_at_file", [this] { reload(); });
}

void Sites::reload() {
    signature_ = file_signature();
    try {
        read_file();
    } catch (const StoreFault& fault) {
        file_failed(fault.error());
    }
}

void Sites::read_file() {
    // The engine would go on reading the file that nobody else sees any more.
    if (!sites_.is_there() || sites_.was_replaced()) let_go();
    if (!sites_.is_there()) return show_note(program_.texts.pick(kNoSites));
    store_ = sites_.look();
    list_ = std::make_unique<SiteList>(*store_);
    if (list_->empty()) return show_note(program_.texts.pick(kNoSites));
    ui_->sites_pages->setCurrentWidget(ui_->sites_work);
    propose_dates();
    keep_choice();
    show_list();
}

void Sites::let_go() {
    looking_.stop();
    search_.reset();
    list_.reset();
    store_.reset();
    sites_.let_go();
}

/// What is chosen as the file has it now.
void Sites::keep_choice() {
    if (!site_) return;
    const SiteLine* line = list_->line(site_->id);
    const std::optional<Visit> visit = visit_ ? store_->visit(visit_->id) : std::nullopt;
    const bool gone = !line || (visit_ && !visit);
    site_ = line ? std::optional(line->site) : std::nullopt;
    visit_ = visit;
    if (gone) program_.costs.tell_each(kSiteGone);
}

void Sites::file_failed(const StoreError& error) {
    let_go();
    show_note(store_error_text(error, program_.texts) + QStringLiteral("\n\n") +
              program_.texts.pick(kReadAgain));
}

void Sites::show_note(const QString& text) {
    tree_.show({}, program_.texts);
    site_.reset();
    visit_.reset();
    show_chosen();
    ui_->sites_note->setText(text);
    ui_->sites_pages->setCurrentWidget(ui_->sites_nothing);
}

SitesWanted Sites::wanted() const {
    SitesWanted wanted{.typed = ui_->sites_search->text()};
    wanted.visits =
        static_cast<SitesWanted::Visits>(std::max(0, ui_->sites_verdict->currentIndex()));
    if (!ui_->sites_dates->isChecked()) return wanted;
    wanted.from = midnight_of(ui_->sites_from->date());
    wanted.until = midnight_of(ui_->sites_to->date().addDays(1));
    return wanted;
}

/// Once there are visits, the year up to the latest one is proposed.
void Sites::propose_dates() {
    if (dates_proposed_) return;
    std::optional<Instant> last;
    for (const SiteLine& line : list_->sites({}))
        if (line.last && (!last || line.last->utc > last->utc)) last = line.last;
    if (!last) return;
    const QSignalBlocker from(ui_->sites_from);
    const QSignalBlocker to(ui_->sites_to);
    ui_->sites_from->setDate(day_of(*last).addDays(-kUsualDays));
    ui_->sites_to->setDate(day_of(*last));
    dates_proposed_ = true;
}

void Sites::show_list() {
    if (!list_) return;
    const SitesWanted asked = wanted();
    std::vector<SiteLine> lines = list_->sites(asked);
    int visits = 0;
    for (const SiteLine& line : lines) visits += line.visits;
    ui_->sites_found->setText(
        Said{kFoundVisits, {QString::number(lines.size()), QString::number(visits)}}.in(
            program_.texts));
    tree_.show(std::move(lines), program_.texts);
    if (site_) {
        const bool a_visit = visit_ && !site_itself_;
        const QModelIndex place =
            a_visit ? tree_.index_of(site_->id, visit_->id) : tree_.index_of(site_->id);
        const QSignalBlocker silent(ui_->sites_tree->selectionModel());
        ui_->sites_tree->setCurrentIndex(place);
        if (place.isValid()) ui_->sites_tree->scrollTo(place);
    }
    show_chosen();
}

void Sites::choose(const QModelIndex& index) {
    const SiteLine* line = tree_.site(index);
    if (!line) return;
    site_ = line->site;
    site_itself_ = !tree_.visit(index);
    if (site_itself_) {
        const std::vector<Visit> visits = list_->visits(site_->id, wanted());
        visit_ = visits.empty() ? std::nullopt : std::optional(visits.front());
    } else {
        visit_ = *tree_.visit(index);
    }
    show_chosen();
}

void Sites::show_all() {
    const QSignalBlocker search(ui_->sites_search);
    ui_->sites_search->clear();
    ui_->sites_dates->setChecked(false);
    ui_->sites_verdict->setCurrentIndex(0);
}

void Sites::show_visit(const QUuid& site, const QUuid& visit) {
    if (!list_) reload();
    if (!list_) return;
    const SiteLine* line = list_->line(site);
    const std::optional<Visit> found = store_->visit(visit);
    if (!line || !found) return program_.costs.tell_each(kSiteGone);
    if (!tree_.index_of(site, visit).isValid()) show_all();
    site_ = line->site;
    visit_ = found;
    site_itself_ = false;
    show_list();
}

void Sites::show_comparison(const QUuid& site, const QUuid& visit, const QUuid& other) {
    with_ = With::chosen;
    with_visit_ = other;
    ui_->sites_views->setCurrentWidget(ui_->view_compare);
    show_visit(site, visit);
}

void Sites::sites_new_Click() {
    SiteDialog dialog({.id = QUuid::createUuid(), .name = QString()}, true, program_.texts, this);
    if (dialog.exec() != QDialog::Accepted) return;
    const std::shared_ptr<SiteStore> store = sites_.open();
    const Site site = dialog.site();
    for (const Site& each : store->sites())
        if (each.name.compare(site.name, Qt::CaseInsensitive) == 0)
            return report_fault(this, program_.texts.pick(kSameName).arg(each.name));
    store->store(site);
    site_ = site;
    visit_.reset();
    site_itself_ = true;
    show_all();
    reload();
}

void Sites::set_report(MakeReport report) {
    report_ = std::move(report);
    ui_->sites_report->setVisible(true);
    ui_->cmdsitereport->setVisible(true);
}

void Sites::sites_report_Click() {
    if (!site_ || !store_) return program_.costs.tell_each(kChooseSite);
    if (!visit_) return program_.costs.tell_each(kNoVisit);
    report_(*site_, site_itself_ ? std::vector<QUuid>() : std::vector{visit_->id});
}

/// Another program may have removed or changed it while a dialog stood there.
bool Sites::still_so(const Site& site) const {
    if (!store_) return false;
    const std::vector<Site> now = store_->sites();
    return std::ranges::find(now, site) != now.end();
}

void Sites::sites_edit_Click() {
    if (!site_) return program_.costs.tell_each(kChooseSite);
    const Site before = *site_;
    SiteDialog dialog(before, false, program_.texts, this);
    if (dialog.exec() != QDialog::Accepted || dialog.site() == before) return;
    if (!still_so(before)) {
        program_.costs.tell_each(kSiteChanged);
        return reload();
    }
    store_->store(dialog.site());
    reload();
}

bool Sites::may_remove(const Visit* visit) {
    const std::vector<Visit> visits = visit ? std::vector{*visit} : store_->visits(site_->id);
    for (const Visit& each : visits) {
        const bool ours = each.id == sites_.running;
        if (!ours && !VisitClaim::is_kept_elsewhere(sites_.path(), each.id)) continue;
        program_.costs.tell_each(ours ? kVisitRuns : kVisitRunsElsewhere);
        return false;
    }
    const QString rows = QString::number(count_rows(*store_, visits));
    Said question{kRemoveSite, {site_->name}};
    Said goes{kSiteGoes, {QString::number(visits.size()), rows}};
    if (visit) {
        question = {kRemoveVisit, {site_->name, visit_time(*visit, at_site_)}};
        goes = {kVisitGoes, {rows}};
    }
    return ask_first(this, program_.texts.pick(kRemoveTitle), question.in(program_.texts),
                     goes.in(program_.texts));
}

void Sites::sites_remove_Click() {
    if (!site_ || !store_) return program_.costs.tell_each(kChooseWhat);
    const bool whole = site_itself_ || !visit_;
    const Site site = *site_;
    const std::optional<Visit> visit = visit_;
    // The file may fail, or be taken away, while the question stands there.
    if (!may_remove(whole ? nullptr : &*visit) || !store_) return;
    if (whole)
        store_->remove_site(site.id);
    else
        store_->remove_visit(visit->id);
    site_.reset();
    visit_.reset();
    if (!whole) site_ = site;
    site_itself_ = true;
    reload();
}

}  // namespace m47::sites
