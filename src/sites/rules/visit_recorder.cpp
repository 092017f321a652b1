// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_recorder.h"

#include <QRandomGenerator>
#include <QtEndian>
#include <algorithm>
#include <array>

namespace m47::sites {
namespace {

constexpr double kSecond = 1000;  // ms
// A file that has failed is not waited for with every row: the meter would wait too.
constexpr int kPatience = 3000;
constexpr int kImpatience = 20;
constexpr std::size_t kMostAtOnce = 128;

constexpr Bilingual kMissing{"Of the visit, %1 of %2 rows are missing in the file of sites '%3'",
                             "Della visita mancano %1 righe su %2 nel file dei siti '%3'"};
constexpr Bilingual kRemoved{
    "The visit was removed from the file of sites '%1' while it ran, by another window or program: "
    "none of its rows is in the file any more.",
    "La visita è stata eliminata dal file dei siti '%1' mentre era in corso, da un'altra finestra "
    "o da un altro programma: nessuna delle sue righe è più nel file."};
constexpr Bilingual kSeveralSites{
    "More than one site has this name: rename all but one on the screen \"Sites\".",
    "Più di un sito ha questo nome: rinominarli tutti tranne uno nella schermata \"Siti\"."};
constexpr Bilingual kVisitGone{"The visit is no longer in the file of sites.",
                               "La visita non è più nel file dei siti."};
constexpr Bilingual kVisitKept{
    "Another window or run of this program keeps this visit: end it there first.",
    "Un'altra finestra o un altro ciclo di questo programma tiene questa visita: terminarla prima "
    "lì."};

/// An id that grows with `moment`, ms since 1970, so that rows are added at the end of the file.
QUuid id_at(std::int64_t moment) {
    constexpr int kMomentBits = 48;
    constexpr int kVersion = 7;
    std::array<quint64, 2> words{};
    QRandomGenerator::global()->fillRange(words.data(), words.size());
    const quint64 time = static_cast<quint64>(moment) << (64 - kMomentBits);
    words[0] = qToBigEndian(time | quint64{kVersion} << 12 | (words[0] & 0xfff));
    words[1] = qToBigEndian(quint64{2} << 62 | words[1] >> 2);
    return QUuid::fromRfc4122(
        QByteArrayView(reinterpret_cast<const char*>(words.data()), sizeof(words)));
}

}  // namespace

bool is_called(const Site& site, const QString& name) {
    return site.name.simplified().compare(name.simplified(), Qt::CaseInsensitive) == 0;
}

std::optional<Site> site_named(const SiteStore& store, const QString& name) {
    std::optional<Site> found;
    for (const Site& site : store.sites()) {
        if (!is_called(site, name)) continue;
        if (found) throw Fault(kSeveralSites);
        found = site;
    }
    return found;
}

Instant instant_of(const QDateTime& moment) {
    return {static_cast<double>(moment.toMSecsSinceEpoch()) / kSecond, moment.offsetFromUtc()};
}

VisitRecorder::VisitRecorder(SiteStore& store) : store_(store), claim_(store.path()) {}

/// What was not ended can be gone on with.
VisitRecorder::~VisitRecorder() {
    if (running_) claim_.leave();
}

void VisitRecorder::start(const Visit& visit) {
    visit_ = visit;
    waiting_.clear();
    at_once_ = 1;
    last_moment_ = 0;
    stored_ = given_up_ = 0;
    told_ = fails_ = gone_ = false;
    running_ = true;
}

void VisitRecorder::begin(const QString& site, const VisitFacts& facts, const QDateTime& now) {
    begin(site_named(store_, site)
              .value_or(Site{.id = QUuid::createUuid(), .name = site.simplified()}),
          facts, now);
}

void VisitRecorder::begin(const Site& site, const VisitFacts& facts, const QDateTime& now) {
    const Visit visit{.id = QUuid::createUuid(),
                      .site = site.id,
                      .begun = instant_of(now),
                      .technician = facts.technician,
                      .instrument = facts.instrument,
                      .logo = facts.logo,
                      .plan = facts.plan,
                      .remarks = facts.remarks};
    // Nobody else can know of it yet.
    claim_.take(visit.id);
    try {
        store_.together([&] {
            const std::vector<Site> known = store_.sites();
            if (std::ranges::find(known, site.id, &Site::id) == known.end()) store_.store(site);
            store_.store(visit);
        });
    } catch (const StoreFault&) {
        claim_.release();
        throw;
    }
    start(visit);
}

void VisitRecorder::resume(const QUuid& visit) {
    std::optional<Visit> found = store_.visit(visit);
    if (!found) {
        VisitClaim::forget(store_.path(), visit);
        throw Fault(kVisitGone);
    }
    if (!claim_.take(visit)) throw Fault(kVisitKept);
    found->ended.reset();
    try {
        store_.store(*found);
    } catch (const StoreFault&) {
        claim_.leave();
        throw;
    }
    start(*found);
}

void VisitRecorder::tell(const VisitFacts& facts) {
    if (!visit_) return;
    visit_->technician = facts.technician;
    visit_->instrument = facts.instrument;
    visit_->logo = facts.logo;
    visit_->plan = facts.plan;
    visit_->remarks = facts.remarks;
}

VisitFacts VisitRecorder::facts() const {
    if (!visit_) return {};
    return {visit_->technician, visit_->instrument, visit_->logo, visit_->plan, visit_->remarks};
}

void VisitRecorder::try_again() {
    if (running_) store_waiting();
}

void VisitRecorder::leave() {
    if (!running_) return;
    if (fails_) be_patient(kPatience);
    store_waiting();
    running_ = false;
    claim_.leave();
}

QUuid VisitRecorder::next_id(double utc) {
    // The rows of one second stay in their order too.
    last_moment_ = std::max(static_cast<std::int64_t>(utc * kSecond), last_moment_ + 1);
    return id_at(last_moment_);
}

void VisitRecorder::take(const measurement::Measurement& measured, int offset) {
    if (!running_) return;
    if (gone_ || waiting_.size() == kMostWaiting) {
        ++given_up_;
    } else {
        const Instant instant{measured.instant.value_or(0) - offset, offset};
        waiting_.push_back({.id = next_id(instant.utc),
                            .visit = visit_->id,
                            .instant = instant,
                            .measurement = measured});
    }
    store_waiting();
}

/// False where the file fails.
bool VisitRecorder::store_waiting() {
    while (!waiting_.empty()) {
        if (!trapped([this] { store_some(); })) return false;
        at_once_ = std::min(at_once_ * 2, kMostAtOnce);
    }
    at_once_ = 1;
    return true;
}

void VisitRecorder::store_some() {
    const std::size_t count = std::min(waiting_.size(), at_once_);
    const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(count);
    store_.together([&] {
        for (auto row = waiting_.begin(); row != end; ++row) store_.store(*row);
    });
    waiting_.erase(waiting_.begin(), end);
    stored_ += static_cast<int>(count);
}

bool VisitRecorder::trapped(const std::function<void()>& work) {
    try {
        work();
        if (fails_) be_patient(kPatience);
        fails_ = false;
        return true;
    } catch (const StoreFault& fault) {
        at_once_ = 1;
        if (is_gone()) return false;
        if (!fails_) be_patient(kImpatience);
        fails_ = true;
        if (!told_ && on_fault) on_fault(fault.error());
        told_ = true;
        return false;
    }
}

/// True where the visit is not in the file any more: somebody has removed it, or its site, and all
/// that was stored with it.
bool VisitRecorder::is_gone() {
    if (gone_) return true;
    try {
        gone_ = !store_.visit(visit_->id);
    } catch (const StoreFault&) {
        // A file that cannot be read does not tell.
    }
    if (!gone_) return false;
    given_up_ += static_cast<int>(waiting_.size()) + stored_;
    stored_ = 0;
    waiting_.clear();
    if (on_gone) on_gone();
    return true;
}

void VisitRecorder::be_patient(int milliseconds) {
    try {
        store_.wait_for_locks(milliseconds);
    } catch (const StoreFault&) {
        // The next row has its own trial.
    }
}

void VisitRecorder::end(const Instant& now) {
    if (!running_) return;
    running_ = false;
    visit_->ended = now;
    // The last chance of what waits is worth some time.
    if (fails_) be_patient(kPatience);
    store_waiting();
    // What is stored anew would be a visit without its rows.
    const bool ended = !is_gone() && trapped([this] { store_.store(*visit_); });
    if (fails_) be_patient(kPatience);
    if (ended || gone_) return claim_.release();
    visit_->ended.reset();
    claim_.leave();
}

std::optional<Said> VisitRecorder::missing_text() const {
    if (missing() == 0 && !gone_) return std::nullopt;
    if (gone_) return Said{kRemoved, {QString::fromLatin1(kSitesFile)}};
    return Said{kMissing,
                {QString::number(missing()), QString::number(missing() + stored_),
                 QString::fromLatin1(kSitesFile)}};
}

}  // namespace m47::sites
