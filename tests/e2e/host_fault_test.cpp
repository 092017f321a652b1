// SPDX-License-Identifier: GPL-3.0-or-later
// A full or write-protected disk, a database that is locked, damaged or another program's: what the
// user is told, and what stands on the disk then.
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include "box_answers.h"
#include "download.h"
#include "meter_in_process.h"
#include "process_support.h"
#include "program.h"
#include "program_set.h"
#include "small_disk.h"

namespace m47 {
namespace {

constexpr int kPage = 4096;
const QString kFile = QString::fromLatin1(db::kDatabaseFile);

/// A connection of somebody else.
class OtherProgram {
  public:
    explicit OtherProgram(const QString& path) {
        database_ = QSqlDatabase::addDatabase("QSQLITE", "other");
        database_.setDatabaseName(path);
        if (!database_.open()) qFatal("cannot open %s", qPrintable(path));
    }
    ~OtherProgram() {
        database_.close();
        database_ = QSqlDatabase();
        QSqlDatabase::removeDatabase("other");
    }
    QString ask(const QString& statement) {
        QSqlQuery query(database_);
        if (!query.exec(statement)) qFatal("%s", qPrintable(statement));
        return query.next() ? query.value(0).toString() : QString();
    }

  private:
    QSqlDatabase database_;
};

/// The whole program on a meter in this process, its files in a folder of the test.
struct Windows {
    explicit Windows(const QString& folder) {
        state.base_dir = folder_with_separator(folder);
        db::DatabaseError error{};
        const QString path = state.base_dir + kFile;
        if (!db::Database::create(path, error)) qFatal("%s", qPrintable(error.detail));
        auto clock = std::make_unique<VirtualClock>();
        auto port = std::make_unique<FakePort>(*clock);
        meter = std::make_unique<MeterInProcess>(*port, 1);
        link::PortList ports(link::PortSources{folder, folder, [] { return QStringList(); }});
        ports.add(QStringLiteral("1=/dev/no-such-meter"));
        program = std::make_unique<shell::Program>(state, db::Database::open(path, error), ports,
                                                   std::move(clock), std::move(port));
        state.texts.language = kEnglish;
        program->window().show();
        program->identify(1);
    }
    ~Windows() { meter.reset(); }

    template <class Screen>
    Screen* open(const char* key) {
        const QString name = QString::fromLatin1(key);
        program->window().findChild<QAction*>(name)->trigger();
        return qobject_cast<Screen*>(program->window().screen_of(name));
    }

    ProgramState state;
    std::unique_ptr<MeterInProcess> meter;
    std::unique_ptr<shell::Program> program;
    BoxAnswers boxes;
};

void put(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        qFatal("cannot write %s", qPrintable(path));
}

}  // namespace

class HostFaultTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<SmallDisk> disk_;

    /// False where this user may not mount anything.
    bool make_disk(int kibibytes) {
        disk_ = std::make_unique<SmallDisk>(folder_->filePath("disk"), kibibytes);
        return disk_->mounted();
    }
    QString on_disk(const QString& file) { return disk_->path(file); }

    /// The program on the stand's database, without a meter: the status tells how far it got.
    static Ending start_on(EmptyStand& stand) { return stand.remote.run(stand.measuring({})); }
    static void make_database(EmptyStand& stand) {
        const Ending ending = stand.remote.run(stand.measuring({"--create-database"}));
        QCOMPARE(ending.status, 3);
    }
    static void verify_refused(EmptyStand& stand, const QByteArray& bytes, const char* word) {
        stand.write(kFile, bytes);
        const auto before = stand.files();
        const Ending ending = start_on(stand);
        QCOMPARE(ending.status, 4);
        QCOMPARE(ending.out, QByteArray());
        QVERIFY(ending.err.startsWith("m47-remote: "));
        QVERIFY2(ending.err.contains(word), ending.err.constData());
        QCOMPARE(stand.files(), before);
    }

