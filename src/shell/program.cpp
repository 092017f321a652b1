// SPDX-License-Identifier: GPL-3.0-or-later
#include "program.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>
#include <chrono>
#include <utility>

#include "asl.h"
#include "handler.h"
#include "manual_page.h"
#include "message_box.h"
#include "program_set.h"
#include "real_port.h"
#include "realtime.h"
#include "screen_table.h"

namespace m47::shell {
namespace {

constexpr QSize kWindowSize(1100, 720);
constexpr std::chrono::seconds kDeviceWatchInterval{1};

/// Timers rest while a handler waits for the meter.
constexpr std::chrono::milliseconds kOnceFree{1};

constexpr Bilingual kClosesLater{"It closes when the work at the meter has ended.",
                                 "Si chiude quando il lavoro con lo strumento è finito."};
constexpr Bilingual kStopped{"Stopped: %1.", "Fermato: %1."};

constexpr Bilingual kDeviceIsBack{
    "The device %1 is there again: \"Reconnect\" in the menu connects it.",
    "Il dispositivo %1 è di nuovo presente: \"Ricollega\" nel menu lo collega."};

constexpr Bilingual kOtherDevice{
    "Another device than before stands behind %1, or it was plugged in anew. Check that it is the "
    "right meter.",
    "Dietro %1 c'è un dispositivo diverso da prima, oppure è stato ricollegato. Verificare che lo "
    "strumento sia quello giusto."};

constexpr Bilingual kNoPortYet{
    "No port has been chosen: choose the one of the meter with \"RS232 Port Selection\" (Ctrl+6).",
    "Nessuna porta scelta: scegliere quella dello strumento con \"RS232 Port Selection\" "
    "(Ctrl+6)."};
constexpr Bilingual kSilentMeter{
    "%1 (port %2) can be used, but no meter answers there. See that it is switched on, that the "
    "cable is plugged in at both ends and that it is the right port, then reconnect.",
    "%1 (porta %2) è utilizzabile, ma nessuno strumento risponde. Verificare che sia acceso, che "
    "il cavo sia collegato ai due capi e che la porta sia quella giusta, poi ricollegare."};
constexpr Bilingual kNothingSent{
    "Nothing was sent: no meter is connected. Choose its port (Ctrl+6).",
    "Nulla è stato inviato: nessuno strumento collegato. Scegliere la sua porta (Ctrl+6)."};

constexpr Bilingual kManualTitle{"Manual", "Manuale"};
constexpr Bilingual kNoReader{"No program of this computer opens %1.",
                              "Nessun programma di questo computer apre %1."};

bool user_asked_for_it() {
    return running_handler() && is_of_user(running_handler());
}

QStringList usual_manual_folders() {
    return manual_folders(QCoreApplication::applicationDirPath());
}

}  // namespace

Program::Program(ProgramState& state, std::unique_ptr<db::Database> database, link::PortList ports,
                 link::RealClock::TimeOfDay time_of_day)
    : Program(state, std::move(database), std::move(ports),
              std::make_unique<link::RealClock>(std::move(time_of_day)),
              std::make_unique<link::RealPort>()) {}

Program::Program(ProgramState& state, std::unique_ptr<db::Database> database, link::PortList ports,
                 std::unique_ptr<link::Clock> clock, std::unique_ptr<link::SerialPort> port)
    : state_(state),
      database_(std::move(database)),
      sites_(state.sites_file),
      visit_(sites_),
      window_(state),
      connection_(state, std::move(ports), std::move(clock), std::move(port), window_.status(),
                  window_),
      recording_(connection_.recorder(), state.texts),
      recording_command_(recording_, state, window_),
      problem_command_(state, connection_, *database_, recording_, window_),
      start_(window_, connection_, state, *database_),
      import_(*database_, link(), state, window_),
      identify_(state, link(), *database_, window_),
      visit_command_(visit_, sites_, state, link(), window_) {
    // The logger's temporary file has no name yet, and message 0 is composed with that.
    state_.texts.load_messages(state_.temp_file_name);
    tell_faults_in(&state_.texts);
    window_.status().reason = [this] { return link_fault(); };
    add_screens();
    connect_connection();
    connect_activity();
    QObject::connect(&window_, &M47MDI::texts_shown, &start_, &StartDesk::show_texts);
    on(&start_, &StartDesk::manual_asked, &window_, "start_manual_Click",
       [this] { open_manual(usual_manual_folders(), QStringLiteral("index")); });
    on(&window_, &M47MDI::import_asked, &window_, "cmdimportdb_Click", [this] {
        import_.cmdimportdb_Click();
        if (auto* screen = window_.opened<plans::ProgramSet>()) screen->database_changed();
    });
    on(&window_, &M47MDI::identify_asked, &window_, "cmdidentify_Click",
       [this] { identify_.cmdidentify_Click(); });
    connect_visit();
    on(&window_, &M47MDI::trace_asked, &window_, "cmdtrace_Click",
       [this] { recording_command_.cmdtrace_Click(); });
    on(&window_, &M47MDI::replay_asked, &window_, "cmdreplay_Click",
       [this] { start_.cmdreplay_Click(); });
    on(&window_, &M47MDI::problem_asked, &window_, "cmdproblem_Click",
       [this] { problem_command_.cmdproblem_Click(); });
    QObject::connect(&window_, &M47MDI::texts_shown, &window_,
                     [this] { recording_command_.show_texts(); });
    on(&window_, &M47MDI::manual_asked, &window_, "cmdmanual_Click", [this] { cmdmanual_Click(); });
    help_key_ = std::make_unique<HelpKey>(
        window_, [this](const QString& page) { open_manual(usual_manual_folders(), page); });
    window_.status().show_reason();
    window_.restore_place(kWindowSize);
}

std::optional<Said> Program::left_off() const {
    const std::optional<Said>& told = connection_.link().left_off;
    if (told) return told;
    const auto* screen = window_.opened<realtime::Realtime>();
    return screen ? screen->acquisition.running() : std::nullopt;
}

Program::~Program() {
    link().on_unsent = nullptr;
    link().on_refused = nullptr;
    window_.status().busy().on_close_put_off = nullptr;
    window_.status().busy().on_closing_now = nullptr;
    link().activity.on_change = nullptr;
    link().activity.on_stopped = nullptr;
    tell_faults_in(nullptr);
}

void Program::connect_connection() {
    connection_.identification().on_picked = [this] {
        watch_.reset();
        window_.allow_reconnect();
        start_.port_picked();
        // Picking a port chooses English.
        window_.show_texts();
    };
    // Its unit need not be that of the one before.
    connection_.identification().on_connected = [this] {
        if (auto* screen = window_.opened<realtime::Realtime>()) screen->meter_came();
    };
    connection_.identification().on_another_device = [this] { another_device(); };
    on(&window_, &M47MDI::reconnect_asked, &window_, "cmdreconnect_Click", [this] { reconnect(); });
    QObject::connect(&watch_timer_, &QTimer::timeout, &window_, [this] { watch_device(); });
    watch_timer_.start(kDeviceWatchInterval);
}

void Program::connect_visit() {
    on(&window_, &M47MDI::visit_asked, &window_, "cmdvisit_Click",
       [this] { visit_command_.cmdvisit_Click(); });
    on(&window_, &M47MDI::end_visit_asked, &window_, "cmdendvisit_Click",
       [this] { visit_command_.cmdendvisit_Click(); });
    on(&window_, &M47MDI::import_log_asked, &window_, "cmdimportlog_Click",
       [this] { visit_command_.cmdimportlog_Click(); });
    QObject::connect(&window_, &M47MDI::texts_shown, &window_,
                     [this] { visit_command_.show_texts(); });
    visit_command_.show_texts();
}

void Program::connect_activity() {
    link().on_refused = [this] { window_.show_notice(link_fault()); };
    link().on_unsent = [this] {
        if (!user_asked_for_it()) return;
        window_.show_remark(state_.texts.pick(kNothingSent));
    };
    link::Activity& activity = link().activity;
    activity.on_change = [this, &activity] { window_.show_activity(activity); };
    activity.on_stopped = [this](const Said& how_far) {
        window_.show_remark(Said{kStopped, {how_far.in(state_.texts)}}.in(state_.texts));
    };
    window_.status().busy().on_close_put_off = [this, &activity] {
        if (activity.ends_with_window()) return activity.stop();
        window_.show_remark(state_.texts.pick(kClosesLater));
    };
    window_.status().busy().on_closing_now = [this] {
        window_.end_remark(state_.texts.pick(kClosesLater));
    };
    on(&window_, &M47MDI::stop_asked, &window_, "activity_stop_Click",
       [this] { activity_stop_Click(); });
}

/// It comes in the middle of an exchange too: a run without work in hand is left to the end of the
/// handler that waits.
void Program::activity_stop_Click() {
    if (link().activity.working() || !window_.status().pumping()) return link().activity.stop();
    QTimer::singleShot(kOnceFree, &window_, [this] { link().activity.stop(); });
}

QString Program::link_fault() const {
    if (watch_.came_back()) return state_.texts.pick(kDeviceIsBack).arg(connection_.device());
    const QString fault = connection_.fault();
    const int port = connection_.link().port_number;
    if (!fault.isEmpty()) return fault;
    if (port == 0) return state_.texts.pick(kNoPortYet);
    return Said{kSilentMeter, {connection_.device(), QString::number(port)}}.in(state_.texts);
}

void Program::reconnect() {
    watch_.reset();
    connection_.reconnect();
}

void Program::another_device() {
    window_.show_notice(state_.texts.pick(kOtherDevice).arg(connection_.device()));
    state_.master_copy.clear();
    if (auto* screen = window_.opened<asl::Asl>()) screen->another_meter();
}

void Program::watch_device() {
    start_.look_at_link();
    const QString& device = connection_.device();
    if (device.isEmpty() || link().port_connected) return;
    if (watch_.look(QFileInfo::exists(device))) window_.status().show_reason();
}

void Program::cmdmanual_Click() {
    open_manual(usual_manual_folders());
}

void Program::open_manual(const QStringList& folders, const QString& name) {
    const QString of_screen = manual_page_name(window_.front_key());
    const QString page = find_manual_page(folders, name.isEmpty() ? of_screen : name, state_.texts);
    if (!page.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(page))) return;
    show_message_box(&window_, QMessageBox::Warning, state_.texts.pick(kManualTitle),
                     page.isEmpty() ? manual_missing_text(folders, state_.texts)
                                    : state_.texts.pick(kNoReader).arg(page));
}

void Program::add_screens() {
    const ScreenParts parts{window_, connection_, state_, *database_,
                            start_,  sites_,      visit_, band_};
    for (const ScreenEntry& screen : screen_table())
        window_.add_screen(QString::fromLatin1(screen.key),
                           [parts, make = screen.make] { return make(parts); });
}

}  // namespace m47::shell
