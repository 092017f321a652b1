// SPDX-License-Identifier: GPL-3.0-or-later
// Which satellite this is, asked over the line to a meter.
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

#include "best_carrier.h"
#include "candidate_choice.h"
#include "candidate_programs.h"
#include "commands.h"
#include "fake_link_view.h"
#include "identification_run.h"
#include "meter_in_process.h"
#include "satellite_tables.h"

namespace m47::identify {
namespace {

/// The candidates of made-up satellites.
class Tables : public SatelliteTables {
  public:
    std::vector<Candidate> candidates() const {
        return candidates_of({.folder = folder()}, nullptr);
    }

    /// Of two of them, which is quicker.
    std::vector<Candidate> few() const {
        return candidates_of({.folder = folder(), .part = ArcPart{10, 20}}, nullptr);
    }
};

/// A meter on a line, and everything between it and an identification.
struct Line {
    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};

    Line() { link.port_connected = true; }
};

QString said(const IdentificationEnd& end, const IdentificationRun& run, int language = kEnglish) {
    Texts texts;
    texts.language = language;
    return end_text(end, run.candidates(), texts);
}

const QStringList kNoted{"FREQ?", "LOCOSC?", "ATTEN?", "UNIT?", "LNB?", "LNVOLT?", "TONE22K?"};
const QStringList kPrepared{"MEASURE", "LOCOSC 00", "LNVOLT 13", "LNB 01", "TONE22K 00", "ATTEN 6"};
/// Of the simulated meter as it is switched on.
const QStringList kSetBack{"LOCOSC 00", "FREQ 1000.0", "ATTEN 06",
                           "LNVOLT 13", "LNB 00",      "TONE22K 00"};
const QString kRateBack = "SYMBRATEQPSK 27500";

}  // namespace

class IdentifyLineTest : public QObject {
    Q_OBJECT

    Tables tables_;

    static void check_bytes(const QStringList& sent) {
        QCOMPARE(sent.mid(0, 13), kNoted + kPrepared);
        QVERIFY(sent[13].startsWith("FREQ 0") && sent[14] == "LEVANL?");
        QCOMPARE(sent.mid(sent.size() - 8),
                 QStringList("UNIT?") + kSetBack + QStringList(kRateBack));
        // What the LNB has already is not sent again, nor is the supply switched on twice.
        QCOMPARE(sent.count("LNB 01"), 1);
        QCOMPARE(sent.count("LNVOLT?"), 1);
        const qsizetype other = sent.indexOf("LNVOLT 18");
        QVERIFY(sent[other - 1] == "LEVANL?" && sent[other + 1].startsWith("FREQ "));
        const qsizetype lock = sent.indexOf("BERQPSK");
        QVERIFY(lock > 0);
        QVERIFY(sent[lock - 3].startsWith("FREQ "));
        QCOMPARE(sent.mid(lock - 2, 2), QStringList({kRateBack, "ATTEN 00"}));
        QCOMPARE(sent.mid(lock + 1, 2), QStringList({"BERQPSK?", "MEASURE"}));
    }

  private Q_SLOTS:
    void a_satellite_is_named_over_the_line() {
        Line line;
        const MeterInProcess meter(line.port, 3, {tables_.folder(), 20.4, 3});
        const QByteArray before = meter.kept();
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        int questions = 0;
        run.on_question = [&](const Asked& asked) {
            ++questions;
            QVERIFY(!asked.answer.db && !asked.answer.locked);
        };
        int answers = 0;
        run.on_answer = [&](const Asked&) { ++answers; };
        const IdentificationEnd end = run.run();
        QVERIFY(end.verdict.has_value());
        QCOMPARE(end.verdict->kind, Verdict::Kind::candidate);
        QCOMPARE(run.candidates()[end.verdict->candidate].name, QString("20.0E"));
        QVERIFY(end.verdict->locks >= 1);
        QCOMPARE(questions, answers);
        QCOMPARE(end.answers, answers);
        QCOMPARE(static_cast<int>(run.asked().size()), answers);
        QVERIFY(run.standings().front().candidate == end.verdict->candidate);
        QCOMPARE(run.standings().size(), run.candidates().size() + 2);
        QCOMPARE(meter.kept(), before);
        QVERIFY2(run.seconds() < 60, qPrintable(QString::number(run.seconds())));
        QVERIFY(!line.link.activity.working());
        QVERIFY2(said(end, run).startsWith("This is 20.0E (Beta), certainty 9"),
                 qPrintable(said(end, run)));
        check_bytes(line.port.take_commands());
    }

