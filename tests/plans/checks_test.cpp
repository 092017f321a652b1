// SPDX-License-Identifier: GPL-3.0-or-later
// What the boxes of a program correct, where programs of a plan clash, and how the meter's answer
// is compared with a plan.
#include <QLocale>
#include <QTest>

#include "logger_table.h"
#include "numbers.h"
#include "plan_clashes.h"
#include "program_checks.h"
#include "used_numbers.h"

namespace m47::plans {
namespace {

programme::ProgramRecord numbered(const char* number, const char* position = "") {
    programme::ProgramRecord record;
    record.pg_num = QString::fromLatin1(number);
    record.logger_pos = QString::fromLatin1(position);
    return record;
}

}  // namespace

class ChecksTest : public QObject {
    Q_OBJECT

  private:
    static void boxes() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("corrected");
    }

  private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void program_number_data() {
        boxes();
        QTest::newRow("above") << "150"
                               << "099";
        QTest::newRow("highest") << "99"
                                 << "099";
        QTest::newRow("below") << "-3"
                               << "000";
        QTest::newRow("zero") << "0"
                              << "000";
        QTest::newRow("no number") << "abc"
                                   << "000";
        QTest::newRow("empty") << ""
                               << "000";
        QTest::newRow("good") << " 7 "
                              << "007";
        QTest::newRow("huge") << "1e999"
                              << "099";
    }
    void program_number() {
        QFETCH(QString, typed);
        QTEST(checked_program_number(typed), "corrected");
    }

    void frequency_data() {
        boxes();
        QTest::addColumn<bool>("direct");
        QTest::addColumn<QString>("oscillator");
        QTest::newRow("direct low") << "500"
                                    << "920.0" << true << "";
        QTest::newRow("direct high") << "2500"
                                     << "2150.0" << true << "";
        QTest::newRow("direct empty") << ""
                                      << "920.0" << true << "";
        QTest::newRow("direct good stays as typed") << "1000"
                                                    << "1000" << true << "10600";
        QTest::newRow("direct ends") << "2150"
                                     << "2150" << true << "";
        QTest::newRow("upper low") << "10000"
                                   << "10670" << false << "9750";
        QTest::newRow("upper high") << "12500"
                                    << "11900" << false << "9750";
        QTest::newRow("upper good") << "11778.4"
                                    << "11778.4" << false << "9750";
        QTest::newRow("c band low") << "2000"
                                    << "3000" << false << "5150";
        QTest::newRow("c band high") << "5000"
                                     << "4230" << false << "5150";
        QTest::newRow("just below 7000") << "9999"
                                         << "6079" << false << "6999";
        QTest::newRow("7000") << "1"
                              << "7920" << false << "7000";
        QTest::newRow("a zero in range") << "0"
                                         << "1080" << false << "2000";
        QTest::newRow("no oscillator") << ""
                                       << "" << false << "";
        QTest::newRow("no oscillator, typed") << "11778"
                                              << "11778" << false << " ";
        QTest::newRow("nonsense oscillator") << "11778"
                                             << "11778" << false << "abc";
    }
    void frequency() {
        QFETCH(QString, typed);
        QFETCH(bool, direct);
        QFETCH(QString, oscillator);
        QTEST(checked_frequency(typed, direct, oscillator), "corrected");
    }

    void a_decimal_comma_is_understood_where_it_is_usual() {
        QLocale::setDefault(QLocale(QLocale::Italian));
        QCOMPARE(checked_frequency("1000,5", true, ""), QStringLiteral("1000,5"));
        QCOMPARE(checked_frequency("2150,5", true, ""), QStringLiteral("2150.0"));
    }

    void symbol_rate_data() {
        boxes();
        QTest::newRow("high") << "60000"
                              << "45000";
        QTest::newRow("low") << "800"
                             << "1500";
        QTest::newRow("empty") << ""
                               << "1500";
        QTest::newRow("ends") << "45000"
                              << "45000";
        QTest::newRow("good") << "27500"
                              << "27500";
    }
    void symbol_rate() {
        QFETCH(QString, typed);
        QTEST(checked_symbol_rate(typed), "corrected");
    }

