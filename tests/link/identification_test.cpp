// SPDX-License-Identifier: GPL-3.0-or-later
#include "identification.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <optional>

#include "device_watch.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "virtual_clock.h"

namespace m47::link {
namespace {

struct FakeWindow : MainWindowView {
    QString text = "VKD M47_03 REMOTE CONTROL";
    std::optional<bool> asl;

    QString caption() const override { return text; }
    void set_caption(const QString& caption) override { text = caption; }
    void enable_asl(bool on) override { asl = on; }
};

PortSources no_sources() {
    return {"/nonexistent", "/nonexistent", [] { return QStringList(); }};
}

struct Setup {
    VirtualClock clock;
    FakePort port{clock};
    FakeLinkView view;
    Link link{port, clock, view};
    Texts texts;
    PortList ports{no_sources()};
    FakeWindow window;
    Identification identification{link, texts, ports, window};
    QByteArray version = "V3.0.5";

    Setup() {
        texts.language = kItalian;
        for (int n = 1; n <= 4; ++n) ports.add(QStringLiteral("%1=/dev/line%1").arg(n));
        port.answer = [this](const QByteArray& command) {
            return FakePort::good(command, command == "VER?" ? version : "2");
        };
    }
};

}  // namespace

class IdentificationTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void the_list_has_ten_entries();
    void a_meter_on_the_port();
    void no_meter_on_the_port();
    void no_device_behind_the_number();
    void an_empty_answer_is_no_meter();
    void a_device_that_another_start_uses_is_left_alone();
    void the_link_drops_between_the_two_questions();
    void the_state_names_the_port_once_there_is_one();
    void the_caption_grows();
    void reconnecting_asks_the_same_device_again();
    void reconnecting_finds_another_device();
    void reconnecting_before_a_port_was_picked();
    void reconnecting_to_an_adapter_that_was_plugged_in_elsewhere();
    void a_device_that_comes_back();
    void an_open_port_is_closed_first();
    void a_port_that_stays_open_is_shown();
    void the_last_number_is_a_port_too();
    void other_entries_only_close_the_link();
    void versions_data();
    void versions();
    void the_satellite_button_data();
    void the_satellite_button();
};

