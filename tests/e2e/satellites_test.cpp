// SPDX-License-Identifier: GPL-3.0-or-later
// The satellites of one meter brought to another by the whole program, clicked at as a technician
// does, with two simulated meters on pseudo-terminals.
#include <QAction>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTest>
#include <csignal>

#include "asl.h"
#include "box_answers.h"
#include "process_support.h"
#include "program_in_folder.h"

namespace m47 {

class SatellitesTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    /// A meter with its own folder, whose slots can be asked for behind the program's back.
    struct Stand {
        explicit Stand(const QStringList& options)
            : meter(folder.path(), QStringList{"--baud-factor", "0", "--delay", "0", "--state",
                                               folder.filePath("state")} +
                                       options) {}
        QTemporaryDir folder{folder_template()};
        MeterProcess meter;
        qsizetype seen = 0;

        /// The commands since the last call.
        QStringList new_commands() {
            QTest::qWait(50);
            const QStringList all = meter.commands();
            return all.mid(std::exchange(seen, all.size()));
        }
        /// The six S-records of each slot, as the meter keeps them.
        QList<QStringList> slots_kept() {
            QFile::remove(folder.filePath("state"));
            meter.send_signal(SIGUSR1);
            QList<QStringList> kept;
            if (!QTest::qWaitFor([&] { return QFile::exists(folder.filePath("state")); }, 5000))
                return kept;
            const QString report = QString::fromLatin1(content_of(folder.filePath("state")));
            for (const QString& line : report.split(u'\n')) {
                if (line.startsWith(QLatin1String("slot "))) kept.append(QStringList());
                if (line.startsWith(u'S')) kept.last() += line;
            }
            return kept;
        }
    };

    std::unique_ptr<Stand> first_;
    std::unique_ptr<Stand> second_;
    std::unique_ptr<BoxAnswers> boxes_;