    void bandwidth_data() {
        boxes();
        QTest::addColumn<QString>("left");
        QTest::newRow("high") << "45"
                              << "40"
                              << "36";
        QTest::newRow("low") << "0"
                             << "01"
                             << "36";
        QTest::newRow("empty") << ""
                               << "01"
                               << "36";
        QTest::newRow("lowest") << "1"
                                << "01"
                                << "01";
        QTest::newRow("highest") << "40"
                                 << "40"
                                 << "40";
        QTest::newRow("good") << "8"
                              << "08"
                              << "08";
    }
    void bandwidth() {
        QFETCH(QString, typed);
        QTEST(bandwidth_on_enter(typed), "corrected");
        QTEST(bandwidth_on_leaving(typed), "left");
    }

    void oscillator_data() {
        boxes();
        QTest::newRow("low") << "2000"
                             << "03070";
        QTest::newRow("high") << "13000"
                              << "12000";
        QTest::newRow("good") << "9750"
                              << "9750";
        QTest::newRow("ends") << "3070"
                              << "3070";
        QTest::newRow("none") << ""
                              << "";
        QTest::newRow("blank") << "  "
                               << "";
        QTest::newRow("no number") << "x"
                                   << "03070";
    }
    void oscillator() {
        QFETCH(QString, typed);
        QTEST(checked_oscillator(typed), "corrected");
    }

    void level_limits_data() {
        QTest::addColumn<QString>("low");
        QTest::addColumn<QString>("high");
        QTest::addColumn<double>("offset");
        QTest::addColumn<QString>("new_low");
        QTest::addColumn<QString>("new_high");
        QTest::newRow("good") << "45"
                              << "75.5" << 0.0 << "45"
                              << "75.5";
        QTest::newRow("ends") << "20"
                              << "120" << 0.0 << "20"
                              << "120";
        QTest::newRow("equal is kept") << "50"
                                       << "50" << 0.0 << "50"
                                       << "50";
        QTest::newRow("too low") << "10"
                                 << "130" << 0.0 << "20"
                                 << "120";
        QTest::newRow("too high") << "130"
                                  << "125" << 0.0 << "119"
                                  << "120";
        QTest::newRow("too high, maximum low") << "121"
                                               << "50" << 0.0 << "119"
                                               << "120";
        QTest::newRow("crossed") << "70"
                                 << "60" << 0.0 << "70"
                                 << "71";
        QTest::newRow("at the end and crossed") << "120"
                                                << "60" << 0.0 << "120"
                                                << "120";
        QTest::newRow("empty") << ""
                               << "" << 0.0 << "20"
                               << "21";
        QTest::newRow("dBmV") << "-50"
                              << "70" << 60.0 << "-40"
                              << "60";
        QTest::newRow("dBm") << "-100"
                             << "20" << 109.0 << "-89"
                             << "11";
        QTest::newRow("dBm high") << "12"
                                  << "12" << 109.0 << "10"
                                  << "11";
        QTest::newRow("by value, not by text") << "100"
                                               << "20" << 0.0 << "100"
                                               << "101";
    }
    void level_limits() {
        QFETCH(QString, low);
        QFETCH(QString, high);
        QFETCH(double, offset);
        correct_level_limits(low, high, offset);
        QTEST(low, "new_low");
        QTEST(high, "new_high");
    }

    void ratio_limits_data() {
        QTest::addColumn<QString>("low");
        QTest::addColumn<QString>("high");
        QTest::addColumn<QString>("new_low");
        QTest::addColumn<QString>("new_high");
        QTest::newRow("good") << "10"
                              << "20"
                              << "10"
                              << "20";
        QTest::newRow("above starts again at 1") << "45"
                                                 << "50"
                                                 << "1"
                                                 << "50";
        QTest::newRow("below") << "0.5"
                               << "20"
                               << "1"
                               << "20";
        QTest::newRow("ends") << "40"
                              << "40"
                              << "40"
                              << "40";
        QTest::newRow("crossed") << "12.5"
                                 << "3"
                                 << "12.5"
                                 << "13.5";
        QTest::newRow("empty") << ""
                               << ""
                               << "1"
                               << "2";
    }
    void ratio_limits() {
        QFETCH(QString, low);
        QFETCH(QString, high);
        correct_ratio_limits(low, high);
        QTEST(low, "new_low");
        QTEST(high, "new_high");
    }

    void chber_limits_data() { ratio_columns(); }
    void chber_limits() {
        QFETCH(QString, low);
        QFETCH(QString, high);
        correct_chber_limits(low, high);
        QTEST(low, "new_low");
        QTEST(high, "new_high");
    }

