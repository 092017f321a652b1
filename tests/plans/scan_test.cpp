// SPDX-License-Identifier: GPL-3.0-or-later
// DVB scan tables: made-up ones, and all of the Debian package dtv-scan-tables.
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTest>
#include <algorithm>

#include "diseqc_commands.h"
#include "plan_file.h"

namespace m47::plans {

class ScanTest : public QObject {
    Q_OBJECT

  private:
    static ImportFile parsed(const QByteArray& table) { return parse_import_file(table, 0); }

    static ImportPreview into_empty_plan(const QByteArray& table) {
        return preview_import(parsed(table).candidates, {programme::ProgramRecord()},
                              programme::Oscillators(), 0);
    }

    static QByteArray content_of(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
        return file.readAll();
    }

    /// The lines of `table` that begin with `word`, blanks in front aside.
    static int lines_with(const QByteArray& table, const QByteArray& word) {
        const QList<QByteArray> lines = table.split('\n');
        return static_cast<int>(std::ranges::count_if(
            lines, [&](const QByteArray& line) { return line.trimmed().startsWith(word); }));
    }

    /// Frequency, polarisation and rate of each block, which stand in this order in all tables.
    static QSet<QByteArrayList> carriers_of(const QByteArray& table) {
        QSet<QByteArrayList> carriers;
        QByteArrayList carrier;
        for (const QByteArray& line : table.split('\n')) {
            const QByteArrayList words = line.simplified().split(' ');
            if (words[0] == "FREQUENCY") carrier.clear();
            if (words[0] == "FREQUENCY" || words[0] == "POLARIZATION" || words[0] == "SYMBOL_RATE")
                carrier += words.last();
            if (words[0] == "SYMBOL_RATE") carriers += carrier;
        }
        return carriers;
    }

    static bool is_for_the_meter(const QByteArrayList& carrier) {
        const qlonglong number = carrier[0].toLongLong();
        const qlonglong khz = number < 100000 ? number * 1000 : number;
        const qlonglong rate = carrier[2].toLongLong();
        const bool c_band = khz >= 3000000 && khz < 4231000;
        const bool ku_band = khz >= 10670000 && khz < 12751000;
        return (c_band || ku_band) && rate >= 1500000 && rate <= 45000000;
    }

    static QByteArray block(const QByteArray& heading, const QByteArray& khz) {
        return heading + "\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = " + khz +
               "\n\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = AUTO\n\n";
    }

  private Q_SLOTS:
    void scan_tables_of_both_forms_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("old") << QByteArray(
            "# Somewhere\n# freq pol sr fec\nS 11719500 H 27500000 3/4\nS2 10719000 V 29900000 "
            "AUTO AUTO QPSK # comment\n");
        QTest::newRow("new") << QByteArray(
            "# Somewhere\n\n[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 11719500\n"
            "\tPOLARIZATION = HORIZONTAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = 3/4\n\n"
            "[CHANNEL]\r\n  delivery_system=DVBS2\r\n  FREQUENCY = 10719000\r\n"
            "  POLARIZATION = VERTICAL\r\n  SYMBOL_RATE = 29900000\r\n");
    }
    void scan_tables_of_both_forms() {
        QFETCH(QByteArray, text);
        const ImportPreview preview = into_empty_plan(text);
        QCOMPARE(preview.added(), 2);
        const programme::ProgramRecord& upper = preview.rows[0].record;
        QCOMPARE(upper.pg_num, QStringLiteral("000"));
        QCOMPARE(upper.frequenza, QStringLiteral("11720"));
        QCOMPARE(upper.qpsk_symbolrate, QStringLiteral("27500"));
        QVERIFY(upper.sat_ad && !upper.loc_osc);
        QCOMPARE(upper.lnb_volt, 2);
        QCOMPARE(upper.K22, 1);
        QCOMPARE(upper.loc_osc0, 1);
        QCOMPARE(upper.diseqc_cmd, programme::kDiseqcNone);
        const programme::ProgramRecord& lower = preview.rows[1].record;
        QCOMPARE(lower.frequenza, QStringLiteral("10719"));
        QCOMPARE(lower.lnb_volt, 1);
        QCOMPARE(lower.K22, 0);
        QCOMPARE(lower.loc_osc0, 0);
        QCOMPARE(preview.oscillators,
                 programme::Oscillators({QStringLiteral("9750"), QStringLiteral("10600")}));
    }

