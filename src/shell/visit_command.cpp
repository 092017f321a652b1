// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_command.h"

#include <QPushButton>

#include "begin_visit_dialog.h"
#include "commands.h"
#include "end_visit_dialog.h"
#include "message_box.h"
#include "realtime.h"
#include "row_time.h"
#include "say_on_stderr.h"
#include "site_commands.h"

namespace m47::shell {
namespace {

using State = sites::VisitOfWindow::State;

constexpr Bilingual kVisitTitle{"Visit", "Visita"};
constexpr Bilingual kVisitRuns{"Visit: %1", "Visita: %1"};
constexpr Bilingual kRowsMissing{"Visit: rows not stored: %2, %1",
                                 "Visita: righe non salvate: %2, %1"};
constexpr Bilingual kVisitCutOff{"Visit cut off: %1", "Visita interrotta: %1"};
constexpr Bilingual kSince{"Begun %1. Each row of the page is stored in it at once.",
                           "Iniziata %1. Ogni riga della pagina vi viene subito memorizzata."};
constexpr Bilingual kGoOnOrEnd{"Begun %1, and not ended: go on with it, or end it.",
                               "Iniziata %1 e non terminata: riprenderla oppure terminarla."};
constexpr Bilingual kBeginEntry{"Begin &visit…", "Inizia &visita…"};
constexpr Bilingual kGoOnEntry{"Go on with the &visit", "Riprendi la &visita"};
constexpr Bilingual kBeginTip{"From now on each measured row is kept at a site",
                              "Da ora ogni riga misurata viene conservata presso un sito"};
constexpr Bilingual kGoOnTip{"The visit that was cut off runs again",
                             "La visita interrotta prosegue"};
constexpr Bilingual kCloseAsks{"The visit at '%1' runs. What becomes of it?",
                               "La visita presso '%1' è in corso. Che cosa ne sarà?"};
constexpr Bilingual kCloseEnds{"&End the visit…", "&Termina la visita…"};
constexpr Bilingual kCloseLeaves{"&Go on next time", "&Riprendi la prossima volta"};
constexpr Bilingual kCloseStays{"&Cancel", "&Annulla"};

}  // namespace

VisitCommand::VisitCommand(sites::VisitOfWindow& visit, sites::OpenSites& sites,
                           const ProgramState& program, link::Link& link, M47MDI& window)
    : visit_(visit), sites_(sites), program_(program), link_(link), window_(window) {
    visit_.on_change = [this] { show_texts(); };
    visit_.on_fault = [this](const sites::StoreError& error) {
        window_.show_notice(sites::store_error_text(error, program_.texts));
    };
    visit_.on_gone = [this] { window_.show_notice(visit_.missing_text()->in(program_.texts)); };
    window_.may_close = [this] { return may_close(); };
}

VisitCommand::~VisitCommand() {
    window_.may_close = nullptr;
    visit_.on_change = nullptr;
    visit_.on_fault = nullptr;
    visit_.on_gone = nullptr;
    leave();
}

void VisitCommand::leave() {
    if (const std::optional<Said> missing = visit_.leave())
        unattended::say_on_stderr(missing->in(program_.texts), unattended::Subsystem::kFiles);
}

void VisitCommand::look_for_cut_off() {
    try {
        visit_.look_for_cut_off();
    } catch (const Fault& fault) {
        window_.show_notice(fault.text(program_.texts));
    }
}

void VisitCommand::cmdvisit_Click() {
    if (visit_.state() == State::cut_off)
        go_on();
    else if (visit_.state() == State::none)
        begin();
}

void VisitCommand::go_on() {
    visit_.go_on();
    window_.open_screen(QStringLiteral("realtime"));
}

QString VisitCommand::plan_in_force() const {
    const auto* screen = window_.opened<realtime::Realtime>();
    return screen ? screen->plan_in_force() : QString();
}

sites::VisitFacts VisitCommand::proposed() const {
    return {.technician = program_.preferences.technician(), .plan = plan_in_force()};
}

void VisitCommand::begin() {
    const std::shared_ptr<sites::SiteStore> store = sites_.look();
    sites::BeginVisitDialog dialog(store.get(), proposed(), program_.texts, &window_);
    if (dialog.exec() != QDialog::Accepted) return;
    sites::VisitFacts facts = dialog.facts();
    program_.preferences.keep_technician(facts.technician);
    facts.instrument = meter_text(program_);
    if (link_.port_connected)
        facts.logo = link_.ask(link::command::query(link::command::kLogo)).value_or(QString());
    visit_.begin(dialog.site(), facts, link_.clock().date_time());
    // What was told of the visit before is over.
    window_.show_notice(QString());
}

/// A meter that came later is part of it too.
sites::VisitFacts VisitCommand::facts_at_end(const QString& remarks) const {
    sites::VisitFacts facts = visit_.facts();
    facts.remarks = remarks;
    if (visit_.state() != State::running) return facts;
    if (facts.instrument.isEmpty()) facts.instrument = meter_text(program_);
    if (facts.plan.isEmpty()) facts.plan = plan_in_force();
    return facts;
}

bool VisitCommand::cmdendvisit_Click() {
    if (visit_.state() == State::none) return true;
    sites::EndVisitDialog dialog(visit_, program_.texts, &window_);
    if (dialog.exec() != QDialog::Accepted) return false;
    const bool cut_off = visit_.state() == State::cut_off;
    tell_lost(visit_.end(facts_at_end(dialog.remarks()), link_.clock().date_time()));
    // There may be another one.
    if (cut_off) look_for_cut_off();
    return true;
}

void VisitCommand::tell_lost(const std::optional<Said>& missing) const {
    if (missing)
        show_message_box(&window_, QMessageBox::Warning, program_.texts.pick(kVisitTitle),
                         missing->in(program_.texts));
}

void VisitCommand::cmdimportlog_Click() {
    sites::import_log(&window_, sites_, program_);
}

bool VisitCommand::may_close() {
    if (visit_.state() != State::running) return true;
    QMessageBox box(QMessageBox::Question, program_.texts.pick(kVisitTitle), QString(),
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, &window_);
    box.setTextFormat(Qt::PlainText);
    box.setText(Said{kCloseAsks, {visit_.site().name}}.in(program_.texts));
    box.button(QMessageBox::Yes)->setText(program_.texts.pick(kCloseEnds));
    box.button(QMessageBox::No)->setText(program_.texts.pick(kCloseLeaves));
    box.button(QMessageBox::Cancel)->setText(program_.texts.pick(kCloseStays));
    box.setDefaultButton(QMessageBox::Yes);
    const int answer = box.exec();
    if (answer == QMessageBox::Yes) return cmdendvisit_Click();
    if (answer != QMessageBox::No) return false;
    tell_lost(visit_.leave());
    return true;
}

QString VisitCommand::mark_text() const {
    const QString name = visit_.site().name;
    if (visit_.state() == State::cut_off) return Said{kVisitCutOff, {name}}.in(program_.texts);
    if (visit_.missing() == 0) return Said{kVisitRuns, {name}}.in(program_.texts);
    return Said{kRowsMissing, {name, QString::number(visit_.missing())}}.in(program_.texts);
}

QString VisitCommand::mark_more() const {
    const QString begun =
        QString::fromStdString(measurement::time_text(visit_.visit().begun.wall()));
    return Said{visit_.state() == State::cut_off ? kGoOnOrEnd : kSince, {begun}}.in(program_.texts);
}

void VisitCommand::show_texts() {
    const State state = visit_.state();
    const bool cut_off = state == State::cut_off;
    window_.show_visit_entries(program_.texts.pick(cut_off ? kGoOnEntry : kBeginEntry),
                               program_.texts.pick(cut_off ? kGoOnTip : kBeginTip),
                               state != State::running, state != State::none);
    if (state == State::none) return window_.show_visit({}, {}, false);
    window_.show_visit(mark_text(), mark_more(), cut_off || visit_.missing() > 0);
}

}  // namespace m47::shell
