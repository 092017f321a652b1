// SPDX-License-Identifier: GPL-3.0-or-later
// The commands of an upload as text, and how they are sent.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "file_lock.h"
#include "plan_upload.h"
#include "sample_programs.h"
#include "table_backup.h"

namespace m47::plans {

class UploadTest : public QObject {
    Q_OBJECT

  private:
    QTemporaryDir folder_;
    VirtualClock clock_;
    FakePort port_{clock_};
    FakeLinkView view_;
    link::Link link_{port_, clock_, view_};
    ProgramState program_;
    QByteArray table_;
    QByteArray refused_;

    static UploadPlan plan() { return {{direct_program(), digital_program()}, kKu, "36", kDbmv}; }
    static QStringList plan_part() {
        return QStringList{"CHBW 36", "UNIT 01"} + kDirectCommands + kDigitalCommands;
    }
    QStringList backups() const {
        return QDir(folder_.filePath(QStringLiteral("backup"))).entryList(QDir::Files);
    }

  private Q_SLOTS:
    void init() {
        QLocale::setDefault(QLocale::c());
        QDir(folder_.filePath(QStringLiteral("backup"))).removeRecursively();
        program_.base_dir = folder_with_separator(folder_.path());
        link_.port_connected = true;
        table_ = "01 05 01\r02 06 00\r03 09 01";
        refused_.clear();
        port_.answer = [this](const QByteArray& command) {
            if (!refused_.isEmpty() && command == refused_) return command + "\rNO\rOK\r";
            if (command.endsWith('?')) return FakePort::good(command, table_);
            return FakePort::good(command);
        };
        port_.take_commands();
    }

    void an_empty_plan_sends_zero() {
        QCOMPARE(plan_commands({{}, {}, {}, 0}), QStringList({"CHBW 00", "UNIT 00"}));
    }

    void each_mode_begins_in_its_way() {
        QCOMPARE(upload_commands(plan(), kAppend, QString()), QStringList{"MEASURE"} + plan_part());
        QCOMPARE(upload_commands(plan(), kReplace, QString()),
                 QStringList({"MEASURE", "DELETE 00 99", "DATAPROGRAM *"}) + plan_part());
        QCOMPARE(upload_commands(plan(), kDisable, QString::fromLatin1(table_)),
                 QStringList(
                     {"MEASURE", "DATAPROGRAM?", "DATAPROGRAM 01 05 00", "DATAPROGRAM 03 09 00"}) +
                     plan_part());
    }

    void a_table_without_active_lines_disables_nothing() {
        QCOMPARE(disabling_commands({"01 05 00", "", "03", "04 07 0x"}), QStringList());
        QCOMPARE(disabling_commands({"01 05 10"}), QStringList{"DATAPROGRAM 01 05 00"});
    }

    void it_is_sent_command_by_command() {
        PlanUpload upload(link_, program_);
        for (const UploadMode mode : {kAppend, kDisable, kReplace}) {
            const UploadResult result = upload.run(plan(), mode);
            const QStringList expected = upload_commands(plan(), mode, QString::fromLatin1(table_));
            QCOMPARE(port_.take_commands(), expected);
            QCOMPARE(result.accepted, static_cast<int>(expected.size()));
            QCOMPARE(result.commands, static_cast<int>(expected.size()));
            QCOMPARE(result.refused, QStringList());
        }
    }

    void told_to_end_it_says_how_many_programs_are_sent() {
        PlanUpload upload(link_, program_);
        bool ending = false;
        link_.interrupted = [&] { return ending; };
        port_.answer = [&](const QByteArray& command) {
            // The last command of the first program.
            ending = ending || QString::fromLatin1(command) == kDirectCommands.last();
            return FakePort::good(command);
        };
        QVERIFY_THROWS_EXCEPTION(Interrupted, upload.run(plan(), kAppend));
        QVERIFY(link_.left_off);
        const QString said = link_.left_off->in(Texts());
        QVERIFY2(said.contains(QLatin1String("1 of 2")), qPrintable(said));
        link_.interrupted = nullptr;
    }