    void the_bands_have_their_oscillators() {
        const ImportPreview preview = into_empty_plan(
            "S 11699000 V 27500000 3/4\nS 11700000 V 27500000 3/4\nS 10669000 V 27500000 3/4\n"
            "S 10670000 L 27500000 3/4\nS 12750000 R 27500000 3/4\nS 12752000 V 27500000 3/4\n"
            "S 3400000 H 27500000 3/4\nS 20000000 H 27500000 3/4\n");
        QStringList rows;
        for (const ImportRow& row : preview.rows)
            rows += QStringLiteral("%1 %2 %3 %4 %5")
                        .arg(row.line)
                        .arg(row.record.pg_num, row.record.frequenza, row.oscillator)
                        .arg(row.problem == ImportProblem::out_of_range ? "5 " : "added ");
        QCOMPARE(rows,
                 QStringList({"1 000 11699 9750 added ", "2 001 11700 10600 added ", "3  10669  5 ",
                              "4 002 10670 9750 added ", "5 003 12750 10600 added ", "6  12752  5 ",
                              "7 004 3400 5150 added ", "8  20000  5 "}));
        QCOMPARE(preview.rows[3].record.lnb_volt, 2);
        QCOMPARE(preview.rows[4].record.lnb_volt, 1);
        QCOMPARE(preview.rows[6].record.K22, 0);
    }

    void what_a_scan_table_does_not_say_clearly_is_named() {
        const QByteArray table =
            "S 11778000 V\nS 11778000 X 27500000\nS\nnonsense\n[VDR]\n"
            "[CHANNEL]\nDELIVERY_SYSTEM = DSS\nFREQUENCY = 11778000\nPOLARIZATION = VERTICAL\n"
            "SYMBOL_RATE = 27500x\n";
        const std::vector<ImportCandidate> candidates = parsed(table).candidates;
        QCOMPARE(candidates.size(), std::size_t(6));
        for (const ImportCandidate& candidate : candidates)
            QCOMPARE(candidate.problem, ImportProblem::unreadable);
        QCOMPARE(candidates[0].unread, QStringList{"SYMBOL_RATE: "});
        QCOMPARE(candidates[1].unread, QStringList{"POLARIZATION: X"});
        QCOMPARE(candidates[5].unread,
                 QStringList({"DELIVERY_SYSTEM: DSS", "SYMBOL_RATE: 27500X"}));
        QCOMPARE(candidates[5].line, 6);
        QCOMPARE(into_empty_plan(table).added(), 0);
    }

    void a_block_of_any_heading_is_a_transponder() {
        const ImportFile file =
            parsed(block("[CHANNEL]", "11778000") + block("[Sky UK]", "11798000") +
                   block("[channel 3496000]", "3496000") + block("[[Mir test card]]", "11817000") +
                   block("[TV #5] # see [1]", "11837000"));
        QVERIFY(file.understood);
        QStringList mhz;
        for (const ImportCandidate& candidate : file.candidates) {
            QCOMPARE(candidate.problem, ImportProblem::none);
            mhz += candidate.record.frequenza;
        }
        QCOMPARE(mhz, QStringList({"11778", "11798", "3496", "11817", "11837"}));
        QStringList names;
        for (const ImportCandidate& candidate : file.candidates) names += candidate.name;
        QCOMPARE(names, QStringList({"", "Sky UK", "", "[Mir test card]", "TV #5"}));
    }

    void streams_of_one_transponder_are_one_row() {
        // One beam each: another polarisation, frequency or rate is another transponder.
        const ImportFile file = parsed(
            "S 11778000 V 27500000 3/4\nS2 11778000 V 27500000 3/4\nS 11778000 H 27500000 3/4\n"
            "S 11778500 V 27500000 3/4\nS 11778000 V 27500000 5/6\nS 11778000 V 2750000 3/4\n");
        QStringList rows;
        for (const ImportCandidate& candidate : file.candidates)
            rows += QStringLiteral("%1: %2").arg(candidate.line).arg(candidate.streams);
        QCOMPARE(rows, QStringList({"1: 3", "3: 1", "4: 1", "6: 1"}));
    }

