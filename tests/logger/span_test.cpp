// SPDX-License-Identifier: GPL-3.0-or-later
// The span reply, whole, cut and spoilt, and the commands that fetch it.
#include "span.h"

#include <QTest>
#include <cmath>
#include <random>

#include "answer_before.h"
#include "column_headers.h"
#include "fake_link_view.h"
#include "fake_port.h"

namespace m47::logger {
namespace {

QStringList shown(const SpanPoints& points) {
    QStringList rows;
    for (std::size_t row = 1; row <= points.size(); ++row) rows += span_point_text(points, row);
    return rows;
}

/// Lines "1001 <TAB> 60.1" and on, as many as wanted.
QString lines(int count, const QString& line_end = QStringLiteral("\r\n")) {
    QString text;
    for (int k = 1; k <= count; ++k)
        text += QStringLiteral("%1\t%2").arg(1000 + k).arg(60 + k / 10.0) + line_end;
    return text;
}

}  // namespace

class SpanTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void label_and_value_less_30() {
        const SpanPoints points = parse_span(
            QStringLiteral("920.0\t75.4\r\n932.4\t30\r\n944.8\t12.25\r\nname of it\t 1E2\r\nOK"));
        QCOMPARE(shown(points),
                 QStringList({"920.0 45.4", "932.4 0", "944.8 -17.75", "name of it 70"}));
        QCOMPARE(points[3].label, QStringLiteral("name of it"));
        QCOMPARE(points[3].value, 70.0);
    }

    void a_reply_that_begins_with_ok_charts_nothing() {
        QVERIFY(parse_span(QStringLiteral("OK")).empty());
        QVERIFY(parse_span(QStringLiteral("OK\r\n920.0\t75.4\r\n")).empty());
        QVERIFY(parse_span(QString()).empty());
    }

    void an_ok_at_a_line_s_beginning_ends_the_points() {
        const QString reply = QStringLiteral("1\t40\r\nOK\r\n2\t50\r\n");
        QCOMPARE(shown(parse_span(reply)), QStringList({"1 10"}));
        QCOMPARE(shown(parse_span(QStringLiteral("NOK\t40\r\n"))), QStringList({"NOK 10"}));
    }

    void at_most_a_hundred_rows() {
        QCOMPARE(parse_span(lines(99)).size(), std::size_t{99});
        QCOMPARE(parse_span(lines(100)).size(), std::size_t{100});
        const SpanPoints points = parse_span(lines(101));
        QCOMPARE(points.size(), std::size_t{100});
        QCOMPARE(points.back().label, QStringLiteral("1100"));
    }

    void lines_may_end_in_cr_alone() {
        QCOMPARE(shown(parse_span(lines(3, QStringLiteral("\r")))), shown(parse_span(lines(3))));
    }

    void what_is_no_point_is_passed_over() {
        QCOMPARE(shown(parse_span(QStringLiteral("no tab\r\n\r\n5\t31\r\n6\t?\r\n7\t32\t9\r\n"
                                                 "8 33\r\n\t34\r\n"))),
                 QStringList({"5 1", "6 -30", "7 2", " 4"}));
    }

    void every_cut_keeps_the_whole_lines_before_it() {
        const QString reply = lines(100) + QStringLiteral("OK");
        const QStringList all = shown(parse_span(reply));
        QCOMPARE(all.size(), 100);
        for (qsizetype length = 0; length <= reply.size(); ++length) {
            const QString cut = reply.first(length);
            QCOMPARE(shown(parse_span(cut)), all.first(cut.count(u'\r')));
        }
    }

    void every_beginning_may_be_missing() {
        const QString reply = lines(100) + QStringLiteral("OK");
        for (qsizetype length = 0; length <= reply.size(); ++length) {
            const QString rest = reply.sliced(length);
            const SpanPoints points = parse_span(rest);
            QVERIFY(points.size() <= std::size_t(rest.count(u'\r')));
            QVERIFY(points.size() + 1 >= std::size_t(rest.count(u'\r')));
        }
    }

