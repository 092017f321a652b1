// SPDX-License-Identifier: GPL-3.0-or-later
#include "publish_test.h"

#include <QFile>
#include <QSet>
#include <QTest>
#include <functional>
#include <map>

#include "db_support.h"
#include "failing_statement.h"
#include "publisher.h"
#include "virtual_clock.h"

namespace m47::publish {
namespace {

constexpr qint64 kRoom = qint64{1024} * 1024 * 1024;

/// An engine that answers as it is told, keeps one of two lines of the same series and time, and
/// loses what it has acknowledged within the last seconds when it is killed.
class FakeEngine : public HttpSender {
  public:
    explicit FakeEngine(link::Clock& clock) : clock_(clock) {}

    /// What it answers to a body; nothing for no answer at all.
    std::function<std::optional<HttpAnswer>(const QByteArray& body)> answers;
    int requests = 0;
    int given_up = 0;
    qsizetype longest = 0;

    void set_target(const HttpTarget&) override {}
    void post(const QByteArray& body) override {
        if (busy_) qFatal("two requests at a time");
        busy_ = true;
        ++requests;
        longest = std::max(longest, body.size());
        answer_ = answers ? answers(body) : HttpAnswer{.status = 204};
        if (answer_ && answer_->status / 100 == 2)
            for (const QByteArray& line : body.split('\n'))
                if (!line.isEmpty()) take(line);
    }
    std::optional<HttpAnswer> answer() override {
        if (answer_) busy_ = false;
        return std::exchange(answer_, std::nullopt);
    }
    void give_up() override {
        busy_ = false;
        ++given_up;
        answer_.reset();
    }
    void work(double seconds) override {
        if (!answer_) clock_.sleep(seconds);
    }

    /// Loses what came within `seconds`.
    void kill(double seconds) {
        std::erase_if(stored_,
                      [&](const auto& line) { return line.second > clock_.steady() - seconds; });
    }
    QList<QByteArray> rows() const {
        QList<QByteArray> found;
        for (const auto& [line, when] : stored_)
            if (line.startsWith("m47,")) found += line;
        return found;
    }
    QList<QByteArray> order;  ///< as they came first

  private:
    void take(const QByteArray& line) {
        if (!stored_.contains(line)) order += line;
        // The first copy on the disk stays.
        stored_.try_emplace(line, clock_.steady());
    }

    link::Clock& clock_;
    std::optional<HttpAnswer> answer_;
    bool busy_ = false;
    std::map<QByteArray, double> stored_;
};

/// A run that publishes, without a meter.
struct Stand {
    explicit Stand(const QString& folder) : path(folder) { start(); }

    void start() {
        publisher.reset();
        publisher = std::make_unique<Publisher>(
            PublishOrder{.station = {QStringLiteral("roof"), QStringLiteral("one")},
                         .outbox = path + "/a.outbox",
                         .log = log,
                         .limit = kRoom},
            engine, clock, texts, [this] { return chance; });
        publisher->on_remark = [this](const QString& text) { told += text; };
        opened = publisher->open();
    }
    /// Measures a row and lets the publisher do what it does between two.
    void measure(int count = 1, double apart = 1) {
        for (int k = 0; k < count; ++k) {
            measurement::Measurement measured;
            measured.frequency = static_cast<float>(++rows);
            publisher->before_row(measured, line(rows), clock.date_time());
            if (!log.isEmpty()) write_log(rows);
            publisher->after_row();
            publisher->pass_time(apart);
        }
    }
    void pass(int seconds) {
        for (int k = 0; k < seconds; ++k) publisher->pass_time(1);
    }
    std::string line(int row) const { return "row\t" + std::to_string(row); }
    void write_log(int row) const {
        QFile file(log);
        if (!file.open(QIODevice::Append)) qFatal("no log");
        file.write(QByteArray::fromStdString(line(row)) + "\r\n");
    }
    /// The numbers of the rows that the engine has, in the order of their times.
    QList<int> stored() const {
        QMap<qint64, int> numbers;
        for (const QByteArray& row : engine.rows()) {
            const qint64 time = row.mid(row.lastIndexOf(' ') + 1).toLongLong();
            if (numbers.contains(time)) qFatal("two rows of one time");
            const qsizetype place = row.indexOf("frequency=") + 10;
            numbers[time] = row.mid(place, row.indexOf(' ', place) - place).toInt();
        }
        return numbers.values();
    }
    QList<int> measured() const {
        QList<int> numbers;
        for (int row = 1; row <= rows; ++row) numbers += row;
        return numbers;
    }

