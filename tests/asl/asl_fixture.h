// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "database.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "instrument.h"
#include "link.h"
#include "satellite_lists.h"
#include "slot_backup.h"
#include "virtual_clock.h"

namespace m47::asl {

/// A user who answers what the test has laid ready and keeps a record of every box: what it was,
/// its title and its text.
class ScriptedUser : public AslQuestions {
  public:
    QStringList seen;
    bool says_ok = true;
    QString types;
    QString save_file;
    QString restore_file;
    bool restores = true;
    bool overwrites = true;
    RestorePlan plan;
    /// Runs while the user is asked whose satellite is to stay, or whether one goes.
    std::function<void()> on_overwrite;
    std::function<void()> on_confirm;
    /// Runs while the preview is open.
    std::function<void()> on_preview;

    bool confirm(const QString& title, const QString& text) override {
        seen += QStringLiteral("ok/cancel|") + title + u'|' + text;
        if (on_confirm) on_confirm();
        return says_ok;
    }
    bool erase(const QString& title, const QString& text, const QString& what_goes) override {
        seen += QStringLiteral("erase|") + title + u'|' + text + u'|' + what_goes;
        return says_ok;
    }
    QString input(const QString& title, const QString& text, const QString& proposal) override {
        seen += QStringLiteral("input|") + title + u'|' + text + u'|' + proposal;
        return types;
    }
    void warn(const QString& title, const QString& text) override {
        seen += QStringLiteral("exclamation|") + title + u'|' + text;
    }
    void inform(const QString& title, const QString& text) override {
        seen += QStringLiteral("information|") + title + u'|' + text;
    }
    bool overwrite(const ChangedSatellite& change) override {
        seen += (change.deletes ? QStringLiteral("delete|") : QStringLiteral("overwrite|")) +
                change.name + u'|' + change.stored + u'|' + change.own;
        if (on_overwrite) on_overwrite();
        return overwrites;
    }
    QString file_to_save() override { return save_file; }
    QString file_to_restore() override { return restore_file; }
    bool preview(const RestorePlan& shown) override {
        seen += QStringLiteral("preview");
        plan = shown;
        if (on_preview) on_preview();
        return restores;
    }
    QStringList take_seen() { return std::exchange(seen, {}); }
};

/// The rules of the satellite screen on a link to a simulated meter, on a virtual clock, with a
/// database file of their own.
class AslFixture {
  public:
    AslFixture() {
        state.texts.load_messages(QString());
        link.port_connected = true;
        link.port_number = 2;
        port.answer = [this](const QByteArray& line) { return answer(line); };
        const QString file = folder_.filePath(QString::fromLatin1(db::kDatabaseFile));
        db::DatabaseError error{};
        if (db::Database::create(file, error)) database = db::Database::open(file, error);
        if (!database) qFatal("no database: %s", qPrintable(error.detail));
        lists = std::make_unique<SatelliteLists>(link, state, database->asl(), user);
        backup = std::make_unique<SlotBackup>(*lists, link, state, user);
    }

    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};
    ProgramState state;
    ScriptedUser user;
    std::unique_ptr<meter::Instrument> instrument =
        std::make_unique<meter::Instrument>(meter::Options{});
    std::unique_ptr<db::Database> database;
    std::unique_ptr<SatelliteLists> lists;
    std::unique_ptr<SlotBackup> backup;

    /// Changes what the meter answers to a command.
    std::function<QByteArray(const QByteArray& command, const QByteArray& answer)> spoil;

    AslPanel& panel() { return lists->panel; }
    db::Recordset& asl() { return database->asl(); }
    QString path(const QString& name) const { return folder_.filePath(name); }
    QString folder() const { return folder_.path(); }
    QStringList commands() { return port.take_commands(); }

    /// The six S-records of a slot as the meter keeps them, by its own code.
    QStringList records(int slot) const {
        const std::string block = meter::slot_block(slot, instrument->state().satellites.at(slot));
        return QString::fromStdString(block).split(u'\r', Qt::SkipEmptyParts);
    }

    void add_satellite(const QString& name, const QString& data) {
        asl().add_new();
        asl().set(QStringLiteral("nome"), name);
        asl().set(QStringLiteral("dati"), data);
        asl().update();
    }
    /// "NAME=DATA" of every row, in table order.
    QStringList rows() {
        QStringList rows;
        asl().requery();
        for (; !asl().end_of_set(); asl().move_next())
            rows += asl().text(QStringLiteral("nome")) + u'=' + asl().text(QStringLiteral("dati"));
        return rows;
    }

    void select_slot(int slot) { panel().listastr_place = slot; }
    void select_pc(int place) { panel().listadb_place = place; }

  private:
    QByteArray answer(const QByteArray& line) const {
        QByteArray bytes = QByteArray::fromStdString(instrument->handle(line.toStdString()).bytes);
        return spoil ? spoil(line, bytes) : bytes;
    }

    QTemporaryDir folder_;
};

}  // namespace m47::asl
