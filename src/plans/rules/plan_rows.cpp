// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_rows.h"

#include <algorithm>
#include <array>
#include <utility>

#include "box_numbers.h"
#include "numbers.h"
#include "plan_clashes.h"
#include "program_checks.h"
#include "program_limits.h"

namespace m47::plans {
namespace {

using Record = programme::ProgramRecord;
using Limit = QString Record::*;

/// The two limits of a measure, and how a store corrects them.
struct LimitPair {
    Limit minimum;
    Limit maximum;
    void (*correct)(QString& minimum, QString& maximum, double unit_offset);
};

void correct_ratio(QString& minimum, QString& maximum, double) {
    correct_ratio_limits(minimum, maximum);
}

void correct_chber(QString& minimum, QString& maximum, double) {
    correct_chber_limits(minimum, maximum);
}

constexpr std::array kPairs{LimitPair{&Record::lev_min, &Record::lev_max, correct_level_limits},
                            LimitPair{&Record::noise_min, &Record::noise_max, correct_ratio},
                            LimitPair{&Record::chber_min, &Record::chber_max, correct_chber},
                            LimitPair{&Record::mer_min, &Record::mer_max, correct_ratio}};

const LimitPair* pair_of(const programme::ProgramField::Member& member) {
    const auto* limit = std::get_if<Limit>(&member);
    if (!limit) return nullptr;
    const auto* pair = std::ranges::find_if(kPairs, [&](const LimitPair& one) {
        return one.minimum == *limit || one.maximum == *limit;
    });
    return pair == kPairs.end() ? nullptr : pair;
}

const programme::ProgramField& field_of(const programme::ProgramField::Member& member) {
    return *std::ranges::find(programme::program_fields(), member,
                              &programme::ProgramField::member);
}

QVariant value_of(const Record& record, const programme::ProgramField& field) {
    const QString text = programme::field_text(record, field);
    if (std::holds_alternative<QString Record::*>(field.member)) return text;
    return text.toInt();
}

}  // namespace

programme::ProgramRecord with_entry(programme::ProgramRecord program,
                                    const programme::ProgramField::Member& member,
                                    const QString& text, double unit_offset) {
    programme::set_field(program, field_of(member), text);
    if (const LimitPair* pair = pair_of(member)) {
        for (const Limit limit : {pair->minimum, pair->maximum})
            program.*limit = programme::number_text(program.*limit);
        pair->correct(program.*pair->minimum, program.*pair->maximum, unit_offset);
    }
    return program;
}

QString free_logger_position(const std::vector<programme::ProgramRecord>& programs) {
    const QString next = next_logger_position(programs);
    if (!next.isEmpty()) return next;
    for (int line = 0; line <= programme::kLastLoggerLine; ++line) {
        Record probe;
        probe.logger_pos = link::format_number(line, "00");
        if (find_clash(programs, probe) == Clash::none) return probe.logger_pos;
    }
    return {};
}

std::vector<db::Bookmark> moved_rows(std::vector<db::Bookmark> order,
                                     const std::vector<PlanRow>& rows, bool up) {
    const auto moves = [&](db::Bookmark row) {
        return std::ranges::find(rows, row, &PlanRow::row) != rows.end();
    };
    if (!up) std::ranges::reverse(order);
    for (std::size_t place = 1; place < order.size(); ++place)
        if (moves(order[place]) && !moves(order[place - 1]))
            std::swap(order[place], order[place - 1]);
    if (!up) std::ranges::reverse(order);
    return order;
}

void write_differences(db::Recordset& set, const programme::ProgramRecord& before,
                       const programme::ProgramRecord& after) {
    for (const programme::ProgramField& field : programme::program_fields())
        if (programme::field_text(before, field) != programme::field_text(after, field))
            set.set(QString::fromLatin1(field.name), value_of(after, field));
}

}  // namespace m47::plans
