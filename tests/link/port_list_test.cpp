// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_list.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <memory>

namespace m47::link {

class PortListTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void no_lines_at_all();
    void entries_data();
    void entries();
    void an_entry_replaces_what_the_system_has();
    void relative_devices();
    void on_board_ports_have_their_own_numbers();
    void adapters_take_the_numbers_left();
    void adapters_are_ordered_by_persistent_name();
    void a_device_with_an_entry_takes_no_second_number();
    void more_adapters_than_numbers();
    void nothing_is_looked_for_before_it_is_asked_for();
    void refresh_looks_anew();
    void this_machine();

  private:
    QString dev() const { return root_->path() + "/dev"; }
    void put(const QString& path, const QByteArray& text = {}) const;
    void add_on_board(int number, const QByteArray& type) const;
    void add_adapter(const QString& name, const QString& id = {});
    PortList list() const;
    static QStringList devices(const PortList& list);

    std::unique_ptr<QTemporaryDir> root_;
    QStringList reported_;
};

void PortListTest::init() {
    root_ = std::make_unique<QTemporaryDir>();
    reported_.clear();
    QVERIFY(QDir(root_->path()).mkpath("dev/serial/by-id"));
}

void PortListTest::put(const QString& path, const QByteArray& text) const {
    QFile file(root_->path() + u'/' + path);
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

void PortListTest::add_on_board(int number, const QByteArray& type) const {
    const QString name = QStringLiteral("ttyS%1").arg(number - 1);
    put("dev/" + name);
    put("sys/class/tty/" + name + "/type", type);
}

void PortListTest::add_adapter(const QString& name, const QString& id) {
    put("dev/" + name);
    if (!id.isEmpty()) QVERIFY(QFile::link("../../" + name, dev() + "/serial/by-id/" + id));
    reported_ += dev() + u'/' + name;
}

PortList PortListTest::list() const {
    return PortList({root_->path() + "/sys", dev(), [this] { return reported_; }});
}

QStringList PortListTest::devices(const PortList& list) {
    QStringList devices;
    for (int number = 1; number <= PortList::kPorts; ++number) devices += list.device(number);
    while (!devices.isEmpty() && devices.last().isEmpty()) devices.removeLast();
    return devices;
}

void PortListTest::no_lines_at_all() {
    QCOMPARE(devices(list()), QStringList());
    QCOMPARE(list().device(0), QString());
    QCOMPARE(list().device(11), QString());
}

void PortListTest::entries_data() {
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("device");
    const auto row = [](const char* entry, int number, const char* device) {
        QTest::newRow(entry) << QString::fromLatin1(entry) << number << QString::fromLatin1(device);
    };
    row("1=/dev/pts/5", 1, "/dev/pts/5");
    row("10=/dev/ttyUSB0", 10, "/dev/ttyUSB0");
    row("3=/tmp/a=b", 3, "/tmp/a=b");
    row("0=/dev/x", 0, "");
    row("11=/dev/x", 0, "");
    row("-1=/dev/x", 0, "");
    row("1=", 0, "");
    row("=/dev/x", 0, "");
    row("/dev/x", 0, "");
    row("", 0, "");
    row("one=/dev/x", 0, "");
    row("1.5=/dev/x", 0, "");
}

void PortListTest::entries() {
    QFETCH(QString, entry);
    QFETCH(int, number);
    QFETCH(QString, device);
    PortList ports = list();
    QCOMPARE(ports.add(entry), number > 0);
    QCOMPARE(ports.device(number), device);
    QCOMPARE(devices(ports).isEmpty(), number == 0);
}

void PortListTest::an_entry_replaces_what_the_system_has() {
    add_on_board(1, "4\n");
    PortList ports = list();
    QVERIFY(ports.add("1=/dev/pts/5"));
    QCOMPARE(devices(ports), QStringList{"/dev/pts/5"});
    QVERIFY(ports.add("1=/dev/pts/6"));
    QCOMPARE(devices(ports), QStringList{"/dev/pts/6"});
    QVERIFY(!ports.add("1:/dev/pts/7"));
    QCOMPARE(devices(ports), QStringList{"/dev/pts/6"});
}

void PortListTest::relative_devices() {
    PortList ports = list();
    QVERIFY(ports.add("1=ttyUSB7"));
    QVERIFY(ports.add("2=meter/line"));
    QVERIFY(ports.add("3=./meter"));
    QCOMPARE(devices(ports), (QStringList{"/dev/ttyUSB7", QDir::currentPath() + "/meter/line",
                                          QDir::currentPath() + "/meter"}));
}

void PortListTest::on_board_ports_have_their_own_numbers() {
    add_on_board(1, "4\n");
    add_on_board(2, "0\n");
    add_on_board(3, "16550\n");
    put("dev/ttyS3");
    put("sys/class/tty/ttyS4/type", "4\n");
    QCOMPARE(devices(list()), (QStringList{dev() + "/ttyS0", "", dev() + "/ttyS2"}));
    add_on_board(10, "4\n");
    add_on_board(11, "4\n");
    QCOMPARE(list().device(10), dev() + "/ttyS9");
    QCOMPARE(list().device(11), QString());
}

void PortListTest::adapters_take_the_numbers_left() {
    add_on_board(2, "4\n");
    reported_ += dev() + "/ttyS1";
    add_adapter("ttyUSB0");
    add_adapter("ttyUSB1");
    PortList ports = list();
    QVERIFY(ports.add("3=/dev/pts/5"));
    QCOMPARE(devices(ports),
             (QStringList{dev() + "/ttyUSB0", dev() + "/ttyS1", "/dev/pts/5", dev() + "/ttyUSB1"}));
}

void PortListTest::adapters_are_ordered_by_persistent_name() {
    add_adapter("ttyUSB0", "usb-maker_B-port0");
    add_adapter("ttyUSB1", "usb-maker_A-port0");
    add_adapter("ttyACM0");
    const QStringList expected{dev() + "/serial/by-id/usb-maker_A-port0",
                               dev() + "/serial/by-id/usb-maker_B-port0", dev() + "/ttyACM0"};
    QCOMPARE(devices(list()), expected);
    std::reverse(reported_.begin(), reported_.end());
    QCOMPARE(devices(list()), expected);
}

void PortListTest::a_device_with_an_entry_takes_no_second_number() {
    add_adapter("ttyUSB0", "usb-maker_A-port0");
    add_adapter("ttyUSB1");
    PortList ports = list();
    QVERIFY(ports.add("5=" + dev() + "/serial/by-id/usb-maker_A-port0"));
    QVERIFY(ports.add("1=" + dev() + "/ttyUSB1"));
    QCOMPARE(devices(ports), (QStringList{dev() + "/ttyUSB1", "", "", "",
                                          dev() + "/serial/by-id/usb-maker_A-port0"}));
}

void PortListTest::more_adapters_than_numbers() {
    for (int i = 10; i < 25; ++i) add_adapter(QStringLiteral("ttyUSB%1").arg(i));
    const QStringList found = devices(list());
    QCOMPARE(found.size(), 10);
    QCOMPARE(found.last(), dev() + "/ttyUSB19");
}

/// Looking takes longer than all else at the start of the program.
void PortListTest::nothing_is_looked_for_before_it_is_asked_for() {
    int looked = 0;
    PortList ports({.sys = root_->path(), .dev = dev(), .reported = [&] {
                        ++looked;
                        return QStringList();
                    }});
    QVERIFY(ports.add("1=/dev/pts/5"));
    ports.refresh();
    QCOMPARE(looked, 0);
    QCOMPARE(ports.device(1), QString("/dev/pts/5"));
    QCOMPARE(ports.device(2), QString());
    QCOMPARE(looked, 1);
}

void PortListTest::refresh_looks_anew() {
    PortList ports = list();
    QCOMPARE(devices(ports), QStringList());
    add_adapter("ttyUSB0");
    QCOMPARE(devices(ports), QStringList());
    ports.refresh();
    QCOMPARE(devices(ports), QStringList{dev() + "/ttyUSB0"});
    reported_.clear();
    ports.refresh();
    QCOMPARE(devices(ports), QStringList());
}

void PortListTest::this_machine() {
    const PortList ports;
    for (const QString& device : devices(ports))
        QVERIFY(device.isEmpty() || QFileInfo::exists(device));
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::PortListTest)
#include "port_list_test.moc"
