// SPDX-License-Identifier: GPL-3.0-or-later
// The two lists, and the satellites that are kept on the PC.
#include "satellite_lists_test.h"

#include <QSqlQuery>
#include <random>

#include "answer_before.h"

namespace m47::asl {

QString SatelliteListsTest::data_of(const QStringList& records) {
    return records.mid(1).join(u'\r');
}

QStringList SatelliteListsTest::lines(const QString& text) {
    return text.split(u'\r');
}

void SatelliteListsTest::load() {
    lists().Form_Load();
    f().commands();
}

void SatelliteListsTest::elsewhere(const char* statement) {
    QSqlQuery query(f().database->connection());
    QVERIFY2(query.exec(QString::fromLatin1(statement)), statement);
}

void SatelliteListsTest::loading_asks_for_names_and_copy() {
    f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
    f().add_satellite(QStringLiteral("TWO"), kNovaData);
    lists().Form_Load();
    QCOMPARE(f().commands(), QStringList({kQuery, kCopy}));
    QCOMPARE(f().panel().listadb, QStringList({"NOVA 7W", "TWO"}));
    QCOMPARE(f().panel().listastr.size(), 20);
    QCOMPARE(f().panel().listastr.mid(0, 4),
             QStringList({"AURORA 13E", "BOREAL 19E", "CIRRUS 9E", "**********"}));
    QCOMPARE(f().panel().listastr[19], QStringLiteral("**********"));
    QVERIFY(f().state.master_copy.startsWith(QLatin1String("S00A000041534C2030303065\rS113")));
    QVERIFY(f().state.master_copy.endsWith(QLatin1String("\rS9030000FC")));
    QCOMPARE(f().state.master_copy.count(u'\r'), 119);
    QCOMPARE(f().user.take_seen(), QStringList());
}

void SatelliteListsTest::without_a_link_the_meters_list_is_empty() {
    f().link.port_connected = false;
    leave_answer(f().link, f().port, "00\tOLD\r");
    f().state.master_copy = QStringLiteral("OLD");
    lists().Form_Load();
    QCOMPARE(f().panel().listastr, QStringList());
    QCOMPARE(f().state.master_copy, QString());
    QCOMPARE(f().commands(), QStringList());
}

void SatelliteListsTest::nothing_happens_without_a_selection() {
    QCOMPARE(AslPanel().listadb_place, -1);
    QCOMPARE(AslPanel().listastr_place, -1);
    load();
    f().panel().listadb_place = -1;
    for (const int slot : {-1, 20}) {
        f().select_slot(slot);
        lists().cmdlearn_Click();
        lists().cmddelstr_Click();
        lists().cmdaddindb_Click();
        f().select_pc(slot);
        lists().cmdsave_Click();
        lists().cmddelpc_Click();
    }
    QCOMPARE(f().commands(), QStringList());
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(f().rows(), QStringList());
}

void SatelliteListsTest::an_entry_of_asterisks_is_no_satellite() {
    f().add_satellite(QStringLiteral("**********"), kNovaData);
    f().add_satellite(QStringLiteral("TWO"), kNovaData);
    load();
    f().select_slot(3);
    lists().cmdaddindb_Click();
    lists().cmddelstr_Click();
    f().select_pc(0);
    lists().cmdsave_Click();
    lists().cmddelpc_Click();
    QCOMPARE(f().commands(), QStringList());
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(f().rows().size(), 2);
}

void SatelliteListsTest::a_slot_is_copied_to_the_pc() {
    load();
    for (const int slot : {0, 2, 11}) {
        f().select_slot(slot);
        lists().cmdaddindb_Click();
    }
    QCOMPARE(f().commands(), QStringList());
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(f().panel().listadb, QStringList({"AURORA 13E", "CIRRUS 9E", "ZENIT 28E"}));
    QCOMPARE(f().panel().listadb_place, -1);
    QCOMPARE(f().rows(), QStringList({"AURORA 13E=" + data_of(f().records(0)),
                                      "CIRRUS 9E=" + data_of(f().records(2)),
                                      "ZENIT 28E=" + data_of(f().records(11))}));
}

void SatelliteListsTest::a_satellite_that_exists_is_asked_for() {
    f().add_satellite(QStringLiteral("ONE"), QStringLiteral("1"));
    f().add_satellite(QStringLiteral("CIRRUS 9E"), QStringLiteral("2"));
    load();
    f().select_slot(2);
    f().user.says_ok = false;
    lists().cmdaddindb_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList("ok/cancel|AutomaticSatelliteLocation|Satellite already exist! Do you "
                         "want restore it? CIRRUS 9E"));
    QCOMPARE(f().rows(), QStringList({"ONE=1", "CIRRUS 9E=2"}));
    f().user.says_ok = true;
    f().state.texts.language = kItalian;
    lists().cmdaddindb_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList("ok/cancel|AutomaticSatelliteLocation|Il nome del satellite esiste! "
                         "vuoi risalvarlo? CIRRUS 9E"));
    QCOMPARE(f().rows(), QStringList({"ONE=1", "CIRRUS 9E=" + data_of(f().records(2))}));
}

