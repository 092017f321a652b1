// SPDX-License-Identifier: GPL-3.0-or-later
#include "handler.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>
#include <array>

#include "fault.h"
#include "screen.h"

namespace m47 {

/// A screen of a toolbar, a box and a list.
class SmallScreen : public Screen {
  public:
    explicit SmallScreen(bool follows = false)
        : bar(new QToolBar(this)), box(new QLineEdit(this)), list(new QComboBox(this)) {
        bar->setObjectName("bar");
        for (const char* name : {"good", "bad", "idle"}) bar->addAction(name)->setObjectName(name);
        list->addItems({"a", "b", "c"});
        if (follows) joints().follow(this);
        joints().text(box, typed);
        add_key(bar->actions().at(0), [this] { typed += "!"; });
        add_key(bar->actions().at(1), [] { throw Fault("broken"); });
        take_toolbar(bar);
        take_exit(&exit);
        guard_lists();
    }
    void Form_Load() override { list->setToolTip("which"); }

    QToolBar* bar;
    QLineEdit* box;
    QComboBox* list;
    QPushButton exit;
    QString typed;
};

class HandlerTest : public QObject {
    Q_OBJECT

    struct Report {
        QWidget* screen;
        QString what;
    };
    QList<Report> reports_;

    void record_reports() {
        reports_.clear();
        set_fault_reporter([this](QWidget* screen, const QString& what) {
            reports_.append({screen, what});
        });
    }

