// SPDX-License-Identifier: GPL-3.0-or-later
// Visits in the windows, by clicks and typing: begun, kept row by row, ended, cut off and gone on
// with; logs that become visits, and sites handed from one folder to another.
#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QToolButton>
#include <QTreeView>

#include "begin_visit_dialog.h"
#include "box_answers.h"
#include "db_support.h"
#include "import_log_dialog.h"
#include "merge_dialog.h"
#include "meter_in_process.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "sample_year.h"
#include "site_commands.h"
#include "sites_support.h"
#include "visit_claim.h"

namespace m47::sites {
namespace {

const QByteArray kLog =
    "21/11/25\t10:00:00\t11778.0\t10600\t58.3\t2.0E-4\t1.0E-8\t-0.5\t14.2\t\tPASS\n"
    "21/11/25\t10:01:00\t11778.0\t10600\t58.1\t2.0E-4\t1.0E-8\t-0.5\t14.0\t\tPASS\n"
    "what somebody wrote\n"
    "22/11/25\t10:00:00\t11778.0\t10600\t57.9\t2.0E-4\t1.0E-8\t-0.5\t13.8\t\tFAIL\n";

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) qFatal("no file");
}

void type_into(QDialog* dialog, const char* name, const QString& text) {
    auto* box = dialog->findChild<QLineEdit*>(QLatin1String(name));
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
}

void press(QDialog* dialog, QDialogButtonBox::StandardButton which) {
    auto* buttons = dialog->findChild<QDialogButtonBox*>();
    QVERIFY(buttons->button(which)->isEnabled());
    QTest::mouseClick(buttons->button(which), Qt::LeftButton);
}

void keep_picture(QWidget* shown, const QString& name) {
    const QString folder = qEnvironmentVariable("M47_PICTURES");
    if (!folder.isEmpty()) shown->grab().save(folder + "/visit-" + name + ".png");
}

}  // namespace

class VisitsWindowTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<MeterInProcess> meter_;
    std::unique_ptr<BoxAnswers> boxes_;
    FakePort* line_ = nullptr;

    void start(bool english = true) {
        line_ = &start_on_fake_line({1024, 600}, [this](FakePort& line) {
            meter_ = std::make_unique<MeterInProcess>(line, 1);
        });
        find<QAction>(english ? "cmdinglese" : "cmditaliano")->trigger();
        window().open_screen("realtime");
        find<QCheckBox>("meas_statea_0")->setChecked(true);
        boxes_ = std::make_unique<BoxAnswers>();
    }
    void stop() {
        boxes_.reset();
        meter_.reset();
        end_program();
    }
    /// Does `act` in the dialog that comes, which is closed then where it is not yet.
    void in_the_box(const BoxAnswers::Answer& act) {
        boxes_->answer([act](QDialog* dialog) {
            const QPointer<QDialog> open = dialog;
            act(dialog);
            // After what was not as it should be.
            if (open && open->isVisible()) open->reject();
        });
    }
    /// Begins a visit at `site` as somebody types it.
    void begin(const QString& site) {
        in_the_box([site](QDialog* dialog) {
            type_into(dialog, "site_name", site);
            press(dialog, QDialogButtonBox::Ok);
        });
        find<QAction>("cmdvisit")->trigger();
    }
    void end() {
        in_the_box([](QDialog* dialog) { press(dialog, QDialogButtonBox::Ok); });
        find<QAction>("cmdendvisit")->trigger();
    }
    void measure() { find<QAction>("single_acq")->trigger(); }
    int page() { return window().opened<realtime::Realtime>()->rules.page.measurements(); }
    QString mark() {
        const auto* key = window().findChild<QToolButton*>("visit_mark");
        return key && key->isVisible() ? key->text() : QString("none");
    }
    QString mark_in_full() {
        return window().findChild<QToolButton*>("visit_mark")->accessibleName();
    }
    bool can(const char* entry) { return find<QAction>(entry)->isEnabled(); }
    QString file() { return sites_in(folder()); }
    QStringList claims() {
        return QDir(folder()).entryList({"sites.visit-*"}, QDir::Files | QDir::Hidden);
    }
    /// By a store of their own, once the program has ended.
    struct Kept {
        std::vector<Site> sites;
        std::vector<Visit> visits;  ///< of the first site
        std::vector<std::size_t> rows;
    };
    Kept kept() {
        const auto store = opened_sites(folder());
        Kept kept{.sites = store->sites(), .visits = {}, .rows = {}};
        if (kept.sites.empty()) return kept;
        kept.visits = store->visits(kept.sites[0].id);
        for (const Visit& visit : kept.visits)
            kept.rows.push_back(store->measurements(visit.id).size());
        return kept;
    }
    void choose_file(const QString& path) {
        in_the_box([path](QDialog* box) {
            auto* name = box->findChild<QLineEdit*>("fileNameEdit");
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
        });
    }
    void screen_entry(const char* name) {
        window().open_screen("sites");
        find<QAction>(name)->trigger();
    }
    QString last_box() {
        const QStringList seen = boxes_->take_seen();
        return seen.isEmpty() ? QString("none") : seen.last();
    }
    void import_log(const QString& site, const QByteArray& log = kLog) {
        write(in_folder("day.log"), log);
        choose_file(in_folder("day.log"));
        in_the_box([site](QDialog* dialog) {
            type_into(dialog, "site_name", site);
            press(dialog, QDialogButtonBox::Ok);
        });
    }

  private Q_SLOTS:
    void init() { new_folder(); }
    void cleanup() { stop(); }

    void without_a_visit_nothing_is_made_and_nothing_more_is_sent();
    void each_row_goes_into_the_visit_at_once_until_it_is_ended();
    void a_known_site_is_found_as_somebody_types();
    void one_of_two_sites_of_a_name_is_chosen_by_hand();
    void a_visit_removed_meanwhile_is_told_and_offered_no_more();
    void an_empty_visit_is_none_unless_it_has_remarks();
    void closing_asks_and_the_next_start_offers_to_go_on();
    void a_visit_that_was_cut_off_can_be_ended_with_its_last_row();
    void a_visit_that_another_process_keeps_is_not_offered();
    void a_file_that_fails_in_the_middle_is_told_once_and_counted();
    void a_file_that_cannot_be_used_begins_no_visit_data();
    void a_file_that_cannot_be_used_begins_no_visit();
    void a_log_becomes_visits_once();
    void a_log_without_a_measurement_is_told();
    void a_log_that_has_grown_shows_what_differs();
    void sites_go_from_one_folder_to_another_and_twice_changes_nothing();
    void both_sides_of_what_differs_are_shown_and_chosen();
    void a_file_that_is_none_is_refused();
    void pictures_of_the_dialogs_data();
    void pictures_of_the_dialogs();
};

void VisitsWindowTest::without_a_visit_nothing_is_made_and_nothing_more_is_sent() {
    start();
    QVERIFY(can("cmdvisit") && !can("cmdendvisit"));
    line_->take_commands();
    measure();
    const QStringList sent = line_->take_commands();
    QVERIFY(!sent.isEmpty() && sent.filter("LOGO").isEmpty());
    QCOMPARE(page(), 1);
    QCOMPARE(mark(), QString("none"));
    in_the_box([](QDialog* dialog) { press(dialog, QDialogButtonBox::Cancel); });
    find<QAction>("cmdvisit")->trigger();
    program().look_for_visit();
    QCOMPARE(line_->take_commands(), QStringList());
    QCOMPARE(QDir(folder()).entryList({"sites*"}), QStringList());
    window().close();
    QVERIFY(!window().isVisible());
}

