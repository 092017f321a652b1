// SPDX-License-Identifier: GPL-3.0-or-later
// The DiSEqC panel on the real-time screen, under the pointer and from the keyboard.
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include "control_array.h"
#include "diseqc_commands.h"
#include "lamp.h"
#include "realtime.h"
#include "realtime_fixture.h"

namespace m47 {

class DiseqcPanelTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void loading_fills_the_list_and_sends_none_of_it();
    void the_pointer_opens_and_folds();
    void the_options_open_their_part();
    void the_focus_opens_and_folds();
    void tab_walks_through_the_motor();
    void folding_leaves_the_focus_on_the_option();
    void an_open_list_keeps_the_panel_open();
    void an_unconfirmed_entry_keeps_the_panel_open();
    void selecting_with_the_mouse_does_not_fold();
    void leaving_the_frame_folds();
    void another_program_in_front_folds_nothing();
    void nothing_opens_while_a_plan_runs_the_tuning();
    void the_open_panel_lies_over_its_neighbours();
    void the_open_panel_stays_inside_a_low_window();
    void a_larger_font_makes_a_larger_panel();
    void nothing_is_clipped();
    void every_choice_of_the_list_sends();
    void keys_and_wheel_on_the_list();
    void motor_items_data();
    void motor_items();
    void boxes_take_two_digits();
    void clicking_a_box_chooses_it();
    void boxes_can_be_read_data();
    void boxes_can_be_read();
    void labels_in_both_languages();

  private:
    template <class Kind = QWidget>
    Kind* find(const char* name) {
        auto* found = screen_->findChild<Kind*>(QString::fromLatin1(name));
        if (!found) qFatal("no %s", name);
        return found;
    }
    void point_at(const char* name) { QTest::mouseMove(find(name)); }
    /// Over `sat_opt`, outside `diseqc`.
    void point_outside() { QTest::mouseMove(find("sat_opt"), QPoint(60, 190)); }
    void open_motor() {
        QTest::mouseClick(find("dsqopt_1"), Qt::LeftButton);
        QVERIFY(shows("motor"));
    }
    /// The panel is in `state`: its sizes, and its parts shown and hidden.
    bool shows(const QByteArray& state);
    void load(int language = kEnglish);

    std::unique_ptr<RealtimeFixture> f_;
    std::unique_ptr<Realtime> screen_;
};

void DiseqcPanelTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
    f_->values["UNIT?"] = "0";
    f_->values["SYMBRATEQPSK?"] = "27500";
    QCursor::setPos(2000, 2000);
    load();
}

void DiseqcPanelTest::load(int language) {
    f_->program.texts.language = language;
    screen_ = std::make_unique<Realtime>(
        std::make_unique<RealtimeRules>(f_->link, f_->program, f_->database()));
    screen_->resize(1000, 500);
    screen_->show();
    screen_->Form_Load();
    QApplication::setActiveWindow(screen_.get());
    QVERIFY(QTest::qWaitForWindowActive(screen_.get()));
}

void DiseqcPanelTest::cleanup() {
    screen_.reset();
    f_.reset();
}

bool DiseqcPanelTest::shows(const QByteArray& state) {
    QCoreApplication::processEvents();
    const QSize diseqc = find("diseqc")->size();
    const QSize sat_opt = find("sat_opt")->size();
    const bool commands = find("dsq11opt")->isVisible();
    const bool motor = find("dsq12opt")->isVisible();
    QByteArray seen = "neither";
    if (diseqc == QSize(93, 49) && sat_opt == QSize(281, 201) && !commands && !motor)
        seen = "folded";
    if (diseqc == QSize(245, 65) && sat_opt == QSize(385, 201) && commands && !motor)
        seen = "commands";
    if (diseqc == QSize(245, 277) && sat_opt == QSize(385, 367) && !commands && motor)
        seen = "motor";
    if (seen != state)
        qInfo() << "wanted" << state << "but" << seen << diseqc << sat_opt << commands << motor;
    return seen == state;
}

