// SPDX-License-Identifier: GPL-3.0-or-later
// Fetching, keeping and recalling the logged data, byte for byte, without a screen.
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <memory>

#include "answer_before.h"
#include "commands.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "file_lock.h"
#include "logger_data.h"

namespace m47::logger {
namespace {

/// Every byte but the two of a line end.
QByteArray all_bytes() {
    QByteArray bytes;
    for (int code = 0; code < 256; ++code)
        if (code != '\r' && code != '\n') bytes += static_cast<char>(code);
    return bytes;
}

/// No file of this process may grow beyond `bytes`, as on a full disk.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before_{};
};

/// Tests may run as the one user whom no permission stops.
class OrdinaryUser {
  public:
    OrdinaryUser() {
        if (before_ == 0 && seteuid(kNobody) != 0) qFatal("cannot become an ordinary user");
    }
    ~OrdinaryUser() {
        if (seteuid(before_) != 0) qFatal("cannot become the user of before");
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;
    const uid_t before_ = geteuid();
};

constexpr auto kWrittenByAll = QFile::Permissions(0x6666);
constexpr auto kWrittenByNobody = QFile::Permissions(0x5555);

}  // namespace

class DataTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<VirtualClock> clock_;
    std::unique_ptr<FakePort> port_;
    std::unique_ptr<FakeLinkView> view_;
    std::unique_ptr<link::Link> link_;
    ProgramState state_;
    std::unique_ptr<LoggerData> data_;

    QString path(const char* name) const { return folder_->filePath(QString::fromLatin1(name)); }
    QByteArray content(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    void write(const char* name, const QByteArray& bytes) const {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    QStringList files() const {
        return QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    /// The meter answers each download with these lines, which bring their own ends.
    void meter_sends(const QByteArray& lines) {
        port_->answer = [lines](const QByteArray& command) {
            return command + "\r" + lines + "OK\r";
        };
    }
    NameFault download(const QString& name = QStringLiteral("dwl.tmp")) {
        return data_->download(link::command::kAllLogs, name);
    }

  private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        clock_ = std::make_unique<VirtualClock>();
        port_ = std::make_unique<FakePort>(*clock_);
        view_ = std::make_unique<FakeLinkView>();
        link_ = std::make_unique<link::Link>(*port_, *clock_, *view_);
        link_->port_connected = true;
        state_ = ProgramState();
        state_.base_dir = folder_with_separator(folder_->path());
        data_ = std::make_unique<LoggerData>(*link_, state_);
    }

    void a_download_is_the_answer_and_a_line_end() {
        meter_sends("LOG 0001\r\nD01 1 2\r\n");
        QCOMPARE(download(), NameFault::none);
        QCOMPARE(port_->written, QByteArray("DATAOUT\r"));
        QCOMPARE(state_.temp_file_name, QStringLiteral("DWL.TMP"));
        QCOMPARE(files(), QStringList{QStringLiteral("DWL.TMP")});
        QCOMPARE(content("DWL.TMP"), QByteArray("LOG 0001\r\nD01 1 2\r\nOK\r\n"));
        QCOMPARE(data_->text(), QByteArray("LOG 0001\r\nD01 1 2\r\nOK\r\n"));
        QCOMPARE(data_->file_name(), QString());
    }

    void the_last_log_differs_in_its_command() {
        meter_sends("x\r\n");
        QCOMPARE(data_->download(link::command::kLastLog, QStringLiteral("a")), NameFault::none);
        QCOMPARE(port_->written, QByteArray("DATALASTOUT\r"));
        QCOMPARE(content("A"), QByteArray("x\r\nOK\r\n"));
    }

    void a_second_download_replaces_the_first() {
        meter_sends("one\r\ntwo\r\n");
        download();
        meter_sends("three\r\n");
        download();
        QCOMPARE(data_->text(), QByteArray("three\r\nOK\r\n"));
        QCOMPARE(content("DWL.TMP"), QByteArray("three\r\nOK\r\n"));
    }

    /// As with any file that cannot be written; the meter still has the data.
    void a_folder_that_another_program_holds_leaves_the_text_empty() {
        meter_sends("one\r\n");
        {
            const platform::FileLock other(folder_->path());
            download();
        }
        QCOMPARE(data_->text(), QByteArray());
        QCOMPARE(files(), QStringList());
        download();
        QCOMPARE(data_->text(), QByteArray("one\r\nOK\r\n"));
    }

    void every_byte_survives() {
        const QByteArray bytes = all_bytes();
        meter_sends(bytes + "\r\n" + bytes + "\r\n");
        download();
        const QByteArray answer = bytes + "\r\n" + bytes + "\r\nOK";
        QCOMPARE(data_->text(), answer + "\r\n");
        QCOMPARE(content("DWL.TMP"), answer + "\r\n");
        data_->save(path("all.dwl"));
        QCOMPARE(content("all.dwl"), answer + "\r\n\r\n");
        data_->open(path("all.dwl"));
        QCOMPARE(data_->text(), answer + "\r\n\r\n");
    }

    void lines_end_in_cr_lf_or_both_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("nothing") << QByteArray() << QByteArray();
        QTest::newRow("no end") << QByteArray("a") << QByteArray("a\r\n");
        QTest::newRow("cr lf") << QByteArray("a\r\nb\r\n") << QByteArray("a\r\nb\r\n");
        QTest::newRow("cr") << QByteArray("a\rb\r") << QByteArray("a\r\nb\r\n");
        QTest::newRow("lf") << QByteArray("a\nb\n") << QByteArray("a\r\nb\r\n");
        QTest::newRow("lf cr") << QByteArray("a\n\rb") << QByteArray("a\r\n\r\nb\r\n");
        QTest::newRow("empty lines")
            << QByteArray("\r\n\r\r\n\n") << QByteArray("\r\n\r\n\r\n\r\n");
    }
    void lines_end_in_cr_lf_or_both() {
        QFETCH(QByteArray, content);
        QTEST(with_line_ends(content), "text");
        write("x.dwl", content);
        data_->open(path("x.dwl"));
        QTEST(data_->text(), "text");
        QCOMPARE(data_->file_name(), path("x.dwl"));
    }

    void names_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("fault");
        const auto row = [](const char* name, NameFault fault) {
            QTest::newRow(name) << QString::fromLatin1(name) << int(fault);
        };
        row("", NameFault::empty);
        row("   ", NameFault::empty);
        row("dwl.tmp", NameFault::none);
        row("a b", NameFault::none);
        row(".hidden", NameFault::none);
        row("..", NameFault::forbidden);
        row(" .. ", NameFault::forbidden);
        row(".", NameFault::forbidden);
        row("../x", NameFault::forbidden);
        row("..\\x", NameFault::forbidden);
        row("/etc/x", NameFault::forbidden);
        row("sub/x", NameFault::forbidden);
        row("sub\\x", NameFault::forbidden);
        row("VKDM47_03.mdb", NameFault::forbidden);
        row("vkdm47_03.mdb", NameFault::forbidden);
        row(" vkdm47_03.MDB ", NameFault::forbidden);
        row("vkdm47_03.mdb-wal", NameFault::forbidden);
        row("vkdm47_03", NameFault::none);
    }
    void names() {
        QFETCH(QString, name);
        meter_sends("x\r\n");
        QTEST(int(download(name)), "fault");
        QCOMPARE(state_.temp_file_name, name.toUpper());
        const bool good = temporary_name_fault(name) == NameFault::none;
        QCOMPARE(port_->written, good ? QByteArray("DATAOUT\r") : QByteArray());
        QCOMPARE(files(), good ? QStringList{name.toUpper()} : QStringList());
    }

