// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel_limits.h"

#include <functional>

#include "program_row.h"

namespace m47::realtime {
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

QString report::ReportLimits::*place_of(measurement::Quantity quantity) {
    switch (quantity) {
        case measurement::Quantity::cn:
            return &report::ReportLimits::cn;
        case measurement::Quantity::ber:
            return &report::ReportLimits::ber;
        case measurement::Quantity::mer:
            return &report::ReportLimits::mer;
        default:
            return &report::ReportLimits::level;
    }
}

/// The limits of the measures of `mode`, as `text_of` says what stands in each box.
report::ReportLimits limits_by(measurement::MeasureMode mode, const RealtimePanel& panel,
                               EmptyLimits empty,
                               const std::function<QString(const LimitBox&)>& text_of) {
    const Between between(empty);
    report::ReportLimits made;
    for (const Measure& measure : measures())
        if (measure.alarm && measure.mode == mode)
            made.*place_of(*measure.quantity) =
                between(is_alarm_ticked(measure, panel), text_of(measure.alarm->minimum),
                        text_of(measure.alarm->maximum));
    return made;
}

report::ReportLimits limits_of_record(const programme::ProgramRow& program,
                                      const RealtimePanel& panel, EmptyLimits empty) {
    const bool digital = program.digital().value_or(false);
    report::ReportLimits made =
        limits_by(digital ? measurement::MeasureMode::digital : measurement::MeasureMode::analog,
                  panel, empty, [&](const LimitBox& limit) { return program.text(limit.stored); });
    made.program = program.pg_num();
    made.frequency = program.text(&programme::ProgramRecord::frequenza).trimmed();
    return made;
}

}  // namespace

std::optional<trend::TrendRange> trend_limits(measurement::Quantity quantity,
                                              const RealtimePanel& panel,
                                              const RealtimeState& state, EmptyLimits empty) {
    const bool digital = state.meas_mode == kDigitalMode;
    AlarmRow row = digital ? AlarmRow::dcp_level : AlarmRow::level_analog;
    if (quantity == measurement::Quantity::ber) row = AlarmRow::chber;
    if (quantity == measurement::Quantity::mer) row = AlarmRow::mer;
    const std::optional<measurement::Limits> limits = limits_in_force(row, panel, empty);
    if (!limits || !limits->minimum || !limits->maximum) return {};
    return trend::TrendRange{*limits->minimum, *limits->maximum};
}

report::ReportLimits limits_of_panel(const RealtimePanel& panel, const RealtimeState& state,
                                     EmptyLimits empty) {
    const bool digital = state.meas_mode == kDigitalMode;
    report::ReportLimits made =
        limits_by(digital ? measurement::MeasureMode::digital : measurement::MeasureMode::analog,
                  panel, empty, [&](const LimitBox& limit) { return panel.*limit.text; });
    made.frequency = panel.fsat.trimmed();
    return made;
}

QList<report::ReportLimits> limits_of_plan(db::Recordset& programs, const RealtimePanel& panel,
                                           EmptyLimits empty) {
    QList<report::ReportLimits> all;
    const programme::ProgramRow program(programs);
    for (programs.move_first(); !programs.end_of_set(); programs.move_next())
        if (program.monitored()) all.append(limits_of_record(program, panel, empty));
    return all;
}

}  // namespace m47::realtime