void DiseqcPanelTest::loading_fills_the_list_and_sends_none_of_it() {
    QVERIFY(shows("folded"));
    QVERIFY(find<QRadioButton>("dsqopt_0")->isChecked());
    const auto* list = find<QComboBox>("diseqc_cmd");
    QCOMPARE(list->count(), 74);
    for (int k = 0; k < list->count(); ++k)
        QCOMPARE(list->itemText(k), QString::fromLatin1(kDiseqcCommands[std::size_t(k)]));
    QCOMPARE(list->currentIndex(), -1);
    QVERIFY(f_->commands().filter("DISEQC").isEmpty());
    screen_->Form_Load();
    QCOMPARE(list->count(), 74);
    QCOMPARE(list->currentIndex(), -1);
}

void DiseqcPanelTest::the_pointer_opens_and_folds() {
    point_at("diseqc");
    QVERIFY(shows("commands"));
    point_outside();
    QVERIFY(shows("folded"));
    // A control of the panel belongs to it, one of `sat_opt` does not.
    point_at("dsqopt_0");
    QVERIFY(shows("commands"));
    point_at("diseqc_cmd");
    QVERIFY(shows("commands"));
    point_at("fsat");
    QVERIFY(shows("folded"));
    find<QRadioButton>("dsqopt_1")->setChecked(true);
    point_at("dsqopt_1");
    QVERIFY(shows("motor"));
    point_at("dsqmtr_11");
    QVERIFY(shows("motor"));
    point_at("startwest_t");
    QVERIFY(shows("motor"));
    point_at("satlnb_state");
    QVERIFY(shows("folded"));
    f_->commands();
    QCOMPARE(f_->commands(), QStringList{});
}

void DiseqcPanelTest::the_options_open_their_part() {
    QTest::mouseClick(find("dsqopt_1"), Qt::LeftButton);
    QVERIFY(shows("motor"));
    QTest::mouseClick(find("dsqopt_0"), Qt::LeftButton);
    QVERIFY(shows("commands"));
    point_outside();
    QVERIFY(shows("folded"));
    // The option that is selected already opens it too.
    QTest::mouseClick(find("dsqopt_0"), Qt::LeftButton);
    QVERIFY(shows("commands"));
    find("fsat")->setFocus();
    QVERIFY(shows("folded"));
}

void DiseqcPanelTest::the_focus_opens_and_folds() {
    find("k22_state")->setFocus();
    QVERIFY(shows("folded"));
    QTest::keyClick(find("k22_state"), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), find("dsqopt_0"));
    QVERIFY(shows("commands"));
    QTest::keyClick(find("dsqopt_0"), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), find("diseqc_cmd"));
    QVERIFY(shows("commands"));
    QTest::keyClick(find("diseqc_cmd"), Qt::Key_Tab);
    QVERIFY(!find("diseqc")->isAncestorOf(QApplication::focusWidget()));
    QVERIFY(shows("folded"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), find("dsqopt_0"));
    QVERIFY(shows("commands"));
    QTest::keyClick(find("dsqopt_0"), Qt::Key_Right);
    QCOMPARE(QApplication::focusWidget(), find("dsqopt_1"));
    QVERIFY(shows("motor"));
    QTest::keyClick(find("dsqopt_1"), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), find("k22_state"));
    QVERIFY(shows("folded"));
    QTest::keyClick(find("k22_state"), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), find("dsqopt_1"));
    QVERIFY(shows("motor"));
}