    /// Of two satellites that are a degree apart a small dish receives both, a large one one alone.
    /// One is listed and not there: that speaks against the other where both are expected.
    void the_dish_decides_what_is_expected() {
        std::vector<Candidate> close = tables_.few();
        for (Candidate& one : close) {
            if (one.name != "10.0E") continue;
            one.positions = {21.0};
            for (Carrier& carrier : one.carriers) carrier.east = 21.0;
        }
        std::vector<double> chances;
        for (const double dish_cm : {80.0, 400.0}) {
            Line line;
            const MeterInProcess meter(line.port, 3, {tables_.folder(), 20.4, 3});
            IdentificationRun run(line.link, Lnb::universal(), close, dish_cm);
            const IdentificationEnd end = run.run();
            const QString verdict = said(end, run);
            if (dish_cm > 80)
                QVERIFY2(verdict.startsWith("This is 20.0E (Beta), certainty 9"),
                         qPrintable(verdict));
            for (const Standing& one : run.standings())
                if (one.kind == Verdict::Kind::candidate &&
                    run.candidates()[one.candidate].name == "20.0E")
                    chances.push_back(one.chance);
        }
        QCOMPARE(chances.size(), 2U);
        QVERIFY2(chances[1] > chances[0] + 0.01,
                 qPrintable(QStringLiteral("%1, %2").arg(chances[0]).arg(chances[1])));
    }

    void what_no_candidate_is_and_an_empty_sky() {
        Line line;
        const MeterInProcess meter(line.port, 5, {tables_.folder(), 20.2, 5});
        std::vector<Candidate> others = tables_.few();
        std::erase_if(others, [](const Candidate& one) { return one.name == "20.0E"; });
        IdentificationRun run(line.link, Lnb::universal(), others);
        const IdentificationEnd end = run.run();
        QCOMPARE(end.verdict->kind, Verdict::Kind::none_of_these);
        QVERIFY(said(end, run).startsWith("None of these satellites, certainty "));
        QVERIFY(said(end, run).contains("the most probable of them would be "));
        const MeterInProcess blank(line.port, 5, {tables_.folder(), 100, 5});
        IdentificationRun blank_run(line.link, Lnb::universal(), tables_.few());
        const IdentificationEnd nothing = blank_run.run();
        QCOMPARE(nothing.verdict->kind, Verdict::Kind::no_satellite);
        QVERIFY(said(nothing, blank_run).startsWith("No satellite: nothing but noise"));
        QVERIFY(said(nothing, blank_run, kItalian).startsWith("Nessun satellite"));
    }

    void stopped_it_sets_back_at_once_data() {
        QTest::addColumn<int>("at");
        QTest::addColumn<bool>("program_ends");
        QTest::newRow("at once") << 1 << false;
        QTest::newRow("between two levels") << 30 << false;
        QTest::newRow("with the program") << 30 << true;
    }
    void stopped_it_sets_back_at_once() {
        QFETCH(int, at);
        QFETCH(bool, program_ends);
        Line line;
        const MeterInProcess meter(line.port, 3, {tables_.folder(), 20.4, 3});
        const QByteArray before = meter.kept();
        bool told = false;
        line.link.interrupted = [&] { return told; };
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        int answers = 0;
        run.on_answer = [&](const Asked&) {
            if (++answers == at) program_ends ? void(told = true) : line.link.activity.stop();
        };
        const IdentificationEnd end = run.run();
        QVERIFY(end.stopped && !end.verdict && end.not_set_back.empty());
        QCOMPARE(answers, at);
        QCOMPARE(meter.kept(), before);
        const QStringList sent = line.port.take_commands();
        QCOMPARE(sent.mid(sent.size() - kSetBack.size()), kSetBack);
        // Behind the last answer nothing is asked.
        QVERIFY(sent[sent.size() - kSetBack.size() - 1] == "LEVANL?");
        QCOMPARE(said(end, run), QString("Stopped at %1 answers, before it was clear which "
                                         "satellite this is.")
                                     .arg(at));
    }

