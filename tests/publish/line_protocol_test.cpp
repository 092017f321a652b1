// SPDX-License-Identifier: GPL-3.0-or-later
// How a row stands on the wire, and what the options of publishing take.
#include "line_protocol.h"

#include <QFile>
#include <QTest>
#include <limits>

#include "publish_address.h"
#include "publish_test.h"

namespace m47::publish {
namespace {

using measurement::Quantity;
using measurement::RangeMark;

const Station kRoof{QStringLiteral("roof"), QStringLiteral("ttyS0")};

measurement::Measurement sample() {
    measurement::Measurement measured;
    measured.program = {QStringLiteral("ASTRA"), QStringLiteral("007")};
    measured.mode = measurement::MeasureMode::digital;
    measured.frequency = 11778.5F;
    measured.oscillator = 10600.0F;
    measured.unit = measurement::unit_of_index(kDbuv);
    measured.reading(Quantity::level) = {58.3F, RangeMark::none};
    measured.reading(Quantity::ber) = {1.0E-8F, RangeMark::below};
    measured.reading(Quantity::mer) = {20.5F, RangeMark::above};
    measured.verdict = measurement::Verdict::pass;
    return measured;
}

}  // namespace

void PublishTest::a_measurement_as_a_line() {
    QCOMPARE(measurement_line(kRoof, sample(), 1795393025999),
             QByteArray("m47,site=roof,meter=ttyS0,plan=ASTRA,program=007,mode=digital "
                        "level=58.3,ber=1e-08,ber_mark=-1i,mer=20.5,mer_mark=1i,readings=3i,"
                        "frequency=11778.5,oscillator=10600,pass=1i 1795393025999000000\n"));
    measurement::Measurement failed = sample();
    failed.verdict = measurement::Verdict::fail;
    QVERIFY(measurement_line(kRoof, failed, 1).contains(",pass=0i 1000000\n"));
}

void PublishTest::what_was_not_measured_is_left_out() {
    measurement::Measurement nothing;
    QCOMPARE(measurement_line({}, nothing, 5), QByteArray("m47 readings=0i 5000000\n"));
    measurement::Measurement odd = sample();
    odd.reading(Quantity::mer).value = std::numeric_limits<float>::infinity();
    odd.frequency = std::numeric_limits<float>::quiet_NaN();
    const QByteArray line = measurement_line(kRoof, odd, 5);
    QVERIFY2(!line.contains("inf") && !line.contains("nan"), line);
}

void PublishTest::levels_are_in_dbuv_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<float>("level");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("dBuV") << int(kDbuv) << 58.3F << QByteArray(" level=58.3,");
    QTest::newRow("dBmV") << int(kDbmv) << -1.7F << QByteArray(" level=58.3,");
    QTest::newRow("dBm") << int(kDbm) << -50.7F << QByteArray(" level=58.3,");
    QTest::newRow("not known") << -1 << 58.3F << QByteArray(" readings=1i");
}

void PublishTest::levels_are_in_dbuv() {
    QFETCH(int, unit);
    QFETCH(float, level);
    QFETCH(QByteArray, field);
    measurement::Measurement measured;
    if (unit >= 0) measured.unit = measurement::unit_of_index(unit);
    measured.reading(Quantity::level) = {level, RangeMark::none};
    const QByteArray line = measurement_line({}, measured, 5);
    QVERIFY2(line.contains(field), line);
}

void PublishTest::tags_are_escaped() {
    const Station odd{QStringLiteral("Roof, east=1\nx"), QStringLiteral("a\\")};
    const QByteArray line = measurement_line(odd, {}, 5);
    QCOMPARE(line, QByteArray("m47,site=Roof\\,\\ east\\=1\\ x,meter=a/ readings=0i 5000000\n"));
}

void PublishTest::health_as_a_line() {
    const Health health{.link_up = true,
                        .passes = 3,
                        .seconds_a_pass = 12.5,
                        .retries = 1,
                        .reconnects = 2,
                        .rows_waiting = 4,
                        .oldest_waiting = 7.25,
                        .rows_dropped = 5,
                        .rows_set_aside = 6};
    QCOMPARE(health_line(kRoof, health, 5),
             QByteArray("m47_probe,site=roof,meter=ttyS0 link_up=1i,passes=3i,seconds_a_pass=12.5,"
                        "retries=1i,reconnects=2i,rows_waiting=4i,oldest_waiting=7.25,"
                        "rows_dropped=5i,rows_set_aside=6i 5000000\n"));
}