void DiseqcPanelTest::tab_walks_through_the_motor() {
    open_motor();
    find("dsqopt_1")->setFocus();
    QStringList walk;
    while (find("diseqc")->isAncestorOf(QApplication::focusWidget()) && walk.size() < 30) {
        walk += QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(walk, (QStringList{"dsqopt_1", "dsqmtr_0", "dsqmtr_1", "dsqmtr_2", "dsqmtr_3",
                                "dsqmtr_4", "dsqmtr_5", "dsqmtr_6", "storesat", "dsqmtr_7",
                                "recallsat", "dsqmtr_8", "starteast_s", "starteast_t", "dsqmtr_9",
                                "startwest_s", "startwest_t", "dsqmtr_10", "dsqmtr_11"}));
    QVERIFY(shows("folded"));
    QVERIFY(f_->commands().filter("DISEQC").isEmpty());
}

void DiseqcPanelTest::folding_leaves_the_focus_on_the_option() {
    open_motor();
    find("dsqmtr_3")->setFocus();
    point_at("dsqmtr_3");
    point_outside();
    QVERIFY(shows("folded"));
    QCOMPARE(QApplication::focusWidget(), find("dsqopt_1"));
    QTest::keyClick(find("dsqopt_1"), Qt::Key_Space);
    QVERIFY(shows("motor"));
}

void DiseqcPanelTest::an_open_list_keeps_the_panel_open() {
    point_at("diseqc");
    auto* list = find<QComboBox>("diseqc_cmd");
    list->setFocus();
    list->showPopup();
    QVERIFY(QApplication::activePopupWidget());
    QMouseEvent outside(QEvent::MouseMove, QPointF(60, 190),
                        find("sat_opt")->mapToGlobal(QPointF(60, 190)), Qt::NoButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(find("sat_opt"), &outside);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(find("sat_opt"), &leave);
    QVERIFY(QApplication::activePopupWidget());
    QVERIFY(shows("commands"));
    list->hidePopup();
    point_outside();
    QVERIFY(shows("folded"));
}

void DiseqcPanelTest::an_unconfirmed_entry_keeps_the_panel_open() {
    open_motor();
    auto* box = find<QLineEdit>("storesat");
    point_at("storesat");
    QTest::mouseClick(box, Qt::LeftButton);
    box->selectAll();
    QTest::keyClicks(box, "7");
    point_outside();
    point_at("fsat");
    QVERIFY(shows("motor"));
    QCOMPARE(QApplication::focusWidget(), box);
    QTest::keyClick(box, Qt::Key_Return);
    QCOMPARE(box->text(), QString("07"));
    point_outside();
    QVERIFY(shows("folded"));
    // An entry that Enter leaves as it is counts as confirmed too.
    open_motor();
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, "07");
    QTest::keyClick(box, Qt::Key_Return);
    point_at("fsat");
    QVERIFY(shows("folded"));
    // The focus decides over an entry that was given up.
    open_motor();
    box->setFocus();
    QTest::keyClicks(box, "9");
    find("fsat")->setFocus();
    QVERIFY(shows("folded"));
}

void DiseqcPanelTest::selecting_with_the_mouse_does_not_fold() {
    open_motor();
    point_at("storesat");
    QWidget* box = find("storesat");
    QMouseEvent drag(QEvent::MouseMove, QPointF(-200, 5), box->mapToGlobal(QPointF(-200, 5)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(box, &drag);
    QVERIFY(shows("motor"));
}

void DiseqcPanelTest::leaving_the_frame_folds() {
    point_at("diseqc");
    QVERIFY(shows("commands"));
    QTest::mouseMove(screen_.get(), QPoint(900, 450));
    QVERIFY(shows("folded"));
}

void DiseqcPanelTest::another_program_in_front_folds_nothing() {
    find<QRadioButton>("dsqopt_1")->setChecked(true);
    find("dsqopt_1")->setFocus();
    find("storesat")->setFocus();
    QVERIFY(shows("motor"));
    QApplication::setActiveWindow(nullptr);
    QVERIFY(!QApplication::focusWidget());
    QVERIFY(shows("motor"));
    QApplication::setActiveWindow(screen_.get());
    QCOMPARE(QApplication::focusWidget(), find("storesat"));
    QVERIFY(shows("motor"));
}

void DiseqcPanelTest::nothing_opens_while_a_plan_runs_the_tuning() {
    open_motor();
    screen_->toolbar_ButtonClick("group");
    screen_->rules.panel.repaint();
    QVERIFY(!find("sat_opt")->isEnabled());
    QVERIFY(shows("folded"));
    point_at("diseqc");
    QVERIFY(shows("folded"));
    screen_->toolbar_ButtonClick("single");
    screen_->rules.panel.repaint();
    // The row of the plan goes, and everything below it moves up.
    QCoreApplication::processEvents();
    point_at("dsqopt_0");
    QVERIFY(shows("motor"));
}

void DiseqcPanelTest::the_open_panel_lies_over_its_neighbours() {
    QList<QRect> before;
    const QList<QWidget*> others{find("measgrid"), find("instr_opt"), find("analogresults")};
    for (const QWidget* other : others) before += other->geometry();
    const QPoint corner = find("sat_opt")->pos();
    const QPoint option = find("dsqopt_1")->mapTo(screen_.get(), QPoint());
    open_motor();
    QList<QRect> after;
    for (const QWidget* other : others) after += other->geometry();
    QCOMPARE(after, before);
    QCOMPARE(find("sat_opt")->pos(), corner);
    // The option under the pointer does not slip away from it.
    QCOMPARE(find("dsqopt_1")->mapTo(screen_.get(), QPoint()), option);
    for (const char* name : {"dsqmtr_0", "dsqmtr_11", "startwest_t"}) {
        QWidget* item = find(name);
        QCOMPARE(screen_->childAt(item->mapTo(screen_.get(), item->rect().center())), item);
    }
}

void DiseqcPanelTest::the_open_panel_stays_inside_a_low_window() {
    screen_->toolbar_ButtonClick("qpsk");
    screen_->open_log(f_->path("day.log"));
    screen_->resize(screen_->minimumSizeHint());
    QCoreApplication::processEvents();
    open_motor();
    const QWidget* centre = screen_->centralWidget();
    QVERIFY2(
        centre->rect().contains(find("sat_opt")->geometry()),
        qPrintable(
            QString("%1 in %2").arg(find("sat_opt")->geometry().bottom()).arg(centre->height())));
    point_at("dsqmtr_0");
    point_outside();
    QVERIFY(shows("folded"));
}

void DiseqcPanelTest::a_larger_font_makes_a_larger_panel() {
    QFont large = screen_->font();
    large.setPointSize(large.pointSize() * 2);
    screen_->setFont(large);
    QTest::mouseClick(find("dsqopt_1"), Qt::LeftButton);
    QCoreApplication::processEvents();
    QVERIFY(find("diseqc")->width() > 245);
    QVERIFY(find("diseqc")->height() > 277);
    QVERIFY(find("sat_opt")->rect().contains(find("diseqc")->geometry()));
    nothing_is_clipped();
}

void DiseqcPanelTest::nothing_is_clipped() {
    for (const char* option : {"dsqopt_0", "dsqopt_1"}) {
        QTest::mouseClick(find(option), Qt::LeftButton);
        QCoreApplication::processEvents();
        QList<QWidget*> shown;
        for (QWidget* widget : find("sat_opt")->findChildren<QWidget*>()) {
            if (!widget->isVisible() || widget->isWindow()) continue;
            const QString name = widget->objectName();
            QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()), qPrintable(name));
            QString text = widget->property("text").toString();
            if (text.isEmpty()) text = widget->property("title").toString();
            text.remove('&');
            const QFontMetrics font(widget->font());
            QVERIFY2(widget->width() >= font.horizontalAdvance(text.trimmed()), qPrintable(name));
            QVERIFY2(widget->height() >= font.height(), qPrintable(name));
            for (const QWidget* other : shown)
                if (other->parentWidget() == widget->parentWidget())
                    QVERIFY2(!other->geometry().intersects(widget->geometry()), qPrintable(name));
            shown += widget;
        }
        QVERIFY(shown.size() > 12);
    }
}

void DiseqcPanelTest::every_choice_of_the_list_sends() {
    point_at("diseqc");
    f_->commands();
    auto* list = find<QComboBox>("diseqc_cmd");
    for (const int entry : {73, 73, 3, 0, 37, 53}) {
        list->setFocus();
        list->showPopup();
        list->view()->setCurrentIndex(list->model()->index(entry, 0));
        QTest::keyClick(list->view(), Qt::Key_Return);
        QCOMPARE(list->currentIndex(), entry);
    }
    QCOMPARE(f_->commands(), (QStringList{"DISEQC 73", "DISEQC 73", "DISEQC 03", "DISEQC 00",
                                          "DISEQC 37", "DISEQC 53"}));
}

void DiseqcPanelTest::keys_and_wheel_on_the_list() {
    point_at("diseqc");
    f_->commands();
    auto* list = find<QComboBox>("diseqc_cmd");
    list->setFocus();
    QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(list, &wheel);
    QCOMPARE(list->currentIndex(), -1);
    QCOMPARE(f_->commands(), QStringList{});
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(f_->commands(), (QStringList{"DISEQC 00", "DISEQC 01"}));
}

void DiseqcPanelTest::motor_items_data() {
    QTest::addColumn<int>("item");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("command");
    const auto row = [](int item, const char* caption, int key, const char* command) {
        QTest::addRow("%d", item) << item << QString(caption) << key << QString(command);
    };
    row(0, "&0) Stop Motor", Qt::Key_0, "DISEQCMOT 00");
    row(1, "&1) Start Motor East", Qt::Key_1, "DISEQCMOT 01");
    row(2, "&2) Star Motor West", Qt::Key_2, "DISEQCMOT 02");
    row(3, "&3)Disable Limits", Qt::Key_3, "DISEQCMOT 03");
    row(4, "&4) Delete East Limit", Qt::Key_4, "DISEQCMOT 04");
    row(5, "&5) Delete West Limit", Qt::Key_5, "DISEQCMOT 05");
    row(6, "&6) Store Sat Pos ", Qt::Key_6, "DISEQCMOT 0607");
    row(7, "&7) Recall Sat Pos", Qt::Key_7, "DISEQCMOT 0708");
    row(8, "&8) Start East To:", Qt::Key_8, "DISEQCMOT 08 12 01");
    row(9, "&9) Start West To:", Qt::Key_9, "DISEQCMOT 09 99 01");
    row(10, "&.) Recalculate Sat Pos", Qt::Key_Period, "DISEQCMOT 10");
    row(11, "&Reset motor", Qt::Key_R, "DISEQCMOT 11");
}

void DiseqcPanelTest::motor_items() {
    QFETCH(int, item);
    QFETCH(int, key);
    QFETCH(QString, command);
    open_motor();
    find<QLineEdit>("storesat")->setText("7");
    find<QLineEdit>("recallsat")->setText("8");
    find<QLineEdit>("starteast_s")->setText("12");
    find<QLineEdit>("startwest_s")->setText("150");
    f_->commands();
    const ControlArray<QPushButton> items(screen_.get(), "dsqmtr");
    QCOMPARE(items.size(), std::size_t(12));
    auto* button = items[std::size_t(item)];
    QTEST(button->text(), "caption");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(f_->commands(), (QStringList{command, command}));
    // The item shows for a moment that its letter was pressed before it sends.
    QSignalSpy clicked(button, &QPushButton::clicked);
    QTest::keyClick(screen_.get(), Qt::Key(key), Qt::AltModifier);
    QTRY_COMPARE(clicked.size(), 1);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Return);
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(f_->commands(), (QStringList{command, command, command}));
    QVERIFY(shows("motor"));
}

