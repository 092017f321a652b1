// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "fake_port.h"
#include "program.h"

namespace m47 {

/// The whole program in a folder of its own, its window shown: what a test of screens begins with.
/// A test class inherits it beside QObject.
class ProgramInFolder {
  public:
    ProgramInFolder(const ProgramInFolder&) = delete;
    ProgramInFolder& operator=(const ProgramInFolder&) = delete;

  protected:
    ProgramInFolder() = default;
    ~ProgramInFolder() = default;

    /// An empty folder, made by `pattern` as QTemporaryDir takes it; the folder before it is
    /// removed. A program that runs is ended.
    void new_folder(const QString& pattern = QString());

    /// Starts the program in the folder and waits until its window is to be seen; without a `size`
    /// it has the one it gives itself. Makes the database where there is none. What is put
    /// into `program_state` before, the program finds there.
    void start_program(const QSize& size = QSize(), const link::PortList& ports = link::PortList(),
                       link::RealClock::TimeOfDay time_of_day = platform::local_time_of_day);
    /// The same on another time and line than those of this machine.
    void start_program(const QSize& size, const link::PortList& ports,
                       std::unique_ptr<link::Clock> clock, std::unique_ptr<link::SerialPort> port);

    /// The same on a virtual clock and a line that answers at once what `set_up` lets it answer;
    /// the meter on it is identified. The line, which the program owns.
    FakePort& start_on_fake_line(const QSize& size, const std::function<void(FakePort&)>& set_up);
    /// On such a line a meter at 58.3 of whatever unit.
    FakePort& start_at_one_level(const QSize& size);

    /// Ends the program, if one runs, and forgets its state. The folder stays, for the next run.
    void end_program();

    bool is_running() const { return program_ != nullptr; }
    shell::Program& program() { return *program_; }
    shell::M47MDI& window() { return program_->window(); }
    ProgramState& program_state() { return state_; }
    QString folder() const { return folder_->path(); }
    QString in_folder(const QString& name) const { return folder_->filePath(name); }

    /// The control `name` of the window, or of `in`; ends the test where there is none.
    template <class Kind>
    Kind* find(const char* name, QObject* in = nullptr) {
        auto* found = (in ? in : &window())->findChild<Kind*>(QString::fromLatin1(name));
        if (!found) qFatal("no %s", name);
        return found;
    }

  private:
    void forget_state();
    std::unique_ptr<db::Database> open_database() const;
    void show_window(const QSize& size);

    std::unique_ptr<QTemporaryDir> folder_;
    ProgramState state_;
    std::unique_ptr<shell::Program> program_;
};

}  // namespace m47
