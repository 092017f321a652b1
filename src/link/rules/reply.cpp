// SPDX-License-Identifier: GPL-3.0-or-later
#include "reply.h"

#include <QStringView>
#include <algorithm>

namespace m47::link {
namespace {

constexpr double kUsualLimit = 15;
constexpr QLatin1String kError("ERROR");
constexpr QLatin1String kAccepted("OK\r");
constexpr QLatin1String kRefused("ERROR\r");
/// Its last line may end in "OK" without an end of its own.
constexpr QLatin1String kErrorRates("BERQPSK?");

struct SlowCommand {
    QLatin1String word;
    double limit;
};

// A later word overrides an earlier one.
constexpr SlowCommand kSlowCommands[] = {
    {QLatin1String("DELETE"), 240},
    {QLatin1String("DATA"), 240},
    {QLatin1String("ASL"), 60},
    {QLatin1String("MASTER"), 120},
};

/// The line knows one byte a character.
QString echo_to(const QString& command) {
    return QString::fromLatin1(command.toLatin1()) + u'\r';
}

}  // namespace

double answer_limit(const QString& command) {
    double limit = kUsualLimit;
    for (const SlowCommand& slow : kSlowCommands)
        if (command.contains(slow.word)) limit = slow.limit;
    return limit;
}

QString reduce_answer(const QString& command, const QString& raw) {
    const bool query = command.endsWith(u'?');
    if (query && raw.contains(QLatin1String("Invalid Parameter(s)"))) return QStringLiteral("0");

    QString answer = raw;
    const qsizetype payload = raw.size() - command.size() - 2;
    if (payload >= 0) answer = raw.mid(command.size() + 1, payload);
    if (query) {
        const qsizetype trailer = command == kErrorRates ? 2 : 3;
        if (answer.size() >= trailer) answer.chop(trailer);
    }
    if (answer.endsWith(u'\r')) answer.chop(1);
    return answer;
}

qsizetype answer_begin(const QString& command, const QString& raw) {
    return raw.indexOf(echo_to(command));
}

qsizetype answer_end(const QString& raw) {
    const qsizetype accepted = raw.indexOf(kAccepted);
    const qsizetype refused = raw.indexOf(kRefused);
    if (accepted < 0 && refused < 0) return 0;
    if (accepted < 0 || (refused >= 0 && refused < accepted)) return refused + kRefused.size();
    return accepted + kAccepted.size();
}

bool well_framed(const QString& command, const QString& raw) {
    if (!raw.startsWith(echo_to(command))) return false;
    if (!command.endsWith(u'?') || command == kErrorRates) return true;
    return raw.endsWith(u'\r' + kAccepted);
}

ReplyWatch::Verdict ReplyWatch::look_at(const QString& reply) {
    // "COMMAND ERROR" ends in "ERROR", so one search finds both.
    const auto found = [&](QLatin1String text) {
        const qsizetype overlap = text.size() - 1;
        return QStringView(reply).mid(std::max<qsizetype>(0, seen_ - overlap)).contains(text);
    };
    const Verdict verdict = found(kError)      ? Verdict::error
                            : found(kAccepted) ? Verdict::complete
                                               : Verdict::open;
    seen_ = reply.size();
    return verdict;
}

}  // namespace m47::link
