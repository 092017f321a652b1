// SPDX-License-Identifier: GPL-3.0-or-later
#include "sweep_options.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "option_words.h"
#include "tuning_range.h"

namespace m47::unattended {
namespace {

constexpr double kLeastStep = 0.1;
constexpr double kMostStep = 100;

/// The span of the intermediate band that lies from `from` to `to` MHz, in the sky where an
/// oscillator is given.
band::SweepSpan intermediate(double from, double to, const std::optional<int>& oscillator) {
    if (!oscillator) return {from, to, {}};
    const double ends[] = {std::abs(from - *oscillator), std::abs(to - *oscillator)};
    return {std::min(ends[0], ends[1]), std::max(ends[0], ends[1]), {}};
}

}  // namespace

QString read_sweep_span(const QCommandLineParser& parser, Options& options) {
    const QString name = QStringLiteral("sweep");
    if (!parser.isSet(name)) return {};
    static const QRegularExpression kForm(
        QStringLiteral("^(\\d{1,5}(?:\\.\\d)?):(\\d{1,5}(?:\\.\\d)?)(?::(\\d{1,3}(?:\\.\\d)?))?$"));
    const QString given = parser.value(name);
    const QRegularExpressionMatch match = kForm.match(given);
    const auto& oscillator = options.antenna.oscillator;
    const programme::TuningRange range =
        programme::tuning_range(!oscillator, oscillator.value_or(0));
    const double from = match.captured(1).toDouble();
    const double to = match.captured(2).toDouble();
    if (!match.hasMatch() || from < range.minimum || to > range.maximum || from >= to)
        return refused(
            QStringLiteral("--sweep takes FROM:TO or FROM:TO:STEP with FROM below TO, "
                           "from %1 to %2 MHz%3, each with one decimal at most")
                .arg(range.minimum)
                .arg(range.maximum)
                .arg(oscillator ? QStringLiteral(" with --oscillator %1").arg(*oscillator)
                                : QString()),
            given);
    options.sweep = intermediate(from, to, oscillator);
    if (match.captured(3).isEmpty()) return {};
    options.sweep->step = match.captured(3).toDouble();
    if (*options.sweep->step >= kLeastStep && *options.sweep->step <= kMostStep) return {};
    return refused(
        QStringLiteral("--sweep takes a STEP from %1 to %2 MHz").arg(kLeastStep).arg(kMostStep),
        given);
}

}  // namespace m47::unattended
