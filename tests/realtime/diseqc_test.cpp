// SPDX-License-Identifier: GPL-3.0-or-later
#include "diseqc.h"
#include "enter_key.h"

#include <QTest>

#include "diseqc_commands.h"
#include "diseqc_layout.h"
#include "realtime_fixture.h"

namespace m47::realtime {
namespace {

using KeyPress = void (dish::Diseqc::*)(int key);
using Click = void (dish::Diseqc::*)();

struct EntryBox {
    const char* name;
    QString RealtimePanel::*text;
    KeyPress handler;
};

const EntryBox kEntryBoxes[] = {
    {"storesat", &RealtimePanel::storesat, &dish::Diseqc::storesat_KeyPress},
    {"recallsat", &RealtimePanel::recallsat, &dish::Diseqc::recallsat_KeyPress},
    {"starteast_s", &RealtimePanel::starteast_s, &dish::Diseqc::starteast_s_KeyPress},
    {"starteast_t", &RealtimePanel::starteast_t, &dish::Diseqc::starteast_t_KeyPress},
    {"startwest_s", &RealtimePanel::startwest_s, &dish::Diseqc::startwest_s_KeyPress},
    {"startwest_t", &RealtimePanel::startwest_t, &dish::Diseqc::startwest_t_KeyPress},
};

}  // namespace

/// What the DiSEqC and motor controls send, and what becomes of the boxes.
class DiseqcTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init() { f_ = std::make_unique<RealtimeFixture>(); }
    void cleanup() { f_.reset(); }

    void every_switching_command_is_its_place_in_the_list();
    void motor_items_data();
    void motor_items();
    void the_same_item_twice();
    void no_such_item();
    void entries_data();
    void entries();
    void other_keys_leave_the_entry();
    void entries_with_a_decimal_comma();
    void an_unconfirmed_position_is_brought_into_range_first_data();
    void an_unconfirmed_position_is_brought_into_range_first();
    void drives_use_the_box_in_red_data();
    void drives_use_the_box_in_red();
    void the_directions_do_not_share_their_choice();
    void satellite_defaults_go_back_to_the_steps();
    void the_entry_is_shown_before_it_is_sent();
    void a_refusal_changes_nothing();
    void without_a_link_the_entry_is_corrected_all_the_same();
    void three_states_of_the_panel();

  private:
    dish::Diseqc& diseqc() { return f_->rules.diseqc; }
    RealtimePanel& panel() { return f_->panel(); }
    QList<LampColour> colours() {
        return {panel().starteast_s_colour, panel().starteast_t_colour, panel().startwest_s_colour,
                panel().startwest_t_colour};
    }

    std::unique_ptr<RealtimeFixture> f_;
};

void DiseqcTest::every_switching_command_is_its_place_in_the_list() {
    QStringList expected;
    for (int index = 0; index < static_cast<int>(programme::kDiseqcCommands.size()); ++index) {
        diseqc().diseqc_cmd_Click(index);
        expected += QStringLiteral("DISEQC %1").arg(index, 2, 10, QLatin1Char('0'));
    }
    QCOMPARE(f_->commands(), expected);
    diseqc().diseqc_cmd_Click(3);
    diseqc().diseqc_cmd_Click(programme::kDiseqcNone);
    QCOMPARE(f_->commands(), (QStringList{"DISEQC 03", "DISEQC 73"}));
}

void DiseqcTest::motor_items_data() {
    QTest::addColumn<int>("item");
    QTest::addColumn<QByteArray>("bytes");
    const char* bytes[] = {"DISEQCMOT 00",       "DISEQCMOT 01",   "DISEQCMOT 02",
                           "DISEQCMOT 03",       "DISEQCMOT 04",   "DISEQCMOT 05",
                           "DISEQCMOT 0611",     "DISEQCMOT 0712", "DISEQCMOT 08 13 01",
                           "DISEQCMOT 09 15 01", "DISEQCMOT 10",   "DISEQCMOT 11"};
    for (int item = 0; item < 12; ++item)
        QTest::addRow("%d", item) << item << QByteArray(bytes[item]);
}

void DiseqcTest::motor_items() {
    QFETCH(int, item);
    QFETCH(QByteArray, bytes);
    panel().storesat = "11";
    panel().recallsat = "12";
    panel().starteast_s = "13";
    panel().starteast_t = "14";
    panel().startwest_s = "15";
    panel().startwest_t = "16";
    diseqc().dsqmtr_Click(item);
    QVERIFY2(f_->port.written.endsWith(bytes + '\r'), f_->port.written.constData());
    QCOMPARE(f_->commands(), QStringList{QString::fromLatin1(bytes)});
}