void DiseqcPanelTest::boxes_take_two_digits() {
    open_motor();
    f_->commands();
    for (const char* name :
         {"storesat", "recallsat", "starteast_s", "starteast_t", "startwest_s", "startwest_t"}) {
        auto* box = find<QLineEdit>(name);
        QCOMPARE(box->text(), QString("01"));
        for (const auto& [typed, shown] : {std::pair{"0", "01"}, {"150", "99"}, {"7", "07"}}) {
            box->setFocus();
            box->selectAll();
            QTest::keyClicks(box, typed);
            QCOMPARE(box->text(), QString(typed));
            QTest::keyClick(box, Qt::Key_Return);
            QCOMPARE(box->text(), QString(shown));
        }
    }
    QCOMPARE(f_->commands(), QStringList{});
}

void DiseqcPanelTest::clicking_a_box_chooses_it() {
    open_motor();
    f_->commands();
    const QStringList boxes{"starteast_s", "starteast_t", "startwest_s", "startwest_t"};
    const auto red = [&] {
        QStringList names;
        for (const QString& name : boxes) {
            const QColor colour = find(qPrintable(name))->palette().color(QPalette::Base);
            if (colour == QColor(255, 0, 0)) names += name;
            if (colour != QColor(255, 0, 0) && colour != QColor(0, 255, 0)) names += "neither";
        }
        return names;
    };
    QCOMPARE(red(), (QStringList{"starteast_s", "startwest_s"}));
    QTest::mouseClick(find("starteast_t"), Qt::LeftButton);
    QCOMPARE(red(), (QStringList{"starteast_t", "startwest_s"}));
    QTest::mouseClick(find("dsqmtr_8"), Qt::LeftButton);
    QCOMPARE(f_->commands(), QStringList{"DISEQCMOT 08 01 00"});
    QTest::mouseClick(find("startwest_t"), Qt::LeftButton);
    QCOMPARE(red(), (QStringList{"starteast_t", "startwest_t"}));
    QTest::mouseClick(find("starteast_s"), Qt::LeftButton);
    QCOMPARE(red(), (QStringList{"starteast_s", "startwest_t"}));
    // Without a mouse: Space in the box; Tab alone chooses nothing.
    find("startwest_s")->setFocus(Qt::TabFocusReason);
    QCOMPARE(red(), (QStringList{"starteast_s", "startwest_t"}));
    QTest::keyClick(find("startwest_s"), Qt::Key_Space);
    QCOMPARE(red(), (QStringList{"starteast_s", "startwest_s"}));
    QCOMPARE(find<QLineEdit>("startwest_s")->text(), QString("01"));
    QTest::keyClick(find("startwest_t"), Qt::Key_Space);
    screen_->toolbar_ButtonClick("qpsk");
    screen_->rules.panel.repaint();
    QCOMPARE(red(), (QStringList{"starteast_s", "startwest_s"}));
}

