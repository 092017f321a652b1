// SPDX-License-Identifier: GPL-3.0-or-later
// What the screen shows of a visit: its rows, the comparison, the chart, and what got worse.
#include <QElapsedTimer>
#include <QFileDialog>
#include <QSignalBlocker>
#include <algorithm>
#include <ranges>

#include "code_rates.h"
#include "fault.h"
#include "file_question.h"
#include "handler.h"
#include "quantity_words.h"
#include "save_file.h"
#include "site_table_view.h"
#include "sites.h"
#include "tooltips.h"
#include "ui_sites.h"
#include "visit_series.h"
#include "visit_words.h"

namespace m47::sites {
namespace {

constexpr Bilingual kViewRows{"Measurements", "Misure"};
constexpr Bilingual kViewCompare{"Compare", "Confronto"};
constexpr Bilingual kViewChart{"Chart", "Grafico"};
constexpr Bilingual kViewWorse{"What got worse", "Che cosa è peggiorato"};
constexpr Bilingual kNothingChosen{"No site is chosen", "Nessun sito scelto"};
constexpr Bilingual kVisitOf{"%1, visit of %2", "%1, visita del %2"};
constexpr Bilingual kWithoutVisit{"%1, no visit", "%1, nessuna visita"};
constexpr Bilingual kLastVisit{"The visit before: %1", "La visita prima: %1"};
constexpr Bilingual kFirstVisit{"The first visit: %1", "La prima visita: %1"};
constexpr Bilingual kNoOther{"There is no other visit at this site to compare with.",
                             "Non c'è un'altra visita a questo sito con cui confrontare."};
constexpr Bilingual kFromTo{"From %1 to %2: %3.", "Dal %1 al %2: %3."};
constexpr Bilingual kNoPrograms{"no programs", "nessun programma"};
constexpr Bilingual kProgramsOf{"%1: %2", "%1: %2"};
constexpr Bilingual kLook{"Look through all sites", "Esamina tutti i siti"};
constexpr Bilingual kStopLooking{"Stop", "Ferma"};
constexpr Bilingual kLookedAt{"Sites looked at: %1 of %2", "Siti esaminati: %1 di %2"};
constexpr Bilingual kGotWorse{"Programs that got worse: %1", "Programmi peggiorati: %1"};
constexpr Bilingual kGotWorseSoFar{"Programs that got worse: %1, sites looked at: %2 of %3",
                                   "Programmi peggiorati: %1, siti esaminati: %2 di %3"};
constexpr Bilingual kNoFile{"There are no sites to look through.",
                            "Non ci sono siti da esaminare."};
constexpr Bilingual kEmptyTable{"There is nothing to save: the table in front is empty.",
                                "Non c'è nulla da salvare: la tabella in vista è vuota."};
constexpr Bilingual kAllVisits{"The chart shows all already.", "Il grafico mostra già tutto."};
constexpr Bilingual kSaveTable{"Save the table", "Salva la tabella"};
constexpr Bilingual kTableNotSaved{"The table was not saved as '%1': %2",
                                   "La tabella non è stata salvata come '%1': %2"};

/// How long all sites are looked at without a pause, in ms.
constexpr qint64 kLookFor = 40;

/// "lost: 1, worse: 3, same: 8".
QString counted_meanings(const std::vector<ProgramComparison>& compared, const Texts& texts) {
    QStringList parts;
    for (std::size_t k = 0; k < compared.size();) {
        const Meaning meaning = compared[k].meaning;
        std::size_t end = k;
        while (end < compared.size() && compared[end].meaning == meaning) ++end;
        parts +=
            Said{kProgramsOf, {meaning_text(meaning, texts), QString::number(end - k)}}.in(texts);
        k = end;
    }
    return parts.isEmpty() ? texts.pick(kNoPrograms) : parts.join(QStringLiteral(", "));
}

}  // namespace

void Sites::connect_views() {
    when(ui_->sites_views, &QTabWidget::currentChanged, "sites_views_Click",
         [this] { show_front(); });
    when(ui_->sites_with, &QComboBox::activated, "sites_with_Click", [this](int place) {
        const QVariant kind = ui_->sites_with->itemData(place, Qt::UserRole + 1);
        with_ = static_cast<With>(kind.toInt());
        with_visit_ = ui_->sites_with->itemData(place).toUuid();
        show_compared();
    });
    when(ui_->sites_readings, &QCheckBox::clicked, "sites_readings_Click",
         [this] { ui_->sites_compared->show_details(ui_->sites_readings->isChecked()); });
    when(ui_->sites_rows, &SiteTableView::chosen, "sites_rows_Click",
         [this](int row) { choose_program(program_key(rows_[static_cast<std::size_t>(row)])); });
    when(ui_->sites_compared, &SiteTableView::chosen, "sites_compared_Click", [this](int row) {
        // The page of the chart compares anew.
        const measurement::SeriesKey key = compared_[static_cast<std::size_t>(row)].key;
        choose_program(key);
    });
    when(ui_->sites_program, &QComboBox::activated, "sites_program_Click",
         [this] { show_chart(); });
    when(ui_->sites_first, &QComboBox::activated, "sites_first_Click", [this](int place) {
        ui_->sites_chart->begin_with(ui_->sites_chart->measured()[static_cast<std::size_t>(place)]);
    });
    ui_->sites_chart->on_charts = [this] { list_charts(); };
    when(ui_->sites_zoom, &QPushButton::clicked, "sites_zoom_Click", [this] {
        if (!ui_->sites_chart->reset_zoom()) program_.costs.tell_each(kAllVisits);
    });
    when(ui_->sites_look, &QPushButton::clicked, "sites_look_Click",
         [this] { sites_look_Click(); });
    when(&looking_, &QTimer::timeout, "look_on", [this] { look_on(); });
    when(ui_->sites_worse, &SiteTableView::chosen, "sites_worse_Click", [this](int row) {
        const GotWorse one = worse_[static_cast<std::size_t>(row)];
        if (one.program.earlier && one.program.later)
            show_comparison(one.site.id, one.program.later->visit, one.program.earlier->visit);
    });
}

void Sites::name_views() {
    for (const auto& [view, words] :
         {std::pair(ui_->view_rows, kViewRows), std::pair(ui_->view_compare, kViewCompare),
          std::pair(ui_->view_chart, kViewChart), std::pair(ui_->view_worse, kViewWorse)})
        ui_->sites_views->setTabText(ui_->sites_views->indexOf(view), program_.texts.pick(words));
}

CodeRateOf Sites::code_rates() const {
    struct Rates {
        CodeRates of;
        bool failed = false;
    };
    const auto rates = std::make_shared<Rates>(Rates{CodeRates(database_)});
    // Asked while a table is painted, where a fault has no place: without the plans there is no
    // margin to what a code needs.
    return [rates](const measurement::Measurement& measured) -> std::optional<programme::CodeRate> {
        if (rates->failed) return {};
        try {
            return rates->of.of(measured);
        } catch (const Fault&) {
            rates->failed = true;
            return {};
        }
    };
}

void Sites::show_chosen() {
    const Texts& texts = program_.texts;
    rows_ = visit_ && store_ ? store_->measurements(visit_->id) : std::vector<VisitMeasurement>();
    list_others();
    QString title = texts.pick(kNothingChosen);
    QString facts;
    if (site_) {
        const QString name = site_->name.simplified();
        title = visit_ ? Said{kVisitOf, {name, visit_time(*visit_, at_site_)}}.in(texts)
                       : Said{kWithoutVisit, {name}}.in(texts);
        QStringList all{site_facts(*site_), visit_ ? visit_facts(*visit_, texts) : QString()};
        all.removeAll(QString());
        facts = all.join(QStringLiteral("  –  "));
    }
    ui_->sites_title->setText(title);
    ui_->sites_title->setToolTip(plain_tooltip(title));
    ui_->sites_facts->setText(facts);
    ui_->sites_facts->setToolTip(plain_tooltip(facts));
    show_front();
}

void Sites::show_front() {
    const QWidget* front = ui_->sites_views->currentWidget();
    if (front == ui_->view_rows) show_rows();
    if (front == ui_->view_compare) show_compared();
    if (front == ui_->view_chart) {
        compare_chosen();
        list_programs();
        show_chart();
    }
    if (front == ui_->view_worse) show_worse();
}

void Sites::show_rows() {
    ui_->sites_rows->show_table(table_of_rows(rows_, code_rates()), program_.texts);
}

/// The visit before, the first one and all the others, the latest first.
void Sites::list_others() {
    at_site_.clear();
    if (visit_ && store_) at_site_ = store_->visits(visit_->site);
    others_ = at_site_;
    ui_->sites_with->clear();
    if (!visit_) return;
    std::erase_if(others_, [this](const Visit& each) { return each.id == visit_->id; });
    const auto add = [this](const QString& text, const QUuid& visit, With kind) {
        ui_->sites_with->addItem(text, visit);
        ui_->sites_with->setItemData(ui_->sites_with->count() - 1, static_cast<int>(kind),
                                     Qt::UserRole + 1);
    };
    const auto before = std::ranges::find_if(
        others_, [this](const Visit& each) { return each.begun.utc <= visit_->begun.utc; });
    if (before != others_.end()) {
        add(Said{kLastVisit, {visit_time(*before, at_site_)}}.in(program_.texts), before->id,
            With::last);
        add(Said{kFirstVisit, {visit_time(others_.back(), at_site_)}}.in(program_.texts),
            others_.back().id, With::first);
    }
    for (const Visit& each : others_) add(visit_time(each, at_site_), each.id, With::chosen);
    int place = 0;
    for (int k = 0; k < ui_->sites_with->count(); ++k) {
        const int kind = ui_->sites_with->itemData(k, Qt::UserRole + 1).toInt();
        if (kind != static_cast<int>(with_)) continue;
        if (with_ != With::chosen || ui_->sites_with->itemData(k).toUuid() == with_visit_)
            place = k;
    }
    ui_->sites_with->setCurrentIndex(ui_->sites_with->count() > 0 ? place : -1);
}

std::optional<Visit> Sites::other_visit() const {
    const QUuid wanted = ui_->sites_with->currentData().toUuid();
    const auto found = std::ranges::find(others_, wanted, &Visit::id);
    return found == others_.end() ? std::nullopt : std::optional(*found);
}

/// What the visit chosen and the other one have, whoever shows it.
void Sites::compare_chosen() {
    const std::optional<Visit> other = other_visit();
    compared_.clear();
    if (!visit_ || !other) return;
    const bool is_later = other->begun.utc > visit_->begun.utc;
    const std::vector<VisitMeasurement> rows = store_->measurements(other->id);
    compared_ = is_later ? compare_visits(rows_, rows) : compare_visits(rows, rows_);
}

void Sites::show_compared() {
    compare_chosen();
    const std::optional<Visit> other = other_visit();
    if (!visit_ || !other) {
        ui_->sites_summary->setText(visit_ ? program_.texts.pick(kNoOther) : QString());
        ui_->sites_compared->show_table(nullptr, program_.texts);
        return;
    }
    const bool is_later = other->begun.utc > visit_->begun.utc;
    const Visit& then = is_later ? *visit_ : *other;
    const Visit& now = is_later ? *other : *visit_;
    ui_->sites_summary->setText(Said{kFromTo,
                                     {visit_time(then, at_site_), visit_time(now, at_site_),
                                      counted_meanings(compared_, program_.texts)}}
                                    .in(program_.texts));
    ui_->sites_compared->show_table(table_of_comparison(compared_, code_rates()), program_.texts);
}

/// Those of the visit and of the one that it was compared with.
void Sites::list_programs() {
    const int place = ui_->sites_program->currentIndex();
    const std::optional<measurement::SeriesKey> chosen =
        place >= 0 ? std::optional(programs_[static_cast<std::size_t>(place)]) : std::nullopt;
    programs_.clear();
    for (const VisitMeasurement& row : counting(rows_)) programs_.push_back(program_key(row));
    for (const ProgramComparison& each : compared_)
        if (std::ranges::find(programs_, each.key) == programs_.end())
            programs_.push_back(each.key);
    ui_->sites_program->clear();
    for (const measurement::SeriesKey& key : programs_) ui_->sites_program->addItem(key.name());
    if (!chosen) return;
    const auto same = std::ranges::find(programs_, *chosen);
    if (same != programs_.end())
        ui_->sites_program->setCurrentIndex(static_cast<int>(same - programs_.begin()));
}

void Sites::choose_program(const measurement::SeriesKey& key) {
    ui_->sites_views->setCurrentWidget(ui_->view_chart);
    const auto place = std::ranges::find(programs_, key);
    if (place == programs_.end()) return;
    ui_->sites_program->setCurrentIndex(static_cast<int>(place - programs_.begin()));
    show_chart();
}

void Sites::show_chart() {
    const int place = ui_->sites_program->currentIndex();
    charted_.clear();
    if (store_ && visit_ && place >= 0)
        charted_ = visit_series(
            store_->over_visits(visit_->site, programs_[static_cast<std::size_t>(place)]));
    ui_->sites_chart->show_rows(charted_, program_.texts);
}

/// The charts that were measured, to begin with one of them where there is no room for all.
void Sites::list_charts() {
    QStringList names;
    for (const measurement::Quantity each : ui_->sites_chart->measured())
        names += quantity_text(each, program_.texts);
    QStringList listed;
    for (int k = 0; k < ui_->sites_first->count(); ++k) listed += ui_->sites_first->itemText(k);
    if (names != listed) {
        ui_->sites_first->clear();
        ui_->sites_first->addItems(names);
        ui_->sites_first->setCurrentIndex(std::max(
            0, static_cast<int>(
                   names.indexOf(quantity_text(ui_->sites_chart->first(), program_.texts)))));
    }
    ui_->sites_first->setVisible(!ui_->sites_chart->has_room());
}

void Sites::sites_look_Click() {
    if (looking_.isActive()) {
        looking_.stop();
        worse_ = search_->found();
        return show_worse();
    }
    if (!store_) return program_.costs.tell_each(kNoFile);
    search_ = std::make_unique<WorseSearch>(*store_, ui_->sites_by->value());
    worse_.clear();
    looking_.start(0);
    show_worse();
}

void Sites::look_on() {
    QElapsedTimer since;
    since.start();
    try {
        while (!search_->done() && !since.hasExpired(kLookFor)) search_->step();
    } catch (const StoreFault& fault) {
        return file_failed(fault.error());
    }
    if (search_->done()) {
        looking_.stop();
        worse_ = search_->found();
        return show_worse();
    }
    ui_->sites_worse_state->setText(
        Said{kLookedAt, {QString::number(search_->looked_at()), QString::number(search_->sites())}}
            .in(program_.texts));
}

void Sites::show_worse() {
    const bool looking = looking_.isActive();
    ui_->sites_look->setText(program_.texts.pick(looking ? kStopLooking : kLook));
    const QString programs = QString::number(worse_.size());
    QString state;
    if (search_ && !looking) {
        state = search_->done() ? Said{kGotWorse, {programs}}.in(program_.texts)
                                : Said{kGotWorseSoFar,
                                       {programs, QString::number(search_->looked_at()),
                                        QString::number(search_->sites())}}
                                      .in(program_.texts);
    }
    ui_->sites_worse_state->setText(state);
    ui_->sites_worse->show_table(table_of_worse(worse_), program_.texts);
}

ShownTable Sites::front_table() const {
    const QWidget* front = ui_->sites_views->currentWidget();
    if (front == ui_->view_compare) return ui_->sites_compared->shown();
    if (front == ui_->view_worse) return ui_->sites_worse->shown();
    if (front == ui_->view_chart)
        return shown_table(*table_of_rows(charted_, code_rates()), program_.texts);
    return ui_->sites_rows->shown();
}

/// What a file of the table in front is called.
QString Sites::front_name() const {
    const QWidget* front = ui_->sites_views->currentWidget();
    if (front == ui_->view_worse || !site_) return QStringLiteral("got-worse");
    const QString what = front == ui_->view_compare ? QStringLiteral("compared")
                         : front == ui_->view_chart ? QStringLiteral("program")
                                                    : QStringLiteral("visit");
    return file_stem(*site_, what);
}

void Sites::sites_save_Click() {
    if (front_table().rows.isEmpty()) return program_.costs.tell_each(kEmptyTable);
    QFileDialog dialog(this, program_.texts.pick(kSaveTable));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("TSV (*.tsv)"));
    dialog.setDefaultSuffix(QStringLiteral("tsv"));
    const QWidget* front = ui_->sites_views->currentWidget();
    const bool of_visit = visit_ && front != ui_->view_worse && front != ui_->view_chart;
    const QString day =
        of_visit ? u'-' + day_of(visit_->begun).toString(QStringLiteral("yyyyMMdd")) : QString();
    dialog.selectFile(of_visit ? front_name() + day + QStringLiteral(".tsv")
                               : proposed_name(front_name(), QStringLiteral("tsv")));
    const QString path = ask_for_file(dialog, program_, FilePurpose::sites);
    if (!path.isEmpty()) save(path);
}

void Sites::save(const QString& path) {
    const QString reason = write_whole_file(path, front_table().tsv());
    if (reason.isEmpty()) return program_.saved(path);
    report_fault(this, program_.texts.pick(kTableNotSaved).arg(path, reason));
}

}  // namespace m47::sites
