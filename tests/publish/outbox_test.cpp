// SPDX-License-Identifier: GPL-3.0-or-later
// The file in which rows wait.
#include "outbox.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include "db_support.h"
#include "failing_statement.h"
#include "publish_test.h"

namespace m47::publish {
namespace {

using Kind = OutboxError::Kind;

constexpr qint64 kRoom = qint64{1024} * 1024 * 1024;
constexpr qint64 kLittleRoom = qint64{1024} * 1024;

std::unique_ptr<Outbox> opened(const QString& path, qint64 limit = kRoom) {
    OutboxError error;
    auto outbox = Outbox::open(path, limit, error);
    if (!outbox) qFatal("%s", qPrintable(outbox_error_text(error, Texts())));
    return outbox;
}

void add_rows(Outbox& outbox, int count, int bytes = 2) {
    for (int k = 0; k < count; ++k)
        outbox.append(LineKind::row, outbox.time_after_all(1000),
                      QByteArray(bytes - 1, 'r') + '\n');
}

}  // namespace

void PublishTest::what_was_appended_is_there_again() {
    {
        const auto outbox = opened(path());
        outbox->append(LineKind::health, outbox->time_after_all(4000), "h\n");
        outbox->append(LineKind::row, outbox->time_after_all(5000), "a\n");
        outbox->append(LineKind::row, outbox->time_after_all(6000), "b\n");
        QCOMPARE(outbox->rows_waiting(), 2);
        QCOMPARE(outbox->oldest_waiting(), std::optional<qint64>(5000));
        outbox->acknowledge(2);
        outbox->tend();
    }
    const auto outbox = opened(path());
    QCOMPARE(outbox->batch(0, 10, 1000).body, QByteArray("h\na\nb\n"));
    QCOMPARE(outbox->rows_waiting(), 1);
    QCOMPARE(outbox->oldest_waiting(), std::optional<qint64>(6000));
    QCOMPARE(outbox->acknowledged(), 2);
    QCOMPARE(outbox->batch(0, 2, 1000).body, QByteArray("h\na\n"));
    QCOMPARE(outbox->batch(0, 10, 3).body, QByteArray("h\n"));
    QCOMPARE(outbox->batch(1, 10, 1).body, QByteArray("a\n"));
    outbox->forget(2);
    QCOMPARE(outbox->batch(0, 10, 1000).body, QByteArray("b\n"));
    QCOMPARE(outbox->lines(1, 2).lines, 0);
}

/// The engine's own journal has rows that the file is still too short for.
void PublishTest::what_a_killed_process_left_is_taken_over() {
    const auto killed = opened(path());
    add_rows(*killed, 100, 500);
    for (const char* part : {"", "-wal"})
        QVERIFY(QFile::copy(path() + part, path("left.outbox") + part));
    const auto outbox = opened(path("left.outbox"));
    QCOMPARE(outbox->rows_waiting(), 100);
    QCOMPARE(outbox->batch(0, 1000, 1 << 20).lines, 100);
}

void PublishTest::times_only_grow() {
    {
        const auto outbox = opened(path());
        QCOMPARE(outbox->time_after_all(5000), 5000);
        QCOMPARE(outbox->time_after_all(5000), 5001);
        QCOMPARE(outbox->time_after_all(1000), 5002);
        outbox->append(LineKind::row, 5002, "a\n");
    }
    const auto outbox = opened(path());
    QCOMPARE(outbox->time_after_all(1000), 5003);
}

void PublishTest::a_full_outbox_drops_its_oldest() {
    const auto outbox = opened(path(), kLittleRoom);
    add_rows(*outbox, 4000, 500);
    const qint64 dropped = outbox->rows_dropped();
    QVERIFY(dropped > 1500 && dropped < 3000);
    QCOMPARE(outbox->rows_waiting(), 4000 - dropped);
    QCOMPARE(outbox->batch(0, 1, 1000).first, dropped + 1);
    QCOMPARE(outbox->batch(3999, 1, 1000).last, 4000);
    outbox->set_aside(3000, 3100);
    add_rows(*outbox, 300, 500);
    QCOMPARE(outbox->rows_set_aside(), 101);
    // On the disk too, but for what the engine has still to move into it.
    QVERIFY(QFileInfo(path()).size() <= kLittleRoom + 65536);
}

void PublishTest::what_is_acknowledged_is_no_loss() {
    const auto outbox = opened(path(), kLittleRoom);
    add_rows(*outbox, 1500, 500);
    outbox->acknowledge(1500);
    QCOMPARE(outbox->rows_waiting(), 0);
    add_rows(*outbox, 1000, 500);
    QCOMPARE(outbox->rows_dropped(), 0);
    QCOMPARE(outbox->rows_waiting(), 1000);
}

/// With rows so long that a few fill it, those that were not sent are not dropped with the sent.
void PublishTest::no_more_is_dropped_than_has_to() {
    const auto outbox = opened(path(), kLittleRoom);
    constexpr int kLong = 100000;
    for (int row = 1; row <= 60; ++row) {
        add_rows(*outbox, 1, kLong);
        outbox->acknowledge(row - 2);
        QCOMPARE(outbox->rows_dropped(), 0);
        QCOMPARE(outbox->batch(row - 2, 9, 10 * kLong).lines, std::min(row, 2));
    }
    add_rows(*outbox, 30, kLong);
    const qint64 kept = outbox->rows_waiting();
    QVERIFY2(kept >= 7 && kept * kLong <= kLittleRoom, qPrintable(QString::number(kept)));
    QCOMPARE(outbox->rows_dropped(), 32 - kept);
}

void PublishTest::one_process_has_the_outbox() {
    const auto outbox = opened(path());
    add_rows(*outbox, 1);
    QProcess other;
    other.start("sqlite3", {path(), "DELETE FROM lines"});
    QVERIFY(other.waitForFinished());
    QVERIFY(other.exitCode() != 0);
    QVERIFY(other.readAllStandardError().contains("locked"));
    QCOMPARE(outbox->batch(0, 9, 99).lines, 1);
}

void PublishTest::an_unusable_outbox_is_told_data() {
    QTest::addColumn<QString>("change");
    QTest::addColumn<int>("kind");
    QTest::newRow("newer") << "PRAGMA user_version = 2" << int(Kind::newer);
    QTest::newRow("another's") << "PRAGMA application_id = 1" << int(Kind::foreign);
    QTest::newRow("no database") << "" << int(Kind::foreign);
    QTest::newRow("damaged") << "damage" << int(Kind::damaged);
    QTest::newRow("in use") << "lock" << int(Kind::locked);
}

void PublishTest::an_unusable_outbox_is_told() {
    QFETCH(QString, change);
    QFETCH(int, kind);
    add_rows(*opened(path()), 500, 200);
    QProcess holder;
    if (change.isEmpty()) {
        db::write_file(path(), QByteArray(8192, 'x'));
    } else if (change == "damage") {
        QByteArray content = db::content_of(path());
        content.replace(12288, 4096, QByteArray(4096, '\xAA'));
        db::write_file(path(), content);
    } else if (change == "lock") {
        holder.start("sqlite3", {path()});
        holder.write("PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; SELECT 'held';\n");
        QVERIFY(holder.waitForReadyRead());
        while (!holder.readAllStandardOutput().contains("held")) QVERIFY(holder.waitForReadyRead());
    } else {
        db::run_sql(path(), {change});
    }
    const auto before = db::files_in(folder_->path());
    OutboxError error;
    QVERIFY(!Outbox::open(path(), kRoom, error));
    QCOMPARE(int(error.kind), kind);
    QVERIFY(outbox_error_text(error, Texts()).contains(path()));
    if (change != "lock") QCOMPARE(db::files_in(folder_->path()), before);
    holder.kill();
    holder.waitForFinished();
}

void PublishTest::each_failing_statement_leaves_it_whole() {
    fail_each_statement([this](int nth, int code) {
        const auto outbox = opened(path());
        const qint64 before = outbox->rows_waiting();
        const int lines = outbox->batch(0, 100000, 1 << 20).lines;
        int calls = 0;
        bool added = true;
        {
            const FailingStatement failing(nth, code);
            try {
                outbox->append(LineKind::row, outbox->time_after_all(1), "r\n");
            } catch (const OutboxFault&) {
                added = false;
            }
            calls = failing.calls();
        }
        if (outbox->rows_waiting() != before + added ||
            outbox->batch(0, 100000, 1 << 20).lines != lines + added)
            qFatal("half a row at call %d with code %d", nth, code);
        return calls;
    });
}

}  // namespace m47::publish
