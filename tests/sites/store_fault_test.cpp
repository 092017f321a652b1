// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "db_support.h"
#include "engine.h"
#include "sites_support.h"

namespace m47::sites {
namespace {

using Kind = StoreError::Kind;

}  // namespace

/// A file of sites that cannot be used is told and left as it is.
class StoreFaultTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;

    QString path() const { return sites_in(folder_->path()); }

    /// Makes a file with something in it.
    Visit fill() {
        const auto store = opened_sites(folder_->path());
        const Site site = a_site(QStringLiteral("A"));
        const Visit visit = a_visit(site, 0);
        store->together([&] {
            store->store(site);
            store->store(visit);
            for (int k = 0; k < 300; ++k) store->store(a_row(visit, k, QString::number(k), 10));
        });
        return visit;
    }

    /// Opening tells `kind` and changes no byte of any file.
    void verify_refused(Kind kind) {
        const auto before = db::files_in(folder_->path());
        QCOMPARE(static_cast<int>(error_of_opening(path()).kind), static_cast<int>(kind));
        QVERIFY(db::files_in(folder_->path()) == before);
    }

    Kind kind_of(const std::function<void()>& work) {
        try {
            work();
        } catch (const StoreFault& fault) {
            return fault.error().kind;
        }
        return Kind::other;
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
    }

    void a_newer_version_is_left_alone() {
        fill();
        db::run_sql(path(), {QStringLiteral("PRAGMA user_version = 2")});
        verify_refused(Kind::newer);
    }

    void a_foreign_file_is_left_alone() {
        db::write_file(path(), "dear diary");
        verify_refused(Kind::foreign);
        QFile::remove(path());
        db::run_sql(path(), {QStringLiteral("CREATE TABLE sites (id)")});
        verify_refused(Kind::foreign);
        db::write_file(path(), {});
        verify_refused(Kind::foreign);
        QFile::remove(path());
        QVERIFY(QDir().mkdir(path()));
        verify_refused(Kind::unreadable);
    }

    void damage_is_told_at_the_start_or_where_it_is_read() {
        const Visit visit = fill();
        const QByteArray sound = db::content_of(path());
        db::write_file(path(), sound.left(sound.size() - 5000));
        verify_refused(Kind::damaged);
        db::write_file(path(), sound.left(60));
        verify_refused(Kind::damaged);
        int refused = 0;
        int told = 0;
        for (qsizetype page = 4096; page < sound.size(); page += 4096) {
            QByteArray damaged = sound;
            damaged.replace(page, 64, QByteArray(64, '\x55'));
            db::write_file(path(), damaged);
            StoreError error;
            const auto store = SiteStore::open(path(), error);
            if (!store) {
                QCOMPARE(static_cast<int>(error.kind), static_cast<int>(Kind::damaged));
                QVERIFY(db::content_of(path()) == damaged);
                ++refused;
                continue;
            }
            told += kind_of([&] { store->measurements(visit.id); }) == Kind::damaged ? 1 : 0;
        }
        QVERIFY2(refused >= 5 && told >= 3,
                 qPrintable(QStringLiteral("%1 %2").arg(refused).arg(told)));
    }

    void a_lock_of_another_program_is_told_and_what_comes_later_is_stored() {
        const Visit visit = fill();
        const auto store = opened_sites(folder_->path());
        db::Child child({QStringLiteral("hold-lock"), path(), QStringLiteral("60000")});
        QCOMPARE(child.line(), QStringLiteral("locked"));
        store->wait_for_locks(1);
        const Kind found = kind_of([&] { store->store(a_row(visit, 1, QStringLiteral("1"), 1)); });
        QCOMPARE(static_cast<int>(found), static_cast<int>(Kind::locked));
        child.kill_now();
        store->store(a_row(visit, 1, QStringLiteral("1"), 1));
    }

    void a_locked_file_is_not_opened() {
        fill();
        db::Child child({QStringLiteral("hold-lock"), path(), QStringLiteral("60000")});
        QCOMPARE(child.line(), QStringLiteral("locked"));
        QCOMPARE(static_cast<int>(error_of_opening(path()).kind), static_cast<int>(Kind::locked));
    }

    void a_full_disk_stores_no_half_row_and_what_fits_again_is_stored() {
        const Visit visit = fill();
        const auto store = opened_sites(folder_->path());
        const auto pages = [&](const char* asked) {
            db::Query query(store->connection(), QString::fromLatin1(asked));
            return query.next() ? query.value(0).toInt() : 0;
        };
        const std::size_t rows = store->measurements(visit.id).size();
        const int full = pages("PRAGMA page_count");
        db::Query(store->connection(), QStringLiteral("PRAGMA max_page_count = %1").arg(full));
        std::size_t stored = 0;
        Kind found = Kind::other;
        while (found == Kind::other && stored < 1000) {
            found = kind_of([&] {
                store->store(a_row(visit, 1000, QString(200, u'9') + QString::number(stored), 1));
            });
            if (found == Kind::other) ++stored;
        }
        QCOMPARE(static_cast<int>(found), static_cast<int>(Kind::full));
        QCOMPARE(store->measurements(visit.id).size(), rows + stored);
        db::Query(store->connection(), QStringLiteral("PRAGMA max_page_count = 100000"));
        store->store(a_row(visit, 1001, QString(200, u'9'), 1));
        QCOMPARE(store->measurements(visit.id).size(), rows + stored + 1);
    }

    void a_file_taken_away_is_told() {
        const Visit visit = fill();
        const auto store = opened_sites(folder_->path());
        QVERIFY(QFile::rename(path(), path() + QStringLiteral(".away")));
        const Kind found = kind_of([&] { store->store(a_row(visit, 1, QStringLiteral("1"), 1)); });
        QCOMPARE(static_cast<int>(found), static_cast<int>(Kind::moved));
        QVERIFY(!QFile::exists(path()));
    }

    void a_folder_that_is_not_there_takes_no_file() {
        const StoreError error = error_of_opening(folder_->path() + QStringLiteral("/x/y.sqlite"));
        QCOMPARE(static_cast<int>(error.kind), static_cast<int>(Kind::unreadable));
        QVERIFY(!error.detail.isEmpty());
    }

    void each_error_names_the_file_and_what_helps_in_both_languages() {
        Texts texts;
        QStringList said;
        for (int kind = 0; kind <= static_cast<int>(Kind::other); ++kind) {
            const StoreError error{static_cast<Kind>(kind), QStringLiteral("/w/s.sqlite"),
                                   QStringLiteral("oops")};
            for (const int language : {kEnglish, kItalian}) {
                texts.language = language;
                const QString text = store_error_text(error, texts);
                QVERIFY(text.contains(QLatin1String("'/w/s.sqlite'")) &&
                        text.endsWith(QLatin1String("\n(oops)")));
                QVERIFY(!said.contains(text));
                said += text;
            }
        }
    }
};

}  // namespace m47::sites

M47_DB_TEST_MAIN(m47::sites::StoreFaultTest)
#include "store_fault_test.moc"
