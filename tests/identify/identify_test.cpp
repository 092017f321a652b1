// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFileInfo>
#include <QTest>
#include <cmath>
#include <numeric>

#include "identifier.h"
#include "sky_stand.h"

namespace m47::identify {
namespace {

constexpr double kFloor = 44;   // dBuV
constexpr double kHeight = 11;  // dB, of a carrier above it

QString table_of(const std::vector<double>& mhz, char polarisation, int rate) {
    QString table;
    for (const double frequency : mhz)
        table += QStringLiteral("S %1 %2 %3 3/4\n")
                     .arg(frequency * 1000, 0, 'f', 0)
                     .arg(QLatin1Char(polarisation))
                     .arg(rate * 1000);
    return table;
}

/// `count` transponders, a step apart.
std::vector<double> row_of(double first, double step, int count) {
    std::vector<double> mhz;
    for (int k = 0; k < count; ++k) mhz.push_back(first + step * k);
    return mhz;
}

/// Five satellites far from each other.
std::vector<NamedTable> tables() {
    return {{QStringLiteral("Alpha-10.0E"), table_of(row_of(10720, 80, 12), 'V', 27500)},
            {QStringLiteral("Beta-20.0E"), table_of(row_of(10750, 90, 11), 'H', 27500)},
            {QStringLiteral("Gamma-30.0E"), table_of(row_of(11730, 70, 14), 'V', 22000)},
            {QStringLiteral("Delta-40.0E"), table_of(row_of(11760, 100, 10), 'H', 30000)},
            {QStringLiteral("Epsilon-5.0W"), table_of(row_of(10700, 60, 16), 'H', 22000)}};
}

std::vector<Candidate> candidates() {
    return candidates_of_tables(tables(), Lnb::universal());
}

std::size_t place_of(const Arc& arc, const QString& name) {
    for (std::size_t k = 0; k < arc.size(); ++k)
        if (arc.candidates()[k].name == name) return k;
    return arc.size();
}

/// All that a candidate's table lists is on air, by `drift` MHz beside its place.
class PlainSky : public SkyAsker {
  public:
    PlainSky(std::vector<Carrier> carriers, double drift)
        : carriers_(std::move(carriers)), drift_(drift) {}

    std::vector<Question> asked;

    Answer ask(const Question& question) override {
        asked.push_back(question);
        Answer answer{.db = kFloor};
        if (question.kind == Question::Kind::lock) answer = {.locked = false};
        for (const Carrier& carrier : carriers_) {
            const double off = carrier.if_mhz + drift_ - question.if_mhz;
            if (carrier.state != question.state) continue;
            if (answer.db && std::abs(off) < carrier.rate / 2) answer.db = kFloor + kHeight;
            if (!answer.locked || std::abs(off) > kCapture * question.rate ||
                carrier.rate != question.rate)
                continue;
            answer.locked = true;
            answer.offset = off;
        }
        return answer;
    }

  private:
    std::vector<Carrier> carriers_;
    double drift_;
};

Verdict identify_in(SkyAsker& sky, const Arc& arc) {
    Identifier identifier(arc, kStates);
    while (const auto question = identifier.next_question())
        identifier.take(*question, sky.ask(*question));
    return identifier.verdict();
}

/// The simulated orbit through a dish.
class OrbitSky : public SkyAsker {
  public:
    OrbitSky(const SkyTables& tables, const SkySettings& settings) : stand_(tables, settings) {}

    Answer ask(const Question& question) override {
        const LnbState lnb = Lnb::universal().state(question.state);
        if (question.kind == Question::Kind::level)
            return {.db = stand_.level(lnb.high_voltage, lnb.tone, question.if_mhz)};
        const auto rate = static_cast<int>(std::lround(question.rate * 1000));
        const SkyStand::Lock lock = stand_.lock(lnb.high_voltage, lnb.tone, question.if_mhz, rate);
        Answer answer{.locked = lock.locked};
        if (lock.locked) answer.offset = lock.offset;
        return answer;
    }

