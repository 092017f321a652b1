// SPDX-License-Identifier: GPL-3.0-or-later
#include "modes.h"

#include <QTest>

#include "answer_before.h"
#include "realtime_fixture.h"

namespace m47 {
namespace {

const QStringList kLoadCommands{"MEASURE", "ATTEN 6",   "TONE22K 00", "SYMBRATEQPSK?",
                                "UNIT?",   "LOCOSC 00", "FREQ 1000"};

/// A program with a value of its own in every field that the screen shows.
QMap<QString, QVariant> whole_program() {
    return {
        {"pg_num", " 007 "},   {"frequenza", 11727.5},
        {"loc_osc", false},    {"loc_osc0", 0},
        {"sat_ad", 0},         {"qpsk_symbolrate", "22000"},
        {"lnb_volt", 1},       {"K22", 0},
        {"monitor_state", 1},  {"lev_min", "35"},
        {"lev_max", "85"},     {"noise_min", "6"},
        {"noise_max", "26"},   {"chber_min", "1E-7"},
        {"chber_max", "2E-2"}, {"mer_min", "8"},
        {"mer_max", "28"},
    };
}

}  // namespace

/// How the screen prepares the meter, changes its presentation and recalls stored programs.
class ModesTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void load();
    void load_is_one_recall();
    void load_shows_the_screen_first();
    void load_starts_the_noise_boxes_where_c_n_is_complete();
    void load_without_a_link();
    void load_while_commands_are_suspended();
    void load_goes_on_after_a_refusal_data();
    void load_goes_on_after_a_refusal();
    void load_ended_by_the_user();
    void unit_of_the_meter_data();
    void unit_of_the_meter();
    void coming_to_the_front();
    void coming_to_the_front_keeps_the_mode_where_chosen();
    void analog_presentation();
    void digital_presentation();
    void digital_presentation_while_commands_are_suspended();
    void digital_presentation_without_the_satellite_frame();
    void satellite_defaults();
    void satellite_defaults_without_a_link();
    void a_symbol_rate_that_was_not_answered_data();
    void a_symbol_rate_that_was_not_answered();
    void unit_menu_data();
    void unit_menu();
    void the_same_unit_twice();
    void unit_menu_during_a_recall();

    void recall_of_an_analog_program();
    void recall_of_a_digital_program();
    void recall_while_commands_are_suspended();
    void recall_that_changes_the_oscillator_choice_data();
    void recall_that_changes_the_oscillator_choice();
    void oscillator_of_the_plan_data();
    void oscillator_of_the_plan();
    void bandwidth_of_the_program_data();
    void bandwidth_of_the_program();
    void noise_boxes_begin_at_the_frequency_of_the_program();
    void presentation_of_the_program_data();
    void presentation_of_the_program();
    void digital_program_without_the_satellite_frame();
    void program_that_is_not_monitored_data();
    void program_that_is_not_monitored();
    void empty_fields();
    void numbers_of_the_database_data();
    void numbers_of_the_database();
    void plan_name_with_quotes_data();
    void plan_name_with_quotes();
    void plan_that_does_not_exist();
    void plan_named_in_other_letters();
    void plan_without_a_configuration();
    void first_program_of_a_plan();
    void nothing_recalled_before_a_plan_is_open();
    void behind_the_last_program();
    void recall_that_fails_in_the_middle();
    void recall_that_loses_the_link();
    void recall_ended_by_the_user();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    RealtimeState& state() { return f_->state(); }
    Modes& modes() { return f_->rules.modes; }