void IdentificationTest::the_list_has_ten_entries() {
    QCOMPARE(port_entries(), (QStringList{"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}));
}

void IdentificationTest::a_meter_on_the_port() {
    Setup s;
    s.identification.porta_Click(2);
    QCOMPARE(s.port.device, QString("/dev/line3"));
    QCOMPARE(s.port.take_commands(), (QStringList{"ATTEN?", "VER?"}));
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 3 Connected"));
    QVERIFY(s.view.state_connected);
    QVERIFY(s.link.port_connected);
    QCOMPARE(s.link.port_number, 3);
    QCOMPARE(s.texts.language, static_cast<int>(kEnglish));
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL V3.0.5"));
    QCOMPARE(s.window.asl, std::optional<bool>(false));
    QCOMPARE(s.view.progress(), 0);
}

void IdentificationTest::no_meter_on_the_port() {
    Setup s;
    s.port.answer = nullptr;
    s.identification.porta_Click(1);
    QCOMPARE(s.port.take_commands(), (QStringList{"ATTEN?", "", "ATTEN?", "", "ATTEN?", ""}));
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 2 NOT Connected"));
    QVERIFY(!s.view.state_connected);
    QVERIFY(!s.link.port_connected);
    QVERIFY(!s.port.is_open());
    QCOMPARE(s.texts.language, static_cast<int>(kEnglish));
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL "));
    QVERIFY(!s.window.asl.has_value());
}

void IdentificationTest::no_device_behind_the_number() {
    Setup s;
    s.identification.porta_Click(8);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 9 NOT Connected"));
    QCOMPARE(s.port.fault(), PortFault::missing);
    QCOMPARE(s.clock.elapsed(), 0.0);
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL "));
}

void IdentificationTest::an_empty_answer_is_no_meter() {
    Setup s;
    s.port.answer = [](const QByteArray& command) { return command + "\r\rOK\r"; };
    s.identification.porta_Click(0);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 1 NOT Connected"));
    QVERIFY(!s.view.state_connected);
    QVERIFY(!s.link.port_connected);
    QVERIFY(!s.port.is_open());
    // Nothing goes out to it, neither the question for its version nor what a screen sends.
    QVERIFY(!s.link.send("FREQ 1000.0"));
    QCOMPARE(s.port.take_commands(), QStringList{"ATTEN?"});
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL "));
}

void IdentificationTest::a_device_that_another_start_uses_is_left_alone() {
    Setup s;
    QStringList asked;
    bool free = true;
    s.identification.claim = [&](const QString& device) {
        asked += device;
        return free;
    };
    s.identification.porta_Click(2);
    QVERIFY(s.link.port_connected);
    s.port.take_commands();
    const int opens = s.port.opens;
    free = false;
    s.identification.porta_Click(3);
    QVERIFY(!s.link.port_connected);
    QCOMPARE(s.port.opens, opens);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 4 NOT Connected"));
    s.identification.reconnect();
    QVERIFY(!s.link.port_connected);
    QCOMPARE(asked, (QStringList{"/dev/line3", "/dev/line4", "/dev/line4"}));
}

void IdentificationTest::the_link_drops_between_the_two_questions() {
    Setup s;
    s.port.answer = [](const QByteArray& command) {
        return command == "ATTEN?" ? FakePort::good(command, "2") : QByteArray("ERROR");
    };
    s.identification.porta_Click(0);
    QVERIFY(!s.link.port_connected);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 1 NOT Connected"));
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL "));
}

void IdentificationTest::the_state_names_the_port_once_there_is_one() {
    QCOMPARE(port_state_text(0, false), QStringLiteral("RS232 ComPort NOT Connected"));
    QCOMPARE(port_state_text(1, false), QStringLiteral("RS232 ComPort 1 NOT Connected"));
    QCOMPARE(port_state_text(10, true), QStringLiteral("RS232 ComPort 10 Connected"));
}

void IdentificationTest::the_caption_grows() {
    Setup s;
    s.identification.porta_Click(0);
    s.identification.porta_Click(0);
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL V3.0.5 V3.0.5"));
    s.port.open_fault = PortFault::missing;
    s.identification.porta_Click(1);
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL V3.0.5 V3.0.5 "));
}

void IdentificationTest::reconnecting_asks_the_same_device_again() {
    Setup s;
    int picked = 0;
    s.identification.on_picked = [&picked] { ++picked; };
    s.identification.porta_Click(2);
    s.texts.language = kItalian;
    s.link.show_port_state();
    s.port.take_commands();
    s.identification.reconnect();
    QCOMPARE(s.port.device, QString("/dev/line3"));
    QCOMPARE(s.port.take_commands(), (QStringList{"ATTEN?", "VER?"}));
    QVERIFY(s.link.port_connected);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 3 Connected"));
    // It is the same dialogue: neither the language nor the caption starts anew.
    QCOMPARE(s.texts.language, static_cast<int>(kItalian));
    QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL V3.0.5"));
    s.port.answer = nullptr;
    s.identification.reconnect();
    QVERIFY(!s.link.port_connected);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 3 NOT Connected"));
    QCOMPARE(picked, 1);
}

void IdentificationTest::reconnecting_finds_another_device() {
    Setup s;
    QStringList asked_by_then;
    int told = 0;
    s.identification.on_another_device = [&] {
        ++told;
        asked_by_then = s.port.take_commands();
    };
    s.identification.porta_Click(2);
    QVERIFY(s.link.send("UNIT 02"));
    s.port.take_commands();
    s.identification.reconnect();
    QCOMPARE(told, 0);
    // Even behind the same device there may be another meter.
    QCOMPARE(s.link.settings.unit(), std::optional<int>());
    s.port.take_commands();
    s.port.another_device = true;
    s.identification.reconnect();
    QCOMPARE(told, 1);
    QCOMPARE(asked_by_then, QStringList());
    QVERIFY(s.link.port_connected);
    QCOMPARE(s.port.take_commands(), (QStringList{"ATTEN?", "VER?"}));
}

void IdentificationTest::reconnecting_before_a_port_was_picked() {
    Setup s;
    QCOMPARE(s.link.port_number, 0);
    s.identification.reconnect();
    QCOMPARE(s.port.opens, 0);
    QVERIFY(!s.link.port_connected);
    QCOMPARE(s.identification.device(), QString());
}

void IdentificationTest::reconnecting_to_an_adapter_that_was_plugged_in_elsewhere() {
    // Two adapters; the system numbers them in the order in which they were plugged in.
    QTemporaryDir dev;
    QVERIFY(QDir(dev.path()).mkpath("serial/by-id"));
    const auto plug = [&dev](const QString& node, const QString& name) {
        QFile file(dev.filePath(node));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QFile::remove(dev.filePath("serial/by-id/" + name));
        QVERIFY(QFile::link(dev.filePath(node), dev.filePath("serial/by-id/" + name)));
    };
    plug("ttyUSB0", "usb-adapter-A");
    plug("ttyUSB1", "usb-adapter-B");
    Setup s;
    PortList ports({"/nonexistent", dev.path(), [] { return QStringList(); }});
    QVERIFY(ports.add("1=" + dev.filePath("ttyUSB0")));
    Identification identification(s.link, s.texts, ports, s.window);
    identification.porta_Click(0);
    QCOMPARE(s.port.device, dev.filePath("ttyUSB0"));
    QCOMPARE(identification.device(), dev.filePath("serial/by-id/usb-adapter-A"));
    // Both are pulled and come back the other way round.
    plug("ttyUSB0", "usb-adapter-B");
    plug("ttyUSB1", "usb-adapter-A");
    identification.reconnect();
    QCOMPARE(s.port.device, dev.filePath("serial/by-id/usb-adapter-A"));
}

void IdentificationTest::a_device_that_comes_back() {
    DeviceWatch watch;
    QVERIFY(!watch.look(true));
    QVERIFY(!watch.came_back());
    QVERIFY(!watch.look(false));
    QVERIFY(!watch.came_back());
    QVERIFY(watch.look(true));
    QVERIFY(watch.came_back());
    QVERIFY(!watch.look(true));
    QVERIFY(watch.came_back());
    QVERIFY(watch.look(false));
    QVERIFY(!watch.came_back());
    QVERIFY(watch.look(true));
    watch.reset();
    QVERIFY(!watch.came_back());
    QVERIFY(!watch.look(true));
}

void IdentificationTest::an_open_port_is_closed_first() {
    Setup s;
    s.port.open();
    s.identification.porta_Click(0);
    QCOMPARE(s.port.opens, 3);
    QCOMPARE(s.port.closes, 3);
    s.port.open();
    // A reconnection looks first, without a byte, whether the device is the same.
    s.identification.reconnect();
    QCOMPARE(s.port.opens, 7);
    QCOMPARE(s.port.closes, 7);
}

void IdentificationTest::a_port_that_stays_open_is_shown() {
    struct StickyPort : FakePort {
        using FakePort::FakePort;
        int sticky = 1;
        void close() override {
            if (sticky-- <= 0) FakePort::close();
        }
    };
    VirtualClock clock;
    StickyPort port(clock);
    FakeLinkView view;
    Link link(port, clock, view);
    Texts texts;
    PortList ports(no_sources());
    FakeWindow window;
    Identification identification(link, texts, ports, window);
    port.open();
    identification.porta_Click(10);
    QVERIFY(!port.is_open());
    QCOMPARE(view.state_text, QString("RS232 ComPort 11 NOT Connected"));
}

void IdentificationTest::the_last_number_is_a_port_too() {
    Setup s;
    QVERIFY(s.ports.add(QStringLiteral("10=/dev/line10")));
    QStringList versions;
    s.identification.on_version = [&](const QString& version) { versions += version; };
    s.identification.porta_Click(9);
    QCOMPARE(s.link.port_number, 10);
    QCOMPARE(s.port.take_commands(), (QStringList{"ATTEN?", "VER?"}));
    QCOMPARE(versions, QStringList("V3.0.5"));
}

void IdentificationTest::other_entries_only_close_the_link() {
    for (const int index : {-1, 10}) {
        Setup s;
        s.link.port_connected = true;
        s.port.open();
        s.identification.porta_Click(index);
        QVERIFY(!s.link.port_connected);
        QVERIFY(!s.port.is_open());
        QCOMPARE(s.texts.language, static_cast<int>(kItalian));
        QCOMPARE(s.port.written, QByteArray());
        QCOMPARE(s.window.text, QString("VKD M47_03 REMOTE CONTROL"));
    }
}

void IdentificationTest::versions_data() {
    QTest::addColumn<QString>("reply");
    QTest::addColumn<double>("number");
    QTest::newRow("3.0.5") << "V3.0.5" << 305.0;
    QTest::newRow("2.9.9") << "V2.9.9" << 299.0;
    QTest::newRow("plus") << "V3.1.0 PLUS" << 310.0;
    QTest::newRow("S at the front") << "S3.0.5" << 305.0;
    QTest::newRow("S inside") << "VS3.0.5" << 0.0;
    QTest::newRow("two digits") << "V12.3.4" << 1.0;
    QTest::newRow("short") << "V3" << 3.0;
    QTest::newRow("short with a point") << "V3.1" << 31.0;
    QTest::newRow("one letter") << "V" << 0.0;
    QTest::newRow("S alone") << "S" << 0.0;
    QTest::newRow("s alone") << "s" << 0.0;
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("OK") << "OK" << 0.0;
}

void IdentificationTest::versions() {
    QFETCH(QString, reply);
    QFETCH(double, number);
    QCOMPARE(version_number(reply), number);
}

void IdentificationTest::the_satellite_button_data() {
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<int>("button");
    QTest::newRow("old: left as it is") << QByteArray("V2.9.9") << -1;
    QTest::newRow("old with PLUS") << QByteArray("V2.9.9 PLUS") << -1;
    QTest::newRow("new") << QByteArray("V3.1.0") << 0;
    QTest::newRow("new with PLUS") << QByteArray("V3.1.0 PLUS") << 1;
    QTest::newRow("lower end") << QByteArray("V3.0.0") << 0;
    QTest::newRow("small letters") << QByteArray("V3.1.0 plus") << 0;
    QTest::newRow("no version") << QByteArray("?") << -1;
}

void IdentificationTest::the_satellite_button() {
    QFETCH(QByteArray, version);
    QFETCH(int, button);
    Setup s;
    s.version = version;
    s.identification.porta_Click(0);
    QCOMPARE(s.window.asl ? int(*s.window.asl) : -1, button);
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::IdentificationTest)
#include "identification_test.moc"
