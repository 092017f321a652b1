// SPDX-License-Identifier: GPL-3.0-or-later
// A program on its way into the database file and back, its plan's oscillators and name.
#include "program_record.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>

#include "box_numbers.h"
#include "db_support.h"
#include "diseqc_commands.h"
#include "plan_name.h"
#include "program_row.h"
#include "tables.h"

namespace m47::programme {
namespace {

using R = ProgramRecord;

/// Something else in every field than a blank program has, and in each another one.
ProgramRecord program_of_all_fields() {
    ProgramRecord program;
    program.pg_num = QStringLiteral("007");
    program.frequenza = QStringLiteral("1234.5");
    program.loc_osc = true;
    program.loc_osc0 = 3;
    program.sat_ad = true;
    program.qpsk_symbolrate = QStringLiteral("27500");
    program.satchbw = QStringLiteral("08");
    program.diseqc_cmd = 5;
    program.diseqc_cmd2 = 6;
    program.lnb_volt = 2;
    program.K22 = 1;
    program.logger_pos = QStringLiteral("09");
    program.logger_state = true;
    program.monitor_state = true;
    program.lev_min = QStringLiteral("45");
    program.lev_max = QStringLiteral("75");
    program.noise_min = QStringLiteral("10");
    program.noise_max = QStringLiteral("20");
    program.chber_min = QStringLiteral("1E-8");
    program.chber_max = QStringLiteral("3E-2");
    program.mer_min = QStringLiteral("11");
    program.mer_max = QStringLiteral("21");
    return program;
}

}  // namespace

class ProgramRecordTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<db::Database> database_;

    db::Recordset table_of(const char* name) const {
        db::Recordset set = db::Recordset::table(database_->connection(), QLatin1String(name));
        set.move_first();
        return set;
    }
    db::Recordset programs() const { return table_of(db::table::kProgrammi); }
    db::Recordset stored(const ProgramRecord& program) const {
        db::Recordset set = programs();
        set.edit();
        write_program(set, program);
        set.update();
        return programs();
    }
    db::Recordset stored(const char* name, const QVariant& value) const {
        db::Recordset set = programs();
        set.edit();
        set.set(name, value);
        set.update();
        return programs();
    }
    QString in_file(const char* name) const {
        return db::row_of(db::database_in(folder_->path()), QLatin1String(db::table::kProgrammi), 1)
            .value(QLatin1String(name), QStringLiteral("-"));
    }