void VisitsWindowTest::each_row_goes_into_the_visit_at_once_until_it_is_ended() {
    start();
    in_the_box([](QDialog* dialog) {
        auto* begin = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        QVERIFY(!begin->isEnabled());
        type_into(dialog, "site_name", "Condominio  Sole");
        QCOMPARE(dialog->findChild<QLabel*>("site_state")->text(), QString("A new site."));
        type_into(dialog, "site_address", "Via Roma 7");
        type_into(dialog, "site_customer", "Amm. Bianchi");
        type_into(dialog, "visit_technician", "M. Rossi");
        dialog->findChild<QPlainTextEdit*>("visit_remarks")->setPlainText("rain");
        QCOMPARE(dialog->property("manual_page").toString(), QString("visits"));
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdvisit")->trigger();
    QCOMPARE(mark_in_full(), QString("Visit: Condominio Sole"));
    QVERIFY(!can("cmdvisit") && can("cmdendvisit"));
    QCOMPARE(claims().size(), 1);
    // The menu of the real-time screen has them too.
    auto* menu = find<QMenu>("cmdmenu", window().opened<realtime::Realtime>());
    QVERIFY(menu->actions().contains(find<QAction>("cmdendvisit")));
    for (int rows = 1; rows <= 3; ++rows) {
        measure();
        QCOMPARE(page(), rows);
        QCOMPARE(program().visit().rows(), rows);
    }
    // Another language, and the screen closed meanwhile: the visit goes on.
    find<QAction>("cmditaliano")->trigger();
    QCOMPARE(mark_in_full(), QString("Visita: Condominio Sole"));
    find<QAction>("cmdinglese")->trigger();
    window().screen_of("realtime")->close();
    in_the_box([](QDialog* dialog) {
        const QString facts = dialog->findChild<QLabel*>("visit_facts")->text();
        QVERIFY2(facts.contains("Rows stored: 3"), qPrintable(facts));
        auto* remarks = dialog->findChild<QPlainTextEdit*>("visit_remarks");
        QCOMPARE(remarks->toPlainText(), QString("rain"));
        remarks->moveCursor(QTextCursor::End);
        QTest::keyClicks(remarks, ", then sun");
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdendvisit")->trigger();
    QCOMPARE(mark(), QString("none"));
    QVERIFY(can("cmdvisit") && !can("cmdendvisit"));
    QCOMPARE(claims(), QStringList());
    stop();
    const Kept kept = this->kept();
    QCOMPARE(kept.sites.size(), std::size_t{1});
    QCOMPARE(kept.sites[0].name, QString("Condominio Sole"));
    QCOMPARE(kept.sites[0].address, QString("Via Roma 7"));
    QCOMPARE(kept.sites[0].customer, QString("Amm. Bianchi"));
    QCOMPARE(kept.rows, std::vector<std::size_t>{3});
    QVERIFY(kept.visits[0].ended.has_value());
    QCOMPARE(kept.visits[0].technician, QString("M. Rossi"));
    QCOMPARE(kept.visits[0].remarks, QString("rain, then sun"));
    QVERIFY(!kept.visits[0].instrument.isEmpty() && !kept.visits[0].logo.isEmpty());
}

void VisitsWindowTest::a_known_site_is_found_as_somebody_types() {
    {
        const auto store = opened_sites(folder());
        fill_year(*store);
    }
    start();
    in_the_box([](QDialog* dialog) {
        auto* list = dialog->findChild<QListWidget*>("site_matches");
        QCOMPARE(list->count(), 4);
        type_into(dialog, "site_name", "mira");
        QCOMPARE(list->count(), 1);
        auto* name = dialog->findChild<QLineEdit*>("site_name");
        QTest::keyClick(name, Qt::Key_Down);
        QCOMPARE(name->text(), QString("Hotel Miramare"));
        QVERIFY(dialog->findChild<QLineEdit*>("site_address")->isReadOnly());
        const QString state = dialog->findChild<QLabel*>("site_state")->text();
        QVERIFY2(state.startsWith("A known site; visits: 3"), qPrintable(state));
        // Typed whole in other letters it is the same one, typed on it is another.
        type_into(dialog, "site_name", "hotel miramare");
        QVERIFY(dialog->findChild<QLineEdit*>("site_address")->isReadOnly());
        type_into(dialog, "site_name", "hotel miramare 2");
        QVERIFY(!dialog->findChild<QLineEdit*>("site_address")->isReadOnly());
        QTest::keyClick(name, Qt::Key_Backspace);
        QTest::keyClick(name, Qt::Key_Backspace);
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdvisit")->trigger();
    QCOMPARE(mark_in_full(), QString("Visit: Hotel Miramare"));
    measure();
    end();
    stop();
    const auto store = opened_sites(folder());
    QCOMPARE(store->sites().size(), std::size_t{4});
    QCOMPARE(store->visits(store->sites()[1].id).size(), std::size_t{4});
}

void VisitsWindowTest::one_of_two_sites_of_a_name_is_chosen_by_hand() {
    Site second = a_site(QStringLiteral("Hotel Miramare"));
    second.address = QStringLiteral("Via Verdi 2");
    {
        const auto store = opened_sites(folder());
        fill_year(*store);
        store->store(second);
    }
    start();
    in_the_box([](QDialog* dialog) {
        auto* begin = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        type_into(dialog, "site_name", "hotel miramare");
        QCOMPARE(dialog->findChild<QLabel*>("site_state")->text(),
                 QString("More than one site has this name: choose one in the list."));
        QVERIFY(!begin->isEnabled());
        auto* list = dialog->findChild<QListWidget*>("site_matches");
        QCOMPARE(list->count(), 2);
        const int row = list->item(0)->text().contains("Via Verdi 2") ? 0 : 1;
        list->setCurrentRow(row);
        QCOMPARE(dialog->findChild<QLineEdit*>("site_address")->text(), QString("Via Verdi 2"));
        QVERIFY(begin->isEnabled());
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdvisit")->trigger();
    measure();
    end();
    stop();
    QCOMPARE(opened_sites(folder())->visits(second.id).size(), std::size_t{1});
}

/// By another program on the same file.
void VisitsWindowTest::a_visit_removed_meanwhile_is_told_and_offered_no_more() {
    start();
    begin("Sole");
    measure();
    const QStringList remove{"PRAGMA foreign_keys = ON", "DELETE FROM sites"};
    db::run_sql(file(), remove);
    measure();
    const auto* notice = find<QLabel>("corrected_notice");
    QVERIFY2(notice->text().contains("The visit was removed"), qPrintable(notice->text()));
    in_the_box([](QDialog* dialog) {
        const QString facts = dialog->findChild<QLabel*>("visit_facts")->text();
        QVERIFY2(facts.contains("Rows stored: 0"), qPrintable(facts));
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdendvisit")->trigger();
    const QString told = last_box();
    QVERIFY2(told.contains("none of its rows is in the file any more"), qPrintable(told));
    QCOMPARE(mark(), QString("none"));
    QCOMPARE(claims(), QStringList());
    begin("Sole");
    QCOMPARE(notice->text(), QString());
    measure();
    // One that was cut off and is gone is not offered any more either.
    stop();
    start();
    program().look_for_visit();
    QCOMPARE(mark_in_full(), QString("Visit cut off: Sole"));
    db::run_sql(file(), remove);
    find<QAction>("cmdvisit")->trigger();
    const QString gone = last_box();
    QVERIFY2(gone.contains("The visit is no longer in the file of sites"), qPrintable(gone));
    QCOMPARE(mark(), QString("none"));
    QCOMPARE(claims(), QStringList());
}

void VisitsWindowTest::an_empty_visit_is_none_unless_it_has_remarks() {
    start();
    begin("Sole");
    end();
    begin("Sole");
    in_the_box([](QDialog* dialog) {
        QTest::keyClicks(dialog->findChild<QPlainTextEdit*>("visit_remarks"), "nobody there");
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdendvisit")->trigger();
    stop();
    const Kept kept = this->kept();
    QCOMPARE(kept.visits.size(), std::size_t{1});
    QCOMPARE(kept.visits[0].remarks, QString("nobody there"));
    QCOMPARE(claims(), QStringList());
}

void VisitsWindowTest::closing_asks_and_the_next_start_offers_to_go_on() {
    start();
    begin("Sole");
    measure();
    boxes_->press(QMessageBox::Cancel);
    window().close();
    QVERIFY(window().isVisible());
    boxes_->press(QMessageBox::No);
    window().close();
    QVERIFY(!window().isVisible());
    const QStringList seen = boxes_->take_seen();
    QVERIFY2(seen.last().contains("The visit at 'Sole' runs."), qPrintable(seen.last()));
    stop();
    QCOMPARE(claims().size(), 1);
    start();
    program().look_for_visit();
    QCOMPARE(boxes_->take_seen(), QStringList());
    QCOMPARE(mark_in_full(), QString("Visit cut off: Sole"));
    QCOMPARE(find<QAction>("cmdvisit")->text(), QString("Go on with the &visit"));
    measure();
    find<QAction>("cmdvisit")->trigger();
    QCOMPARE(mark_in_full(), QString("Visit: Sole"));
    measure();
    boxes_->press(QMessageBox::Yes);
    in_the_box([](QDialog* dialog) { press(dialog, QDialogButtonBox::Ok); });
    window().close();
    QVERIFY(!window().isVisible());
    stop();
    const Kept kept = this->kept();
    QCOMPARE(kept.rows, std::vector<std::size_t>{2});
    QVERIFY(kept.visits[0].ended.has_value());
    QCOMPARE(claims(), QStringList());
}

void VisitsWindowTest::a_visit_that_was_cut_off_can_be_ended_with_its_last_row() {
    start();
    begin("Sole");
    measure();
    // As at the end by a signal: nobody is asked.
    stop();
    start();
    program().look_for_visit();
    QVERIFY(can("cmdendvisit"));
    end();
    QCOMPARE(mark(), QString("none"));
    QCOMPARE(find<QAction>("cmdvisit")->text(), QString("Begin &visit…"));
    stop();
    const auto store = opened_sites(folder());
    const Visit visit = store->visits(store->sites().at(0).id).at(0);
    QCOMPARE(store->measurements(visit.id).size(), std::size_t{1});
    QCOMPARE(visit.ended->utc, store->measurements(visit.id)[0].instant.utc);
    QCOMPARE(claims(), QStringList());
}

void VisitsWindowTest::a_visit_that_another_process_keeps_is_not_offered() {
    start();
    begin("Sole");
    measure();
    stop();
    QProcess other;
    const QString claim = in_folder(claims().value(0));
    other.start("python3", {"-c",
                            "import fcntl,sys\n"
                            "f=open(sys.argv[1],'r+')\n"
                            "fcntl.lockf(f,fcntl.LOCK_EX)\n"
                            "print('held',flush=True)\nsys.stdin.read()",
                            claim});
    QVERIFY(other.waitForReadyRead());
    start();
    program().look_for_visit();
    QCOMPARE(mark(), QString("none"));
    // Nor can it be gone on with by another way.
    {
        const auto store = program().sites().open();
        VisitRecorder recorder(*store);
        const QUuid id = store->visits(store->sites().at(0).id).at(0).id;
        QVERIFY_EXCEPTION_THROWN(recorder.resume(id), Fault);
        QVERIFY(!recorder.running());
    }
    // Nor is it removed under the other one's hands.
    window().open_screen("sites");
    auto* tree = find<QTreeView>("sites_tree", window().screen_of("sites"));
    tree->setCurrentIndex(tree->model()->index(0, 0));
    find<QAction>("cmdsiteremove")->trigger();
    QCOMPARE(find<QLabel>("corrected_notice")->text(),
             QString("Another window or run keeps this visit just now: end it there first."));
    other.closeWriteChannel();
    QVERIFY(other.waitForFinished());
    program().look_for_visit();
    QCOMPARE(mark_in_full(), QString("Visit cut off: Sole"));
}

void VisitsWindowTest::a_file_that_fails_in_the_middle_is_told_once_and_counted() {
    start();
    begin("Sole");
    measure();
    QVERIFY(QFile::rename(file(), in_folder("elsewhere")));
    measure();
    auto* notice = find<QLabel>("corrected_notice");
    QVERIFY2(notice->text().contains("was deleted, moved or replaced"), qPrintable(notice->text()));
    QCOMPARE(mark_in_full(), QString("Visit: rows not stored: 1, Sole"));
    window().show_notice({});
    measure();
    QCOMPARE(notice->text(), QString());
    QCOMPARE(page(), 3);
    QCOMPARE(mark_in_full(), QString("Visit: rows not stored: 2, Sole"));
    end();
    const QString told = last_box();
    QVERIFY2(told.contains("2 of 3 rows are missing"), qPrintable(told));
    QCOMPARE(mark(), QString("none"));
    QCOMPARE(page(), 3);
}

void VisitsWindowTest::a_file_that_cannot_be_used_begins_no_visit_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("word");
    const QTemporaryDir folder;
    opened_sites(folder.path()).reset();
    const QByteArray sound = content(sites_in(folder.path()));
    QByteArray newer = sound;
    newer[63] = '\x7';
    QByteArray damaged = sound;
    damaged.replace(4096, 300, QByteArray(300, '\x33'));
    QTest::newRow("newer") << newer << "later version";
    QTest::newRow("damaged") << damaged << "is damaged";
    QTest::newRow("foreign") << QByteArray("dear diary") << "not a file of sites";
}

void VisitsWindowTest::a_file_that_cannot_be_used_begins_no_visit() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, word);
    write(file(), bytes);
    start();
    find<QAction>("cmdvisit")->trigger();
    const QStringList seen = boxes_->take_seen();
    QCOMPARE(seen.size(), 1);
    QVERIFY2(seen[0].contains(word), qPrintable(seen[0]));
    QCOMPARE(mark(), QString("none"));
    measure();
    QCOMPARE(page(), 1);
    // What cannot be offered for this is told without a box.
    write(in_folder("sites.visit-" + QUuid::createUuid().toString(QUuid::WithoutBraces)), "");
    program().look_for_visit();
    QCOMPARE(boxes_->take_seen(), QStringList());
    QVERIFY(find<QLabel>("corrected_notice")->text().contains(word));
    stop();
    QVERIFY(content(file()) == bytes);
    QCOMPARE(claims().size(), 1);
}

void VisitsWindowTest::a_log_becomes_visits_once() {
    start();
    write(in_folder("day.log"), kLog);
    choose_file(in_folder("day.log"));
    in_the_box([](QDialog* dialog) {
        auto* tabs = dialog->findChild<QTabWidget*>("log_tables");
        QCOMPARE(tabs->tabText(0), QString("&Visits (2)"));
        QCOMPARE(tabs->tabText(1), QString("Lines &read (3)"));
        QCOMPARE(tabs->tabText(2), QString("Lines &not read (1)"));
        const auto* visits = dialog->findChild<QTableView*>("log_visits")->model();
        QCOMPARE(visits->index(0, 1).data().toString(), QString("2025-11-21 10:00:00"));
        QCOMPARE(visits->index(0, 3).data().toString(), QString("2"));
        const auto* rows = dialog->findChild<QTableView*>("log_rows")->model();
        QCOMPARE(rows->index(2, 0).data().toString(), QString("4"));
        QCOMPARE(rows->index(2, 1).data().toString(), QString("2"));
        const auto* unread = dialog->findChild<QTableView*>("log_unread")->model();
        QCOMPARE(unread->index(0, 0).data().toString(), QString("3"));
        QCOMPARE(unread->index(0, 1).data().toString(), QString("1 fields instead of 11"));
        QVERIFY(!dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
        type_into(dialog, "site_name", "Sole");
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdimportlog")->trigger();
    QVERIFY2(last_box().contains("1 sites, 2 visits, 3 measurements"), "imported");
    const QByteArray before = content(file());
    import_log("sole");
    screen_entry("cmdsitelog");
    QVERIFY2(last_box().contains("is here already: nothing was changed"), "twice");
    QVERIFY(content(file()) == before);
    stop();
    QCOMPARE(kept().rows, (std::vector<std::size_t>{1, 2}));
}

void VisitsWindowTest::a_log_without_a_measurement_is_told() {
    start();
    write(in_folder("day.log"), "a letter\nof two lines\n");
    choose_file(in_folder("day.log"));
    find<QAction>("cmdimportlog")->trigger();
    QVERIFY2(last_box().contains("Lines not read: 2."), "none");
    QVERIFY(!QFile::exists(file()));
}

void VisitsWindowTest::a_log_that_has_grown_shows_what_differs() {
    start();
    import_log("Sole");
    find<QAction>("cmdimportlog")->trigger();
    boxes_->take_seen();
    import_log("Sole", kLog + "22/11/25\t10:05:00\t11778.0\t10600\t57.5\t\t\t\t13.7\t\tFAIL\n");
    in_the_box([](QDialog* dialog) {
        auto* conflicts = dialog->findChild<QListWidget*>("merge_conflicts");
        QCOMPARE(conflicts->count(), 1);
        QCOMPARE(dialog->findChild<QTableWidget*>("merge_sides")->item(0, 0)->text(),
                 QString("Ended"));
        QTest::mouseClick(dialog->findChild<QPushButton*>("merge_theirs"), Qt::LeftButton);
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdimportlog")->trigger();
    stop();
    const Kept kept = this->kept();
    QCOMPARE(kept.rows, (std::vector<std::size_t>{2, 2}));
    QCOMPARE(kept.visits[0].ended->utc - kept.visits[0].begun.utc, 300.0);
}

void VisitsWindowTest::sites_go_from_one_folder_to_another_and_twice_changes_nothing() {
    {
        const auto store = opened_sites(folder());
        fill_year(*store);
    }
    start();
    const QTemporaryDir between;
    const QString path = between.filePath("sites.json");
    in_the_box([](QDialog* dialog) {
        auto* list = dialog->findChild<QListWidget*>("export_list");
        QTest::mouseClick(dialog->findChild<QPushButton*>("export_none"), Qt::LeftButton);
        QVERIFY(!dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
        type_into(dialog, "export_search", "CONDOMINIO");
        QCOMPARE(list->count(), 1);
        QTest::mouseClick(dialog->findChild<QPushButton*>("export_all"), Qt::LeftButton);
        const QString count = dialog->findChild<QLabel*>("export_count")->text();
        QVERIFY2(count.startsWith("Sites ticked: 1, with 5 visits"), qPrintable(count));
        press(dialog, QDialogButtonBox::Ok);
    });
    choose_file(path);
    screen_entry("cmdsitesexport");
    QVERIFY(content(path).contains("Condominio Rossi"));
    QVERIFY(!content(path).contains("Miramare"));
    QCOMPARE(find<QLabel>("saved_name")->text(), QString("Saved sites.json"));
    stop();
    new_folder();
    start();
    choose_file(path);
    in_the_box([](QDialog* dialog) { press(dialog, QDialogButtonBox::Cancel); });
    screen_entry("cmdsitesimport");
    for (const char* told : {"1 sites, 5 visits", "is here already: nothing was changed"}) {
        choose_file(path);
        if (QByteArray(told).startsWith('1'))
            in_the_box([](QDialog* dialog) { press(dialog, QDialogButtonBox::Ok); });
        screen_entry("cmdsitesimport");
        const QString box = last_box();
        QVERIFY2(box.contains(told), qPrintable(box));
    }
    stop();
    QCOMPARE(kept().visits.size(), std::size_t{5});
}

void VisitsWindowTest::both_sides_of_what_differs_are_shown_and_chosen() {
    Site site = a_site("Sole");
    site.address = "Via Roma 7";
    {
        const auto store = opened_sites(folder());
        store->store(site);
    }
    Site other = site;
    other.address = "Via Roma 9";
    write(in_folder("other.json"), site_file_bytes({{other, {}}}));
    start();
    choose_file(in_folder("other.json"));
    in_the_box([](QDialog* dialog) {
        const auto* sides = dialog->findChild<QTableWidget*>("merge_sides");
        QCOMPARE(sides->rowCount(), 1);
        QCOMPARE(sides->item(0, 1)->text(), QString("Via Roma 7"));
        QCOMPARE(sides->item(0, 2)->text(), QString("Via Roma 9"));
        // A low window shows several lines of what differs.
        dialog->resize(dialog->width(), 392);
        QTest::qWait(50);
        QVERIFY(sides->visibleRegion().boundingRect().height() >= 6 * sides->rowHeight(0));
        // Nothing ticked: what is here stays.
        press(dialog, QDialogButtonBox::Ok);
    });
    screen_entry("cmdsitesimport");
    QCOMPARE(program().sites().open()->sites().at(0).address, QString("Via Roma 7"));
    choose_file(in_folder("other.json"));
    in_the_box([](QDialog* dialog) {
        auto* list = dialog->findChild<QListWidget*>("merge_conflicts");
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Space);
        QCOMPARE(list->item(0)->checkState(), Qt::Checked);
        press(dialog, QDialogButtonBox::Ok);
    });
    screen_entry("cmdsitesimport");
    QCOMPARE(program().sites().open()->sites().at(0).address, QString("Via Roma 9"));
}

void VisitsWindowTest::a_file_that_is_none_is_refused() {
    start();
    write(in_folder("other.json"), "{\"format\": \"other\"}");
    choose_file(in_folder("other.json"));
    screen_entry("cmdsitesimport");
    const QString told = last_box();
    QVERIFY2(told.contains("'other.json' was not imported: "), qPrintable(told));
    screen_entry("cmdsitesexport");
    QVERIFY2(last_box().contains("There are no sites yet"), "empty");
    QVERIFY(!QFile::exists(file()));
}

void VisitsWindowTest::pictures_of_the_dialogs_data() {
    QTest::addColumn<bool>("english");
    QTest::newRow("en") << true;
    QTest::newRow("it") << false;
}

/// For who wants to look; what they hold to is asked by shell.layout.
void VisitsWindowTest::pictures_of_the_dialogs() {
    QFETCH(bool, english);
    const QString language = QTest::currentDataTag();
    if (qEnvironmentVariableIsEmpty("M47_PICTURES")) QSKIP("no folder for pictures");
    {
        const auto store = opened_sites(folder());
        fill_year(*store);
    }
    start(english);
    in_the_box([&](QDialog* dialog) {
        keep_picture(dialog, "begin-" + language);
        type_into(dialog, "site_name", "miramare");
        QTest::keyClick(dialog->findChild<QLineEdit*>("site_name"), Qt::Key_Down);
        keep_picture(dialog, "begin-known-" + language);
        press(dialog, QDialogButtonBox::Ok);
    });
    find<QAction>("cmdvisit")->trigger();
    measure();
    keep_picture(&window(), "runs-" + language);
    in_the_box([&](QDialog* dialog) {
        keep_picture(dialog, "end-" + language);
        dialog->reject();
    });
    find<QAction>("cmdendvisit")->trigger();
    write(in_folder("day.log"), kLog);
    choose_file(in_folder("day.log"));
    in_the_box([&](QDialog* dialog) {
        type_into(dialog, "site_name", "Condominio Luna");
        keep_picture(dialog, "log-" + language);
        dialog->reject();
    });
    find<QAction>("cmdimportlog")->trigger();
    in_the_box([&](QDialog* dialog) {
        keep_picture(dialog, "export-" + language);
        dialog->reject();
    });
    screen_entry("cmdsitesexport");
    keep_picture(&window(), "screen-" + language);
    SiteFile theirs =
        sites_of(*program().sites().open(), {program().sites().open()->sites().at(0).id});
    theirs[0].site.address = "Via Roma 9, scala B";
    theirs[0].visits[0].visit.remarks = "LNB changed";
    write(in_folder("other.json"), site_file_bytes(theirs));
    choose_file(in_folder("other.json"));
    in_the_box([&](QDialog* dialog) {
        keep_picture(dialog, "merge-" + language);
        dialog->reject();
    });
    screen_entry("cmdsitesimport");
    program().visit().leave();
}

}  // namespace m47::sites

QTEST_MAIN(m47::sites::VisitsWindowTest)
#include "visits_window_test.moc"
