// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_log.h"

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>
#include <csignal>

#include "measurement_row.h"

namespace m47::measurement {
namespace {

const QByteArray kAnalogLine("21/11/26\t10:00:00\t503.25\t9750\t58.3\t\t\t\t\t\tPASS");

/// While it lives no file can grow past `bytes`: a write comes back short, as on a full disk.
class DiskFullAt {
  public:
    explicit DiskFullAt(qint64 bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{static_cast<rlim_t>(bytes), before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~DiskFullAt() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    DiskFullAt(const DiskFullAt&) = delete;
    DiskFullAt& operator=(const DiskFullAt&) = delete;

  private:
    void (*handler_)(int);
    rlimit before_{};
};

/// While it lives file permissions bind the test even where it runs as root.
class OrdinaryUser {
  public:
    OrdinaryUser() : before_(geteuid()) {
        if (before_ == 0) ok_ = seteuid(65534) == 0;
    }
    ~OrdinaryUser() {
        if (geteuid() != before_ && seteuid(before_) != 0) std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    bool ok() const { return ok_; }

  private:
    uid_t before_;
    bool ok_ = true;
};

QByteArray numbered_line(int number) {
    return QByteArray::number(number) + "\t10:00:00\t503.25\t9750\t58.3\t\t\t\t\t\tPASS";
}

}  // namespace

class MeasurementLogTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;

    QString path(const QString& name = QStringLiteral("day.log")) const {
        return folder_->filePath(name);
    }

    QString write(const QByteArray& bytes) const {
        QFile file(path());
        const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                             file.write(bytes) == bytes.size();
        return written ? path() : QString();
    }

    QByteArray contents(const QString& name = QStringLiteral("day.log")) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }

    static QList<QByteArray> lines_of(const PageModel& page) {
        QList<QByteArray> lines;
        for (int row = 0; row < page.measurements(); ++row) {
            const std::string_view line = page.store().line(row);
            lines << QByteArray(line.data(), static_cast<qsizetype>(line.size()));
        }
        return lines;
    }

    static bool append(MeasurementLog& log, const QByteArray& line) {
        return log.append({line.constData(), static_cast<std::size_t>(line.size())});
    }

    /// What a page that held one row shows after a log of `bytes` was opened.
    QList<QByteArray> loaded(const QByteArray& bytes) const {
        PageModel page;
        page.append({QStringLiteral("before")});
        MeasurementLog log;
        log.open(write(bytes), page);
        return lines_of(page);
    }

  private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
    }

    void is_closed_at_start() {
        MeasurementLog log;
        QVERIFY(!log.log_open());
        QVERIFY(!append(log, kAnalogLine));
        QVERIFY(!log.reason().isEmpty());
    }

    void a_cancelled_choice_opens_nothing() {
        MeasurementLog log;
        PageModel page;
        page.append({QStringLiteral("before")});
        log.open(QString(), page);
        QVERIFY(!log.log_open());
        QCOMPARE(page.measurements(), 1);
    }

    void a_new_name_leaves_the_page_and_is_created_by_the_first_row() {
        MeasurementLog log;
        PageModel page;
        page.append({QStringLiteral("before")});
        QSignalSpy reset(&page, &PageModel::modelReset);
        log.open(path(), page);
        QVERIFY(log.log_open());
        QCOMPARE(log.path(), path());
        QCOMPARE(reset.count(), 0);
        QCOMPARE(page.measurements(), 1);
        QVERIFY(!QFileInfo::exists(path()));

        QVERIFY2(append(log, kAnalogLine), qPrintable(log.reason()));
        QCOMPARE(contents(), kAnalogLine + "\r\n");
        // Others may read and write it as the user has set it; it is nothing to run.
        QCOMPARE(QFileInfo(path()).permissions() & QFile::Permissions(0x111), QFile::Permissions());
    }

    void an_analog_row_is_a_line_of_eleven_fields() {
        MeasurementLog log;
        PageModel page;
        log.open(path(), page);
        MeasurementTexts shown;
        shown.date_time = QDateTime({2026, 11, 21}, {10, 0, 0});
        shown.meas_mode = 2;
        shown.fsat = QStringLiteral(" 503.25");
        shown.ol_freq = QStringLiteral("9750 ");
        shown.level = QStringLiteral("58.3");
        shown.ber = QStringLiteral("2.0E-4");
        shown.status = QStringLiteral("PASS");
        page.append(measurement_row(shown));
        QVERIFY(log.append(page.store().line(0)));
        QCOMPARE(contents(), kAnalogLine + "\r\n");
        QCOMPARE(contents().count('\t'), 10);
    }

