// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_in_folder.h"

#include <QTest>

namespace m47 {

void ProgramInFolder::new_folder(const QString& pattern) {
    program_.reset();
    folder_ = pattern.isEmpty() ? std::make_unique<QTemporaryDir>()
                                : std::make_unique<QTemporaryDir>(pattern);
    if (!folder_->isValid()) qFatal("no folder: %s", qPrintable(folder_->errorString()));
    forget_state();
}

void ProgramInFolder::start_program(const QSize& size, const PortList& ports,
                                    RealClock::TimeOfDay time_of_day) {
    program_ = std::make_unique<Program>(state_, open_database(), ports, std::move(time_of_day));
    show_window(size);
}

void ProgramInFolder::start_program(const QSize& size, const PortList& ports,
                                    std::unique_ptr<Clock> clock,
                                    std::unique_ptr<SerialPort> port) {
    program_ = std::make_unique<Program>(state_, open_database(), ports, std::move(clock),
                                         std::move(port));
    show_window(size);
}

void ProgramInFolder::end_program() {
    program_.reset();
    forget_state();
}

void ProgramInFolder::forget_state() {
    state_ = ProgramState();
    if (folder_) state_.base_dir = folder_with_separator(folder());
}

std::unique_ptr<Database> ProgramInFolder::open_database() const {
    const QString file = state_.base_dir + QLatin1String(kDatabaseFile);
    DatabaseError error{};
    if (!Database::create(file, error)) qFatal("no database: %s", qPrintable(error.detail));
    auto database = Database::open(file, error);
    if (!database) qFatal("the database does not open: %s", qPrintable(error.detail));
    return database;
}

void ProgramInFolder::show_window(const QSize& size) {
    if (size.isValid()) window().resize(size);
    window().show();
    QVERIFY(QTest::qWaitForWindowExposed(&window()));
}

}  // namespace m47