void SatelliteListsTest::what_another_program_has_stored_is_shown_before_it_is_overwritten() {
    f().add_satellite(QStringLiteral("CIRRUS 9E"), QStringLiteral("2"));
    load();
    f().select_slot(2);
    const QString mine = data_of(f().records(2));
    elsewhere("UPDATE asl SET dati = '3'");
    f().user.overwrites = false;
    lists().cmdaddindb_Click();
    QCOMPARE(f().user.take_seen().value(1), "overwrite|CIRRUS 9E|3|" + mine);
    QCOMPARE(f().rows(), QStringList("CIRRUS 9E=3"));
    // The list has been read anew: nobody has changed it since.
    f().select_slot(2);
    lists().cmdaddindb_Click();
    QCOMPARE(f().user.take_seen().size(), 1);
    QCOMPARE(f().rows(), QStringList("CIRRUS 9E=" + mine));
}

void SatelliteListsTest::what_is_stored_while_the_user_is_asked_is_asked_about_as_well() {
    f().add_satellite(QStringLiteral("CIRRUS 9E"), QStringLiteral("2"));
    load();
    f().select_slot(2);
    f().user.on_confirm = [this] { elsewhere("UPDATE asl SET dati = '4'"); };
    int times = 0;
    f().user.on_overwrite = [&] {
        if (++times == 1) elsewhere("UPDATE asl SET dati = '5'");
    };
    lists().cmdaddindb_Click();
    QCOMPARE(times, 2);
    QVERIFY(f().user.take_seen().value(2).startsWith(QLatin1String("overwrite|CIRRUS 9E|5|")));
    QCOMPARE(f().rows(), QStringList("CIRRUS 9E=" + data_of(f().records(2))));
}

void SatelliteListsTest::a_satellite_that_another_program_has_stored_is_not_deleted_unasked() {
    f().add_satellite(QStringLiteral("ONE"), QStringLiteral("1"));
    f().add_satellite(QStringLiteral("TWO"), QStringLiteral("2"));
    load();
    f().select_pc(1);
    f().user.on_confirm = [this] { elsewhere("UPDATE asl SET dati = '3' WHERE nome = 'TWO'"); };
    f().user.overwrites = false;
    lists().cmddelpc_Click();
    QCOMPARE(f().user.take_seen().value(1), QStringLiteral("delete|TWO|3|2"));
    QCOMPARE(f().rows(), QStringList({"ONE=1", "TWO=3"}));
    // The last one stays, though there were two when the question was put.
    f().select_pc(1);
    f().user.on_confirm = [this] { elsewhere("DELETE FROM asl WHERE nome = 'ONE'"); };
    lists().cmddelpc_Click();
    QCOMPARE(f().rows(), QStringList("TWO=3"));
}