    void a_log_of_three_lines_goes_on_with_the_fourth() {
        const QByteArray three =
            numbered_line(1) + "\r\n" + numbered_line(2) + "\r\n" + numbered_line(3) + "\r\n";
        MeasurementLog log;
        PageModel page;
        for (int row = 0; row < 9; ++row) page.append({QStringLiteral("before")});
        QSignalSpy reset(&page, &PageModel::modelReset);
        log.open(write(three), page);
        QCOMPARE(reset.count(), 1);
        // The header row stands apart from the model's rows.
        QCOMPARE(page.rowCount(), 4);
        QCOMPARE(page.data(page.index(1, 0)).toString(), QStringLiteral("2"));
        QCOMPARE(page.data(page.index(1, 10)).toString(), QStringLiteral("PASS"));

        page.append(QString::fromLatin1(kAnalogLine).split(u'\t'));
        QVERIFY(log.append(page.store().line(3)));
        QCOMPARE(page.rowCount(), 5);
        QCOMPARE(contents(), three + kAnalogLine + "\r\n");
    }

    void every_line_end_counts_once_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QList<QByteArray>>("first_cells");
        const auto row = [](const char* name, const QByteArray& bytes, QList<QByteArray> cells) {
            QTest::newRow(name) << bytes << cells;
        };
        row("empty file", "", {});
        row("CR LF", "a\r\nb\r\n", {"a", "b"});
        row("LF", "a\nb\n", {"a", "b"});
        row("CR", "a\rb\r", {"a", "b"});
        row("all three", "a\rb\nc\r\nd\n", {"a", "b", "c", "d"});
        row("no end at the last", "a\r\nb", {"a", "b"});
        row("half an end at the last", "a\r\nb\r", {"a", "b"});
        row("empty lines", "\r\n\r\na\n\n\r\r", {"", "", "a", "", "", ""});
        row("LF CR is two ends", "a\n\rb", {"a", "", "b"});
        row("only an LF", "\n", {""});
        row("a zero byte", QByteArray("a\0b\r\nc", 6), {QByteArray("a\0b", 3), "c"});
    }

    void every_line_end_counts_once() {
        QFETCH(QByteArray, bytes);
        QFETCH(QList<QByteArray>, first_cells);
        QList<QByteArray> expected;
        for (const QByteArray& cell : first_cells) expected << cell + QByteArray(10, '\t');
        QCOMPARE(loaded(bytes), expected);
    }

    void lines_are_whole_wherever_a_block_ends_data() {
        QTest::addColumn<QByteArray>("line_end");
        QTest::newRow("CR LF") << QByteArray("\r\n");
        QTest::newRow("LF") << QByteArray("\n");
        QTest::newRow("CR") << QByteArray("\r");
    }

    void lines_are_whole_wherever_a_block_ends() {
        QFETCH(QByteArray, line_end);
        // Lines of 64 bytes behind a first one of every length: each byte of a line, its line end
        // included, falls on the end of a block once, whatever power of two the block is.
        constexpr int kLines = 5000;
        const QByteArray rest(64 - 6 - line_end.size(), '.');
        QByteArray lines;
        QList<QByteArray> expected;
        for (int line = 0; line < kLines; ++line) {
            const QByteArray text = QByteArray::number(100000 + line) + rest;
            lines += text + line_end;
            expected << text + QByteArray(10, '\t');
        }
        for (qsizetype shift = 0; shift < 64; ++shift) {
            const QByteArray first(shift, 'x');
            QList<QByteArray> got = loaded(first + line_end + lines);
            QCOMPARE(got.size(), kLines + 1);
            QCOMPARE(got.takeFirst(), first + QByteArray(10, '\t'));
            QVERIFY2(got == expected, qPrintable(QString::number(shift)));
        }
    }

    void fewer_fields_leave_the_last_columns_empty() {
        QCOMPARE(loaded("a\tb\tc\r\n\tx\r\n"),
                 (QList<QByteArray>{"a\tb\tc\t\t\t\t\t\t\t\t", "\tx\t\t\t\t\t\t\t\t\t"}));
    }

    void a_twelfth_field_ends_the_reading() {
        const QByteArray eleven("1\t2\t3\t4\t5\t6\t7\t8\t9\t10\t11");
        MeasurementLog log;
        PageModel page;
        const QByteArray bytes = numbered_line(1) + "\r\n" + eleven + "\t12\r\nlost\r\n";
        log.open(write(bytes), page);
        QVERIFY(log.log_open());
        QCOMPARE(lines_of(page), (QList<QByteArray>{numbered_line(1), eleven}));
        QCOMPARE(page.rowCount(), 3);
        QCOMPARE(contents(), bytes);

        QVERIFY(append(log, kAnalogLine));
        QCOMPARE(contents(), bytes + kAnalogLine + "\r\n");
    }

