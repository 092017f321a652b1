// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include "asking.h"
#include "srecord.h"

namespace {

/// The records of a slot as the meter sends them.
QList<QByteArray> records(int slot, const meter::SatelliteSlot& content) {
    QByteArray block = QByteArray::fromStdString(meter::slot_block(slot, content));
    block.chop(1);
    return block.split('\r');
}

meter::SatelliteSlot sample_slot() {
    meter::SatelliteSlot slot;
    for (std::size_t i = 0; i < slot.tuning.size(); ++i)
        slot.tuning[i] = static_cast<std::uint8_t>(7 * i + 3);
    slot.name = "NOVA 7W   ";
    return slot;
}

QByteArray send(meter::Instrument& instrument, const QList<QByteArray>& lines) {
    QByteArray last;
    for (const QByteArray& line : lines)
        last = ask(instrument, line.toStdString()).mid(line.size() + 1);
    return last;
}

QByteArray name_of(meter::Instrument& instrument, int slot) {
    const auto lines = QByteArray::fromStdString(value(instrument, "ASLNAME?")).split('\r');
    return lines.at(slot).split('\t').at(1).trimmed();
}

}  // namespace

class TestSatellites : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void header_records();
    void record_round_trip();
    void bad_records_data();
    void bad_records();
    void empty_slot_block();
    void name_list();
    void names_are_set();
    void learning();
    void deleting();
    void master_copy();
    void empty_from_the_start();
    void block_is_stored();
    void block_order_does_not_matter();
    void wrong_checksum_is_refused();
    void incomplete_block_is_refused();
    void stray_records_are_refused();
    void other_slots_are_refused();
};

void TestSatellites::header_records() {
    const auto header = [](int slot) { return records(slot, {}).first(); };
    QCOMPARE(header(0), QByteArray("S00A000041534C2030303065"));
    QCOMPARE(header(1), QByteArray("S00A000041534C2030303164"));
    QCOMPARE(header(12), QByteArray("S00A000041534C2030313262"));
}

void TestSatellites::record_round_trip() {
    const meter::SRecord record{1, 0x0130, {0x00, 0xFF, 0x41}};
    const std::string line = meter::format_srecord(record);
    QCOMPARE(line, std::string("S106013000FF4188"));
    const auto read = meter::parse_srecord(line);
    QVERIFY(read);
    QCOMPARE(read->type, 1);
    QCOMPARE(read->address, 0x0130U);
    QVERIFY(read->data == record.data);
    QVERIFY(meter::parse_srecord("s106013000ff4188"));
}

void TestSatellites::bad_records_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("checksum") << QByteArray("S106013000FF4189");
    QTest::newRow("count") << QByteArray("S107013000FF4187");
    QTest::newRow("odd") << QByteArray("S106013000FF418");
    QTest::newRow("digit") << QByteArray("S106013000FG4188");
    QTest::newRow("type") << QByteArray("S206013000FF4188");
    QTest::newRow("short") << QByteArray("S1020001");
    QTest::newRow("bare") << QByteArray("S1");
}

void TestSatellites::bad_records() {
    QFETCH(QByteArray, line);
    QVERIFY(!meter::parse_srecord(line.toStdString()));
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(ask(instrument, line.toStdString()), line + "\rERROR\r");
}

void TestSatellites::empty_slot_block() {
    QCOMPARE(records(3, {}).mid(1),
             (QList<QByteArray>{"S113000000000000000000000000000000000000EC",
                                "S113001000000000000000000000000000000000DC",
                                "S113002000000000000000000000000000000000CC",
                                "S10D00302A2A2A2A2A2A2A2A2A2A1E", "S9030000FC"}));
}

void TestSatellites::name_list() {
    meter::Instrument instrument{meter::Options{}};
    const QByteArray answer = ask(instrument, "ASLNAME?");
    QVERIFY(
        answer.startsWith("ASLNAME?\r00\tAURORA 13E\r01\tBOREAL 19E\r02\tCIRRUS 9E \r"
                          "03\t**********\r"));
    QVERIFY(answer.endsWith("\r19\t**********\rOK\r"));
    QCOMPARE(answer.count('\t'), 20);
}

void TestSatellites::names_are_set() {
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(ask(instrument, "ASLNAME 03 NOVA 7W"), QByteArray("ASLNAME 03 NOVA 7W\rOK\r"));
    QCOMPARE(name_of(instrument, 3), QByteArray("NOVA 7W"));
    ask(instrument, "ASLNAME 7 TWELVE LETTERS");
    QCOMPARE(name_of(instrument, 7), QByteArray("TWELVE LET"));
}

void TestSatellites::learning() {
    meter::Instrument instrument{meter::Options{}};
    ask(instrument, "FREQ 1234.5");
    QCOMPARE(ask(instrument, "ASLLEARN 07"), QByteArray("ASLLEARN 07\rOK\r"));
    QCOMPARE(name_of(instrument, 7), QByteArray("LEARNED 07"));
    const auto& slot = instrument.state().satellites.at(7);
    unsigned kilohertz = 0;
    for (std::size_t i = 0; i < 4; ++i) kilohertz = kilohertz * 256 + slot.tuning[i];
    QCOMPARE(kilohertz, 1234500U);
    ask(instrument, "ASLLEARN 0");
    QCOMPARE(name_of(instrument, 0), QByteArray("AURORA 13E"));
}

