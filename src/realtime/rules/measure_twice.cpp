// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <exception>
#include <optional>

#include "fault.h"
#include "measure_replies.h"
#include "measure_steps.h"

namespace m47::realtime {
namespace {

/// So often a question is put before its value is given up.
constexpr int kMostAsked = 4;

/// The alarm that a reading can raise in the presentation in force.
std::optional<AlarmRow> row_of(measurement::AskedFor asked, bool digital) {
    const measurement::MeasureMode mode =
        digital ? measurement::MeasureMode::digital : measurement::MeasureMode::analog;
    for (const Measure& measure : measures())
        if (measure.asked == asked && measure.alarm && measure.mode == mode)
            return measure.alarm->row;
    return std::nullopt;
}

}  // namespace

QString MeasureSteps::ask(const QString& question, const ValuesIn& values_in) {
    question_ = question;
    if (program_.corrected.ask_twice)
        confirm(values_in);
    else
        link_.send(question);
    return link_.last_answer();
}

QString MeasureSteps::ask_one(const QString& question, measurement::AskedFor asked,
                              const std::function<QString(const QString& reply)>& text_in) {
    return ask(question, [&](const QString& reply) {
        return measurement::AskedValues{value_in(asked, text_in(reply))};
    });
}

void MeasureSteps::confirm(const ValuesIn& values_in) {
    std::vector<measurement::AskedValues> seen;
    std::exception_ptr fault;
    for (int times = 0; times < kMostAsked; ++times) {
        try {
            const std::optional<QString> answer = link_.ask(question_);
            if (!answer) return;
            const measurement::AskedValues readings = values_in(*answer);
            const bool agreed =
                std::ranges::any_of(seen, [&](const measurement::AskedValues& before) {
                    return measurement::agree(before, readings);
                });
            if (agreed || (times == 0 && !surprising(readings))) return remember(readings);
            seen.push_back(readings);
        } catch (const Fault&) {
            // Spoilt on its way, or a label is missing in it: the next may be whole.
            fault = std::current_exception();
        }
    }
    if (seen.empty() && fault) std::rethrow_exception(fault);
    throw DoubtfulAnswer(question_.toStdString());
}

bool MeasureSteps::surprising(const measurement::AskedValues& readings) const {
    return std::ranges::any_of(readings, [this](const measurement::AskedValue& reading) {
        const std::optional<AlarmRow> row = row_of(reading.asked, panel_.satdigmea_visible);
        const auto limits = row ? limits_in_force(*row, panel_, empty_limits()) : std::nullopt;
        return scatter_.surprises(program_key(), reading) ||
               (limits && !limits->hold(reading.value));
    });
}

void MeasureSteps::remember(const measurement::AskedValues& readings) {
    for (const measurement::AskedValue& reading : readings) scatter_.add(program_key(), reading);
}

QString MeasureSteps::program_key() const {
    const QString program =
        panel_.plan_controls_visible ? panel_.grp_name + u'\t' + panel_.prog_num : QString();
    const QString unit = QString::number(program_.unit_index);
    return QStringList{program, panel_.fsat, panel_.ol_freq, panel_.chbws, unit}.join(u'\t');
}

measurement::AskedValue MeasureSteps::value_in(measurement::AskedFor asked,
                                               const QString& text) const {
    expect(asked, text);
    const QString value = text.trimmed();
    const bool marked = value.startsWith(u'<') || value.startsWith(u'>');
    return {asked, link::delete_segno(value), marked ? value[0] : QChar()};
}

measurement::AskedValues MeasureSteps::quality_in(const QString& reply) const {
    measurement::AskedValues readings;
    for (const Measure& measure : measures())
        if (measure.label && is_ticked(measure, panel_))
            readings.push_back(value_in(
                *measure.asked, link::delete_cr(QString::fromLatin1(measure.label), reply)));
    return readings;
}

}  // namespace m47::realtime
