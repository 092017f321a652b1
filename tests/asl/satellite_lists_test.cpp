// SPDX-License-Identifier: GPL-3.0-or-later
// What moves between the satellites on the PC and the slots of the meter, byte for byte.
#include <QSqlQuery>
#include <QTest>
#include <random>

#include "answer_before.h"
#include "asl_fixture.h"

namespace m47::asl {
namespace {

const QString kQuery = QStringLiteral("ASLNAME?");
const QString kCopy = QStringLiteral("MASTERCOPY 6?");
const QString kMeasure = QStringLiteral("MEASURE");

/// The records behind the header, as the PC keeps them.
QString data_of(const QStringList& records) {
    return records.mid(1).join(u'\r');
}

/// Two satellites that the meter does not know.
const QString kNovaData = QStringLiteral(
    "S1130000010203040506070809101112131415163A\rS113001000000000000000000000000000000000DC\r"
    "S113002000000000000000000000000000000000CC\rS10D00304E4F564120375720202080\rS9030000FC");

QStringList lines(const QString& text) {
    return text.split(u'\r');
}

}  // namespace

class SatelliteListsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<AslFixture> stand_;

    AslFixture& f() { return *stand_; }
    SatelliteLists& lists() { return *stand_->lists; }
    void load() {
        lists().Form_Load();
        f().commands();
    }
    /// An answer to a command instead of the meter's own.
    void answer_with(const QByteArray& command, const QByteArray& answer) {
        f().spoil = [=](const QByteArray& asked, const QByteArray& own) {
            return asked == command ? answer : own;
        };
    }

  private Q_SLOTS:
    void init() { stand_ = std::make_unique<AslFixture>(); }

    void loading_asks_for_names_and_copy() {
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

    void without_a_link_the_meters_list_is_empty() {
        f().link.port_connected = false;
        leave_answer(f().link, f().port, "00\tOLD\r");
        f().state.master_copy = QStringLiteral("OLD");
        lists().Form_Load();
        QCOMPARE(f().panel().listastr, QStringList());
        QCOMPARE(f().state.master_copy, QString());
        QCOMPARE(f().commands(), QStringList());
    }

    void nothing_happens_without_a_selection() {
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

    void an_entry_of_asterisks_is_no_satellite() {
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

    void a_slot_is_copied_to_the_pc() {
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

    void a_satellite_that_exists_is_asked_for() {
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

    /// Another window on the same database.
    void elsewhere(const char* statement) {
        QSqlQuery query(f().database->connection());
        QVERIFY2(query.exec(QString::fromLatin1(statement)), statement);
    }

    void what_another_program_has_stored_is_shown_before_it_is_overwritten() {
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

    void what_is_stored_while_the_user_is_asked_is_asked_about_as_well() {
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

    void a_satellite_that_another_program_has_stored_is_not_deleted_unasked() {
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

    void a_copy_that_is_not_whole_stores_nothing_data() {
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
    void a_copy_that_is_not_whole_stores_nothing() {
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
        QCOMPARE(
            f().user.take_seen(),
            QStringList("exclamation|AutomaticSatelliteLocation|The data of this satellite did "
                        "not arrive whole from the M47. Nothing was saved."));
        QCOMPARE(f().rows(), QStringList());
    }

    void a_satellite_goes_into_the_first_empty_slot() {
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

    void a_satellite_that_the_meter_knows_is_reprogrammed() {
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

    void a_satellite_that_would_arrive_as_another_is_not_sent() {
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

    void slots_from_ten_on_take_two_digits() {
        f().add_satellite(QStringLiteral("ZENIT 28E"), kNovaData);
        load();
        f().select_pc(0);
        lists().cmdsave_Click();
        QCOMPARE(f().commands().mid(6), QStringList({"ASLNAME 11 ZENIT 28E", kQuery}));
        f().select_slot(11);
        lists().cmddelstr_Click();
        QCOMPARE(f().commands().first(), QStringLiteral("ASLDEL 11"));
    }

    void a_full_meter_takes_nothing() {
        f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
        load();
        f().panel().listastr.replaceInStrings(QStringLiteral("**********"), QStringLiteral("X"));
        f().select_pc(0);
        lists().cmdsave_Click();
        QCOMPARE(f().commands(), QStringList());
        QCOMPARE(f().user.take_seen(), QStringList());
    }

    void satellites_of_one_name_are_told_apart() {
        f().add_satellite(QStringLiteral("NOVA 7W"), QStringLiteral("S1"));
        f().add_satellite(QStringLiteral("NOVA 7W"), kNovaData);
        load();
        f().select_pc(1);
        lists().cmdsave_Click();
        QCOMPARE(data_of(f().records(3)), kNovaData);
    }

    void deleting_on_the_pc_leaves_the_last() {
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

    void a_slot_is_filed_and_asked_for_where_that_is_chosen() {
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

    void a_slot_that_holds_another_satellite_by_now_is_not_deleted() {
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

    void a_slot_is_emptied_without_a_question() {
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

    void the_meter_learns() {
        load();
        f().select_slot(7);
        f().user.types = QStringLiteral("  NOVA 7W LONG");
        lists().cmdlearn_Click();
        QCOMPARE(
            f().user.take_seen(),
            QStringList({"ok/cancel|AutomaticSatelliteLocation|Do you want learn a satellite?",
                         "input|AutomaticSatelliteLocator|Insert Satellite name:|**********"}));
        QCOMPARE(f().commands(), QStringList({kMeasure, "ASLLEARN 07", "ASLNAME 07 NOVA 7W", kQuery,
                                              kCopy, kMeasure}));
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

    void a_cancelled_question_learns_nothing() {
        load();
        f().select_slot(7);
        f().user.says_ok = false;
        lists().cmdlearn_Click();
        QCOMPARE(f().user.take_seen().size(), 1);
        QCOMPARE(f().commands(), QStringList());
    }

    void names_that_are_refused_data() {
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
    void names_that_are_refused() {
        QFETCH(QString, name);
        QFETCH(bool, warned);
        load();
        f().select_slot(7);
        f().user.types = name;
        lists().cmdlearn_Click();
        QCOMPARE(f().user.take_seen().mid(2),
                 warned
                     ? QStringList("exclamation|AutomaticSatelliteLocation|Invalid Satellite name!")
                     : QStringList());
        QCOMPARE(f().commands(), QStringList(kMeasure));
    }

    void a_lost_link_ends_it_without_a_message() {
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

    void quotation_marks_in_a_name() {
        f().add_satellite(QStringLiteral("A\"B'C"), kNovaData);
        f().add_satellite(QStringLiteral("TWO"), kNovaData);
        load();
        f().select_pc(0);
        lists().cmddelpc_Click();
        QCOMPARE(f().rows(), QStringList("TWO=" + kNovaData));
    }

    void a_spoilt_copy_is_never_stored_in_part() {
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
};

}  // namespace m47::asl

QTEST_GUILESS_MAIN(m47::asl::SatelliteListsTest)
#include "satellite_lists_test.moc"
