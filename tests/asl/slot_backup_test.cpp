// SPDX-License-Identifier: GPL-3.0-or-later
// All slots of the meter kept in a file and written back.
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include "asl_fixture.h"

namespace m47::asl {

class SlotBackupTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<AslFixture> stand_;

    AslFixture& f() { return *stand_; }
    QString file(const char* name) { return f().path(QString::fromLatin1(name)); }
    static QByteArray content(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void write(const QString& path, const QByteArray& text) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) qFatal("no file");
    }
    QStringList saved_before() {
        return QDir(f().folder()).entryList({QStringLiteral("*-before-*")});
    }
    /// Every record of the meter, as it keeps them.
    QByteArray all_records() {
        QByteArray text;
        for (int slot = 0; slot < 20; ++slot)
            text += f().records(slot).join(QStringLiteral("\r\n")).toLatin1() + "\r\n";
        return text;
    }
    void save() {
        f().user.save_file = f().user.restore_file = file("sat.s19");
        f().backup->cmdsaveall_Click();
        f().user.take_seen();
        f().commands();
    }
    /// Spoils one digit of slot `slot` in each copy that the meter sends.
    void break_slot(int slot) {
        f().spoil = [slot](const QByteArray& command, QByteArray answer) {
            if (command != "MASTERCOPY 6?") return answer;
            const auto at = answer.indexOf(slot_header(slot).toLatin1()) + 40;
            answer[at] = answer[at] == '7' ? '8' : '7';
            return answer;
        };
    }
    static SlotFate fate(const RestorePlan& plan, std::size_t slot) { return plan[slot].fate; }

  private Q_SLOTS:
    void init() { stand_ = std::make_unique<AslFixture>(); }

    void each_slot_that_is_not_as_planned_is_named() {
        const SlotBlock one = SlotBlock::of({}, QStringLiteral("ONE"));
        RestorePlan plan{};
        for (const std::size_t slot : {0U, 7U, 19U}) plan[slot].file = one;
        SlotTable now{};
        now[7] = one;
        QCOMPARE(slots_that_differ(plan, now), QList<int>({0, 19}));
        now[0] = now[19] = one;
        QCOMPARE(slots_that_differ(plan, now), QList<int>());
    }

    void all_slots_are_saved_record_for_record() {
        f().user.save_file = file("sat.s19");
        f().backup->cmdsaveall_Click();
        QCOMPARE(f().commands(), QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QCOMPARE(content(file("sat.s19")), all_records());
        QCOMPARE(f().user.take_seen(),
                 QStringList("information|AutomaticSatelliteLocation|Saved in " + file("sat.s19") +
                             ". Slots: 20."));
    }

    void a_cancelled_file_name_asks_the_meter_nothing() {
        f().backup->cmdsaveall_Click();
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(), QStringList());
        QCOMPARE(f().user.take_seen(), QStringList());
    }

    void the_name_of_the_list_stands_in_the_file() {
        f().spoil = [](const QByteArray& command, QByteArray answer) {
            return command == "ASLNAME?" ? answer.replace("AURORA 13E", "OTHER") : answer;
        };
        save();
        const SlotTable table = parse_slots(QString::fromLatin1(content(file("sat.s19"))));
        QCOMPARE(table[0]->name(), QStringLiteral("OTHER"));
        QCOMPARE(table[0]->text().left(128), f().records(0).mid(1).join(u'\r').left(128));
        QCOMPARE(table[1]->text(), f().records(1).mid(1).join(u'\r'));
    }

    void without_an_answer_nothing_is_saved() {
        write(file("sat.s19"), "old");
        f().user.save_file = file("sat.s19");
        f().link.port_connected = false;
        f().backup->cmdsaveall_Click();
        QCOMPARE(content(file("sat.s19")), QByteArray("old"));
        QCOMPARE(f().user.take_seen(),
                 QStringList("exclamation|AutomaticSatelliteLocation|The M47 did not send its "
                             "satellite slots. Nothing was saved or changed."));
    }

    void a_broken_slot_is_left_out_when_the_user_agrees() {
        break_slot(4);
        f().user.save_file = file("sat.s19");
        f().user.says_ok = false;
        f().backup->cmdsaveall_Click();
        const QString question =
            "ok/cancel|AutomaticSatelliteLocation|These slots did not arrive whole from the M47: "
            "04. Save the others?";
        QCOMPARE(f().user.take_seen(), QStringList(question));
        QVERIFY(!QFile::exists(file("sat.s19")));
        f().user.says_ok = true;
        f().backup->cmdsaveall_Click();
        QCOMPARE(f().user.take_seen(),
                 QStringList({question, "information|AutomaticSatelliteLocation|Saved in " +
                                            file("sat.s19") + ". Slots: 19."}));
        const QByteArray records = f().records(4).join(QStringLiteral("\r\n")).toLatin1() + "\r\n";
        QCOMPARE(content(file("sat.s19")), all_records().replace(records, ""));
    }

    void a_file_that_cannot_be_written() {
        f().user.save_file = file("missing/sat.s19");
        f().backup->cmdsaveall_Click();
        const QStringList seen = f().user.take_seen();
        QCOMPARE(seen.size(), 1);
        QVERIFY(seen[0].startsWith("exclamation|AutomaticSatelliteLocation|Cannot write " +
                                   file("missing/sat.s19")));
    }

    void what_changed_is_written_back_and_compared() {
        save();
        const QByteArray before = all_records();
        const QString boreal = f().records(1).mid(1).join(u'\r');
        // A satellite gone, one changed, one more.
        f().lists->empty_slot(1);
        f().lists->send_slot(2, boreal);
        f().lists->send_slot(12, boreal);
        const QByteArray changed = all_records();
        f().commands();
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(),
                 QStringList({"ASLNAME?", "MASTERCOPY 6?"}) + content_lines(before, 1) +
                     QStringList("ASLNAME 1 BOREAL 19E") + content_lines(before, 2) +
                     QStringList("ASLNAME 2 CIRRUS 9E") + QStringList("ASLDEL 12") +
                     content_lines(before, 12) + QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QCOMPARE(all_records(), before);
        QCOMPARE(fate(f().user.plan, 0), SlotFate::unchanged);
        QCOMPARE(fate(f().user.plan, 1), SlotFate::written);
        QCOMPARE(fate(f().user.plan, 12), SlotFate::emptied);
        QCOMPARE(saved_before().size(), 1);
        const QString kept = f().path(saved_before().constFirst());
        QVERIFY(QRegularExpression("/sat-before-20261121-10000\\d\\.s19$").match(kept).hasMatch());
        QCOMPARE(content(kept), changed);
        QCOMPARE(f().user.take_seen(),
                 QStringList({"preview",
                              "information|AutomaticSatelliteLocation|Read back and compared: the "
                              "M47 holds what the file holds. The state before is in " +
                                  kept + "."}));
    }

    void a_cancelled_preview_changes_nothing() {
        save();
        f().lists->empty_slot(1);
        f().commands();
        f().user.restores = false;
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(), QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QCOMPARE(saved_before(), QStringList());
    }

    void a_meter_that_holds_the_file_is_left_alone() {
        save();
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(), QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QVERIFY(!changes_any(f().user.plan));
        QCOMPARE(saved_before(), QStringList());
    }

    void a_slot_broken_in_the_file_stays_as_it_is() {
        save();
        QByteArray text = content(file("sat.s19"));
        const auto at = text.indexOf("S1130000", text.indexOf(slot_header(2).toLatin1())) + 10;
        text[at] = text[at] == '7' ? '8' : '7';
        write(file("sat.s19"), text);
        const QByteArray before = all_records();
        for (const int slot : {1, 2}) f().lists->empty_slot(slot);
        f().commands();
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(),
                 QStringList({"ASLNAME?", "MASTERCOPY 6?"}) + content_lines(before, 1) +
                     QStringList({"ASLNAME 1 BOREAL 19E", "ASLNAME?", "MASTERCOPY 6?"}));
        QCOMPARE(fate(f().user.plan, 1), SlotFate::written);
        QCOMPARE(fate(f().user.plan, 2), SlotFate::left_alone);
        QVERIFY(f().instrument->state().satellites.at(2).empty());
        QVERIFY(f().user.take_seen().last().startsWith(QLatin1String("information|")));
    }

    void a_slot_broken_in_the_meter_is_repaired() {
        save();
        break_slot(4);
        f().user.on_preview = [this] { f().spoil = nullptr; };
        f().backup->cmdrestoreall_Click();
        QVERIFY(!f().user.plan[4].now);
        QCOMPARE(fate(f().user.plan, 4), SlotFate::written);
        QCOMPARE(f().commands().size(), 2 + 7 + 2);
        const QStringList seen = f().user.take_seen();
        QCOMPARE(seen.value(1),
                 QStringLiteral("ok/cancel|AutomaticSatelliteLocation|These slots did not arrive "
                                "whole from the M47 and cannot be kept: 04. Overwrite them?"));
        QVERIFY(seen.last().startsWith(QLatin1String("information|")));
        const QString kept = file(saved_before().value(0).toLatin1().constData());
        QCOMPARE(parse_slots(QString::fromLatin1(content(kept)))[4].has_value(), false);
    }

    void a_slot_that_cannot_be_kept_is_not_overwritten_unasked() {
        save();
        break_slot(4);
        f().user.says_ok = false;
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(), QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QCOMPARE(saved_before(), QStringList());
        QCOMPARE(f().user.take_seen().size(), 2);
    }

    void a_name_that_the_meter_fills_up_otherwise_is_the_same() {
        save();
        // The file fills the name of slot 1 up with NULs, the meter with blanks.
        SlotTable table = parse_slots(QString::fromLatin1(content(file("sat.s19"))));
        QByteArray name("BOREAL");
        name.append(4, '\0');
        table[1] = SlotBlock::of(table[1]->tuning(), QString::fromLatin1(name));
        write(file("sat.s19"), slots_text(table, QStringLiteral("\r\n")).toLatin1());
        f().backup->cmdrestoreall_Click();
        QCOMPARE(fate(f().user.plan, 1), SlotFate::written);
        QCOMPARE(QString::fromStdString(f().instrument->state().satellites.at(1).name).trimmed(),
                 QStringLiteral("BOREAL"));
        QVERIFY2(f().user.seen.last().startsWith(QLatin1String("information|")),
                 qPrintable(f().user.seen.last()));
    }

    void what_does_not_come_back_is_named() {
        save();
        f().lists->empty_slot(1);
        f().user.on_preview = [this] { break_slot(4); };
        f().backup->cmdrestoreall_Click();
        QVERIFY2(f().user.seen.last().startsWith(QStringLiteral(
                     "exclamation|AutomaticSatelliteLocation|Read back and compared: these slots "
                     "are not as they should be: 04. The state before is in ")),
                 qPrintable(f().user.seen.last()));
    }

    void a_meter_that_refuses_a_block_is_found_out() {
        save();
        f().lists->empty_slot(1);
        f().user.on_preview = [this] {
            f().port.answer = [this](const QByteArray& line) {
                if (line.startsWith("S1")) return line + "\rERROR\r";
                return QByteArray::fromStdString(f().instrument->handle(line.toStdString()).bytes);
            };
        };
        f().backup->cmdrestoreall_Click();
        QVERIFY(f().user.seen.last().contains(QLatin1String("not as they should be: 01.")));
    }

    void a_link_lost_midway_sends_no_more_and_says_so() {
        save();
        for (const int slot : {0, 1, 2}) f().lists->empty_slot(slot);
        f().commands();
        f().user.on_preview = [this] { f().port.vanish_in(2); };
        f().backup->cmdrestoreall_Click();
        QVERIFY(!f().link.port_connected);
        QCOMPARE(f().commands().filter(QStringLiteral("ASLNAME 2")), QStringList());
        QVERIFY(f().user.seen.last().startsWith(QStringLiteral(
            "exclamation|AutomaticSatelliteLocation|The slots could not be read back from the M47. "
            "The state before is in ")));
        QCOMPARE(saved_before().size(), 1);
    }

    void a_stopped_restore_tells_how_far_it_came_and_shows_nothing_old() {
        save();
        for (const char* slot : {"0", "1", "2"})
            f().instrument->handle(std::string("ASLDEL ") + slot);
        f().user.restore_file = file("sat.s19");
        QStringList told;
        f().link.activity.on_stopped = [&](const Said& how_far) { told += how_far.in(Texts()); };
        f().spoil = [this](const QByteArray& command, const QByteArray& answer) {
            if (command.startsWith("ASLNAME 0 ")) f().link.activity.stop();
            return answer;
        };
        f().commands();
        QVERIFY_THROWS_EXCEPTION(Interrupted, f().backup->cmdrestoreall_Click());
        QCOMPARE(f().commands().last().left(9), QString("ASLNAME 0"));
        QCOMPARE(told.size(), 1);
        QVERIFY2(told[0].contains("slots written by the restore: 1 of 3"), qPrintable(told[0]));
        QCOMPARE(f().panel().listastr, QStringList());
        f().link.activity.on_stopped = nullptr;
    }

    void a_state_that_cannot_be_saved_stops_the_restore() {
        QVERIFY(QDir(f().folder()).mkdir(QStringLiteral("inner")));
        save();
        f().lists->empty_slot(1);
        f().commands();
        const QString inner = file("inner/sat.s19");
        QVERIFY(QFile::copy(file("sat.s19"), inner));
        f().user.restore_file = inner;
        f().user.on_preview = [this] { QVERIFY(QDir(file("inner")).removeRecursively()); };
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(), QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QVERIFY(f().user.seen.last().startsWith(
            QStringLiteral("exclamation|AutomaticSatelliteLocation|Cannot write ")));
    }

    void two_restores_keep_two_states() {
        save();
        f().lists->empty_slot(1);
        f().user.on_preview = [this] {
            // The name that the state would get, at whatever second this is.
            const QString stamp = f().clock.date_time().toString(QStringLiteral("yyyyMMdd-HHmmss"));
            write(f().path("sat-before-" + stamp + ".s19"), "mine");
        };
        f().backup->cmdrestoreall_Click();
        const QStringList kept = saved_before();
        QCOMPARE(kept.size(), 2);
        QCOMPARE(content(f().path(kept.filter(QRegularExpression("\\d{6}\\.s19")).value(0))),
                 QByteArray("mine"));
    }

    void a_file_without_slots_is_refused() {
        write(file("sat.s19"), "S0030000FC\r\nhello\r\n");
        f().user.restore_file = file("sat.s19");
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().commands(), QStringList());
        QCOMPARE(f().user.take_seen(),
                 QStringList("exclamation|AutomaticSatelliteLocation|" + file("sat.s19") +
                             " holds no whole satellite slot. Nothing was changed."));
        f().user.restore_file = file("none.s19");
        f().backup->cmdrestoreall_Click();
        QCOMPARE(f().user.take_seen().size(), 1);
    }

  private:
    /// The six records of slot `slot` in a file's text.
    static QStringList content_lines(const QByteArray& text, int slot) {
        const QStringList lines = QString::fromLatin1(text).split(QStringLiteral("\r\n"));
        return lines.mid(slot * 6, 6);
    }
};

}  // namespace m47::asl

QTEST_GUILESS_MAIN(m47::asl::SlotBackupTest)
#include "slot_backup_test.moc"
