// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QMap>
#include <QTemporaryDir>
#include <cmath>
#include <memory>

#include "database.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link.h"
#include "realtime_rules.h"
#include "virtual_clock.h"

namespace m47::realtime {

/// A fake port that also tells how long the program paused between one command and the next: every
/// command opens the port at its start and closes it at its end.
class TimedPort : public FakePort {
  public:
    explicit TimedPort(VirtualClock& clock) : FakePort(clock), clock_(clock) {}

    bool open() override {
        pauses += clock_.elapsed() - closed_at_;
        return FakePort::open();
    }
    void close() override {
        FakePort::close();
        closed_at_ = clock_.elapsed();
    }

    /// Seconds before each opening since the last close, the first from the start of the test.
    QList<double> pauses;

  private:
    VirtualClock& clock_;
    double closed_at_ = 0;
};

/// While it lives numbers are written the way of `language`.
class SystemLocale {
  public:
    explicit SystemLocale(QLocale::Language language) { QLocale::setDefault(QLocale(language)); }
    ~SystemLocale() { QLocale::setDefault(before_); }
    SystemLocale(const SystemLocale&) = delete;
    SystemLocale& operator=(const SystemLocale&) = delete;

  private:
    QLocale before_;
};

/// The real-time rules on a link to a meter that the test scripts, and a database file of their
/// own with the plan "PLAN 1" of one empty program.
class RealtimeFixture {
  public:
    RealtimeFixture() : database_(make_database(folder_)), rules(link, program, *database_) {
        link.port_connected = true;
        link.port_number = 2;
        port.answer = [this](const QByteArray& command) { return answer(command); };
    }

    VirtualClock clock;
    TimedPort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};
    ProgramState program;

    /// The value that the meter answers to a query; a query without one ends the test program.
    QMap<QByteArray, QByteArray> values;
    /// The whole answer to a command, where it is not of the usual form.
    QMap<QByteArray, QByteArray> raw;
    /// Called with each command as it arrives at the meter.
    std::function<void(const QByteArray& command)> on_command;

  private:
    QTemporaryDir folder_;
    std::unique_ptr<db::Database> database_;

  public:
    RealtimeRules rules;

    RealtimePanel& panel() { return rules.panel; }
    RealtimeState& state() { return rules.state; }
    db::Database& database() { return *database_; }
    QString path(const QString& name) const { return folder_.filePath(name); }

    QStringList commands() { return port.take_commands(); }

    /// The pauses before the commands, in tenths of a second.
    QList<int> pauses() const {
        QList<int> tenths;
        for (const double pause : port.pauses) tenths += static_cast<int>(std::lround(pause * 10));
        return tenths;
    }

    /// The meter does not understand `command`, however often it is repeated.
    void refuse(const QByteArray& command) { raw[command] = command + "\rCOMMAND ERROR\r"; }

    /// Appends a row with the given fields.
    static void add_row(db::Recordset& set, const QMap<QString, QVariant>& fields) {
        set.add_new();
        write(set, fields);
    }

    /// Changes fields of the current row; a null QVariant empties one.
    static void change_row(db::Recordset& set, const QMap<QString, QVariant>& fields) {
        set.edit();
        write(set, fields);
    }

  private:
    static void write(db::Recordset& set, const QMap<QString, QVariant>& fields) {
        for (auto field = fields.begin(); field != fields.end(); ++field)
            set.set(field.key(), field.value());
        set.update();
    }

    static std::unique_ptr<db::Database> make_database(const QTemporaryDir& folder) {
        const QString file = folder.filePath(QString::fromLatin1(db::kDatabaseFile));
        db::DatabaseError error{};
        std::unique_ptr<db::Database> database;
        if (db::Database::create(file, error)) database = db::Database::open(file, error);
        if (!database) qFatal("no database: %s", qPrintable(error.detail));
        return database;
    }

    QByteArray answer(const QByteArray& command) const {
        // A lone CR wakes the meter and is no command.
        if (command.isEmpty()) return {};
        if (on_command) on_command(command);
        if (raw.contains(command)) return raw[command];
        if (!command.contains('?')) return FakePort::good(command);
        if (!values.contains(command)) qFatal("no value for the query %s", command.constData());
        return FakePort::good(command, values[command]);
    }
};

/// True when `body` ends in a Fault.
template <class Body>
bool faults(Body body) {
    try {
        body();
    } catch (const Fault&) {
        return true;
    }
    return false;
}

}  // namespace m47::realtime
