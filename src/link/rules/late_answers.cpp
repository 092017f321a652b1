// SPDX-License-Identifier: GPL-3.0-or-later
#include "late_answers.h"

#include <algorithm>

namespace m47::link {
namespace {

/// More commands than the answers lag behind even where each was asked three times.
constexpr qsizetype kRemembered = 16;

QString echo_of(const QString& answer) {
    return answer.left(std::max<qsizetype>(0, answer.indexOf(u'\r')));
}

}  // namespace

void LateAnswers::asked(const QString& command) {
    asked_.removeOne(command);
    asked_.append(command);
    if (asked_.size() > kRemembered) asked_.removeFirst();
}

void LateAnswers::expect(const QString& command, int count, double now, double until) {
    std::erase_if(late_, [now](const Late& late) { return late.count <= 0 || late.until < now; });
    if (count > 0) late_.push_back({command, count, until});
}

void LateAnswers::came(const QString& answer) {
    const QString echo = echo_of(answer);
    const auto late = std::ranges::find_if(
        late_, [&](const Late& entry) { return entry.count > 0 && entry.command == echo; });
    if (late != late_.end()) --late->count;
}

bool LateAnswers::may_come(double now) const {
    return std::ranges::any_of(
        late_, [now](const Late& late) { return late.count > 0 && now <= late.until; });
}

bool LateAnswers::may_come(const QString& command, double now) const {
    return std::ranges::any_of(late_, [&](const Late& late) {
        return late.command == command && late.count > 0 && now <= late.until;
    });
}

bool LateAnswers::is_to_another(const QString& answer, const QString& command) const {
    const QString echo = echo_of(answer);
    return echo != command && asked_.contains(echo);
}

}  // namespace m47::link
