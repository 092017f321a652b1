// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include "plan_run.h"
#include "realtime_fixture.h"

namespace m47::acquisition {
namespace {

/// What the meter sends when a lone CR wakes it.
const QByteArrayList kWakeAnswers{"", "\r", "\rCOMMAND ERROR\r"};

/// Which answers come late.
enum class Late { once, every_such, all };

/// A meter whose level is that of the frequency it is tuned to and whose answers come late where
/// the test says so: each for itself, or one behind the other as from a meter that does one thing
/// at a time.
class LateMeter {
  public:
    LateMeter(FakePort& port, VirtualClock& clock) : port_(port), clock_(clock) {
        port_.answer = [this](const QByteArray& command) {
            answer(command);
            return QByteArray();
        };
    }

    Late late = Late::once;
    double delay = 0;
    int place = -1;  ///< which command, counted from 0 in the order of their arrival
    bool one_by_one = false;
    QByteArray wake_answer;
    QByteArrayList commands;

    void begin() {
        commands.clear();
        busy_until_ = 0;
        such_.clear();
    }
    static double level(double mhz) { return 30 + std::fmod(mhz * 7, 50); }

  private:
    void answer(const QByteArray& command) {
        if (command.isEmpty()) return send(wake_answer, 0);
        const bool chosen = commands.size() == place;
        commands += command;
        if (chosen) such_ = command;
        const bool is_late =
            late == Late::all || chosen || (late == Late::every_such && command == such_);
        send(FakePort::good(command, value(command)), is_late ? delay : 0);
    }
    void send(const QByteArray& bytes, double seconds) {
        constexpr double kUsual = 0.01;
        const double begin =
            one_by_one ? std::max(busy_until_, clock_.elapsed()) : clock_.elapsed();
        busy_until_ = begin + kUsual + seconds;
        port_.feed(bytes, busy_until_ - clock_.elapsed());
    }
    QByteArray value(const QByteArray& command) {
        if (command.startsWith("FREQ ")) mhz_ = command.mid(5).toDouble();
        const QByteArray level_text = QByteArray::number(level(mhz_), 'f', 1);
        if (command == "LEVANL?") return "  " + level_text;
        if (command == "LEVDCP?") return "   " + level_text;
        if (command == "BERQPSK?")
            return "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 0.10\rMER   : " + level_text;
        return command.contains('?') ? QByteArray("6") : QByteArray();
    }

    FakePort& port_;
    VirtualClock& clock_;
    double mhz_ = 0;
    double busy_until_ = 0;
    QByteArray such_;
};

/// How the answers of one run come.
struct Case {
    Late late = Late::once;
    double delay = 0;
    int place = 0;
    bool one_by_one = false;
    QByteArray wake_answer;
    bool reconnect = false;

    QString text() const {
        return QStringLiteral("answer %1 late by %2 s (%3), wake answer \"%4\"%5%6")
            .arg(place)
            .arg(delay)
            .arg(static_cast<int>(late))
            .arg(QString::fromLatin1(wake_answer).replace(u'\r', u'~'))
            .arg(one_by_one ? QStringLiteral(", one by one") : QString())
            .arg(reconnect ? QStringLiteral(", reconnecting") : QString());
    }
};

}  // namespace

/// Answers that come when the program has asked again: a row holds its own program's values or is
/// not there.
class LateAnswerTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();
    void each_row_is_its_own_programs_or_missing();
    void a_late_answer_shifts_no_row();
    void what_is_repeated_costs_its_own_time_only();

  private:
    PlanRun::End run(const Case& chosen);
    QString wrong_row() const;
    void sweep(const QList<double>& delays, int place_step);
    void try_form(Late late, double delay, int place, int form);

    std::unique_ptr<realtime::RealtimeFixture> f_;
    std::unique_ptr<LateMeter> meter_;
    int runs_ = 0;
    int rows_ = 0;
    int missing_ = 0;
};

constexpr int kPrograms = 4;
constexpr int kPasses = 2;

void LateAnswerTest::init() {
    f_ = std::make_unique<realtime::RealtimeFixture>();
    meter_ = std::make_unique<LateMeter>(f_->port, f_->clock);
    f_->clock.spans_hold = true;
    realtime::PlanWalk& walk = f_->rules.plans;
    realtime::RealtimeFixture::add_row(f_->database().gruppo(), {{"nome", "P"}});
    realtime::RealtimeFixture::add_row(f_->database().configurazione(),
                                       {{"nome", "P"}, {"loc_osc1", 9750}});
    for (int number = 0; number < kPrograms; ++number)
        realtime::RealtimeFixture::add_row(
            f_->database().programmi(),
            {{"nome", "P"},
             {"pg_num", QString::number(number).rightJustified(3, u'0')},
             {"frequenza", 1000 + 11 * number},
             {"loc_osc", true},
             {"loc_osc0", 0},
             {"sat_ad", number % 2},
             {"qpsk_symbolrate", "27500"},
             {"lnb_volt", 1},
             {"K22", 0},
             {"monitor_state", 1}});
    QVERIFY(walk.choose_plan("P"));
    f_->panel().meas_statea[realtime::kLevel] = true;
    f_->panel().meas_stated[realtime::kDcpLevel] = f_->panel().meas_stated[realtime::kMer] = true;
}

void LateAnswerTest::cleanup() {
    meter_.reset();
    f_.reset();
}

