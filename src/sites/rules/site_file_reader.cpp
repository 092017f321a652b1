// SPDX-License-Identifier: GPL-3.0-or-later
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSet>
#include <initializer_list>
#include <limits>
#include <type_traits>

#include "json_members.h"
#include "json_repeats.h"
#include "measurement_output.h"
#include "site_file.h"
#include "site_file_names.h"

namespace m47::sites {
namespace {

using measurement::Measurement;
using measurement::MeasureMode;

constexpr Bilingual kTooLong{"This file is longer than a file of sites may be.",
                             "Questo file è più lungo di quanto un file di siti possa essere."};
constexpr Bilingual kNoJson{"This is no file of sites: it is no JSON (%1, at byte %2).",
                            "Questo non è un file di siti: non è JSON (%1, al byte %2)."};
constexpr Bilingual kOtherFile{"This is no file of sites.", "Questo non è un file di siti."};
constexpr Bilingual kLaterVersion{
    "This file of sites was written by a later version of the program.",
    "Questo file di siti è stato scritto da una versione successiva del programma."};
constexpr Bilingual kMemberTwice{
    "This is no file of sites: an object has '%1' twice, the second time at byte %2.",
    "Questo non è un file di siti: un oggetto ha '%1' due volte, la seconda al byte %2."};
constexpr Bilingual kIdTwice{"This is no file of sites: the id %1 comes twice.",
                             "Questo non è un file di siti: l'id %1 compare due volte."};

// The years 0 to 9999 and some days, as a log can name them; no place on earth is further from UTC
// than 18 hours.
constexpr double kFirstInstant = -62'200'000'000;
constexpr double kLastInstant = 253'500'000'000;
constexpr int kMostOffset = 18 * 3600;
/// Readings and frequencies are single precision.
constexpr double kMostFloat = std::numeric_limits<float>::max();
constexpr double kMostLimit = std::numeric_limits<double>::max();

/// Reads a file into sites; throws Refused.
class SiteFileReader {
  public:
    SiteFile sites(const QJsonValue& file) {
        JsonMembers members(file);
        if (members.text(member::kFormat) != QLatin1String(member::kSiteFormat))
            throw Refused{{kOtherFile, {}}};
        if (members.whole(member::kVersion, 1, std::numeric_limits<int>::max()) !=
            member::kSiteVersion)
            throw Refused{{kLaterVersion, {}}};
        SiteFile read;
        each(members, member::kSites, [&](JsonMembers& one) { read.push_back(site(one)); });
        members.done();
        return read;
    }

  private:
    /// `read` with each object of an array.
    template <typename Read>
    static void each(JsonMembers& members, const char* name, const Read& read) {
        const QJsonArray array = members.array(name);
        for (qsizetype k = 0; k < array.size(); ++k) {
            JsonMembers one(array[k], &members, name, k);
            read(one);
            one.done();
        }
    }

    SiteWithVisits site(JsonMembers& members) {
        SiteWithVisits whole{{.id = once(members.id(member::kId), {}),
                              .name = members.text(member::kName),
                              .address = members.text(member::kAddress),
                              .customer = members.text(member::kCustomer),
                              .remarks = members.text(member::kRemarks)},
                             {}};
        each(members, member::kVisits,
             [&](JsonMembers& one) { whole.visits.push_back(visit(one, whole.site.id)); });
        return whole;
    }

    VisitWithRows visit(JsonMembers& members, const QUuid& site) {
        VisitWithRows whole;
        whole.visit = {.id = once(members.id(member::kId), {}),
                       .site = site,
                       .begun = instant(members.object(member::kBegun)),
                       .ended = {},
                       .technician = members.text(member::kTechnician),
                       .instrument = members.text(member::kInstrument),
                       .logo = members.text(member::kLogo),
                       .plan = members.text(member::kPlan),
                       .remarks = members.text(member::kRemarks)};
        if (const auto ended = members.object_if(member::kEnded))
            whole.visit.ended = instant(*ended);
        each(members, member::kMeasurements,
             [&](JsonMembers& one) { whole.rows.push_back(row(one, whole.visit.id)); });
        return whole;
    }