    void change_program(const QMap<QString, QVariant>& fields) {
        f_->database().programmi().move_first();
        RealtimeFixture::change_row(f_->database().programmi(), fields);
    }
    void change_configuration(const QMap<QString, QVariant>& fields) {
        f_->database().configurazione().move_first();
        RealtimeFixture::change_row(f_->database().configurazione(), fields);
    }
    /// A second plan of one program.
    void add_plan(const QString& name, const QMap<QString, QVariant>& program) {
        auto row = program;
        row["nome"] = name;
        RealtimeFixture::add_row(f_->database().programmi(), row);
        RealtimeFixture::add_row(f_->database().configurazione(), {{"nome", name}});
    }
    /// What the recall of a program shows and the frames, to tell that nothing has changed.
    QStringList everything_shown() {
        const RealtimePanel& p = panel();
        return {p.prog_num,
                p.fsat,
                p.ol_freq,
                p.srqpsk_txt,
                QString::number(p.locopt[0]),
                QString::number(p.locopt[1]),
                QString::number(p.ol_freq_enabled),
                QString::number(p.satlnb_state),
                QString::number(p.k22_state),
                p.lev_mina,
                p.lev_mind,
                p.lev_maxa,
                p.lev_maxd,
                p.cn_mina,
                p.cn_mind,
                p.cn_maxa,
                p.cn_maxd,
                p.chber_mind,
                p.chber_maxd,
                p.mer_mind,
                p.mer_maxd,
                frames()};
    }
    QString frames() {
        return QStringLiteral("mode %1, satdigmea %2, analogresults %3, digitalresults %4")
            .arg(state().meas_mode)
            .arg(panel().satdigmea_visible)
            .arg(panel().analogresults_visible)
            .arg(panel().digitalresults_visible);
    }
    static QString analog_frames() {
        return QStringLiteral("mode 2, satdigmea 0, analogresults 1, digitalresults 0");
    }
    static QString digital_frames() {
        return QStringLiteral("mode 3, satdigmea 1, analogresults 0, digitalresults 1");
    }

    std::unique_ptr<RealtimeFixture> f_;
};

void ModesTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
    f_->values["SYMBRATEQPSK?"] = " 30000 ";
    f_->values["UNIT?"] = "1";
    f_->values["FREQ?"] = "1234.5";
    change_program(whole_program());
    change_configuration({{"loc_osc1", 9750}, {"loc_osc2", 10750.5}});
    panel().grp_name = "PLAN 1";
}

void ModesTest::load() {
    panel().satlnb_state = 2;
    panel().k22_state = 0;
    state().acq_kind = 2;
    state().ticks_left = 99;
    state().plan_run_active = true;
    state().east_limit_set = state().west_limit_set = true;
    modes().Form_Load();
    QCOMPARE(f_->commands(), kLoadCommands);
    QCOMPARE(state().field_separator, QChar(u'\t'));
    QCOMPARE(panel().satlnb_state, 0);
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("30000"));
    QCOMPARE(panel().cmdlev, 1);
    QCOMPARE(f_->program.unit_index, 1);
    QCOMPARE(panel().fsat, QString("1000.0"));
    QCOMPARE(panel().ol_freq, QString("10600"));
    QCOMPARE(state().ticks_left, 1);
    QVERIFY(!state().plan_run_active);
    QVERIFY(!state().recall_in_progress);
    QVERIFY(!state().east_limit_set);
    QVERIFY(!state().west_limit_set);
}

