// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>
#include <cmath>

#include "realtime_fixture.h"

namespace m47::realtime {
namespace {

/// What becomes of one byte on its way.
struct Spoiling {
    enum Kind { replaced, dropped, doubled } kind = replaced;
    char byte = 0;
};

/// A meter whose values scatter a little and whose answers lose one byte where the test says so.
class SpoilingMeter {
  public:
    explicit SpoilingMeter(FakePort& port) {
        port.answer = [this](const QByteArray& command) { return answer(command); };
    }

    int answer_at = -1;  ///< which answer is spoilt, counted from 0; -1: none
    int byte_at = 0;
    Spoiling spoiling;
    QList<QByteArray> answers;             ///< as they left the meter
    QMap<QByteArray, QStringList> values;  ///< sent, by question

    void begin() {
        answers.clear();
        values.clear();
    }

  private:
    QByteArray answer(const QByteArray& command) {
        if (command.isEmpty()) return {};
        const QByteArray whole = FakePort::good(command, value(command));
        const bool spoilt = answers.size() == answer_at;
        answers += whole;
        return spoilt ? spoil(whole) : whole;
    }
    QByteArray spoil(QByteArray bytes) const {
        if (spoiling.kind == Spoiling::dropped) return bytes.remove(byte_at, 1);
        if (spoiling.kind == Spoiling::doubled) return bytes.insert(byte_at, bytes[byte_at]);
        bytes[byte_at] = spoiling.byte;
        return bytes;
    }
    QByteArray number(const QByteArray& what, double middle) {
        step_ = (step_ * 5 + 3) % 16;
        const QByteArray text = QByteArray::number(middle + (step_ - 8) * 0.02, 'f', 1);
        values[what] += QString::fromLatin1(text);
        return text;
    }
    QByteArray value(const QByteArray& command) {
        if (command == "ATTEN?") return "6";
        if (command == "LEVANL?") return "  " + number("level", 61.9);
        if (command == "LEVDCP?") return "   " + number("power", 57.6);
        if (command != "BERQPSK?") return {};
        values["ber"] += "2.0E-4";
        values["pvber"] += "<1.0E-8";
        values["cfo"] += "0.10";
        return "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 0.10\rMER   : " + number("mer", 12.3);
    }

    int step_ = 0;
};

/// How the faults of a sweep ended.
struct Count {
    int faults = 0;
    int right = 0;       ///< a row with the meter's own values only
    int absent = 0;      ///< a row with some value missing, the others the meter's own
    int refused = 0;     ///< no row
    int lost = 0;        ///< the link told as lost, no row
    int wrong = 0;       ///< a value that the meter has not sent
    int passed = 0;      ///< of these with PASS
    int far = 0;         ///< of these by more than a reading scatters
    QStringList rows{};  ///< these
};

}  // namespace

/// Every fault of one byte in the answers of a measurement, and what becomes of the row.
class SpoiltByteTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();
    void each_fault_is_counted_data();
    void each_fault_is_counted();
    void a_spoilt_echo_gives_no_row();
    void asking_twice_repeats_what_surprises();
    void a_crossed_limit_of_the_presentation_is_asked_twice_data();
    void a_crossed_limit_of_the_presentation_is_asked_twice();
    void two_answers_must_agree_data();
    void two_answers_must_agree();

  private:
    void measure();
    void measure_well();
    void judge(Count& count);
    QList<Spoiling> spoilings(char byte) const;

    std::unique_ptr<RealtimeFixture> f_;
    std::unique_ptr<SpoilingMeter> meter_;
};

void SpoiltByteTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
    meter_ = std::make_unique<SpoilingMeter>(f_->port);
    f_->clock.spans_hold = true;
    RealtimePanel& panel = f_->panel();
    panel.fsat = "1000.0";
    panel.chbws = "36";
    panel.meas_statea[kLevel] = true;
    for (const int measure : {kDcpLevel, kChber, kPvBer, kCfo, kMer})
        panel.meas_stated[static_cast<std::size_t>(measure)] = true;
    panel.alarm_statea[0] = panel.alarm_stated[0] = true;
    panel.alarm_stated[2] = panel.alarm_stated[3] = true;
    panel.lev_mina = panel.lev_mind = "45";
    panel.lev_maxa = panel.lev_maxd = "75";
    panel.mer_mind = "8";
    panel.mer_maxd = "20";
}

void SpoiltByteTest::cleanup() {
    meter_.reset();
    f_.reset();
}

void SpoiltByteTest::measure() {
    f_->clock.sleep(60);
    f_->rules.page.clear();
    f_->port.written.clear();
    f_->port.pauses.clear();
    f_->view.progress_values = {0};
    f_->link.port_connected = true;
    meter_->begin();
    f_->rules.measure_once();
}