    QString path;
    QString log;
    VirtualClock clock;
    FakeEngine engine{clock};
    Texts texts;
    double chance = 0.5;
    QStringList told;
    int rows = 0;
    bool opened = false;
    std::unique_ptr<Publisher> publisher;
};

/// From here on everything can be read and nothing written.
void fill_disk() {
    db::set_statement_fault([](const QString& statement) -> std::optional<QSqlError> {
        if (statement.startsWith("SELECT") || statement.startsWith("PRAGMA")) return {};
        return QSqlError(QString(), "full", QSqlError::StatementError, "13");
    });
}

bool never() {
    return false;
}

}  // namespace

void PublishTest::rows_arrive_in_order_once() {
    Stand stand(folder_->path());
    QVERIFY(stand.opened);
    stand.measure(20);
    QCOMPARE(stand.stored(), stand.measured());
    for (int row = 1; row <= 20; ++row)
        QVERIFY(stand.engine.order[row - 1].contains("frequency=" + QByteArray::number(row) + ' '));
    stand.publisher->finish(10, never);
    QCOMPARE(stand.told, QStringList());
    QVERIFY(!stand.publisher->lost());
}

void PublishTest::answers_data() {
    QTest::addColumn<int>("status");
    for (const int status : {0, 100, 301, 302, 401, 403, 404, 405, 408, 429, 500, 502, 503, 504})
        QTest::addRow("%d", status) << status;
}

/// Whatever the engine answers for a while: told once each way, and nothing is lost.
void PublishTest::answers() {
    QFETCH(int, status);
    Stand stand(folder_->path());
    stand.measure(3);
    stand.engine.answers = [&](const QByteArray&) { return HttpAnswer{.status = status}; };
    stand.measure(50);
    QCOMPARE(stand.told.size(), 1);
    QVERIFY(stand.stored().size() == 3);
    stand.engine.answers = nullptr;
    stand.measure(70);
    QCOMPARE(stand.told.size(), 2);
    QVERIFY(stand.told[1].contains("again"));
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::pauses_grow_and_differ() {
    QList<double> requests;
    Stand stand(folder_->path());
    stand.engine.answers = [&](const QByteArray&) {
        requests += stand.clock.elapsed();
        return HttpAnswer{.status = 500};
    };
    stand.measure(1);
    for (const double chance : {0.0, 1.0, 0.0, 1.0, 1.0, 1.0, 1.0, 1.0, 0.0}) {
        stand.chance = chance;
        const auto before = requests.size();
        while (requests.size() == before) stand.publisher->pass_time(0.2);
    }
    // The first two were drawn with one half; each is from a half of its longest to all of it.
    QList<double> pauses;
    for (qsizetype k = 1; k < requests.size(); ++k) pauses += requests[k] - requests[k - 1];
    const QList<double> wanted{0.75, 1.5, 2, 8, 8, 32, 60, 60, 60, 60};
    for (qsizetype k = 0; k < wanted.size(); ++k)
        QVERIFY2(std::abs(pauses[k] - wanted[k]) < 0.5, qPrintable(QString::number(pauses[k])));
}

void PublishTest::retry_after_is_kept() {
    Stand stand(folder_->path());
    stand.engine.answers = [](const QByteArray&) {
        return HttpAnswer{.status = 429, .retry_after = 120};
    };
    stand.measure(1);
    QCOMPARE(stand.engine.requests, 1);
    stand.publisher->pass_time(115);
    QCOMPARE(stand.engine.requests, 1);
    stand.publisher->pass_time(10);
    QCOMPARE(stand.engine.requests, 2);
    // One that asks for a year is asked within the hour.
    stand.engine.answers = [](const QByteArray&) {
        return HttpAnswer{.status = 503, .retry_after = 3e7};
    };
    stand.publisher->pass_time(130);
    QCOMPARE(stand.engine.requests, 3);
    stand.publisher->pass_time(3610);
    QCOMPARE(stand.engine.requests, 4);
}

void PublishTest::a_refused_batch_is_set_aside_and_told_once() {
    Stand stand(folder_->path());
    stand.engine.answers = [](const QByteArray& body) {
        const bool wrong = body.contains("frequency=3 ") || body.contains("frequency=5 ");
        return HttpAnswer{.status = wrong ? 400 : 204, .words = "bad line"};
    };
    stand.measure(10);
    QList<int> wanted = stand.measured();
    wanted.removeOne(3);
    wanted.removeOne(5);
    QCOMPARE(stand.stored(), wanted);
    QCOMPARE(stand.told.size(), 1);
    QVERIFY(stand.told[0].contains("bad line"));
    stand.publisher.reset();
    QCOMPARE(db::run_sql(path(), {"SELECT count(*) FROM set_aside"}), QStringList{"2"});
    stand.start();
    stand.publisher->report({});
    stand.publisher->pass_time(1);
    QVERIFY(stand.engine.order.last().contains("rows_set_aside=2i"));
}

void PublishTest::a_batch_too_long_goes_in_pieces() {
    Stand stand(folder_->path());
    stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.measure(100);
    stand.engine.answers = [](const QByteArray& body) {
        return HttpAnswer{.status = body.count('\n') > 7 ? 413 : 204};
    };
    stand.pass(300);
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::an_engine_that_says_nothing_is_given_up() {
    Stand stand(folder_->path());
    stand.engine.answers = [](const QByteArray&) { return std::nullopt; };
    stand.measure(40);
    QCOMPARE(stand.engine.given_up, 1);
    stand.engine.answers = nullptr;
    stand.measure(40);
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::what_an_engine_lost_is_sent_again() {
    Stand stand(folder_->path());
    stand.measure(300);
    stand.engine.kill(200);
    stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.measure(3);
    stand.engine.answers = nullptr;
    stand.pass(60);
    QCOMPARE(stand.stored(), stand.measured());
}

/// It was gone between two requests, and with it what it had acknowledged.
void PublishTest::a_restart_that_nobody_saw_loses_nothing() {
    Stand stand(folder_->path());
    stand.measure(30);
    stand.engine.kill(10);
    QVERIFY(stand.stored().size() < 30);
    stand.measure(10);
    stand.pass(70);
    QCOMPARE(stand.stored(), stand.measured());
    // Also where the probe itself was ended in between.
    stand.measure(10);
    stand.engine.kill(20);
    stand.start();
    stand.publisher->pass_time(1);
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::what_was_stored_long_ago_is_forgotten() {
    Stand stand(folder_->path());
    stand.measure(10);
    stand.pass(1100);
    const int requests = stand.engine.requests;
    stand.measure(5);
    stand.publisher.reset();
    QCOMPARE(db::run_sql(path(), {"SELECT count(*) FROM lines"}), QStringList{"5"});
    QVERIFY(stand.engine.requests <= requests + 5);
}

void PublishTest::the_clock_set_back() {
    Stand stand(folder_->path());
    stand.measure(3);
    stand.clock.set_by(-3600);
    stand.measure(3);
    stand.start();
    stand.measure(3);
    QCOMPARE(stand.told.size(), 2);  // once by each run
    QVERIFY(stand.told[0].contains("set back"));
    stand.clock.set_by(3600);
    stand.measure(3);
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::killed_between_outbox_and_log_data() {
    QTest::addColumn<bool>("logged");
    QTest::addColumn<bool>("torn");
    QTest::newRow("before the log") << false << false;
    QTest::newRow("behind it") << true << false;
    QTest::newRow("behind a line that broke off") << true << true;
}

/// The engine gets what the log has, and nothing else.
void PublishTest::killed_between_outbox_and_log() {
    QFETCH(bool, logged);
    QFETCH(bool, torn);
    Stand stand(folder_->path());
    stand.log = path("a.log");
    stand.start();
    stand.measure(2);
    if (torn) db::write_file(stand.log, db::content_of(stand.log) + "ro");
    measurement::Measurement measured;
    measured.frequency = 3.0F;
    stand.publisher->before_row(measured, stand.line(3), stand.clock.date_time());
    if (torn) db::write_file(stand.log, db::content_of(stand.log) + "\r\n");
    if (logged) stand.write_log(3);
    // Nothing of it goes out before it counts.
    stand.publisher->pass_time(5);
    QCOMPARE(stand.stored(), stand.measured());
    stand.start();
    stand.publisher->pass_time(5);
    if (logged) stand.rows = 3;
    QCOMPARE(stand.stored(), stand.measured());
    stand.rows = 3;
    stand.measure(1);
    QCOMPARE(stand.stored().last(), 4);
}

void PublishTest::a_failing_outbox_holds_rows_until_it_works() {
    Stand stand(folder_->path());
    stand.measure(2);
    fill_disk();
    stand.measure(5);
    db::set_statement_fault({});
    QVERIFY(!stand.told.isEmpty() && stand.told.size() <= 2);
    QVERIFY2(stand.told[0].contains("no room left"), qPrintable(stand.told[0]));
    stand.measure(1);
    stand.pass(100);
    QCOMPARE(stand.stored(), stand.measured());
    QVERIFY(!stand.publisher->lost());
}

void PublishTest::what_a_full_disk_refused_is_sent_at_the_end_data() {
    QTest::addColumn<bool>("engine_there");
    QTest::newRow("to an engine") << true;
    QTest::newRow("to nobody") << false;
}

void PublishTest::what_a_full_disk_refused_is_sent_at_the_end() {
    QFETCH(bool, engine_there);
    Stand stand(folder_->path());
    stand.measure(2);
    fill_disk();
    if (!engine_there) stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.measure(5);
    stand.publisher->finish(10, never);
    db::set_statement_fault({});
    QCOMPARE(stand.publisher->lost(), !engine_there);
    QCOMPARE(stand.stored().size(), engine_there ? 7 : 2);
    const QStringList told = stand.told.filter("had no room and which were not delivered: 5");
    QCOMPARE(told.size(), engine_there ? 0 : 1);
}

/// As where a configuration is read again in the middle.
void PublishTest::what_a_full_disk_refused_is_handed_on() {
    Stand stand(folder_->path());
    stand.measure(2);
    fill_disk();
    stand.measure(5);
    const std::deque<HeldLine> held = stand.publisher->take_held();
    db::set_statement_fault({});
    stand.start();
    stand.publisher->hold_on(held);
    stand.measure(2);
    stand.pass(20);
    QCOMPARE(stand.stored(), stand.measured());
    QVERIFY(!stand.publisher->lost());
}

/// Taking away what was stored long ago needs room, too.
void PublishTest::a_full_disk_does_not_stop_what_is_there() {
    Stand stand(folder_->path());
    stand.measure(100, 10);
    fill_disk();
    stand.engine.kill(15);
    QCOMPARE(stand.stored().size(), 99);
    stand.pass(200);
    db::set_statement_fault({});
    QCOMPARE(stand.stored(), stand.measured());
}

/// Engines leave out what lies days ahead, and would so for as many days.
void PublishTest::a_clock_that_stood_far_ahead() {
    constexpr double kDay = 86400;
    Stand stand(folder_->path());
    stand.clock.set_by(4 * kDay);
    stand.measure(3);
    stand.clock.set_by(-4 * kDay);
    const qint64 now = stand.clock.date_time().toMSecsSinceEpoch();
    const auto newest = [&stand] {
        return stand.engine.order.last().split(' ').last().toLongLong() / 1000000;
    };
    stand.measure(3);
    QVERIFY2(std::abs(newest() - now) < 60000, qPrintable(QString::number(newest() - now)));
    QCOMPARE(stand.told.filter("set back by").size(), 1);
    stand.start();
    stand.measure(3);
    QCOMPARE(stand.stored(), QList<int>({4, 5, 6, 7, 8, 9, 1, 2, 3}));
    QVERIFY(std::abs(newest() - now) < 60000);
    QCOMPARE(stand.told.filter("set back by").size(), 1);
}

void PublishTest::a_clock_that_is_not_the_engines_is_told() {
    Stand stand(folder_->path());
    double ahead = 599;
    stand.engine.answers = [&ahead](const QByteArray&) {
        return HttpAnswer{.status = 204, .ahead = ahead};
    };
    stand.measure(2);
    QCOMPARE(stand.told, QStringList());
    ahead = 86400;
    stand.measure(3);
    QCOMPARE(stand.told, QStringList("the clock of this machine is 86400 s ahead of that of the "
                                     "engine, which may leave out rows of such times"));
    ahead = 0;
    stand.measure(1);
    ahead = -700;
    stand.measure(2);
    QCOMPARE(stand.told.size(), 2);
    QVERIFY2(stand.told[1].contains("700 s behind"), qPrintable(stand.told[1]));
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::how_long_rows_wait_is_told_behind_a_clock_set_back() {
    Stand stand(folder_->path());
    const auto told_to_wait = [&stand] {
        QByteArray told;
        stand.engine.answers = [&told](const QByteArray& body) {
            const qsizetype place = body.lastIndexOf("oldest_waiting=") + 15;
            told = body.mid(place, body.indexOf(',', place) - place);
            return HttpAnswer{};
        };
        stand.publisher->report({});
        stand.pass(130);
        stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
        return told.toDouble();
    };
    stand.measure(1);
    stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.clock.set_by(-3600);
    stand.measure(40);
    QVERIFY2(std::abs(told_to_wait() - 40) < 11, "what waits since the clock was set back");
    const double later = told_to_wait();
    QVERIFY2(std::abs(later - 170) < 11, qPrintable(QString::number(later)));
    stand.engine.answers = nullptr;
    stand.pass(130);
    stand.clock.set_by(3600);
    stand.measure(1);
    stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.measure(20);
    const double again = told_to_wait();
    QVERIFY2(std::abs(again - 20) < 2, qPrintable(QString::number(again)));
}

void PublishTest::an_outbox_taken_away_is_told_data() {
    QTest::addColumn<bool>("replaced");
    QTest::addColumn<bool>("delivered");
    QTest::newRow("removed") << false << false;
    QTest::newRow("removed, the engine there") << false << true;
    QTest::newRow("replaced") << true << false;
}

/// Its rows go on to an engine that is there; what waits at the end is lost, and no start is
/// promised to deliver it.
void PublishTest::an_outbox_taken_away_is_told() {
    QFETCH(bool, replaced);
    QFETCH(bool, delivered);
    Stand stand(folder_->path());
    if (!delivered) stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.measure(2);
    QVERIFY(QFile::rename(path(), path("elsewhere")));
    if (replaced) QVERIFY(QFile::copy(path("elsewhere"), path()));
    stand.publisher->report({});
    stand.measure(3);
    stand.publisher->report({});
    stand.publisher->finish(10, never);
    QCOMPARE(stand.told.filter("was deleted, moved or replaced").size(), 1);
    QVERIFY(stand.told.filter("next start").isEmpty());
    QCOMPARE(stand.publisher->lost(), !delivered);
    if (delivered)
        QCOMPARE(stand.stored(), stand.measured());
    else
        QVERIFY2(stand.told.last().contains("no start will: 5"), qPrintable(stand.told.last()));
}

void PublishTest::the_end_of_a_run_tells_what_waits() {
    Stand stand(folder_->path());
    stand.engine.answers = [](const QByteArray&) { return HttpAnswer{}; };
    stand.measure(7);
    const double begin = stand.clock.elapsed();
    stand.publisher->finish(10, never);
    QVERIFY(stand.clock.elapsed() - begin < 11);
    QVERIFY2(stand.told.last().endsWith("next start: 7"), qPrintable(stand.told.last()));
    stand.publisher->finish(10, [] { return true; });
    stand.engine.answers = nullptr;
    stand.start();
    stand.publisher->finish(10, never);
    QCOMPARE(stand.stored(), stand.measured());
}

void PublishTest::time_passes_as_long_as_asked() {
    Stand stand(folder_->path());
    for (const bool there : {true, false}) {
        stand.engine.answers = [there](const QByteArray&) {
            return there ? std::optional(HttpAnswer{.status = 204}) : std::nullopt;
        };
        const double begin = stand.clock.elapsed();
        stand.measure(20, 0.2);
        QVERIFY(std::abs(stand.clock.elapsed() - begin - 4) < 0.001);
    }
}

}  // namespace m47::publish

QTEST_GUILESS_MAIN(m47::publish::PublishTest)