    void stopped_by_the_user_it_ends_between_two_programs() {
        link_.left_off.reset();
        PlanUpload upload(link_, program_);
        QStringList told;
        QStringList shown;
        link_.activity.on_stopped = [&](const Said& how_far) { told += how_far.in(Texts()); };
        link_.activity.on_change = [&] { shown += activity_text(link_.activity, Texts()); };
        port_.answer = [&](const QByteArray& command) {
            // In the middle of the first program.
            if (QString::fromLatin1(command) == kDirectCommands[1]) link_.activity.stop();
            return FakePort::good(command);
        };
        QVERIFY_THROWS_EXCEPTION(Interrupted, upload.run(plan(), kAppend));
        QCOMPARE(port_.take_commands(),
                 QStringList({"MEASURE", "CHBW 36", "UNIT 01"}) + kDirectCommands);
        QCOMPARE(told.size(), 1);
        QVERIFY2(told[0].contains("1 of 2"), qPrintable(told[0]));
        QVERIFY(shown.contains("Uploading program 1 of 2"));
        QVERIFY(!shown.contains("Uploading program 2 of 2"));
        link_.activity.on_stopped = nullptr;
        link_.activity.on_change = nullptr;
    }

    void the_table_is_kept_before_it_is_changed() {
        PlanUpload upload(link_, program_);
        QByteArray kept;
        port_.answer = [&](const QByteArray& command) {
            if (command.endsWith('?')) return FakePort::good(command, table_);
            if (command.startsWith("DATAPROGRAM") && kept.isEmpty()) {
                QFile file(folder_.filePath(QStringLiteral("backup/")) + backups().value(0));
                if (file.open(QIODevice::ReadOnly)) kept = file.readAll();
            }
            return FakePort::good(command);
        };
        const UploadResult result = upload.run(plan(), kDisable);
        QCOMPARE(kept, table_);
        QCOMPARE(result.table, QString::fromLatin1(table_));
        QVERIFY(backups()[0].startsWith(QStringLiteral("logger-20261121-")));
        QVERIFY(!QFile::exists(folder_.filePath(QStringLiteral("temp.dat"))));
        upload.run(plan(), kAppend);
        upload.run(plan(), kReplace);
        QCOMPARE(backups().size(), 1);
    }

    void of_the_kept_tables_the_last_thirty_stay() {
        const QDateTime now(QDate(2026, 11, 21), QTime(10, 0));
        for (int k = 0; k < 33; ++k)
            keep_table(program_.base_dir, QString::number(k), now.addSecs(k / 2));
        QCOMPARE(backups().size(), 30);
        QFile oldest(folder_.filePath(QStringLiteral("backup/")) + backups().constFirst());
        QVERIFY(oldest.open(QIODevice::ReadOnly));
        QCOMPARE(oldest.readAll(), QByteArray("3"));
    }

    void the_fresh_table_stays_though_the_clock_went_back() {
        const QDateTime now(QDate(2026, 11, 21), QTime(10, 0));
        for (int k = 0; k < 30; ++k)
            keep_table(program_.base_dir, QStringLiteral("later"), now.addSecs(k));
        keep_table(program_.base_dir, QStringLiteral("fresh"), now.addDays(-1));
        QCOMPARE(backups().size(), 30);
        QCOMPARE(backups().constFirst(), QStringLiteral("logger-20261120-100000-000.txt"));
        QCOMPARE(backups()[1], QStringLiteral("logger-20261121-100001-000.txt"));
    }

    void files_of_the_user_stay_among_the_kept_tables() {
        const QString own = folder_.filePath(QStringLiteral("backup/logger-20200101-old.txt"));
        const QDateTime now(QDate(2026, 11, 21), QTime(10, 0));
        keep_table(program_.base_dir, QString(), now);
        QFile file(own);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        for (int k = 1; k < 32; ++k) keep_table(program_.base_dir, QString(), now.addSecs(k));
        QVERIFY(file.exists());
        QCOMPARE(backups().size(), 31);
    }

