// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample_year.h"

#include <array>
#include <cmath>

namespace m47::sites {
namespace {

using measurement::Quantity;

constexpr double kYearBegin = 1'763'800'200;  // 2025-11-22 09:30 in Italy
constexpr double kQuarter = 91 * 86'400.0;
constexpr int kWinterTime = 3600;
constexpr std::array<float, kYearPrograms> kTransponders{
    10'832.0F, 10'992.0F, 11'034.0F, 11'283.0F, 11'541.0F, 11'766.0F, 11'843.0F, 12'092.0F};

float faded(int program, int visit) {
    const float part = program == 0 ? 1.0F : program == 1 ? 0.5F : 0.0F;
    return part * static_cast<float>(visit);
}

void set_readings(measurement::Measurement& measured, int program, int visit) {
    const float fade = faded(program, visit);
    const float jitter = static_cast<float>((program * 7 + visit * 3) % 5) / 10;
    const float mer = 13.4F - 1.2F * fade + jitter - static_cast<float>(program) * 0.2F;
    measured.reading(Quantity::level).value = 61.5F - fade - jitter;
    measured.reading(Quantity::cn).value = mer + 0.8F;
    measured.reading(Quantity::mer).value = mer;
    measured.reading(Quantity::cfo).value = -0.4F + jitter;
    measured.reading(Quantity::ber).value = 2e-6F * std::pow(10.0F, fade * 0.6F);
    measured.reading(Quantity::pvber) = {
        1e-8F, fade > 3 ? measurement::RangeMark::none : measurement::RangeMark::below};
    measured.verdict = mer > 9.5F ? measurement::Verdict::pass : measurement::Verdict::fail;
}

VisitMeasurement row_of(const Visit& visit, int program, int number) {
    VisitMeasurement row{.id = QUuid::createUuid(),
                         .visit = visit.id,
                         .instant = {visit.begun.utc + 20 * (program + 1), visit.begun.offset},
                         .measurement = {}};
    measurement::Measurement& measured = row.measurement;
    measured.instant = row.instant.wall();
    measured.program = {QStringLiteral("ROSSI"),
                        QStringLiteral("%1").arg(program + 1, 3, 10, QChar(u'0'))};
    measured.mode = measurement::MeasureMode::digital;
    measured.frequency = kTransponders[static_cast<std::size_t>(program)];
    measured.oscillator = program < 5 ? 9'750.0F : 10'600.0F;
    measured.unit = kDbuv;
    measured.limits[static_cast<std::size_t>(Quantity::level)] = measurement::Limits{45, 80};
    measured.limits[static_cast<std::size_t>(Quantity::mer)] =
        measurement::Limits{9.5, std::nullopt};
    const bool lost = program == 2 && number == kYearVisits - 1;
    if (lost)
        measured.verdict = measurement::Verdict::fail;
    else
        set_readings(measured, program, number);
    return row;
}

Site add_site(SiteStore& store, const char* name, const char* address, const char* customer) {
    const Site site{.id = QUuid::createUuid(),
                    .name = QString::fromUtf8(name),
                    .address = QString::fromUtf8(address),
                    .customer = QString::fromUtf8(customer),
                    .remarks = QString()};
    store.store(site);
    return site;
}

/// The visit number `number` of the year; the programs from `first` on are measured.
void add_visit(SiteStore& store, const Site& site, int number, int first) {
    const double begun = kYearBegin + number * kQuarter;
    const Visit visit{.id = QUuid::createUuid(),
                      .site = site.id,
                      .begun = {begun, kWinterTime},
                      .ended = Instant{begun + 900, kWinterTime},
                      .technician = QStringLiteral("M. Ferri"),
                      .instrument = QStringLiteral("PLUS V3.0.5"),
                      .plan = QStringLiteral("ROSSI"),
                      .remarks = number == 4 ? QStringLiteral("dopo il temporale") : QString()};
    store.store(visit);
    for (int program = first; program < kYearPrograms; ++program)
        store.store(row_of(visit, program, first > 0 ? 0 : number));
}

}  // namespace

void fill_year(SiteStore& store) {
    store.together([&] {
        const Site rossi = add_site(store, "Condominio Rossi", "Via Roma 7, Città", "Amm. Bianchi");
        for (int number = 0; number < kYearVisits; ++number) add_visit(store, rossi, number, 0);
        const Site hotel = add_site(store, "Hotel Miramare", "Lungomare 12", "Hotel Miramare srl");
        for (const int number : {0, 2, 3}) add_visit(store, hotel, number, 3);
        add_visit(store, add_site(store, "Scuola Verdi", "Via Verdi 3", "Comune"), 1, 4);
        add_site(store, "Villa Bianchi", "Via dei Colli 21", "Sig. Bianchi");
    });
}

}  // namespace m47::sites
