// SPDX-License-Identifier: GPL-3.0-or-later
// Keys, names, files and copies.
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::keys_of_the_position_list() {
    start_alone();
    auto* list = find<QComboBox>("logger_pos");
    pick("logger_pos", 4);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Tab);
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-"));
    QVERIFY(!list->hasFocus());
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("03"));
    // The arrows choose, as in each list.
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(list->currentText(), QStringLiteral("04"));
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("03"));
    QTest::keyClick(list, Qt::Key_Backspace);
    QCOMPARE(list->currentText(), QStringLiteral("04"));
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("04"));
}

void PlanScreenTest::a_number_of_another_program_is_refused_by_enter_and_by_store() {
    start_alone();
    enter("prog_num", QStringLiteral("7"));
    enter("prog_num", QStringLiteral("8"));
    press("previous_prog");
    const auto again = [this](const std::function<void()>& act) {
        beeps_ = 0;
        told_.clear();
        answering(act, pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList{"Error|The Programme in the data base already exist."});
        QCOMPARE(icons_.takeLast(), QMessageBox::Warning);
        QCOMPARE(beeps_, 2);
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,008"));
    };
    again([this] {
        type("prog_num", QStringLiteral("8"));
        press("store");
    });
    QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
    press("previous_prog");
    again([this] { enter("prog_num", QStringLiteral("7")); });
    // The last program is shown.
    QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
    press("next_prog");
    QCOMPARE(beeps_, 3);
}