/// As often as a new reading is compared with older ones: each fault stands alone.
void SpoiltByteTest::measure_well() {
    meter_->answer_at = -1;
    for (int times = 0; times < 8; ++times) measure();
}

/// What can become of `byte`. In ./soak each of its bits is turned, too, and more takes its place.
QList<Spoiling> SpoiltByteTest::spoilings(char byte) const {
    QList<Spoiling> all{{Spoiling::dropped, 0}, {Spoiling::doubled, 0}};
    QByteArray others("0379 .-#<E\r\xff");
    if (qEnvironmentVariableIsSet("M47_ALL_BYTES")) {
        others += "124568+>K?" + QByteArray(1, '\0');
        for (int bit = 0; bit < 8; ++bit) others += static_cast<char>(byte ^ (1 << bit));
    }
    for (qsizetype at = 0; at < others.size(); ++at)
        if (others[at] != byte && others.indexOf(others[at]) == at)
            all += Spoiling{Spoiling::replaced, others[at]};
    return all;
}

void SpoiltByteTest::judge(Count& count) {
    ++count.faults;
    const measurement::PageModel& page = f_->rules.page;
    if (!f_->link.port_connected) {
        QCOMPARE(page.measurements(), 0);
        ++count.lost;
        return;
    }
    if (page.measurements() == 0) {
        QVERIFY(!f_->rules.cycle.doubt().isEmpty());
        ++count.refused;
        return;
    }
    const QStringList cells = page.cells(0);
    bool wrong = false;
    bool far = false;
    bool absent = false;
    const auto look = [&](int column, const char* what, double scatter) {
        const QStringList sent = meter_->values.value(what);
        const QString text = cells[column].trimmed();
        if (text.isEmpty()) {
            absent = absent || !sent.isEmpty();
        } else if (!sent.contains(text)) {
            wrong = true;
            const double off =
                std::fabs(text.toDouble() - QString(sent.value(0)).remove('<').toDouble());
            far = far || off > scatter;
        }
    };
    look(4, f_->panel().satdigmea_visible ? "power" : "level", 1);
    look(5, "ber", 5e-4);
    look(6, "pvber", 1e-7);
    look(7, "cfo", 0.5);
    look(8, "mer", 1);
    count.wrong += wrong ? 1 : 0;
    count.passed += wrong && cells[10] == "PASS" ? 1 : 0;
    count.far += far ? 1 : 0;
    if (far) count.rows += cells.join(u'|');
    count.absent += !wrong && absent ? 1 : 0;
    count.right += !wrong && !absent ? 1 : 0;
}

void SpoiltByteTest::each_fault_is_counted_data() {
    QTest::addColumn<bool>("digital");
    QTest::addColumn<bool>("twice");
    QTest::newRow("analog") << false << false;
    QTest::newRow("analog, asking twice") << false << true;
    QTest::newRow("digital") << true << false;
    QTest::newRow("digital, asking twice") << true << true;
}

void SpoiltByteTest::each_fault_is_counted() {
    QFETCH(bool, digital);
    QFETCH(bool, twice);
    f_->panel().satdigmea_visible = digital;
    f_->state().meas_mode = digital ? kDigitalMode : kAnalogMode;
    f_->program.corrected.ask_twice = twice;
    measure_well();
    QCOMPARE(f_->rules.page.cells(0)[10], QString("PASS"));
    const QList<QByteArray> answers = meter_->answers;
    Count count;
    for (int place = 0; place < answers.size(); ++place)
        for (int byte = 0; byte < answers[place].size(); ++byte)
            for (const Spoiling& spoiling : spoilings(answers[place][byte])) {
                meter_->answer_at = place;
                meter_->byte_at = byte;
                meter_->spoiling = spoiling;
                const int wrong = count.wrong;
                measure();
                judge(count);
                if (count.wrong > wrong) measure_well();
            }
    qInfo(
        "%d faults: %d rows right, %d with a value missing, %d rows refused, %d links lost, "
        "%d values wrong (%d by more than they scatter, %d with PASS)",
        count.faults, count.right, count.absent, count.refused, count.lost, count.wrong, count.far,
        count.passed);
    QVERIFY(count.faults > 500);
    // A digit in the place of another, and with asking twice none that shows.
    QVERIFY2(twice ? count.far == 0 : count.wrong * 20 < count.faults,
             qPrintable(count.rows.join(u'\n')));
}

void SpoiltByteTest::a_spoilt_echo_gives_no_row() {
    QString told;
    f_->rules.cycle.on_doubt = [&](const QString& command) { told = command; };
    meter_->answer_at = 3;
    meter_->byte_at = 2;
    meter_->spoiling = {Spoiling::replaced, '#'};
    measure();
    QCOMPARE(f_->rules.page.measurements(), 0);
    QCOMPARE(told, QString("LEVANL?"));
    QVERIFY(f_->link.port_connected);
    meter_->answer_at = -1;
    measure();
    QCOMPARE(f_->rules.page.measurements(), 1);
}

