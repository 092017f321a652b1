// SPDX-License-Identifier: GPL-3.0-or-later
// The report on visits: what stands in it, its pages as a PDF that is read back, its letterhead.
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTest>

#include "letterhead.h"
#include "letterhead_dialog.h"
#include "sample_year.h"
#include "site_samples.h"
#include "sites_support.h"
#include "visit_report_file.h"
#include "visit_report_form.h"
#include "visit_report_texts.h"

namespace m47::sites {

using measurement::Quantity;

class VisitReportTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<SiteStore> store_;
    Site rossi_;
    Texts english_;
    Texts italian_;

    QString in_folder(const char* name) const { return folder_->filePath(name); }
    /// From the earliest on.
    std::vector<QUuid> visits_of(const Site& site) const {
        std::vector<QUuid> ids;
        for (const Visit& each : store_->visits(site.id)) ids.insert(ids.begin(), each.id);
        return ids;
    }
    VisitReport report_of(const std::vector<QUuid>& visits,
                          ReportBefore before = ReportBefore::previous) const {
        return visit_report(*store_, rossi_, {.visits = visits, .before = before, .chosen = {}});
    }
    VisitReport last(ReportBefore before = ReportBefore::first) const {
        return report_of({visits_of(rossi_).back()}, before);
    }
    static CodeRateOf code_rate() {
        return [](const measurement::Measurement&) { return programme::CodeRate::three_quarters; };
    }
    static QString run(const char* program, const QStringList& words) {
        QProcess reader;
        reader.start(program, words);
        if (!reader.waitForFinished() || reader.exitCode() != 0) qFatal("no %s", program);
        return QString::fromUtf8(reader.readAllStandardOutput());
    }
    static QString text_of(const QString& pdf, bool is_laid_out = true) {
        QStringList words{pdf, "-"};
        if (is_laid_out) words.prepend("-layout");
        return run("pdftotext", words);
    }
    static QStringList pages_of(const QString& pdf) {
        QStringList pages = text_of(pdf).split(u'\f');
        pages.removeLast();
        return pages;
    }
    QString saved(const VisitReport& report, const Texts& texts, const Letterhead& head = {},
                  QPageSize::PageSizeId paper = QPageSize::A4) {
        const QString path = in_folder("report.pdf");
        const QString reason = save_visit_report(path, report, head, code_rate(), paper, texts);
        if (!reason.isEmpty()) qFatal("%s", qPrintable(reason));
        return path;
    }
    static QImage a_logo(int width, int height) {
        QImage logo(width, height, QImage::Format_RGB32);
        logo.fill(QColor(0x10, 0x50, 0x90));
        QPainter painter(&logo);
        painter.setPen(Qt::white);
        painter.drawText(logo.rect(), Qt::AlignCenter, "ANTENNE");
        return logo;
    }
    static Letterhead a_letterhead() {
        return {.company = "Antenne Ferri snc\nVia Garibaldi 5, Città\nTel. 030 0000000",
                .technician = "M. Ferri",
                .logo = a_logo(160, 64)};
    }
    void write(const char* name, const QByteArray& bytes) {
        QFile file(in_folder(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// One measurement of each of so many programs, all beginning with a long name.
    Site many_programs(int programs) {
        const Site site = a_site(QString("Residenza dei Cento Balconi ").repeated(9));
        const Visit visit = a_visit(site, 0);
        store_->together([&] {
            store_->store(site);
            store_->store(visit);
            for (int k = 0; k < programs; ++k)
                store_->store(a_row(visit, k, QStringLiteral("%1").arg(k, 3, 10, QChar(u'0')), 12));
        });
        return site;
    }

  private Q_SLOTS:
    void initTestCase() { italian_.language = kItalian; }
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        store_ = opened_sites(folder_->path());
        fill_year(*store_);
        for (const Site& each : store_->sites())
            if (each.name == "Condominio Rossi") rossi_ = each;
    }
    void cleanup() {
        store_.reset();
        folder_.reset();
    }

    void each_visit_is_compared_with_what_was_wished() {
        const std::vector<QUuid> all = visits_of(rossi_);
        // In whatever order they are asked for, the earliest is the first.
        VisitReport report = report_of({all[4], all[0], all[2]});
        QCOMPARE(report.visits.size(), std::size_t{3});
        QCOMPARE(report.visits[0].visit.id, all[0]);
        QVERIFY(!report.visits[0].before);
        QVERIFY(report.visits[0].compared.empty());
        QCOMPARE(report.visits[2].before->id, all[3]);
        report = report_of({all[4]}, ReportBefore::first);
        QCOMPARE(report.visits[0].before->id, all[0]);
        QVERIFY(!report_of({all[4]}, ReportBefore::nothing).visits[0].before);
        const VisitReportWish second{
            .visits = {all[0], all[3]}, .before = ReportBefore::chosen, .chosen = all[1]};
        report = visit_report(*store_, rossi_, second);
        QVERIFY(!report.visits[0].before);  // a later one is none before
        QCOMPARE(report.visits[1].before->id, all[1]);
    }

    void what_came_later_is_not_in_the_charts() {
        const std::vector<QUuid> all = visits_of(rossi_);
        QCOMPARE(report_of({all[4]}).programs[0].rows.size(), std::size_t{5});
        QCOMPARE(report_of({all[2]}).programs[0].rows.size(), std::size_t{3});
    }

    void visits_that_are_gone_are_left_out() {
        QVERIFY(report_of({QUuid::createUuid()}).visits.empty());
        const QString text = text_of(saved(report_of({QUuid::createUuid()}), english_));
        QVERIFY(text.contains("No visit."));
    }

    void the_verdict_names_what_fails_and_what_got_worse() {
        const QList<VerdictLine> lines = verdict_of(last().visits[0], english_);
        QStringList words;
        for (const VerdictLine& line : lines) words += line.text;
        const QString all = words.join('\n');
        QVERIFY2(all.contains("Outside their limits: 2 of 8 programs: ROSSI 001, ROSSI 003."),
                 qPrintable(all));
        QVERIFY2(all.contains("No reading any more since 2025-11-22 09:30: ROSSI 003."),
                 qPrintable(all));
        QVERIFY2(all.contains("Worse than on 2025-11-22 09:30: ROSSI 001 (MER "), qPrintable(all));
        for (const VerdictLine& line : lines) QCOMPARE(line.tone, report::CellTone::bad);
    }

    void a_good_visit_is_called_good() {
        const std::vector<QUuid> all = visits_of(rossi_);
        const QList<VerdictLine> lines = verdict_of(report_of({all[0]}).visits[0], english_);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines[0].text, QString("Within their limits: all 8 programs."));
        QCOMPARE(lines[0].tone, report::CellTone::good);
    }

    /// The good sentence claims no more than was compared.
    void what_could_not_be_compared_is_named() {
        const auto row = [](const char* number, const char* level, const char* mer,
                            float mhz = 11778.0F) {
            VisitMeasurement made =
                measured(number, {{Quantity::level, level}, {Quantity::mer, mer}}, mhz);
            made.measurement.verdict = measurement::Verdict::pass;
            return made;
        };
        const auto told = [this](const std::vector<VisitMeasurement>& then,
                                 const std::vector<VisitMeasurement>& now, const Texts& texts) {
            ReportedVisit visit{.visit = {}, .rows = counting(now)};
            visit.before = store_->visits(rossi_.id).front();
            visit.before->begun = {0, 0};
            visit.compared = compare_visits(then, now);
            QStringList words;
            for (const VerdictLine& line : verdict_of(visit, texts))
                words += line.text + (line.tone == report::CellTone::good ? " +" : "");
            return words;
        };
        QCOMPARE(told({row("001", "60", "12")}, {row("001", "60", "12")}, english_),
                 QStringList({"Within its limits: the one program. +",
                              "Nothing got worse since 1970-01-01 00:00. +"}));
        VisitMeasurement no_unit = row("001", "40", "12");
        no_unit.measurement.unit.reset();
        QCOMPARE(told({row("001", "60", "12"), row("002", "60", "12")},
                      {no_unit, row("002", "60", "")}, english_),
                 QStringList({"Within their limits: all 2 programs. +",
                              "Read on 1970-01-01 00:00 and not comparable now: ASTRA 001 (Level), "
                              "ASTRA 002 (MER).",
                              "Nothing of what was compared got worse since 1970-01-01 00:00. +"}));
        QCOMPARE(told({row("001", "60", "12"), row("002", "60", "12")},
                      {row("001", "60", "12", 11300), row("002", "57", "9")}, italian_),
                 QStringList({"Entro i limiti: tutti i 2 programmi. +",
                              "Peggiorati rispetto al 1970-01-01 00:00: ASTRA 002 (MER 3.0 dB in "
                              "meno, Livello 3.0 dB in meno).",
                              "Su un altro transponder rispetto al 1970-01-01 00:00, e non "
                              "confrontati: ASTRA 001."}));
    }

    void the_tables_say_what_was_before_and_what_is_left() {
        const report::ReportTable before = before_table(last().visits[0], english_);
        QCOMPARE(before.rows.size(), 8);
        QCOMPARE(before.header.size(), before.rows[0].size());
        int columns = 0;
        for (const auto& group : before.groups) columns += group.second;
        QCOMPARE(columns, before.header.size());
        const auto faded = std::ranges::find_if(
            before.rows, [](const QStringList& row) { return row[0].startsWith("ROSSI 001"); });
        // MER before, now and their difference; the level stands in the columns from 2 on.
        QCOMPARE(faded->mid(8, 3), QStringList({"13.4", "8.8", "-4.6"}));
        const report::ReportTable now = measured_table(last().visits[0], code_rate(), english_);
        QCOMPARE(faded->mid(2, 3), QStringList({"61.5", "57.3", "-4.2"}));
        QCOMPARE(before.groups[1].first, QString("Level (dBuV)"));
        QCOMPARE(now.rows[0].size(), now.header.size());
        QCOMPARE(now.rows[0].first(), QString("ROSSI 001"));
        QCOMPARE(now.rows[0][now.header.indexOf("MER")], QString("8.8"));
        QCOMPARE(now.rows[0][now.header.indexOf("To alarm")], QString("-0.7"));
        QVERIFY(!now.rows[0][now.header.indexOf("To QEF")].isEmpty());
        QCOMPARE(now.rows[0].last(), QString("FAIL"));
    }

    void the_pdf_has_all_of_it_in_both_languages() {
        const QString text = text_of(saved(last(), english_, a_letterhead()));
        for (const char* part :
             {"Antenne Ferri snc", "Tel. 030 0000000", "Visit report", "Condominio Rossi",
              "Amm. Bianchi", "Via Roma 7", "M. Ferri", "PLUS V3.0.5", "dopo il temporale",
              "Before and after", "Measurements and margins", "Programs over the visits",
              "Technician: M. Ferri", "Customer: Amm. Bianchi"})
            QVERIFY2(text.contains(QString::fromUtf8(part)), part);
        const QString italian = text_of(saved(last(), italian_));
        for (const char* part : {"Rapporto di visita", "Prima e dopo", "Fuori dai limiti", "Firme"})
            QVERIFY2(italian.contains(QString::fromUtf8(part)), part);
        QVERIFY(!italian.contains("Before and after"));
    }

    void pages_are_numbered_and_headings_repeated() {
        const Site site = many_programs(200);
        const VisitReport report =
            visit_report(*store_, site, {.visits = visits_of(site), .chosen = {}});
        VisitReport without_charts = report;
        without_charts.programs.clear();
        const QStringList pages = pages_of(saved(without_charts, english_));
        QVERIFY(pages.size() >= 4);
        for (qsizetype k = 0; k < pages.size(); ++k)
            QVERIFY2(
                pages[k].contains(QStringLiteral("Page %1 of %2").arg(k + 1).arg(pages.size())),
                qPrintable(pages[k]));
        for (qsizetype k = 0; k + 1 < pages.size(); ++k) QVERIFY(pages[k].contains("To QEF"));
        const QString all = pages.join(QString());
        for (const char* program : {"ASTRA 000", "ASTRA 099", "ASTRA 199"})
            QCOMPARE(all.count(QLatin1String(program)), 1);
    }

    void every_program_has_its_charts() {
        const Site site = many_programs(20);
        const QStringList pages = pages_of(saved(
            visit_report(*store_, site, {.visits = visits_of(site), .chosen = {}}), english_));
        // In the table and over its chart.
        for (const char* program : {"ASTRA 000", "ASTRA 019"})
            QCOMPARE(pages.join(QString()).count(QLatin1String(program)), 2);
    }

    void both_papers_and_several_visits() {
        const QString letter = saved(report_of(visits_of(rossi_)), english_, {}, QPageSize::Letter);
        QVERIFY(run("pdfinfo", {letter}).contains("612 x 792 pts"));
        QCOMPARE(text_of(letter).count("Visit of "), kYearVisits);
        QVERIFY(run("pdfinfo", {saved(last(), english_)}).contains("(A4)"));
    }

    void a_folder_that_takes_nothing_leaves_nothing() {
        const QString path = folder_->filePath("none/report.pdf");
        QVERIFY(!save_visit_report(path, last(), {}, {}, QPageSize::A4, english_).isEmpty());
        QVERIFY(!QFileInfo::exists(path));
        const QString full = "/dev/full";
        QVERIFY(!save_visit_report(full, last(), {}, {}, QPageSize::A4, english_).isEmpty());
    }

    void the_letterhead_is_kept_with_a_copy_of_its_logo() {
        const Preferences preferences(in_folder("settings.ini"));
        QVERIFY(kept_letterhead(preferences, english_).logo.isNull());
        QCOMPARE(keep_letterhead(preferences, a_letterhead()), QString());
        QString fault = "none";
        const Letterhead kept = kept_letterhead(preferences, english_, &fault);
        QCOMPARE(fault, QString());
        QCOMPARE(kept.lines().size(), 3);
        QCOMPARE(preferences.technician(), QString("M. Ferri"));
        QCOMPARE(kept.logo.size(), QSize(160, 64));
        // A copy that is gone or damaged is told and left out.
        write("letterhead-logo.png", "\x89PNG, or so it says");
        QVERIFY(kept_letterhead(preferences, english_, &fault).logo.isNull());
        QVERIFY2(fault.contains("no PNG or JPEG picture"), qPrintable(fault));
        QFile::remove(in_folder("letterhead-logo.png"));
        QVERIFY(kept_letterhead(preferences, english_, &fault).logo.isNull());
        QVERIFY2(fault.contains("cannot be read"), qPrintable(fault));
    }

    void lines_that_a_report_has_no_room_for_are_told() {
        ProgramState state;
        state.texts = english_;
        LetterheadDialog dialog(state);
        auto* company = dialog.findChild<QPlainTextEdit*>("letterhead_company");
        const auto* told = dialog.findChild<QLabel*>("letterhead_left_out");
        company->setPlainText(QString("Via Roma 7\n\n").repeated(kMostCompanyLines));
        QCOMPARE(told->text(), QString());
        company->setPlainText(QString("Via Roma 7\n").repeated(kMostCompanyLines + 2));
        QCOMPARE(told->text(), QString("A report has 6 lines of it; left out: 2."));
    }

    void a_hostile_logo_is_refused() {
        const auto fault = [this](const char* name) {
            const LogoRead read = read_logo(in_folder(name), english_);
            return read.logo.isNull() ? read.fault : QString("taken");
        };
        write("text.png", "no picture at all");
        write("drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
        write("heavy.png", QByteArray(kMostLogoBytes + 1, 'x'));
        a_logo(kMostLogoSide + 1, 1).save(in_folder("wide.png"));
        QVERIFY(fault("text.png").contains("no PNG or JPEG"));
        QVERIFY(fault("drawing.svg").contains("no PNG or JPEG"));
        QVERIFY(fault("heavy.png").contains("too large"));
        QVERIFY(fault("wide.png").contains("too large"));
        QVERIFY(fault("missing.png").contains("cannot be read"));
        QVERIFY(read_logo(folder_->path(), english_).fault.contains("cannot be read"));
        a_logo(2500, 400).save(in_folder("large.png"));
        QCOMPARE(read_logo(in_folder("large.png"), english_).logo.width(), kLogoKeptSide);
    }

    void the_form_gives_what_is_ticked() {
        ProgramState program;
        const std::vector<Visit> visits = store_->visits(rossi_.id);
        VisitReportForm form(program, rossi_, visits, {});
        QCOMPARE(form.wish().visits, std::vector<QUuid>{visits.front().id});
        auto* list = form.findChild<QListWidget*>("report_visits");
        list->item(0)->setCheckState(Qt::Unchecked);
        auto* save =
            form.findChild<QDialogButtonBox*>("report_buttons")->button(QDialogButtonBox::Save);
        QVERIFY(!save->isEnabled());
        list->item(2)->setCheckState(Qt::Checked);
        QVERIFY(save->isEnabled());
        form.findChild<QComboBox*>("report_before")->setCurrentIndex(3);
        QCOMPARE(form.wish().before, ReportBefore::chosen);
        QCOMPARE(form.wish().chosen, visits[0].id);
        form.findChild<QComboBox*>("report_paper")->setCurrentText("Letter");
        QCOMPARE(form.paper(), QPageSize::Letter);
    }

    void the_letterhead_dialog_keeps_what_was_typed() {
        ProgramState program;
        program.preferences = Preferences(in_folder("settings.ini"));
        LetterheadDialog dialog(program);
        QTest::keyClicks(dialog.findChild<QPlainTextEdit*>("letterhead_company"), "Antenne Ferri");
        QTest::keyClicks(dialog.findChild<QLineEdit*>("letterhead_technician"), " M.  Ferri ");
        a_logo(100, 50).save(in_folder("logo.png"));
        dialog.take_logo(in_folder("logo.png"));
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        QCOMPARE(program.preferences.company(), QString("Antenne Ferri"));
        QCOMPARE(program.preferences.technician(), QString("M. Ferri"));
        QVERIFY(!kept_letterhead(program.preferences, english_).logo.isNull());
        LetterheadDialog again(program);
        again.findChild<QPushButton*>("letterhead_drop")->click();
        again.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        QVERIFY(!QFileInfo::exists(in_folder("letterhead-logo.png")));
    }

    /// For who wants to look.
    void pictures() {
        const QString pictures = qEnvironmentVariable("M47_PICTURES");
        if (pictures.isEmpty()) QSKIP("M47_PICTURES names no folder");
        const std::vector<QUuid> all = visits_of(rossi_);
        for (const Texts* texts : {&english_, &italian_}) {
            const QString language = texts == &english_ ? "en" : "it";
            run("pdftoppm", {"-png", "-r", "80", saved(last(), *texts, a_letterhead()),
                             pictures + "/report-one-" + language});
            run("pdftoppm", {"-png", "-r", "80", saved(report_of({all[0], all[4]}), *texts),
                             pictures + "/report-two-" + language});
        }
        ProgramState program;
        VisitReportForm(program, rossi_, store_->visits(rossi_.id), {})
            .grab()
            .save(pictures + "/report-form.png");
        LetterheadDialog(program).grab().save(pictures + "/report-letterhead.png");
    }
};

}  // namespace m47::sites

QTEST_MAIN(m47::sites::VisitReportTest)
#include "visit_report_test.moc"
