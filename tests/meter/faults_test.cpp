// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>
#include <algorithm>

#include "asking.h"

namespace {

meter::Options with_faults(std::initializer_list<const char*> texts) {
    meter::Options options;
    for (const char* text : texts) options.faults.push_back(meter::parse_fault(text).value());
    return options;
}

meter::Delivery hit(const char* fault, const std::string& command = "ATTEN?") {
    meter::Instrument instrument(with_faults({fault}));
    return instrument.handle(command);
}

const std::string kGood = "ATTEN?\r6\rOK\r";

bool is_noise(char c) {
    return (static_cast<unsigned char>(c) & 0x80) != 0;
}

}  // namespace

class TestFaults : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void every_kind_is_listed();
    void fault_texts_data();
    void fault_texts();
    void error_answers();
    void silence();
    void garbage();
    void partial();
    void late();
    void asleep();
    void asleep_for_ever();
    void drop();
    void unplug();
    void echo_faults();
    void noise();
    void spoilt_record();
    void trickle_and_endless();
    void obeyed_or_not_data();
    void obeyed_or_not();
    void counts_and_order();
    void after();
    void only_on();
    void faults_do_not_disturb_the_measures();
};

void TestFaults::every_kind_is_listed() {
    QStringList names;
    for (const meter::FaultKind& kind : meter::fault_kinds()) {
        names << QString::fromUtf8(kind.name.data(), static_cast<qsizetype>(kind.name.size()));
        QVERIFY(!kind.help.empty());
    }
    for (const char* name :
         {"error", "silence", "garbage", "partial", "late", "asleep", "drop", "unplug", "noecho",
          "wrongecho", "noise", "badrecord", "trickle", "endless"})
        QCOMPARE(names.count(name), 1);
}

void TestFaults::fault_texts_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("count");  // 0: for ever, -1: refused
    QTest::newRow("for ever") << QByteArray("error") << 0;
    QTest::newRow("once") << QByteArray("error:1") << 1;
    QTest::newRow("many") << QByteArray("silence:250") << 250;
    QTest::newRow("unknown") << QByteArray("errors") << -1;
    QTest::newRow("zero") << QByteArray("error:0") << -1;
    QTest::newRow("no number") << QByteArray("error:") << -1;
    QTest::newRow("text") << QByteArray("error:x") << -1;
    QTest::newRow("empty") << QByteArray("") << -1;
}

void TestFaults::fault_texts() {
    QFETCH(QByteArray, text);
    QFETCH(int, count);
    const auto fault = meter::parse_fault(text.toStdString());
    QCOMPARE(fault.has_value(), count >= 0);
    if (fault) {
        QCOMPARE(fault->remaining.value_or(0), count);
        QCOMPARE(fault->remaining.has_value(), count > 0);
    }
}

void TestFaults::error_answers() {
    QCOMPARE(hit("error").bytes, std::string("ATTEN?\rERROR\r"));
    QCOMPARE(hit("commanderror").bytes, std::string("ATTEN?\rCOMMAND ERROR\r"));
}

void TestFaults::silence() {
    const auto delivery = hit("silence");
    QVERIFY(delivery.bytes.empty());
    QVERIFY(delivery.ending == meter::Ending::none);
}

void TestFaults::garbage() {
    const std::string bytes = hit("garbage").bytes;
    QVERIFY(bytes.size() >= 16 && bytes.size() <= 32);
    QVERIFY(std::all_of(bytes.begin(), bytes.end(), is_noise));
}

void TestFaults::partial() {
    QCOMPARE(hit("partial").bytes, std::string("ATTEN?\r6\r"));
    QCOMPARE(hit("partial", "ATTEN 3").bytes, std::string("ATTEN 3\rO"));
}

void TestFaults::late() {
    auto options = with_faults({"late:1"});
    options.late_seconds = 4.5;
    meter::Instrument instrument(options);
    const auto delivery = instrument.handle("ATTEN?");
    QCOMPARE(delivery.bytes, kGood);
    QCOMPARE(delivery.wait_seconds, 4.5);
    QCOMPARE(instrument.handle("ATTEN?").wait_seconds, 0.0);
}

void TestFaults::asleep() {
    meter::Instrument instrument(with_faults({"asleep:1"}));
    for (int i = 0; i < 3; ++i) {
        QVERIFY(instrument.handle("ATTEN?").bytes.empty());
        QVERIFY(instrument.asleep());
    }
    QVERIFY(instrument.handle("").bytes.empty());
    QVERIFY(!instrument.asleep());
    QCOMPARE(instrument.handle("ATTEN?").bytes, kGood);
    QVERIFY(instrument.handle("").bytes.empty());
}

void TestFaults::asleep_for_ever() {
    meter::Instrument instrument(with_faults({"asleep"}));
    for (int i = 0; i < 3; ++i) {
        QVERIFY(instrument.handle("ATTEN?").bytes.empty());
        instrument.handle("");
    }
}

void TestFaults::drop() {
    const auto delivery = hit("drop");
    QCOMPARE(delivery.bytes, std::string("ATTEN?\r6\r"));
    QVERIFY(delivery.ending == meter::Ending::close_line);
}

void TestFaults::unplug() {
    const auto delivery = hit("unplug");
    QCOMPARE(delivery.bytes, kGood);
    QVERIFY(delivery.ending == meter::Ending::unplug);
}