    void a_refused_name_keeps_what_is_shown() {
        meter_sends("x\r\n");
        download();
        QCOMPARE(download(QStringLiteral(" ")), NameFault::empty);
        QCOMPARE(data_->text(), QByteArray("x\r\nOK\r\n"));
    }

    void a_lost_link_leaves_an_empty_line() {
        meter_sends("old\r\n");
        download();
        port_->answer = [](const QByteArray& command) { return command + "\rLOG 0001\r\nD01 "; };
        download();
        QVERIFY(!link_->port_connected);
        QVERIFY(clock_->elapsed() > 240 && clock_->elapsed() < 242);
        QCOMPARE(data_->text(), QByteArray("\r\n"));
        QCOMPARE(content("DWL.TMP"), QByteArray("\r\n"));
    }

    void without_a_link_the_last_answer_is_shown() {
        link_->port_connected = false;
        leave_answer(*link_, *port_, "left over");
        download();
        QCOMPARE(port_->written, QByteArray());
        QCOMPARE(data_->text(), QByteArray("left over\r\n"));
    }

    void the_bytes_so_far_are_told_during_a_download_alone() {
        QList<qsizetype> told;
        data_->on_bytes = [&](qsizetype bytes) {
            if (told.isEmpty() || told.last() != bytes) told += bytes;
        };
        port_->answer = [this](const QByteArray& command) {
            port_->feed("abc", 1);
            port_->feed("\r\nOK\r", 2);
            return command + "\r";
        };
        download();
        QCOMPARE(told, QList<qsizetype>({8, 11}));
        QVERIFY(!link_->on_received);
        link_->send(link::command::kStartLog);
        QCOMPARE(told.size(), 2);
    }

    void a_temporary_file_that_cannot_be_written_shows_nothing() {
        QVERIFY(QDir(folder_->path()).mkdir(QStringLiteral("DWL.TMP")));
        meter_sends("x\r\n");
        QCOMPARE(download(), NameFault::none);
        QCOMPARE(data_->text(), QByteArray());
    }

