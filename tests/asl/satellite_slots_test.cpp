// SPDX-License-Identifier: GPL-3.0-or-later
// The slots of the meter as they are filled, learnt and emptied.
#include <QDir>
#include <QFile>

#include "satellite_lists_test.h"

namespace m47::asl {

void SatelliteListsTest::a_satellite_goes_into_the_first_empty_slot() {
    f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
    load();
    f().select_pc(0);
    f().select_slot(8);
    const QString before = f().state.master_copy;
    lists().cmdsave_Click();
    QCOMPARE(f().commands(), QStringList("S00A000041534C2030303362") + lines(kNovaData) +
                                 QStringList({"ASLNAME 3 NOVA 7W", kQuery}));
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(data_of(f().records(3)), kNovaData);
    QCOMPARE(f().panel().listastr[3], QStringLiteral("NOVA 7W"));
    QCOMPARE(f().panel().listadb, QStringList("NOVA 7W"));
    // The copy is patched, not asked for, and equals what the meter would have sent.
    QCOMPARE(f().state.master_copy.size(), before.size());
    const QString patched = f().state.master_copy;
    lists().visualizza_listastr();
    QCOMPARE(f().state.master_copy, patched);
}

void SatelliteListsTest::a_satellite_that_the_meter_knows_is_reprogrammed() {
    f().add_satellite(QStringLiteral("ONE"), QStringLiteral("1"));
    f().add_satellite(QStringLiteral("CIRRUS 9E"), kNovaData);
    load();
    f().select_pc(1);
    f().user.says_ok = false;
    lists().cmdsave_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList("ok/cancel|AutomaticSatelliteLocation|Satellite already exist! Do you "
                         "want reprogram it? CIRRUS 9E"));
    QCOMPARE(f().commands(), QStringList());
    f().user.says_ok = true;
    lists().cmdsave_Click();
    QCOMPARE(f().commands(), QStringList("S00A000041534C2030303263") + lines(kNovaData) +
                                 QStringList({"ASLNAME 2 CIRRUS 9E", kQuery}));
    QCOMPARE(f().panel().listastr[2], QStringLiteral("CIRRUS 9E"));
}

void SatelliteListsTest::a_satellite_that_would_arrive_as_another_is_not_sent() {
    f().add_satellite(QStringLiteral("13\u20ac"), kNovaData);
    f().add_satellite(QStringLiteral("A\rASLDEL 3"), kNovaData);
    f().add_satellite(QStringLiteral("EMPTY"), QString());
    f().add_satellite(QStringLiteral("BLANK"), QStringLiteral("  "));
    load();
    const QStringList slots_before = f().panel().listastr;
    const QString warned = "exclamation|AutomaticSatelliteLocation|";
    const QString invalid = warned + "Invalid Satellite name!";
    const QString no_data = warned +
                            "Nothing is stored of this satellite but its name. Nothing was "
                            "sent to the M47.";
    const QStringList expected{invalid, invalid, no_data, no_data};
    for (int place = 0; place < expected.size(); ++place) {
        f().select_pc(place);
        lists().cmdsave_Click();
        QCOMPARE(f().user.take_seen(), QStringList(expected[place]));
        QCOMPARE(f().commands(), QStringList());
        QCOMPARE(f().panel().listastr, slots_before);
    }
}

void SatelliteListsTest::slots_from_ten_on_take_two_digits() {
    f().add_satellite(QStringLiteral("ZENIT 28E"), kNovaData);
    load();
    f().select_pc(0);
    lists().cmdsave_Click();
    QCOMPARE(f().commands().mid(6), QStringList({"ASLNAME 11 ZENIT 28E", kQuery}));
    f().select_slot(11);
    lists().cmddelstr_Click();
    QCOMPARE(f().commands().first(), QStringLiteral("ASLDEL 11"));
}

void SatelliteListsTest::a_full_meter_takes_nothing() {
    f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
    load();
    f().panel().listastr.replaceInStrings(QStringLiteral("**********"), QStringLiteral("X"));
    f().select_pc(0);
    lists().cmdsave_Click();
    QCOMPARE(f().commands(), QStringList());
    QCOMPARE(f().user.take_seen(), QStringList());
}

void SatelliteListsTest::satellites_of_one_name_are_told_apart() {
    f().add_satellite(QStringLiteral("NOVA 7W"), QStringLiteral("S1"));
    f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
    load();
    f().select_pc(1);
    lists().cmdsave_Click();
    QCOMPARE(data_of(f().records(3)), kNovaData);
}

void SatelliteListsTest::a_slot_is_filed_and_asked_for_where_that_is_chosen() {
    f().state.base_dir = f().folder() + u'/';
    f().state.corrected.keep_copy = true;
    load();
    const SlotTable before = parse_slots(f().state.master_copy);
    const QString name = f().panel().listastr[2];
    const QDir backup(f().path("backup"));
    f().select_slot(2);
    f().user.says_ok = false;
    lists().cmddelstr_Click();
    const QStringList reading{kQuery, "MASTERCOPY 6?"};
    QCOMPARE(f().commands(), reading);
    QCOMPARE(f().panel().listastr_place, 2);
    const QStringList kept = backup.entryList(QDir::Files);
    QCOMPARE(kept.size(), 1);
    QFile file(backup.filePath(kept[0]));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(parse_slots(QString::fromLatin1(file.readAll())) == before);
    const QStringList asked = f().user.take_seen();
    QCOMPARE(asked.size(), 1);
    QVERIFY2(asked[0].startsWith("erase|ASL|Do you want delete satellite from list? " + name) &&
                 asked[0].contains(kept[0]),
             qPrintable(asked[0]));
    f().user.says_ok = true;
    lists().cmddelstr_Click();
    QCOMPARE(f().commands().mid(0, 3), reading + QStringList{"ASLDEL 2"});
    QCOMPARE(f().panel().listastr[2], QStringLiteral("**********"));
}