    void noise_does_no_harm() {
        std::mt19937 random(47);
        const auto below = [&](qsizetype limit) {
            return static_cast<qsizetype>(random() % static_cast<unsigned>(limit));
        };
        const QString good = lines(100) + QStringLiteral("OK");
        const QString spice = QStringLiteral("\r\n\t\t\rOK.-+eE0 9");
        for (int round = 0; round < 3000; ++round) {
            QString reply = good.first(below(good.size()));
            for (qsizetype hits = below(40); hits > 0 && !reply.isEmpty(); --hits) {
                const bool any = random() % 2 == 0;
                reply[below(reply.size())] =
                    any ? QChar(ushort(random() % 256)) : spice[below(spice.size())];
            }
            const SpanPoints points = parse_span(reply);
            QVERIFY(points.size() <= kSpanRows);
            QVERIFY(points.size() <= std::size_t(reply.count(u'\r')));
            for (const SpanPoint& point : points) {
                QVERIFY(std::isfinite(point.value));
                QVERIFY(!point.label.contains(u'\t') && !point.label.contains(u'\r'));
                QVERIFY(reply.contains(point.label + u'\t'));
            }
        }
    }

    void the_point_read_out() {
        const SpanPoints points = parse_span(QStringLiteral("920.0\t75.4\r\n932.4\t30.05\r\n"));
        QCOMPARE(span_point_text(points, 1), QStringLiteral("920.0 45.4"));
        QCOMPARE(span_point_text(points, 2), QStringLiteral("932.4 0.05"));
        QCOMPARE(span_point_text(points, 0), QString());
        QCOMPARE(span_point_text(points, 3), QString());
    }

    void the_commands_of_a_read_out() {
        VirtualClock clock;
        FakePort port(clock);
        FakeLinkView view;
        link::Link link(port, clock, view);
        port.answer = [](const QByteArray& command) {
            return command + "\r" + (command == "spanout" ? "1\t75\r\n2\t76\r\n" : "") + "OK\r";
        };
        leave_answer(link, port, "9\t99\r\n");
        link.port_connected = false;
        QVERIFY(read_span(link).empty());
        QCOMPARE(port.written, QByteArray());
        link.port_connected = true;
        QCOMPARE(shown(read_span(link)), QStringList({"1 45", "2 46"}));
        QCOMPARE(port.written, QByteArray("outputmode 1\rspanout\r"));
        port.answer = [](const QByteArray& command) { return command + "\rERROR\r"; };
        QVERIFY(read_span(link).empty());
        QVERIFY(!link.port_connected);
    }

    void the_column_headers_data() {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("analog");
        QTest::addColumn<QString>("digital");
        QTest::newRow("no reply") << QString() << "APR MHz CH  dB   VA VA2 CN\r\n"
                                  << "DPR MHz CH  ()   BER    CN\r\n";
        QTest::newRow("19 characters")
            << QStringLiteral("0123456789012345678") << "APR MHz CH  dB   VA VA2 CN\r\n"
            << "DPR MHz CH  ()   BER    CN\r\n";
        QTest::newRow("20 characters")
            << QStringLiteral("0123456789012345678u") << "APR MHz CH  dBu   VA VA2 CN\r\n"
            << "DPR MHz CH  ()   BER    CN\r\n";
        QTest::newRow("long") << QStringLiteral("0123456789012345678uV_dBuV and more")
                              << "APR MHz CH  dBuV   VA VA2 CN\r\n"
                              << "DPR MHz CH  (dBuV)   BER    CN\r\n";
    }
    void the_column_headers() {
        QFETCH(QString, reply);
        QTEST(column_headers(reply).analog, "analog");
        QTEST(column_headers(reply).digital, "digital");
    }
};

}  // namespace m47::logger

QTEST_APPLESS_MAIN(m47::logger::SpanTest)
#include "span_test.moc"