    void a_pipe_holds_nothing_up() {
        QCOMPARE(mkfifo(QFile::encodeName(path("DWL.TMP")).constData(), 0600), 0);
        meter_sends("x\r\n");
        QCOMPARE(download(), NameFault::none);
        QCOMPARE(data_->text(), QByteArray());
        data_->open(path("DWL.TMP"));
        QCOMPARE(data_->file_name(), QString());
    }

    void a_full_disk_is_silent_and_leaves_the_name() {
        meter_sends(QByteArray(100000, 'x') + "\r\n");
        download();
        data_->save(path("good.dwl"));
        QCOMPARE(data_->file_name(), path("good.dwl"));
        const QByteArray text = data_->text();
        {
            const FullDisk full(50000);
            data_->save(path("bad.dwl"));
            QCOMPARE(data_->file_name(), path("good.dwl"));
            QCOMPARE(data_->text(), text);
            download();
            QCOMPARE(data_->text(), QByteArray());
        }
    }

    void an_older_file_stands_where_the_newer_does_not_fit() {
        // Where the folder takes no second file beside it, the older one used to be written over.
        write("day.dwl", "older");
        QVERIFY(QFile::setPermissions(path("day.dwl"), kWrittenByAll));
        meter_sends(QByteArray(5000, 'x') + "\r\n");
        download();
        QVERIFY(QFile::setPermissions(folder_->path(), kWrittenByNobody));
        {
            const OrdinaryUser user;
            const FullDisk disk(1000);
            data_->save(path("day.dwl"));
        }
        QCOMPARE(data_->file_name(), QString());
        QCOMPARE(content("day.dwl"), QByteArray("older"));
    }

    void a_temporary_file_follows_no_link() {
        write("own.txt", "kept");
        QVERIFY(QFile::link(path("own.txt"), path("A.TMP")));
        meter_sends("x\r");
        data_->download(link::command::kAllLogs, "a.tmp");
        QCOMPARE(data_->text(), QByteArray());
        QCOMPARE(content("own.txt"), QByteArray("kept"));
    }

    void what_a_file_takes_from_the_user_is_told_each_time() {
        QStringList told;
        state_.costs.on_cost = [&](const Bilingual& text) { told += QString(text.english); };
        QVERIFY(QDir(folder_->path()).mkdir("A.TMP"));
        meter_sends("x\r");
        for (int time = 0; time < 2; ++time) data_->download(link::command::kAllLogs, "a.tmp");
        data_->save(folder_->path());
        data_->open(path("missing.dwl"));
        QCOMPARE(told.size(), 4);
        QVERIFY(told[0].startsWith("The download is not shown"));
        QCOMPARE(told[1], told[0]);
        QVERIFY(told[2].startsWith("The log was not saved"));
        QVERIFY(told[3].startsWith("The log was not opened"));
        data_->download(link::command::kAllLogs, "b.tmp");
        QCOMPARE(told.size(), 4);
    }

    void files_that_cannot_be_read_empty_the_text_and_keep_the_name() {
        write("good.dwl", "a\r\n");
        data_->open(path("good.dwl"));
        data_->open(path("missing.dwl"));
        QCOMPARE(data_->text(), QByteArray());
        QCOMPARE(data_->file_name(), path("good.dwl"));
        data_->open(folder_->path());
        QCOMPARE(data_->file_name(), path("good.dwl"));
    }

    void a_file_beyond_all_measure_is_not_loaded() {
        QFile file(path("huge.dwl"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(qint64{65} * 1024 * 1024));
        data_->open(path("huge.dwl"));
        QCOMPARE(data_->text(), QByteArray());
    }

    void saving_overwrites_without_asking() {
        write("day.dwl", "something longer than what comes now");
        meter_sends("x\r\n");
        download();
        data_->save(path("day.dwl"));
        QCOMPARE(content("day.dwl"), QByteArray("x\r\nOK\r\n\r\n"));
    }

    void deleting_empties_the_text_and_removes_the_file() {
        write("day.dwl", "a\r\n");
        data_->open(path("day.dwl"));
        data_->remove(path("day.dwl"));
        QCOMPARE(data_->text(), QByteArray());
        QCOMPARE(files(), QStringList());
        data_->remove(path("day.dwl"));
        QCOMPARE(data_->text(), QByteArray());
    }

    void the_printed_page() {
        QCOMPARE(print_page({}), QStringLiteral("\r\n\r\n"));
        QCOMPARE(print_page("a\r\n\xe0\r\n"), QStringLiteral("\r\n\r\na\r\n\u00e0\r\n"));
    }
};

}  // namespace m47::logger

QTEST_APPLESS_MAIN(m47::logger::DataTest)
#include "data_test.moc"