void TestSatellites::deleting() {
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(ask(instrument, "ASLDEL 1"), QByteArray("ASLDEL 1\rOK\r"));
    QVERIFY(instrument.state().satellites.at(1).empty());
    QCOMPARE(name_of(instrument, 1), QByteArray("**********"));
    QCOMPARE(name_of(instrument, 0), QByteArray("AURORA 13E"));
}

void TestSatellites::master_copy() {
    meter::Instrument instrument{meter::Options{}};
    const QByteArray answer = ask(instrument, "MASTERCOPY 6?");
    QVERIFY(answer.startsWith("MASTERCOPY 6?\rS00A000041534C2030303065\rS1130000"));
    QVERIFY(answer.endsWith("\rS10D00302A2A2A2A2A2A2A2A2A2A1E\rS9030000FC\rOK\r"));
    QCOMPARE(answer.count("S9030000FC\r"), 20);
    QCOMPARE(answer.count("\rS00A0000"), 20);

    const QByteArray fourth = records(4, instrument.state().satellites.at(4)).join('\r');
    QVERIFY(answer.contains('\r' + fourth + '\r'));
}

void TestSatellites::empty_from_the_start() {
    meter::Options options;
    options.no_satellites = true;
    meter::Instrument instrument(options);
    QCOMPARE(ask(instrument, "ASLNAME?").count("\t**********\r"), 20);
    QCOMPARE(ask(instrument, "MASTERCOPY 6?").count("S10D00302A2A2A2A2A2A2A2A2A2A1E\r"), 20);
}

void TestSatellites::block_is_stored() {
    meter::Instrument instrument{meter::Options{}};
    for (const QByteArray& line : records(3, sample_slot()))
        QCOMPARE(ask(instrument, line.toStdString()), line + "\rOK\r");
    const auto& slot = instrument.state().satellites.at(3);
    QVERIFY(slot.tuning == sample_slot().tuning);
    QCOMPARE(slot.name, std::string("NOVA 7W   "));
    QVERIFY(ask(instrument, "MASTERCOPY 6?").contains(records(3, sample_slot()).join('\r')));
    send(instrument, records(3, {}));
    QVERIFY(instrument.state().satellites.at(3).empty());
}

void TestSatellites::block_order_does_not_matter() {
    meter::Instrument instrument{meter::Options{}};
    auto lines = records(3, sample_slot());
    lines.swapItemsAt(1, 4);
    QCOMPARE(send(instrument, lines), QByteArray("OK\r"));
    QCOMPARE(name_of(instrument, 3), QByteArray("NOVA 7W"));
}

void TestSatellites::wrong_checksum_is_refused() {
    for (int bad = 0; bad < 6; ++bad) {
        meter::Instrument instrument{meter::Options{}};
        auto lines = records(3, sample_slot());
        QByteArray& line = lines[bad];
        line.back() = line.back() == '0' ? '1' : '0';
        QVERIFY(ask(instrument, "ASLNAME?").contains("03\t**********\r"));
        QCOMPARE(send(instrument, lines), QByteArray("ERROR\r"));
        QVERIFY(instrument.state().satellites.at(3).empty());
        QCOMPARE(send(instrument, records(3, sample_slot())), QByteArray("OK\r"));
        QCOMPARE(name_of(instrument, 3), QByteArray("NOVA 7W"));
    }
}

void TestSatellites::incomplete_block_is_refused() {
    for (int missing = 1; missing < 5; ++missing) {
        meter::Instrument instrument{meter::Options{}};
        auto lines = records(3, sample_slot());
        lines.removeAt(missing);
        QCOMPARE(send(instrument, lines), QByteArray("ERROR\r"));
        QVERIFY(instrument.state().satellites.at(3).empty());
    }
}

void TestSatellites::stray_records_are_refused() {
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(send(instrument, {"S9030000FC"}), QByteArray("ERROR\r"));
    QCOMPARE(send(instrument, records(3, sample_slot()).mid(1)), QByteArray("ERROR\r"));
    auto lines = records(3, sample_slot());
    lines.insert(5, QByteArray::fromStdString(meter::format_srecord({1, 0x0039, {1, 2}})));
    QCOMPARE(send(instrument, lines), QByteArray("ERROR\r"));
    QVERIFY(instrument.state().satellites.at(3).empty());
}

void TestSatellites::other_slots_are_refused() {
    meter::Instrument instrument{meter::Options{}};
    QCOMPARE(send(instrument, records(20, sample_slot())), QByteArray("ERROR\r"));
    const std::string title = "XYZ 003";
    const std::string header = meter::format_srecord({0, 0, {title.begin(), title.end()}});
    QCOMPARE(send(instrument, {QByteArray::fromStdString(header)}), QByteArray("ERROR\r"));
}

QTEST_GUILESS_MAIN(TestSatellites)
#include "satellites_test.moc"
