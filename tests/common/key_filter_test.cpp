// SPDX-License-Identifier: GPL-3.0-or-later
#include "key_filter.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>
#include <QWheelEvent>

namespace m47 {

class KeyFilterTest : public QObject {
    Q_OBJECT

    /// Types `text` as one key press, the way a keyboard or a compose key does.
    static void press(QWidget& box, int key, const QString& text,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(&box, &down);
        QKeyEvent up(QEvent::KeyRelease, key, modifiers, text);
        QApplication::sendEvent(&box, &up);
    }

    static void turn_wheel(QWidget& list) {
        QWheelEvent event(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&list, &event);
    }

    static void fill(QComboBox& list) {
        list.addItems({"OFF", "13V", "18V"});
        list.setCurrentIndex(1);
    }

  private Q_SLOTS:
    void typed_text_data() {
        QTest::addColumn<QString>("accepted");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("whole numbers") << "0123456789"
                                       << "-1e2.3E4,5 6"
                                       << "123456";
        QTest::newRow("signed") << "0123456789-"
                                << "-1e2.3E4,5 6"
                                << "-123456";
        QTest::newRow("exponents") << "0123456789eE-"
                                   << "-1e2.3E4,5 6+"
                                   << "-1e23E456";
        QTest::newRow("nothing") << ""
                                 << "abc 123"
                                 << "";
        QTest::newRow("letters") << "0123456789"
                                 << "abcxyzABCXYZ"
                                 << "";
    }

    void typed_text() {
        QFETCH(QString, accepted);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QLineEdit box;
        new KeyFilter(&box, accepted);
        QTest::keyClicks(&box, typed);
        QCOMPARE(box.text(), shown);
    }

    void keys_that_edit() {
        QLineEdit box;
        new KeyFilter(&box, "0123456789");
        box.setText("1234");
        QTest::keyClick(&box, Qt::Key_Backspace);
        QCOMPARE(box.text(), QString("123"));
        QTest::keyClick(&box, Qt::Key_Home);
        QTest::keyClick(&box, Qt::Key_Delete);
        QCOMPARE(box.text(), QString("23"));
        QTest::keyClick(&box, Qt::Key_Right);
        QCOMPARE(box.cursorPosition(), 1);
    }

    void enter_still_confirms() {
        QLineEdit box;
        new KeyFilter(&box, "0123456789");
        int confirmed = 0;
        connect(&box, &QLineEdit::returnPressed, this, [&] { ++confirmed; });
        QTest::keyClick(&box, Qt::Key_Return);
        QTest::keyClick(&box, Qt::Key_Enter);
        QCOMPARE(confirmed, 2);
    }

    void pasted_text_is_not_filtered() {
        QLineEdit box;
        new KeyFilter(&box, "0123456789");
        QApplication::clipboard()->setText("12.5 dB");
        press(box, Qt::Key_V, QString(QChar(0x16)), Qt::ControlModifier);
        QCOMPARE(box.text(), QString("12.5 dB"));
    }

    void a_refused_key_with_a_modifier_data() {
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("text");
        QTest::newRow("shift") << int{Qt::ShiftModifier} << "A";
        QTest::newRow("alt") << int{Qt::AltModifier} << "a";
        QTest::newRow("alt and shift") << int{Qt::AltModifier | Qt::ShiftModifier} << "A";
        QTest::newRow("third level") << int{Qt::GroupSwitchModifier} << "@";
        QTest::newRow("third level as ctrl and alt")
            << int{Qt::ControlModifier | Qt::AltModifier} << "@";
        QTest::newRow("keypad") << int{Qt::KeypadModifier} << ".";
        QTest::newRow("meta") << int{Qt::MetaModifier} << "a";
    }

    void a_refused_key_with_a_modifier() {
        QFETCH(int, modifiers);
        QFETCH(QString, text);
        QLineEdit box;
        new KeyFilter(&box, "0123456789");
        press(box, Qt::Key_A, text, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(box.text(), QString());
    }

    void a_refused_character_beyond_the_usual_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("accent") << QStringLiteral("\u00e0");
        QTest::newRow("arabic digit") << QStringLiteral("\u0663");
        QTest::newRow("two code units") << QString::fromUcs4(U"\U0001F4E1");
        QTest::newRow("mark without width") << QStringLiteral("\u200f");
        QTest::newRow("digit and letter at once") << QStringLiteral("1a");
    }

    void a_refused_character_beyond_the_usual() {
        QFETCH(QString, text);
        QLineEdit box;
        new KeyFilter(&box, "0123456789");
        press(box, 0, text);
        QCOMPARE(box.text(), QString());
    }

    void no_composed_characters() {
        QLineEdit box;
        QVERIFY(box.testAttribute(Qt::WA_InputMethodEnabled));
        new KeyFilter(&box, "0123456789");
        QVERIFY(!box.testAttribute(Qt::WA_InputMethodEnabled));
    }

    void other_boxes_are_left_alone() {
        QLineEdit box;
        QLineEdit other;
        new KeyFilter(&box, "0123456789");
        QTest::keyClicks(&other, "abc");
        QCOMPARE(other.text(), QString("abc"));
    }

    void typing_does_not_choose_from_a_list() {
        QComboBox list;
        fill(list);
        new KeyFilter(&list, QString());
        int chosen = 0;
        connect(&list, &QComboBox::activated, this, [&] { ++chosen; });
        QTest::keyClicks(&list, "o1O8");
        QCOMPARE(list.currentIndex(), 1);
        QCOMPARE(chosen, 0);
    }

    void a_list_without_the_filter_would_follow_the_keys() {
        QComboBox list;
        fill(list);
        QTest::keyClicks(&list, "o");
        QCOMPARE(list.currentIndex(), 0);
    }

    void the_wheel_does_not_choose_from_a_list() {
        QComboBox list;
        fill(list);
        turn_wheel(list);
        QCOMPARE(list.currentIndex(), 2);
        list.setCurrentIndex(1);
        new WheelGuard(&list);
        int chosen = 0;
        connect(&list, &QComboBox::activated, this, [&] { ++chosen; });
        turn_wheel(list);
        QCOMPARE(list.currentIndex(), 1);
        QCOMPARE(chosen, 0);
        // Other ways of choosing stay.
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(list.currentIndex(), 2);
        QCOMPARE(chosen, 1);
    }
};

}  // namespace m47

QTEST_MAIN(m47::KeyFilterTest)
#include "key_filter_test.moc"
