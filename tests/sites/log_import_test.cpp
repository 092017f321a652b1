// SPDX-License-Identifier: GPL-3.0-or-later
// Logs of the measurement page become visits, and what cannot be read is listed.
#include <QTemporaryDir>
#include <QTest>

#include "log_import.h"
#include "measurement_log.h"
#include "measurement_row.h"
#include "site_merge.h"
#include "sites_support.h"
#include "visit_comparison.h"

namespace m47::sites {

using measurement::Quantity;

class LogImportTest : public QObject {
    Q_OBJECT

  private:
    const Site site_ = a_site(QStringLiteral("Sole"));
    const QTimeZone rome_{"Europe/Rome"};

    static Texts texts(int language = kEnglish) {
        Texts made;
        made.language = language;
        return made;
    }
    LogPreview read(const QByteArray& log) const {
        return read_log(log, QStringLiteral("rows.log"), site_, rome_);
    }
    static QByteArray line(const char* date, const char* time, const char* mer = "12.4",
                           const char* status = "PASS") {
        return QByteArray(date) + '\t' + time + "\t11778.0\t10600\t58.3\t<1.0E-8\t2.0E-9\t-0.75\t" +
               mer + "\t\t" + status + "\r\n";
    }
    QStringList visits(const QByteArray& log) const {
        QStringList told;
        for (const LogVisit& visit : read(log).visits)
            told += QStringLiteral("%1 from %2").arg(visit.lines.size()).arg(visit.lines.front());
        return told;
    }

  private Q_SLOTS:
    void a_line_becomes_a_measurement() {
        const LogPreview log = read(line("21/11/26", "08:00:00") +
                                    "21/07/26\t09:10:11\t 1178.0\t\t57.9\t\t\t\t\t\t\n");
        QVERIFY(!log.refused && log.unread.empty());
        QCOMPARE(log.visits.size(), 2U);
        const VisitMeasurement& digital = log.visits[0].whole.rows[0];
        // Winter: an hour ahead of UTC.
        QCOMPARE(digital.instant.offset, 3600);
        QCOMPARE(digital.instant.utc, 1795244400.0);
        QCOMPARE(digital.measurement.instant, std::optional(1795248000.0));
        QVERIFY(!digital.measurement.unit && !digital.measurement.program.known());
        QVERIFY(digital.measurement.mode == measurement::MeasureMode::none);
        QVERIFY(digital.measurement.verdict == measurement::Verdict::pass);
        QCOMPARE(digital.measurement.frequency, std::optional(11778.0F));
        QCOMPARE(digital.measurement.oscillator, std::optional(10600.0F));
        QVERIFY(!digital.measurement.limits[2]);
        QCOMPARE(log_cells(log, 0, 0).join(u'|'),
                 QStringLiteral("1|1|2026-11-21 08:00:00|11778.0|10600|58.3|<1.0E-8|2.0E-9|-0.8|"
                                "12.4|PASS"));
        QCOMPARE(log_heading(texts()).size(), log_cells(log, 0, 0).size());
        const VisitMeasurement& analog = log.visits[1].whole.rows[0];
        QCOMPARE(analog.instant.offset, 7200);
        QVERIFY(!analog.measurement.oscillator);
        QVERIFY(!analog.measurement.reading(Quantity::mer).measured());
        QCOMPARE(log.visits[1].whole.visit.remarks, QStringLiteral("rows.log"));
        QVERIFY(log.visits[1].whole.visit.begun == analog.instant);
        QVERIFY(log.visits[1].whole.visit.ended == analog.instant);
        QCOMPARE(log_text(log, texts()),
                 QStringLiteral("2 visits with 2 measurements; 0 lines cannot be read. A log has "
                                "the time of a wall clock alone, without a zone: it is taken as "
                                "that of Europe/Rome."));
    }

