// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include <QCoreApplication>
#include <cstdio>
#include <memory>

#include "alone.h"
#include "database_error.h"
#include "end_signals.h"
#include "last_resort.h"
#include "program_state.h"
#include "say_on_stderr.h"
#include "standard_streams.h"

namespace m47::probe {
namespace {

/// False when the text did not get out whole.
bool print(std::FILE* stream, const QString& text) {
    return std::fprintf(stream, "%s\n", text.toLocal8Bit().constData()) >= 0 &&
           std::fflush(stream) == 0;
}

std::unique_ptr<db::Database> open_database(const ProgramState& state,
                                            const unattended::Options& options) {
    const QString& path = state.database_file;
    db::DatabaseError error{};
    std::unique_ptr<db::Database> database;
    if (!options.create_database || db::Database::create(path, error))
        database = db::Database::open(path, error);
    if (!database)
        unattended::say_on_stderr(db::database_error_text(error, state.texts),
                                  unattended::Subsystem::kStart);
    return database;
}

int run_with_options(int argc, char** argv, const unattended::Options& options) {
    platform::listen_to_end_signals();
    unattended::listen_to_messages();
    const QCoreApplication application(argc, argv);
    // What is the user's own is that of both programs.
    QCoreApplication::setApplicationName(QStringLiteral("m47-remote"));
    QCoreApplication::setApplicationVersion(QStringLiteral(M47_VERSION));
    ProgramState state;
    state.texts.language = kEnglish;
    if (const auto fault = unattended::take_files(state, options)) {
        unattended::say_on_stderr(fault->text, unattended::Subsystem::kStart);
        return fault->status;
    }
    unattended::choose(state, options);
    const std::unique_ptr<db::Database> database = open_database(state, options);
    if (!database)
        return platform::times_told_to_end() > 0 ? platform::end_signal_status()
                                                 : unattended::kDatabase;
    return unattended::measure_alone(state, database.get(), options, {});
}

}  // namespace

int run_probe(int argc, char** argv) {
    platform::occupy_closed_streams();
    platform::let_writes_fail();
    unattended::speak_as("m47-probe");
    const unattended::Offer offer{.program = QStringLiteral("m47-probe"), .only_measures = true};
    QStringList words;
    for (int place = 1; place < argc; ++place) words.append(QString::fromLocal8Bit(argv[place]));
    const unattended::Options options = unattended::parse_options(words, offer);
    switch (options.action) {
        case unattended::Options::Action::help:
            return print(stdout, unattended::help_text(offer).trimmed()) ? unattended::kGood
                                                                         : unattended::kOutputLost;
        case unattended::Options::Action::version:
            return print(stdout, QStringLiteral("m47-probe " M47_VERSION))
                       ? unattended::kGood
                       : unattended::kOutputLost;
        case unattended::Options::Action::wrong:
            print(stderr, QStringLiteral("m47-probe: ") + options.error);
            return unattended::kUsage;
        case unattended::Options::Action::check:
            return unattended::tell_faults(options);
        case unattended::Options::Action::run:
            break;
    }
    return unattended::with_last_resort([&] { return run_with_options(argc, argv, options); });
}

}  // namespace m47::probe
