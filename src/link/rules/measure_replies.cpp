// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_replies.h"

#include <QRegularExpression>
#include <algorithm>

#include "fault.h"
#include "numbers.h"

namespace m47::link {
namespace {

bool has_digit(const QString& text) {
    return std::ranges::any_of(text, [](QChar c) { return c.isDigit(); });
}

}  // namespace

double delete_segno(const QString& parola) {
    const bool marked = parola.startsWith(u'<') || parola.startsWith(u'>');
    return meter_value(parola.mid(marked ? 1 : 0));
}

QString delete_cr(const QString& cosa, const QString& dove) {
    const qsizetype label = dove.indexOf(cosa);
    if (label < 0) throw Fault("label \"" + cosa.toStdString() + "\" missing in the answer");
    const qsizetype start = label + cosa.size();
    const qsizetype end = dove.indexOf(u'\r', label);
    return end < 0 ? dove.mid(start) : dove.mid(start, end - start);
}

bool can_be_value(const QString& text) {
    static const QRegularExpression kNumber(
        QStringLiteral(R"(^\s*[<>]?\s*[-+]?(0|[1-9]\d*)(\.\d+)?\s*(dB[A-Za-z\xb5]*|[kM]Hz)?\s*$)"));
    return !has_digit(text) || kNumber.match(text).hasMatch();
}

bool can_be_rate(const QString& text) {
    static const QRegularExpression kRate(
        QStringLiteral(R"(^\s*[<>]?\s*\d(\.\d+)?([eE][-+]?\d+)?\s*$)"));
    return !has_digit(text) || (kRate.match(text).hasMatch() && delete_segno(text.trimmed()) <= 1);
}

QString trimmed_from(const QString& reply, int position) {
    return reply.mid(position - 1).trimmed();
}

bool level_for_attenuator(const QString& reply, double& level) {
    if (reply.size() < 2 || reply[1] != u' ') return false;
    level = meter_value(reply.mid(2));
    return true;
}

QString noise_power(const QString& reply) {
    // Positions counted from 1, 0 where there is none, as the layout of the answer was written
    // down.
    const qsizetype word = reply.indexOf(QLatin1String("LEVDCP?")) + 1;
    const qsizetype line_end = reply.indexOf(u'\r') + 1;
    const qsizetype length = line_end - word - 4;
    if (length < 0) throw Fault("no line end in the noise answer");
    return reply.mid(word + 4 - 1, length);
}

}  // namespace m47::link