void ModesTest::load_is_one_recall() {
    QStringList in_recall;
    f_->on_command = [&](const QByteArray& command) {
        if (state().recall_in_progress) in_recall += QString::fromLatin1(command);
    };
    modes().Form_Load();
    QCOMPARE(in_recall, kLoadCommands);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_shows_the_screen_first() {
    QStringList events;
    panel().on_repaint = [&] {
        if (events.isEmpty()) events += "shown";
    };
    f_->on_command = [&](const QByteArray& command) { events += QString::fromLatin1(command); };
    modes().Form_Load();
    QCOMPARE(events, QStringList{"shown"} + kLoadCommands);
}

void ModesTest::load_starts_the_noise_boxes_where_c_n_is_complete() {
    panel().noise_freqa = panel().noise_freqd = "950.0";
    modes().Form_Load();
    QCOMPARE(panel().noise_freqa, QString("950.0"));
    f_->program.corrected.complete = true;
    modes().Form_Load();
    QCOMPARE(panel().noise_freqa, QString("1000.0"));
    QCOMPARE(panel().noise_freqd, QString("1000.0"));
}

void ModesTest::load_without_a_link() {
    f_->link.port_connected = false;
    leave_answer(f_->link, f_->port, "2");
    f_->program.unit_index = 1;
    modes().Form_Load();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().satlnb_state, 0);
    QCOMPARE(panel().k22_state, 1);
    // Without an answer the texts and the unit stay.
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QCOMPARE(panel().cmdlev, 1);
    QCOMPARE(f_->program.unit_index, 1);
    QCOMPARE(state().field_separator, QChar(u'\t'));
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_while_commands_are_suspended() {
    f_->link.commands_suspended = true;
    leave_answer(f_->link, f_->port, "2");
    modes().Form_Load();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QCOMPARE(panel().cmdlev, 0);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_goes_on_after_a_refusal_data() {
    QTest::addColumn<QString>("refused");
    for (const QString& command : kLoadCommands) QTest::newRow(qPrintable(command)) << command;
}

void ModesTest::load_goes_on_after_a_refusal() {
    QFETCH(QString, refused);
    f_->refuse(refused.toLatin1());
    state().ticks_left = 99;
    modes().Form_Load();
    // The refused one is sent three times, then the link is lost and the rest not sent.
    const qsizetype before = kLoadCommands.indexOf(refused);
    QCOMPARE(f_->commands(),
             (kLoadCommands.first(before) + QStringList{refused, refused, refused}));
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(panel().satlnb_state, 0);
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(state().ticks_left, 1);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_ended_by_the_user() {
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "TONE22K 00"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, modes().Form_Load());
    QCOMPARE(f_->commands().last(), QString("TONE22K 00"));
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::unit_of_the_meter_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("unit");
    QTest::newRow("dBuV") << QByteArray("0") << 0;
    QTest::newRow("dBmV") << QByteArray("1") << 1;
    QTest::newRow("dBm") << QByteArray("2") << 2;
    QTest::newRow("two digits and a blank") << QByteArray(" 02") << 2;
    QTest::newRow("no number") << QByteArray("dBm") << 0;
    QTest::newRow("truncated") << QByteArray("1.9") << 1;
    QTest::newRow("no such unit") << QByteArray("3") << 0;
    QTest::newRow("negative") << QByteArray("-1") << 0;
    QTest::newRow("beyond 16 bits") << QByteArray("99999") << 0;
    QTest::newRow("refused argument") << QByteArray("Invalid Parameter(s)") << 0;
}

void ModesTest::unit_of_the_meter() {
    QFETCH(QByteArray, reply);
    QFETCH(int, unit);
    f_->values["UNIT?"] = reply;
    f_->program.unit_index = panel().cmdlev = 2;
    modes().Form_Load();
    QCOMPARE(panel().cmdlev, unit);
    QCOMPARE(f_->program.unit_index, unit);
    QCOMPARE(f_->commands(), kLoadCommands);
}

void ModesTest::coming_to_the_front() {
    panel().satdigmea_visible = true;
    panel().digitalresults_visible = true;
    panel().analogresults_visible = false;
    state().meas_mode = kDigitalMode;
    modes().Form_Activate();
    QCOMPARE(f_->commands(), QStringList{"ATTEN 6"});
    // Only the results change; the digital measures stay where they were.
    QCOMPARE(frames(), QString("mode 2, satdigmea 1, analogresults 1, digitalresults 0"));
}

void ModesTest::coming_to_the_front_keeps_the_mode_where_chosen() {
    f_->program.corrected.keep_mode = true;
    modes().Form_Activate();
    QCOMPARE(frames(), analog_frames());
    modes().digitalmode();
    f_->commands();
    modes().Form_Activate();
    QCOMPARE(f_->commands(), QStringList{"ATTEN 6"});
    QCOMPARE(frames(), digital_frames());
    modes().analogmode();
    modes().Form_Activate();
    QCOMPARE(frames(), analog_frames());
}

void ModesTest::analog_presentation() {
    modes().digitalmode();
    f_->commands();
    modes().analogmode();
    QCOMPARE(frames(), analog_frames());
    QCOMPARE(f_->commands(), QStringList());
}

void ModesTest::digital_presentation() {
    panel().meas_stated_enabled.fill(false);
    panel().meas_stated_enabled[kRu] = true;
    panel().k22_state = 0;
    modes().digitalmode();
    QCOMPARE(f_->commands(), (QStringList{"TONE22K 00", "SYMBRATEQPSK?"}));
    QCOMPARE(frames(), digital_frames());
    QCOMPARE(panel().meas_stated_enabled,
             (std::array{false, false, false, true, true, true, true, false}));
    QVERIFY(!panel().rucomune_enabled);
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("30000"));
}

void ModesTest::digital_presentation_while_commands_are_suspended() {
    f_->link.commands_suspended = true;
    panel().k22_state = 0;
    state().east_limit_set = true;
    modes().digitalmode();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(frames(), digital_frames());
    QCOMPARE(panel().k22_state, 0);
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QVERIFY(state().east_limit_set);
}

void ModesTest::digital_presentation_without_the_satellite_frame() {
    panel().sat_opt_visible = false;
    modes().digitalmode();
    QCOMPARE(frames(), analog_frames());
    QVERIFY(panel().meas_stated_enabled[kRu]);
    QVERIFY(panel().rucomune_enabled);
    QCOMPARE(f_->port.opens, 0);
}

void ModesTest::satellite_defaults() {
    panel().k22_state = 0;
    state().east_limit_set = state().west_limit_set = true;
    modes().configurazione_prmt();
    QCOMPARE(f_->commands(), (QStringList{"TONE22K 00", "SYMBRATEQPSK?"}));
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("30000"));
    QVERIFY(!state().east_limit_set);
    QVERIFY(!state().west_limit_set);
}