    void what_cannot_be_read_is_listed_with_its_reason_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("english");
        QTest::addColumn<QString>("italian");
        const auto row = [](const QByteArray& text, const char* english, const char* italian) {
            QTest::newRow(english)
                << text << QString::fromUtf8(english) << QString::fromUtf8(italian);
        };
        row("", "1 fields instead of 11", "1 campi invece di 11");
        row(line("21/11/26", "08:00:00").trimmed() + "\tmore", "12 fields instead of 11",
            "12 campi invece di 11");
        row(line("11/21/26", "08:00:00"), "no date and time: 11/21/26 08:00:00",
            "data e ora mancanti o errate: 11/21/26 08:00:00");
        row(line("21/11/26", "24:00:00"), "no date and time: 21/11/26 24:00:00",
            "data e ora mancanti o errate: 21/11/26 24:00:00");
        row(line("21/11/26", "08:00:00", "12,4"), "MER is no number: 12,4",
            "MER non è un numero: 12,4");
        row(line("21/11/26", "08:00:00", "12.4 dB"), "MER is no number: 12.4 dB",
            "MER non è un numero: 12.4 dB");
        row(line("21/11/26", "08:00:00", "nan"), "MER is no number: nan",
            "MER non è un numero: nan");
        row(line("21/11/26", "08:00:00", "-inf"), "MER is no number: -inf",
            "MER non è un numero: -inf");
        row(line("21/11/26", "08:00:00", "<"), "MER is no number: <", "MER non è un numero: <");
        row(line("21/11/26", "08:00:00", "1e39"), "MER is no number: 1e39",
            "MER non è un numero: 1e39");
        row(line("21/11/26", "08:00:00", "12.4", "OK"), "STATUS is neither PASS nor FAIL: OK",
            "STATUS non è né PASS né FAIL: OK");
        row("21/11/26\t08:00:00\t>11778\t\t\t\t\t\t\t\t", "FR is no number: >11778",
            "FR non è un numero: >11778");
        row("21/11/26\t08:00:00\t1\t\t\t-1e-5\t\t\t\t\t", "BER is no number: -1e-5",
            "BER non è un numero: -1e-5");
        row("21/11/26\t08:00:00\t\t\t\t\t\t\t\t\tPASS", "nothing was measured",
            "nulla è stato misurato");
        row(QByteArray(2000, 'x'), "longer than a line of a log",
            "più lunga di una riga di un log");
    }
    void what_cannot_be_read_is_listed_with_its_reason() {
        QFETCH(QByteArray, text);
        QFETCH(QString, english);
        QFETCH(QString, italian);
        while (text.endsWith('\r') || text.endsWith('\n')) text.chop(1);
        const LogPreview log = read(line("21/11/26", "08:00:00") + text + '\n' +
                                    line("21/11/26", "08:01:00", "ERROR"));
        QCOMPARE(log.unread.size(), 1U);
        QCOMPARE(unread_cells(log.unread[0], texts()).mid(0, 2), QStringList({"2", english}));
        QCOMPARE(unread_cells(log.unread[0], texts(kItalian))[1], italian);
        QVERIFY(log.unread[0].text.size() <= 200);
        // The lines around it stay what they are.
        QCOMPARE(log.visits.size(), 1U);
        QCOMPARE(log.visits[0].lines, std::vector<int>({1, 3}));
        QVERIFY(!log.visits[0].whole.rows[1].measurement.reading(Quantity::mer).measured());
    }

