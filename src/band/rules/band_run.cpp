// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_run.h"

#include "commands.h"
#include "fault.h"

namespace m47::band {
namespace {

constexpr Bilingual kBegun{"a sweep of the band has not asked for a level yet",
                           "una scansione della banda non ha ancora chiesto un livello"};
constexpr Bilingual kSoFar{"a sweep of the band came to %1 levels, which were not saved",
                           "una scansione della banda è arrivata a %1 livelli, che non sono stati "
                           "salvati"};
constexpr Bilingual kDoing{"Sweeping the band", "Scansione della banda"};
constexpr Bilingual kDoingState{"Sweeping the band, LNB state %1 of %2",
                                "Scansione della banda, stato LNB %1 di %2"};

constexpr Bilingual kDone{"Swept: %1 levels, carriers found: %2. The meter is as it was.",
                          "Scansione finita: %1 livelli, portanti trovate: %2. Lo strumento è come "
                          "era."};
constexpr Bilingual kStopped{
    "Stopped at %1 levels, carriers found: %2. The meter is as it was.",
    "Fermata a %1 livelli, portanti trovate: %2. Lo strumento è come era."};
constexpr Bilingual kUnsure{
    "Swept: %1 levels, carriers found: %2. At %3 frequencies the meter gave no sure level.",
    "Scansione finita: %1 livelli, portanti trovate: %2. A %3 frequenze lo strumento non ha dato "
    "un "
    "livello sicuro."};
constexpr Bilingual kNotSetBack{
    "%1 levels, carriers found: %2. The meter did not tell or take how it was set before, so these "
    "were not set back: %3.",
    "%1 livelli, portanti trovate: %2. Lo strumento non ha detto o accettato com'era impostato "
    "prima, quindi non sono stati ripristinati: %3."};
constexpr Bilingual kLost{
    "The link to the meter was lost at %1 levels, which stay, carriers found: %2. Not set back: "
    "%3.",
    "Il collegamento con lo strumento si è perso a %1 livelli, che restano, portanti trovate: %2. "
    "Non ripristinati: %3."};
constexpr Bilingual kNoMeter{"Nothing was swept: no meter answers.",
                             "Nessuna scansione: nessuno strumento risponde."};

constexpr Bilingual kUnitChanged{
    "The unit was changed at the meter meanwhile: the levels of that pass are left out.",
    "Nel frattempo l'unità è stata cambiata sullo strumento: i livelli di quel passaggio sono "
    "esclusi."};
constexpr Bilingual kUnitEnded{
    "The unit was changed at the meter meanwhile: that pass ended there.",
    "Nel frattempo l'unità è stata cambiata sullo strumento: quel passaggio è finito lì."};

const Bilingual& words_of(const BandEnd& end) {
    if (end.lost) return end.levels == 0 && end.not_set_back.empty() ? kNoMeter : kLost;
    if (!end.not_set_back.empty()) return kNotSetBack;
    if (end.stopped || (end.unit_changed && !end.pass_left_out)) return kStopped;
    return end.without_level > 0 ? kUnsure : kDone;
}

}  // namespace

QString end_text(const BandEnd& end, std::size_t carriers, const Texts& texts) {
    const Bilingual& words = words_of(end);
    if (&words == &kNoMeter) return texts.pick(words);
    QStringList values{QString::number(end.levels), QString::number(carriers)};
    if (&words == &kUnsure) values += QString::number(end.without_level);
    if (&words == &kLost || &words == &kNotSetBack) values += names_in(end.not_set_back, texts);
    const QString said = Said{words, values}.in(texts);
    if (!end.unit_changed) return said;
    return said + u' ' + texts.pick(end.pass_left_out ? kUnitChanged : kUnitEnded);
}

void BandRun::note(const Sample& sample) {
    const bool measured = sample.level.measured();
    ++(measured ? end_.levels : end_.without_level);
    if (measured) ++pass_levels_;
    if (on_level) on_level(sample);
}

void BandRun::check_unit(link::Work& work) {
    const bool begun = pass_levels_ > 0 || levels_.strayed();
    if (begun && levels_.unit_changed()) {
        end_.unit_changed = true;
        if (!levels_.told_apart()) leave_out_pass(work);
    }
    pass_levels_ = 0;
}

void BandRun::leave_out_pass(link::Work& work) {
    end_.pass_left_out = true;
    end_.levels -= pass_levels_;
    work.at(kSoFar, {QString::number(end_.levels)});
    if (on_mixed) on_mixed();
}

/// Also where the run was told to stop.
void BandRun::finish(link::Work& work) {
    const link::InOrder in_order(link_);
    try {
        check_unit(work);
    } catch (const Interrupted&) {
        // Told once more: not even that.
    }
    end_.not_set_back = levels_.set_back();
}

void BandRun::sweep_one(std::size_t place, link::Work& work) {
    const BandPass& pass = passes_[place];
    levels_.prepare(pass.feed);
    if (levels_.lost()) return;
    if (on_pass) on_pass(pass, measurement::unit_of_index(link_.settings.unit()));
    Sweep sweep(levels_, pass.span);
    while (const std::optional<Sample> sample = sweep.step()) {
        note(*sample);
        work.at(kSoFar, {QString::number(end_.levels)});
        const int asked = end_.levels + end_.without_level;
        const int expected = sweep.plan().expected() - sweep.plan().asked();
        const int to_come = static_cast<int>(passes_.size() - place - 1) * sweep.plan().expected();
        if (!repeats()) work.reached(asked, asked + expected + to_come);
    }
    check_unit(work);
    if (!levels_.lost() && on_passed) on_passed();
}

void BandRun::sweep_all(link::Work& work) {
    do {
        for (std::size_t k = 0; k < passes_.size() && !levels_.lost(); ++k) {
            if (passes_.size() == 1)
                work.doing(kDoing);
            else
                work.doing(kDoingState, {QString::number(k + 1), QString::number(passes_.size())});
            sweep_one(k, work);
        }
    } while (repeats() && !levels_.lost());
}

BandEnd BandRun::run() {
    link::Work work(link_, kBegun);
    work.ends_with_window();
    end_ = BandEnd();
    pass_levels_ = 0;
    if (levels_.lost()) {
        // Tells that none is connected.
        link_.send(link::command::kMeasure);
        end_.lost = true;
        return end_;
    }
    try {
        sweep_all(work);
    } catch (const Interrupted&) {
        // What came so far stands.
        end_.stopped = true;
    } catch (...) {
        static_cast<void>(levels_.set_back());
        throw;
    }
    finish(work);
    end_.lost = levels_.lost();
    return end_;
}

}  // namespace m47::band
