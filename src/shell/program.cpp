// SPDX-License-Identifier: GPL-3.0-or-later
#include "program.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QScreen>
#include <QUrl>
#include <chrono>

#include "asl.h"
#include "config_set.h"
#include "download.h"
#include "handler.h"
#include "manual_page.h"
#include "message_box.h"
#include "port_diagnosis.h"
#include "port_setting.h"
#include "program_set.h"
#include "real_port.h"
#include "realtime.h"

namespace m47 {
namespace {

constexpr QSize kWindowSize(1100, 720);
constexpr std::chrono::seconds kDeviceWatchInterval{1};

constexpr Bilingual kDeviceIsBack{
    "The device %1 is there again: \"Reconnect\" in the menu connects it.",
    "Il dispositivo %1 è di nuovo presente: \"Reconnect\" nel menu lo collega."};

constexpr Bilingual kNoRow{"No row: doubtful answer", "Nessuna riga: risposta dubbia"};
constexpr Bilingual kCutShort{"Pass cut short", "Giro interrotto"};
constexpr Bilingual kManualTitle{"Manual", "Manuale"};
constexpr Bilingual kNoReader{"No program of this computer opens %1.",
                              "Nessun programma di questo computer apre %1."};

/// The child view that holds `screen` closes with it.
template <class Screen>
void close_on_exit(Screen* screen) {
    QObject::connect(screen, &Screen::exit_asked, screen, [screen] {
        if (QWidget* view = screen->parentWidget()) view->close();
    });
}

}  // namespace

Program::Program(ProgramState& state, std::unique_ptr<Database> database, PortList ports,
                 RealClock::TimeOfDay time_of_day)
    : Program(state, std::move(database), std::move(ports),
              std::make_unique<RealClock>(std::move(time_of_day)), std::make_unique<RealPort>()) {}

Program::Program(ProgramState& state, std::unique_ptr<Database> database, PortList ports,
                 std::unique_ptr<Clock> clock, std::unique_ptr<SerialPort> port)
    : state_(state),
      database_(std::move(database)),
      ports_(std::move(ports)),
      clock_(std::move(clock)),
      port_(std::move(port)),
      window_(state),
      link_(*port_, *clock_, window_.status()),
      identification_(link_, state.texts, ports_, window_),
      import_(*database_, link_, state, window_) {
    // The logger's temporary file has no name yet, and message 0 is composed with that.
    state_.texts.load_messages(state_.temp_file_name);
    tell_faults_in(&state_.texts);
    window_.status().reason = [this] { return link_fault(); };
    add_screens();
    identification_.on_picked = [this] {
        watch_.reset();
        window_.allow_reconnect();
        // Picking a port chooses English.
        window_.show_texts();
    };
    identification_.claim = [this](const QString& device) { return claim_.take(device); };
    identification_.on_version = [this](const QString& version) { state_.meter_version = version; };
    on(&window_, &M47MDI::reconnect_asked, &window_, "cmdreconnect_Click", [this] { reconnect(); });
    QObject::connect(&watch_timer_, &QTimer::timeout, &window_, [this] { watch_device(); });
    watch_timer_.start(kDeviceWatchInterval);
    on(&window_, &M47MDI::import_asked, &window_, "cmdimportdb_Click", [this] {
        import_.cmdimportdb_Click();
        const QString plans = QStringLiteral("program");
        if (auto* screen = qobject_cast<ProgramSet*>(window_.screen_of(plans)))
            screen->database_changed();
    });
    on(&window_, &M47MDI::manual_asked, &window_, "cmdmanual_Click", [this] { cmdmanual_Click(); });
    window_.resize(kWindowSize.boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    window_.restore_place();
}

std::optional<Said> Program::left_off() const {
    if (link_.left_off) return link_.left_off;
    const auto* screen = qobject_cast<Realtime*>(window_.screen_of(QStringLiteral("realtime")));
    return screen ? screen->acquisition.running() : std::nullopt;
}

Program::~Program() {
    tell_faults_in(nullptr);
}

QString Program::link_fault() const {
    if (watch_.came_back()) return state_.texts.pick(kDeviceIsBack).arg(identification_.device());
    if (claim_.holder()) return claim_text(*claim_.holder(), port_->path(), state_.texts);
    return port_fault_text(port_->fault(), port_->path(), state_.texts);
}

void Program::identify(int number) {
    ports_.refresh();
    identification_.porta_Click(number - 1);
}

bool Program::reconnect() {
    watch_.reset();
    identification_.reconnect();
    return link_.port_connected;
}

void Program::watch_device() {
    if (identification_.device().isEmpty() || link_.port_connected) return;
    if (watch_.look(QFileInfo::exists(identification_.device()))) window_.status().show_reason();
}

void Program::cmdmanual_Click() {
    open_manual(manual_folders(QCoreApplication::applicationDirPath()));
}

void Program::open_manual(const QStringList& folders) {
    const QString page =
        find_manual_page(folders, manual_page_name(window_.front_key()), state_.texts);
    if (!page.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(page))) return;
    show_message_box(&window_, QMessageBox::Warning, state_.texts.pick(kManualTitle),
                     page.isEmpty() ? manual_missing_text(folders, state_.texts)
                                    : state_.texts.pick(kNoReader).arg(page));
}

Realtime* Program::make_realtime(QWidget* parent) {
    return new Realtime(std::make_unique<RealtimeRules>(link_, state_, *database_), parent);
}

void Program::add_screens() {
    add_screen<ProgramSet>("program", [this] {
        auto* screen = new ProgramSet(link_, state_, *database_);
        QObject::connect(screen, &ProgramSet::upload_state, &window_, &M47MDI::show_upload);
        return screen;
    });
    add_screen<Realtime>("realtime", [this] {
        Realtime* screen = make_realtime(nullptr);
        QObject::connect(screen, &Realtime::progress, &window_, &M47MDI::show_progress);
        // No box: nobody may be there, and the next pass is not to wait for one.
        QObject::connect(screen, &Realtime::cut_short, &window_, [this](const QString& reason) {
            window_.show_upload(state_.texts.pick(kCutShort), reason);
        });
        QObject::connect(screen, &Realtime::left_out, &window_, &M47MDI::show_notice);
        QObject::connect(screen, &Realtime::no_row, &window_, [this](const QString& command) {
            window_.show_notice(QStringLiteral("%1 (%2)").arg(state_.texts.pick(kNoRow), command));
        });
        QObject::connect(screen, &QObject::destroyed, &window_,
                         [this] { window_.show_progress(QString()); });
        return screen;
    });
    add_screen<Download>("download", [this] {
        auto* screen = new Download(link_, state_);
        QObject::connect(screen, &Download::progress, &window_, &M47MDI::show_progress);
        return screen;
    });
    add_screen<Asl>("asl", [this] { return new Asl(link_, state_, database_->asl()); });
    add_screen<ConfigSet>("configurazione", [this] { return new ConfigSet(link_, state_.texts); });
    add_screen<PortSetting>("setport", [this] { return new PortSetting(identification_, ports_); });
}

template <class Screen, class Make>
void Program::add_screen(const char* key, Make make) {
    window_.add_screen(QString::fromLatin1(key),
                       {.create =
                            [make] {
                                Screen* screen = make();
                                close_on_exit(screen);
                                return screen;
                            },
                        .load = [](QWidget* screen) { static_cast<Screen*>(screen)->Form_Load(); },
                        .activate =
                            [](QWidget* screen) {
                                if constexpr (requires(Screen & one) { one.Form_Activate(); })
                                    static_cast<Screen*>(screen)->Form_Activate();
                            }});
}

}  // namespace m47