  private Q_SLOTS:
    void init() {
        // In memory where there is such a place: a database is made for each field.
        const bool memory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
        folder_ = std::make_unique<QTemporaryDir>(
            (memory ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
            QStringLiteral("/m47-programme-XXXXXX"));
        database_ = db::made_in(folder_->path());
    }

    void the_fields_are_those_of_the_table();
    void every_field_comes_back_data();
    void every_field_comes_back();
    void every_field_stands_in_the_file_as_it_always_did();
    void a_blank_program_leaves_its_numbers_unset();
    void an_empty_row_is_a_blank_program();
    void a_row_is_read_as_it_stands();
    void what_is_unset_is_told_from_zero();
    void one_alone_is_monitored_and_digital();
    void the_dish_is_told_what_was_chosen_and_nothing_else();
    void oscillators_come_back();
    void an_oscillator_entry_that_is_not_there_counts_as_the_first();
    void oscillators_that_exist();
    void an_oscillator_takes_its_own_place_or_a_free_one();
    void a_field_reads_as_the_file_has_it();
    void what_was_typed_goes_out_as_a_number();
    void names_are_cut_trimmed_and_capital();
    void a_name_has_ten_characters_in_capitals();
};

void ProgramRecordTest::the_fields_are_those_of_the_table() {
    QStringList ours{db::field::kNome};
    for (const ProgramField& field : program_fields()) ours += QLatin1String(field.name);
    QStringList theirs;
    for (const db::Field& field : db::table_named(QLatin1String(db::table::kProgrammi)).fields)
        theirs += QLatin1String(field.name);
    QCOMPARE(ours, theirs);
}

/// Each field by itself, so that none stands in for another.
void ProgramRecordTest::every_field_comes_back_data() {
    QTest::addColumn<int>("place");
    int place = 0;
    for (const ProgramField& field : program_fields()) QTest::newRow(field.name) << place++;
    QTest::newRow("all of them") << -1;
}

void ProgramRecordTest::every_field_comes_back() {
    QFETCH(int, place);
    const ProgramRecord all = program_of_all_fields();
    ProgramRecord program = place < 0 ? all : ProgramRecord();
    // The form of a bandwidth that is not there.
    if (place >= 0) {
        program.satchbw = QStringLiteral("00");
        const ProgramField& field = program_fields()[static_cast<std::size_t>(place)];
        QVERIFY(field_text(all, field) != field_text(ProgramRecord(), field));
        set_field(program, field, field_text(all, field));
    }
    // Sky frequencies are whole.
    if (!program.loc_osc && !program.frequenza.isEmpty())
        program.frequenza = QStringLiteral("1235");
    QCOMPARE(read_program(stored(program)), program);
}

void ProgramRecordTest::every_field_stands_in_the_file_as_it_always_did() {
    stored(program_of_all_fields());
    QStringList found;
    for (const ProgramField& field : program_fields())
        found += QLatin1String(field.name) + u'=' + in_file(field.name);
    QCOMPARE(found, QStringList({"pg_num=007",     "frequenza=1234.5",
                                 "loc_osc=1",      "loc_osc0=3",
                                 "sat_ad=1",       "qpsk_symbolrate=27500",
                                 "satchbw=8",      "diseqc_cmd=5",
                                 "diseqc_cmd2=6",  "lnb_volt=2",
                                 "K22=1",          "logger_pos=09",
                                 "logger_state=1", "monitor_state=1",
                                 "lev_min=45",     "lev_max=75",
                                 "noise_min=10",   "noise_max=20",
                                 "chber_min=1E-8", "chber_max=3E-2",
                                 "mer_min=11",     "mer_max=21"}));
}

void ProgramRecordTest::a_blank_program_leaves_its_numbers_unset() {
    stored(program_of_all_fields());
    stored(ProgramRecord());
    QCOMPARE(in_file(db::field::kFrequenza), QStringLiteral("-"));
    QCOMPARE(in_file(db::field::kSatchbw), QStringLiteral("0"));
    QCOMPARE(in_file(db::field::kLocOsc0), QStringLiteral("0"));
}

void ProgramRecordTest::an_empty_row_is_a_blank_program() {
    QVERIFY(is_blank(read_program(programs())));
    const ProgramRecord unset = read_program(programs(), -1);
    QCOMPARE(unset.diseqc_cmd, -1);
    QCOMPARE(unset.diseqc_cmd2, -1);
    QVERIFY(is_blank(read_program(programs(), kDiseqcNone)));
}

void ProgramRecordTest::a_row_is_read_as_it_stands() {
    stored(db::field::kFrequenza, 11777.25);
    stored(db::field::kSatchbw, 7.5);
    const db::Recordset set = stored(db::field::kLevMin, QStringLiteral(" 45 "));
    const ProgramRow row(set);
    QCOMPARE(row.plain(&R::frequenza), QStringLiteral("11777.25"));
    QCOMPARE(row.number(&R::satchbw), 7.5);
    QCOMPARE(row.text(&R::lev_min), QStringLiteral(" 45 "));
    // The boxes show less of it.
    const ProgramRecord shown = read_program(set);
    QCOMPARE(shown.frequenza, QStringLiteral("11777"));
    QCOMPARE(shown.satchbw, QStringLiteral("08"));
    QCOMPARE(shown.lev_min, QStringLiteral("45"));
}

void ProgramRecordTest::what_is_unset_is_told_from_zero() {
    const db::Recordset empty = programs();
    QVERIFY(!ProgramRow(empty).oscillator());
    QVERIFY(!ProgramRow(empty).digital());
    QCOMPARE(ProgramRow(empty).plain(&R::frequenza), QString());
    QCOMPARE(ProgramRow(empty).whole(&R::K22), 0);
    const db::Recordset zero = stored(ProgramRecord());
    QCOMPARE(ProgramRow(zero).oscillator(), std::optional(0));
    QCOMPARE(ProgramRow(zero).digital(), std::optional(false));
    QVERIFY(!ProgramRow(zero).direct());
    const db::Recordset seventh = stored(db::field::kLocOsc0, 7);
    QCOMPARE(ProgramRow(seventh).oscillator(), std::optional(0));
}

void ProgramRecordTest::one_alone_is_monitored_and_digital() {
    for (const int other : {-1, 0, 2}) {
        stored(db::field::kMonitorState, other);
        const db::Recordset set = stored(db::field::kSatAd, other);
        QVERIFY(!ProgramRow(set).monitored());
        QCOMPARE(ProgramRow(set).digital(), other == 0 ? std::optional(false) : std::nullopt);
        QVERIFY(!read_program(set).sat_ad);
    }
    stored(db::field::kMonitorState, 1);
    const db::Recordset set = stored(db::field::kSatAd, 1);
    QVERIFY(ProgramRow(set).monitored());
    QCOMPARE(ProgramRow(set).digital(), std::optional(true));
    QVERIFY(read_program(set).sat_ad);
}

void ProgramRecordTest::the_dish_is_told_what_was_chosen_and_nothing_else() {
    QCOMPARE(ProgramRow(programs()).diseqc(), QList<int>());
    stored(db::field::kDiseqcCmd, kDiseqcNone);
    const db::Recordset second = stored(db::field::kDiseqcCmd2, 0);
    QCOMPARE(ProgramRow(second).diseqc(), QList<int>{0});
    const db::Recordset both = stored(db::field::kDiseqcCmd, 5);
    QCOMPARE(ProgramRow(both).diseqc(), QList<int>({5, 0}));
}

void ProgramRecordTest::oscillators_come_back() {
    db::Recordset set = table_of(db::table::kConfigurazione);
    QCOMPARE(read_oscillators(set), Oscillators());
    const Oscillators written{QStringLiteral("9750"), QStringLiteral("10600"), QString(),
                              QStringLiteral("5150.5")};
    for (int index = 0; index < 4; ++index) {
        set.edit();
        write_oscillator(set, index, written[static_cast<std::size_t>(index)]);
        set.update();
    }
    QCOMPARE(read_oscillators(table_of(db::table::kConfigurazione)), written);
    set.edit();
    write_oscillator(set, 1, QStringLiteral(" "));
    set.update();
    QCOMPARE(read_oscillators(table_of(db::table::kConfigurazione))[1], QString());
}

void ProgramRecordTest::an_oscillator_entry_that_is_not_there_counts_as_the_first() {
    for (const int entry : {0, 1, 2, 3}) QCOMPARE(oscillator_entry(entry), entry);
    for (const int none : {-1, 4, 7, 1'000'000}) QCOMPARE(oscillator_entry(none), 0);
}

void ProgramRecordTest::oscillators_that_exist() {
    for (const double mhz : {3070.0, 9750.0, 12000.0}) QVERIFY(is_oscillator(mhz));
    for (const double mhz : {0.0, 3069.9, 12000.1}) QVERIFY(!is_oscillator(mhz));
}

void ProgramRecordTest::an_oscillator_takes_its_own_place_or_a_free_one() {
    Oscillators known{QStringLiteral("9750"), QString(), QStringLiteral("10600"), QString()};
    // Where it stands already, in whatever form and whatever is preferred.
    QCOMPARE(place_oscillator(known, 1, QStringLiteral("10600.0")), std::optional(2));
    QCOMPARE(place_oscillator(known, 3, QStringLiteral("5150")), std::optional(3));
    QCOMPARE(known[3], QStringLiteral("5150"));
    QCOMPARE(place_oscillator(known, 0, QStringLiteral("4000")), std::optional(1));
    QCOMPARE(known[1], QStringLiteral("4000"));
    const Oscillators full = known;
    QCOMPARE(place_oscillator(known, 0, QStringLiteral("4001")), std::nullopt);
    QCOMPARE(known, full);
}

void ProgramRecordTest::a_field_reads_as_the_file_has_it() {
    ProgramRecord program = program_of_all_fields();
    const auto text = [&](const ProgramField::Member& member) {
        const auto& fields = program_fields();
        return field_text(program, *std::ranges::find(fields, member, &ProgramField::member));
    };
    QCOMPARE(text(&R::logger_state), QStringLiteral("1"));
    QCOMPARE(text(&R::loc_osc0), QStringLiteral("3"));
    QCOMPARE(text(&R::mer_max), QStringLiteral("21"));
    program.logger_state = false;
    QCOMPARE(text(&R::logger_state), QStringLiteral("0"));
}

void ProgramRecordTest::what_was_typed_goes_out_as_a_number() {
    QCOMPARE(number_text(QStringLiteral(" 45,5 ")), QStringLiteral("45.5"));
    QCOMPARE(number_text(QStringLiteral("1E-8")), QStringLiteral("1E-8"));
    QCOMPARE(number_text(QStringLiteral("45 dB")), QStringLiteral("45"));
    QCOMPARE(number_text(QStringLiteral("what")), QStringLiteral("0"));
    QCOMPARE(number_text(QStringLiteral("  ")), QString());
}

void ProgramRecordTest::names_are_cut_trimmed_and_capital() {
    QCOMPARE(plan_name(QStringLiteral("  hot bird 13 east")), QStringLiteral("HOT BIRD"));
    QCOMPARE(plan_name(QStringLiteral("abcdefghijkl")), QStringLiteral("ABCDEFGHIJ"));
    QCOMPARE(plan_name(QStringLiteral("           x")), QString());
}

void ProgramRecordTest::a_name_has_ten_characters_in_capitals() {
    // One small letter can become two capitals.
    QCOMPARE(plan_name(QString::fromUtf8("straße süd")), QString::fromUtf8("STRASSE SÜ"));
    QCOMPARE(plan_name(QString::fromUtf8("ßßßßßßßßßß")), QStringLiteral("SSSSSSSSSS"));
    // A character outside the basic plane is kept whole or not at all.
    QCOMPARE(plan_name(QString::fromUtf8("abcdefghi\xF0\x9F\x93\xA1")),
             QStringLiteral("ABCDEFGHI"));
}

}  // namespace m47::programme

M47_DB_TEST_MAIN(m47::programme::ProgramRecordTest)
#include "program_record_test.moc"