    void a_table_that_the_meter_refuses_is_no_table() {
        port_.answer = [](const QByteArray& command) {
            return command.endsWith('?') ? command + "\rInvalid Parameter(s)\rOK\r"
                                         : FakePort::good(command);
        };
        const UploadResult result = PlanUpload(link_, program_).run(plan(), kDisable);
        QCOMPARE(port_.take_commands(), QStringList({"MEASURE", "DATAPROGRAM?"}) + plan_part());
        QCOMPARE(result.refused, QStringList{"DATAPROGRAM?"});
        QCOMPARE(result.table, QString());
        QCOMPARE(backups(), QStringList());
        QVERIFY(!PlanUpload(link_, program_).ask_table());
    }

    void a_table_without_active_lines_is_asked_for_and_left_alone() {
        table_ = "01 05 00\r02 06 00";
        PlanUpload(link_, program_).run(plan(), kDisable);
        QCOMPARE(port_.take_commands(), QStringList({"MEASURE", "DATAPROGRAM?"}) + plan_part());
        QCOMPARE(backups().size(), 1);
    }

    void a_table_that_cannot_be_kept_stops_the_upload_before_any_change() {
        QFile in_the_way(folder_.filePath(QStringLiteral("backup")));
        QVERIFY(in_the_way.open(QIODevice::WriteOnly));
        in_the_way.close();
        bool stopped = false;
        try {
            PlanUpload(link_, program_).run(plan(), kDisable);
        } catch (const Fault& fault) {
            stopped = QString::fromUtf8(fault.what()).contains(QStringLiteral("backup"));
        }
        QVERIFY(stopped);
        QCOMPARE(port_.take_commands(), QStringList({"MEASURE", "DATAPROGRAM?"}));
        QVERIFY(in_the_way.remove());
    }

    void a_folder_that_another_program_holds_stops_the_upload() {
        const platform::FileLock other(folder_.path());
        QVERIFY_EXCEPTION_THROWN(PlanUpload(link_, program_).run(plan(), kDisable), Fault);
        QCOMPARE(port_.take_commands(), QStringList({"MEASURE", "DATAPROGRAM?"}));
    }

    void the_scratch_file_goes_also_when_something_fails() {
        QCOMPARE(lines_through_file(program_.base_dir, QStringLiteral("a\rb\r\nc")),
                 QStringList({"a", "b", "c"}));
        QVERIFY(!QFile::exists(folder_.filePath(QStringLiteral("temp.dat"))));
        // One that was left over is replaced.
        const QString scratch = folder_.filePath(QStringLiteral("temp.dat"));
        QFile old(scratch);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("01 01 01\r02 02 01\r");
        old.close();
        QCOMPARE(lines_through_file(program_.base_dir, QStringLiteral("x")), QStringList{"x"});
        QVERIFY(!QFile::exists(scratch));
        bool failed = false;
        try {
            lines_through_file(folder_.filePath(QStringLiteral("no such folder/")), QString());
        } catch (const Fault&) {
            failed = true;
        }
        QVERIFY(failed);
    }

    void nothing_of_others_is_written_in_the_place_of_the_scratch_file() {
        const QString scratch = folder_.filePath(QStringLiteral("temp.dat"));
        const auto refused = [&] {
            QVERIFY_EXCEPTION_THROWN(lines_through_file(program_.base_dir, QStringLiteral("x")),
                                     Fault);
        };
        QFile own(folder_.filePath(QStringLiteral("own.txt")));
        QVERIFY(own.open(QIODevice::WriteOnly) && own.write("kept") == 4 && own.flush());
        QVERIFY(own.link(scratch));
        refused();
        QVERIFY(QFileInfo(scratch).isSymLink());
        QCOMPARE(own.size(), 4);
        QVERIFY(QFile::remove(scratch));
        // A link to nowhere makes no file there.
        QVERIFY(QFile::link(folder_.filePath(QStringLiteral("nowhere")), scratch));
        refused();
        QVERIFY(!QFile::exists(folder_.filePath(QStringLiteral("nowhere"))));
        QVERIFY(QFile::remove(scratch));
        // A pipe that nobody reads would be waited for.
        QCOMPARE(mkfifo(QFile::encodeName(scratch).constData(), 0600), 0);
        refused();
        QVERIFY(QFile::remove(scratch));
    }