    void what_is_no_text_line_ends_the_reading() {
        const QByteArray kept("kept\t\t\t\t\t\t\t\t\t\t");
        QCOMPARE(loaded("kept\r\n" + QByteArray(200000, 'x') + "\r\nkept\r\n").size(), 3);
        QCOMPARE(loaded("kept\r\n" + QByteArray(3000000, 'x') + "\r\nlost\r\n"),
                 QList<QByteArray>{kept});
    }

    void latin1_bytes_come_back_as_they_were() {
        QByteArray cell;
        for (int code = 0; code < 256; ++code)
            if (code != '\t' && code != '\r' && code != '\n') cell += static_cast<char>(code);
        const QByteArray line = cell + "\tb" + QByteArray(9, '\t');
        MeasurementLog log;
        PageModel page;
        log.open(write(line + "\r\n"), page);
        QCOMPARE(page.data(page.index(0, 0)).toString(), QString::fromLatin1(cell));
        QVERIFY(log.append(page.store().line(0)));
        QCOMPARE(contents(), line + "\r\n" + line + "\r\n");
        MeasurementLog again;
        PageModel second;
        again.open(path(), second);
        QCOMPARE(lines_of(second), (QList<QByteArray>{line, line}));
    }

    void a_closed_log_takes_nothing_and_keeps_the_page() {
        MeasurementLog log;
        PageModel page;
        log.open(write(kAnalogLine + "\r\n"), page);
        log.close();
        QVERIFY(!log.log_open());
        QCOMPARE(page.measurements(), 1);
        QVERIFY(!append(log, kAnalogLine));
        QCOMPARE(contents(), kAnalogLine + "\r\n");
    }

    void clearing_the_page_leaves_the_file() {
        MeasurementLog log;
        PageModel page;
        log.open(write(kAnalogLine + "\r\n"), page);
        page.clear();
        QCOMPARE(contents(), kAnalogLine + "\r\n");
        QVERIFY(append(log, kAnalogLine));
        QCOMPARE(contents(), kAnalogLine + "\r\n" + kAnalogLine + "\r\n");
    }

    void the_file_is_not_held_open_between_rows() {
        MeasurementLog log;
        PageModel page;
        log.open(path(), page);
        QVERIFY(append(log, "first"));
        QVERIFY(QFile::rename(path(), path(QStringLiteral("kept.log"))));
        QVERIFY(append(log, "second"));
        QCOMPARE(contents(QStringLiteral("kept.log")), QByteArray("first\r\n"));
        QCOMPARE(contents(), QByteArray("second\r\n"));
    }

