// SPDX-License-Identifier: GPL-3.0-or-later
#include "srecord.h"

#include <QTest>

#include "fake_link_view.h"
#include "fake_port.h"
#include "link.h"
#include "virtual_clock.h"

namespace m47::link {

class SrecordTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void headers_of_the_meter();
    void every_header_has_the_usual_checksum();
    void the_checksum_is_reduced_at_least_once_and_below_255();
    void the_text_is_left_as_the_last_answer();

  private:
    VirtualClock clock_;
    FakePort port_{clock_};
    FakeLinkView view_;
    Link link_{port_, clock_, view_};
};

void SrecordTest::headers_of_the_meter() {
    QCOMPARE(link_.make_srecord(0), QString("S00A000041534C2030303065"));
    QCOMPARE(link_.make_srecord(1), QString("S00A000041534C2030303164"));
    QCOMPARE(link_.make_srecord(12), QString("S00A000041534C2030313262"));
}

void SrecordTest::every_header_has_the_usual_checksum() {
    for (int slot = 0; slot <= 999; ++slot) {
        const QString record = link_.make_srecord(slot);
        const QByteArray bytes = QByteArray::fromHex(record.mid(2).toLatin1());
        QCOMPARE(bytes.size(), 11);
        int sum = 0;
        for (const char byte : bytes) sum += static_cast<unsigned char>(byte);
        QCOMPARE(sum % 256, 255);
        QCOMPARE(bytes.mid(3, 7),
                 QStringLiteral("ASL %1").arg(slot, 3, 10, QChar(u'0')).toLatin1());
    }
}

void SrecordTest::the_checksum_is_reduced_at_least_once_and_below_255() {
    QCOMPARE(srecord_checksum("FFFF01"), QString("100"));
    QCOMPARE(srecord_checksum("FFFF"), QString("01"));
    QCOMPARE(srecord_checksum("01"), QString("1FE"));
}

void SrecordTest::the_text_is_left_as_the_last_answer() {
    link_.make_srecord(1);
    QCOMPARE(link_.last_answer(), QString("ASL 001"));
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::SrecordTest)
#include "srecord_test.moc"