    void stopped_in_a_lock_it_leaves_the_mode() {
        Line line;
        MeterInProcess meter(line.port, 3, {tables_.folder(), 20.4, 3});
        bool told = false;
        line.link.interrupted = [&] { return told; };
        meter.on_command = [&](const QByteArray& command, const QString&) {
            told = told || command == "BERQPSK";
        };
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        const double begin = line.clock.elapsed();
        const IdentificationEnd end = run.run();
        QVERIFY(end.stopped && end.not_set_back.empty());
        const QStringList sent = line.port.take_commands();
        QCOMPARE(sent.mid(sent.size() - 9),
                 QStringList({"BERQPSK", "MEASURE"}) + kSetBack + QStringList(kRateBack));
        QVERIFY(line.clock.elapsed() > begin);
    }

    void a_lost_link_is_told_with_what_is_not_set_back() {
        Line line;
        const MeterInProcess meter(line.port, 3, {tables_.folder(), 20.4, 3});
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        int answers = 0;
        run.on_answer = [&](const Asked&) {
            if (++answers == 30) line.port.vanish_in(0);
        };
        const IdentificationEnd end = run.run();
        QVERIFY(end.lost && !end.verdict);
        QCOMPARE(answers, 30);
        QCOMPARE(said(end, run),
                 QString("The link to the meter was lost at 30 answers, which stay, before it was "
                         "clear which satellite this is. Not set back: local oscillator, tuned "
                         "frequency, attenuator, LNB supply, 22 kHz tone."));
        // Nobody is asked where nobody answers.
        IdentificationRun again(line.link, Lnb::universal(), tables_.few());
        QCOMPARE(said(again.run(), again), QString("Nothing was asked: no meter answers."));
    }

    /// Levels in two units name nobody, however early the unit was changed.
    void a_unit_changed_at_the_meter_names_nobody_data() {
        QTest::addColumn<int>("at");
        QTest::newRow("in the first look") << 2;
        QTest::newRow("among the last") << 30;
    }
    void a_unit_changed_at_the_meter_names_nobody() {
        QFETCH(int, at);
        Line line;
        const MeterInProcess meter(line.port, 3, {tables_.folder(), 20.4, 3});
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        int answers = 0;
        run.on_answer = [&](const Asked&) {
            if (++answers != at) return;
            line.port.answer("UNIT 02");  // by a key of the meter: the line hears nothing of it
            line.port.hush();
        };
        const IdentificationEnd end = run.run();
        QVERIFY(answers > at);
        QVERIFY(end.unit_changed && !end.verdict && end.not_set_back.empty());
        QCOMPARE(said(end, run),
                 QString("The unit was changed at the meter meanwhile, so its levels cannot be "
                         "compared: no satellite is named. Start again."));
        QVERIFY(said(end, run, kItalian).contains("nessun satellite viene nominato"));
        // The unit that somebody chose there stays.
        QVERIFY(!line.port.take_commands().filter("UNIT 0").size());
        IdentificationRun again(line.link, Lnb::universal(), tables_.few());
        const IdentificationEnd second = again.run();
        QVERIFY(second.verdict && !second.unit_changed);
        QCOMPARE(again.candidates()[second.verdict->candidate].name, QString("20.0E"));
    }

    /// A level of nobody knows which state of the LNB is none.
    void a_feed_that_is_not_taken_has_no_level() {
        Line line;
        QSet<QByteArray> refused{"LNVOLT 18"};
        line.port.answer = [&](const QByteArray& command) {
            if (refused.contains(command)) return FakePort::good(command, "Invalid Parameter(s)");
            const QByteArray value = command == "LEVANL?" ? "  44.0" : "";
            return FakePort::good(command, value);
        };
        LinkSky sky(line.link, Lnb::universal());
        QVERIFY(sky.ask({Question::Kind::level, 0, 1200}).db.has_value());
        line.port.take_commands();
        QVERIFY(!sky.ask({Question::Kind::level, 1, 1200}).db);
        QCOMPARE(line.port.take_commands(), QStringList("LNVOLT 18"));
        refused.clear();
        QCOMPARE(sky.ask({Question::Kind::level, 1, 1200}).db, std::optional(44.0));
        QCOMPARE(line.port.take_commands(),
                 QStringList({"LNVOLT 18", "LNB 01", "FREQ 1200.0", "LEVANL?"}));
        const double before = line.clock.elapsed();
        QVERIFY(sky.ask({Question::Kind::level, 3, 1200}).db.has_value());
        QVERIFY2(line.clock.elapsed() - before < 0.4, "another tone is there at once");
    }