    void the_scratch_file_goes_when_it_takes_only_a_part() {
        // The file comes to be, then the limit on its size stops the writing.
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        rlimit small = before;
        small.rlim_cur = 1000;
        const auto on_limit = signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        bool failed = false;
        try {
            lines_through_file(program_.base_dir, QString(5000, u'x'));
        } catch (const Fault&) {
            failed = true;
        }
        setrlimit(RLIMIT_FSIZE, &before);
        signal(SIGXFSZ, on_limit);
        QVERIFY(failed);
        QVERIFY(!QFile::exists(folder_.filePath(QStringLiteral("temp.dat"))));
    }

    void a_refused_command_is_named_and_the_rest_goes_on() {
        refused_ = "DISEQC 73";
        const UploadResult result = PlanUpload(link_, program_).run(plan(), kAppend);
        QCOMPARE(port_.take_commands(), upload_commands(plan(), kAppend, QString()));
        QCOMPARE(result.refused, QStringList{"DISEQC 73"});
        QCOMPARE(result.accepted, result.commands - 1);
        Texts texts;
        QCOMPARE(upload_summary(result, texts), QStringLiteral("24 of 25 commands answered OK"));
        texts.language = kItalian;
        QCOMPARE(upload_summary(result, texts), QStringLiteral("risposta OK: 24 su 25 comandi"));
        QCOMPARE(upload_refusals(result), QStringLiteral("DISEQC 73"));
    }

    void a_lost_link_stops_the_sending() {
        port_.answer = [](const QByteArray& command) {
            return command == "UNIT 01" ? command + "\rERROR\r" : FakePort::good(command);
        };
        const UploadResult result = PlanUpload(link_, program_).run(plan(), kAppend);
        QCOMPARE(port_.take_commands(),
                 QStringList({"MEASURE", "CHBW 36", "UNIT 01", "UNIT 01", "UNIT 01"}));
        QCOMPARE(result.accepted, 2);
        QCOMPARE(result.commands, 25);
        QCOMPARE(result.refused.size(), 23);
        QCOMPARE(result.refused.constFirst(), QStringLiteral("UNIT 01"));
        QCOMPARE(upload_refusals(result).split(u'\n'), result.refused);
    }

    void a_link_lost_at_the_table_changes_nothing() {
        port_.answer = [](const QByteArray& command) {
            return command.endsWith('?') ? command + "\rERROR\r" : FakePort::good(command);
        };
        const UploadResult result = PlanUpload(link_, program_).run(plan(), kDisable);
        QCOMPARE(port_.take_commands(),
                 QStringList({"MEASURE", "DATAPROGRAM?", "DATAPROGRAM?", "DATAPROGRAM?"}));
        QCOMPARE(result.accepted, 1);
        QCOMPARE(backups(), QStringList());
    }

    void without_a_link_nothing_is_sent() {
        link_.port_connected = false;
        const UploadResult result = PlanUpload(link_, program_).run(plan(), kReplace);
        QCOMPARE(port_.take_commands(), QStringList());
        QCOMPARE(result.accepted, 0);
        QCOMPARE(result.commands, 27);
    }

    void progress_is_told_before_each_command() {
        PlanUpload upload(link_, program_);
        QStringList told;
        upload.on_progress = [&](int sent, int commands) {
            told += QStringLiteral("%1/%2").arg(sent).arg(commands);
        };
        upload.run({{direct_program()}, kKu, "36", 0}, kAppend);
        QCOMPARE(told.size(), 11);
        QCOMPARE(told.constFirst(), QStringLiteral("0/11"));
        QCOMPARE(told.constLast(), QStringLiteral("10/11"));
    }

    void the_table_is_asked_once() {
        QCOMPARE(PlanUpload(link_, program_).ask_table().value_or("refused"),
                 QString::fromLatin1(table_));
        QCOMPARE(port_.take_commands(), QStringList{"DATAPROGRAM?"});
        link_.port_connected = false;
        QVERIFY(!PlanUpload(link_, program_).ask_table());
    }
};

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::UploadTest)
#include "upload_test.moc"