    void all_limits_of_a_program() {
        programme::ProgramRecord record;
        record.lev_min = QStringLiteral("10");
        record.noise_min = QStringLiteral("45");
        record.chber_min = QStringLiteral("0.05");
        record.mer_min = QStringLiteral("30");
        record.mer_max = QStringLiteral("20");
        correct_limits(record, 0);
        QCOMPARE(record.lev_min, QStringLiteral("20"));
        QCOMPARE(record.noise_min, QStringLiteral("1"));
        QCOMPARE(record.chber_min, QStringLiteral("3E-2"));
        QCOMPARE(record.mer_min, QStringLiteral("30"));
        QCOMPARE(record.mer_max, QStringLiteral("31"));
    }

    void the_oscillator_is_corrected_before_the_frequency() {
        programme::ProgramRecord record;
        record.frequenza = QStringLiteral("1000");
        record.diseqc_cmd = -1;
        record.diseqc_cmd2 = 74;
        record.lnb_volt = 3;
        record.K22 = 2;
        record.logger_pos = QStringLiteral(" 03 ");
        record.satchbw = QStringLiteral("45");
        QString oscillator = QStringLiteral("13000");
        correct_fields(record, oscillator, 0);
        QCOMPARE(oscillator, QStringLiteral("12000"));
        QCOMPARE(record.frequenza, QStringLiteral("12920"));
        QCOMPARE(record.diseqc_cmd, 0);
        QCOMPARE(record.diseqc_cmd2, 0);
        QCOMPARE(record.lnb_volt, 0);
        QCOMPARE(record.K22, 0);
        QCOMPARE(record.logger_pos, QStringLiteral("03"));
        QCOMPARE(record.satchbw, QStringLiteral("40"));
    }

    void what_is_stored_is_what_is_shown() {
        programme::ProgramRecord record;
        record.loc_osc = true;
        record.frequenza = QStringLiteral("1500,55");
        record.satchbw = QStringLiteral("7,6 MHz");
        record.qpsk_symbolrate = QStringLiteral(" 27500 kS/s");
        record.lev_min = QStringLiteral("45,5");
        record.mer_min = QStringLiteral("1e1 dB");
        QString oscillator = QStringLiteral("9750,5 MHz");
        correct_fields(record, oscillator, 0);
        QCOMPARE(oscillator, QStringLiteral("9750.5"));
        QCOMPARE(record.frequenza, QStringLiteral("1500.6"));
        QCOMPARE(record.satchbw, QStringLiteral("08"));
        QCOMPARE(record.qpsk_symbolrate, QStringLiteral("27500"));
        QCOMPARE(record.lev_min, QStringLiteral("45.5"));
        QCOMPARE(record.mer_min, QStringLiteral("10"));
        // Again it changes nothing.
        const programme::ProgramRecord once = record;
        correct_fields(record, oscillator, 0);
        QCOMPARE(record, once);
    }

    void only_a_programs_own_number_is_in_use() {
        UsedNumbers used;
        for (const char* number : {"-1", "1.5", "100", "1000", "1e9"}) used.take(numbered(number));
        QCOMPARE(used.first_free(), QStringLiteral("000"));
        used.take(numbered(""));
        QCOMPARE(used.first_free(), QStringLiteral("001"));
        for (int number = 1; number < 99; ++number)
            used.take(numbered(qPrintable(QString::number(number))));
        QCOMPARE(used.first_free(), QStringLiteral("099"));
        used.take(numbered("99"));
        QCOMPARE(used.first_free(), QString());
    }

    void the_next_position_follows_the_largest() {
        QCOMPARE(next_logger_position({}), QStringLiteral("01"));
        QCOMPARE(next_logger_position({numbered("1"), numbered("2", "07"), numbered("3", "03")}),
                 QStringLiteral("08"));
        QCOMPARE(next_logger_position({numbered("1", "40")}), QStringLiteral("41"));
        QCOMPARE(next_logger_position({numbered("1", "41")}), QString());
        QCOMPARE(next_logger_position({numbered("1", "x")}), QStringLiteral("01"));
    }

    void clashes_go_by_value() {
        const std::vector<programme::ProgramRecord> others{numbered("007", "03"), numbered("", "")};
        QCOMPARE(find_clash(others, numbered("7", "")), Clash::number);
        QCOMPARE(find_clash(others, numbered("8", "3")), Clash::logger_position);
        QCOMPARE(find_clash(others, numbered("7", "03")), Clash::number);
        QCOMPARE(find_clash(others, numbered("008", "04")), Clash::none);
        // What has no number or no position clashes with nothing.
        QCOMPARE(find_clash(others, numbered("000", "")), Clash::none);
        QCOMPARE(find_clash(others, numbered("", "00")), Clash::none);
    }

