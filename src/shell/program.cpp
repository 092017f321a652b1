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
      window_(state),
      connection_(state, std::move(ports), std::move(clock), std::move(port), window_.status(),
                  window_),
      import_(*database_, link(), state, window_) {
    // The logger's temporary file has no name yet, and message 0 is composed with that.
    state_.texts.load_messages(state_.temp_file_name);
    tell_faults_in(&state_.texts);
    window_.status().reason = [this] { return link_fault(); };
    add_screens();
    connect_connection();
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
    const std::optional<Said>& told = connection_.link().left_off;
    if (told) return told;
    const auto* screen = qobject_cast<Realtime*>(window_.screen_of(QStringLiteral("realtime")));
    return screen ? screen->acquisition.running() : std::nullopt;
}

Program::~Program() {
    tell_faults_in(nullptr);
}

void Program::connect_connection() {
    connection_.identification().on_picked = [this] {
        watch_.reset();
        window_.allow_reconnect();
        // Picking a port chooses English.
        window_.show_texts();
    };
    on(&window_, &M47MDI::reconnect_asked, &window_, "cmdreconnect_Click", [this] { reconnect(); });
    QObject::connect(&watch_timer_, &QTimer::timeout, &window_, [this] { watch_device(); });
    watch_timer_.start(kDeviceWatchInterval);
}

QString Program::link_fault() const {
    if (watch_.came_back()) return state_.texts.pick(kDeviceIsBack).arg(connection_.device());
    return connection_.fault();
}

void Program::reconnect() {
    watch_.reset();
    connection_.reconnect();
}

void Program::watch_device() {
    const QString& device = connection_.device();
    if (device.isEmpty() || link().port_connected) return;
    if (watch_.look(QFileInfo::exists(device))) window_.status().show_reason();
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

void Program::add_screens() {
    add_screen<ProgramSet>("program", [this] {
        auto* screen = new ProgramSet(link(), state_, *database_);
        QObject::connect(screen, &ProgramSet::upload_state, &window_, &M47MDI::show_upload);
        return screen;
    });
    add_screen<Realtime>("realtime", [this] {
        auto* screen = new Realtime(std::make_unique<RealtimeRules>(link(), state_, *database_));
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
        auto* screen = new Download(link(), state_);
        QObject::connect(screen, &Download::progress, &window_, &M47MDI::show_progress);
        return screen;
    });
    add_screen<Asl>("asl", [this] { return new Asl(link(), state_, database_->asl()); });
    add_screen<ConfigSet>("configurazione", [this] { return new ConfigSet(link(), state_.texts); });
    add_screen<PortSetting>("setport", [this] {
        return new PortSetting(connection_.identification(), connection_.ports());
    });
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