void PlanScreenTest::the_key_without_work_does_nothing() {
    start_alone();
    type("prog_num", QStringLiteral("7"));
    screen_->toolbar_ButtonClick(QStringLiteral("storing"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("7"));
    QCOMPARE(beeps_, 0);
}

void PlanScreenTest::a_read_only_file_is_told_by_everything_that_writes() {
    start_with_meter();
    enter("prog_num", QStringLiteral("7"));
    new_plan(QStringLiteral("B"));
    press("previous");
    press("next_prog");
    const QString file = file_with(QStringLiteral("one.csv"), "frequenza\n1000\n");
    change_file(QStringLiteral("PRAGMA query_only = 1"));
    const auto ok = pressing(QMessageBox::Ok);
    const auto refused = [&](const char* key, QList<std::function<void(QWidget*)>> answers) {
        told_.clear();
        answering_each(pressed(key), answers << ok);
        QVERIFY2(told_.constLast().contains(QStringLiteral("cannot be written")),
                 qPrintable(told_.join(u';')));
        QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
        QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
    };
    refused("delete", {ok});
    refused("programma_delete", {ok});
    refused("cmdimport", {choosing(file), accepting()});
    refused("cmdcopyprog", {typing(QStringLiteral("C"))});
    refused("cmdcopyplan", {typing(QStringLiteral("C"))});
    // An upload stores first; what is not stored is not sent.
    refused("nuovo", {});
    QCOMPARE(new_commands(), QStringList());
    QSqlQuery plans(QStringLiteral("SELECT count(*) FROM gruppo"),
                    program().database().connection());
    QVERIFY(plans.next());
    QCOMPARE(plans.value(0).toInt(), 2);
}

void PlanScreenTest::a_plan_is_exported_with_tabs_or_the_reason_is_told() {
    start_alone();
    click("ol_opt_0");
    type("sat_freq_txt", QStringLiteral("1234.5"));
    type("prog_num", QStringLiteral("7"));
    press("store");
    const QString out = in_folder(QStringLiteral("out.tsv"));
    answering(pressed("cmdexport"), choosing(out));
    const QByteArray written = content_of(out);
    QVERIFY(written.startsWith("nome\tpg_num\tfrequenza\t"));
    QVERIFY(written.contains("\nPLAN 1\t007\t1234.5\t1\t"));
    told_.clear();
    answering_each(pressed("cmdexport"),
                   {choosing(QStringLiteral("/proc/none.csv")), pressing(QMessageBox::Ok)});
    QVERIFY2(told_.constLast().contains(QStringLiteral("/proc/none.csv")),
             qPrintable(told_.constLast()));
}

void PlanScreenTest::blanks_around_a_new_name_go() {
    start_alone();
    new_plan(QStringLiteral("  roof east and west"));
    QCOMPARE(text_of("grp_name"), QStringLiteral("ROOF EAS"));
    new_plan(QStringLiteral("   "));
    QCOMPARE(text_of("grp_name"), QStringLiteral("ROOF EAS"));
}

void PlanScreenTest::the_tab_key_goes_through_the_boxes_in_their_order() {
    start_alone();
    press("monitor");
    click("cmd_dig");
    find<QLineEdit>("prog_num")->setFocus();
    QStringList order;
    for (int k = 0; k < 24; ++k) {
        order += QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order.mid(0, 7), QStringList({"prog_num", "logger_pos", "logger_state", "k22_state",
                                           "lnb_state", "diseqc_cmd", "diseqc_cmd2"}));
    QCOMPARE(order.filter(QRegularExpression(QStringLiteral("(txt|state)$"))).mid(3),
             QStringList({"sat_freq_txt", "srqpsk_txt", "chbw_txt", "monitor_state", "lev_mintxt",
                          "lev_maxtxt", "cn_mintxt", "cn_maxtxt", "chber_mintxt", "chber_maxtxt",
                          "mer_mintxt", "mer_maxtxt"}));
}

void PlanScreenTest::every_box_has_a_name_for_those_who_cannot_see_it() {
    start_alone();
    QSet<QString> names;
    for (const char* name :
         {"ol_optval", "lev_maxtxt", "cn_maxtxt", "chber_maxtxt", "mer_maxtxt"}) {
        const QString spoken = find<QWidget>(name)->accessibleName();
        QVERIFY2(!spoken.isEmpty(), name);
        names += spoken;
    }
    QCOMPARE(names.size(), 5);
}

void PlanScreenTest::a_file_is_imported_after_its_preview_and_exported() {
    start_alone();
    new_plan(QStringLiteral("B"));
    const QString file = in_folder(QStringLiteral("some.csv"));
    QFile source(file);
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("pg_num,frequenza,oscillator\n5,12000,10600\n5,11000,\n6,500,\n");
    source.close();
    const auto choose = [&](const QString& path, const std::function<void()>& then) {
        return [path, then](QWidget* front) {
            auto* box = front->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            box->setText(path);
            if (then) QTimer::singleShot(50, front->parentWidget(), then);
            QTest::keyClick(box, Qt::Key_Return);
        };
    };
    QStringList results;
    const auto preview_and = [&](bool accept) {
        return [&results, accept] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QCOMPARE(dialog->objectName(), QStringLiteral("import_preview"));
            auto* table = dialog->findChild<QTableWidget*>();
            results.clear();
            for (int row = 0; row < table->rowCount(); ++row)
                results += table->item(row, 0)->text() + u'|' + table->item(row, 8)->text();
            accept ? dialog->accept() : dialog->reject();
        };
    };
    answering(pressed("cmdimport"), choose(file, preview_and(false)));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    answering(pressed("cmdimport"), choose(file, preview_and(true)));
    QCOMPARE(results, QStringList({"2|Added", "3|Its number stands twice among these rows.",
                                   "4|Added, corrected: frequenza: 500 → 920.0"}));
    QCOMPARE(told_below(), QStringLiteral("Programs added: 2, replaced: 0"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("005,006"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("005"));
    const QString out = in_folder(QStringLiteral("out.csv"));
    answering(pressed("cmdexport"), choose(out, {}));
    const QByteArray written = content_of(out);
    QVERIFY(written.startsWith("nome,pg_num,frequenza,"));
    QVERIFY(written.contains("\nB,005,12000,0,0,"));
    QVERIFY(
        written.endsWith(",10600\nB,006,920.0,1,0,0,27500,36,73,73,0,0,,0,0,20,120,1,40,"
                         "1E-8,3E-2,1,40,\n"));
    QVERIFY(QFile::remove(file));
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("no plan");
    source.close();
    told_.clear();
    answering(pressed("cmdimport"), choose(file, [this] {
                  note(QApplication::activeModalWidget());
                  pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
              }));
    QCOMPARE(told_, QStringList{"Error|some.csv is neither a plan nor a DVB scan table."});
    // What is longer than any plan is not even read.
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("pg_num,frequenza\n8,1500\n" + QByteArray(1024 * 1024, '\n'));
    source.close();
    told_.clear();
    answering(pressed("cmdimport"), choose(file, [this] {
                  note(QApplication::activeModalWidget());
                  pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
              }));
    QCOMPARE(told_, QStringList{"Error|some.csv is longer than 1 MiB, which no plan is."});
}

void PlanScreenTest::programs_and_plans_are_copied() {
    start_alone();
    enter("prog_num", QStringLiteral("7"));
    answering(pressed("cmdcopyprog"), typing(QStringLiteral("plan 1")));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,001"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
    answering(pressed("cmdcopyplan"), typing(QStringLiteral("again")));
    QCOMPARE(text_of("grp_name"), QStringLiteral("AGAIN"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,001"));
    told_.clear();
    answering(pressed("cmdcopyplan"), [this](QWidget* front) {
        QTimer::singleShot(50, front->parentWidget(), [this] {
            note(QApplication::activeModalWidget());
            pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
        });
        typing(QStringLiteral("plan 1"))(front);
    });
    QCOMPARE(told_.constLast(), QStringLiteral("Error|The plan PLAN 1 already exists."));
}

void PlanScreenTest::no_sends_nothing_but_the_program_is_stored() {
    start_with_meter();
    type("prog_num", QStringLiteral("7"));
    answering(pressed("nuovo"), pressing(QMessageBox::No));
    QCOMPARE(told_,
             QStringList{"M47|Replace with the new Plan of program\rDo you want to continue?"});
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("007"));
    QCOMPARE(new_commands(), QStringList());
}

void PlanScreenTest::the_meter_holds_the_plan_after_each_kind_of_upload() {
    start_with_meter();
    type_three_programs();
    press("cmdverify");
    const QStringList factory_programs = meter_keeps(QStringLiteral("program"));
    QCOMPARE(meter_keeps(QStringLiteral("logger-line")),
             QStringList({"01 01 01", "02 02 01", "03 03 00", "04 04 01", "05 05 01", "06 06 00"}));
    const auto upload = [this](const char* key) {
        QString verified;
        answering(pressed(key), [&](QWidget* front) {
            // The window behind the question comes when all has been sent.
            auto* wait = new QTimer(screen_);
            connect(wait, &QTimer::timeout, screen_, [wait, front, &verified] {
                auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                if (!dialog || dialog == front) return;
                verified = dialog->findChild<QLabel*>(QStringLiteral("verify_summary"))->text();
                wait->deleteLater();
                dialog->accept();
            });
            wait->start(20);
            pressing(QMessageBox::Yes)(front);
        });
        QVERIFY2(verified.startsWith(QStringLiteral("The logger table is as planned.\n")),
                 qPrintable(verified));
        QCOMPARE(text_of("prog_num"), QStringLiteral("010"));
        press("next_prog");
        press("next_prog");
    };
    const auto* summary = window().findChild<QLabel*>(QStringLiteral("plan_progress"));

    upload("accoda");
    QCOMPARE(new_commands(),
             QStringList{"MEASURE"} + three_programs_ + QStringList{"DATAPROGRAM?"});
    QCOMPARE(meter_keeps(QStringLiteral("program")), factory_programs + three_kept_);
    QCOMPARE(meter_keeps(QStringLiteral("logger-line")),
             QStringList({"01 11 01", "02 12 01", "03 03 00", "04 04 01", "05 05 01", "06 06 00"}));
    QCOMPARE(summary->text(), QStringLiteral("38 of 38 commands answered OK"));
    QCOMPARE(summary->toolTip(), QString());

    upload("sostituisci");
    QCOMPARE(new_commands(),
             QStringList({"MEASURE", "DATAPROGRAM?", "DATAPROGRAM 01 11 00", "DATAPROGRAM 02 12 00",
                          "DATAPROGRAM 04 04 00", "DATAPROGRAM 05 05 00"}) +
                 three_programs_ + QStringList{"DATAPROGRAM?"});
    QCOMPARE(meter_keeps(QStringLiteral("logger-line")),
             QStringList({"01 11 01", "02 12 01", "03 03 00", "04 04 00", "05 05 00", "06 06 00"}));
    const QDir backup(in_folder(QStringLiteral("backup")));
    QCOMPARE(backup.entryList(QDir::Files).size(), 1);
    QCOMPARE(content_of(backup.filePath(backup.entryList(QDir::Files)[0])),
             QByteArray("01 11 01\r02 12 01\r03 03 00\r04 04 01\r05 05 01\r06 06 00"));
    QVERIFY(!QFile::exists(in_folder(QStringLiteral("temp.dat"))));

    upload("nuovo");
    QCOMPARE(new_commands(), QStringList({"MEASURE", "DELETE 00 99", "DATAPROGRAM *"}) +
                                 three_programs_ + QStringList{"DATAPROGRAM?"});
    QCOMPARE(meter_keeps(QStringLiteral("program")), three_kept_);
    QCOMPARE(meter_keeps(QStringLiteral("logger-line")), QStringList({"01 11 01", "02 12 01"}));
}

}  // namespace m47::plans
