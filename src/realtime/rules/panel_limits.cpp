// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel_limits.h"

#include <functional>

#include "program_row.h"

namespace m47 {
namespace {

/// What stands between a minimum and a maximum, as the user has set them.
class Between {
  public:
    explicit Between(EmptyLimits empty) : empty_(empty) {}

    QString operator()(bool enabled, const QString& minimum, const QString& maximum) const {
        const bool none = minimum.trimmed().isEmpty() && maximum.trimmed().isEmpty();
        if (!enabled || (none && empty_ == EmptyLimits::none)) return {};
        return limit_text(minimum) + QStringLiteral(" … ") + limit_text(maximum);
    }

  private:
    QString limit_text(const QString& limit) const {
        if (!limit.trimmed().isEmpty()) return limit.trimmed();
        return empty_ == EmptyLimits::none ? QStringLiteral("–") : QStringLiteral("0");
    }

    EmptyLimits empty_;
};

QString ReportLimits::*place_of(Quantity quantity) {
    switch (quantity) {
        case Quantity::cn:
            return &ReportLimits::cn;
        case Quantity::ber:
            return &ReportLimits::ber;
        case Quantity::mer:
            return &ReportLimits::mer;
        default:
            return &ReportLimits::level;
    }
}

/// The limits of the measures of `mode`, as `text_of` says what stands in each box.
ReportLimits limits_by(MeasureMode mode, const RealtimePanel& panel, EmptyLimits empty,
                       const std::function<QString(const LimitBox&)>& text_of) {
    const Between between(empty);
    ReportLimits made;
    for (const Measure& measure : measures())
        if (measure.alarm && measure.mode == mode)
            made.*place_of(*measure.quantity) =
                between(is_alarm_ticked(measure, panel), text_of(measure.alarm->minimum),
                        text_of(measure.alarm->maximum));
    return made;
}

ReportLimits limits_of_record(const ProgramRow& program, const RealtimePanel& panel,
                              EmptyLimits empty) {
    const bool digital = program.digital().value_or(false);
    ReportLimits made =
        limits_by(digital ? MeasureMode::digital : MeasureMode::analog, panel, empty,
                  [&](const LimitBox& limit) { return program.text(limit.stored); });
    made.program = program.pg_num();
    made.frequency = program.text(&ProgramRecord::frequenza).trimmed();
    return made;
}

}  // namespace

std::optional<TrendRange> trend_limits(Quantity quantity, const RealtimePanel& panel,
                                       const RealtimeState& state, EmptyLimits empty) {
    const bool digital = state.meas_mode == kDigitalMode;
    AlarmRow row = digital ? AlarmRow::dcp_level : AlarmRow::level_analog;
    if (quantity == Quantity::ber) row = AlarmRow::chber;
    if (quantity == Quantity::mer) row = AlarmRow::mer;
    const std::optional<Limits> limits = limits_in_force(row, panel, empty);
    if (!limits || !limits->minimum || !limits->maximum) return {};
    return TrendRange{*limits->minimum, *limits->maximum};
}

ReportLimits limits_of_panel(const RealtimePanel& panel, const RealtimeState& state,
                             EmptyLimits empty) {
    const bool digital = state.meas_mode == kDigitalMode;
    ReportLimits made = limits_by(digital ? MeasureMode::digital : MeasureMode::analog, panel,
                                  empty, [&](const LimitBox& limit) { return panel.*limit.text; });
    made.frequency = panel.fsat.trimmed();
    return made;
}

QList<ReportLimits> limits_of_plan(Recordset& programs, const RealtimePanel& panel,
                                   EmptyLimits empty) {
    QList<ReportLimits> all;
    const ProgramRow program(programs);
    for (programs.move_first(); !programs.end_of_set(); programs.move_next())
        if (program.monitored()) all.append(limits_of_record(program, panel, empty));
    return all;
}

}  // namespace m47
