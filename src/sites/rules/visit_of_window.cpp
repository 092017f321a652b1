// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_of_window.h"

#include <algorithm>
#include <utility>

namespace m47::sites {
namespace {

constexpr Bilingual kNotEnded{
    "The visit could not be ended in the file of sites: it is offered again at the next start.",
    "La visita non ha potuto essere terminata nel file dei siti: sarà riproposta al prossimo "
    "avvio."};

/// The latest of the visits `left` that were not ended; the others are forgotten.
std::optional<Visit> latest_of(const std::vector<QUuid>& left, const SiteStore& store,
                               const QString& path) {
    std::optional<Visit> latest;
    for (const QUuid& id : left) {
        const std::optional<Visit> visit = store.visit(id);
        if (!visit || visit->ended)
            VisitClaim::forget(path, id);
        else if (!latest || visit->begun.utc > latest->begun.utc)
            latest = visit;
    }
    return latest;
}

bool is_none(int rows, const VisitFacts& facts) {
    return rows == 0 && facts.remarks.trimmed().isEmpty();
}

}  // namespace

VisitOfWindow::~VisitOfWindow() = default;

int VisitOfWindow::rows() const {
    if (!recorder_) return before_;
    return recorder_->gone() ? 0 : before_ + recorder_->stored();
}

std::optional<Said> VisitOfWindow::missing_text() const {
    return recorder_ ? recorder_->missing_text() : std::nullopt;
}

void VisitOfWindow::listen() {
    recorder_->on_fault = on_fault;
    recorder_->on_gone = [this] {
        if (on_gone) on_gone();
    };
}

/// One that somebody has removed meanwhile is not offered again.
void VisitOfWindow::resume_with(VisitRecorder& recorder) {
    try {
        recorder.resume(visit_.id);
    } catch (const StoreFault&) {
        throw;
    } catch (const Fault&) {
        if (store_->visit(visit_.id)) throw;
        forget();
        changed();
        throw;
    }
}

void VisitOfWindow::changed() const {
    if (on_change) on_change();
}

void VisitOfWindow::forget() {
    state_ = State::none;
    recorder_.reset();
    store_.reset();
    site_ = {};
    visit_ = {};
    before_ = shown_ = 0;
    sites_.running = {};
}

void VisitOfWindow::look_for_cut_off() {
    if (state_ != State::none) return;
    const std::vector<QUuid> left = VisitClaim::left(sites_.path());
    if (left.empty()) return;
    const std::shared_ptr<SiteStore> store = sites_.look();
    if (!store) {
        for (const QUuid& id : left) VisitClaim::forget(sites_.path(), id);
        return;
    }
    const std::optional<Visit> latest = latest_of(left, *store, sites_.path());
    if (!latest) return;
    store_ = store;
    show(*latest);
    state_ = State::cut_off;
    changed();
}

/// Takes over what stands in the file of `visit`.
void VisitOfWindow::show(const Visit& visit) {
    visit_ = visit;
    sites_.running = visit.id;
    const std::vector<Site> sites = store_->sites();
    const auto found = std::ranges::find(sites, visit.site, &Site::id);
    if (found != sites.end()) site_ = *found;
    before_ = static_cast<int>(store_->measurements(visit.id).size());
}

void VisitOfWindow::begin(const Site& site, const VisitFacts& facts, const QDateTime& now) {
    if (state_ == State::running) return;
    const std::shared_ptr<SiteStore> store = sites_.open();
    auto recorder = std::make_unique<VisitRecorder>(*store);
    recorder->begin(site, facts, now);
    store_ = store;
    recorder_ = std::move(recorder);
    listen();
    site_ = site;
    visit_ = *recorder_->visit();
    sites_.running = visit_.id;
    before_ = shown_ = 0;
    state_ = State::running;
    sites_.changed();
    changed();
}

void VisitOfWindow::go_on() {
    if (state_ != State::cut_off) return;
    auto recorder = std::make_unique<VisitRecorder>(*store_);
    resume_with(*recorder);
    recorder_ = std::move(recorder);
    listen();
    // Others may have worked on it meanwhile.
    show(*recorder_->visit());
    state_ = State::running;
    sites_.changed();
    changed();
}

void VisitOfWindow::take(const measurement::Measurement& measured, int offset) {
    if (state_ != State::running) return;
    recorder_->take(measured, offset);
    if (std::exchange(shown_, recorder_->missing()) != recorder_->missing()) changed();
}

VisitFacts VisitOfWindow::facts() const {
    return {visit_.technician, visit_.instrument, visit_.logo, visit_.plan, visit_.remarks};
}

std::optional<Said> VisitOfWindow::end(const VisitFacts& facts, const QDateTime& now) {
    std::optional<Said> missing;
    if (state_ == State::cut_off)
        end_cut_off(facts);
    else if (state_ == State::running)
        missing = end_running(facts, now);
    forget();
    sites_.changed();
    changed();
    return missing;
}

void VisitOfWindow::end_cut_off(const VisitFacts& facts) {
    VisitRecorder recorder(*store_);
    std::optional<StoreError> error;
    recorder.on_fault = [&error](const StoreError& fault) { error = fault; };
    resume_with(recorder);
    recorder.tell(facts);
    const std::vector<VisitMeasurement> rows = store_->measurements(visit_.id);
    recorder.end(rows.empty() ? visit_.begun : rows.back().instant);
    if (error) throw StoreFault(*error);
    if (is_none(static_cast<int>(rows.size()), facts)) store_->remove_visit(visit_.id);
}

std::optional<Said> VisitOfWindow::end_running(const VisitFacts& facts, const QDateTime& now) {
    recorder_->tell(facts);
    recorder_->end(now);
    if (const std::optional<Said> missing = recorder_->missing_text()) return missing;
    if (!recorder_->visit()->ended) return Said{kNotEnded, {}};
    try {
        if (is_none(rows(), facts)) store_->remove_visit(visit_.id);
    } catch (const StoreFault&) {
        // One without rows stays then.
    }
    return std::nullopt;
}

std::optional<Said> VisitOfWindow::leave() {
    if (state_ != State::running) return std::nullopt;
    recorder_->leave();
    const std::optional<Said> missing = recorder_->missing_text();
    forget();
    return missing;
}

}  // namespace m47::sites
