// SPDX-License-Identifier: GPL-3.0-or-later
// What the list, the motor and the boxes send.
#include "diseqc_panel_test.h"

namespace m47::realtime {

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

}  // namespace m47::realtime
