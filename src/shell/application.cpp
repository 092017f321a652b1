// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"

#include <QApplication>
#include <cstdio>
#include <optional>

#include "alone.h"
#include "busy_style.h"
#include "database_error.h"
#include "display.h"
#include "end_signals.h"
#include "fault.h"
#include "handler.h"
#include "icons.h"
#include "import_command.h"
#include "last_resort.h"
#include "message_box.h"
#include "no_database.h"
#include "no_view.h"
#include "old_reader.h"
#include "plan_commands.h"
#include "program.h"
#include "real_clock.h"
#include "real_port.h"
#include "run_picture.h"
#include "say_on_stderr.h"
#include "screen_table.h"
#include "standard_streams.h"
#include "system_time.h"
#include "unattended_identify.h"
#include "unattended_peak.h"
#include "unattended_sweep.h"
#include "window_end.h"

namespace m47::shell {
namespace {

/// Last resort: a fault that reaches the event loop ends its event, not the program.
class GuardedApplication : public QApplication {
  public:
    GuardedApplication(int& argc, char** argv) : QApplication(argc, argv) {
        setDesktopFileName(QStringLiteral(M47_APP_ID));
    }
    bool notify(QObject* receiver, QEvent* event) override {
        bool handled = false;
        run_trapped(activeWindow(), receiver->metaObject()->className(),
                    [&] { handled = QApplication::notify(receiver, event); });
        return handled;
    }
};

/// False when the text did not get out whole.
bool print(std::FILE* stream, const QString& text) {
    return std::fprintf(stream, "%s\n", text.toLocal8Bit().constData()) >= 0 &&
           std::fflush(stream) == 0;
}

/// The command line without the options of the window system, which QApplication reads itself.
QStringList own_arguments(int argc, char** argv) {
    static const QStringList kWithValue{
        QStringLiteral("-platform"), QStringLiteral("-style"),    QStringLiteral("-stylesheet"),
        QStringLiteral("-display"),  QStringLiteral("-geometry"), QStringLiteral("-platformtheme")};
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        const QString word = QString::fromLocal8Bit(argv[i]);
        if (kWithValue.contains(word))
            ++i;
        else
            arguments.append(word);
    }
    return arguments;
}

bool platform_chosen(int argc, char** argv) {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) return true;
    for (int i = 1; i < argc; ++i)
        if (QByteArray(argv[i]) == "-platform") return true;
    return false;
}

/// One clear message: on stderr always, in a box when somebody looks.
void tell(const QString& text, const unattended::Options& options) {
    unattended::say_on_stderr(text, unattended::Subsystem::kStart);
    if (!options.unattended())
        show_message_box(nullptr, QMessageBox::Critical, QStringLiteral("M47"), text);
}

/// Where it cannot be opened that is told; `can_be_made` when there is none and somebody can be
/// asked for one.
std::unique_ptr<db::Database> open_database(const ProgramState& state,
                                            const unattended::Options& options, bool& can_be_made) {
    const QString& path = state.database_file;
    db::DatabaseError error{};
    std::unique_ptr<db::Database> database;
    // Windows are shown first: database_is_sound() then.
    const auto open = options.unattended() ? db::Database::open : db::Database::open_unchecked;
    if (!options.create_database || db::Database::create(path, error)) database = open(path, error);
    if (database) return database;
    const QString text = db::database_error_text(error, state.texts);
    can_be_made = error.fault == db::DatabaseFault::missing && !options.unattended();
    if (can_be_made)
        unattended::say_on_stderr(text, unattended::Subsystem::kStart);
    else
        tell(text, options);
    return nullptr;
}

/// Without windows nothing of them is begun either, which saves time and memory.
std::unique_ptr<QCoreApplication> make_application(int& argc, char** argv,
                                                   const unattended::Options& options) {
    if (options.unattended() && options.screenshot.isEmpty())
        return std::make_unique<QCoreApplication>(argc, argv);
    return std::make_unique<GuardedApplication>(argc, argv);
}

/// What needs the meter and no window, nor the database but for the candidates of plans.
int meter_alone(ProgramState& state, const unattended::Options& options,
                const db::Database* database = nullptr) {
    unattended::NoView view;
    unattended::MeterConnection connection(
        state, unattended::ports_of(options),
        std::make_unique<link::RealClock>(platform::local_time_of_day),
        std::make_unique<link::RealPort>(), view, view);
    if (options.identify)
        return unattended::run_identification(state.texts, connection, options, database);
    if (options.peak_span) return unattended::run_peak(state.texts, connection, options);
    return unattended::run_sweep(state.texts, connection, options);
}

/// Told, and the end of the program, where it is not.
bool database_is_sound(Program& program, const unattended::Options& options) {
    const std::optional<db::DatabaseError> fault = program.database().check();
    if (!fault) return true;
    tell(db::database_error_text(*fault, program.state().texts), options);
    QApplication::exit(unattended::kDatabase);
    return false;
}

void begin_work(Program& program, const unattended::Options& options) {
    if (!database_is_sound(program, options)) return;
    // Before anybody can begin another one.
    program.look_for_visit();
    run_handler(&program.window(), "start", [&] {
        if (options.on_port > 0) program.identify(options.on_port);
        if (!options.replay.isEmpty()) program.start_desk().open_recording(options.replay);
        program.window().open_screen(options.open);
    });
    program.start_desk().open();
}

