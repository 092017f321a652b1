// SPDX-License-Identifier: GPL-3.0-or-later
// The search for the peak over the line to a meter.
#include <QHash>
#include <QSet>
#include <cmath>

#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link_antenna.h"
#include "meter_in_process.h"
#include "peak_search.h"
#include "peak_test.h"
#include "virtual_clock.h"

namespace m47::peak {
namespace {

/// A line to a meter that answers as told.
struct Line {
    Line() {
        link.port_connected = true;
        port.answer = [this](const QByteArray& command) {
            return FakePort::good(command, answers.value(command));
        };
    }

    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    link::Link link{port, clock, view};
    QHash<QByteArray, QByteArray> answers;
};

}  // namespace

void PeakTest::drives_over_the_line() {
    Line line;
    LinkAntenna antenna(line.link);
    const double before = line.clock.elapsed();
    QVERIFY(antenna.drive(10));
    QVERIFY2(line.clock.elapsed() - before > 10 / 15.0 + 0.4, "until it has turned");
    QVERIFY(antenna.drive(-4));
    antenna.stop();
    QCOMPARE(line.port.take_commands(),
             (QStringList{"DISEQCMOT 08 10 01", "DISEQCMOT 09 04 01", "DISEQCMOT 00"}));
}

void PeakTest::levels_over_the_line_data() {
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("measured");
    QTest::addColumn<double>("level");
    QTest::newRow("good") << QByteArray("  61.5") << true << 61.5;
    QTest::newRow("below the range") << QByteArray(" <20.0") << true << 20.0;
    QTest::newRow("above the range") << QByteArray(" >70.0") << false << 0.0;
    QTest::newRow("no number") << QByteArray(" what") << false << 0.0;
}

void PeakTest::levels_over_the_line() {
    QFETCH(QByteArray, answer);
    QFETCH(bool, measured);
    QFETCH(double, level);
    Line line;
    line.answers["LEVANL?"] = answer;
    LinkAntenna antenna(line.link);
    QCOMPARE(antenna.level().has_value(), measured);
    QCOMPARE(antenna.level().value_or(0.0), level);
    QCOMPARE(line.port.take_commands(), (QStringList{"ATTEN 6", "LEVANL?", "LEVANL?"}));
}

void PeakTest::mer_over_the_line() {
    Line line;
    line.answers["LEVANL?"] = "  61.5";
    line.answers["BERQPSK?"] = "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 1.25\rMER   : 12.3";
    LinkAntenna antenna(line.link);
    QVERIFY(std::abs(antenna.mer().value() - 12.3) < 1e-5);
    QCOMPARE(line.port.take_commands(),
             (QStringList{"ATTEN 00", "BERQPSK", "BERQPSK?", "MEASURE"}));
    // The level needs its attenuation again.
    QVERIFY(antenna.level());
    QCOMPARE(line.port.take_commands(), (QStringList{"ATTEN 6", "LEVANL?"}));
    line.answers["BERQPSK?"] = "CHBER : 3.0E-2\rPvBER : 3.0E-2\rCFO   : 0.00\rMER   : 1.0";
    QVERIFY2(!antenna.mer(), "no lock");
    line.answers["BERQPSK?"] = "CHBER : 3.0E-2";
    QVERIFY(!antenna.mer());
}

void PeakTest::the_line_is_lost() {
    Line line;
    line.answers["LEVANL?"] = "  61.5";
    LinkAntenna antenna(line.link);
    PeakSearch peak_search(antenna, {});
    peak_search.on_point = [&](const Point&, bool) { line.port.vanish_in(0); };
    QVERIFY(peak_search.run().end == SearchEnd::lost);
    QVERIFY(!line.link.port_connected);
}

void PeakTest::told_to_end_the_motor_is_stopped() {
    Line line;
    line.answers["LEVANL?"] = "  61.5";
    LinkAntenna antenna(line.link);
    PeakSearch peak_search(antenna, {});
    bool told = false;
    line.link.interrupted = [&] { return told; };
    peak_search.on_point = [&](const Point&, bool) { told = true; };
    QVERIFY_EXCEPTION_THROWN((void)peak_search.run(), m47::Interrupted);
    QCOMPARE(line.port.take_commands().last(), QString("DISEQCMOT 00"));
    QCOMPARE(line.link.undivided, 0);
}

void PeakTest::told_to_end_the_meter_measures_again() {
    Line line;
    LinkAntenna antenna(line.link);
    line.link.interrupted = [&] { return line.port.written.endsWith("BERQPSK\r"); };
    QVERIFY_EXCEPTION_THROWN((void)antenna.mer(), m47::Interrupted);
    QCOMPARE(line.port.take_commands(), (QStringList{"ATTEN 00", "BERQPSK", "MEASURE"}));
}

/// Under the fixed sky the level is the same everywhere: a search ends where it began, whatever the
/// line does to it.
void PeakTest::every_kind_of_fault() {
    QSet<QString> kinds;
    int whole = 0;
    for (quint64 seed = 1; seed <= 60; ++seed) {
        Line line;
        MeterInProcess meter(line.port, seed);
        meter.bad_in = seed % 4 == 0 ? 0 : 12;
        QByteArray last;
        meter.on_command = [&](const QByteArray& command, const QString& kind) {
            last = command;
            if (!kind.isEmpty()) kinds += kind;
        };
        LinkAntenna antenna(line.link);
        PeakSearch peak_search(antenna, {});
        try {
            const SearchEnd end = peak_search.run().end;
            QVERIFY(end == SearchEnd::lost || end == SearchEnd::nothing_better);
            whole += end == SearchEnd::nothing_better;
            QVERIFY2(line.link.port_connected || end == SearchEnd::lost, "told as it is");
        } catch (const Fault&) {
            // A doubtful answer is told as such.
        }
        if (line.link.port_connected) QCOMPARE(last, QByteArray("DISEQCMOT 00"));
    }
    QVERIFY2(kinds.size() > 10, qPrintable(QString::number(kinds.size())));
    QVERIFY2(whole >= 15, "what no fault hits, and more");
}

}  // namespace m47::peak