void ModesTest::satellite_defaults_without_a_link() {
    f_->link.port_connected = false;
    leave_answer(f_->link, f_->port, "of another command");
    panel().k22_state = 0;
    state().east_limit_set = state().west_limit_set = true;
    modes().configurazione_prmt();
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QVERIFY(!state().east_limit_set);
    QVERIFY(!state().west_limit_set);
}

void ModesTest::a_symbol_rate_that_was_not_answered_data() {
    QTest::addColumn<bool>("kept");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("shown");
    for (const bool kept : {false, true}) {
        const QByteArray words = kept ? "kept, " : "by default, ";
        QTest::newRow(words + "lost") << kept << QByteArray() << (kept ? "27500" : "");
        QTest::newRow(words + "no number")
            << kept << QByteArray("SYMBRATEQPSK?\rInvalid Parameter(s)\rOK\r")
            << (kept ? "27500" : "0");
        QTest::newRow(words + "answered")
            << kept << QByteArray("SYMBRATEQPSK?\r 22000 \rOK\r") << "22000";
    }
}

void ModesTest::a_symbol_rate_that_was_not_answered() {
    QFETCH(bool, kept);
    QFETCH(QByteArray, answer);
    QFETCH(QString, shown);
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->program.corrected.keep_box = kept;
    f_->raw["SYMBRATEQPSK?"] = answer;
    modes().configurazione_prmt();
    QCOMPARE(panel().srqpsk_txt, shown);
    const bool lost = !kept && shown != u"22000";
    QCOMPARE(told, lost ? QStringList("Symbol rate not kept: type it again") : QStringList());
}

void ModesTest::unit_menu_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("command");
    QTest::newRow("dBuV") << 0 << "UNIT 00";
    QTest::newRow("dBmV") << 1 << "UNIT 01";
    QTest::newRow("dBm") << 2 << "UNIT 02";
}

void ModesTest::unit_menu() {
    QFETCH(int, index);
    QFETCH(QString, command);
    panel().cmdlev = f_->program.unit_index = 9;
    modes().cmdlev_Click(index);
    QCOMPARE(f_->commands(), QStringList{command});
    QCOMPARE(panel().cmdlev, index);
    QCOMPARE(f_->program.unit_index, index);
}

void ModesTest::the_same_unit_twice() {
    modes().cmdlev_Click(1);
    modes().cmdlev_Click(1);
    QCOMPARE(f_->commands(), (QStringList{"UNIT 01", "UNIT 01"}));
}

void ModesTest::unit_menu_during_a_recall() {
    state().recall_in_progress = true;
    modes().cmdlev_Click(2);
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().cmdlev, 2);
    QCOMPARE(f_->program.unit_index, 2);
}

void ModesTest::recall_of_an_analog_program() {
    // The oscillator choice is the program's already.
    panel().locopt = {false, true};
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(everything_shown(),
             (QStringList{"007",  "11727.5", "9750", "22000",        "0", "1", "1",  "1",  "0",
                          "35",   "35",      "85",   "85",           "6", "6", "26", "26", "1E-7",
                          "2E-2", "8",       "28",   analog_frames()}));
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::recall_of_a_digital_program() {
    panel().locopt = {false, true};
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->commands(), (QStringList{"TONE22K 00", "SYMBRATEQPSK?"}));
    // Reading the satellite defaults switches the tone off behind the program's own setting; the
    // symbol rate is the program's again.
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("22000"));
    QCOMPARE(panel().satlnb_state, 1);
    QCOMPARE(frames(), digital_frames());
    QCOMPARE(panel().mer_mind, QString("8"));
}