int run_windows(Program& program, const unattended::Options& options) {
    if (!options.trace.isEmpty()) program.recording().start(options.trace);
    // Checking a file and looking for devices takes longer than showing the window.
    QObject::connect(&program.window(), &M47MDI::painted, &program.window(),
                     [&program, &options] { begin_work(program, options); });
    program.window().show();
    const WindowEnd end(program);
    const int status = QApplication::exec();
    if (platform::times_told_to_end() > 0) return WindowEnd::tell(program);
    const bool recorded = options.trace.isEmpty() || !program.recording().lost();
    return status == unattended::kGood && !recorded ? unattended::kOutputLost : status;
}

/// The open database, of another folder where the user chose that; nullptr without one.
std::unique_ptr<db::Database> find_database(ProgramState& state,
                                            const unattended::Options& options) {
    bool can_be_made = false;
    if (auto database = open_database(state, options, can_be_made)) return database;
    return can_be_made ? ask_for_database(state) : nullptr;
}

/// Which options are wrong is for whoever has typed them.
void tell_start_fault(const unattended::StartFault& fault, const unattended::Options& options) {
    if (fault.status == unattended::kUsage)
        unattended::say_on_stderr(fault.text, unattended::Subsystem::kStart);
    else
        tell(fault.text, options);
}

unattended::Offer offer() {
    return {QStringLiteral("m47-remote"), screen_keys()};
}

int run_on_database(ProgramState& state, std::unique_ptr<db::Database> database,
                    const unattended::Options& options) {
    if (!options.import_database.isEmpty())
        return import_unattended(*database, options.import_database, state.texts);
    if (options.export_plan.asked()) return export_plan_unattended(*database, options, state.texts);
    if (options.import_plan.asked()) return import_plan_unattended(*database, options, state.texts);
    if (options.identify) return meter_alone(state, options, database.get());
    if (options.measure)
        return unattended::measure_alone(state, database.get(), options, write_run_picture);
    QApplication::setStyle(new BusyStyle);
    Program program(state, std::move(database), unattended::ports_of(options));
    return run_windows(program, options);
}

int run_with_options(int argc, char** argv, const unattended::Options& options) {
    platform::listen_to_end_signals();
    unattended::listen_to_messages();
    const std::unique_ptr<QCoreApplication> application = make_application(argc, argv, options);
    QCoreApplication::setApplicationName(QStringLiteral("m47-remote"));
    QCoreApplication::setApplicationVersion(QStringLiteral(M47_VERSION));
    ProgramState state;
    // What an unattended run says goes to a log, not to a screen.
    state.texts.language = options.unattended() ? kEnglish : kItalian;
    if (const std::optional<unattended::StartFault> fault =
            unattended::take_files(state, options)) {
        tell_start_fault(*fault, options);
        return fault->status;
    }
    if (!options.unattended()) state.preferences = Preferences(Preferences::usual_file());
    unattended::choose(state, options);
    // Even where no database can be opened.
    if (!options.problem_report.isEmpty() && !options.measure)
        return unattended::measure_alone(state, nullptr, options, write_run_picture);
    // Nothing of them is kept in the database.
    const bool tables = options.identify && !options.identify->plans;
    if (options.sweep || options.peak_span || tables) return meter_alone(state, options);
    if (auto database = find_database(state, options))
        return run_on_database(state, std::move(database), options);
    return platform::times_told_to_end() > 0 ? platform::end_signal_status()
                                             : unattended::kDatabase;
}

}  // namespace

int run_program(int argc, char** argv) {
    platform::occupy_closed_streams();
    if (argc == 2 && qstrcmp(argv[1], olddb::kReadOldDatabase) == 0) return olddb::run_old_reader();
    platform::let_writes_fail();
    const unattended::Options options =
        unattended::parse_options(own_arguments(argc, argv), offer());
    switch (options.action) {
        case unattended::Options::Action::help:
            return print(stdout, unattended::help_text(offer()).trimmed())
                       ? unattended::kGood
                       : unattended::kOutputLost;
        case unattended::Options::Action::version:
            return print(stdout, QStringLiteral("m47-remote " M47_VERSION))
                       ? unattended::kGood
                       : unattended::kOutputLost;
        case unattended::Options::Action::wrong:
            print(stderr, QStringLiteral("m47-remote: ") + options.error);
            return unattended::kUsage;
        case unattended::Options::Action::check:
            return unattended::tell_faults(options);
        case unattended::Options::Action::run:
            break;
    }
    if (!platform_chosen(argc, argv)) {
        if (options.unattended()) {
            // Nothing is shown, so a display that cannot be reached must not stop a measurement.
            qputenv("QT_QPA_PLATFORM", "offscreen");
        } else if (!display_reachable()) {
            print(stderr, QStringLiteral("m47-remote: there is no display; see --measure"));
            return unattended::kNoDisplay;
        }
    }
    return unattended::with_last_resort([&] { return run_with_options(argc, argv, options); });
}

}  // namespace m47::shell