  private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(folder_template()); }
    void cleanup() { disk_.reset(); }

    void a_log_on_a_full_disk_loses_whole_lines_only() {
        TestStand stand;
        disk_ = std::make_unique<SmallDisk>(stand.path("disk"), 32);
        if (!disk_->mounted()) QSKIP("no rights to mount a small disk");
        // The next line begins in the last page that the file has and ends in one it cannot get.
        const QByteArray begun = QByteArray(kPage - 32, 'x') + "\r\n";
        put(on_disk("r.log"), begun);
        disk_->fill();
        stand.start_measuring({"--count", "4", "--log", "disk/r.log"});
        QVERIFY(stand.remote.wait_for_lines(2));
        QCOMPARE(stand.content("disk/r.log"), begun);
        disk_->make_room();
        const Ending ending = stand.remote.wait();
        QCOMPARE(ending.status, 5);
        QCOMPARE(ending.err, QByteArray("m47-remote: the log disk/r.log is not complete: No space "
                                        "left on device\n"));
        const QList<QByteArray> rows = ending.out.chopped(1).split('\n');
        QCOMPARE(rows.size(), 4);
        // No row was lost for stdout; the log goes on where there is room again.
        QCOMPARE(stand.content("disk/r.log").mid(begun.size()),
                 as_log(rows[2] + '\n' + rows[3] + '\n'));
    }

    void a_log_that_is_write_protected_is_told_once() {
        TestStand stand;
        disk_ = std::make_unique<SmallDisk>(stand.path("disk"), 32);
        if (!disk_->mounted()) QSKIP("no rights to mount a small disk");
        QVERIFY(disk_->protect(true));
        const Ending ending = stand.measure({"--count", "2", "--log", "disk/r.log"});
        QCOMPARE(ending.status, 5);
        QCOMPARE(ending.err, QByteArray("m47-remote: the log disk/r.log is not complete: Read-only "
                                        "file system\n"));
        QCOMPARE(rows_of(ending.out).size(), 2);
    }

    void a_write_protected_folder_is_refused_at_the_start() {
        EmptyStand stand;
        disk_ = std::make_unique<SmallDisk>(stand.path("disk"), 256);
        if (!disk_->mounted()) QSKIP("no rights to mount a small disk");
        const QStringList directory{"--directory", stand.path("disk")};
        QCOMPARE(
            stand.remote.run(stand.measuring(directory + QStringList("--create-database"))).status,
            3);
        QVERIFY(disk_->protect(true));
        const auto before = stand.files();
        const Ending ending = stand.remote.run(stand.measuring(directory));
        QCOMPARE(ending.status, 4);
        QVERIFY2(ending.err.contains(on_disk(kFile).toUtf8()), ending.err.constData());
        QCOMPARE(stand.files(), before);
    }

    void a_disk_that_is_full_at_the_start_stops_no_measurement() {
        EmptyStand stand;
        disk_ = std::make_unique<SmallDisk>(stand.path("disk"), 256);
        if (!disk_->mounted()) QSKIP("no rights to mount a small disk");
        const QStringList directory{"--directory", stand.path("disk")};
        const QStringList creating = directory + QStringList("--create-database");
        QCOMPARE(stand.remote.run(stand.measuring(creating)).status, 3);
        disk_->fill();
        const Ending ending = stand.remote.run(stand.measuring(directory));
        QVERIFY2(!ending.err.contains("VKDM47_03.mdb"), ending.err.constData());
        QCOMPARE(ending.status, 3);
    }

    void a_program_that_does_not_fit_is_told_and_kept_on_the_screen() {
        if (!make_disk(512)) QSKIP("no rights to mount a small disk");
        {
            Windows windows(on_disk(QString()));
            auto* screen = windows.open<plans::ProgramSet>("program");
            auto* number = screen->findChild<QLineEdit*>("prog_num");
            auto* rate = screen->findChild<QLineEdit*>("srqpsk_txt");
            rate->setText("22000");
            const int before =
                OtherProgram(on_disk(kFile)).ask("SELECT count(*) FROM programmi").toInt();
            disk_->fill();
            number->setText("7");
            screen->toolbar_ButtonClick("store");
            const QStringList told = windows.boxes.take_seen();
            QCOMPARE(told.size(), 1);
            QVERIFY2(told[0].contains("full"), qPrintable(told[0]));
            QCOMPARE(rate->text(), QString("22000"));
            OtherProgram other(on_disk(kFile));
            QCOMPARE(other.ask("PRAGMA integrity_check"), QString("ok"));
            QCOMPARE(other.ask("SELECT count(*) FROM programmi").toInt(), before);
            QCOMPARE(other.ask("SELECT count(*) FROM programmi WHERE pg_num = '007'"),
                     QString("0"));
            disk_->make_room();
            screen->toolbar_ButtonClick("store");
            QCOMPARE(windows.boxes.take_seen(), QStringList());
            QCOMPARE(other.ask("SELECT qpsk_symbolrate FROM programmi WHERE pg_num = '007'"),
                     QString("22000"));
        }
    }

    void a_download_on_a_full_disk_can_be_taken_again() {
        if (!make_disk(512)) QSKIP("no rights to mount a small disk");
        Windows windows(on_disk(QString()));
        auto* screen = windows.open<logger::Download>("download");
        screen->findChild<QLineEdit*>("tmpfile")->setText("day");
        screen->cmddownload_Click();
        const QByteArray downloaded = screen->data.text();
        QVERIFY(downloaded.size() > 1000);
        screen->data.save(on_disk("day.dwl"));
        const QByteArray saved = content_of(on_disk("day.dwl"));
        QVERIFY(saved.startsWith(downloaded));
        disk_->fill();
        screen->cmddownload_Click();
        QCOMPARE(screen->data.text(), QByteArray());
        // What was on the disk before is whole: neither the older file nor the older download
        // went for one that did not fit.
        screen->data.open(on_disk("DAY"));
        QCOMPARE(screen->data.text().trimmed(), downloaded.trimmed());
        screen->data.save(on_disk("day.dwl"));
        QCOMPARE(content_of(on_disk("day.dwl")), saved);
        disk_->make_room();
        screen->cmddownload_Click();
        QCOMPARE(screen->data.text(), downloaded);
        QVERIFY(windows.program->link().port_connected);
    }

    void an_export_on_a_full_disk_leaves_the_older_file() {
        if (!make_disk(512)) QSKIP("no rights to mount a small disk");
        Windows windows(on_disk(QString()));
        auto* screen = windows.open<plans::ProgramSet>("program");
        const QByteArray older(kPage, 'y');
        put(on_disk("plan.tsv"), older);
        disk_->fill();
        const auto choose = [this](QDialog* dialog) {
            auto* files = qobject_cast<QFileDialog*>(dialog);
            files->setOption(QFileDialog::DontConfirmOverwrite);
            // Typed: to select a file waits for the dialog to have read its folder.
            files->findChild<QLineEdit*>("fileNameEdit")->setText(on_disk("plan.tsv"));
            static_cast<QDialog*>(files)->accept();
        };
        windows.boxes.answer(choose);
        screen->findChild<QAction*>("cmdexport")->trigger();
        const QStringList told = windows.boxes.take_seen();
        QCOMPARE(told.size(), 2);
        QVERIFY2(told[1].contains("plan.tsv") && told[1].contains("No space left"),
                 qPrintable(told[1]));
        QCOMPARE(content_of(on_disk("plan.tsv")), older);
        disk_->make_room();
        windows.boxes.answer(choose);
        screen->findChild<QAction*>("cmdexport")->trigger();
        QVERIFY(content_of(on_disk("plan.tsv")).contains("frequenza"));
    }

    void a_locked_database_is_told_at_the_start() {
        EmptyStand stand;
        make_database(stand);
        OtherProgram other(stand.path(kFile));
        other.ask("BEGIN EXCLUSIVE");
        const Ending ending = start_on(stand);
        QCOMPARE(ending.status, 4);
        QVERIFY2(ending.err.contains("locked"), ending.err.constData());
        QVERIFY(ending.waited > 2500 && ending.waited < 8000);
        other.ask("ROLLBACK");
        QCOMPARE(start_on(stand).status, 3);
    }

    void a_database_locked_meanwhile_is_told_and_stored_again() {
        Windows windows(folder_->path());
        auto* screen = windows.open<plans::ProgramSet>("program");
        OtherProgram other(folder_->filePath(kFile));
        other.ask("BEGIN EXCLUSIVE");
        screen->findChild<QLineEdit*>("prog_num")->setText("7");
        screen->toolbar_ButtonClick("store");
        const QStringList told = windows.boxes.take_seen();
        QCOMPARE(told.size(), 1);
        QVERIFY2(told[0].contains("locked"), qPrintable(told[0]));
        other.ask("ROLLBACK");
        screen->toolbar_ButtonClick("store");
        QCOMPARE(windows.boxes.take_seen(), QStringList());
        QCOMPARE(other.ask("SELECT count(*) FROM programmi WHERE pg_num = '007'"), QString("1"));
    }

    void noise_in_any_page_of_the_database() {
        EmptyStand stand;
        make_database(stand);
        const QByteArray sound = content_of(stand.path(kFile));
        QRandomGenerator random(47);
        for (qsizetype at = 0; at < sound.size(); at += kPage) {
            QByteArray damaged = sound;
            for (qsizetype k = at; k < at + kPage; ++k)
                damaged[k] = static_cast<char>(random.bounded(256));
            verify_refused(stand, damaged, stand.path(kFile).toUtf8().constData());
            if (QTest::currentTestFailed()) return;
        }
        qInfo("%lld pages", static_cast<long long>(sound.size() / kPage));
        stand.write(kFile, sound);
        QCOMPARE(start_on(stand).status, 3);
    }

    void a_database_that_is_cut_or_another_programs() {
        EmptyStand stand;
        make_database(stand);
        const QByteArray sound = content_of(stand.path(kFile));
        verify_refused(stand, sound.first(sound.size() / 2), "VKDM47_03.mdb");
        verify_refused(stand, sound.first(100), "VKDM47_03.mdb");
        verify_refused(stand, QByteArray(5000, 'x'), "VKDM47_03.mdb");
        verify_refused(stand, "a shopping list\n", "VKDM47_03.mdb");
        QFile::remove(stand.path(kFile));
        OtherProgram(stand.path(kFile)).ask("CREATE TABLE addresses (name TEXT)");
        verify_refused(stand, content_of(stand.path(kFile)), "VKDM47_03.mdb");
        stand.write(kFile, sound);
        OtherProgram(stand.path(kFile)).ask("DROP TABLE asl");
        verify_refused(stand, content_of(stand.path(kFile)), "asl");
    }
};

}  // namespace m47

QTEST_MAIN(m47::HostFaultTest)
#include "host_fault_test.moc"