  private:
    SkyStand stand_;
};

const char* const kFolder = "/usr/share/dvb/dvb-s";

std::vector<Candidate> candidates_around(double east, double degrees) {
    auto near = candidates_of_tables(read_tables(QLatin1String(kFolder)), Lnb::universal());
    std::erase_if(near, [&](const Candidate& one) {
        return arc_between(one.positions.front(), east) > degrees;
    });
    return near;
}

bool same(const std::vector<Question>& one, const std::vector<Question>& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const Question& a, const Question& b) {
                          return a.kind == b.kind && a.state == b.state && a.if_mhz == b.if_mhz &&
                                 a.rate == b.rate;
                      });
}

}  // namespace

class IdentifyTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void carriers_come_down_where_the_lnb_brings_them() {
        const Lnb universal = Lnb::universal();
        const std::vector<Place> low = universal.places(10800, 'V');
        QCOMPARE(low.size(), std::size_t(1));
        QCOMPARE(low.front().state, 0);
        QCOMPARE(low.front().if_mhz, 1050.0);
        // Where the bands overlap a carrier is found in both.
        QCOMPARE(universal.places(11800, 'H').size(), std::size_t(2));
        QVERIFY(universal.places(9000, 'H').empty());
        QCOMPARE(universal.places(12500, 'L').size(), std::size_t(2));
        QVERIFY(!universal.separates('L'));
        // An oscillator above its band turns it round.
        const Lnb c_band = Lnb::single(5150);
        QCOMPARE(c_band.places(3800, 'V').front().if_mhz, 1350.0);
        QCOMPARE(c_band.sky_mhz(0, 1350), 3800.0);
        QCOMPARE(c_band.states(), 2);
    }

    void positions_half_a_degree_apart_are_one_answer() {
        const QString table = table_of({10800}, 'V', 27500);
        const auto candidates = candidates_of_tables({{QStringLiteral("A-28.5E"), table},
                                                      {QStringLiteral("B-28.2E"), table},
                                                      {QStringLiteral("C_5.0W"), table},
                                                      {QStringLiteral("D-29.1E"), table},
                                                      {QStringLiteral("no position"), table},
                                                      {QStringLiteral("E-60.0E"), QString()}},
                                                     Lnb::universal());
        QCOMPARE(candidates.size(), std::size_t(3));
        QCOMPARE(candidates[0].name, QStringLiteral("5.0W"));
        QCOMPARE(candidates[0].satellites, QStringList{QStringLiteral("C")});
        QCOMPARE(candidates[1].name, QStringLiteral("28.2E/28.5E"));
        QCOMPARE(candidates[1].carriers.size(), std::size_t(1));
        QCOMPARE(candidates[2].name, QStringLiteral("29.1E"));
    }

    void another_symbol_rate_is_another_transponder() {
        // A demodulator that is told the one does not lock on the other.
        const QString table = table_of({10800}, 'V', 27500) + table_of({10801}, 'V', 27700) +
                              table_of({10800}, 'V', 27500);
        const auto candidates =
            candidates_of_tables({{QStringLiteral("A-28.5E"), table}}, Lnb::universal());
        QCOMPARE(candidates.front().carriers.size(), std::size_t(2));
    }

    void a_wide_transponder_has_little_chance_against_many_narrow_ones() {
        // All are listed, but the wide one leaves no room for the others and they none for it.
        const QString table =
            table_of({10800}, 'V', 30000) + table_of(row_of(10786, 4, 8), 'V', 2000);
        const Arc arc(candidates_of_tables({{QStringLiteral("A-28.5E"), table}}, Lnb::universal()));
        for (const Emitter& emitter : arc.around(0)[0]) {
            const bool wide = emitter.carrier.rate > 20;
            QVERIFY2(wide ? emitter.chance < 0.2 : emitter.chance > 0.6,
                     qPrintable(QString::number(emitter.chance)));
            QVERIFY(emitter.rivalled);
        }
    }

    void what_nobody_lists_is_likely_where_much_is_listed() {
        const Arc arc(candidates());
        const std::size_t gamma = place_of(arc, QStringLiteral("30.0E"));
        // Fourteen at 13 V with tone, none at 18 V.
        QVERIFY(arc.unlisted(gamma, 2, 1500) > 4 * arc.unlisted(gamma, 3, 1500));
        QVERIFY(arc.unlisted(gamma, 3, 1500) > 0);
    }

    void what_is_there_fits_and_another_does_not() {
        const Arc arc(candidates());
        PlainSky sky(arc.candidates()[0].carriers, 1);
        Identifier identifier(arc, kStates);
        while (const auto question = identifier.next_question())
            identifier.take(*question, sky.ask(*question));
        const auto fit_of = [&](std::size_t k) {
            return identifier.belief().front(k).fit(identifier.evidence());
        };
        QVERIFY2(fit_of(0) > -2, qPrintable(QString::number(fit_of(0))));
        QVERIFY2(fit_of(3) < -6, qPrintable(QString::number(fit_of(3))));
    }

    void the_arc_is_a_circle() {
        QCOMPARE(arc_between(-177, 180), 3.0);
        QCOMPARE(position_of(QStringLiteral("Intelsat-18-180.0E")).value_or(0), 180.0);
        QVERIFY(!position_of(QStringLiteral("Astra-181.0E")));
        QCOMPARE(position_text(-0.8), QStringLiteral("0.8W"));
    }

    void the_noise_floor_is_found_below_the_carriers() {
        std::vector<Level> levels;
        for (int k = 0; k < 40; ++k) {
            const double mhz = kLowestIf + k * 30;
            const double scatter = 0.15 * std::sin(7.0 * k);
            const double carrier = k % 5 < 3 ? 3.0 + k % 9 : 0;
            levels.push_back(
                {k % 4, mhz,
                 50 - 4 * (mhz - kLowestIf) / (kHighestIf - kLowestIf) + scatter + carrier});
        }
        const NoiseFloor floor = noise_floor_of(levels);
        QVERIFY2(std::abs(floor.at_start - 50) < 0.5, qPrintable(QString::number(floor.at_start)));
        QVERIFY2(std::abs(floor.tilt + 4) <= 1, qPrintable(QString::number(floor.tilt)));
    }

    void a_level_tells_what_may_have_made_it() {
        Part part{10, 0.8F};
        part.odds = 4;
        const Mixture mixture({part}, 0.05F, {});
        // 10 log 11
        const float full = 10.4F;
        QVERIFY(mixture.log_density(full) > mixture.log_density(5) + 3);
        QVERIFY(mixture.log_density(0) > mixture.log_density(5) + 3);
        QVERIFY(mixture.shares(full)[1] > 0.99F);
        QVERIFY(mixture.shares(0)[0] > 0.99F);
        QVERIFY(std::abs(mixture.mean().db - 0.8F * full) < 0.2F);
    }

    void what_cannot_be_together_is_not() {
        Part one{10, 0.4F};
        Part other{8, 0.4F};
        one.odds = other.odds = 2;
        one.excluded = 0b10;
        other.excluded = 0b01;
        const Mixture apart({one, other}, 0.05F, {});
        QVERIFY(apart.shares(12.8F)[3] == 0);
        QVERIFY(std::abs(apart.mean().db - 0.4F * (10.4F + 9.5F)) < 0.2F);
    }

    void chances_are_chances_and_their_sum_is_one() {
        const Arc arc(candidates());
        PlainSky sky(arc.candidates()[0].carriers, 0);
        Identifier identifier(arc, kStates);
        while (const auto question = identifier.next_question()) {
            const auto& chances = identifier.belief().chances();
            for (const double chance : chances) QVERIFY(chance >= 0 && chance <= 1);
            QVERIFY(std::abs(std::accumulate(chances.begin(), chances.end(), 0.0) - 1) < 1e-6);
            identifier.take(*question, sky.ask(*question));
        }
    }

    void questions_without_an_answer_come_to_an_end() {
        const Arc arc(candidates());
        Identifier identifier(arc, kStates);
        int asked = 0;
        while (const auto question = identifier.next_question()) {
            identifier.take(*question, {});
            ++asked;
            QVERIFY(asked < 500);
        }
        QVERIFY(identifier.verdict().kind != Verdict::Kind::candidate);
    }

    void each_satellite_is_named_with_its_drift_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("drift");
        double drift = -2.6;
        for (const Candidate& candidate : candidates()) {
            QTest::addRow("%s %+.1f", qPrintable(candidate.name), drift) << candidate.name << drift;
            drift += 1.3;
        }
    }
    void each_satellite_is_named_with_its_drift() {
        QFETCH(QString, name);
        QFETCH(double, drift);
        const Arc arc(candidates());
        const std::size_t meant = place_of(arc, name);
        PlainSky sky(arc.candidates()[meant].carriers, drift);
        const Verdict verdict = identify_in(sky, arc);
        QCOMPARE(verdict.kind, Verdict::Kind::candidate);
        QCOMPARE(verdict.candidate, meant);
        QVERIFY2(verdict.certainty > 0.95, qPrintable(QString::number(verdict.certainty)));
        QVERIFY(verdict.locks >= 1);
        QVERIFY2(std::abs(verdict.drift - drift) < 1.1, qPrintable(QString::number(verdict.drift)));
    }

    void an_empty_sky_has_no_satellite() {
        const Arc arc(candidates());
        PlainSky sky({}, 0);
        QCOMPARE(identify_in(sky, arc).kind, Verdict::Kind::no_satellite);
    }

    void what_is_not_among_the_candidates_is_none_of_them() {
        for (const std::size_t removed : {std::size_t{1}, std::size_t{4}}) {
            std::vector<Candidate> left = candidates();
            PlainSky sky(left[removed].carriers, 1);
            left.erase(left.begin() + static_cast<std::ptrdiff_t>(removed));
            QCOMPARE(identify_in(sky, Arc(left)).kind, Verdict::Kind::none_of_these);
        }
    }

    /// A small dish sees satellites a degree apart as one: nothing unlisted has a place there.
    void satellites_that_a_small_dish_does_not_tell_apart() {
        constexpr double kSmallest = 30;  // cm
        std::vector<NamedTable> close;
        const char* const names[] = {"Alpha-10.0E", "Beta-10.7E", "Gamma-11.4E", "Delta-12.1E"};
        double first = 10720;
        for (const char* name : names)
            close.push_back(
                {QLatin1String(name), table_of(row_of(first += 7, 80, 12), 'V', 22000)});
        const Arc arc(candidates_of_tables(close, Lnb::universal()), kSmallest);
        std::vector<Carrier> all;
        for (const Candidate& one : arc.candidates())
            all.insert(all.end(), one.carriers.begin(), one.carriers.end());
        PlainSky sky(all, 0.5);
        const Verdict verdict = identify_in(sky, arc);
        QCOMPARE(verdict.kind, Verdict::Kind::candidate);
        QVERIFY2(verdict.certainty < 0.95, qPrintable(QString::number(verdict.certainty)));
    }

    void satellites_of_the_simulated_orbit_are_named() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        const Arc arc(candidates_of_tables(read_tables(QLatin1String(kFolder)), Lnb::universal()));
        struct Look {
            const char* name;
            double east;
        };
        const Look looks[] = {{"19.2E", 19.6}, {"74.0E", 73.8}, {"8.0W", -8.3}};
        int right = 0;
        std::uint64_t seed = 1;
        for (const Look& look : looks) {
            OrbitSky sky(tables, {.seed = seed++, .cn_db = 11, .east = look.east});
            const Verdict verdict = identify_in(sky, arc);
            const bool named = verdict.kind == Verdict::Kind::candidate;
            if (named && arc.candidates()[verdict.candidate].name == QLatin1String(look.name))
                ++right;
        }
        QVERIFY2(right >= 2, qPrintable(QString::number(right)));
    }

    void satellites_of_unequal_powers_are_named() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        const Arc arc(candidates_around(47, 20));
        struct Look {
            std::uint64_t seed;
            const char* name;
            double east;
        };
        // Narrow carriers stand up to 24 dB over the noise.
        for (const Look& look : {Look{101007, "54.9E/55.0E", 55.1}, Look{101010, "62.0E", 61.9}}) {
            OrbitSky sky(tables, {.seed = look.seed, .own_powers = true, .east = look.east});
            const Verdict verdict = identify_in(sky, arc);
            QCOMPARE(verdict.kind, Verdict::Kind::candidate);
            QCOMPARE(arc.candidates()[verdict.candidate].name, QLatin1String(look.name));
        }
    }

    void a_satellite_that_is_in_no_table_is_not_taken_for_its_neighbour() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        // Those nearby will do.
        auto left = candidates_around(-63, 30);
        std::erase_if(left, [](const Candidate& one) { return one.name == u"63.0W"; });
        OrbitSky sky(tables, {.seed = 101056, .cn_db = 13.7, .east = -62.6});
        const Verdict verdict = identify_in(sky, Arc(left));
        QCOMPARE(verdict.kind, Verdict::Kind::none_of_these);
    }

    void what_nobody_lists_speaks_against_a_name() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        auto left = candidates_around(-68, 16);
        std::erase_if(left, [](const Candidate& one) { return one.name == u"58.0W"; });
        OrbitSky sky(tables, {.seed = 101236, .cn_db = 9.5, .east = -57.53});
        const Verdict verdict = identify_in(sky, Arc(left));
        QCOMPARE(verdict.kind, Verdict::Kind::none_of_these);
    }

    /// Of levels alone less out of place is enough to name nobody.
    void a_far_satellite_that_looks_much_the_same_is_not_named_without_a_lock() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        auto left = candidates_around(-79, 30);
        std::erase_if(left, [](const Candidate& one) { return one.name == u"79.0W/78.8W"; });
        const Arc arc(left);
        OrbitSky sky(tables, {.seed = 101409, .cn_db = 13.1, .east = -79});
        Identifier identifier(arc, kStates);
        while (const auto question = identifier.next_question())
            identifier.take(*question, sky.ask(*question));
        // The levels themselves would have named one.
        QVERIFY(identifier.belief().best() < arc.size());
        QCOMPARE(identifier.verdict().locks, 0);
        QCOMPARE(identifier.verdict().kind, Verdict::Kind::none_of_these);
    }

    void of_two_that_the_dish_is_between_neither_is_taken_for_certain() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        const Arc arc(candidates_around(31, 12));
        OrbitSky sky(tables, {.seed = 101709, .cn_db = 13.8, .east = 30.97});
        Identifier identifier(arc, kStates);
        while (const auto question = identifier.next_question())
            identifier.take(*question, sky.ask(*question));
        const std::vector<double>& chances = identifier.belief().chances();
        for (const char* name : {"30.5E", "31.5E"}) {
            const double chance = chances[place_of(arc, QLatin1String(name))];
            QVERIFY2(chance > 0.05 && chance < 0.95, qPrintable(QString::number(chance)));
        }
    }

    /// Of what is up there a plan has a small part: that the rest is not in it speaks against
    /// nothing, and that some of it locks speaks for it.
    void a_plan_of_a_few_programs_is_recognised() {
        if (!QFileInfo::exists(QLatin1String(kFolder))) QSKIP("no scan tables are installed");
        const SkyTables tables(kFolder);
        std::vector<Candidate> plans;
        for (const double east : {13.0, 28.2}) {
            Candidate plan = candidates_around(east, 0.2).front();
            std::erase_if(plan.carriers, [](const Carrier& carrier) { return !carrier.lockable; });
            std::vector<Carrier> few;
            for (std::size_t k = 3; k < plan.carriers.size(); k += 7)
                few.push_back(plan.carriers[k]);
            plan.carriers = few;
            for (Carrier& carrier : plan.carriers) carrier.east.reset();
            plan.positions.clear();
            plan.is_plan = true;
            plans.push_back(plan);
        }
        const Arc arc(plans);
        OrbitSky own(tables, {.seed = 101003, .cn_db = 13, .east = 13.1});
        const Verdict verdict = identify_in(own, arc);
        QCOMPARE(verdict.kind, Verdict::Kind::candidate);
        QCOMPARE(verdict.candidate, std::size_t{0});
        QVERIFY(verdict.locks >= 2);
        QVERIFY2(verdict.certainty > 0.8, qPrintable(QString::number(verdict.certainty)));
        OrbitSky other(tables, {.seed = 101004, .cn_db = 13, .east = 42.2});
        QCOMPARE(identify_in(other, arc).kind, Verdict::Kind::none_of_these);
    }

    void the_same_sky_is_asked_the_same() {
        const Arc arc(candidates());
        PlainSky one(arc.candidates()[2].carriers, -1);
        PlainSky other(arc.candidates()[2].carriers, -1);
        identify_in(one, arc);
        identify_in(other, arc);
        QVERIFY(!one.asked.empty());
        QVERIFY(same(one.asked, other.asked));
    }
};

}  // namespace m47::identify

QTEST_GUILESS_MAIN(m47::identify::IdentifyTest)
#include "identify_test.moc"