void SatelliteListsTest::a_copy_that_is_not_whole_stores_nothing_data() {
    QTest::addColumn<int>("slot");
    QTest::addColumn<QString>("was");
    QTest::addColumn<QString>("is");
    QTest::newRow("cut at the end") << 19 << "S9030000FC\rEND"
                                    << "";
    QTest::newRow("header missing") << 2 << "S00A000041534C2030303263"
                                    << "";
    QTest::newRow("header changed") << 2 << "S00A000041534C2030303263"
                                    << "S00A000041534C2030303264";
    QTest::newRow("checksum") << 2 << "S00A000041534C2030303263\rS1130000"
                              << "S00A000041534C2030303263\rS1130001";
    QTest::newRow("all gone") << 0 << "ALL"
                              << "";
}

void SatelliteListsTest::a_copy_that_is_not_whole_stores_nothing() {
    QFETCH(int, slot);
    QFETCH(QString, was);
    QFETCH(QString, is);
    load();
    QString& copy = f().state.master_copy;
    if (was == QLatin1String("ALL"))
        copy.clear();
    else if (was.endsWith(QLatin1String("END")))
        copy.chop(5);
    else
        QVERIFY(copy.contains(was));
    copy.replace(was, is);
    f().panel().listastr[slot] = QStringLiteral("SOME");
    f().select_slot(slot);
    lists().cmdaddindb_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList("exclamation|AutomaticSatelliteLocation|The data of this satellite did "
                         "not arrive whole from the M47. Nothing was saved."));
    QCOMPARE(f().rows(), QStringList());
}

void SatelliteListsTest::deleting_on_the_pc_leaves_the_last() {
    f().add_satellite(QStringLiteral("ONE"), kNovaData);
    f().add_satellite(QStringLiteral("TWO"), kNovaData);
    load();
    f().select_pc(0);
    f().user.says_ok = false;
    lists().cmddelpc_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList("ok/cancel|ASL|Do you want delete satellite from list? ONE"));
    QCOMPARE(f().asl().count(), 2);
    f().user.says_ok = true;
    f().state.texts.language = kItalian;
    lists().cmddelpc_Click();
    QCOMPARE(f().user.take_seen(),
             QStringList("ok/cancel|ASL|Vuoi cancellare il satellite dalla lista? ONE"));
    QCOMPARE(f().panel().listadb, QStringList("TWO"));
    QCOMPARE(f().rows(), QStringList("TWO=" + kNovaData));
    f().select_pc(0);
    lists().cmddelpc_Click();
    QCOMPARE(f().user.take_seen(), QStringList());
    QCOMPARE(f().rows(), QStringList("TWO=" + kNovaData));
    QCOMPARE(f().commands(), QStringList());
}

void SatelliteListsTest::quotation_marks_in_a_name() {
    f().add_satellite(QStringLiteral("A\"B'C"), kNovaData);
    f().add_satellite(QStringLiteral("TWO"), kNovaData);
    load();
    f().select_pc(0);
    lists().cmddelpc_Click();
    QCOMPARE(f().rows(), QStringList("TWO=" + kNovaData));
}

void SatelliteListsTest::a_spoilt_copy_is_never_stored_in_part() {
    load();
    const QString good = f().state.master_copy;
    std::mt19937 random(7);
    const auto below = [&](qsizetype bound) {
        return static_cast<qsizetype>(random() % static_cast<unsigned>(bound));
    };
    int stored = 0;
    for (int run = 0; run < 60; ++run) {
        QString copy = good;
        copy.remove(below(copy.size()), below(4));
        copy.replace(below(copy.size()), 1, QStringLiteral("7"));
        if (run % 3 == 0) copy.truncate(below(copy.size()) + 1);
        f().state.master_copy = copy;
        f().panel().listastr[run % 20] = QStringLiteral("RUN %1").arg(run);
        f().select_slot(run % 20);
        const int rows = f().asl().count();
        lists().cmdaddindb_Click();
        const bool added = f().asl().count() > rows;
        stored += added;
        QCOMPARE(f().user.take_seen().isEmpty(), added);
        if (!added) continue;
        f().asl().move_last();
        const QString data = f().asl().text(QStringLiteral("dati"));
        QCOMPARE(lines(data).size(), 5);
        QVERIFY(SlotBlock::parse(data));
    }
    QVERIFY(stored > 6);
    QVERIFY(stored < 54);
}

}  // namespace m47::asl

QTEST_GUILESS_MAIN(m47::asl::SatelliteListsTest)