  private Q_SLOTS:
    // First, while the reporter is still the program's own.
    void by_default_one_box_over_the_screen() {
        QWidget screen;
        int boxes = 0;
        QMessageBox::Icon icon{};
        QString title, text;
        QWidget* parent = nullptr;
        QTimer::singleShot(0, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box) return;
            ++boxes;
            icon = box->icon();
            title = box->windowTitle();
            text = box->text();
            parent = box->parentWidget();
            box->accept();
        });
        run_handler(&screen, "group_Click", [] { throw Fault("no plan is open"); });
        QCOMPARE(boxes, 1);
        QCOMPARE(icon, QMessageBox::Critical);
        QCOMPARE(title, QString("M47"));
        QCOMPARE(text, QString("no plan is open"));
        QCOMPARE(parent, &screen);
    }

    void a_fault_ends_the_handler_with_one_report() {
        record_reports();
        QWidget screen;
        bool went_on = false;
        run_handler(&screen, "next_Click", [&] {
            if (!went_on) throw Fault("citt\xc3\xa0");
            went_on = true;
        });
        QVERIFY(!went_on);
        QCOMPARE(reports_.size(), 1);
        QCOMPARE(reports_[0].screen, &screen);
        QCOMPARE(reports_[0].what, QStringLiteral("citt\u00e0"));
    }

    void any_other_exception_is_reported_too() {
        record_reports();
        QWidget screen;
        run_handler(&screen, "open_Click", [] { throw std::out_of_range("past the end"); });
        QCOMPARE(reports_.size(), 1);
        QCOMPARE(reports_[0].what,
                 QString("This could not be done because of an unexpected fault: past the end"));
    }

    void a_fault_is_told_in_the_language_of_the_user() {
        record_reports();
        QWidget screen;
        Texts texts;
        tell_faults_in(&texts);
        const auto told = [&](const auto& exception) {
            reports_.clear();
            run_handler(&screen, "group_Click", [&] { throw exception; });
            return reports_.value(0).what;
        };
        const Fault both(Bilingual{"No plan is open.", "Nessun piano \xc3\xa8 aperto."});
        QCOMPARE(told(both), QString("No plan is open."));
        QVERIFY(told(std::bad_alloc()).startsWith("There is not enough memory"));
        texts.language = kItalian;
        QCOMPARE(told(both), QStringLiteral("Nessun piano \u00e8 aperto."));
        QVERIFY(told(std::bad_alloc()).startsWith("La memoria non basta"));
        QVERIFY(told(std::out_of_range("past the end")).endsWith("imprevisto: past the end"));
        QCOMPARE(told(Fault("plan.tsv: No such file")), QString("plan.tsv: No such file"));
        tell_faults_in(nullptr);
        QCOMPARE(told(both), QString("No plan is open."));
    }

    void the_end_of_the_program_is_no_fault() {
        record_reports();
        QWidget screen;
        bool went_on = false;
        run_handler(&screen, "start_Click", [&] {
            if (!went_on) throw Interrupted();
            went_on = true;
        });
        QVERIFY(!went_on);
        QVERIFY(reports_.isEmpty());
    }

    void a_handler_that_succeeds_reports_nothing() {
        record_reports();
        QWidget screen;
        int runs = 0;
        run_handler(&screen, "stop_Click", [&] { ++runs; });
        QCOMPARE(runs, 1);
        QVERIFY(reports_.isEmpty());
    }

    void a_signal_with_the_argument_of_its_handler() {
        record_reports();
        QWidget screen;
        QLineEdit box(&screen);
        QStringList texts;
        on(&box, &QLineEdit::textChanged, &screen, "fsat_Change", [&](const QString& text) {
            texts += text;
            if (text == "bad") throw Fault("refused");
        });
        box.setText("1000.0");
        box.setText("bad");
        box.setText("1001.0");
        QCOMPARE(texts, (QStringList{"1000.0", "bad", "1001.0"}));
        QCOMPARE(reports_.size(), 1);
        QCOMPARE(reports_[0].screen, &screen);
        QCOMPARE(reports_[0].what, QString("refused"));
    }

    void a_signal_whose_argument_the_handler_does_not_want() {
        record_reports();
        QWidget screen;
        QPushButton button(&screen);
        int clicks = 0;
        on(&button, &QPushButton::clicked, &screen, "cmdstart_Click", [&] {
            ++clicks;
            throw Fault("refused");
        });
        button.click();
        QCOMPARE(clicks, 1);
        QCOMPARE(reports_.size(), 1);
        QCOMPARE(reports_[0].what, QString("refused"));
    }

    void the_connection_ends_with_the_screen() {
        record_reports();
        QPushButton button;
        int clicks = 0;
        {
            QWidget screen;
            on(&button, &QPushButton::clicked, &screen, "cmdstart_Click", [&] { ++clicks; });
            button.click();
        }
        button.click();
        QCOMPARE(clicks, 1);
    }

    void a_handler_of_a_screen_takes_the_entries_and_shows_what_became_of_them() {
        SmallScreen screen;
        screen.box->setText("12");
        QCOMPARE(screen.typed, QString());
        screen.bar->actions().at(0)->trigger();
        QCOMPARE(screen.box->text(), QString("12!"));
        screen.box->setText("3");
        screen.toolbar_ButtonClick("good");
        QCOMPARE(screen.typed, QString("3!"));
    }

    void who_watches_is_told_what_the_user_does_and_nothing_else() {
        QList<QByteArray> told;
        watch_handlers(&told, [&told](const char* name) { told += name; });
        SmallScreen screen;
        screen.bar->actions().at(0)->trigger();
        run_handler(nullptr, "fsat_KeyPress", [] {});
        for (const char* other : {"start", "Form_Load", "next_level_Timer", "QLineEdit"})
            run_handler(nullptr, other, [] {});
        run_trapped(nullptr, "good_Click", [] {});
        watch_handlers(&told, nullptr);
        screen.bar->actions().at(0)->trigger();
        QCOMPARE(told, (QList<QByteArray>{"bar_ButtonClick good", "fsat_KeyPress"}));
        watch_handlers(&told, [&told, large = std::array<char, 100>()](const char*) {
            watch_handlers(&told, nullptr);
            told += QByteArray(large.data(), 0);
        });
        screen.bar->actions().at(0)->trigger();
        screen.bar->actions().at(0)->trigger();
        QCOMPARE(told.size(), 3);
    }

    /// All of the toolkit's events run trapped: that is no handler.
    void what_is_only_trapped_is_no_handler_that_runs() {
        const char* trapped = "none";
        const char* within = nullptr;
        run_trapped(nullptr, "QWidgetWindow", [&] {
            trapped = running_handler();
            run_handler(nullptr, "outer_Click", [&] {
                run_trapped(nullptr, "QTimer", [&] { within = running_handler(); });
            });
        });
        QCOMPARE(trapped, nullptr);
        QCOMPARE(within, "outer_Click");
        QCOMPARE(running_handler(), nullptr);
    }

    void entries_that_are_followed_are_there_at_once() {
        SmallScreen screen(true);
        QTest::keyClicks(screen.box, "123");
        QCOMPARE(screen.typed, QString("123"));
        screen.box->setCursorPosition(1);
        screen.toolbar_ButtonClick("idle");
        QCOMPARE(screen.box->cursorPosition(), 1);
        screen.typed = "9";
        screen.toolbar_ButtonClick("good");
        QCOMPARE(screen.box->text(), QString("9!"));
    }

    void a_key_with_a_fault_is_told_and_one_without_work_does_nothing() {
        record_reports();
        SmallScreen screen;
        screen.bar->actions().at(1)->trigger();
        QCOMPARE(reports_.size(), 1);
        QCOMPARE(reports_[0].what, QString("broken"));
        QCOMPARE(reports_[0].screen, &screen);
        screen.box->setText("4");
        screen.bar->actions().at(2)->trigger();
        QCOMPARE(reports_.size(), 1);
        QCOMPARE(screen.typed, QString());
    }

    void every_screen_is_left_loaded_and_guarded_alike() {
        SmallScreen screen;
        QSignalSpy asked(&screen, &Screen::exit_asked);
        screen.exit.click();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(screen.contextMenuPolicy(), Qt::NoContextMenu);
        screen.load();
        QCOMPARE(screen.list->accessibleName(), QString("which"));
        QWheelEvent turn({5, 5}, screen.list->mapToGlobal(QPointF(5, 5)), {}, {0, -120},
                         Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(screen.list, &turn);
        QCOMPARE(screen.list->currentIndex(), 0);
    }

    void joints_take_and_show_each_kind_of_control() {
        Joints joints;
        QComboBox list, words;
        list.addItems({"a", "b"});
        words.addItems({"x", "y"});
        QRadioButton yes, no;
        QListWidget rows;
        int index = 1, unset = 5, place = 1;
        QString word = "y";
        bool direct = true;
        QStringList texts{"one", "two"};
        joints.entry(&list, index);
        joints.text(&words, word);
        joints.either(&yes, &no, direct);
        joints.entries(&rows, texts, place);
        joints.show();
        QCOMPARE(list.currentIndex(), 1);
        QCOMPARE(words.currentText(), QString("y"));
        QVERIFY(yes.isChecked());
        QCOMPARE(rows.currentRow(), 1);
        Joints with_unset;
        with_unset.entry(&list, unset, 0);
        list.setCurrentIndex(-1);
        words.setCurrentIndex(0);
        yes.setAutoExclusive(false);
        yes.setChecked(false);
        rows.clearSelection();
        joints.take();
        with_unset.take();
        QCOMPARE(index, -1);
        QCOMPARE(unset, 0);
        QCOMPARE(word, QString("x"));
        QVERIFY(!direct);
        QCOMPARE(place, -1);
        joints.show();
        QVERIFY(no.isChecked());
        QVERIFY(rows.selectedItems().isEmpty());
    }
};

}  // namespace m47

QTEST_MAIN(m47::HandlerTest)
#include "handler_test.moc"
