// SPDX-License-Identifier: GPL-3.0-or-later
#include "numbers.h"

#include <QLocale>
#include <QTest>
#include <limits>

namespace m47::link {

class NumbersTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }
    void the_meter_writes_a_point_data();
    void the_meter_writes_a_point();
    void typed_numbers_follow_the_locale();
    void pictures_data();
    void pictures();
    void plain_texts();
    void num_to_hex_has_no_padding();
    void hex_to_num_reads_digits();
    void frequencies_data();
    void frequencies();
    void frequencies_in_a_comma_locale();
};

void NumbersTest::the_meter_writes_a_point_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("whole") << "73" << 73.0;
    QTest::newRow("decimals") << "73.5" << 73.5;
    QTest::newRow("negative") << "-12.5" << -12.5;
    QTest::newRow("plus") << "+4" << 4.0;
    QTest::newRow("blanks before") << "  7.5 dB" << 7.5;
    QTest::newRow("text behind") << "73.5dBuV" << 73.5;
    QTest::newRow("two points") << "3.0.5" << 3.0;
    QTest::newRow("point first") << ".5" << 0.5;
    QTest::newRow("point last") << "5." << 5.0;
    QTest::newRow("exponent") << "1E-8" << 1e-8;
    QTest::newRow("small exponent") << "2.5e+3x" << 2500.0;
    QTest::newRow("no exponent digits") << "2E" << 2.0;
    QTest::newRow("exponent sign only") << "2E-" << 2.0;
    QTest::newRow("comma ends it") << "12,5" << 12.0;
    QTest::newRow("none") << "OK" << 0.0;
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("sign only") << "-" << 0.0;
    QTest::newRow("point only") << "." << 0.0;
    QTest::newRow("exponent only") << "E5" << 0.0;
    QTest::newRow("too large") << "1E999" << std::numeric_limits<double>::max();
    QTest::newRow("too large, negative") << "-0.1E999" << -std::numeric_limits<double>::max();
    QTest::newRow("too small") << "1E-999" << 0.0;
    QTest::newRow("other digits") << QStringLiteral("\u0663") << 0.0;
}

void NumbersTest::the_meter_writes_a_point() {
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(meter_value(text), value);
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    QCOMPARE(meter_value(text), value);
}

void NumbersTest::typed_numbers_follow_the_locale() {
    QCOMPARE(typed_value("12,5"), 12.0);
    QCOMPARE(typed_value("12.5"), 12.5);
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    QCOMPARE(typed_value("12,5"), 12.5);
    QCOMPARE(typed_value("12.5"), 12.5);
    QCOMPARE(typed_value(" -3,25E2 MHz"), -325.0);
    QCOMPARE(typed_value("1.234,5"), 1.234);
    QCOMPARE(typed_value(",5"), 0.5);
    QCOMPARE(typed_value("MHz"), 0.0);
}

void NumbersTest::pictures_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("picture");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const char* picture, const char* text) {
        QTest::addRow("%.17g in '%s'", value, picture)
            << value << QByteArray(picture) << QString::fromLatin1(text);
    };
    row(7, " 00", " 07");
    row(7, " 00 ", " 07 ");
    row(123, " 00", " 123");
    row(0, " 0", " 0");
    row(0, "000", "000");
    row(503.25, "0000.0", "0503.3");
    row(1234.35, "0000.0", "1234.4");
    row(1234.34, "0000.0", "1234.3");
    row(0.05, "0000.0", "0000.1");
    row(0.04, "0000.0", "0000.0");
    row(12345.6, "0000.0", "12345.6");
    row(999.95, " 0000.0", " 1000.0");
    row(9999.95, "0000.0", "10000.0");
    row(473.5, "00000", "00474");
    row(472.5, "00000", "00473");
    row(99999.5, "00000", "100000");
    row(9750, " 00000", " 09750");
    row(-2.5, "0", "-3");
    row(-7, " 00", " -07");
    row(-0.4, "0", "0");
    row(1e20, "0", "100000000000000000000");
    row(1e-300, "0.0", "0.0");
    row(std::numeric_limits<double>::infinity(), "00", "00");
}

void NumbersTest::pictures() {
    QFETCH(double, value);
    QFETCH(QByteArray, picture);
    QFETCH(QString, text);
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    QCOMPARE(format_number(value, picture.constData()), text);
}

void NumbersTest::plain_texts() {
    QCOMPARE(plain_text(-89), QString("-89"));
    QCOMPARE(plain_text(11), QString("11"));
    QCOMPARE(plain_text(20.5), QString("20.5"));
    QCOMPARE(plain_text(0.1), QString("0.1"));
    QCOMPARE(plain_text(-0.0), QString("0"));
    QCOMPARE(plain_text(1e-8), QString("0.00000001"));
    QCOMPARE(plain_text(std::numeric_limits<double>::denorm_min()).size(), 326);
    QCOMPARE(plain_text(std::numeric_limits<double>::max()).size(), 309);
}

void NumbersTest::num_to_hex_has_no_padding() {
    QCOMPARE(num_to_hex(0, 16), QString());
    QCOMPARE(num_to_hex(5, 16), QString("5"));
    QCOMPARE(num_to_hex(255, 16), QString("FF"));
    QCOMPARE(num_to_hex(4096, 16), QString("1000"));
    QCOMPARE(num_to_hex(5, 2), QString("101"));
    QCOMPARE(hex_byte(0), QString("0"));
    QCOMPARE(hex_byte(5), QString("05"));
    QCOMPARE(hex_byte(16), QString("10"));
}

void NumbersTest::hex_to_num_reads_digits() {
    QCOMPARE(hex_to_num("FF", 16), QString("255"));
    QCOMPARE(hex_to_num("ff", 16), QString("255"));
    QCOMPARE(hex_to_num("1000", 16), QString("4096"));
    QCOMPARE(hex_to_num("0", 16), QString("0"));
    QCOMPARE(hex_to_num("", 16), QString("0"));
    QCOMPARE(hex_to_num("101", 2), QString("5"));
    QCOMPARE(hex_to_num("FFFFFFFF", 16), QString("4294967295"));
    for (long value = 1; value < 70000; value += 7)
        QCOMPARE(hex_to_num(num_to_hex(value, 16), 16), QString::number(value));
}

void NumbersTest::frequencies_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("sent");
    QTest::newRow("satellite") << "1234.5"
                               << "1234.5";
    QTest::newRow("lower end") << "900"
                               << "0900.0";
    QTest::newRow("below it") << "899.9"
                              << "00900";
    QTest::newRow("three digits") << "950"
                                  << "0950.0";
    QTest::newRow("terrestrial") << "474"
                                 << "00474";
    QTest::newRow("upper end") << "2150"
                               << "2150.0";
    QTest::newRow("above it") << "2150.1"
                              << "02150";
    QTest::newRow("transponder") << "11778"
                                 << "11778";
    QTest::newRow("two decimals") << "1234.35"
                                  << "1234.4";
    QTest::newRow("no number") << "MHz"
                               << "00000";
    QTest::newRow("empty") << ""
                           << "00000";
}

void NumbersTest::frequencies() {
    QFETCH(QString, typed);
    QFETCH(QString, sent);
    QCOMPARE(format_freq(typed), sent);
}

void NumbersTest::frequencies_in_a_comma_locale() {
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    QCOMPARE(format_freq("1234,5"), QString("1234.5"));
    QCOMPARE(format_freq("1234.5"), QString("1234.5"));
    QCOMPARE(format_freq("2150,1"), QString("02150"));
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::NumbersTest)
#include "numbers_test.moc"
