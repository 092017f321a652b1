// SPDX-License-Identifier: GPL-3.0-or-later
// The raw answer to a command: what is cut out of it, when it is taken as complete, and the
// firmware version and other numbers in it. The input's first byte chooses the command.
#include <array>
#include <cmath>

#include "fuzzing.h"
#include "identification.h"
#include "numbers.h"
#include "reply.h"

namespace {

using Verdict = m47::link::ReplyWatch::Verdict;

const std::array<QString, 8> kCommands{QStringLiteral("ATTEN?"),        QStringLiteral("LEVANL?"),
                                       QStringLiteral("BERQPSK?"),      QStringLiteral("VER?"),
                                       QStringLiteral("FREQ 1000"),     QStringLiteral("DATAOUT"),
                                       QStringLiteral("MASTERCOPY 6?"), QString()};

void check_reduction(const QString& command, const QString& raw) {
    const QString answer = m47::link::reduce_answer(command, raw);
    HOLDS(answer == u"0" || raw.contains(answer));
    HOLDS(answer.size() <= std::max<qsizetype>(raw.size(), 1));
}

/// A whole answer around `payload` gives `payload` back.
void check_inverse(const QString& command, const QString& payload) {
    if (!command.endsWith(u'?') || payload.contains(QLatin1String("Invalid Parameter(s)"))) return;
    const QString whole = command + u'\r' + payload + QStringLiteral("\rOK\r");
    QString expected = payload;
    // What a line adds to its end is not told from a payload's own.
    if (command != u"BERQPSK?" && payload.endsWith(u'\r')) expected.chop(1);
    HOLDS(m47::link::reduce_answer(command, whole) == expected);
}

/// However an answer is cut in pieces, it is judged as when it comes whole.
void check_watch(const QString& raw, qsizetype piece) {
    const Verdict whole = m47::link::ReplyWatch().look_at(raw);
    m47::link::ReplyWatch watch;
    Verdict first = Verdict::open;
    for (qsizetype end = piece; first == Verdict::open; end += piece) {
        first = watch.look_at(raw.left(end));
        if (end >= raw.size()) break;
    }
    HOLDS((first == Verdict::open) == (whole == Verdict::open));
    if (whole == Verdict::complete) HOLDS(first == Verdict::complete);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const QString& command = kCommands[input.byte() % kCommands.size()];
    const qsizetype piece = 1 + input.byte() % 16;
    const QString raw = input.text();
    check_reduction(command, raw);
    check_inverse(command, raw);
    check_watch(raw, piece);
    HOLDS(std::isfinite(m47::link::version_number(raw)));
    HOLDS(std::isfinite(m47::link::meter_value(raw)));
    return 0;
}
