// SPDX-License-Identifier: GPL-3.0-or-later
#include "handler.h"

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "fault.h"

namespace m47 {

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
};

}  // namespace m47

QTEST_MAIN(m47::HandlerTest)
#include "handler_test.moc"
