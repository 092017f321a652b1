// SPDX-License-Identifier: GPL-3.0-or-later
// Two programs in one folder, in seeded orders of their calls to the disk: nothing is lost, and
// what was not written is told.
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <array>
#include <functional>
#include <memory>

#include "commands.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "logger_data.h"
#include "measurement_log.h"
#include "page_model.h"
#include "save_file.h"
#include "table_backup.h"
#include "turns.h"
#include "virtual_clock.h"

namespace m47 {
namespace {

constexpr int kShortForm = 100;
constexpr int kLinesEach = 3;

quint32 orders() {
    bool given = false;
    const int number = qEnvironmentVariableIntValue("M47_TURNS", &given);
    return static_cast<quint32>(given ? number : kShortForm);
}

/// Whole lines of two programs, and what became of each.
struct Logging {
    QByteArrayList kept;
    QByteArrayList refused;
};

void log_lines(const QString& path, const QByteArray& name, Logging& result) {
    measurement::PageModel page;
    measurement::MeasurementLog log;
    log.open(path, page);
    for (int k = 1; k <= kLinesEach; ++k) {
        const QByteArray line = name + QByteArray(20 * k, '.') + QByteArray::number(k);
        const std::string_view text(line.constData(), static_cast<std::size_t>(line.size()));
        (log.append(text) ? result.kept : result.refused) += line;
    }
}

/// A program whose meter has `answer` to every command of its logger screen.
struct Downloading {
    explicit Downloading(const QString& folder, const QByteArray& held) : answer(held) {
        state.base_dir = folder + u'/';
        port->answer = [this](const QByteArray& command) {
            return FakePort::good(command, answer);
        };
        link.port_connected = true;
    }

    QByteArray answer;
    std::unique_ptr<VirtualClock> clock = std::make_unique<VirtualClock>();
    std::unique_ptr<FakePort> port = std::make_unique<FakePort>(*clock);
    FakeLinkView view;
    ProgramState state;
    link::Link link{*port, *clock, view};
    logger::LoggerData data{link, state};
};

}  // namespace

class TurnsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;