void PublishTest::addresses_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("taken");
    QTest::newRow("host alone") << "http://h:8428"
                                << "http://h:8428/write";
    QTest::newRow("a slash") << "https://h/"
                             << "https://h/write";
    QTest::newRow("InfluxDB 2") << "https://h/api/v2/write?org=o&bucket=b"
                                << "https://h/api/v2/write?org=o&bucket=b";
    QTest::newRow("a cluster") << "http://h:8480/insert/0/influx/write"
                               << "http://h:8480/insert/0/influx/write";
    QTest::newRow("address of six") << "http://[::1]:1/write"
                                    << "http://[::1]:1/write";
    for (const char* wrong : {"", "h:8428", "ftp://h/", "http://", "file:///etc/passwd",
                              "http://h/#x", "http://h:99999/", "http://a b/"})
        QTest::addRow("wrong: %s", wrong) << wrong << "";
}

void PublishTest::addresses() {
    QFETCH(QString, given);
    QFETCH(QString, taken);
    QString error;
    QCOMPARE(publish_address(given, error).toString(), taken);
    QCOMPARE(error.isEmpty(), !taken.isEmpty());
}

void PublishTest::secrets_are_refused_in_an_address() {
    for (const char* given : {"http://me:secret@h/", "http://secret@h/", "http://h/write?p=secret",
                              "http://h/write?db=x&TOKEN=secret", "http://h/w?u=me&p=secret",
                              "http://h/w?access_token=secret", "http://h/w?api_key=secret"}) {
        QString error;
        QVERIFY(publish_address(given, error).isEmpty());
        QVERIFY2(error.contains("--publish-token-file"), qPrintable(error));
        QVERIFY2(!error.contains("secret"), qPrintable(error));
    }
}

/// The lines have nanoseconds, whatever an address says.
void PublishTest::another_precision_is_refused_in_an_address() {
    QString error;
    for (const char* given : {"http://h/write?precision=ms", "http://h/write?db=x&precision=s",
                              "http://h/write?precision="}) {
        QVERIFY(publish_address(given, error).isEmpty());
        QVERIFY2(error.contains("nanoseconds"), qPrintable(error));
    }
    QVERIFY(!publish_address("http://h/write?db=x&precision=ns", error).isEmpty());
    QVERIFY(publish_address("http://h:0/write", error).isEmpty());
}

void PublishTest::secrets() {
    QCOMPARE(authorization("abc=="), QByteArray("Bearer abc=="));
    QCOMPARE(authorization("me:word"), QByteArray("Basic bWU6d29yZA=="));
    QCOMPARE(authorization({}), QByteArray());
    const auto read = [this](const QByteArray& content, QString& error) {
        QFile file(path("token"));
        if (!file.open(QIODevice::WriteOnly)) return QByteArray("no file");
        file.write(content);
        file.close();
        return read_secret(file.fileName(), error);
    };
    QString error;
    QCOMPARE(read("token\nrest", error), QByteArray("token"));
    QCOMPARE(read(" token \r\n", error), QByteArray("token"));
    QVERIFY(error.isEmpty());
    for (const char* wrong : {"", "\n", "to ken", "to\tken", "t\xC3\xB6"}) {
        QString fault;
        QCOMPARE(read(wrong, fault), QByteArray());
        QVERIFY(!fault.isEmpty());
    }
    QVERIFY(read_secret(path("none"), error).isEmpty() && !error.isEmpty());
}

void PublishTest::limits_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("plain") << "2000000" << qint64{2000000};
    QTest::newRow("k") << "2000k" << qint64{2048000};
    QTest::newRow("M") << "1M" << qint64{1048576};
    QTest::newRow("G") << "1024G" << qint64{1024} * 1024 * 1024 * 1024;
    for (const char* wrong :
         {"", "0", "1023k", "1025G", "-1M", "1.5G", "1T", "M", "1MB", "999999999999999G"})
        QTest::addRow("wrong: %s", wrong) << wrong << qint64{0};
}

void PublishTest::limits() {
    QFETCH(QString, given);
    QFETCH(qint64, bytes);
    QCOMPARE(outbox_limit(given), bytes);
}

}  // namespace m47::publish
