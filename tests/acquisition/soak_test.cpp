// SPDX-License-Identifier: GPL-3.0-or-later
#include <malloc.h>

#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include "database.h"
#include "fake_link_view.h"
#include "meter_in_process.h"
#include "plan_run.h"
#include "realtime_rules.h"

namespace m47::acquisition {
namespace {

constexpr int kPrograms = 30;
constexpr int kEvery = 600;
constexpr int kPassesADay = 24 * 3600 / kEvery;
constexpr int kBadIn = 1000;
/// Of what is allocated when the run ends, the page aside. Nothing that grows with the run fits.
/// It counts what the C library keeps for each thread's next use as well (up to 200 KB of sizes
/// that came up once), so that has to be switched off: GLIBC_TUNABLES=glibc.malloc.tcache_count=0.
constexpr double kAllowedGrowth = 16.0 * 1024;

double allocated() {
    return static_cast<double>(mallinfo2().uordblks);
}

}  // namespace

/// Days of a plan with nobody at the screen while one command in a thousand is answered badly.
class SoakTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();
    void days_of_a_plan();

  private:
    void add_plan();
    bool connect();
    void verify_rows(int passes);
    void verify_log();

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<db::Database> database_;
    VirtualClock clock_;
    FakePort port_{clock_};
    FakeLinkView view_;
    link::Link link_{port_, clock_, view_};
    ProgramState state_;
    std::unique_ptr<MeterInProcess> meter_;
    std::unique_ptr<realtime::RealtimeRules> rules_;
    int tries_ = 0;
};

void SoakTest::init() {
    folder_ = std::make_unique<QTemporaryDir>();
    const QString file = folder_->filePath(QString::fromLatin1(db::kDatabaseFile));
    db::DatabaseError error{};
    QVERIFY(db::Database::create(file, error));
    database_ = db::Database::open(file, error);
    meter_ = std::make_unique<MeterInProcess>(port_, 47);
    rules_ = std::make_unique<realtime::RealtimeRules>(link_, state_, *database_);
    realtime::PlanWalk& walk = rules_->plans;
    clock_.spans_hold = true;
    add_plan();
    link_.port_connected = true;
    rules_->modes.Form_Load();
    for (const int mode : {realtime::kAnalogMode, realtime::kDigitalMode})
        rules_->tick_measures(mode);
    QVERIFY(walk.choose_plan("SOAK"));
    QCOMPARE(walk.monitored_programs(), kPrograms);
}

void SoakTest::cleanup() {
    rules_.reset();
    meter_.reset();
    database_.reset();
}

/// Every third program is a digital one.
void SoakTest::add_plan() {
    const auto add = [](db::Recordset& set, const QMap<QString, QVariant>& fields) {
        set.add_new();
        for (auto field = fields.begin(); field != fields.end(); ++field)
            set.set(field.key(), field.value());
        set.update();
    };
    add(database_->gruppo(), {{"nome", "SOAK"}});
    add(database_->configurazione(), {{"nome", "SOAK"}, {"loc_osc1", 9750}});
    for (int number = 0; number < kPrograms; ++number)
        add(database_->programmi(), {{"nome", "SOAK"},
                                     {"pg_num", QString::number(number).rightJustified(3, u'0')},
                                     {"frequenza", 1000 + 10 * number},
                                     {"loc_osc", true},
                                     {"loc_osc0", 0},
                                     {"sat_ad", number % 3 == 2 ? 1 : 0},
                                     {"qpsk_symbolrate", "27500"},
                                     {"satchbw", "36"},
                                     {"lnb_volt", 1},
                                     {"K22", 0},
                                     {"monitor_state", 1}});
}

bool SoakTest::connect() {
    ++tries_;
    port_.open_fault = link::PortFault::none;
    link_.port_connected = true;
    return link_.send("ATTEN?") && !link_.last_answer().isEmpty();
}

/// Each pass has measured each program once, in their order.
void SoakTest::verify_rows(int passes) {
    const measurement::PageStore& page = rules_->page.store();
    QCOMPARE(page.rows(), passes * kPrograms);
    for (int row = 0; row < page.rows(); ++row) {
        const std::string expected = std::to_string(1000 + 10 * (row % kPrograms)) + ".0";
        if (page.cell(row, 2) != expected)
            QFAIL(qPrintable(QStringLiteral("row %1 is another program's").arg(row)));
    }
}

void SoakTest::verify_log() {
    QFile log(folder_->filePath("soak.log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const measurement::PageStore& page = rules_->page.store();
    for (int row = 0; row < page.rows(); ++row) {
        const QByteArray line = log.readLine();
        const std::string_view shown = page.line(row);
        const QByteArray bytes(shown.data(), static_cast<qsizetype>(shown.size()));
        if (line != bytes + "\r\n") QFAIL(qPrintable(QStringLiteral("line %1 differs").arg(row)));
    }
    QVERIFY(log.atEnd());
}

void SoakTest::days_of_a_plan() {
    bool given = false;
    const int asked = qEnvironmentVariableIntValue("M47_SOAK_DAYS", &given);
    const int passes = (given ? asked : 1) * kPassesADay;
    meter_->bad_in = kBadIn;
    rules_->log.open(folder_->filePath("soak.log"), rules_->page);
    const double start = clock_.steady();
    QList<double> begins;
    begins.reserve(2 * passes);
    int gaps = 0;
    QString strange;
    double before = 0;
    double page_before = 0;
    PlanRun run(link_, *rules_, {.passes = passes, .every = kEvery, .reconnect = true});
    run.connect = [this] { return connect(); };
    run.on_remark = [&](const QString& text) {
        const bool lost = text.contains("the link to the meter was lost");
        const bool found = text.contains("connected again, nothing was measured for ");
        if (found) ++gaps;
        if (!lost && !found) strange = text;
    };
    run.on_progress = [&](const QString& text) {
        // What the fakes note down for other tests.
        port_.written.clear();
        view_.progress_values = {0};
        if (!text.endsWith(QStringLiteral("program 1/%1").arg(kPrograms))) return;
        begins += clock_.steady() - start;
        if (begins.size() != kPassesADay / 2) return;
        before = allocated();
        page_before = static_cast<double>(rules_->page.store().memory_bytes());
    };
    QCOMPARE(run.run(), PlanRun::End::done);

    const measurement::PageStore& page = rules_->page.store();
    const double page_bytes = static_cast<double>(page.memory_bytes());
    const double growth = allocated() - before - (page_bytes - page_before);
    verify_rows(passes);
    verify_log();
    // Each pass began at its time. One that had to be begun anew, after a doubtful answer or a lost
    // link, shows its first program again.
    QSet<int> firings;
    for (const double begin : begins) {
        const double late = std::fmod(begin, kEvery);
        if (late < 1) firings += static_cast<int>(begin / kEvery);
    }
    QCOMPARE(strange, QString());
    QCOMPARE(firings.size(), qsizetype{passes});
    QVERIFY(link_.port_connected);
    QVERIFY2(growth < kAllowedGrowth, qPrintable(QString::number(growth)));
    qInfo("%d passes, %d rows, %d commands, %d of them answered badly, %d gaps (%d tries)", passes,
          page.rows(), meter_->commands, meter_->faults, gaps, tries_);
    qInfo("page %.1f bytes a row, everything else grew by %.0f bytes", page_bytes / page.rows(),
          growth);
}

}  // namespace m47::acquisition

QTEST_GUILESS_MAIN(m47::acquisition::SoakTest)
#include "soak_test.moc"
