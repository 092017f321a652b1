// SPDX-License-Identifier: GPL-3.0-or-later
// The answer with the digital quality figures: each behind its label, up to the end of its line.
#include <array>
#include <cmath>

#include "fault.h"
#include "fuzzing.h"
#include "measure_replies.h"

namespace {

const std::array<QString, 4> kLabels{QStringLiteral("CHBER :"), QStringLiteral("PvBER :"),
                                     QStringLiteral("CFO   :"), QStringLiteral("MER   :")};

void check_label(const QString& label, const QString& answer) {
    QString value;
    try {
        value = m47::link::delete_cr(label, answer);
    } catch (const m47::Fault&) {
        HOLDS(!answer.contains(label));
        return;
    }
    HOLDS(!value.contains(u'\r'));
    const qsizetype end = answer.indexOf(label) + label.size() + value.size();
    HOLDS(answer.left(end).endsWith(label + value));
    HOLDS(end == answer.size() || answer[end] == u'\r');
    HOLDS(std::isfinite(m47::link::delete_segno(value.trimmed())));
}

/// Four values in their lines come back as they are.
void check_inverse(const QString& text) {
    QString value = text;
    value.remove(u'\r');
    for (const QString& label : kLabels)
        if (value.contains(label)) return;
    QString answer;
    for (const QString& label : kLabels) answer += label + value + u'\r';
    for (const QString& label : kLabels) HOLDS(m47::link::delete_cr(label, answer) == value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString answer = fuzzing::Input(data, size).text();
    for (const QString& label : kLabels) check_label(label, answer);
    check_inverse(answer);
    return 0;
}
