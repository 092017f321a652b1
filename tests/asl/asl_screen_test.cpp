// SPDX-License-Identifier: GPL-3.0-or-later
// The satellite screen, clicked at as a technician does, on a link to a simulated meter whose time
// is virtual.
#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>

#include "asl.h"
#include "asl_fixture.h"
#include "asl_tooltips.h"
#include "box_answers.h"

namespace m47::asl {

class AslScreenTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<AslFixture> stand_;
    std::unique_ptr<BoxAnswers> boxes_;
    std::unique_ptr<Asl> screen_;

    AslFixture& f() { return *stand_; }
    template <class Kind>
    Kind* find(const char* name, QObject* in = nullptr) {
        auto* found = (in ? in : screen_.get())->findChild<Kind*>(QString::fromLatin1(name));
        if (!found) qFatal("no %s", name);
        return found;
    }
    void open() {
        screen_ = std::make_unique<Asl>(f().link, f().state, f().asl());
        screen_->show();
        QVERIFY(QTest::qWaitForWindowExposed(screen_.get()));
        screen_->Form_Load();
        screen_->Form_Activate();
        f().commands();
    }
    /// As another program that has the file open.
    void sql_elsewhere(const char* statement) {
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(f().path(QString::fromLatin1(db::kDatabaseFile)));
            QVERIFY(other.open());
            QSqlQuery query(other);
            QVERIFY2(query.exec(QString::fromLatin1(statement)), statement);
        }
        QSqlDatabase::removeDatabase("other");
    }
    void pick(const char* list, int row) {
        auto* box = find<QListWidget>(list);
        box->scrollToItem(box->item(row));
        QTest::mouseClick(box->viewport(), Qt::LeftButton, {},
                          box->visualItemRect(box->item(row)).center());
        QCOMPARE(box->currentRow(), row);
    }
    void click(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    QStringList entries(const char* list) {
        QStringList entries;
        for (int row = 0; row < find<QListWidget>(list)->count(); ++row)
            entries += find<QListWidget>(list)->item(row)->text();
        return entries;
    }
    /// The name that a file dialog is given.
    static BoxAnswers::Answer file_named(const QString& path) {
        return [path](QDialog* dialog) {
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
        };
    }

  private Q_SLOTS:
    void init() {
        stand_ = std::make_unique<AslFixture>();
        boxes_ = std::make_unique<BoxAnswers>();
        open();
    }
    void cleanup() {
        screen_.reset();
        boxes_.reset();
        stand_.reset();
    }

    void it_opens_with_both_lists() {
        QCOMPARE(screen_->objectName(), QStringLiteral("asl"));
        QCOMPARE(screen_->windowTitle(), QStringLiteral("Automatic Satellite Locator"));
        QCOMPARE(entries("listadb"), QStringList());
        QCOMPARE(entries("listastr").size(), 20);
        QCOMPARE(entries("listastr").mid(2, 2), QStringList({"CIRRUS 9E", "**********"}));
        QCOMPARE(find<QMenu>("cmdmenu")->title(), QStringLiteral("&Menu"));
        QCOMPARE(find<QAction>("cmdsaveall")->text(), QStringLiteral("&Save all slots…"));
        QCOMPARE(find<QAction>("cmdrestoreall")->text(), QStringLiteral("&Restore all slots…"));
    }

    void at_the_front_it_shows_what_another_program_has_stored() {
        f().add_satellite("EAST", "S1");
        f().add_satellite("WEST", "S2");
        screen_->Form_Activate();
        pick("listadb", 1);
        sql_elsewhere("INSERT INTO asl (nome, dati) VALUES ('NORTH', 'S3')");
        sql_elsewhere("DELETE FROM asl WHERE nome = 'EAST'");
        screen_->Form_Activate();
        QCOMPARE(entries("listadb"), QStringList({"WEST", "NORTH"}));
        QCOMPARE(find<QListWidget>("listadb")->currentRow(), 0);
        sql_elsewhere("DELETE FROM asl WHERE nome = 'WEST'");
        screen_->Form_Activate();
        QCOMPARE(find<QListWidget>("listadb")->currentRow(), -1);
        // The last one stays, whoever has deleted the others.
        f().add_satellite("SOUTH", "S4");
        screen_->Form_Activate();
        pick("listadb", 1);
        sql_elsewhere("DELETE FROM asl WHERE nome = 'NORTH'");
        click("cmddelpc");
        QCOMPARE(boxes_->take_seen(), QStringList());
        QCOMPARE(f().rows(), QStringList("SOUTH=S4"));
    }

    void a_satellite_that_another_program_has_stored_is_asked_about() {
        sql_elsewhere("INSERT INTO asl (nome, dati) VALUES ('CIRRUS 9E', 'THEIRS')");
        pick("listastr", 2);
        boxes_->press(QMessageBox::Cancel);
        click("cmdaddindb");
        QCOMPARE(boxes_->take_seen().size(), 1);
        QCOMPARE(f().rows(), QStringList("CIRRUS 9E=THEIRS"));
    }

    void tooltips_in_both_languages() {
        for (const int language : {int(kEnglish), int(kItalian)}) {
            f().state.texts.language = language;
            open();
            for (const Tooltip& tooltip : asl_tooltips())
                QCOMPARE(
                    find<QWidget>(tooltip.control)->toolTip(),
                    QString::fromUtf8(language == kItalian ? tooltip.italian : tooltip.english));
        }
        QCOMPARE(find<QWidget>("cmdlearn")->toolTip(),
                 QStringLiteral("Acquisisce un satellite nella posizione selezionata nel M47"));
    }

    void copy_ask_and_delete_on_the_pc() {
        pick("listastr", 0);
        click("cmdaddindb");
        pick("listastr", 2);
        click("cmdaddindb");
        QCOMPARE(entries("listadb"), QStringList({"AURORA 13E", "CIRRUS 9E"}));
        QCOMPARE(boxes_->take_seen(), QStringList());
        boxes_->press(QMessageBox::Cancel);
        click("cmdaddindb");
        QCOMPARE(boxes_->take_seen(),
                 QStringList("none|AutomaticSatelliteLocation|Satellite already exist! Do you want "
                             "restore it? CIRRUS 9E|OK,Cancel"));
        QCOMPARE(find<QListWidget>("listastr")->currentRow(), 2);
        pick("listadb", 0);
        boxes_->press(QMessageBox::Ok);
        click("cmddelpc");
        QCOMPARE(boxes_->take_seen(), QStringList("none|ASL|Do you want delete satellite from "
                                                  "list? AURORA 13E|OK,Cancel"));
        QCOMPARE(entries("listadb"), QStringList("CIRRUS 9E"));
        pick("listadb", 0);
        click("cmddelpc");
        QCOMPARE(boxes_->take_seen(), QStringList());
        QCOMPARE(f().commands(), QStringList());
    }

    void program_delete_and_learn() {
        f().state.texts.language = kItalian;
        pick("listastr", 2);
        click("cmdaddindb");
        pick("listadb", 0);
        boxes_->press(QMessageBox::Ok);
        click("cmdsave");
        QCOMPARE(boxes_->take_seen(),
                 QStringList("none|AutomaticSatelliteLocation|Il satellite esiste! Vuoi "
                             "riprogrammarlo? CIRRUS 9E|OK,Cancel"));
        QCOMPARE(f().commands(), f().records(2) + QStringList({"ASLNAME 2 CIRRUS 9E", "ASLNAME?"}));
        pick("listastr", 2);
        click("cmddelstr");
        QCOMPARE(f().commands(), QStringList("ASLDEL 2") + f().records(2) +
                                     QStringList({"ASLNAME?", "MASTERCOPY 6?"}));
        QCOMPARE(entries("listastr")[2], QStringLiteral("**********"));
        QVERIFY(find<QListWidget>("listastr")->selectedItems().isEmpty());
        pick("listastr", 2);
        boxes_->press(QMessageBox::Ok);
        boxes_->type(QStringLiteral("NOVA 7W"));
        click("cmdlearn");
        QCOMPARE(boxes_->take_seen(),
                 QStringList({"none|AutomaticSatelliteLocation|Vuoi acquisire un satellite?|"
                              "OK,Cancel",
                              "input|AutomaticSatelliteLocator|Inserire il nome del Satellite:|"
                              "**********"}));
        QCOMPARE(f().commands(), QStringList({"MEASURE", "ASLLEARN 02", "ASLNAME 02 NOVA 7W",
                                              "ASLNAME?", "MASTERCOPY 6?", "MEASURE"}));
        QCOMPARE(entries("listastr")[2], QStringLiteral("NOVA 7W"));
    }

    void a_name_of_asterisks_is_refused_in_a_box() {
        pick("listastr", 3);
        boxes_->press(QMessageBox::Ok);
        boxes_->answer([](QDialog* box) { box->accept(); });
        boxes_->press(QMessageBox::Ok);
        click("cmdlearn");
        QCOMPARE(boxes_->take_seen().last(),
                 QStringLiteral("exclamation|AutomaticSatelliteLocation|Invalid Satellite name!|"
                                "OK"));
        QCOMPARE(f().commands(), QStringList("MEASURE"));
        // Cancelled, nothing is learnt either.
        boxes_->press(QMessageBox::Ok);
        boxes_->answer([](QDialog* box) { box->reject(); });
        click("cmdlearn");
        QCOMPARE(boxes_->take_seen().size(), 2);
        QCOMPARE(f().commands(), QStringList("MEASURE"));
    }

    void a_copy_that_is_cut_says_so() {
        f().state.master_copy.truncate(1000);
        pick("listastr", 8);
        boxes_->press(QMessageBox::Ok);
        click("cmdaddindb");
        QCOMPARE(
            boxes_->take_seen(),
            QStringList("exclamation|AutomaticSatelliteLocation|The data of this satellite did "
                        "not arrive whole from the M47. Nothing was saved.|OK"));
        QCOMPARE(entries("listadb"), QStringList());
    }

    void a_name_that_looks_like_markup_is_shown_as_it_is() {
        f().add_satellite(QStringLiteral("<b>A</b>"), QString());
        f().add_satellite(QStringLiteral("B"), QString());
        open();
        pick("listadb", 0);
        boxes_->answer([](QDialog* box) {
            QCOMPARE(qobject_cast<QMessageBox*>(box)->textFormat(), Qt::PlainText);
            box->reject();
        });
        click("cmddelpc");
        QVERIFY(boxes_->take_seen()[0].contains(QLatin1String("list? <b>A</b>|")));
    }

    void all_slots_are_saved_and_restored_from_the_menu() {
        const QString path = f().path(QStringLiteral("sat.s19"));
        boxes_->answer(file_named(path));
        boxes_->press(QMessageBox::Ok);
        find<QAction>("cmdsaveall")->trigger();
        QCOMPARE(boxes_->take_seen().last(),
                 "information|AutomaticSatelliteLocation|Saved in " + path + ". Slots: 20.|OK");
        pick("listastr", 1);
        click("cmddelstr");
        f().commands();
        boxes_->answer(file_named(path));
        QStringList row;
        boxes_->answer([&](QDialog* box) {
            QCOMPARE(box->objectName(), QStringLiteral("restore_preview"));
            const auto* table = find<QTableWidget>("preview_table", box);
            QCOMPARE(table->rowCount(), 20);
            for (int column = 0; column < 4; ++column) row += table->item(1, column)->text();
            QCOMPARE(table->item(0, 3)->text(), QStringLiteral("unchanged"));
            QCOMPARE(find<QLabel>("preview_count", box)->text(),
                     QStringLiteral("Slots that change: 1 of 20."));
            QTest::mouseClick(
                find<QDialogButtonBox>("preview_buttons", box)->button(QDialogButtonBox::Ok),
                Qt::LeftButton);
        });
        boxes_->press(QMessageBox::Ok);
        find<QAction>("cmdrestoreall")->trigger();
        QCOMPARE(row, QStringList({"01", "**********", "BOREAL 19E", "is written"}));
        QVERIFY(boxes_->take_seen().last().startsWith(QStringLiteral(
            "information|AutomaticSatelliteLocation|Read back and compared: the M47 holds ")));
        QCOMPARE(f().commands().size(), 2 + 7 + 2);
        QCOMPARE(entries("listastr")[1], QStringLiteral("BOREAL 19E"));
    }

    void a_preview_without_a_change_cannot_be_accepted() {
        const QString path = f().path(QStringLiteral("sat.s19"));
        boxes_->answer(file_named(path));
        boxes_->press(QMessageBox::Ok);
        find<QAction>("cmdsaveall")->trigger();
        bool enabled = true;
        boxes_->answer(file_named(path));
        boxes_->answer([&](QDialog* box) {
            enabled = find<QDialogButtonBox>("preview_buttons", box)
                          ->button(QDialogButtonBox::Ok)
                          ->isEnabled();
            box->reject();
        });
        find<QAction>("cmdrestoreall")->trigger();
        QVERIFY(!enabled);
    }

    void two_satellites_are_compared() {
        pick("listastr", 0);
        click("cmdaddindb");
        pick("listastr", 1);
        pick("listadb", 0);
        boxes_->answer([this](QDialog* box) {
            auto* left = find<QComboBox>("compare_left", box);
            auto* right = find<QComboBox>("compare_right", box);
            QCOMPARE(left->currentText(), QStringLiteral("M47 01  BOREAL 19E"));
            QCOMPARE(right->currentText(), QStringLiteral("PC  AURORA 13E"));
            QCOMPARE(left->count(), 21);
            const auto* table = find<QTableWidget>("compare_table", box);
            QCOMPARE(table->rowCount(), 8);
            // The frequency, in kHz: 1362000 and 1000000.
            QCOMPARE(table->item(0, 2)->text(), QStringLiteral("14"));
            QCOMPARE(table->item(0, 11)->text(), QStringLiteral("0F"));
            QVERIFY(table->item(0, 2)->font().bold());
            QVERIFY(!table->item(0, 1)->font().bold());
            QVERIFY(find<QLabel>("compare_result", box)->text().endsWith(" of 58."));
            left->setCurrentIndex(0);
            QCOMPARE(find<QLabel>("compare_result", box)->text(),
                     QStringLiteral("All 58 bytes are the same."));
            box->reject();
        });
        find<QAction>("cmdcompare")->trigger();
        QCOMPARE(boxes_->take_seen(), QStringList("compare_view"));
    }

    void what_another_program_has_stored_is_shown_beside_the_own() {
        pick("listastr", 0);
        click("cmdaddindb");
        const QStringList before = f().rows();
        // One digit of the data, and the check sum of its record with it.
        sql_elsewhere(
            "UPDATE asl SET dati = replace(dati, 'S10D00304155', 'S10D00304154') WHERE 1");
        const QStringList theirs = f().rows();
        QVERIFY(theirs != before);
        QString told;
        const auto refuse = [&](QDialog* box) {
            QVERIFY(!find<QComboBox>("compare_left", box)->isEnabled());
            told = find<QComboBox>("compare_left", box)->currentText() + u'|' +
                   find<QComboBox>("compare_right", box)->currentText() + u'|' +
                   find<QLabel>("compare_result", box)->text();
            QTest::keyClick(box, Qt::Key_Return);
        };
        pick("listastr", 0);
        boxes_->press(QMessageBox::Ok);
        boxes_->answer(refuse);
        click("cmdaddindb");
        QVERIFY2(told.startsWith(QLatin1String("Stored meanwhile|Yours|")) &&
                     told.endsWith(QLatin1String(
                         "Another program has stored AURORA 13E since it was shown here. Store "
                         "yours all the same?")),
                 qPrintable(told));
        QCOMPARE(f().rows(), theirs);
        sql_elsewhere("UPDATE asl SET dati = 'none'");
        pick("listastr", 0);
        boxes_->press(QMessageBox::Ok);
        boxes_->answer([](QDialog* box) { box->accept(); });
        click("cmdaddindb");
        QCOMPARE(f().rows(), before);
    }

    void what_is_not_whole_cannot_be_compared() {
        f().add_satellite(QStringLiteral("HALF"), QStringLiteral("S1130000"));
        open();
        pick("listadb", 0);
        QString result;
        boxes_->answer([&](QDialog* box) {
            result = find<QLabel>("compare_result", box)->text();
            box->reject();
        });
        find<QAction>("cmdcompare")->trigger();
        QCOMPARE(result, QStringLiteral("One of the two is not whole."));
    }

    void without_a_link_the_screen_opens_empty() {
        f().link.port_connected = false;
        open();
        QCOMPARE(entries("listastr"), QStringList());
        click("cmdlearn");
        click("cmdsave");
        QCOMPARE(boxes_->take_seen(), QStringList());
    }

    void the_tab_key_goes_from_left_to_right() {
        QStringList order;
        QWidget* at = find<QListWidget>("listadb");
        for (int step = 0; step < 7; ++step) {
            order += at->objectName();
            at->setFocus();
            QTest::keyClick(at, Qt::Key_Tab);
            at = screen_->focusWidget();
        }
        QCOMPARE(order, QStringList({"listadb", "cmddelpc", "cmdaddindb", "cmdsave", "listastr",
                                     "cmdlearn", "cmddelstr"}));
    }
};

}  // namespace m47::asl

QTEST_MAIN(m47::asl::AslScreenTest)
#include "asl_screen_test.moc"
