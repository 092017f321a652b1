// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "measurement.h"
#include "options.h"
#include "visit_recorder.h"
#include "what_got_worse.h"

namespace m47::unattended {

/// A run with nobody at the screen that is kept as a visit, and what comes of comparing it with
/// another one. Without a site it does nothing.
class UnattendedVisit {
  public:
    UnattendedVisit(const VisitOptions& options, const Texts& texts)
        : options_(options), texts_(texts) {}

    /// Told a text of one line: what fails, what is missing, which programs got worse.
    std::function<void(const QString& text)> on_remark;

    bool wanted() const { return !options_.site.isEmpty(); }

    /// Looks at the file of sites at `path`, where there is one, before the meter is asked. False,
    /// told, where it cannot be used.
    bool look_at(const QString& path);

    /// Begins the visit, or goes on with one that was cut off; nothing where it runs already.
    /// False, told, where it cannot be stored.
    bool begin(const sites::VisitFacts& facts, const QDateTime& now);

    /// Keeps a row whose instant is that of a clock `offset` seconds ahead of UTC.
    void take(const measurement::Measurement& measured, int offset);

    /// Ends the visit, tells what is missing of it and compares it. A visit without rows is none.
    void end(const QDateTime& now);

    /// Rows are missing in the file.
    bool lost() const { return lost_; }
    /// There was nothing to compare with.
    bool not_compared() const { return not_compared_; }
    /// What is to be compared could not be read.
    bool unreadable() const { return unreadable_; }
    /// A program got worse.
    bool worse() const { return worse_; }

  private:
    using Rows = std::vector<sites::VisitMeasurement>;

    bool open();
    bool store_visit(const sites::VisitFacts& facts, const QDateTime& now);
    std::optional<sites::Visit> cut_off() const;
    std::optional<sites::Visit> other_visit() const;
    bool is_meant(const sites::Visit& visit) const;
    void compare();
    void compare(const sites::Visit& other);
    void tell_worse(const sites::ProgramComparison& program) const;
    bool told(const std::function<void()>& work) const;

    const VisitOptions& options_;
    const Texts& texts_;
    QString path_;
    std::unique_ptr<sites::SiteStore> store_;
    std::unique_ptr<sites::VisitRecorder> recorder_;
    int without_visit_ = 0;  ///< rows
    bool resumed_ = false;
    bool lost_ = false;
    bool not_compared_ = false;
    bool unreadable_ = false;
    bool worse_ = false;
};

}  // namespace m47::unattended
