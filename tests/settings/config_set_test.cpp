// SPDX-License-Identifier: GPL-3.0-or-later
// The meter's logo: the rules and the box they stand behind.
#include "config_set.h"

#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolBar>

#include "answer_before.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "virtual_clock.h"

namespace m47::settings {

class ConfigSetTest : public QObject {
    Q_OBJECT

  private:
    VirtualClock clock_;
    FakePort port_{clock_};
    FakeLinkView view_;
    link::Link link_{port_, clock_, view_};
    Texts texts_;
    QByteArray stored_;
    std::unique_ptr<ConfigSet> screen_;

    template <class Kind>
    Kind* find(const char* name) {
        auto* found = screen_->findChild<Kind*>(QString::fromLatin1(name));
        if (!found) qFatal("no %s", name);
        return found;
    }
    QLineEdit* box() { return find<QLineEdit>("logo_txt"); }
    /// Types any characters, also those that no plain key has.
    void type(const QString& text) {
        for (const QChar character : text)
            QTest::sendKeyEvent(QTest::Click, box(), Qt::Key_unknown, QString(character),
                                Qt::NoModifier);
    }

  private Q_SLOTS:
    void init() {
        link_.port_connected = true;
        link_.forget_answer();
        stored_ = "M47 FIELD METER";
        // A meter that keeps ten characters.
        port_.answer = [this](const QByteArray& command) {
            if (command == "LOGO?") return FakePort::good(command, stored_);
            stored_ = command.mid(5).left(10);
            return FakePort::good(command);
        };
        texts_.language = kEnglish;
        screen_ = std::make_unique<ConfigSet>(link_, texts_);
        screen_->show();
        QVERIFY(QTest::qWaitForWindowExposed(screen_.get()));
        screen_->Form_Load();
        port_.take_commands();
    }

    void controls_and_texts() {
        QCOMPARE(screen_->objectName(), QStringLiteral("config_set"));
        QCOMPARE(screen_->windowTitle(), QStringLiteral("Configuration"));
        QStringList keys, tips;
        for (const QAction* key : find<QToolBar>("Toolbar1")->actions()) {
            keys += key->objectName();
            tips += key->toolTip();
            QVERIFY(!key->icon().isNull());
        }
        QCOMPARE(keys, QStringList({"logo", "time"}));
        QCOMPARE(tips, QStringList({"Instrument Logo", "Instrument Time e Date"}));
        QCOMPARE(box()->toolTip(), QStringLiteral("Instrument Logo"));
        QCOMPARE(find<QLabel>("Label1")->text(), QStringLiteral("Logo:"));
        QCOMPARE(find<QMenu>("cmdmenu")->title(), QStringLiteral("&Menu"));
        QCOMPARE(find<QAction>("cmdexit")->text(), QStringLiteral("&Exit"));
        texts_.language = kItalian;
        screen_->Form_Load();
        QCOMPARE(box()->toolTip(), QStringLiteral("Instrument Logo"));
    }

    void the_key_reads_the_logo() {
        find<QAction>("logo")->trigger();
        QCOMPARE(port_.take_commands(), QStringList("LOGO?"));
        QCOMPARE(box()->text(), QStringLiteral("M47 FIELD METER"));
    }

    void the_clock_has_no_effect() {
        box()->setText(QStringLiteral("ABC"));
        find<QAction>("time")->trigger();
        QCOMPARE(port_.take_commands(), QStringList());
        QCOMPARE(box()->text(), QStringLiteral("ABC"));
    }

    void enter_sets_the_logo_and_reads_it_back() {
        QTest::keyClicks(box(), QStringLiteral("  My  logo, long  "));
        QCOMPARE(port_.take_commands(), QStringList());
        QTest::keyClick(box(), Qt::Key_Return);
        QCOMPARE(port_.take_commands(), QStringList({"LOGO My  logo, long", "LOGO?"}));
        QCOMPARE(box()->text(), QStringLiteral("My  logo, "));
    }

    void only_the_first_line_is_sent() {
        box()->setText(QStringLiteral("ABC\rDEF"));
        QTest::keyClick(box(), Qt::Key_Return);
        QCOMPARE(port_.take_commands(), QStringList({"LOGO ABC", "LOGO?"}));
        QCOMPARE(box()->text(), QStringLiteral("ABC"));
        box()->setText(QStringLiteral("\rDEF"));
        QTest::keyClick(box(), Qt::Key_Return);
        QCOMPARE(port_.take_commands(), QStringList({"LOGO ", "LOGO?"}));
        // A line feed alone ends no line.
        Logo logo(link_);
        logo.logo_txt = QStringLiteral("A\nB");
        logo.logo_txt_KeyPress(13);
        QCOMPARE(port_.take_commands(), QStringList({"LOGO A\nB", "LOGO?"}));
    }

    void other_keys_send_nothing() {
        Logo logo(link_);
        logo.logo_txt = QStringLiteral("ABC");
        for (const int key : {0, 8, 9, 10, 27, 32, 65, 127}) logo.logo_txt_KeyPress(key);
        QCOMPARE(port_.take_commands(), QStringList());
        QTest::keyClick(box(), Qt::Key_Tab);
        QTest::keyClick(box(), Qt::Key_Escape);
        QCOMPARE(port_.take_commands(), QStringList());
    }

    void an_empty_box_sends_the_bare_word() {
        QTest::keyClick(box(), Qt::Key_Return);
        QCOMPARE(port_.take_commands(), QStringList({"LOGO ", "LOGO?"}));
    }

    void latin_1_goes_out_as_it_is() {
        type(QStringLiteral("Caf\u00e9 25\u00b0\u00ff"));
        QTest::keyClick(box(), Qt::Key_Return);
        QCOMPARE(port_.written, QByteArray("LOGO Caf\xE9 25\xB0\xFF\rLOGO?\r"));
    }

    void the_box_refuses_what_the_line_cannot_carry() {
        type(QStringLiteral("A\u20acB\u0416C"));
        QCOMPARE(box()->text(), QStringLiteral("ABC"));
        QApplication::clipboard()->setText(QStringLiteral("5 \u20ac"));
        box()->paste();
        QCOMPARE(box()->text(), QStringLiteral("ABC"));
        // However it got there, it is not sent.
        box()->setText(QStringLiteral("5 \u20ac"));
        QTest::keyClick(box(), Qt::Key_Return);
        Logo logo(link_);
        logo.logo_txt = QStringLiteral("5 \u20ac");
        logo.logo_txt_KeyPress(13);
        QCOMPARE(port_.take_commands(), QStringList());
    }

    void without_a_link_the_box_shows_the_last_answer() {
        link_.port_connected = false;
        leave_answer(link_, port_, "last");
        QTest::keyClicks(box(), QStringLiteral("ABC"));
        QTest::keyClick(box(), Qt::Key_Return);
        QCOMPARE(box()->text(), QStringLiteral("last"));
        QCOMPARE(port_.take_commands(), QStringList());
    }

    void a_lost_link_leaves_the_box_empty() {
        port_.answer = nullptr;
        QTest::keyClicks(box(), QStringLiteral("ABC"));
        QTest::keyClick(box(), Qt::Key_Return);
        QVERIFY(!link_.port_connected);
        QCOMPARE(box()->text(), QString());
    }

    void exit_asks_to_be_closed() {
        QSignalSpy asked(screen_.get(), &ConfigSet::exit_asked);
        find<QAction>("cmdexit")->trigger();
        QCOMPARE(asked.size(), 1);
    }
};

}  // namespace m47::settings

QTEST_MAIN(m47::settings::ConfigSetTest)
#include "config_set_test.moc"
