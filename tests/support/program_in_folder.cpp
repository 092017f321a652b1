// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_in_folder.h"

#include <QTest>

#include "virtual_clock.h"

namespace m47 {

void ProgramInFolder::new_folder(const QString& pattern) {
    program_.reset();
    folder_ = pattern.isEmpty() ? std::make_unique<QTemporaryDir>()
                                : std::make_unique<QTemporaryDir>(pattern);
    if (!folder_->isValid()) qFatal("no folder: %s", qPrintable(folder_->errorString()));
    forget_state();
}

void ProgramInFolder::start_program(const QSize& size, const link::PortList& ports,
                                    link::RealClock::TimeOfDay time_of_day) {
    program_ =
        std::make_unique<shell::Program>(state_, open_database(), ports, std::move(time_of_day));
    show_window(size);
}

void ProgramInFolder::start_program(const QSize& size, const link::PortList& ports,
                                    std::unique_ptr<link::Clock> clock,
                                    std::unique_ptr<link::SerialPort> port) {
    program_ = std::make_unique<shell::Program>(state_, open_database(), ports, std::move(clock),
                                                std::move(port));
    show_window(size);
}

FakePort& ProgramInFolder::start_on_fake_line(const QSize& size,
                                              const std::function<void(FakePort&)>& set_up) {
    auto clock = std::make_unique<VirtualClock>();
    auto line = std::make_unique<FakePort>(*clock);
    FakePort& port = *line;
    set_up(port);
    link::PortList ports;
    if (!ports.add(QStringLiteral("1=/dev/no-such-meter"))) qFatal("no port");
    start_program(size, ports, std::move(clock), std::move(line));
    program_->identify(1);
    if (!program_->link().port_connected) qFatal("the meter on the line was not identified");
    return port;
}

FakePort& ProgramInFolder::start_at_one_level(const QSize& size) {
    return start_on_fake_line(size, [](FakePort& line) {
        line.answer = [](const QByteArray& command) {
            if (command == "LEVANL?") return FakePort::good(command, "L 58.3");
            return FakePort::good(command, command.endsWith('?') ? "0" : "");
        };
    });
}

void ProgramInFolder::end_program() {
    program_.reset();
    forget_state();
}

void ProgramInFolder::forget_state() {
    state_ = ProgramState();
    if (!folder_) return;
    state_.base_dir = folder_with_separator(folder());
    state_.sites_file = state_.base_dir + QLatin1String(sites::kSitesFile);
}

std::unique_ptr<db::Database> ProgramInFolder::open_database() const {
    const QString file = state_.base_dir + QLatin1String(db::kDatabaseFile);
    db::DatabaseError error{};
    if (!db::Database::create(file, error)) qFatal("no database: %s", qPrintable(error.detail));
    auto database = db::Database::open(file, error);
    if (!database) qFatal("the database does not open: %s", qPrintable(error.detail));
    return database;
}

void ProgramInFolder::show_window(const QSize& size) {
    if (size.isValid()) window().resize(size);
    window().show();
    QVERIFY(QTest::qWaitForWindowExposed(&window()));
}

}  // namespace m47