PlanRun::End LateAnswerTest::run(const Case& chosen) {
    // What earlier runs left on its way has come.
    f_->clock.sleep(120);
    f_->rules.page.clear();
    f_->link.port_connected = true;
    meter_->begin();
    meter_->late = chosen.late;
    meter_->delay = chosen.delay;
    meter_->place = chosen.place;
    meter_->one_by_one = chosen.one_by_one;
    meter_->wake_answer = chosen.wake_answer;
    PlanRun plan(f_->link, f_->rules, {.passes = kPasses, .reconnect = chosen.reconnect});
    int tries = 0;
    plan.told_to_stop = [&] { return tries > 3; };
    plan.connect = [&] {
        ++tries;
        f_->link.port_connected = true;
        return f_->link.send("ATTEN?") && f_->link.send("VER?");
    };
    const PlanRun::End end = plan.run();
    f_->port.written.clear();
    f_->port.pauses.clear();
    f_->view.progress_values = {0};
    return end;
}

/// The first row whose level is not that of its frequency, or that stands twice; empty for none.
QString LateAnswerTest::wrong_row() const {
    const measurement::PageModel& page = f_->rules.page;
    for (int row = 0; row < page.measurements(); ++row) {
        const QStringList cells = page.cells(row);
        const double level = LateMeter::level(cells[2].toDouble());
        const QString wanted = QString::number(level, 'f', 1);
        // No value at all is none of another program's.
        if (!cells[4].trimmed().isEmpty() && cells[4] != wanted) return cells.join(u'|');
        const QString mer = cells[8].trimmed();
        if (!mer.isEmpty() && mer != wanted) return cells.join(u'|');
    }
    return page.measurements() <= kPasses * kPrograms ? QString() : QStringLiteral("too many rows");
}

void LateAnswerTest::sweep(const QList<double>& delays, int place_step) {
    QCOMPARE(run({}), PlanRun::End::done);
    const int places = static_cast<int>(meter_->commands.size()) / kPasses;
    QCOMPARE(f_->rules.page.measurements(), kPasses * kPrograms);
    // In what form a delay meets a place changes from one to the next.
    const int forms_each = place_step == 1 ? 3 : 1;
    int turn = 0;
    for (const double delay : delays)
        for (const Late late : {Late::once, Late::every_such, Late::all})
            for (int place = turn++ % place_step; place < places; place += place_step) {
                if (late == Late::all && place >= place_step) break;
                for (int n = 0; n < forms_each; ++n)
                    try_form(late, delay, place, (turn + place) % 4 + 4 * n + (turn / 4) % 3 * 4);
                if (QTest::currentTestFailed()) return;
            }
}

/// `form` counts how the answers follow each other, what waking is answered and what a lost link
/// leads to; from 12 on they begin anew.
void LateAnswerTest::try_form(Late late, double delay, int place, int form) {
    const Case chosen{late,          delay, place, form % 2 == 1, kWakeAnswers[form / 2 % 3],
                      form % 12 >= 6};
    run(chosen);
    QVERIFY2(wrong_row().isEmpty(), qPrintable(chosen.text() + ": " + wrong_row()));
    const int there = f_->rules.page.measurements();
    ++runs_;
    rows_ += there;
    missing_ += kPasses * kPrograms - there;
    // What is answered before it is asked again is measured.
    if (delay < 1.9 && late == Late::once) QCOMPARE(there, kPasses * kPrograms);
}

/// In ./soak every delay from 0 to 15 s in steps of 50 ms at every command of a pass; here a
/// sample, with the delays around which a command is repeated.
void LateAnswerTest::each_row_is_its_own_programs_or_missing() {
    const bool all = qEnvironmentVariableIsSet("M47_ALL_DELAYS");
    QList<double> delays;
    const auto add = [&delays](double from, double to, double step) {
        for (double delay = from; delay < to; delay += step) delays += delay;
    };
    if (all) {
        add(0, 15.01, 0.05);
    } else {
        add(0, 2, 1);
        add(2, 3.1, 0.1);
        add(3.1, 15.1, 1.7);
    }
    sweep(delays, all ? 1 : 5);
    qInfo("%d runs: %d rows, each its own program's; %d missing", runs_, rows_, missing_);
}

/// The case that gave three programs the levels of the one before.
void LateAnswerTest::a_late_answer_shifts_no_row() {
    for (const bool one_by_one : {false, true})
        for (const double delay : {2.05, 2.3, 2.9})
            for (const Late late : {Late::once, Late::every_such, Late::all}) {
                const Case chosen{late, delay, 3, one_by_one, {}, false};
                QCOMPARE(run(chosen), PlanRun::End::done);
                QVERIFY2(wrong_row().isEmpty(), qPrintable(chosen.text() + ": " + wrong_row()));
                QCOMPARE(f_->rules.page.measurements(), kPasses * kPrograms);
            }
}

/// A pass in which one question is repeated takes as long as the others, but for the two seconds
/// before it and the wait for its second answer.
void LateAnswerTest::what_is_repeated_costs_its_own_time_only() {
    const auto lasts = [this](const Case& chosen) {
        const double begin = f_->clock.elapsed();
        run(chosen);
        return f_->clock.elapsed() - begin;
    };
    const double usual = lasts({});
    const double late = lasts({Late::once, 2.3, 3, false, {}, false});
    QVERIFY2(late - usual < 5, qPrintable(QString::number(late - usual)));
}

}  // namespace m47::acquisition

QTEST_GUILESS_MAIN(m47::acquisition::LateAnswerTest)
#include "late_answer_test.moc"