    void start(const QStringList& first_options = {}) {
        new_folder(folder_template());
        first_ = std::make_unique<Stand>(first_options);
        second_ = std::make_unique<Stand>(QStringList{"--no-satellites"});
        boxes_ = std::make_unique<BoxAnswers>();
        link::PortList ports;
        QVERIFY(ports.add("1=" + first_->meter.link()));
        QVERIFY(ports.add("2=" + second_->meter.link()));
        // The quickest pace of the day, at whatever hour the test runs.
        const auto begin = std::chrono::steady_clock::now();
        start_program({1024, 700}, ports, [begin] {
            return std::chrono::hours(5) + (std::chrono::steady_clock::now() - begin);
        });
    }
    void connect_to(int number) {
        program().identify(number);
        QVERIFY(program().link().port_connected);
    }
    void open_asl() {
        find<QAction>("asl")->trigger();
        QVERIFY(window().screen_of("asl"));
    }
    void close_asl() {
        find<QAction>("cmdexit", window().screen_of("asl"))->trigger();
        QTRY_VERIFY(!window().screen_of("asl"));
    }
    void pick(const char* list, const QString& name) {
        auto* box = find<QListWidget>(list);
        const auto items = box->findItems(name, Qt::MatchExactly);
        QVERIFY(!items.isEmpty());
        box->scrollToItem(items.first());
        QTest::mouseClick(box->viewport(), Qt::LeftButton, {},
                          box->visualItemRect(items.first()).center());
        QVERIFY(items.first()->isSelected());
    }
    void click(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    QStringList entries(const char* list) {
        QStringList entries;
        for (int row = 0; row < find<QListWidget>(list)->count(); ++row)
            entries += find<QListWidget>(list)->item(row)->text();
        return entries;
    }
    static BoxAnswers::Answer file_named(const QString& path) {
        return [path](QDialog* dialog) {
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
        };
    }

  private Q_SLOTS:
    void cleanup() {
        end_program();
        boxes_.reset();
        first_.reset();
        second_.reset();
    }

    void from_one_meter_to_another() {
        start();
        const QStringList identified{"ATTEN?", "VER?"};
        const QStringList refreshed{"ASLNAME?", "MASTERCOPY 6?"};
        const QList<QStringList> factory = first_->slots_kept();
        QCOMPARE(factory.size(), 20);
        const QList<QStringList> none = second_->slots_kept();
        const QStringList satellites{"AURORA 13E", "BOREAL 19E", "CIRRUS 9E", "MERIDIO 5W",
                                     "ORIENT 42E", "PONENT 30W", "ZENIT 28E"};

        connect_to(1);
        open_asl();
        for (const QString& name : satellites) {
            pick("listastr", name);
            click("cmdaddindb");
        }
        QCOMPARE(entries("listadb"), satellites);
        QCOMPARE(first_->new_commands(), identified + refreshed);

        for (const QString& name : {satellites[1], satellites[3]}) {
            pick("listastr", name);
            click("cmddelstr");
        }
        QCOMPARE(first_->new_commands(), QStringList("ASLDEL 1") + none[1] + refreshed +
                                             QStringList("ASLDEL 4") + none[4] + refreshed);
        close_asl();

        connect_to(2);
        open_asl();
        for (const QString& name : {satellites[1], satellites[3]}) {
            pick("listadb", name);
            click("cmdsave");
        }
        QCOMPARE(entries("listastr").mid(0, 3),
                 QStringList({"BOREAL 19E", "MERIDIO 5W", "**********"}));
        QCOMPARE(second_->new_commands(),
                 identified + refreshed + QStringList(none[0][0]) + factory[1].mid(1) +
                     QStringList({"ASLNAME 0 BOREAL 19E", "ASLNAME?"}) + QStringList(none[1][0]) +
                     factory[4].mid(1) + QStringList({"ASLNAME 1 MERIDIO 5W", "ASLNAME?"}));
        QCOMPARE(boxes_->take_seen(), QStringList());

        // Record for record: what went away, what came, and nothing else.
        QList<QStringList> left = factory;
        left[1] = none[1];
        left[4] = none[4];
        QCOMPARE(first_->slots_kept(), left);
        QList<QStringList> brought = none;
        for (const int place : {0, 1})
            brought[place] = none[place].mid(0, 1) + factory[place == 0 ? 1 : 4].mid(1);
        QCOMPARE(second_->slots_kept(), brought);
        QCOMPARE(first_->new_commands(), QStringList());
        // The copy that the screen patched is the one that the meter would send.
        const QString patched = program_state().master_copy;
        close_asl();
        open_asl();
        QCOMPARE(program_state().master_copy, patched);
    }

    void a_backup_leaves_a_broken_slot_out_and_a_restore_brings_the_rest() {
        start({"--fault", "badrecord:1", "--fault-on", "MASTERCOPY", "--fault-after", "1"});
        const QString path = in_folder("sat.s19");
        const QList<QStringList> factory = first_->slots_kept();
        const QList<QStringList> none = second_->slots_kept();
        connect_to(1);
        open_asl();
        boxes_->answer(file_named(path));
        boxes_->press(QMessageBox::Ok);
        boxes_->press(QMessageBox::Ok);
        find<QAction>("cmdsaveall")->trigger();
        const QStringList seen = boxes_->take_seen();
        QCOMPARE(seen.size(), 3);
        QVERIFY(
            seen[1].startsWith("none|AutomaticSatelliteLocation|These slots did not arrive "
                               "whole from the M47: "));
        QCOMPARE(seen[2],
                 "information|AutomaticSatelliteLocation|Saved in " + path + ". Slots: 19.|OK");
        const int broken = seen[1].section(": ", 1).left(2).toInt();
        QStringList records;
        for (int slot = 0; slot < 20; ++slot)
            if (slot != broken) records += factory[slot];
        QCOMPARE(content_of(path), records.join("\r\n").toLatin1() + "\r\n");
        close_asl();

        connect_to(2);
        open_asl();
        second_->new_commands();
        boxes_->answer(file_named(path));
        boxes_->answer([](QDialog* box) { box->accept(); });
        boxes_->press(QMessageBox::Ok);
        find<QAction>("cmdrestoreall")->trigger();
        QVERIFY(boxes_->take_seen().last().startsWith(
            "information|AutomaticSatelliteLocation|Read back and compared: the M47 holds what "
            "the file holds."));
        QList<QStringList> restored = factory;
        restored[broken] = none[broken];
        QCOMPARE(second_->slots_kept(), restored);
        // Only what differs was sent.
        const QStringList sent = second_->new_commands();
        QCOMPARE(sent.filter("S9030000FC").size(), differing_slots(factory, none, broken));
        QCOMPARE(sent.mid(0, 3), QStringList({"ASLNAME?", "MASTERCOPY 6?", factory[0][0]}));
    }

    void the_logo_is_read_and_set() {
        start();
        connect_to(1);
        first_->new_commands();
        find<QAction>("configurazione")->trigger();
        QWidget* screen = window().screen_of("configurazione");
        QVERIFY(screen);
        QCOMPARE(screen->objectName(), QStringLiteral("config_set"));
        QCOMPARE(first_->new_commands(), QStringList());
        find<QAction>("logo", screen)->trigger();
        auto* box = find<QLineEdit>("logo_txt", screen);
        QCOMPARE(box->text(), QStringLiteral("M47 FIELD METER"));
        find<QAction>("time", screen)->trigger();
        box->selectAll();
        QTest::keyClicks(box, "  ANTENNAS & MASTS LTD ");
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(first_->new_commands(),
                 QStringList({"LOGO?", "LOGO ANTENNAS & MASTS LTD", "LOGO?"}));
        QCOMPARE(box->text(), QStringLiteral("ANTENNAS & MASTS"));
        find<QAction>("cmdexit", screen)->trigger();
        QTRY_VERIFY(!window().screen_of("configurazione"));
    }

  private:
    /// How many slots but `broken` differ between the two.
    static int differing_slots(const QList<QStringList>& one, const QList<QStringList>& other,
                               int broken) {
        int count = 0;
        for (int slot = 0; slot < one.size(); ++slot)
            if (slot != broken && one[slot] != other[slot]) ++count;
        return count;
    }
};

}  // namespace m47

QTEST_MAIN(m47::SatellitesTest)
#include "satellites_test.moc"