void DiseqcPanelTest::boxes_can_be_read_data() {
    QTest::addColumn<QColor>("window");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(239, 239, 239) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(45, 45, 48) << QColor(Qt::white);
}

void DiseqcPanelTest::boxes_can_be_read() {
    QFETCH(QColor, window);
    QFETCH(QColor, text);
    const QPalette before = QApplication::palette();
    QPalette desktop(window);
    desktop.setColor(QPalette::Text, text);
    QApplication::setPalette(desktop);
    open_motor();
    for (const char* name : {"starteast_s", "starteast_t"}) {
        QWidget* box = find(name);
        const QImage image = box->grab().toImage();
        QCOMPARE(image.pixelColor(box->width() - 4, box->height() / 2),
                 box->palette().color(QPalette::Base));
        QCOMPARE(box->palette().color(QPalette::Text), QColor(Qt::black));
    }
    QApplication::setPalette(before);
}

void DiseqcPanelTest::labels_in_both_languages() {
    const auto captions = [this] {
        QStringList texts;
        for (const char* name : {"Label1", "Label2", "Label3", "Label4"})
            texts += find<QLabel>(name)->text();
        return texts;
    };
    QCOMPARE(captions(), (QStringList{"steps", "s", "steps", "s"}));
    load(kItalian);
    QCOMPARE(captions(), (QStringList{"passi", "s", "passi", "s"}));
    open_motor();
    nothing_is_clipped();
}

}  // namespace m47

QTEST_MAIN(m47::DiseqcPanelTest)
#include "diseqc_panel_test.moc"