    VisitMeasurement row(JsonMembers& members, const QUuid& visit) {
        VisitMeasurement read{.id = once(members.id(member::kId), visit),
                              .visit = visit,
                              .instant = instant(members.object(member::kInstant))};
        Measurement& measured = read.measurement;
        measured.instant = read.instant.wall();
        measured.program = {members.text(member::kPlan), members.text(member::kProgram)};
        measured.mode = choice(members, member::kMode, measurement::mode_text, MeasureMode::none,
                               {MeasureMode::analog, MeasureMode::digital});
        measured.frequency = mhz(members, member::kFrequency);
        measured.oscillator = mhz(members, member::kOscillator);
        measured.unit = choice(members, member::kUnit, measurement::unit_text,
                               std::optional<LevelUnit>(), {kDbuv, kDbmv, kDbm});
        measured.verdict =
            choice(members, member::kVerdict, measurement::verdict_text, measurement::Verdict::none,
                   {measurement::Verdict::pass, measurement::Verdict::fail});
        take_readings_of(members, measured);
        take_limits(members, measured);
        return read;
    }

    static std::optional<float> mhz(JsonMembers& members, const char* name) {
        const auto value = members.number_if(name, -kMostFloat, kMostFloat);
        return value ? std::optional(static_cast<float>(*value)) : std::nullopt;
    }

    /// That of `known` whose text stands there; `none` where nothing does.
    template <typename Value>
    static Value choice(JsonMembers& members, const char* name, QString (*text_of)(Value),
                        Value none, std::initializer_list<std::type_identity_t<Value>> known) {
        if (!members.has(name)) return none;
        const QString text = members.text(name);
        for (const Value& one : known)
            if (text == text_of(one)) return one;
        members.refuse(name);
    }

    static void take_readings_of(JsonMembers& members, Measurement& measured) {
        auto readings = members.object_if(member::kReadings);
        if (!readings) return;
        for (std::size_t k = 0; k < measurement::kAllQuantities; ++k) {
            auto one = readings->object_if(measurement::kQuantityNames[k]);
            if (!one) continue;
            const bool rate = measurement::is_error_rate(static_cast<measurement::Quantity>(k));
            const auto value = one->number(member::kValue, rate ? 0 : -kMostFloat, kMostFloat);
            measured.readings[k] = {
                static_cast<float>(value),
                choice(*one, member::kMark, mark_words, measurement::RangeMark::none,
                       {measurement::RangeMark::below, measurement::RangeMark::above})};
            one->done();
        }
        readings->done();
    }

    static QString mark_words(measurement::RangeMark mark) {
        return QString::fromLatin1(measurement::mark_text(mark));
    }

    static void take_limits(JsonMembers& members, Measurement& measured) {
        auto limits = members.object_if(member::kLimits);
        if (!limits) return;
        for (std::size_t k = 0; k < measurement::kAllQuantities; ++k) {
            auto one = limits->object_if(measurement::kQuantityNames[k]);
            if (!one) continue;
            measured.limits[k] =
                measurement::Limits{one->number_if(member::kMinimum, -kMostLimit, kMostLimit),
                                    one->number_if(member::kMaximum, -kMostLimit, kMostLimit)};
            one->done();
        }
        limits->done();
    }

    static Instant instant(JsonMembers members) {
        const Instant read{members.number(member::kUtc, kFirstInstant, kLastInstant),
                           members.whole(member::kOffset, -kMostOffset, kMostOffset)};
        members.done();
        return read;
    }

    /// A measurement is known by its id within its visit.
    QUuid once(const QUuid& id, const QUuid& visit) {
        if (known_.contains({visit, id}))
            throw Refused{{kIdTwice, {id.toString(QUuid::WithoutBraces)}}};
        known_.insert({visit, id});
        return id;
    }

    QSet<std::pair<QUuid, QUuid>> known_;
};

}  // namespace

SiteFileRead read_site_file(const QByteArray& bytes) {
    if (bytes.size() > kMostSiteFile) return {{}, Said{kTooLong, {}}};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        return {{}, Said{kNoJson, {error.errorString(), QString::number(error.offset)}}};
    if (!document.isObject()) return {{}, Said{kOtherFile, {}}};
    if (const auto twice = repeated_member(bytes))
        return {{}, Said{kMemberTwice, {twice->name, QString::number(twice->offset)}}};
    try {
        return {SiteFileReader().sites(document.object()), {}};
    } catch (const Refused& refused) {
        return {{}, refused.why};
    }
}

}  // namespace m47::sites
