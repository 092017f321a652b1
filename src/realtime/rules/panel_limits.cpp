// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel_limits.h"

#include "program_row.h"

namespace m47 {
namespace {

using R = ProgramRecord;

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

ReportLimits limits_of_record(const ProgramRow& program, const RealtimePanel& panel,
                              const Between& between) {
    const bool digital = program.digital().value_or(false);
    const auto limits = [&](bool enabled, QString R::*minimum, QString R::*maximum) {
        return between(enabled, program.text(minimum), program.text(maximum));
    };
    ReportLimits made;
    made.program = program.pg_num();
    made.frequency = program.text(&R::frequenza).trimmed();
    made.level =
        limits(digital ? panel.alarm_stated[0] : panel.alarm_statea[0], &R::lev_min, &R::lev_max);
    made.cn = limits(digital ? panel.alarm_stated[1] : panel.alarm_statea[1], &R::noise_min,
                     &R::noise_max);
    made.ber = limits(digital && panel.alarm_stated[2], &R::chber_min, &R::chber_max);
    made.mer = limits(digital && panel.alarm_stated[3], &R::mer_min, &R::mer_max);
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
    const Between between(empty);
    ReportLimits made;
    made.frequency = panel.fsat.trimmed();
    if (state.meas_mode == kDigitalMode) {
        made.level = between(panel.alarm_stated[0], panel.lev_mind, panel.lev_maxd);
        made.cn = between(panel.alarm_stated[1], panel.cn_mind, panel.cn_maxd);
        made.ber = between(panel.alarm_stated[2], panel.chber_mind, panel.chber_maxd);
        made.mer = between(panel.alarm_stated[3], panel.mer_mind, panel.mer_maxd);
    } else {
        made.level = between(panel.alarm_statea[0], panel.lev_mina, panel.lev_maxa);
        made.cn = between(panel.alarm_statea[1], panel.cn_mina, panel.cn_maxa);
    }
    return made;
}

QList<ReportLimits> limits_of_plan(Recordset& programs, const RealtimePanel& panel,
                                   EmptyLimits empty) {
    QList<ReportLimits> all;
    const ProgramRow program(programs);
    for (programs.move_first(); !programs.end_of_set(); programs.move_next())
        if (program.monitored()) all.append(limits_of_record(program, panel, Between(empty)));
    return all;
}

}  // namespace m47