void ModesTest::recall_while_commands_are_suspended() {
    f_->link.commands_suspended = true;
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().fsat, QString("11727.5"));
    QCOMPARE(panel().locopt, (std::array{false, true}));
    QCOMPARE(panel().k22_state, 0);
    QCOMPARE(panel().srqpsk_txt, QString("22000"));
    QCOMPARE(frames(), digital_frames());
}

void ModesTest::recall_that_changes_the_oscillator_choice_data() {
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("direct");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("fsat");
    QTest::newRow("to the oscillator") << true << false << QStringList{"FREQ?"} << "1234.5";
    QTest::newRow("to none") << false << true << QStringList{"FREQ?"} << "1234.5";
    QTest::newRow("stays direct") << true << true << QStringList{} << "11727.5";
    QTest::newRow("keeps its oscillator") << false << false << QStringList{} << "11727.5";
}

void ModesTest::recall_that_changes_the_oscillator_choice() {
    QFETCH(bool, before);
    QFETCH(bool, direct);
    QFETCH(QStringList, commands);
    QFETCH(QString, fsat);
    panel().locopt = {before, !before};
    change_program({{"loc_osc", direct}});
    bool in_recall = true;
    f_->on_command = [&](const QByteArray&) {
        in_recall = in_recall && state().recall_in_progress;
    };
    modes().crea_records_realtime();
    QCOMPARE(f_->commands(), commands);
    QCOMPARE(panel().fsat, fsat);
    QCOMPARE(panel().locopt, (std::array{direct, !direct}));
    QVERIFY(panel().ol_freq_enabled);
    QVERIFY(in_recall);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::oscillator_of_the_plan_data() {
    QTest::addColumn<QVariant>("number");
    QTest::addColumn<QString>("shown");
    QTest::newRow("first") << QVariant(0) << "9750";
    QTest::newRow("second") << QVariant(1) << "10750.5";
    QTest::newRow("third") << QVariant(2) << "10600";
    QTest::newRow("fourth") << QVariant(3) << "10600";
    QTest::newRow("none is the first") << QVariant(7) << "9750";
    QTest::newRow("empty") << QVariant() << "10600";
}

void ModesTest::oscillator_of_the_plan() {
    QFETCH(QVariant, number);
    QFETCH(QString, shown);
    change_program({{"loc_osc0", number}});
    modes().crea_records_realtime();
    QCOMPARE(panel().ol_freq, shown);
}

void ModesTest::bandwidth_of_the_program_data() {
    QTest::addColumn<bool>("chosen");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("by default") << false << QVariant(27) << "36";
    QTest::newRow("its own") << true << QVariant(27) << "27";
    QTest::newRow("two digits") << true << QVariant(8) << "08";
    QTest::newRow("never set") << true << QVariant() << "36";
    QTest::newRow("none") << true << QVariant(0) << "36";
}

void ModesTest::bandwidth_of_the_program() {
    QFETCH(bool, chosen);
    QFETCH(QVariant, stored);
    QFETCH(QString, shown);
    f_->program.corrected.plan_width = chosen;
    panel().chbws = "36";
    change_program({{"satchbw", stored}});
    modes().crea_records_realtime();
    QCOMPARE(panel().chbws, shown);
    QCOMPARE(panel().mer_maxd, QString("28"));
}

void ModesTest::noise_boxes_begin_at_the_frequency_of_the_program() {
    panel().noise_freqa = "1000.0";
    panel().noise_freqd = "1025.0";
    f_->link.commands_suspended = true;
    modes().crea_records_realtime();
    QCOMPARE(panel().noise_freqa, QString("11727.5"));
    QCOMPARE(panel().noise_freqd, QString("11727.5"));
}

void ModesTest::presentation_of_the_program_data() {
    QTest::addColumn<bool>("digital_before");
    QTest::addColumn<QVariant>("sat_ad");
    QTest::addColumn<QString>("frames");
    QTest::newRow("analog") << false << QVariant(0) << analog_frames();
    QTest::newRow("digital to analog") << true << QVariant(0) << analog_frames();
    QTest::newRow("analog to digital") << false << QVariant(1) << digital_frames();
    QTest::newRow("digital") << true << QVariant(1) << digital_frames();
    for (const int other : {2, 3, -1}) {
        QTest::addRow("%d, analog stays", other) << false << QVariant(other) << analog_frames();
        QTest::addRow("%d, digital stays", other) << true << QVariant(other) << digital_frames();
    }
    QTest::newRow("empty, analog stays") << false << QVariant() << analog_frames();
    QTest::newRow("empty, digital stays") << true << QVariant() << digital_frames();
}

void ModesTest::presentation_of_the_program() {
    QFETCH(bool, digital_before);
    QFETCH(QVariant, sat_ad);
    QFETCH(QString, frames);
    if (digital_before) modes().digitalmode();
    change_program({{"sat_ad", sat_ad}});
    modes().crea_records_realtime();
    QCOMPARE(this->frames(), frames);
    QCOMPARE(panel().prog_num, QString("007"));
    QCOMPARE(panel().lev_mina, QString("35"));
}

void ModesTest::digital_program_without_the_satellite_frame() {
    panel().sat_opt_visible = false;
    panel().locopt = {false, true};
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(frames(), analog_frames());
    QCOMPARE(panel().fsat, QString("11727.5"));
    QCOMPARE(panel().k22_state, 0);
    QCOMPARE(panel().mer_maxd, QString("28"));
}

void ModesTest::program_that_is_not_monitored_data() {
    QTest::addColumn<QVariant>("monitor_state");
    QTest::newRow("0") << QVariant(0);
    QTest::newRow("2") << QVariant(2);
    QTest::newRow("-1") << QVariant(-1);
    QTest::newRow("10") << QVariant(10);
    QTest::newRow("empty") << QVariant();
}

void ModesTest::program_that_is_not_monitored() {
    QFETCH(QVariant, monitor_state);
    change_program({{"monitor_state", monitor_state}});
    panel().prog_num = "before";
    panel().lev_mina = "before";
    const QStringList before = everything_shown();
    modes().crea_records_realtime();
    QCOMPARE(everything_shown(), before);
    QCOMPARE(f_->port.opens, 0);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::empty_fields() {
    QMap<QString, QVariant> empty = whole_program();
    for (QVariant& value : empty) value = QVariant();
    empty["monitor_state"] = 1;
    change_program(empty);
    change_configuration({{"loc_osc1", QVariant()}, {"loc_osc2", QVariant()}});
    panel().locopt = {false, true};
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    // No oscillator is named, no presentation asked for; the texts are empty.
    QCOMPARE(everything_shown(),
             (QStringList{"", "", "10600", "", "0", "1", "1", "0", "0", "", "",
                          "", "", "",      "", "",  "",  "",  "",  "",  "", analog_frames()}));
    QVERIFY(!state().recall_in_progress);
    // The cycle of such a program brings what it needs into its range.
    panel().meas_statea[kLevel] = true;
    f_->values["LEVANL?"] = "L 58.3";
    f_->rules.measure_once();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 11520", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->rules.page.measurements(), 1);
}

void ModesTest::numbers_of_the_database_data() {
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("decimal") << QVariant(1234.5) << "1234.5";
    QTest::newRow("whole") << QVariant(1234.0) << "1234";
    QTest::newRow("large") << QVariant(12345678.9) << "12345678.9";
    QTest::newRow("text with a point") << QVariant("1234.5 MHz") << "1234.5";
    QTest::newRow("text with a comma") << QVariant("1234,5") << "1234.5";
    QTest::newRow("no number") << QVariant("what") << "0";
}

void ModesTest::numbers_of_the_database() {
    QFETCH(QVariant, stored);
    QFETCH(QString, shown);
    const SystemLocale italian(QLocale::Italian);
    panel().locopt = {false, true};
    change_program({{"frequenza", stored}});
    change_configuration({{"loc_osc1", stored}});
    modes().crea_records_realtime();
    QCOMPARE(panel().fsat, shown);
    QCOMPARE(panel().ol_freq, shown);
}

void ModesTest::plan_name_with_quotes_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("apostrophe") << "L'AQUILA";
    QTest::newRow("double quote") << "DISH 30\"";
    QTest::newRow("both") << "'A\" OR \"1\"=\"1";
    QTest::newRow("accents") << QStringLiteral("CITT\u00c0");
    QTest::newRow("empty") << "";
}

void ModesTest::plan_name_with_quotes() {
    QFETCH(QString, name);
    auto program = whole_program();
    program["pg_num"] = "042";
    add_plan(name, program);
    panel().grp_name = name;
    modes().crea_records_realtime();
    QCOMPARE(panel().prog_num, QString("042"));
    QCOMPARE(modes().rs_programs->count(), 1);
    QCOMPARE(modes().rs_config->count(), 1);
}

void ModesTest::plan_that_does_not_exist() {
    panel().prog_num = "before";
    const QStringList before = everything_shown();
    for (const char* name : {"PLAN 2", "", "PLAN 1\" OR \"1\"=\"1"}) {
        panel().grp_name = name;
        QVERIFY2(faults([this] { modes().crea_records_realtime(); }), name);
        QCOMPARE(everything_shown(), before);
        QVERIFY(!state().recall_in_progress);
    }
    QCOMPARE(f_->port.opens, 0);
}

void ModesTest::plan_named_in_other_letters() {
    add_plan("PLAN 2", whole_program());
    for (const char* name : {"PLAN 2 ", " plan 2"}) {
        panel().grp_name = name;
        modes().crea_records_realtime();
        QCOMPARE(modes().rs_programs->count(), 1);
        QCOMPARE(modes().rs_config->count(), 1);
    }
}

void ModesTest::plan_without_a_configuration() {
    auto program = whole_program();
    program["nome"] = "PLAN 2";
    RealtimeFixture::add_row(f_->database().programmi(), program);
    panel().grp_name = "PLAN 2";
    const QStringList before = everything_shown();
    QVERIFY(faults([this] { modes().crea_records_realtime(); }));
    QCOMPARE(everything_shown(), before);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::first_program_of_a_plan() {
    add_plan("PLAN 2", whole_program());
    for (const char* number : {"001", "002"}) {
        auto program = whole_program();
        program["nome"] = "PLAN 1";
        program["pg_num"] = number;
        RealtimeFixture::add_row(f_->database().programmi(), program);
    }
    modes().crea_records_realtime();
    QCOMPARE(modes().rs_programs->count(), 3);
    QCOMPARE(modes().rs_programs->text("pg_num"), QString(" 007 "));
    modes().rs_programs->move_next();
    modes().mostra_record_realtime();
    QCOMPARE(panel().prog_num, QString("001"));
    // Opened anew, the plan is back at its first program.
    modes().crea_records_realtime();
    QCOMPARE(panel().prog_num, QString("007"));
    QVERIFY(!modes().rs_config->end_of_set());
}

void ModesTest::nothing_recalled_before_a_plan_is_open() {
    const QStringList before = everything_shown();
    modes().mostra_record_realtime();
    QCOMPARE(everything_shown(), before);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::behind_the_last_program() {
    modes().crea_records_realtime();
    modes().rs_programs->move_next();
    QVERIFY(modes().rs_programs->end_of_set());
    panel().prog_num = "before";
    const QStringList before = everything_shown();
    modes().mostra_record_realtime();
    QCOMPARE(everything_shown(), before);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::recall_that_fails_in_the_middle() {
    panel().locopt = {false, true};
    modes().crea_records_realtime();
    // The program is there, the plan's oscillators are not.
    modes().rs_config->move_next();
    change_program({{"pg_num", "008"}, {"frequenza", 12000}, {"lnb_volt", 2}, {"lev_min", "99"}});
    modes().rs_programs->move_first();
    modes().mostra_record_realtime();
    QVERIFY(!state().recall_in_progress);
    // The controls are as far as they were set.
    QCOMPARE(panel().prog_num, QString("008"));
    QCOMPARE(panel().fsat, QString("12000"));
    QCOMPARE(panel().ol_freq, QString("9750"));
    QCOMPARE(panel().satlnb_state, 1);
    QCOMPARE(panel().lev_mina, QString("35"));
    // The tuning controls send again.
    f_->rules.tuning.k22_state_Click(0);
    QCOMPARE(f_->commands(), QStringList{"TONE22K 01"});
}

void ModesTest::recall_that_loses_the_link() {
    f_->refuse("FREQ?");
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->commands(), (QStringList{"FREQ?", "FREQ?", "FREQ?"}));
    QVERIFY(!f_->link.port_connected);
    QVERIFY(!state().recall_in_progress);
    QCOMPARE(panel().prog_num, QString("007"));
    QCOMPARE(panel().srqpsk_txt, QString("22000"));
    QCOMPARE(panel().lev_mina, QString("35"));
    QCOMPARE(frames(), digital_frames());
}

void ModesTest::recall_ended_by_the_user() {
    change_program({{"sat_ad", 1}});
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "FREQ?"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, modes().crea_records_realtime());
    QCOMPARE(f_->commands(), QStringList{"FREQ?"});
    QVERIFY(!state().recall_in_progress);
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::ModesTest)
#include "modes_test.moc"
