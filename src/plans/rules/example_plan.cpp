// SPDX-License-Identifier: GPL-3.0-or-later
#include "example_plan.h"

#include "plan_sets.h"

namespace m47::plans {
namespace {

const QString kLowBand = QStringLiteral("09750");
const QString kHighBand = QStringLiteral("10600");

struct Example {
    const char* frequency;    ///< MHz
    const char* symbol_rate;  ///< kS/s; nullptr for an analog one
    const char* bandwidth;    ///< MHz
    int supply;               ///< 1 13 V, 2 18 V
    bool high_band;
};

constexpr Example kExamples[] = {
    {"10750", "27500", "33", 1, false}, {"11288", nullptr, "27", 1, false},
    {"11560", "27500", "33", 1, false}, {"10954", "27500", "33", 2, false},
    {"11127", "27500", "33", 2, false}, {"11562", "27500", "33", 1, true},
    {"12160", "27500", "33", 1, true},
};

programme::ProgramRecord record_of(const Example& example, int number) {
    programme::ProgramRecord record;
    record.pg_num = QStringLiteral("%1").arg(number, 3, 10, QLatin1Char('0'));
    record.frequenza = QString::fromLatin1(example.frequency);
    record.loc_osc0 = example.high_band ? 1 : 0;
    record.sat_ad = example.symbol_rate != nullptr;
    record.qpsk_symbolrate = QString::fromLatin1(example.symbol_rate);
    record.satchbw = QString::fromLatin1(example.bandwidth);
    record.lnb_volt = example.supply;
    record.K22 = example.high_band ? 1 : 0;
    record.monitor_state = true;
    record.lev_min = QStringLiteral("45");
    record.lev_max = QStringLiteral("80");
    record.noise_min = record.mer_min = QStringLiteral("8");
    record.noise_max = record.mer_max = QStringLiteral("30");
    record.chber_min = QStringLiteral("1E-8");
    record.chber_max = QStringLiteral("3E-2");
    return record;
}

}  // namespace

void add_example_plan(db::Database& database) {
    PlanSets sets(database);
    if (sets.has_plan(kExamplePlan)) return;
    sets.add_new(kExamplePlan);
    int number = 0;
    for (const Example& example : kExamples) {
        programme::ProgramRecord record = record_of(example, ++number);
        QString oscillator = example.high_band ? kHighBand : kLowBand;
        // The first one takes the place of the blank program that each plan begins with.
        sets.store_record(record, oscillator, 0.0, number == 1);
    }
}

}  // namespace m47::plans
