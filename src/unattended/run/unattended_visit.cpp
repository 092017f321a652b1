// SPDX-License-Identifier: GPL-3.0-or-later
#include "unattended_visit.h"

#include <QFileInfo>
#include <algorithm>

#include "row_time.h"
#include "visit_comparison.h"

namespace m47::unattended {
namespace {

QString time_of(const sites::Visit& visit) {
    return QString::fromStdString(measurement::time_text(visit.begun.wall()));
}

QDate day_of(const sites::Visit& visit) {
    constexpr int kSecond = 1000;  // ms
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(visit.begun.wall() * kSecond),
                                          Qt::UTC)
        .date();
}

bool has_program_of(const std::vector<sites::VisitMeasurement>& one,
                    const std::vector<sites::VisitMeasurement>& other) {
    return std::ranges::any_of(
        sites::compare_visits(one, other),
        [](const sites::ProgramComparison& program) { return program.earlier && program.later; });
}

}  // namespace

/// False where the file fails, which is told.
bool UnattendedVisit::told(const std::function<void()>& work) const {
    try {
        work();
        return true;
    } catch (const Fault& fault) {
        on_remark(fault.text(texts_));
        return false;
    }
}

bool UnattendedVisit::look_at(const QString& path) {
    path_ = path;
    const QFileInfo about(path);
    return !wanted() || !(about.exists() || about.isSymLink()) || open();
}

bool UnattendedVisit::open() {
    if (store_) return true;
    sites::StoreError error;
    store_ = sites::SiteStore::open(path_, error);
    if (!store_) on_remark(sites::store_error_text(error, texts_));
    return store_ != nullptr;
}

bool UnattendedVisit::begin(const sites::VisitFacts& facts, const QDateTime& now) {
    if (!wanted() || (recorder_ && recorder_->running())) return true;
    const bool begun = open() && store_visit(facts, now);
    lost_ = lost_ || !begun;
    return begun;
}

bool UnattendedVisit::store_visit(const sites::VisitFacts& facts, const QDateTime& now) {
    recorder_ = std::make_unique<sites::VisitRecorder>(*store_);
    recorder_->on_fault = [this](const sites::StoreError& error) {
        on_remark(sites::store_error_text(error, texts_));
    };
    recorder_->on_gone = [this] { on_remark(recorder_->missing_text()->in(texts_)); };
    return told([&] {
        const std::optional<sites::Visit> before =
            options_.resumed ? cut_off() : std::optional<sites::Visit>();
        resumed_ = before.has_value();
        if (before)
            recorder_->resume(before->id);
        else
            recorder_->begin(options_.site, facts, now);
    });
}

/// The latest visit at the site, where it was not ended.
std::optional<sites::Visit> UnattendedVisit::cut_off() const {
    const std::optional<sites::Site> site = sites::site_named(*store_, options_.site);
    if (!site) return {};
    const std::vector<sites::Visit> visits = store_->visits(site->id);
    if (visits.empty() || visits.front().ended) return {};
    return visits.front();
}

void UnattendedVisit::take(const measurement::Measurement& measured, int offset) {
    if (recorder_ && recorder_->running())
        recorder_->take(measured, offset);
    else if (wanted())
        ++without_visit_;
}

void UnattendedVisit::end(const QDateTime& now) {
    if (without_visit_ > 0)
        on_remark(QStringLiteral("rows that are in no visit, as none could be begun: %1")
                      .arg(without_visit_));
    if (!recorder_ || !recorder_->running()) return;
    recorder_->end(now);
    if (const std::optional<Said> missing = recorder_->missing_text()) {
        lost_ = true;
        if (!recorder_->gone()) on_remark(missing->in(texts_));
    }
    const bool empty = recorder_->stored() == 0 && recorder_->missing() == 0;
    if (empty && !resumed_)
        told([this] { store_->remove_visit(recorder_->visit()->id); });
    else if (options_.compared != VisitOptions::Compared::none)
        unreadable_ = !told([this] { compare(); });
}