    void table_lines_end_in_three_ways() {
        QCOMPARE(table_lines(QStringLiteral("a\rb\nc\r\nd")), QStringList({"a", "b", "c", "d"}));
        QCOMPARE(table_lines(QStringLiteral("a\r")), QStringList({"a"}));
        QCOMPARE(table_lines(QStringLiteral("a\r\rb")), QStringList({"a", "", "b"}));
        QCOMPARE(table_lines(QString()), QStringList());
    }

    void the_parts_of_a_table_line() {
        const QString line = QStringLiteral("03 07 01");
        QCOMPARE(table_line_number(line), QStringLiteral("03"));
        QCOMPARE(table_line_program(line), QStringLiteral("07"));
        QCOMPARE(table_line_state(line), QStringLiteral("01"));
        QVERIFY(table_line_active(line));
        QVERIFY(!table_line_active(QStringLiteral("03 07 00")));
        QVERIFY(!table_line_active(QStringLiteral("03 07")));
        QVERIFY(!table_line_active(QString()));
    }

    void the_table_is_compared_line_by_line() {
        programme::ProgramRecord active = numbered("007", "03");
        active.logger_state = true;
        const std::vector<programme::ProgramRecord> plan{active, numbered("008", "04")};
        const auto rows_of = [&](UploadMode mode, const char* before, const char* after) {
            QStringList rows;
            for (const TableComparison& row :
                 compare_table(plan, mode, QString::fromLatin1(before), QString::fromLatin1(after)))
                rows += QStringLiteral("%1|%2|%3|%4")
                            .arg(row.line, row.planned, row.found,
                                 row.judged ? (row.matches() ? QStringLiteral("good")
                                                             : QStringLiteral("bad"))
                                            : QStringLiteral("-"));
            return rows;
        };
        QCOMPARE(rows_of(kAppend, "", "01 05 01\r03 07 01"),
                 QStringList({"01||05 01|-", "03|07 01|07 01|good"}));
        QCOMPARE(rows_of(kDisable, "01 05 01\r02 06 00\r03 09 01", "01 05 01\r02 06 00\r03 07 01"),
                 QStringList({"01|05 00|05 01|bad", "02|06 00|06 00|good", "03|07 01|07 01|good"}));
        QCOMPARE(rows_of(kReplace, "", "04 08 01"),
                 QStringList({"03|07 01||bad", "04||08 01|bad"}));
        // What is not active is as good as not there.
        QCOMPARE(rows_of(kReplace, "", "03 07 00\r04 08 00"),
                 QStringList({"03|07 01|07 00|bad", "04||08 00|good"}));
        QCOMPARE(rows_of(kDisable, "01 05 01\r02 06 01", "02 09 00\r03 07 01"),
                 QStringList({"01|05 00||good", "02|06 00|09 00|good", "03|07 01|07 01|good"}));
    }

  private:
    static void ratio_columns() {
        QTest::addColumn<QString>("low");
        QTest::addColumn<QString>("high");
        QTest::addColumn<QString>("new_low");
        QTest::addColumn<QString>("new_high");
        QTest::newRow("usual") << "1E-8"
                               << "3E-2"
                               << "1E-8"
                               << "3E-2";
        QTest::newRow("above") << "0.05"
                               << "0.06"
                               << "3E-2"
                               << "0.06";
        QTest::newRow("below") << "-1"
                               << "3E-2"
                               << "1E-8"
                               << "3E-2";
        QTest::newRow("end") << "3E-2"
                             << "3E-2"
                             << "3E-2"
                             << "3E-2";
        QTest::newRow("zero is no limit and stays") << "0"
                                                    << "1E-3"
                                                    << "0"
                                                    << "1E-3";
        QTest::newRow("crossed") << "1E-3"
                                 << "1E-5"
                                 << "1E-3"
                                 << "1.001";
        QTest::newRow("corrected and crossed") << "0.05"
                                               << "1E-5"
                                               << "3E-2"
                                               << "1.03";
        QTest::newRow("empty") << ""
                               << ""
                               << ""
                               << "";
    }
};

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::ChecksTest)
#include "checks_test.moc"