void DiseqcTest::the_same_item_twice() {
    diseqc().dsqmtr_Click(dish::kStopMotor);
    diseqc().dsqmtr_Click(dish::kStopMotor);
    diseqc().dsqmtr_Click(dish::kStorePosition);
    diseqc().dsqmtr_Click(dish::kStorePosition);
    QCOMPARE(f_->commands(),
             (QStringList{"DISEQCMOT 00", "DISEQCMOT 00", "DISEQCMOT 0601", "DISEQCMOT 0601"}));
}

void DiseqcTest::no_such_item() {
    diseqc().dsqmtr_Click(-1);
    diseqc().dsqmtr_Click(12);
    QCOMPARE(f_->port.opens, 0);
}

void DiseqcTest::entries_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    const std::pair<const char*, const char*> rows[] = {
        {"0", "01"},   {"150", "99"}, {"7", "07"},   {"1", "01"},    {"99", "99"},  {"100", "99"},
        {"", "01"},    {"-5", "01"},  {"abc", "01"}, {"12x", "12"},  {" 8 ", "08"}, {"0.5", "01"},
        {"2.5", "03"}, {"07", "07"},  {"1e1", "10"}, {"99.4", "99"}, {"42", "42"},
    };
    for (const auto& [typed, shown] : rows)
        QTest::addRow("'%s'", typed) << QString(typed) << QString(shown);
}

void DiseqcTest::entries() {
    QFETCH(QString, typed);
    for (const EntryBox& box : kEntryBoxes) {
        panel().*box.text = typed;
        (diseqc().*box.handler)(kEnterKey);
        QTEST(panel().*box.text, "shown");
    }
    QCOMPARE(f_->port.opens, 0);
}

void DiseqcTest::other_keys_leave_the_entry() {
    for (const EntryBox& box : kEntryBoxes) {
        panel().*box.text = "150";
        for (const int key : {0, 8, 9, 10, 27, int(' '), int('1')}) (diseqc().*box.handler)(key);
        QCOMPARE(panel().*box.text, QString("150"));
    }
    QCOMPARE(f_->port.opens, 0);
}

void DiseqcTest::entries_with_a_decimal_comma() {
    const SystemLocale italian(QLocale::Italian);
    panel().storesat = "1,6";
    diseqc().storesat_KeyPress(kEnterKey);
    QCOMPARE(panel().storesat, QString("02"));
}

void DiseqcTest::an_unconfirmed_position_is_brought_into_range_first_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("digits");
    QTest::newRow("one digit") << "7"
                               << "07";
    QTest::newRow("too low") << "0"
                             << "01";
    QTest::newRow("too high") << "150"
                              << "99";
    QTest::newRow("empty") << ""
                           << "01";
}

void DiseqcTest::an_unconfirmed_position_is_brought_into_range_first() {
    QFETCH(QString, typed);
    QFETCH(QString, digits);
    for (const EntryBox& box : kEntryBoxes) panel().*box.text = typed;
    for (const int item :
         {dish::kStorePosition, dish::kRecallPosition, dish::kDriveEast, dish::kDriveWest})
        diseqc().dsqmtr_Click(item);
    QCOMPARE(f_->commands(),
             (QStringList{"DISEQCMOT 06" + digits, "DISEQCMOT 07" + digits,
                          "DISEQCMOT 08 " + digits + " 01", "DISEQCMOT 09 " + digits + " 01"}));
    QCOMPARE(panel().storesat, digits);
    QCOMPARE(panel().recallsat, digits);
    QCOMPARE(panel().starteast_s, digits);
    QCOMPARE(panel().startwest_s, digits);
    // The boxes that were not sent keep what was typed.
    QCOMPARE(panel().starteast_t, typed);
    QCOMPARE(panel().startwest_t, typed);
}

void DiseqcTest::drives_use_the_box_in_red_data() {
    QTest::addColumn<Click>("choose");
    QTest::addColumn<int>("item");
    QTest::addColumn<QString>("command");
    QTest::newRow("east, steps") << &dish::Diseqc::starteast_s_Click << int(dish::kDriveEast)
                                 << "DISEQCMOT 08 12 01";
    QTest::newRow("east, time") << &dish::Diseqc::starteast_t_Click << int(dish::kDriveEast)
                                << "DISEQCMOT 08 34 00";
    QTest::newRow("west, steps") << &dish::Diseqc::startwest_s_Click << int(dish::kDriveWest)
                                 << "DISEQCMOT 09 56 01";
    QTest::newRow("west, time") << &dish::Diseqc::startwest_t_Click << int(dish::kDriveWest)
                                << "DISEQCMOT 09 78 00";
}