void TestFaults::echo_faults() {
    QCOMPARE(hit("noecho").bytes, std::string("6\rOK\r"));
    const std::string bytes = hit("wrongecho").bytes;
    QCOMPARE(bytes.size(), kGood.size());
    QCOMPARE(bytes.substr(6), kGood.substr(6));
    int different = 0;
    for (std::size_t i = 0; i < 6; ++i) different += bytes[i] != kGood[i] ? 1 : 0;
    QCOMPARE(different, 1);
}

void TestFaults::noise() {
    meter::Instrument instrument(with_faults({"noise"}));
    for (int i = 0; i < 50; ++i) {
        std::string bytes = instrument.handle("ATTEN?").bytes;
        QVERIFY(bytes.ends_with("OK\r"));
        QCOMPARE(std::count_if(bytes.begin(), bytes.end(), is_noise), std::ptrdiff_t{3});
        std::erase_if(bytes, is_noise);
        QCOMPARE(bytes, kGood);
    }
}

void TestFaults::spoilt_record() {
    QCOMPARE(hit("badrecord").bytes, kGood);
    meter::Instrument instrument(with_faults({"badrecord:20"}));
    std::string whole;
    std::vector<std::string> spoilt;
    for (int i = 0; i < 20; ++i) spoilt.push_back(instrument.handle("MASTERCOPY 6?").bytes);
    whole = instrument.handle("MASTERCOPY 6?").bytes;
    for (const std::string& bytes : spoilt) {
        QCOMPARE(bytes.size(), whole.size());
        int differing = 0;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            if (bytes[at] == whole[at]) continue;
            ++differing;
            const auto line = whole.rfind('\r', at) + 1;
            QCOMPARE(whole.substr(line, 2), std::string("S1"));
            QVERIFY(at >= line + 2);
        }
        QCOMPARE(differing, 1);
    }
    QVERIFY(spoilt[0] != spoilt[1]);
}

void TestFaults::trickle_and_endless() {
    const auto slow = hit("trickle");
    QCOMPARE(slow.bytes, std::string("ATTEN?\r"));
    QVERIFY(slow.ending == meter::Ending::trickle);
    const auto fast = hit("endless");
    QCOMPARE(fast.bytes, std::string("ATTEN?\r"));
    QVERIFY(fast.ending == meter::Ending::endless);
    QVERIFY(meter::filler_bytes().find("OK") == std::string_view::npos);
    QVERIFY(meter::filler_bytes().find('\r') == std::string_view::npos);
}

void TestFaults::obeyed_or_not_data() {
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<bool>("obeyed");
    for (const char* kind :
         {"partial", "late", "drop", "unplug", "noecho", "wrongecho", "noise", "badrecord"})
        QTest::newRow(kind) << QByteArray(kind) << true;
    for (const char* kind :
         {"error", "commanderror", "silence", "garbage", "asleep", "trickle", "endless"})
        QTest::newRow(kind) << QByteArray(kind) << false;
}

void TestFaults::obeyed_or_not() {
    QFETCH(QByteArray, fault);
    QFETCH(bool, obeyed);
    meter::Instrument instrument(with_faults({fault.constData()}));
    instrument.handle("ATTEN 2");
    QCOMPARE(instrument.state().settings.attenuator, obeyed ? 2 : 6);
}

void TestFaults::counts_and_order() {
    meter::Instrument instrument(with_faults({"error:2", "silence:1"}));
    QCOMPARE(instrument.handle("ATTEN?").bytes, std::string("ATTEN?\rERROR\r"));
    QCOMPARE(instrument.handle("ATTEN?").bytes, std::string("ATTEN?\rERROR\r"));
    QVERIFY(instrument.handle("ATTEN?").bytes.empty());
    QCOMPARE(instrument.handle("ATTEN?").bytes, kGood);
}

void TestFaults::after() {
    auto options = with_faults({"error"});
    options.fault_after = 2;
    meter::Instrument instrument(options);
    QCOMPARE(instrument.handle("ATTEN?").bytes, kGood);
    instrument.handle("");
    QCOMPARE(instrument.handle("ATTEN?").bytes, kGood);
    QCOMPARE(instrument.handle("ATTEN?").bytes, std::string("ATTEN?\rERROR\r"));
}

void TestFaults::only_on() {
    auto options = with_faults({"error:1"});
    options.fault_on = "UNIT";
    options.fault_after = 1;
    meter::Instrument instrument(options);
    QCOMPARE(instrument.handle("ATTEN?").bytes, kGood);
    QCOMPARE(instrument.handle("UNIT 00").bytes, std::string("UNIT 00\rOK\r"));
    QCOMPARE(instrument.handle("ATTEN?").bytes, kGood);
    QCOMPARE(instrument.handle("UNIT?").bytes, std::string("UNIT?\rERROR\r"));
    QCOMPARE(instrument.handle("UNIT?").bytes, std::string("UNIT?\r00\rOK\r"));
}

void TestFaults::faults_do_not_disturb_the_measures() {
    meter::Instrument faulty(with_faults({"garbage:1", "noise:1"}));
    meter::Instrument sound{meter::Options{}};
    faulty.handle("ATTEN?");
    faulty.handle("ATTEN?");
    QCOMPARE(ask(faulty, "LEVANL?"), ask(sound, "LEVANL?"));
}

QTEST_GUILESS_MAIN(TestFaults)
#include "faults_test.moc"