bool UnattendedVisit::is_meant(const sites::Visit& visit) const {
    const sites::Visit& ours = *recorder_->visit();
    if (visit.id == ours.id || visit.begun.utc > ours.begun.utc) return false;
    return options_.compared != VisitOptions::Compared::of_date || day_of(visit) == options_.date;
}

/// The one that is asked for, of those in which a program of ours was measured: at a site where
/// plans are measured in turn the others say nothing.
std::optional<sites::Visit> UnattendedVisit::other_visit() const {
    std::vector<sites::Visit> visits = store_->visits(recorder_->visit()->site);
    if (options_.compared == VisitOptions::Compared::first) std::ranges::reverse(visits);
    const std::vector<sites::VisitMeasurement> ours = store_->measurements(recorder_->visit()->id);
    const auto found = std::ranges::find_if(visits, [&](const sites::Visit& visit) {
        return is_meant(visit) && has_program_of(store_->measurements(visit.id), ours);
    });
    return found == visits.end() ? std::nullopt : std::optional(*found);
}

void UnattendedVisit::compare() {
    if (const std::optional<sites::Visit> other = other_visit()) {
        compare(*other);
        return;
    }
    not_compared_ = true;
    const std::vector<sites::Visit> visits = store_->visits(recorder_->visit()->site);
    const bool is_any =
        std::ranges::any_of(visits, [this](const sites::Visit& visit) { return is_meant(visit); });
    on_remark(
        (is_any ? QStringLiteral("no earlier visit at %1 has a program of this one to compare with")
                : QStringLiteral("there is no earlier visit at %1 to compare with"))
            .arg(options_.site));
}

void UnattendedVisit::compare(const sites::Visit& other) {
    const sites::Visit& ours = *recorder_->visit();
    const std::vector<sites::ProgramComparison> all =
        sites::compare_visits(store_->measurements(other.id), store_->measurements(ours.id));
    const auto elsewhere =
        std::ranges::count(all, sites::Meaning::elsewhere, &sites::ProgramComparison::meaning);
    const auto both = std::ranges::count_if(all, [](const sites::ProgramComparison& program) {
        return program.earlier && program.later;
    });
    const sites::SiteHistory history{
        .site = {}, .visits = {ours, other}, .measurements = [this](const sites::Visit& visit) {
            return store_->measurements(visit.id);
        }};
    const auto worse = sites::worse_since_first(history, options_.worse_than);
    on_remark(QStringLiteral("compared with the visit of %1: %2 of %3 programs got worse")
                  .arg(time_of(other))
                  .arg(worse.size())
                  .arg(both - elsewhere));
    if (elsewhere > 0)
        on_remark(
            QStringLiteral("programs that are on another transponder now, and not compared: %1")
                .arg(elsewhere));
    for (const sites::ProgramComparison& program : worse) tell_worse(program);
    worse_ = !worse.empty();
}

void UnattendedVisit::tell_worse(const sites::ProgramComparison& program) const {
    const QString name = program.key.name();
    if (program.meaning == sites::Meaning::lost) {
        on_remark(QStringLiteral("lost: %1").arg(name));
        return;
    }
    static constexpr Bilingual kNames[] = {{"level", "livello"}, {"C/N", "C/N"}, {"MER", "MER"}};
    QStringList words;
    for (std::size_t k = 0; k < std::size(kNames); ++k) {
        const measurement::Quantity quantity = sites::kComparedQuantities[k];
        const QString said = sites::change_words(quantity, program.changes[k], texts_);
        if (!said.isEmpty()) words += texts_.pick(kNames[k]) + u' ' + said;
    }
    on_remark(QStringLiteral("worse: %1: %2").arg(name, words.join(QStringLiteral(", "))));
}

}  // namespace m47::unattended