void DiseqcTest::drives_use_the_box_in_red() {
    QFETCH(Click, choose);
    QFETCH(int, item);
    QFETCH(QString, command);
    panel().starteast_s = "12";
    panel().starteast_t = "34";
    panel().startwest_s = "56";
    panel().startwest_t = "78";
    (diseqc().*choose)();
    QCOMPARE(f_->port.opens, 0);
    diseqc().dsqmtr_Click(item);
    QCOMPARE(f_->commands(), QStringList{command});
}

void DiseqcTest::the_directions_do_not_share_their_choice() {
    using enum LampColour;
    diseqc().starteast_t_Click();
    QCOMPARE(colours(), (QList{green, red, red, green}));
    QVERIFY(f_->state().east_limit_set);
    QVERIFY(!f_->state().west_limit_set);
    diseqc().startwest_t_Click();
    QCOMPARE(colours(), (QList{green, red, green, red}));
    QVERIFY(f_->state().west_limit_set);
    diseqc().starteast_s_Click();
    QCOMPARE(colours(), (QList{red, green, green, red}));
    QVERIFY(!f_->state().east_limit_set);
    diseqc().startwest_s_Click();
    QCOMPARE(colours(), (QList{red, green, red, green}));
    QVERIFY(!f_->state().west_limit_set);
    QCOMPARE(f_->port.opens, 0);
}

void DiseqcTest::satellite_defaults_go_back_to_the_steps() {
    using enum LampColour;
    f_->values["SYMBRATEQPSK?"] = "27500";
    diseqc().starteast_t_Click();
    diseqc().startwest_t_Click();
    QList<LampColour> at_tone;
    f_->on_command = [&](const QByteArray& command) {
        if (command == "TONE22K 00") at_tone = colours();
    };
    f_->rules.modes.configurazione_prmt();
    QCOMPARE(at_tone, (QList{red, green, red, green}));
    QVERIFY(!f_->state().east_limit_set);
    QVERIFY(!f_->state().west_limit_set);
    f_->commands();
    diseqc().dsqmtr_Click(dish::kDriveEast);
    QCOMPARE(f_->commands(), QStringList{"DISEQCMOT 08 01 01"});
}

void DiseqcTest::the_entry_is_shown_before_it_is_sent() {
    QStringList shown;
    panel().on_repaint = [&] { shown += panel().storesat; };
    bool shown_first = false;
    f_->on_command = [&](const QByteArray&) { shown_first = shown.contains("07"); };
    panel().storesat = "7";
    diseqc().dsqmtr_Click(dish::kStorePosition);
    QVERIFY(shown_first);
    panel().on_repaint = [&] { shown += panel().starteast_s; };
    f_->on_command = [&](const QByteArray&) { shown_first = shown.contains("09"); };
    shown_first = false;
    panel().starteast_s = "9";
    diseqc().dsqmtr_Click(dish::kDriveEast);
    QVERIFY(shown_first);
}

void DiseqcTest::a_refusal_changes_nothing() {
    f_->refuse("DISEQCMOT 0605");
    panel().storesat = "5";
    diseqc().dsqmtr_Click(dish::kStorePosition);
    QCOMPARE(f_->commands(), (QStringList{"DISEQCMOT 0605", "DISEQCMOT 0605", "DISEQCMOT 0605"}));
    QCOMPARE(panel().storesat, QString("05"));
}

void DiseqcTest::without_a_link_the_entry_is_corrected_all_the_same() {
    f_->link.port_connected = false;
    panel().storesat = "150";
    diseqc().dsqmtr_Click(dish::kStorePosition);
    diseqc().diseqc_cmd_Click(programme::kDiseqcNone);
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().storesat, QString("99"));
}

void DiseqcTest::three_states_of_the_panel() {
    const dish::DiseqcLayout folded = dish::diseqc_layout(dish::DiseqcState::folded);
    QCOMPARE(folded.diseqc, QSize(93, 49));
    QCOMPARE(folded.sat_opt, QSize(281, 201));
    QVERIFY(!folded.dsq11opt && !folded.dsq12opt);
    const dish::DiseqcLayout commands = dish::diseqc_layout(dish::opened_state(false));
    QCOMPARE(commands.diseqc, QSize(245, 65));
    QCOMPARE(commands.sat_opt, QSize(385, 201));
    QVERIFY(commands.dsq11opt && !commands.dsq12opt);
    const dish::DiseqcLayout motor = dish::diseqc_layout(dish::opened_state(true));
    QCOMPARE(motor.diseqc, QSize(245, 277));
    QCOMPARE(motor.sat_opt, QSize(385, 367));
    QVERIFY(!motor.dsq11opt && motor.dsq12opt);
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::DiseqcTest)
#include "diseqc_test.moc"
