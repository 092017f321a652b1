// SPDX-License-Identifier: GPL-3.0-or-later
// The report for the customer, from the menu of the real-time screen to the PDF that is read back.
#include <sys/resource.h>

#include <QDialogButtonBox>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <csignal>

#include "box_answers.h"
#include "program_in_folder.h"
#include "realtime.h"

namespace m47::shell {

class ReportTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    realtime::Realtime* screen_ = nullptr;
    BoxAnswers boxes_;

    template <class Kind>
    static Kind* in(QDialog* dialog, const char* name) {
        auto* found = dialog->findChild<Kind*>(QLatin1String(name));
        if (!found) qFatal("no %s", name);
        return found;
    }
    static void press(QDialog* dialog, QDialogButtonBox::StandardButton button) {
        auto* buttons = in<QDialogButtonBox>(dialog, "report_buttons");
        QTest::mouseClick(buttons->button(button), Qt::LeftButton);
    }
    void ask_for_report() { screen_->findChild<QAction*>("cmdreport")->trigger(); }
    static QString read(const QString& pdf, const QStringList& options = {}) {
        QProcess reader;
        reader.start("pdftotext", QStringList{"-layout"} + options + QStringList{pdf, "-"});
        if (!reader.waitForFinished()) qFatal("no pdftotext");
        return QString::fromUtf8(reader.readAllStandardOutput());
    }
    static QString words(const QString& pdf) { return read(pdf).simplified(); }
    void add_rows(int count, const char* status = "PASS") {
        for (int k = 0; k < count; ++k)
            screen_->rules.page.append({"21/11/26",
                                        QTime(10, 0).addSecs(k % 80000).toString("HH:mm:ss"),
                                        "11778.0", "10600", QString::number(50 + k % 5) + ".3",
                                        "2.0E-4", "", "", "14.2", "", status});
    }
    QByteArray content(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

  private Q_SLOTS:
    void init() {
        new_folder();
        start_program();
        window().findChild<QAction*>("cmdinglese")->trigger();
        window().findChild<QAction*>("realtime")->trigger();
        screen_ = qobject_cast<realtime::Realtime*>(window().screen_of("realtime"));
        boxes_.take_seen();
    }
    void cleanup() { end_program(); }

    void the_dialog_leads_to_a_pdf_with_all_of_it() {
        add_rows(3);
        add_rows(1, "FAIL");
        program_state().meter_version = "PLUS V3.0.5";
        screen_->rules.panel.alarm_statea[0] = true;
        screen_->rules.panel.lev_mina = "45";
        screen_->rules.panel.lev_maxa = "80";
        boxes_.answer([this](QDialog* form) {
            QTest::keyClicks(in<QLineEdit>(form, "report_site"), "Via Roma 1");
            QTest::keyClicks(in<QLineEdit>(form, "report_technician"), "A. Rossi");
            QTest::keyClicks(in<QPlainTextEdit>(form, "report_notes"), "Second dish moved");
            QCOMPARE(in<QLineEdit>(form, "report_file")->text(), in_folder("report.pdf"));
            QCOMPARE(in<QComboBox>(form, "report_unit")->currentText(), QString("not known"));
            in<QComboBox>(form, "report_unit")->setCurrentText("dBuV");
            in<QLineEdit>(form, "report_file")->setText("roma");
            press(form, QDialogButtonBox::Save);
        });
        ask_for_report();
        QCOMPARE(boxes_.take_seen(), QStringList("report_form"));
        const QString read = words(in_folder("roma.pdf"));
        for (const char* text :
             {"Measurement report", "Site Via Roma 1", "Technician A. Rossi", "Meter PLUS V3.0.5",
              "Notes Second dish moved", "Plan none (single elements)", "Level unit dBuV",
              "FAIL — Measurements: 4, of them 3 PASS, 1 FAIL, 0 without limits", "45 … 80",
              "— 11778.0 10600 4 3 1 50.3 … 52.3 dBuV", "All measurements: 4.", "Trend",
              "DATE TIME FR OSC LEV BER PVBER CFO MER RU STATUS UNIT",
              "21/11/26 10:00:02 11778.0 10600 52.3 2.0E-4 14.2 PASS dBuV",
              "21/11/26 10:00:00 11778.0 10600 50.3 2.0E-4 14.2 FAIL dBuV", "Page 1 of"})
            QVERIFY2(read.contains(QString::fromUtf8(text)), text);
    }

    void what_a_simulated_meter_has_measured_says_so_on_paper() {
        add_rows(2);
        program_state().meter_version = "PLUS V3.0.5";
        const auto printed = [this](const char* screen) {
            const QString pdf = in_folder(QString(screen) + ".pdf");
            boxes_.answer([pdf](QDialog* dialog) {
                auto* print = qobject_cast<QPrintDialog*>(dialog);
                QVERIFY(print);
                print->printer()->setOutputFormat(QPrinter::PdfFormat);
                print->printer()->setOutputFileName(pdf);
                print->done(QDialog::Accepted);
            });
            window().open_screen(screen);
            window().screen_of(screen)->findChild<QAction*>("stampa")->trigger();
            return words(pdf);
        };
        const auto report = [this] {
            screen_->write_report(in_folder("report.pdf"), {});
            return words(in_folder("report.pdf"));
        };
        for (const char* screen : {"realtime", "download"})
            QVERIFY2(!printed(screen).contains("simulated"), screen);
        QVERIFY(!report().contains("simulated"));
        program_state().simulated_meter = program_state().simulated_before = true;
        QVERIFY(report().contains("PLUS V3.0.5 (simulated, no real measurements)"));
        for (const char* screen : {"realtime", "download"})
            QVERIFY2(printed(screen).startsWith("Measured by a simulated meter: no real"), screen);
        // A real one was connected after it: rows of both may stand on the page.
        program_state().simulated_meter = false;
        QVERIFY(report().contains("(rows of a simulated meter may be among them)"));
        window().findChild<QAction*>("cmditaliano")->trigger();
        QVERIFY(report().contains("possono esserci righe di uno strumento simulato"));
        for (const char* screen : {"realtime", "download"})
            QVERIFY2(printed(screen).startsWith(QStringLiteral("Può contenere misure di uno")),
                     screen);
    }

    void the_trend_is_in_it() {
        const Texts& texts = program_state().texts;
        screen_->write_report(in_folder("without.pdf"), {});
        QVERIFY(
            words(in_folder("without.pdf")).contains("No measurement has a place on the trend."));
        add_rows(30);
        screen_->write_report(in_folder("with.pdf"), {});
        const QString read = words(in_folder("with.pdf"));
        QVERIFY(!read.contains("No measurement has a place on the trend."));
        // What only the chart's axes and its legend say.
        QVERIFY(read.contains("MER (dB)"));
        QVERIFY(read.contains("11778.0 / 10600"));
        QCOMPARE(texts.language, int(kEnglish));
    }

    void it_is_in_the_language_in_use() {
        window().findChild<QAction*>("cmditaliano")->trigger();
        add_rows(2);
        boxes_.answer([](QDialog* form) {
            QCOMPARE(form->windowTitle(), QStringLiteral("Rapporto"));
            QVERIFY(in<QLineEdit>(form, "report_file")->text().endsWith("/rapporto.pdf"));
            press(form, QDialogButtonBox::Save);
        });
        ask_for_report();
        const QString read = words(in_folder("rapporto.pdf"));
        QVERIFY(read.contains("Rapporto di misura"));
        QVERIFY(read.contains("Tutte le misure: 2."));
        QVERIFY(read.contains("Pagina 1 di"));
        QVERIFY(!read.contains("Measurement"));
    }

    void the_header_stands_on_every_page_and_long_notes_are_whole() {
        add_rows(200);
        QString notes;
        for (int k = 1; k <= 120; ++k) notes += QStringLiteral("remark%1 of the customer ").arg(k);
        screen_->write_report(in_folder("long.pdf"), {"Site", "", notes});
        const QString read = words(in_folder("long.pdf"));
        for (int k = 1; k <= 120; ++k)
            QVERIFY2(read.contains(QStringLiteral("remark%1 of").arg(k)), qPrintable(read));
        const auto count = [](const QString& text, const QString& word) {
            return text.count(word);
        };
        const int pages = static_cast<int>(count(read, "Page "));
        QVERIFY(pages > 3);
        QVERIFY(read.contains(QStringLiteral("Page %1 of %1").arg(pages)));
        const QString last =
            ReportTest::read(in_folder("long.pdf"), {"-f", QString::number(pages)});
        QVERIFY(last.simplified().startsWith("DATE TIME FR OSC"));
        QCOMPARE(count(read, "21/11/26 10:0"), 200);
    }

    void a_cancelled_dialog_writes_nothing() {
        add_rows(1);
        boxes_.answer([](QDialog* form) { press(form, QDialogButtonBox::Cancel); });
        ask_for_report();
        QVERIFY(QDir(folder()).entryList({"*.pdf"}).isEmpty());
    }

    void a_file_that_is_there_is_not_lost_unasked() {
        add_rows(1);
        QFile there(in_folder("report.pdf"));
        QVERIFY(there.open(QIODevice::WriteOnly));
        there.write("mine");
        there.close();
        // Pressed a moment later: the question that follows is answered by the same user.
        boxes_.answer([](QDialog* form) {
            QTimer::singleShot(0, form, [form] { press(form, QDialogButtonBox::Save); });
        });
        boxes_.press(QMessageBox::No);
        boxes_.answer([](QDialog* form) { press(form, QDialogButtonBox::Cancel); });
        ask_for_report();
        const QStringList seen = boxes_.take_seen();
        QCOMPARE(seen.size(), 3);
        QVERIFY(seen[1].startsWith("question|Report|"));
        QCOMPARE(content(in_folder("report.pdf")), QByteArray("mine"));
    }

    void a_folder_that_is_not_there_is_one_box() {
        add_rows(1);
        boxes_.press(QMessageBox::Ok);
        screen_->write_report(in_folder("no/such/report.pdf"), {});
        const QStringList seen = boxes_.take_seen();
        QCOMPARE(seen.size(), 1);
        QVERIFY2(seen[0].startsWith("critical|M47|The report was not saved as '"),
                 qPrintable(seen[0]));
    }

    void a_full_disk_leaves_the_old_file_whole() {
        add_rows(50);
        QFile there(in_folder("report.pdf"));
        QVERIFY(there.open(QIODevice::WriteOnly));
        there.write("the report of yesterday");
        there.close();
        rlimit before{};
        getrlimit(RLIMIT_FSIZE, &before);
        const auto signal_before = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{2000, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        boxes_.press(QMessageBox::Ok);
        screen_->write_report(in_folder("report.pdf"), {});
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, signal_before);
        QCOMPARE(boxes_.take_seen().size(), 1);
        QCOMPARE(content(in_folder("report.pdf")), QByteArray("the report of yesterday"));
        QCOMPARE(QDir(folder()).entryList({"report*"}).size(), 1);
    }

    void of_very_many_rows_the_newest_thousand_are_printed() {
        measurement::PageStore store;
        for (int row = 0; row < 100'000; ++row)
            store.append_line("21/11/26\t10:00:00\t950.0\t10600\t58.3\t\t\t\t\t\tPASS");
        screen_->rules.page.replace(std::move(store));
        screen_->write_report(in_folder("long.pdf"), {});
        const QString read = words(in_folder("long.pdf"));
        QVERIFY(read.contains(
            "The newest 1000 of 100000 measurements. Before them and not printed here"));
        QVERIFY(read.contains("PASS — Measurements: 100000, of them 100000 PASS, 0 FAIL"));
        QVERIFY(QFileInfo(in_folder("long.pdf")).size() < 2'000'000);
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::ReportTest)
#include "report_test.moc"