void SatelliteListsTest::a_slot_that_holds_another_satellite_by_now_is_not_deleted() {
    f().state.base_dir = f().folder() + u'/';
    f().state.corrected.keep_copy = true;
    load();
    f().select_slot(2);
    f().instrument->handle("ASLNAME 2 OTHER");
    lists().cmddelstr_Click();
    QCOMPARE(f().commands().filter("ASLDEL"), QStringList());
    QCOMPARE(f().user.take_seen().size(), 1);
    // One that does not come whole is told to have no copy.
    f().spoil = [](const QByteArray& command, const QByteArray& answer) {
        return command == "MASTERCOPY 6?" ? answer.left(answer.indexOf("ASL 002")) + "\rOK\r"
                                          : answer;
    };
    f().select_slot(2);
    f().user.says_ok = false;
    lists().cmddelstr_Click();
    const QStringList asked = f().user.take_seen();
    QVERIFY2(asked.value(0).contains("no copy of it"), qPrintable(asked.join(u'/')));
}

void SatelliteListsTest::a_slot_is_emptied_without_a_question() {
    load();
    f().select_slot(2);
    lists().cmddelstr_Click();
    QCOMPARE(f().commands(),
             QStringList({"ASLDEL 2", "S00A000041534C2030303263",
                          "S113000000000000000000000000000000000000EC",
                          "S113001000000000000000000000000000000000DC",
                          "S113002000000000000000000000000000000000CC",
                          "S10D00302A2A2A2A2A2A2A2A2A2A1E", "S9030000FC", kQuery, kCopy}));
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(f().panel().listastr[2], QStringLiteral("**********"));
    QCOMPARE(f().panel().listastr_place, -1);
    QVERIFY(*parse_slots(f().state.master_copy)[2] == SlotBlock());
}

void SatelliteListsTest::the_meter_learns() {
    load();
    f().select_slot(7);
    f().user.types = QStringLiteral("  NOVA 7W LONG");
    lists().cmdlearn_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList({"ok/cancel|AutomaticSatelliteLocation|Do you want learn a satellite?",
                          "input|AutomaticSatelliteLocator|Insert Satellite name:|**********"}));
    QCOMPARE(f().commands(),
             QStringList({kMeasure, "ASLLEARN 07", "ASLNAME 07 NOVA 7W", kQuery, kCopy, kMeasure}));
    QCOMPARE(f().panel().listastr[7], QStringLiteral("NOVA 7W"));
    f().state.texts.language = kItalian;
    f().select_slot(2);
    f().user.types = QStringLiteral("X");
    lists().cmdlearn_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList({"ok/cancel|AutomaticSatelliteLocation|Vuoi acquisire un satellite?",
                          "input|AutomaticSatelliteLocator|Inserire il nome del "
                          "Satellite:|CIRRUS 9E"}));
}

void SatelliteListsTest::a_cancelled_question_learns_nothing() {
    load();
    f().select_slot(7);
    f().user.says_ok = false;
    lists().cmdlearn_Click();
    QCOMPARE(f().user.take_seen().size(), 1);
    QCOMPARE(f().commands(), QStringList());
}

void SatelliteListsTest::names_that_are_refused_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("warned");
    QTest::newRow("asterisks") << "**********" << true;
    QTest::newRow("cut to asterisks") << "**********E" << true;
    QTest::newRow("nothing, or cancelled") << "" << false;
    QTest::newRow("blanks") << "   " << false;
    QTest::newRow("blanks first") << "          NOVA" << false;
    QTest::newRow("not on the line") << QStringLiteral("13\u20ac") << true;
    QTest::newRow("TAB") << "A\tB" << true;
}

void SatelliteListsTest::names_that_are_refused() {
    QFETCH(QString, name);
    QFETCH(bool, warned);
    load();
    f().select_slot(7);
    f().user.types = name;
    lists().cmdlearn_Click();
    QCOMPARE(f().user.take_seen().mid(2),
             warned ? QStringList("exclamation|AutomaticSatelliteLocation|Invalid Satellite name!")
                    : QStringList());
    QCOMPARE(f().commands(), QStringList(kMeasure));
}

void SatelliteListsTest::a_lost_link_ends_it_without_a_message() {
    f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
    load();
    f().select_pc(0);
    f().port.vanish_in(0.3);
    lists().cmdsave_Click();
    QVERIFY(!f().link.port_connected);
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(f().panel().listastr, QStringList());
    QVERIFY(f().records(3)[4].contains(QLatin1String("2A2A2A")));
}

}  // namespace m47::asl