    void what_is_no_log_is_refused_with_one_sentence() {
        const LogPreview many = read(QByteArray(20'000, '\n'));
        QCOMPARE(log_text(many, texts()),
                 QStringLiteral("This is no log: more than 10000 of its lines cannot be read."));
        QVERIFY(many.visits.empty() && many.unread.empty());
        const LogPreview large = read(QByteArray(kMostLog + 1, '\n'));
        QCOMPARE(log_text(large, texts(kItalian)),
                 QStringLiteral("Questo file è più lungo di un log che si possa importare."));
        QVERIFY(!read({}).refused && read({}).visits.empty());
    }

    /// Beside a frequency of the first IF stands the oscillator of the box, which was not used.
    void a_frequency_of_the_first_if_has_no_oscillator() {
        const LogPreview log = read(
            "21/07/26\t09:10:11\t1178.0\t10600\t57.9\t\t\t\t\t\t\n"
            "21/07/26\t09:10:12\t 3700.0\t5150\t57.9\t\t\t\t\t\t\n");
        const auto& rows = log.visits.at(0).whole.rows;
        QVERIFY(!rows[0].measurement.oscillator);
        QCOMPARE(rows[1].measurement.oscillator, std::optional(5150.0F));
    }

    void a_clock_set_back_leaves_the_visit_its_time() {
        const LogPreview log = read(line("21/11/26", "10:41:13") + line("21/11/26", "09:00:00") +
                                    line("21/11/26", "09:30:00"));
        QCOMPARE(log.visits.size(), 1U);
        const Visit& visit = log.visits[0].whole.visit;
        QCOMPARE(visit.ended->utc - visit.begun.utc, 101.0 * 60 + 13);
    }

    void a_long_gap_begins_another_visit() {
        QCOMPARE(visits(line("21/11/26", "08:00:00") + line("21/11/26", "12:00:00") +
                        line("21/11/26", "16:00:01") + line("21/11/26", "19:00:00")),
                 QStringList({"2 from 1", "2 from 3"}));
        // A run over midnight is one.
        QCOMPARE(visits(line("21/11/26", "23:59:59") + "?\n" + line("22/11/26", "00:00:01")),
                 QStringList({"2 from 1"}));
        // A clock set right goes on; a log with an older one behind it does not.
        QCOMPARE(visits(line("21/11/26", "08:00:00") + line("21/11/26", "07:00:00")),
                 QStringList({"2 from 1"}));
        QCOMPARE(visits(line("21/11/26", "08:00:00") + line("20/11/26", "08:00:00")),
                 QStringList({"1 from 1", "1 from 2"}));
    }

    void the_same_log_twice_changes_nothing_and_a_grown_one_adds() {
        const QTemporaryDir folder;
        const auto store = opened_sites(folder.path());
        const QByteArray same = line("21/11/26", "08:00:00");
        const QByteArray log = same + same + line("22/11/26", "08:00:00") + same;
        const auto merge_of = [&](const QByteArray& bytes) {
            return plan_merge(site_file_of(read(bytes), site_), *store);
        };
        QCOMPARE(merge_of(log).new_rows, 4);
        QCOMPARE(merge_of(log).new_visits, 3);
        apply_merge(site_file_of(read(log), site_), merge_of(log), *store);
        QVERIFY(!merge_of(log).changes_anything() && merge_of(log).conflicts.empty());
        QCOMPARE(merge_of(log).known, 1 + 3 + 4);
        const SiteMerge grown = merge_of(log + line("21/11/26", "09:00:00"));
        QCOMPARE(grown.new_rows, 1);
        QCOMPARE(grown.new_visits, 0);
        // The visit ends later now, which the user is shown.
        QCOMPARE(grown.conflicts.size(), 1U);
        QCOMPARE(conflict_lines(grown.conflicts[0], texts()).size(), 1);
        QCOMPARE(conflict_lines(grown.conflicts[0], texts())[0].what, QStringLiteral("Ended"));
        // At another site it is another visit.
        QCOMPARE(plan_merge(site_file_of(read_log(log, {}, a_site("Luna"), rome_), site_), *store)
                     .new_rows,
                 4);
    }

    void whatever_a_log_says_goes_through_a_file_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("frequency")
            << QByteArray("21/11/26\t08:00:00\t290600000\t3e38\t1\t\t\t\t\t\t");
        QTest::newRow("early") << line("01/01/100", "00:00:00");
        QTest::newRow("late") << line("31/12/9999", "23:59:59");
    }
    void whatever_a_log_says_goes_through_a_file() {
        QFETCH(QByteArray, text);
        for (const char* zone : {"Europe/Rome", "Pacific/Kiritimati", "America/Adak"}) {
            const LogPreview log = read_log(text, {}, site_, QTimeZone(zone));
            QCOMPARE(log.visits.size(), 1U);
            const QByteArray file = site_file_bytes(site_file_of(log, site_));
            const SiteFileRead again = read_site_file(file);
            QVERIFY2(!again.refused, file.constData());
            QCOMPARE(site_file_bytes(again.sites), file);
        }
    }

    void a_log_is_compared_with_a_visit_of_a_plan() {
        const LogPreview log = read(line("21/11/26", "08:00:00", "9.4"));
        VisitMeasurement now = a_row(a_visit(site_, 0), 0, QStringLiteral("007"), 7.0F);
        now.measurement.frequency = 11778.0F;
        now.measurement.reading(Quantity::mer).mark = measurement::RangeMark::none;
        const auto compared = compare_visits(log.visits[0].whole.rows, {now});
        QCOMPARE(compared.size(), 1U);
        QVERIFY(compared[0].meaning == Meaning::worse);
        QCOMPARE(change_text(compared[0].change(Quantity::mer)), QStringLiteral("-2.4"));
        // The log does not say its unit.
        QVERIFY(!compared[0].change(Quantity::level));
    }

    void what_the_page_writes_is_read() {
        const QTemporaryDir folder;
        measurement::MeasurementLog log;
        measurement::PageModel page;
        log.open(folder.filePath("rows.log"), page);
        measurement::MeasurementTexts shown{
            .date_time = QDateTime(QDate(2026, 11, 21), QTime(8, 0)),
            .meas_mode = 3,
            .fsat = " 11778.0 ",
            .ol_freq = "10600",
            .level = " 58.3",
            .ber = "<1.0E-8",
            .pvber = " 2.0E-9",
            .cfo = " -0.75",
            .mer = "ERROR",
            .ru = {},
            .status = "FAIL"};
        for (const int mode : {3, 2}) {
            shown.meas_mode = mode;
            QVERIFY(log.append(measurement::measurement_row(shown).join(u'\t').toStdString()));
        }
        QFile file(log.path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const LogPreview preview = read(file.readAll());
        QVERIFY(preview.unread.empty());
        QCOMPARE(preview.visits.size(), 1U);
        QCOMPARE(preview.visits[0].whole.rows.size(), 2U);
    }
};

}  // namespace m47::sites

QTEST_GUILESS_MAIN(m47::sites::LogImportTest)
#include "log_import_test.moc"
