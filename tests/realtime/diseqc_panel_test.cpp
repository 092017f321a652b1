// SPDX-License-Identifier: GPL-3.0-or-later
#include "diseqc_panel_test.h"

namespace m47::realtime {

void DiseqcPanelTest::open_motor() {
    QTest::mouseClick(find("dsqopt_1"), Qt::LeftButton);
    QVERIFY(shows("motor"));
}

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
    // A window system brings the pointer's movement in its own time.
    const auto is_shown = [&] { return shown() == state; };
    return QTest::qWaitFor(is_shown, 500) ||
           (qInfo() << "wanted" << state << "but" << shown(), false);
}

QByteArray DiseqcPanelTest::shown() {
    QCoreApplication::processEvents();
    const QSize diseqc = find("diseqc")->size();
    const QSize sat_opt = find("sat_opt")->size();
    const bool commands = find("dsq11opt")->isVisible();
    const bool motor = find("dsq12opt")->isVisible();
    // The frame has the size that belongs to the state, or more where its controls need it.
    const auto holds = [](const QSize& size, const QSize& least) {
        return size.width() >= least.width() && size.height() >= least.height();
    };
    QByteArray seen = "neither";
    if (holds(diseqc, {93, 49}) && sat_opt == QSize(281, 201) && !commands && !motor)
        seen = "folded";
    if (holds(diseqc, {245, 65}) && sat_opt == QSize(385, 201) && commands && !motor)
        seen = "commands";
    if (holds(diseqc, {245, 277}) && holds(sat_opt, {385, 367}) && !commands && motor)
        seen = "motor";
    return seen;
}

void DiseqcPanelTest::loading_fills_the_list_and_sends_none_of_it() {
    QVERIFY(shows("folded"));
    QVERIFY(find<QRadioButton>("dsqopt_0")->isChecked());
    const auto* list = find<QComboBox>("diseqc_cmd");
    QCOMPARE(list->count(), 74);
    for (int k = 0; k < list->count(); ++k)
        QCOMPARE(list->itemText(k),
                 QString::fromLatin1(programme::kDiseqcCommands[std::size_t(k)]));
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
    QCOMPARE(walk,
             (QStringList{"dsqopt_1",    "dsqmtr_0",    "dsqmtr_1",    "dsqmtr_2",    "dsqmtr_3",
                          "dsqmtr_4",    "dsqmtr_5",    "dsqmtr_6",    "storesat",    "dsqmtr_7",
                          "recallsat",   "dsqmtr_8",    "starteast_s", "starteast_t", "dsqmtr_9",
                          "startwest_s", "startwest_t", "dsqmtr_10",   "dsqmtr_11",   "cmdpeak"}));
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
    point_at("storesat");
    QVERIFY(shows("motor"));
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

void DiseqcPanelTest::the_open_panel_pushes_its_neighbours() {
    screen_->resize(1000, 700);
    QVERIFY(shows("folded"));
    const auto place = [this](const char* name) {
        return QRect(find(name)->mapTo(screen_.get(), QPoint()), find(name)->size());
    };
    const QRect folded = place("sat_opt");
    const QRect below = place("instr_opt");
    const QRect beside = place("analogresults");
    const QPoint option = place("dsqopt_1").topLeft();
    open_motor();
    QCOMPARE(place("sat_opt").topLeft(), folded.topLeft());
    const int grown = place("sat_opt").height() - folded.height();
    QVERIFY(grown >= 166);
    QTRY_COMPARE(place("instr_opt"), below.translated(0, grown));
    QVERIFY(!place("sat_opt").intersects(place("analogresults")));
    // What is read while the panel opens and folds stays where it is.
    QCOMPARE(place("analogresults").topLeft(), beside.topLeft());
    // The option under the pointer does not slip away from it.
    QCOMPARE(place("dsqopt_1").topLeft(), option);
    for (const char* name : {"dsqmtr_0", "dsqmtr_11", "startwest_t"}) {
        QWidget* item = find(name);
        QCOMPARE(screen_->childAt(item->mapTo(screen_.get(), item->rect().center())), item);
    }
    point_outside();
    QVERIFY(shows("folded"));
    QTRY_COMPARE(place("instr_opt"), below);
}

void DiseqcPanelTest::the_open_panel_is_scrolled_to_in_a_low_window() {
    screen_->toolbar_ButtonClick("qpsk");
    screen_->open_log(f_->path("day.log"));
    screen_->resize(700, 300);
    open_motor();
    find("startwest_t")->setFocus();
    QTest::keyClick(find("startwest_t"), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), find("dsqmtr_10"));
    const QRegion seen = find("dsqmtr_10")->visibleRegion();
    QCOMPARE(seen.boundingRect(), find("dsqmtr_10")->rect());
    point_at("dsqmtr_10");
    QVERIFY(shows("motor"));
    QTest::mouseMove(screen_.get(), QPoint(5, 5));
    QVERIFY(shows("folded"));
}

void DiseqcPanelTest::a_larger_font_makes_a_larger_panel() {
    open_motor();
    const QSize small = find("diseqc")->size();
    QFont large = screen_->font();
    large.setPointSize(large.pointSize() * 2);
    screen_->setFont(large);
    QTest::mouseClick(find("dsqopt_1"), Qt::LeftButton);
    QCoreApplication::processEvents();
    QVERIFY(find("diseqc")->width() > small.width());
    QVERIFY(find("diseqc")->height() > small.height());
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

}  // namespace m47::realtime

QTEST_MAIN(m47::realtime::DiseqcPanelTest)