    void a_half_line_gets_its_line_end_first_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("half") << QByteArray("a\r\nhal") << QByteArray("a\r\nhal\r\nnew\r\n");
        QTest::newRow("one character") << QByteArray("a") << QByteArray("a\r\nnew\r\n");
        QTest::newRow("TAB") << QByteArray("a\t") << QByteArray("a\t\r\nnew\r\n");
        QTest::newRow("CR LF") << QByteArray("a\r\n") << QByteArray("a\r\nnew\r\n");
        QTest::newRow("LF") << QByteArray("a\n") << QByteArray("a\nnew\r\n");
        QTest::newRow("CR") << QByteArray("a\r") << QByteArray("a\rnew\r\n");
        QTest::newRow("empty") << QByteArray("") << QByteArray("new\r\n");
    }

    void a_half_line_gets_its_line_end_first() {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        MeasurementLog log;
        PageModel page;
        log.open(write(before), page);
        QVERIFY(append(log, "new"));
        QCOMPARE(contents(), after);
    }

    void a_full_disk_leaves_no_part_of_a_line() {
        const QByteArray before = numbered_line(1) + "\r\nhal";
        MeasurementLog log;
        PageModel page;
        log.open(write(before), page);
        for (qint64 room : {0, 1, 2, 10, 40}) {
            bool done = true;
            {
                const DiskFullAt full(before.size() + room);
                done = append(log, kAnalogLine);
            }
            QVERIFY(!done);
            // Nothing of the line is left, so nothing of that is said.
            QCOMPARE(log.reason(), qt_error_string(EFBIG));
            QCOMPARE(contents(), before);
        }
        QVERIFY(append(log, kAnalogLine));
        QVERIFY(log.reason().isEmpty());
        QCOMPARE(contents(), before + "\r\n" + kAnalogLine + "\r\n");
    }

    void a_line_that_just_fits_is_written() {
        MeasurementLog log;
        PageModel page;
        log.open(write("a\r\n"), page);
        bool done = false;
        {
            const DiskFullAt full(3 + kAnalogLine.size() + 2);
            done = append(log, kAnalogLine);
        }
        QVERIFY(done);
        QCOMPARE(contents(), "a\r\n" + kAnalogLine + "\r\n");
    }

    void a_read_only_folder_refuses_a_new_log() {
        const QByteArray folder = QFile::encodeName(folder_->path());
        QCOMPARE(chmod(folder.constData(), 0555), 0);
        MeasurementLog log;
        PageModel page;
        log.open(path(), page);
        bool refused = false;
        {
            const OrdinaryUser user;
            QVERIFY(user.ok());
            refused = !append(log, kAnalogLine);
        }
        QVERIFY(refused);
        QVERIFY(!log.reason().isEmpty());
        QVERIFY(!QFileInfo::exists(path()));

        QCOMPARE(chmod(folder.constData(), 0777), 0);
        const OrdinaryUser user;
        QVERIFY2(append(log, kAnalogLine), qPrintable(log.reason()));
    }

    void permissions_of_the_file_decide() {
        QCOMPARE(chmod(QFile::encodeName(folder_->path()).constData(), 0755), 0);
        const QByteArray name = QFile::encodeName(write("a\r\n"));
        PageModel page;
        page.append({QStringLiteral("before")});
        MeasurementLog log;
        bool read_only_took = true;
        bool write_only_took = false;
        {
            QCOMPARE(chmod(name.constData(), 0444), 0);
            const OrdinaryUser user;
            log.open(path(), page);
            read_only_took = append(log, kAnalogLine);
        }
        QVERIFY(!read_only_took);
        QCOMPARE(lines_of(page), QList<QByteArray>{"a" + QByteArray(10, '\t')});
        {
            QCOMPARE(chmod(name.constData(), 0222), 0);
            const OrdinaryUser user;
            page.clear();
            log.open(path(), page);
            write_only_took = append(log, "b");
        }
        QVERIFY(log.log_open());
        QCOMPARE(page.measurements(), 0);
        QVERIFY(write_only_took);
        QCOMPARE(chmod(name.constData(), 0644), 0);
        QCOMPARE(contents(), QByteArray("a\r\nb\r\n"));
    }

    void a_vanished_folder_refuses_the_line() {
        MeasurementLog log;
        PageModel page;
        log.open(path(QStringLiteral("gone/day.log")), page);
        QVERIFY(log.log_open());
        QVERIFY(!append(log, kAnalogLine));
        QVERIFY(!log.reason().isEmpty());
    }

    void what_is_no_plain_file_is_refused_at_once_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("pipe") << QStringLiteral("pipe");
        QTest::newRow("folder") << QStringLiteral("/tmp");
        QTest::newRow("device that is always full") << QStringLiteral("/dev/full");
        QTest::newRow("endless device") << QStringLiteral("/dev/zero");
    }

    void what_is_no_plain_file_is_refused_at_once() {
        QFETCH(QString, name);
        if (name == QStringLiteral("pipe")) {
            name = path(name);
            QCOMPARE(mkfifo(QFile::encodeName(name).constData(), 0666), 0);
        }
        MeasurementLog log;
        PageModel page;
        page.append({QStringLiteral("before")});
        QElapsedTimer timer;
        timer.start();
        log.open(name, page);
        QVERIFY(log.log_open());
        QCOMPARE(page.measurements(), 1);
        QVERIFY(!append(log, kAnalogLine));
        QVERIFY(!log.reason().isEmpty());
        QVERIFY(timer.elapsed() < 5000);
    }

    void a_log_that_another_program_holds_takes_its_lines() {
        const QString log_path = write("a\r\n");
        QFile other(log_path);
        QVERIFY(other.open(QIODevice::ReadOnly));
        QCOMPARE(flock(other.handle(), LOCK_EX), 0);
        MeasurementLog log;
        PageModel page;
        log.open(log_path, page);
        QVERIFY2(append(log, "b"), qPrintable(log.reason()));
        QCOMPARE(contents(), QByteArray("a\r\nb\r\n"));
        bool done = true;
        {
            const DiskFullAt full(6 + 10);
            done = append(log, kAnalogLine);
        }
        // What follows may be the other one's line by then.
        QVERIFY(!done);
        QVERIFY2(log.reason().contains(QLatin1String("may be left")), qPrintable(log.reason()));
        QCOMPARE(contents(), "a\r\nb\r\n" + kAnalogLine.first(10));
    }

    void a_link_to_a_log_is_the_log() {
        QVERIFY(QFile::link(write("a\r\n"), path(QStringLiteral("link.log"))));
        MeasurementLog log;
        PageModel page;
        log.open(path(QStringLiteral("link.log")), page);
        QCOMPARE(page.measurements(), 1);
        QVERIFY(append(log, "b"));
        QCOMPARE(contents(), QByteArray("a\r\nb\r\n"));
    }
};

}  // namespace m47::measurement

QTEST_GUILESS_MAIN(m47::measurement::MeasurementLogTest)
#include "measurement_log_test.moc"