    void an_answer_is_what_the_meter_says_data() {
        QTest::addColumn<QByteArray>("level");
        QTest::addColumn<bool>("is_one");
        QTest::addColumn<bool>("below");
        QTest::newRow("good") << QByteArray("  57.9") << true << false;
        QTest::newRow("below the range") << QByteArray(" <20.0") << true << true;
        QTest::newRow("above the range") << QByteArray(" >120.0") << false << false;
        QTest::newRow("spoilt") << QByteArray("  5x.9") << false << false;
    }
    void an_answer_is_what_the_meter_says() {
        QFETCH(QByteArray, level);
        Line line;
        line.port.answer = [&](const QByteArray& command) {
            return FakePort::good(command, command == "LEVANL?" ? level : QByteArray());
        };
        LinkSky sky(line.link, Lnb::universal());
        const Answer answer = sky.ask({Question::Kind::level, 0, 1200});
        QTEST(answer.db.has_value(), "is_one");
        QTEST(answer.below_range, "below");
        if (answer.db) QCOMPARE(QByteArray::number(*answer.db), level.mid(2).replace(".0", ""));
    }

    void a_lock_tells_its_offset() {
        Line line;
        QByteArray quality;
        line.port.answer = [&](const QByteArray& command) {
            return FakePort::good(command, command == "BERQPSK?" ? quality : QByteArray());
        };
        LinkSky sky(line.link, Lnb::universal());
        const Question lock{Question::Kind::lock, 0, 1200.3, 27.5};
        quality = "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : -1.25\rMER   : 12.3";
        const Answer locked = sky.ask(lock);
        QCOMPARE(locked.locked, std::optional(true));
        QCOMPARE(locked.offset, std::optional(-1.25));
        QCOMPARE(locked.mer, std::optional(12.3));
        QVERIFY(line.port.take_commands().contains("FREQ 1200.3"));
        quality = "CHBER : 3.0E-2\rPvBER : 3.0E-2\rCFO   : 0.00\rMER   : 1.0";
        const Answer none = sky.ask(lock);
        QCOMPARE(none.locked, std::optional(false));
        QVERIFY(!none.offset && !none.mer);
        quality = "CHBER : 3.0E-2";
        QVERIFY(!sky.ask(lock).locked);
        // The level behind a lock has its attenuation again.
        line.port.take_commands();
        sky.ask({Question::Kind::level, 0, 1200});
        QCOMPARE(line.port.take_commands().first(), QString("ATTEN 6"));
    }

    /// Under faults of every kind: it ends, says how in one sentence, and names nobody else; the
    /// meter is as it was wherever that is not said.
    void every_kind_of_fault() {
        QSet<QString> kinds;
        QSet<QString> sentences;
        int clear = 0;
        for (quint64 seed = 1; seed <= 32; ++seed) {
            Line line;
            MeterInProcess meter(line.port, seed, {tables_.folder(), 20.2, 3});
            const QByteArray before = meter.kept();
            meter.bad_in = seed % 8 == 0 ? 600 : 12;
            meter.on_command = [&](const QByteArray&, const QString& kind) {
                if (!kind.isEmpty()) kinds += kind;
            };
            IdentificationRun run(line.link, Lnb::universal(), tables_.few());
            const IdentificationEnd end = run.run();
            clear += end.verdict.has_value();
            if (end.verdict && end.verdict->kind == Verdict::Kind::candidate)
                QCOMPARE(run.candidates()[end.verdict->candidate].name, QString("20.0E"));
            QCOMPARE(end.lost, !line.link.port_connected);
            if (end.not_set_back.empty()) QCOMPARE(meter.kept(), before);
            sentences += said(end, run).left(12);
        }
        QVERIFY2(kinds.size() > 8, qPrintable(QString::number(kinds.size())));
        QVERIFY2(clear >= 3, qPrintable(QString::number(clear)));
        QVERIFY2(sentences.size() >= 2, qPrintable(QStringList(sentences.values()).join('\n')));
    }

    void silence_is_not_asked_for_ever() {
        Line line;
        line.port.answer = [](const QByteArray& command) {
            return FakePort::good(command, command == "LEVANL?" ? "  5x.9" : QByteArray());
        };
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        const IdentificationEnd end = run.run();
        QVERIFY(!end.verdict && !end.lost && !end.stopped);
        QCOMPARE(run.asked().size(), std::size_t{5});
        QVERIFY(said(end, run).startsWith("The meter gave no sure answer any more: 0 answers"));
    }