/// Until two readings are known, where one lies off them, and where a limit is crossed.
void SpoiltByteTest::asking_twice_repeats_what_surprises() {
    const auto asked = [this](double level) {
        f_->port.answer = [level](const QByteArray& command) {
            const QByteArray value = "  " + QByteArray::number(level, 'f', 1);
            return FakePort::good(command, command == "LEVANL?" ? value : QByteArray());
        };
        f_->port.written.clear();
        const double begin = f_->clock.elapsed();
        f_->rules.measure_once();
        // One question more, and no settling time.
        [&] { QVERIFY(f_->clock.elapsed() - begin < 1.5); }();
        return f_->commands().count("LEVANL?");
    };
    QCOMPARE(asked(61.9), 1);
    f_->program.corrected.ask_twice = true;
    QCOMPARE(asked(61.9), 2);
    QCOMPARE(asked(61.8), 2);
    QCOMPARE(asked(61.9), 1);
    QCOMPARE(asked(62.2), 1);
    QCOMPARE(asked(66.0), 2);
    QCOMPARE(asked(62.6), 1);
    QCOMPARE(asked(80.0), 2);
    QCOMPARE(asked(80.0), 2);
    QCOMPARE(f_->rules.page.cells(8)[10], QString("FAIL"));
    // Another program is known by itself.
    f_->panel().fsat = "1100.0";
    QCOMPARE(asked(62.0), 2);
}

void SpoiltByteTest::a_crossed_limit_of_the_presentation_is_asked_twice_data() {
    QTest::addColumn<bool>("digital");
    QTest::newRow("digital") << true;
    QTest::newRow("analog") << false;
}

void SpoiltByteTest::a_crossed_limit_of_the_presentation_is_asked_twice() {
    QFETCH(bool, digital);
    RealtimePanel& panel = f_->panel();
    panel.satdigmea_visible = digital;
    panel.meas_stated.fill(false);
    panel.meas_statea.fill(false);
    panel.meas_stated[kCnDigital] = panel.meas_statea[kCnAnalog] = true;
    panel.alarm_stated = {false, true, false, false};
    panel.alarm_statea = {false, true};
    panel.cn_mind = panel.cn_mina = "5";
    panel.cn_maxd = panel.cn_maxa = "15";
    f_->program.corrected.ask_twice = f_->program.corrected.complete = true;
    const auto asked = [this] {
        f_->port.answer = [](const QByteArray& command) {
            return FakePort::good(command, command.endsWith('?') ? "   10.0" : QByteArray());
        };
        f_->port.written.clear();
        f_->rules.measure_once();
        return f_->commands().filter("LEVCN").size();
    };
    QCOMPARE(asked(), 2);
    QCOMPARE(asked(), 2);
    QCOMPARE(asked(), 1);
    // Limits of the other presentation are not those of this value.
    (digital ? panel.cn_maxa : panel.cn_maxd) = "9";
    QCOMPARE(asked(), 1);
    (digital ? panel.cn_maxd : panel.cn_maxa) = "9";
    QCOMPARE(asked(), 2);
}

void SpoiltByteTest::two_answers_must_agree_data() {
    QTest::addColumn<QByteArrayList>("answers");
    QTest::addColumn<QString>("level");
    QTest::newRow("the second") << QByteArrayList{"  60.0", "  60.1"} << "60.1";
    QTest::newRow("the third with the first")
        << QByteArrayList{"  60.0", "  50.0", "  60.2"} << "60.2";
    QTest::newRow("the last with the second")
        << QByteArrayList{"  60.0", "  50.0", "  40.0", "  50.1"} << "50.1";
    QTest::newRow("range marks count") << QByteArrayList{"  60.0", " <60.0", "  60.0"} << "60.0";
    QTest::newRow("no number is none") << QByteArrayList{"  60.0", "  6#.0", "  60.0"} << "60.0";
    QTest::newRow("never") << QByteArrayList{"  60.0", "  50.0", "  40.0", "  30.0"} << "";
}

void SpoiltByteTest::two_answers_must_agree() {
    QFETCH(QByteArrayList, answers);
    QFETCH(QString, level);
    f_->program.corrected.ask_twice = true;
    f_->panel().alarm_statea[0] = false;
    qsizetype asked = 0;
    f_->port.answer = [&](const QByteArray& command) {
        if (command != "LEVANL?") return FakePort::good(command);
        return FakePort::good(command, answers.value(asked++));
    };
    f_->rules.measure_once();
    QCOMPARE(asked, answers.size());
    QCOMPARE(f_->rules.page.measurements(), level.isEmpty() ? 0 : 1);
    if (!level.isEmpty()) QCOMPARE(f_->rules.page.cells(0)[4], level);
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::SpoiltByteTest)
#include "spoilt_byte_test.moc"
