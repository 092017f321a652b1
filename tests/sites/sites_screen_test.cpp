// SPDX-License-Identifier: GPL-3.0-or-later
// The screen "Sites" by clicks and typing, on a file with a year of visits.
#include <QCheckBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStackedWidget>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTreeView>

#include "box_answers.h"
#include "contrast_style.h"
#include "custom_plot.h"
#include "handler.h"
#include "program_in_folder.h"
#include "sample_year.h"
#include "site_table_view.h"
#include "sites.h"
#include "sites_support.h"
#include "tone_delegate.h"
#include "visit_chart_view.h"

namespace m47::sites {

class SitesScreenTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    Sites* screen_ = nullptr;
    std::unique_ptr<BoxAnswers> boxes_;
    QString proposed_;  ///< for the report that was asked for last

    Sites* open(bool english = true) {
        window().findChild<QAction*>(english ? "cmdinglese" : "cmditaliano")->trigger();
        window().open_screen("sites");
        screen_ = window().opened<Sites>();
        return screen_;
    }
    void start_with_year() {
        {
            const auto store = opened_sites(folder());
            fill_year(*store);
        }
        start_program(QSize(1100, 720));
        open();
    }
    template <class Kind>
    Kind* control(const char* name) {
        return find<Kind>(name, screen_);
    }
    void click(const char* name) {
        QTest::mouseClick(control<QAbstractButton>(name), Qt::LeftButton);
    }
    QTreeView* tree() { return control<QTreeView>("sites_tree"); }
    QStringList shown_sites() {
        QStringList names;
        for (int row = 0; row < tree()->model()->rowCount(); ++row)
            names += tree()->model()->index(row, 0).data().toString();
        return names;
    }
    /// Clicks on site `site`, or its visit `visit` (0: the latest).
    void choose(int site, int visit = -1) {
        QModelIndex place = tree()->model()->index(site, 0);
        if (visit >= 0) {
            QCoreApplication::processEvents();
            tree()->expand(place);
            place = tree()->model()->index(visit, 0, place);
        }
        tree()->scrollTo(place);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualRect(place).center());
    }
    void turn_to(const char* view) {
        control<QTabWidget>("sites_views")->setCurrentWidget(control<QWidget>(view));
    }
    QStringList column(const char* table, const char* heading) {
        const QAbstractItemModel* model = control<SiteTableView>(table)->model();
        QStringList cells;
        for (int k = 0; k < model->columnCount(); ++k)
            if (model->headerData(k, Qt::Horizontal).toString().trimmed() ==
                QString::fromUtf8(heading))
                for (int row = 0; row < model->rowCount(); ++row)
                    cells += model->index(row, k).data().toString();
        return cells;
    }
    void click_heading(const char* table, const char* heading) {
        auto* view = control<SiteTableView>(table);
        for (int k = 0; k < view->model()->columnCount(); ++k) {
            if (view->model()->headerData(k, Qt::Horizontal).toString().trimmed() != heading)
                continue;
            view->scrollTo(view->model()->index(0, k));
            const auto* header = view->horizontalHeader();
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                              {header->sectionViewportPosition(k) + 10, header->height() / 2});
        }
    }
    void double_click(const char* table, int row) {
        auto* view = control<SiteTableView>(table);
        const QPoint place = view->visualRect(view->model()->index(row, 1)).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, place);
    }
    void look_through_all() {
        turn_to("view_worse");
        click("sites_look");
        QTRY_VERIFY(control<QLabel>("sites_worse_state")->text().startsWith("Programs"));
    }
    QString note() { return control<QLabel>("sites_note")->text(); }
    bool at_work() {
        return control<QStackedWidget>("sites_pages")->currentWidget()->objectName() ==
               "sites_work";
    }
    /// Lays ready what a user does in the boxes behind "Report…", up to the name of the file.
    void save_report_as(const QString& path) {
        boxes_->answer([](QDialog* form) {
            // Behind this answer: what opens then is a box of its own.
            QTimer::singleShot(0,
                               form->findChild<QDialogButtonBox*>("report_buttons")
                                   ->button(QDialogButtonBox::Save),
                               &QPushButton::click);
        });
        boxes_->answer([this, path](QDialog* box) {
            proposed_ = qobject_cast<QFileDialog*>(box)->selectedFiles().value(0);
            auto* name = box->findChild<QLineEdit*>("fileNameEdit");
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
        });
    }
    QByteArray head_of(const char* name) {
        QFile file(in_folder(name));
        return file.open(QIODevice::ReadOnly) ? file.read(4) : QByteArray();
    }
    QString told() { return find<QLabel>("corrected_notice")->text(); }

  private Q_SLOTS:
    void init() {
        new_folder();
        boxes_ = std::make_unique<BoxAnswers>();
    }
    void cleanup() {
        boxes_.reset();
        end_program();
    }

    void without_a_file_it_says_what_to_do_and_makes_none() {
        start_program(QSize(1100, 720));
        open();
        QVERIFY(!at_work());
        QVERIFY2(note().startsWith("No sites yet."), qPrintable(note()));
        for (const char* key : {"sites_edit", "sites_remove", "sites_save", "sites_look"}) {
            if (QByteArray(key) == "sites_look") continue;
            click(key);
            QVERIFY2(!told().isEmpty(), key);
        }
        QVERIFY(!QFile::exists(sites_in(folder())));
    }

    void sites_are_found_as_one_types() {
        start_with_year();
        QCOMPARE(shown_sites(), QStringList({"Condominio Rossi", "Hotel Miramare", "Scuola Verdi",
                                             "Villa Bianchi"}));
        QCOMPARE(control<QLabel>("sites_found")->text(), QString("Sites: 4, visits: 9"));
        QTest::keyClick(window().windowHandle(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(control<QLineEdit>("sites_search")->hasFocus());
        QTest::keyClicks(control<QLineEdit>("sites_search"), "bianchi");
        QCOMPARE(shown_sites(), QStringList({"Condominio Rossi", "Villa Bianchi"}));
        QTest::keyClicks(control<QLineEdit>("sites_search"), " COLLI");
        QCOMPARE(shown_sites(), QStringList({"Villa Bianchi"}));
        QTest::keyClicks(control<QLineEdit>("sites_search"), "x");
        QCOMPARE(shown_sites(), QStringList());
        QCOMPARE(control<QLabel>("sites_found")->text(), QString("Sites: 0, visits: 0"));
    }

    void dates_and_verdicts_leave_what_is_wanted() {
        start_with_year();
        auto* verdict = control<QComboBox>("sites_verdict");
        verdict->setCurrentIndex(1);
        Q_EMIT verdict->activated(1);
        QCOMPARE(shown_sites(), QStringList({"Condominio Rossi"}));
        choose(0, 0);
        QCOMPARE(tree()->model()->rowCount(tree()->model()->index(0, 0)), 1);
        QCOMPARE(tree()->model()->index(0, 1, tree()->model()->index(0, 0)).data().toString(),
                 QString("FAIL"));
        verdict->setCurrentIndex(2);
        Q_EMIT verdict->activated(2);
        QCOMPARE(control<QLabel>("sites_found")->text(), QString("Sites: 3, visits: 8"));
        verdict->setCurrentIndex(0);
        Q_EMIT verdict->activated(0);
        // Proposed is the year up to the latest visit.
        QCOMPARE(control<QDateEdit>("sites_to")->date(), QDate(2026, 11, 21));
        click("sites_dates");
        control<QDateEdit>("sites_from")->setDate(QDate(2026, 2, 21));
        control<QDateEdit>("sites_to")->setDate(QDate(2026, 2, 21));
        QCOMPARE(shown_sites(), QStringList({"Condominio Rossi", "Scuola Verdi"}));
        QCOMPARE(control<QLabel>("sites_found")->text(), QString("Sites: 2, visits: 2"));
        click("sites_dates");
        QCOMPARE(shown_sites().size(), 4);
    }

    void a_visit_is_shown_and_sorted_by_number() {
        start_with_year();
        choose(0);
        QVERIFY(control<QLabel>("sites_title")
                    ->text()
                    .startsWith("Condominio Rossi, visit of 2026-11-21 09:30"));
        QCOMPARE(column("sites_rows", "Verdict"),
                 QStringList({"FAIL", "PASS", "FAIL", "PASS", "PASS", "PASS", "PASS", "PASS"}));
        QCOMPARE(column("sites_rows", "Limits").value(0), QString("Level 45–80, MER > 9.5"));
        // What is out of its limits is red, what is within them is not.
        const QAbstractItemModel* model = control<SiteTableView>("sites_rows")->model();
        const auto tone = [&](int row, const char* heading) {
            for (int k = 0; k < model->columnCount(); ++k)
                if (model->headerData(k, Qt::Horizontal).toString().trimmed() == heading)
                    return static_cast<Tone>(model->index(row, k).data(kToneRole).toInt());
            return Tone::plain;
        };
        QCOMPARE(tone(0, "MER"), Tone::bad);
        QCOMPARE(tone(0, "Level"), Tone::plain);
        QCOMPARE(tone(0, "Alarm margin"), Tone::bad);
        QCOMPARE(tone(1, "Verdict"), Tone::good);
        // 8.8 before 11.2, which texts would turn round; what has none stands last.
        click_heading("sites_rows", "MER");
        QStringList mer = column("sites_rows", "MER");
        QCOMPARE(mer.mid(0, 2), QStringList({"8.8", "11.2"}));
        QCOMPARE(mer.last(), QString("–"));
        click_heading("sites_rows", "MER");
        mer = column("sites_rows", "MER");
        QCOMPARE(mer.first(), QString("13.1"));
        QCOMPARE(mer.last(), QString("–"));
        // 5.0E-4 is worse than 3.2E-5.
        click_heading("sites_rows", "BER");
        click_heading("sites_rows", "BER");
        QCOMPARE(column("sites_rows", "BER").mid(0, 2), QStringList({"5.0E-4", "3.2E-5"}));
        // Another visit comes in the same order.
        choose(0, 4);
        QVERIFY(control<QLabel>("sites_title")->text().contains("2025-11-22"));
        QCOMPARE(control<SiteTableView>("sites_rows")->horizontalHeader()->sortIndicatorOrder(),
                 Qt::DescendingOrder);
    }

    void a_visit_is_compared_with_the_last_the_first_and_any() {
        start_with_year();
        choose(0);
        turn_to("view_compare");
        auto* with = control<QComboBox>("sites_with");
        QCOMPARE(with->currentText(), QString("The visit before: 2026-08-22 09:30"));
        QCOMPARE(control<QLabel>("sites_summary")->text(),
                 QString("From 2026-08-22 09:30 to 2026-11-21 09:30: lost: 1, worse: 1, same: 6."));
        with->setCurrentIndex(1);
        Q_EMIT with->activated(1);
        QCOMPARE(with->currentText(), QString("The first visit: 2025-11-22 09:30"));
        QCOMPARE(column("sites_compared", "Meaning").mid(0, 4),
                 QStringList({"lost", "worse", "worse", "same"}));
        QCOMPARE(column("sites_compared", "MER change").mid(0, 3),
                 QStringList({"–", "-4.6", "-2.2"}));
        QCOMPARE(column("sites_compared", "BER change").value(1), QString("+2.4"));
        QCOMPARE(column("sites_compared", "Alarm margin").value(1), QString("-0.7"));
        auto* table = control<SiteTableView>("sites_compared");
        QVERIFY(table->isColumnHidden(2));
        click("sites_readings");
        QVERIFY(!table->isColumnHidden(2));
        QCOMPARE(column("sites_compared", "MER before").value(1), QString("13.4"));
        // An older visit keeps the choice; against a later one the older stays "before".
        choose(0, 4);
        QVERIFY(with->currentText().startsWith("2026-"));
        QCOMPARE(column("sites_compared", "MER now").value(1), QString("8.8"));
        // A site with one visit says so.
        choose(2);
        QVERIFY(control<QLabel>("sites_summary")->text().startsWith("There is no other visit"));
        QCOMPARE(table->model()->rowCount(), 0);
    }

    void a_double_click_charts_the_program_over_all_visits() {
        start_with_year();
        choose(0);
        turn_to("view_compare");
        double_click("sites_compared", 1);
        QCOMPARE(control<QTabWidget>("sites_views")->currentWidget()->objectName(),
                 QString("view_chart"));
        QVERIFY(control<QComboBox>("sites_program")->currentText().startsWith("ROSSI 001"));
        QCOMPARE(control<VisitChartView>("sites_chart")->visits(), kYearVisits);
        turn_to("view_rows");
        control<SiteTableView>("sites_rows")
            ->setCurrentIndex(control<SiteTableView>("sites_rows")->model()->index(4, 0));
        QTest::keyClick(control<SiteTableView>("sites_rows"), Qt::Key_Return);
        QVERIFY(control<QComboBox>("sites_program")->currentText().startsWith("ROSSI 005"));
        choose(2);
        QCOMPARE(control<VisitChartView>("sites_chart")->visits(), 1);
        choose(3);
        QCOMPARE(control<VisitChartView>("sites_chart")->visits(), 0);
    }

    void another_site_is_charted_with_a_program_of_its_own() {
        start_with_year();
        choose(0);
        turn_to("view_compare");
        double_click("sites_compared", 1);
        auto* program = control<QComboBox>("sites_program");
        QVERIFY(program->currentText().startsWith("ROSSI 001"));
        // The hotel never had that one, nor the two after it.
        choose(1);
        QVERIFY2(program->currentText().startsWith("ROSSI 004"),
                 qPrintable(program->currentText()));
        QCOMPARE(program->count(), kYearPrograms - 3);
        QCOMPARE(control<VisitChartView>("sites_chart")->visits(), 3);
        // One that both have stays.
        program->setCurrentIndex(2);
        Q_EMIT program->activated(2);
        choose(0);
        QVERIFY(program->currentText().startsWith("ROSSI 006"));
    }

    void a_long_name_leaves_the_keys_in_the_window() {
        start_with_year();
        choose(0);
        window().resize(1024, 600);
        Site site = *screen_->site();
        site.name = QString("Condominio ").repeated(30);
        program().sites().open()->store(site);
        QTest::keyClick(window().windowHandle(), Qt::Key_F5);
        QVERIFY(control<QLabel>("sites_title")->text().startsWith("Condominio Condominio"));
        QTest::qWait(50);
        const auto* key = control<QPushButton>("sites_save");
        const int right = key->mapTo(&window(), QPoint(key->width(), 0)).x();
        QVERIFY2(right <= window().width(), qPrintable(QString::number(right)));
        QVERIFY(control<QLabel>("sites_title")->toolTip().contains("2026-11-21 09:30"));
    }

    void visits_in_the_hour_that_comes_twice_are_told_apart() {
        {
            const auto store = opened_sites(folder());
            const Site site = a_site("Sole");
            store->store(site);
            constexpr double kTwice = 1'792'888'200;  // 2026-10-25 02:30 in summer time
            for (const int offset : {7200, 3600}) {
                Visit visit = a_visit(site, 0);
                visit.begun = {kTwice + 7200 - offset, offset};
                store->store(visit);
            }
            store->store(a_visit(site, 24));
        }
        start_program(QSize(1100, 720));
        open();
        choose(0, 0);
        QCOMPARE(tree()->currentIndex().data().toString(), QString("2026-10-25 02:30 (UTC+1)"));
        QCOMPARE(control<QLabel>("sites_title")->text(),
                 QString("Sole, visit of 2026-10-25 02:30 (UTC+1)"));
        turn_to("view_compare");
        QCOMPARE(control<QComboBox>("sites_with")->currentText(),
                 QString("The visit before: 2026-10-25 02:30 (UTC+2)"));
        QVERIFY(control<QLabel>("sites_summary")
                    ->text()
                    .startsWith("From 2026-10-25 02:30 (UTC+2) to 2026-10-25 02:30 (UTC+1)"));
        QVERIFY(!control<QComboBox>("sites_with")->itemText(4).contains("UTC"));
    }

    void the_screen_is_named_in_the_language_in_use() {
        start_program(QSize(1100, 720));
        QCOMPARE(open()->windowTitle(), QString("Sites"));
        screen_->parentWidget()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(open(false)->windowTitle(), QString("Siti"));
    }

    void where_there_is_no_room_for_all_charts_a_list_chooses() {
        start_with_year();
        choose(0);
        turn_to("view_chart");
        auto* list = control<QComboBox>("sites_first");
        auto* chart = control<VisitChartView>("sites_chart");
        window().resize(1300, 900);
        QTRY_VERIFY(chart->has_room());
        QVERIFY(!list->isVisible());
        window().resize(1024, 600);
        QTRY_VERIFY(list->isVisible());
        QCOMPARE(list->currentText(), QString("MER"));
        QCOMPARE(list->itemText(1), QString("Level"));
        const auto first_axis = [&] {
            return chart->findChild<QCustomPlot*>()->axisRect(0)->axis(QCPAxis::atLeft)->label();
        };
        QCOMPARE(first_axis(), QString("MER (dB)"));
        list->setCurrentIndex(1);
        Q_EMIT list->activated(1);
        QCOMPARE(first_axis(), QString("Level"));
        // It stays when another program is shown.
        choose(1);
        QCOMPARE(list->currentText(), QString("Level"));
        QCOMPARE(first_axis(), QString("Level"));
    }

    void dates_under_a_chart_are_never_written_over_one_another() {
        start_with_year();
        choose(0);
        turn_to("view_chart");
        for (const int width : {1600, 1200, 1024, 900}) {
            window().resize(width, 600);
            QCoreApplication::processEvents();
            QTest::qWait(50);
            auto* plot = control<VisitChartView>("sites_chart")->findChild<QCustomPlot*>();
            const QCPAxis* axis = plot->axisRect(0)->axis(QCPAxis::atBottom);
            const int written = QFontMetrics(axis->tickLabelFont()).horizontalAdvance("00/00/00");
            QVector<double> times;
            axis->ticker()->generate(axis->range(), QLocale(), u'f', 0, times, nullptr, nullptr);
            for (int k = 1; k < times.size(); ++k)
                QVERIFY(axis->coordToPixel(times[k]) - axis->coordToPixel(times[k - 1]) > written);
        }
    }

    void what_got_worse_leads_to_the_comparison() {
        start_with_year();
        // It is found at all sites, whatever the list shows.
        QTest::keyClicks(control<QLineEdit>("sites_search"), "miramare");
        look_through_all();
        QCOMPARE(control<QLabel>("sites_worse_state")->text(),
                 QString("Programs that got worse: 3"));
        QCOMPARE(column("sites_worse", "Meaning"), QStringList({"lost", "worse", "worse"}));
        QCOMPARE(column("sites_worse", "MER change"), QStringList({"–", "-4.6", "-2.2"}));
        control<QDoubleSpinBox>("sites_by")->setValue(4);
        look_through_all();
        QCOMPARE(column("sites_worse", "MER change"), QStringList({"–", "-4.6"}));
        double_click("sites_worse", 1);
        QCOMPARE(control<QTabWidget>("sites_views")->currentWidget()->objectName(),
                 QString("view_compare"));
        QCOMPARE(control<QLabel>("sites_title")->text(),
                 QString("Condominio Rossi, visit of 2026-11-21 09:30"));
        QVERIFY(control<QLabel>("sites_summary")->text().startsWith("From 2025-11-22 09:30"));
        // The search would have hidden it.
        QCOMPARE(control<QLineEdit>("sites_search")->text(), QString());
        QCOMPARE(tree()->currentIndex().data().toString(), QString("2026-11-21 09:30"));
    }

    void a_table_is_saved_as_it_is_shown() {
        start_with_year();
        choose(0);
        turn_to("view_compare");
        click_heading("sites_compared", "Program");
        QString proposed;
        boxes_->answer([&proposed](QDialog* box) {
            proposed = qobject_cast<QFileDialog*>(box)->selectedFiles().value(0);
            box->reject();
        });
        QTest::keyClick(window().windowHandle(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(proposed.section(u'/', -1), QString("Condominio-Rossi-compared-20261121.tsv"));
        screen_->save(in_folder("compared.tsv"));
        QFile file(in_folder("compared.tsv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = file.readAll().split('\n');
        QCOMPARE(lines.size(), kYearPrograms + 2);
        QVERIFY2(lines[0].startsWith("Program\tMeaning\tLevel change\tC/N change\tMER change"),
                 lines[0].constData());
        QVERIFY(lines[1].startsWith("ROSSI 001"));
        QVERIFY(lines[8].startsWith("ROSSI 008"));
        boxes_->press(QMessageBox::Ok);
        screen_->save(in_folder("no/such/folder.tsv"));
        QVERIFY(boxes_->take_seen().last().contains("The table was not saved as"));
    }

    void a_site_is_made_edited_and_removed_after_a_question() {
        start_program(QSize(1100, 720));
        open();
        const auto fill = [](const char* name) {
            return [name](QDialog* box) {
                auto* line = box->findChild<QLineEdit*>("site_name");
                line->selectAll();
                QTest::keyClicks(line, name);
                box->findChild<QPlainTextEdit*>("site_remarks")->setPlainText("keys: porter");
                QTest::keyClick(line, Qt::Key_Return);
            };
        };
        boxes_->answer(fill("Scuola Verdi"));
        click("sites_new");
        QVERIFY(at_work());
        QCOMPARE(shown_sites(), QStringList({"Scuola Verdi"}));
        QCOMPARE(control<QLabel>("sites_title")->text(), QString("Scuola Verdi, no visit"));
        boxes_->answer(fill("Scuola Bruni"));
        click("sites_edit");
        QCOMPARE(shown_sites(), QStringList({"Scuola Bruni"}));
        QCOMPARE(control<QLabel>("sites_facts")->text(), QString("keys: porter"));
        boxes_->take_seen();
        boxes_->answer(fill("scuola bruni"));
        boxes_->press(QMessageBox::Ok);
        click("sites_new");
        QVERIFY(boxes_->take_seen().last().contains("There is a site of this name already"));
        boxes_->press(QMessageBox::No);
        click("sites_remove");
        QCOMPARE(shown_sites().size(), 1);
        boxes_->press(QMessageBox::Yes);
        click("sites_remove");
        QVERIFY2(boxes_->take_seen().last().contains("Remove the site Scuola Bruni?"),
                 "no question");
        QVERIFY(!at_work());
    }

    void a_visit_goes_with_its_measurements_and_the_site_stays() {
        start_with_year();
        choose(0, 0);
        program().sites().running = screen_->visit()->id;
        click("sites_remove");
        QCOMPARE(told(), QString("This visit is being recorded: end it first."));
        QVERIFY(boxes_->take_seen().isEmpty());
        program().sites().running = {};
        QString goes;
        boxes_->answer([&](QDialog* box) {
            goes = qobject_cast<QMessageBox*>(box)->informativeText();
            QTest::mouseClick(qobject_cast<QMessageBox*>(box)->button(QMessageBox::Yes),
                              Qt::LeftButton);
        });
        click("sites_remove");
        QVERIFY2(goes.contains("(8)"), qPrintable(goes));
        QCOMPARE(control<QLabel>("sites_found")->text(), QString("Sites: 4, visits: 8"));
    }

    void a_report_is_asked_for_where_there_is_one() {
        start_with_year();
        std::vector<QUuid> visits;
        QString site;
        screen_->set_report([&](const Site& of, const std::vector<QUuid>& chosen) {
            site = of.name;
            visits = chosen;
        });
        QTest::keyClick(window().windowHandle(), Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(told(), QString("Choose a site first."));
        choose(0);
        click("sites_report");
        QCOMPARE(site, QString("Condominio Rossi"));
        QVERIFY(visits.empty());
        choose(0, 2);
        click("sites_report");
        QCOMPARE(visits, std::vector{screen_->visit()->id});
        choose(3);
        click("sites_report");
        QCOMPARE(told(), QString("There is no visit at this site to report on."));
    }

    void a_report_is_saved_where_it_is_wanted() {
        start_with_year();
        choose(0);
        save_report_as(in_folder("rossi.pdf"));
        click("sites_report");
        QCOMPARE(proposed_.section(u'/', -1), QString("Condominio-Rossi-report-2026-11-21.pdf"));
        QCOMPARE(head_of("rossi.pdf"), QByteArray("%PDF"));
        QTRY_VERIFY(find<QLabel>("saved_name")->text().contains("rossi.pdf"));
        QVERIFY(!QApplication::activeModalWidget());
    }

    void a_report_that_cannot_be_saved_is_told_and_stays_asked_for() {
        start_with_year();
        choose(0);
        // A folder that takes no file, whoever runs this.
        save_report_as("/proc/rossi.pdf");
        boxes_->press(QMessageBox::Ok);
        boxes_->answer([](QDialog* form) { form->reject(); });
        click("sites_report");
        const QStringList seen = boxes_->take_seen();
        QCOMPARE(seen.size(), 4);
        QVERIFY2(seen[2].contains("|The report was not saved to /proc/rossi.pdf: "),
                 qPrintable(seen[2]));
        QCOMPARE(seen[3], QString("visit_report_form"));
    }

    void what_another_program_writes_is_shown() {
        start_with_year();
        choose(1);
        const QUuid hotel = screen_->site()->id;
        // Another process has a connection of its own.
        const auto elsewhere = [this](const QString& statement) {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "elsewhere");
            other.setDatabaseName(sites_in(folder()));
            QVERIFY(other.open());
            QSqlQuery query(other);
            QVERIFY(query.exec("PRAGMA foreign_keys = ON"));
            QVERIFY2(query.exec(statement), "refused");
        };
        const auto done = [] { QSqlDatabase::removeDatabase("elsewhere"); };
        QTest::qWait(5);
        elsewhere("UPDATE sites SET name = 'Hotel Roma' WHERE name = 'Hotel Miramare'");
        done();
        QTRY_COMPARE(shown_sites().value(1), QString("Hotel Roma"));
        QCOMPARE(screen_->site()->id, hotel);
        QVERIFY(control<QLabel>("sites_title")->text().startsWith("Hotel Roma"));
        QTest::qWait(5);
        elsewhere("DELETE FROM sites WHERE name = 'Hotel Roma'");
        done();
        QTRY_COMPARE(shown_sites().size(), 3);
        QCOMPARE(told(), QString("What was shown has been removed by another program."));
        QCOMPARE(control<QLabel>("sites_title")->text(), QString("No site is chosen"));
    }

    void a_file_that_another_program_locks_or_takes_away_is_told() {
        start_with_year();
        choose(0);
        program().sites().open()->wait_for_locks(20);
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "elsewhere");
            other.setDatabaseName(sites_in(folder()));
            QVERIFY(other.open());
            QSqlQuery query(other);
            QVERIFY(query.exec("BEGIN EXCLUSIVE"));
            QTest::keyClick(window().windowHandle(), Qt::Key_F5);
            QVERIFY(!at_work());
            QVERIFY2(note().contains("sites.sqlite"), qPrintable(note()));
            QVERIFY(query.exec("ROLLBACK"));
        }
        QSqlDatabase::removeDatabase("elsewhere");
        QTest::keyClick(window().windowHandle(), Qt::Key_F5);
        QVERIFY(at_work());
        choose(0);
        // Another file in its place is shown, and that there is none any more.
        const QTemporaryDir other;
        { opened_sites(other.path())->store(a_site("Altrove")); }
        QVERIFY(QFile::remove(sites_in(folder())));
        QVERIFY(QFile::copy(sites_in(other.path()), sites_in(folder())));
        QTest::keyClick(window().windowHandle(), Qt::Key_F5);
        QCOMPARE(shown_sites(), QStringList({"Altrove"}));
        QVERIFY(QFile::remove(sites_in(folder())));
        QTRY_VERIFY(note().startsWith("No sites yet."));
        QVERIFY(boxes_->take_seen().isEmpty());
    }

    void a_file_that_cannot_be_used_is_told_and_left_alone_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("foreign") << QByteArray("no database at all");
        QTest::newRow("damaged") << QByteArray();
        QTest::newRow("newer") << QByteArray("newer");
    }
    void a_file_that_cannot_be_used_is_told_and_left_alone() {
        QFETCH(QByteArray, bytes);
        {
            const auto store = opened_sites(folder());
            fill_year(*store);
        }
        QFile file(sites_in(folder()));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray whole = file.readAll();
        const QByteArray sound = whole;
        constexpr int kVersionAt = 60;
        if (bytes == "newer") {
            whole[kVersionAt + 3] = 99;
        } else if (bytes.isEmpty()) {
            whole.truncate(whole.size() / 2);
        } else {
            whole = bytes;
        }
        file.resize(0);
        file.seek(0);
        file.write(whole);
        file.close();
        start_program(QSize(1100, 720));
        open();
        QVERIFY(!at_work());
        QVERIFY2(note().contains("sites.sqlite") && note().endsWith("F5 reads the file again."),
                 qPrintable(note()));
        QVERIFY(boxes_->take_seen().isEmpty());
        click("sites_edit");
        QVERIFY(!told().isEmpty());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QCOMPARE(file.readAll(), whole);
        // What can be used again is shown again.
        file.resize(0);
        file.seek(0);
        file.write(sound);
        file.close();
        QTest::keyClick(window().windowHandle(), Qt::Key_F5);
        QVERIFY(at_work());
        QCOMPARE(shown_sites().size(), 4);
    }

    void pictures() {
        const QString pictures = qEnvironmentVariable("M47_PICTURES");
        if (pictures.isEmpty()) QSKIP("no folder for them");
        QApplication::setStyle(new ContrastStyle);
        {
            const auto store = opened_sites(folder());
            fill_year(*store);
        }
        start_program(QSize(1364, 738));
        for (const bool english : {true, false}) {
            open(english);
            for (const bool dark : {false, true}) {
                QPalette colours(QColor(dark ? 0x353535 : 0xefefef),
                                 QColor(dark ? 0x353535 : 0xefefef));
                for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
                    colours.setColor(role, dark ? Qt::white : Qt::black);
                colours.setColor(QPalette::Base, QColor(dark ? 0x242424 : 0xffffff));
                colours.setColor(QPalette::AlternateBase, QColor(dark ? 0x2b2b2b : 0xf6f6f6));
                QApplication::setPalette(colours);
                choose(0);
                choose(0, 0);
                const auto save = [&](const char* what) {
                    QTest::qWait(100);
                    window().grab().save(
                        QStringLiteral("%1/sites-%2-%3-%4.png")
                            .arg(pictures, what, english ? "en" : "it", dark ? "dark" : "light"));
                };
                turn_to("view_rows");
                save("rows");
                turn_to("view_compare");
                control<QComboBox>("sites_with")->setCurrentIndex(1);
                Q_EMIT control<QComboBox>("sites_with")->activated(1);
                save("compare");
                double_click("sites_compared", 1);
                save("chart");
                turn_to("view_worse");
                click("sites_look");
                QTest::qWait(200);
                save("worse");
            }
            screen_->parentWidget()->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
};

}  // namespace m47::sites

QTEST_MAIN(m47::sites::SitesScreenTest)
#include "sites_screen_test.moc"