    void what_a_receiver_of_qpsk_does_not_lock_is_marked() {
        const ImportFile file = parsed(
            "S 11778000 V 27500000 3/4\nS2 11779000 V 27500000 AUTO AUTO QPSK\n"
            "S1 11780000 V 27500000 AUTO AUTO QPSK\nS 11781000 V 27500000 3/4 AUTO 8PSK\n" +
            block("[A]", "11782000") + "MODULATION = PSK/8\n" + block("[B]", "11783000") +
            "MODULATION = APSK/16\n" +
            // Called both, it may be what the meter locks.
            "S2 11784000 V 27500000\nS 11784000 V 27500000\n");
        QStringList marked;
        for (const ImportCandidate& candidate : file.candidates) {
            QCOMPARE(candidate.problem, ImportProblem::none);
            if (candidate.beyond_qpsk) marked += candidate.record.frequenza;
        }
        QCOMPARE(marked, QStringList({"11779", "11781", "11782", "11783"}));
    }

    void what_is_no_number_is_left_out_data() {
        QTest::addColumn<QByteArray>("table");
        QTest::newRow("frequency") << QByteArray("S 11778x V 27500000 3/4\n");
        QTest::newRow("frequency with words") << block("[A]", "11778000 kHz");
        QTest::newRow("rate") << QByteArray("S 11778000 V 27500000x 3/4\n");
        QTest::newRow("no rate") << QByteArray("S 11778000 V\n");
        QTest::newRow("nothing") << QByteArray("[CHANNEL]\n");
    }
    void what_is_no_number_is_left_out() {
        QFETCH(QByteArray, table);
        const ImportFile file = parsed(table);
        QCOMPARE(file.candidates.size(), std::size_t(1));
        QCOMPARE(file.candidates[0].problem, ImportProblem::unreadable);
    }

    void a_symbol_rate_that_the_meter_does_not_measure_is_left_out() {
        const ImportFile file = parsed(
            "S 11778000 V 1499999 3/4\nS 11779000 V 1500000 3/4\n"
            "S 11780000 V 45000000 3/4\nS 11781000 V 45000001 3/4\n");
        const ImportPreview preview = preview_import(file.candidates, {}, {}, 0);
        QStringList rates;
        for (const ImportRow& row : preview.rows)
            rates += row.added() ? row.record.qpsk_symbolrate : QStringLiteral("-");
        QCOMPARE(rates, QStringList({"-", "1500", "45000", "-"}));
    }

    void a_frequency_in_mhz_is_understood() {
        // One of the package's tables has it so.
        const ImportPreview preview =
            preview_import(parsed(block("[A]", "12207")).candidates, {}, {}, 0);
        QCOMPARE(preview.rows[0].record.frequenza, QStringLiteral("12207"));
        QCOMPARE(preview.rows[0].corrections, QStringList{"FREQUENCY: 12207 → 12207000"});
        QVERIFY(preview.rows[0].added());
    }

    void terrestrial_and_cable_channels_are_no_rows_data() {
        QTest::addColumn<QByteArray>("table");
        QTest::newRow("old") << QByteArray(
            "T 594000000 8MHz AUTO AUTO\nT2 602000000 8MHz AUTO\nC 121000000 6900000 NONE QAM256\n"
            "A 57028615 8VSB\n");
        QTest::newRow("new") << QByteArray(
            "[Rede Vida]\nDELIVERY_SYSTEM = DVBT\nFREQUENCY = 594000000\nBANDWIDTH_HZ = 8000000\n"
            "[CHANNEL]\nDELIVERY_SYSTEM = DVBC/ANNEX_A\nFREQUENCY = 121000000\n"
            "[CHANNEL]\nDELIVERY_SYSTEM = ATSC\nFREQUENCY = 57028615\n"
            "[CHANNEL]\nDELIVERY_SYSTEM = ISDBT\nFREQUENCY = 57028615\n");
    }
    void terrestrial_and_cable_channels_are_no_rows() {
        QFETCH(QByteArray, table);
        const ImportFile file = parsed(table);
        QVERIFY(file.understood);
        QCOMPARE(file.candidates.size(), std::size_t(0));
        QCOMPARE(file.not_satellite, 4);
    }

