// SPDX-License-Identifier: GPL-3.0-or-later
// Files of the old engine: a real one against another reader of such files, made ones of both
// versions, damaged ones.
#include <fcntl.h>
#include <iconv.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <cerrno>

#include "attempts.h"
#include "confinement.h"
#include "import_report.h"
#include "import_values.h"
#include "jet_reader.h"
#include "jet_writer.h"
#include "old_reader.h"
#include "part.h"

namespace m47::olddb {

class ReaderTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder_;

    static QByteArray real_file() {
        QFile file(QStringLiteral(OLD_DATABASE));
        if (!file.open(QIODevice::ReadOnly)) qFatal("no fixture");
        return file.readAll();
    }

    QString written(const QByteArray& content) const {
        const QString path = folder_.filePath(QStringLiteral("OLD è.mdb"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    static OldDatabase read(const QString& path) {
        OldFileError error;
        const auto database = read_old_database(path, error);
        if (!database) qFatal("not read: fault %d, %s", int(error.fault), qPrintable(error.detail));
        return *database;
    }

    OldFileError fault_of(const QByteArray& content) const {
        OldFileError error;
        if (read_old_database(written(content), error)) qFatal("it was read");
        return error;
    }

    static const OldTable& table(const OldDatabase& database, const char* name) {
        for (const OldTable& one : database.tables)
            if (one.name == QLatin1String(name)) return one;
        qFatal("no table %s", name);
    }

    static QVariant cell(const OldDatabase& database, const char* table_name, qsizetype row,
                         const char* field) {
        const OldTable& one = table(database, table_name);
        return one.rows[row][one.fields.indexOf(QLatin1String(field))];
    }

    /// The tables of a made file.
    static QList<JetRows> made_tables() {
        const QString lines = QString(200, u'à') + QStringLiteral("\rS9\r\n");
        const QString memo = QStringLiteral("S11300\r").repeated(600);
        return {
            {QStringLiteral("gruppo"),
             {{QStringLiteral("nome"), JetKind::text}},
             {{QString::fromUtf8("città")}, {QStringLiteral(" b ")}}},
            {QStringLiteral("programmi"),
             {{QStringLiteral("nome"), JetKind::text},
              {QStringLiteral("pg_num"), JetKind::byte},
              {QStringLiteral("loc_osc"), JetKind::boolean},
              {QStringLiteral("frequenza"), JetKind::number},
              {QStringLiteral("satchbw"), JetKind::single},
              {QStringLiteral("loc_osc0"), JetKind::integer},
              {QStringLiteral("K22"), JetKind::long_integer},
              {QStringLiteral("lev_min"), JetKind::text},
              {QStringLiteral("lev_max"), JetKind::text}},
             {{QString::fromUtf8("città"), 200, true, 1234.5, 36.6F, -2, -70000,
               QStringLiteral(" 45 "), QStringLiteral("")},
              {QStringLiteral(" b "), {}, false, {}, {}, {}, {}, {}, QString::fromUtf8("€")}}},
            {QStringLiteral("asl"),
             {{QStringLiteral("nome"), JetKind::text},
              {QStringLiteral("dati"), JetKind::memo},
              {QStringLiteral("picture"), JetKind::ole}},
             {{QStringLiteral("row"), QStringLiteral("a\rb\r\n"), {}},
              {QStringLiteral("page"), lines, {}},
              {QStringLiteral("chain"), memo, {}},
              {QStringLiteral("none"), {}, {}}}},
            {QStringLiteral("clienti"), {{QStringLiteral("id"), JetKind::long_integer}}, {{1}}},
        };
    }

    /// In a process that is to be held: ends it where it says that it is not.
    static void insist_on(bool held) {
        if (!held) ::_exit(99);
    }
    /// Every attempt without and with `confine`: all pass, and then all those that `wanted` names
    /// are refused.
    void verify_refused(const std::function<void()>& confine,
                        const std::function<bool(const Attempt&)>& wanted) const {
        int refused = 0;
        for (const bool confined : {false, true}) {
            const QTemporaryDir folder;
            QFile victim(folder.filePath("victim"));
            QVERIFY(victim.open(QIODevice::WriteOnly) && victim.write("of value") > 0);
            victim.close();
            for (const Attempt& attempt : attempts_in(QFile::encodeName(folder.path()))) {
                if (confined && !wanted(attempt)) continue;
                const int outcome = outcome_of(
                    attempt, confined ? confine : [] {});
                if (!confined) {
                    QVERIFY2(outcome == 0, attempt.name);
                    restore(folder);
                    continue;
                }
                QVERIFY2(outcome == EPERM || outcome == EACCES || outcome == EMFILE, attempt.name);
                ++refused;
            }
            if (confined) QCOMPARE(content_of(folder.filePath("victim")), QByteArray("of value"));
        }
        qInfo("%d attempts refused", refused);
    }
    /// As it was before an attempt that succeeded.
    static void restore(const QTemporaryDir& folder) {
        const QString other = folder.filePath("other");
        QFile::remove(other);
        QDir().rmdir(other);
        QFile victim(folder.filePath("victim"));
        if (!victim.open(QIODevice::WriteOnly)) qFatal("no victim");
        victim.write("of value");
    }
    /// As the system's own tables have it.
    static QString character_of(int page, char byte) {
        const iconv_t table = ::iconv_open("UTF-8", "CP" + QByteArray::number(page));
        std::array<char, 8> text{};
        char* from = &byte;
        char* to = text.data();
        size_t left = 1;
        size_t room = text.size();
        if (::iconv(table, &from, &left, &to, &room) != 0) qFatal("no code page %d", page);
        ::iconv_close(table);
        return QString::fromUtf8(text.data());
    }
    static QByteArray content_of(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

  private Q_SLOTS:
    void the_reading_process_is_held() {
        std::array<int, 2> out{};
        QVERIFY(::pipe2(out.data(), O_CLOEXEC) == 0);
        // It waits with its rows in hand, so that it can be looked at.
        constexpr int kSmall = 4096;
        QVERIFY(::fcntl(out[1], F_SETPIPE_SZ, kSmall) >= kSmall);
        const pid_t reader = ::fork();
        if (reader == 0) {
            ::dup2(::open(OLD_DATABASE, O_RDONLY), STDIN_FILENO);
            ::dup2(out[1], STDOUT_FILENO);
            // Open in whoever starts it, next to what it needs itself.
            ::dup2(STDIN_FILENO, STDERR_FILENO + 1);
            ::execl("/proc/self/exe", "reader", kReadOldDatabase, nullptr);
            ::_exit(1);
        }
        int waiting = 0;
        QTRY_VERIFY(::ioctl(out[0], FIONREAD, &waiting) == 0 && waiting == kSmall);
        const QString about = QStringLiteral("/proc/%1/").arg(reader);
        const QByteArray status = content_of(about + "status");
        QStringList open = QDir(about + "fd").entryList(QDir::Files | QDir::System);
        ::kill(reader, SIGKILL);
        ::waitpid(reader, nullptr, 0);
        for (const int end : out) ::close(end);
        QVERIFY2(status.contains("\nSeccomp:\t2\n"), status.constData());
        QVERIFY2(status.contains("\nNoNewPrivs:\t1\n"), status.constData());
        QCOMPARE(open.join(u' '), QStringLiteral("1 2"));
    }

    void a_held_process_reaches_nothing() {
        const bool landlock = platform::landlock_version() > 0;
        verify_refused(
            [=] {
                const platform::Confinement held = platform::confine_this_process();
                insist_on(held.few_calls && held.no_files == landlock);
            },
            [](const Attempt&) { return true; });
    }

    void the_filter_of_calls_suffices() {
        verify_refused([] { insist_on(platform::give_up_calls()); },
                       [](const Attempt&) { return true; });
    }

    void landlock_suffices_for_files() {
        const int version = platform::landlock_version();
        qInfo("Landlock %d", version);
        // The kernel's own word, so that nothing is left untested by mistake.
        constexpr unsigned kAskVersion = 1;
        QCOMPARE(version > 0, ::syscall(SYS_landlock_create_ruleset, nullptr, 0, kAskVersion) > 0);
        if (version == 0) {
            qWarning("THIS KERNEL HAS NO LANDLOCK: only the filter of system calls was tested");
            QSKIP("no Landlock");
        }
        verify_refused([] { insist_on(platform::give_up_files()); },
                       [=](const Attempt& attempt) { return attempt.landlock_from <= version; });
    }

    void a_kernel_with_neither_is_told_and_limits_are_left() {
        const Attempt reading{"read", [] {
                                  pretend_an_old_kernel();
                                  const OldDatabase database = read(QStringLiteral(OLD_DATABASE));
                                  const Texts texts;
                                  return reader_remark(database, texts).contains("Landlock") ? 0
                                                                                             : 1;
                              }};
        QCOMPARE(outcome_of(reading, [] {}), 0);
        const OldDatabase database = read(QStringLiteral(OLD_DATABASE));
        QCOMPARE(reader_remark(database, Texts()), QString());
        const Attempt opening{"open", [] {
                                  pretend_an_old_kernel();
                                  const platform::Confinement held =
                                      platform::confine_this_process();
                                  if (held.no_files || held.few_calls) return 0;
                                  return ::open("/dev/null", O_RDONLY) < 0 ? errno : 0;
                              }};
        QCOMPARE(outcome_of(opening, [] {}), EMFILE);
    }

    void the_real_file_reads_as_another_reader_shows_it() {
        const OldDatabase database = read(QStringLiteral(OLD_DATABASE));
        QCOMPARE(database.version, 4);
        QVERIFY(database.others.isEmpty());
        QStringList names;
        for (const OldTable& one : database.tables) {
            names += one.name;
            QStringList lines;
            for (const QVariantList& row : one.rows) {
                QStringList cells;
                for (const QVariant& value : row)
                    cells += value.typeId() == QMetaType::Bool ? QString::number(value.toInt())
                                                               : shown_value(value);
                lines += cells.join(u'\x1f');
            }
            QProcess other;
            other.start(QStringLiteral("mdb-export"),
                        {QStringLiteral("-H"), QStringLiteral("-Q"), QStringLiteral("-d"),
                         QStringLiteral("\x1f"), QStringLiteral("-R"), QStringLiteral("\x1e"),
                         QStringLiteral(OLD_DATABASE), one.name});
            QVERIFY(other.waitForFinished());
            QCOMPARE(lines.join(u'\x1e') + u'\x1e',
                     QString::fromUtf8(other.readAllStandardOutput()));
        }
        QCOMPARE(names, (QStringList{"gruppo", "configurazione", "programmi", "asl"}));
    }

    void the_real_file_reads_value_by_value() {
        const OldDatabase database = read(QStringLiteral(OLD_DATABASE));
        QCOMPARE(table(database, "programmi").rows.size(), 13);
        QCOMPARE(cell(database, "gruppo", 1, "nome"), QVariant(QString::fromUtf8("CITTÀ")));
        QCOMPARE(cell(database, "programmi", 11, "qpsk_symbolrate"), QVariant(" 22000 "));
        QCOMPARE(cell(database, "programmi", 11, "frequenza"), QVariant(1503.2));
        QCOMPARE(cell(database, "programmi", 11, "loc_osc"), QVariant(true));
        QCOMPARE(cell(database, "programmi", 11, "diseqc_cmd"), QVariant(73LL));
        QCOMPARE(cell(database, "programmi", 0, "loc_osc"), QVariant(false));
        // Empty is not unset.
        QCOMPARE(cell(database, "programmi", 11, "mer_max"), QVariant(QStringLiteral("")));
        QVERIFY(!cell(database, "programmi", 11, "mer_max").isNull());
        QVERIFY(cell(database, "programmi", 12, "mer_max").isNull());
        QCOMPARE(cell(database, "asl", 1, "dati").toString(),
                 QStringLiteral("S113000000000000000000000000000000000000EC\r"
                                "S113001000000000000000000000000000000000DC\r"
                                "S113002000000000000000000000000000000000CC\r"
                                "S10D00302A2A2A2A2A2A2A2A2A2A1E\rS9030000FC"));
    }

    void files_of_both_versions_read_byte_for_byte_data() {
        QTest::addColumn<int>("version");
        QTest::newRow("Jet 3") << 3;
        QTest::newRow("Jet 4") << 4;
    }
    void files_of_both_versions_read_byte_for_byte() {
        QFETCH(int, version);
        const QList<JetRows> made = made_tables();
        const OldDatabase database = read(written(jet_file(version, real_file(), made)));
        QCOMPARE(database.version, version);
        QCOMPARE(database.others, (QStringList{"asl.picture", "clienti"}));
        QCOMPARE(table(database, "gruppo").rows, made[0].rows);
        const QVariantList full{QString::fromUtf8("città"),
                                200LL,
                                true,
                                1234.5,
                                36.6,
                                -2LL,
                                -70000LL,
                                QStringLiteral(" 45 "),
                                QStringLiteral("")};
        QCOMPARE(table(database, "programmi").rows[0], full);
        QVERIFY(!table(database, "programmi").rows[0].last().isNull());
        const QVariantList& bare = table(database, "programmi").rows[1];
        for (qsizetype k = 3; k < 8; ++k) QVERIFY(bare[k].isNull());
        QCOMPARE(bare[2], QVariant(false));
        QCOMPARE(bare[8], QVariant(QString::fromUtf8("€")));
        for (qsizetype k = 0; k < 4; ++k)
            QCOMPARE(table(database, "asl").rows[k][1], made[2].rows[k][1]);
    }

    void characters_of_more_than_a_byte_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("beyond the first plane") << QString::fromUtf8("\U0001F4E1 xy");
        QTest::newRow("between single bytes") << QString::fromUtf8("ab€‰cd");
        QTest::newRow("at the end") << QString::fromUtf8("abc€");
        QTest::newRow("at the begin") << QString::fromUtf8("€abc");
        QTest::newRow("half of each") << QString::fromUtf8("\U0001F4E1àb");
    }
    void characters_of_more_than_a_byte() {
        QFETCH(QString, text);
        const QList<JetRows> made{
            {QStringLiteral("gruppo"), {{QStringLiteral("nome"), JetKind::text}}, {{text}}}};
        const OldDatabase database = read(written(jet_file(4, real_file(), made)));
        QCOMPARE(database.tables[0].rows[0][0], QVariant(text));
    }

    void a_long_text_that_is_not_what_is_stated_is_damage_data() {
        QTest::addColumn<QByteArray>("stated");
        QTest::addColumn<QByteArray>("other");
        const auto row = [](const char* name, const QByteArray& stated, const QByteArray& other) {
            QTest::newRow(name) << stated << other;
        };
        // The length, and in the two highest bits where the text lies.
        row("longer in the row", QByteArray("\x0a\0\0\x80", 4), QByteArray("\x0c\0\0\x80", 4));
        row("shorter in the row", QByteArray("\x0a\0\0\x80", 4), QByteArray("\x08\0\0\x80", 4));
        row("longer on a page", QByteArray("\x9a\x01\0\x40", 4), QByteArray("\x9c\x01\0\x40", 4));
        row("shorter on a page", QByteArray("\x9a\x01\0\x40", 4), QByteArray("\x98\x01\0\x40", 4));
        row("longer than its chain", QByteArray("\x6a\x10\0\0", 4), QByteArray("\x6c\x10\0\0", 4));
        row("on pages of a table", "LVAL", QByteArray("\2\0\0\0", 4));
    }
    void a_long_text_that_is_not_what_is_stated_is_damage() {
        QFETCH(QByteArray, stated);
        QFETCH(QByteArray, other);
        QByteArray file = jet_file(4, real_file(), made_tables());
        QVERIFY(file.contains(stated));
        file.replace(stated, other);
        QCOMPARE(fault_of(file).fault, OldFileFault::damaged);
    }

    void a_file_of_other_tables_is_told() {
        const QList<JetRows> made{
            {QStringLiteral("clienti"), {{QStringLiteral("nome"), JetKind::text}}, {{"x"}}}};
        QCOMPARE(fault_of(jet_file(4, real_file(), made)).fault, OldFileFault::foreign);
    }

    void what_is_no_such_file_is_told() {
        OldFileError error;
        QVERIFY(!read_old_database(folder_.filePath("none.mdb"), error));
        QCOMPARE(error.fault, OldFileFault::missing);
        QVERIFY(!read_old_database(folder_.path(), error));
        QCOMPARE(error.fault, OldFileFault::unreadable);
        QCOMPARE(fault_of("").fault, OldFileFault::no_jet);
        QCOMPARE(fault_of("SQLite format 3").fault, OldFileFault::no_jet);
        QCOMPARE(fault_of(real_file().first(0x14)).fault, OldFileFault::no_jet);
        QByteArray later = real_file();
        later[0x14] = 2;
        QCOMPARE(fault_of(later).fault, OldFileFault::no_jet);
    }

    void where_what_reads_such_files_is_missing_it_says_so() {
        if (Part(kJetPart).is_there()) QSKIP("the part is here");
        const OldFileError error = fault_of(real_file());
        QCOMPARE(error.fault, OldFileFault::no_reader);
        QVERIFY2(error.path.endsWith("libm47-jet.so"), qPrintable(error.path));
    }

    void a_part_that_cannot_be_loaded_is_named() {
        if (Part(kJetPart).is_there()) QSKIP("the part is here");
        const QString folder = QFileInfo(Part(kJetPart).usual_folders().first()).filePath();
        QVERIFY(QDir().mkpath(folder));
        QFile damaged(folder + "/libm47-jet.so");
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("no library") > 0);
        damaged.close();
        const OldFileError error = fault_of(real_file());
        QVERIFY(damaged.remove());
        QVERIFY2(error.detail.contains("libm47-jet.so"), qPrintable(error.detail));
    }

    void a_file_cut_anywhere_is_damaged() {
        const QByteArray whole = real_file();
        constexpr qsizetype kPage = 4096;
        for (qsizetype size = kPage; size < whole.size(); size += kPage)
            QCOMPARE(fault_of(whole.first(size)).fault, OldFileFault::damaged);
        for (const qsizetype size : {qsizetype{100}, kPage - 1, 10 * kPage + 7, whole.size() - 1})
            QCOMPARE(fault_of(whole.first(size)).fault, OldFileFault::damaged);
    }

    void a_lost_page_of_our_tables_is_damage() {
        const QByteArray whole = real_file();
        constexpr qsizetype kPage = 4096;
        // 24 on: the program's tables. Before: the engine's own, of which it can miss some.
        for (qsizetype page = 24; page * kPage < whole.size(); ++page)
            for (const char filling : {'\0', '\xff', 'x'}) {
                QByteArray damaged = whole;
                damaged.replace(page * kPage, kPage, QByteArray(kPage, filling));
                QCOMPARE(fault_of(damaged).fault, OldFileFault::damaged);
            }
    }

    void noise_ends_in_rows_or_in_a_message() {
        const QByteArray whole = real_file();
        QRandomGenerator random(47);
        int damaged = 0;
        for (int turn = 0; turn < 60; ++turn) {
            QByteArray noisy = whole;
            for (int k = 0; k < 12; ++k)
                noisy[random.bounded(0x18, static_cast<int>(noisy.size()))] =
                    static_cast<char>(random.bounded(256));
            OldFileError error;
            const auto database = read_old_database(written(noisy), error);
            if (!database) ++damaged;
            QVERIFY(database || error.fault == OldFileFault::damaged);
        }
        QVERIFY(damaged > 10 && damaged < 60);
    }

    void a_reading_that_takes_too_long_or_gives_too_much_is_ended() {
        OldFileError error;
        int idle = 0;
        QVERIFY(!read_old_database(QStringLiteral(OLD_DATABASE), error, [&] { ++idle; },
                                   {.milliseconds = 30'000, .bytes = 1000}));
        QCOMPARE(error.fault, OldFileFault::damaged);
        QVERIFY(idle > 0);
        error = {};
        QVERIFY(!read_old_database(QStringLiteral(OLD_DATABASE), error, {},
                                   {.milliseconds = 0, .bytes = 1'000'000}));
        QCOMPARE(error.fault, OldFileFault::damaged);
    }

    void the_old_file_is_only_read() {
        const QString path = written(real_file());
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        read(path);
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), real_file());
    }

    void code_pages_are_at_hand_in_the_held_process_data() {
        QTest::addColumn<int>("page");
        for (const int page : {437, 850, 852, 866, 874, 1250, 1251, 1252, 1253, 1254, 1257})
            QTest::addRow("%d", page) << page;
    }
    void code_pages_are_at_hand_in_the_held_process() {
        QFETCH(int, page);
        // Where the number of the code page stands, scrambled bit by bit; it is 1252 in the header.
        constexpr qsizetype kPageAt = 0x3c;
        QByteArray file = jet_file(3, real_file(), made_tables());
        const int bits = page ^ 1252;
        file[kPageAt] = static_cast<char>(file[kPageAt] ^ (bits & 0xff));
        file[kPageAt + 1] = static_cast<char>(file[kPageAt + 1] ^ (bits >> 8));
        const OldDatabase database = read(written(file));
        QCOMPARE(cell(database, "gruppo", 0, "nome").toString(),
                 QStringLiteral("citt") + character_of(page, '\xe0'));
    }
};

}  // namespace m47::olddb

int main(int argc, char** argv) {
    if (argc == 2 && qstrcmp(argv[1], m47::olddb::kReadOldDatabase) == 0)
        return m47::olddb::run_old_reader();
    const QCoreApplication application(argc, argv);
    m47::olddb::ReaderTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "reader_test.moc"
