// SPDX-License-Identifier: GPL-3.0-or-later
#include "start_desk.h"

#include <QFileDialog>
#include <QFileInfo>
#include <chrono>

#include "fields.h"
#include "file_question.h"
#include "handler.h"
#include "port_search.h"
#include "program_set.h"
#include "realtime.h"
#include "recordset.h"
#include "tables.h"

namespace m47::shell {
namespace {

/// The system makes the names of a device one after the other.
constexpr std::chrono::milliseconds kSettle{300};
constexpr int kMostPlans = 5;

constexpr Bilingual kAnswers{"The meter answers on port %1.",
                             "Lo strumento risponde sulla porta %1."};
constexpr Bilingual kSimulatedAnswers{
    "The simulated meter answers on port %1. What it measures is made up.",
    "Lo strumento simulato risponde sulla porta %1. Ciò che misura è inventato."};
constexpr Bilingual kRecordingAnswers{
    "The meter of the recording %2 answers on port %1. What it says was measured then.",
    "Lo strumento della registrazione %2 risponde sulla porta %1. Ciò che dice è stato misurato "
    "allora."};
constexpr Bilingual kSilent{
    "No meter answered on port %1. Is it switched on and its cable plugged in?",
    "Nessuno strumento ha risposto sulla porta %1. È acceso e il cavo è collegato?"};
constexpr Bilingual kSimulatedMark{"Simulated meter", "Strumento simulato"};
constexpr Bilingual kRecordingMark{"Replay of %1", "Riproduzione di %1"};
constexpr Bilingual kOpenTitle{"Open recording", "Apri registrazione"};
constexpr Bilingual kRecordings{"Recordings (*.trace);;All files (*)",
                                "Registrazioni (*.trace);;Tutti i file (*)"};
constexpr Bilingual kLog{"Log %1", "Log %1"};
constexpr Bilingual kPlan{"Plan %1", "Piano %1"};

}  // namespace

StartDesk::StartDesk(M47MDI& window, unattended::MeterConnection& connection, ProgramState& state,
                     db::Database& database)
    : window_(window), connection_(connection), state_(state), database_(database) {
    settle_.setSingleShot(true);
    settle_.setInterval(kSettle);
    connect(&settle_, &QTimer::timeout, this, &StartDesk::refresh);
}

void StartDesk::open() {
    if (page_) return;
    page_ = new StartPage(state_.texts);
    connect_page();
    watch_devices();
    refresh();
    window_.put_behind_screens(page_);
}

void StartDesk::connect_page() {
    on(page_, &StartPage::connect_asked, &window_, "start_connect_Click",
       [this](int number) { start_connect_Click(number); });
    on(page_, &StartPage::search_asked, &window_, "start_search_Click",
       [this] { start_search_Click(); });
    on(page_, &StartPage::simulated_asked, &window_, "start_simulated_Click",
       [this] { start_simulated_Click(); });
    on(page_, &StartPage::log_asked, &window_, "start_log_Click",
       [this](const QString& path) { open_log(path); });
    on(page_, &StartPage::plan_asked, &window_, "start_plan_Click",
       [this](const QString& name) { open_plan(name); });
    connect(page_, &StartPage::manual_asked, this, &StartDesk::manual_asked);
}

void StartDesk::watch_devices() {
    watcher_ = new QFileSystemWatcher({QStringLiteral("/dev")}, this);
    connect(watcher_, &QFileSystemWatcher::directoryChanged, this, [this] { settle_.start(); });
}

void StartDesk::refresh() {
    if (!page_) return;
    run_handler(&window_, "start_page", [this] {
        connection_.ports().refresh();
        page_->show_devices(devices());
        page_->show_recent(logs(), plans());
    });
}

void StartDesk::show_texts() {
    port_picked();
    if (!page_) return;
    page_->show_texts();
    refresh();
}

void StartDesk::port_picked() {
    state_.simulated_meter = simulated_.is_behind(connection_.device());
    state_.replayed.clear();
    QString mark;
    if (state_.simulated_meter) {
        state_.simulated_before = true;
        state_.replayed = QFileInfo(simulated_.recording()).fileName();
        mark = state_.replayed.isEmpty() ? state_.texts.pick(kSimulatedMark)
                                         : Said{kRecordingMark, {state_.replayed}}.in(state_.texts);
    }
    window_.status().show_simulated(mark);
}

QList<StartPage::Device> StartDesk::devices() {
    QList<StartPage::Device> found;
    const link::PortList& ports = connection_.ports();
    for (int number = 1; number <= link::PortList::kPorts; ++number) {
        const QString description = ports.description(number);
        if (description.isEmpty() || simulated_.is_behind(ports.device(number))) continue;
        found.append({number, description, connection_.identification().port_in_use() == number});
    }
    return found;
}

QList<StartPage::Recent> StartDesk::logs() const {
    QList<StartPage::Recent> recent;
    for (const QString& path : state_.preferences.recent_logs())
        recent.append({Said{kLog, {QFileInfo(path).fileName()}}.in(state_.texts), path});
    return recent;
}

/// The plans made last.
QList<StartPage::Recent> StartDesk::plans() {
    QList<StartPage::Recent> recent;
    db::Recordset& plans = database_.gruppo();
    plans.requery();
    for (; !plans.end_of_set(); plans.move_next()) {
        const QString name = plans.text(db::field::kNome).trimmed();
        recent.prepend({Said{kPlan, {name}}.in(state_.texts), name});
    }
    return recent.mid(0, kMostPlans);
}

void StartDesk::start_connect_Click(int number) {
    connection_.identify(number);
    show_answer(number);
}

void StartDesk::show_answer(int number) {
    const QString reason = connection_.link().port_connected ? QString() : connection_.fault();
    show_result(reason.isEmpty() ? answer_text(number) : reason);
    answers_ = connection_.link().port_connected;
    refresh();
}

void StartDesk::look_at_link() {
    if (answers_ && !connection_.link().port_connected) show_result(QString());
}

QString StartDesk::answer_text(int number) const {
    const QStringList port{QString::number(number)};
    const Texts& texts = state_.texts;
    if (!connection_.link().port_connected) return Said{kSilent, port}.in(texts);
    if (!state_.replayed.isEmpty())
        return Said{kRecordingAnswers, port + QStringList{state_.replayed}}.in(texts);
    return Said{state_.simulated_meter ? kSimulatedAnswers : kAnswers, port}.in(texts);
}

/// On the page, where there is one.
void StartDesk::show_result(const QString& text) {
    answers_ = false;
    if (page_) page_->show_result(text);
}

void StartDesk::start_search_Click() {
    connection_.ports().refresh();
    link::PortSearch search(connection_.link(), connection_.ports(), state_.texts);
    search.identify = [this](int number) { connection_.identify(number); };
    search.fault = [this] { return connection_.fault(); };
    show_result(QString());
    const link::PortSearch::Result result = search.run();
    if (result.found > 0) return show_answer(result.found);
    show_result(search_text(result, state_.texts));
    refresh();
}

void StartDesk::start_simulated_Click() {
    connect_started(simulated_.start());
}

void StartDesk::cmdreplay_Click() {
    QFileDialog dialog(&window_, state_.texts.pick(kOpenTitle), QString(),
                       state_.texts.pick(kRecordings));
    dialog.setFileMode(QFileDialog::ExistingFile);
    const QString path = ask_for_file(dialog, state_, FilePurpose::recording);
    if (!path.isEmpty()) open_recording(path);
}

void StartDesk::open_recording(const QString& path) {
    connect_started(simulated_.start(QFileInfo(path).absoluteFilePath()));
}

void StartDesk::connect_started(const QString& device) {
    if (device.isEmpty()) {
        const QString why = simulated_.fault(state_.texts);
        show_result(why);
        return window_.show_notice(why);
    }
    connection_.ports().refresh();
    if (simulated_port_ == 0)
        simulated_port_ = connection_.ports().free_number().value_or(link::PortList::kPorts);
    connection_.ports().add(QStringLiteral("%1=%2").arg(simulated_port_).arg(device));
    start_connect_Click(simulated_port_);
}

void StartDesk::open_log(const QString& path) {
    window_.open_screen(QStringLiteral("realtime"));
    if (auto* screen = window_.opened<realtime::Realtime>()) screen->open_log(path);
}

void StartDesk::open_plan(const QString& name) {
    window_.open_screen(QStringLiteral("program"));
    if (auto* screen = window_.opened<plans::ProgramSet>()) screen->show_plan(name);
}

}  // namespace m47::shell