    void a_text_is_no_scan_table() {
        QVERIFY(!parsed("A plan of mine\n").understood);
        QVERIFY(!parsed("T\n").understood);
    }

    void the_code_rate_is_kept_where_the_table_knows_it() {
        const QByteArray block =
            "[CHANNEL]\n\tDELIVERY_SYSTEM = %1\n\tFREQUENCY = %2\n\tPOLARIZATION = VERTICAL\n"
            "\tSYMBOL_RATE = 27500000\n\tINNER_FEC = %3\n";
        const auto entry = [&](const char* system, const char* khz, const char* code) {
            return QString(block).arg(QString(system), QString(khz), QString(code)).toLatin1();
        };
        const std::vector<ImportCandidate> found =
            parsed(
                "S 11719500 H 27500000 5/6\nS2 10719000 V 29900000 3/4 AUTO QPSK\n"
                "S 10750000 V 27500000\n" +
                entry("DVBS", "11778000", "3/4") + entry("DVBS", "11778000", "AUTO") +
                entry("DVBS2", "11800000", "3/4") + entry("DVBS", "11836000", "9/10") +
                // Two streams that contradict each other.
                entry("DVBS", "11900000", "2/3") + entry("DVBS", "11900000", "7/8") +
                entry("DVBS", "11900000", "2/3"))
                .candidates;
        QStringList codes;
        for (const ImportCandidate& one : found)
            codes += one.code ? programme::code_rate_text(*one.code) : QString();
        QCOMPARE(codes, QStringList({"5/6", "", "", "3/4", "", "", ""}));
    }

    void every_table_of_the_package_is_understood_data() {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral("/usr/share/dvb/dvb-s"));
        const QStringList names = folder.entryList(QDir::Files);
        // Install dtv-scan-tables where this fails.
        QVERIFY2(names.size() >= 328, qPrintable(QString::number(names.size())));
        for (const QString& name : names) QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
    void every_table_of_the_package_is_understood() {
        QFETCH(QString, path);
        const QByteArray table = content_of(path);
        const int blocks = lines_with(table, "[");
        QVERIFY(blocks > 0);
        QCOMPARE(lines_with(table, "FREQUENCY"), blocks);
        const ImportFile file = parsed(table);
        int entries = file.not_satellite;
        for (const ImportCandidate& candidate : file.candidates) {
            QCOMPARE(candidate.unread, QStringList());
            entries += candidate.streams;
        }
        QCOMPARE(entries, blocks);
        const QSet<QByteArrayList> carriers = carriers_of(table);
        QCOMPARE(static_cast<qsizetype>(file.candidates.size()), carriers.size());

        const ImportPreview preview = into_empty_plan(table);
        const auto good = std::ranges::count_if(carriers, is_for_the_meter);
        const auto problems = [&](ImportProblem problem) {
            return std::ranges::count(preview.rows, problem, &ImportRow::problem);
        };
        QCOMPARE(preview.added(), std::min<int>(100, static_cast<int>(good)));
        QCOMPARE(preview.added() + problems(ImportProblem::no_number), good);
        QCOMPARE(good + problems(ImportProblem::out_of_range) +
                     problems(ImportProblem::rate_out_of_range),
                 carriers.size());
    }

    void the_old_form_of_every_table_gives_the_same_programs_data() {
        every_table_of_the_package_is_understood_data();
    }
    void the_old_form_of_every_table_gives_the_same_programs() {
        QFETCH(QString, path);
        const QString old =
            QString(path).replace(QLatin1String("/dvb/"), QLatin1String("/dvb/dvb-legacy/"));
        const std::vector<ImportCandidate> one = parsed(content_of(path)).candidates;
        const std::vector<ImportCandidate> other = parsed(content_of(old)).candidates;
        QCOMPARE(other.size(), one.size());
        for (std::size_t k = 0; k < one.size(); ++k) {
            QCOMPARE(other[k].record, one[k].record);
            QCOMPARE(other[k].problem, one[k].problem);
            QCOMPARE(other[k].streams, one[k].streams);
            // The old form does not name the modulation of DVB-S.
            QVERIFY(one[k].beyond_qpsk || !other[k].beyond_qpsk);
        }
    }
};

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::ScanTest)
#include "scan_test.moc"