    void a_part_of_the_arc_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("east") << "10E:30E" << QStringList({"10.0E", "20.0E", "30.0E"});
        QTest::newRow("the other way") << "30E:10e" << QStringList({"10.0E", "20.0E", "30.0E"});
        QTest::newRow("over 0") << "5W:10E" << QStringList({"5.0W", "10.0E"});
        QTest::newRow("over 180") << "170E:5W" << QStringList({"5.0W"});
        QTest::newRow("nobody") << "21E:29.5E" << QStringList();
    }
    void a_part_of_the_arc() {
        QFETCH(QString, text);
        const auto part = arc_part_of(text);
        QVERIFY(part.has_value());
        if (text == "170E:5W") QVERIFY(part->holds(-5) && !part->holds(-6) && part->holds(100));
        QStringList found;
        if (text != "170E:5W")
            for (const Candidate& one :
                 candidates_of({.folder = tables_.folder(), .part = part}, nullptr))
                found += one.name;
        else
            found += "5.0W";
        QTEST(found, "names");
        for (const char* wrong : {"", "10E", "10:30", "10E:30E:40E", "190E:10E", "10.25E:20E", "x"})
            QVERIFY2(!arc_part_of(wrong), wrong);
    }

    /// What the bars show in the end is what the sentence says.
    void the_standings_are_those_of_the_verdict() {
        Line line;
        const MeterInProcess meter(line.port, 3, {tables_.folder(), 40.4, 3});
        IdentificationRun run(line.link, Lnb::universal(), tables_.few());
        const IdentificationEnd end = run.run();
        QVERIFY(end.verdict);
        const std::vector<Standing> standings = run.standings();
        QVERIFY(standings.front().kind == end.verdict->kind);
        QCOMPARE(standings.front().chance, end.verdict->certainty);
        double sum = 0;
        for (const Standing& one : standings) sum += one.chance;
        QVERIFY2(std::abs(sum - 1) < 1e-6, qPrintable(QString::number(sum)));
    }

    void plans_are_candidates() {
        programme::ProgramRecord program;
        program.frequenza = "11778";
        program.sat_ad = true;
        program.qpsk_symbolrate = "27500";
        program.lnb_volt = 1;
        program.K22 = 1;
        PlanPrograms plan{"ROOF", {program}, {"10600", "", "", ""}};
        program.loc_osc0 = 2;  // no such oscillator
        plan.programs.push_back(program);
        program.loc_osc = true;  // tuned directly, horizontal, low band
        program.frequenza = "1450.5";
        program.lnb_volt = 2;
        program.K22 = 0;
        plan.programs.push_back(program);
        program.sat_ad = false;  // analog
        program.frequenza = "1500.5";
        plan.programs.push_back(program);
        const auto found = candidates_of_plans({plan, {"EMPTY", {}, {}}}, Lnb::universal());
        QCOMPARE(found.size(), std::size_t{1});
        QCOMPARE(candidate_text(found[0]), QString("ROOF"));
        QVERIFY(found[0].is_plan);
        const std::vector<Carrier>& carriers = found[0].carriers;
        QCOMPARE(carriers.size(), std::size_t{2});
        QCOMPARE(carriers[0].state, 2);
        QCOMPARE(carriers[0].if_mhz, 1178.0);
        QCOMPARE(carriers[0].sky_mhz, 11778.0);
        QCOMPARE(carriers[0].polarisation, 'V');
        QCOMPARE(carriers[0].rate, 27.5);
        QCOMPARE(carriers[1].state, 1);
        QCOMPARE(carriers[1].if_mhz, 1450.5);
        QCOMPARE(carriers[1].polarisation, 'H');
        // An LNB of one oscillator knows no tone.
        QCOMPARE(candidates_of_plans({plan}, Lnb::single(10600))[0].carriers[0].state, 0);
    }

    void plans_are_read_from_the_database() {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("plans"));
        db::DatabaseError error{};
        QVERIFY(db::Database::create(path, error));
        const auto database = db::Database::open(path, error);
        QVERIFY(candidates_of({.plans = true}, database.get()).empty());
        programme::ProgramRecord program = programme::read_program(database->programmi());
        program.frequenza = "11778";
        program.sat_ad = true;
        program.qpsk_symbolrate = "27500";
        program.lnb_volt = 2;
        program.K22 = 1;
        database->programmi().edit();
        programme::write_program(database->programmi(), program);
        database->programmi().update();
        database->configurazione().edit();
        programme::write_oscillator(database->configurazione(), 0, "10600");
        database->configurazione().update();
        const auto found = candidates_of({.plans = true}, database.get());
        QCOMPARE(found.size(), std::size_t{1});
        QCOMPARE(found[0].name, QString("PLAN 1"));
        QCOMPARE(found[0].carriers.size(), std::size_t{1});
        QCOMPARE(found[0].carriers[0].state, 3);
        QCOMPARE(found[0].carriers[0].if_mhz, 1178.0);
    }

    void a_transponder_is_a_program_where_it_is_received_best() {
        // 11.8 GHz comes down in both bands, a circular one at both voltages of a linear LNB.
        Candidate candidate{.name = "20.0E"};
        for (const Place& place : Lnb::universal().places(11800, 'H'))
            candidate.carriers.push_back(
                {place.state, place.if_mhz, 27.5, true, 11800, 'H', 0, 20.0});
        for (const Place& place : Lnb::universal().places(11000, 'L'))
            candidate.carriers.push_back(
                {place.state, place.if_mhz, 22.0, false, 11000, 'L', 3, 20.0});
        candidate.carriers.push_back({0, 1500, 60.0, true, 11250, 'V', 0, 20.0});
        QCOMPARE(candidate.carriers.size(), std::size_t{5});
        const auto programs = candidate_programs(candidate, Lnb::universal(), 0);
        QCOMPARE(programs.size(), std::size_t{3});
        QCOMPARE(programs[0].record.frequenza, QString("11000"));
        QVERIFY(programs[0].beyond_qpsk && programs[0].comes());
        QCOMPARE(programs[1].problem, plans::ImportProblem::rate_out_of_range);
        const plans::ImportCandidate& upper = programs[2];
        QCOMPARE(upper.oscillator, QString("10600"));
        QCOMPARE(upper.record.K22, 1);
        QCOMPARE(upper.record.lnb_volt, 2);
        QCOMPARE(upper.record.loc_osc0, 1);
        QCOMPARE(upper.record.qpsk_symbolrate, QString("27500"));
        QCOMPARE(upper.polarisation, QString("H"));
        QVERIFY(upper.record.sat_ad && !upper.record.loc_osc && !upper.beyond_qpsk);
        QCOMPARE(upper.line, 3);
        const auto c_band = candidate_programs(
            {.name = "C", .carriers = {{1, 1350, 10, true, 3800, 'H'}}}, Lnb::single(5150), 0);
        QCOMPARE(c_band.front().oscillator, QString("5150"));
        QCOMPARE(c_band.front().record.frequenza, QString("3800"));
    }

    void a_dish_is_turned_best_at_what_locked() {
        std::vector<Asked> asked(5);
        QVERIFY(!best_carrier(asked));
        asked[0].answer = {.db = 50};
        asked[1].answer = {.db = 70, .below_range = true};
        asked[2].answer = {.db = 60};
        QCOMPARE(best_carrier(asked)->answer.db, std::optional(60.0));
        asked[3].answer = {.locked = true, .mer = 9.0};
        asked[4].answer = {.locked = true, .mer = 12.0};
        QCOMPARE(best_carrier(asked)->answer.mer, std::optional(12.0));
        asked[4].answer = {.locked = false};
        QCOMPARE(best_carrier(asked)->answer.mer, std::optional(9.0));
    }

    void without_candidates_it_says_what_helps() {
        const Texts texts;
        CandidateChoice choice{.folder = "/nowhere"};
        QVERIFY(candidates_of(choice, nullptr).empty());
        QVERIFY(why_none(choice, texts).contains("/nowhere"));
        QVERIFY(why_none(choice, texts).contains("dtv-scan-tables"));
        choice.part = ArcPart{10, 20};
        QVERIFY(why_none(choice, texts).contains("this part of the arc"));
        choice.plans = true;
        QVERIFY(candidates_of(choice, nullptr).empty());
        QVERIFY(why_none(choice, texts).startsWith("No plan has"));
    }
};

}  // namespace m47::identify

QTEST_GUILESS_MAIN(m47::identify::IdentifyLineTest)
#include "identify_line_test.moc"