    QString path(const QString& name = {}) const { return folder_->filePath(name); }
    QByteArray content(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    QStringList names(const QString& below = {}) const {
        return QDir(path(below)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    /// A folder of its own for each order, in memory where there is such a place.
    void new_folder() {
        const bool memory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
        folder_ = std::make_unique<QTemporaryDir>(
            (memory ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
            QStringLiteral("/m47-turns-XXXXXX"));
        QVERIFY(folder_->isValid());
    }
    /// Runs `body` for each order, with what says its seed; some turns must have been taken.
    void in_every_order(const std::function<int(quint32 seed)>& body) {
        int changes = 0;
        for (quint32 seed = 1; seed <= orders(); ++seed) {
            new_folder();
            changes += body(seed);
            if (QTest::currentTestFailed()) return qWarning("seed %u", seed);
        }
        QVERIFY2(changes > 2 * static_cast<int>(orders()), qPrintable(QString::number(changes)));
    }

    /// Each line that was kept stands once in the log, whole and in its program's order; one that
    /// was refused does not.
    void compare_log(const QByteArray& before, const std::array<Logging, 2>& results) {
        const QByteArray log = content(QStringLiteral("day.log"));
        QVERIFY2(log.endsWith("\r\n"), log.constData());
        QByteArrayList lines = log.chopped(2).replace("\r\n", "\n").split('\n');
        if (!before.isEmpty()) QCOMPARE(lines.takeFirst(), before);
        for (const Logging& result : results) {
            QByteArrayList own;
            for (const QByteArray& line : lines)
                if (result.kept.contains(line)) own += line;
            QCOMPARE(own, result.kept);
        }
        QCOMPARE(lines.size(), results[0].kept.size() + results[1].kept.size());
    }

  private Q_SLOTS:
    void one_log_data() {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<bool>("full");
        QTest::newRow("a new log") << QByteArray() << false;
        QTest::newRow("half a line in it") << QByteArray("half") << false;
        QTest::newRow("the disk full for one of them") << QByteArray() << true;
        QTest::newRow("both") << QByteArray("half") << true;
    }
    void one_log() {
        QFETCH(QByteArray, before);
        QFETCH(bool, full);
        in_every_order([&](quint32 seed) {
            QFile start(path(QStringLiteral("day.log")));
            if (!before.isEmpty() && start.open(QIODevice::WriteOnly)) start.write(before);
            start.close();
            Turns turns(seed);
            if (full) turns.fill_disk(seed % 2, 1 + static_cast<int>(seed / 2 % kLinesEach));
            std::array<Logging, 2> results;
            const auto program = [&](std::size_t which) {
                return [&, which] {
                    log_lines(start.fileName(), which == 0 ? "first" : "other", results[which]);
                };
            };
            turns.run(program(0), program(1));
            compare_log(before, results);
            if (results[0].refused.size() + results[1].refused.size() != (full ? 1 : 0))
                qFatal("one line is to be refused where the disk is full");
            return turns.changes();
        });
    }

    void one_file_that_both_write() {
        in_every_order([&](quint32 seed) {
            const QString file = path(QStringLiteral("roof.tsv"));
            const std::array<QByteArray, 2> contents{QByteArray(5000, 'a'), QByteArray(70000, 'b')};
            std::array<QString, 2> reasons;
            Turns turns(seed);
            turns.run([&] { reasons[0] = write_whole_file(file, contents[0]); },
                      [&] { reasons[1] = write_whole_file(file, contents[1]); });
            const auto compare = [&] {
                QCOMPARE(reasons[0] + reasons[1], QString());
                const QByteArray last = content(QStringLiteral("roof.tsv"));
                QVERIFY(last == contents[0] || last == contents[1]);
                QCOMPARE(names(), QStringList{"roof.tsv"});
            };
            compare();
            return turns.changes();
        });
    }

    void one_download_file() {
        in_every_order([&](quint32 seed) {
            Downloading first(folder_->path(), "first\r\nof two");
            Downloading other(folder_->path(), "other");
            Turns turns(seed);
            const auto download = [](Downloading& program) {
                return [&program] {
                    program.data.download(link::command::kAllLogs, QStringLiteral("dwl.tmp"));
                };
            };
            turns.run(download(first), download(other));
            const auto compare = [&] {
                QCOMPARE(first.data.text(), QByteArray("first\r\nof two\r\nOK\r\n"));
                QCOMPARE(other.data.text(), QByteArray("other\r\nOK\r\n"));
                QCOMPARE(names(), QStringList{"DWL.TMP"});
            };
            compare();
            return turns.changes();
        });
    }

    void one_scratch_file() {
        in_every_order([&](quint32 seed) {
            std::array<QStringList, 2> lines;
            std::array<QString, 2> faults;
            const auto ask = [&](std::size_t which, const char* table) {
                return [&, which, table] {
                    try {
                        lines[which] =
                            plans::lines_through_file(path() + u'/', QString::fromLatin1(table));
                    } catch (const std::exception& fault) {
                        faults[which] = QString::fromUtf8(fault.what());
                    }
                };
            };
            Turns turns(seed);
            turns.run(ask(0, "01 05 01\r02 06 00"), ask(1, "03 09 01"));
            const auto compare = [&] {
                QCOMPARE(faults[0] + faults[1], QString());
                QCOMPARE(lines[0], QStringList({"01 05 01", "02 06 00"}));
                QCOMPARE(lines[1], QStringList{"03 09 01"});
                QCOMPARE(names(), QStringList());
            };
            compare();
            return turns.changes();
        });
    }

    void two_tables_of_one_instant() {
        const QDateTime now({2026, 11, 22}, {4, 0});
        in_every_order([&](quint32 seed) {
            Turns turns(seed);
            turns.run([&] { plans::keep_table(path() + u'/', QStringLiteral("01 05 01"), now); },
                      [&] { plans::keep_table(path() + u'/', QStringLiteral("03 09 01"), now); });
            QByteArrayList tables;
            for (const QString& name : names(QStringLiteral("backup")))
                tables += content(QStringLiteral("backup/") + name);
            std::ranges::sort(tables);
            const auto compare = [&] {
                QCOMPARE(tables, QByteArrayList({"01 05 01", "03 09 01"}));
            };
            compare();
            return turns.changes();
        });
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::TurnsTest)
#include "turns_test.moc"
