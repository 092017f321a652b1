// SPDX-License-Identifier: GPL-3.0-or-later
// The answers to the level queries, the range marks before a reading, and the number formats.
#include <cmath>
#include <limits>

#include "fault.h"
#include "fuzzing.h"
#include "measure_replies.h"
#include "numbers.h"

namespace {

void check_level(const QString& reply) {
    double level = std::numeric_limits<double>::quiet_NaN();
    const bool set = m47::link::level_for_attenuator(reply, level);
    HOLDS(set == std::isfinite(level));
    HOLDS(set == (reply.size() >= 2 && reply[1] == u' '));
}

void check_display(const QString& reply) {
    const QString shown = m47::link::trimmed_from(reply, 2);
    HOLDS(reply.contains(shown));
    HOLDS(shown == shown.trimmed());
    const double value = m47::link::delete_segno(shown);
    HOLDS(std::isfinite(value));
    for (const QChar mark : {QChar(u'<'), QChar(u'>')})
        if (!shown.startsWith(u'<') && !shown.startsWith(u'>'))
            HOLDS(m47::link::delete_segno(mark + shown) == value);
}

void check_noise(const QString& reply) {
    const qsizetype word = reply.indexOf(QLatin1String("LEVDCP?"));
    try {
        const QString noise = m47::link::noise_power(reply);
        HOLDS(reply.contains(noise));
        HOLDS(noise.size() < reply.size() || reply.isEmpty());
    } catch (const m47::Fault&) {
        HOLDS(reply.indexOf(u'\r') - word < 4);
    }
}

/// A value written out and read back is the same one, rounded at most.
void check_formats(double value) {
    HOLDS(m47::link::meter_value(m47::link::plain_text(value)) == value);
    const double rounded = m47::link::meter_value(m47::link::format_number(value, "0.0"));
    HOLDS(std::fabs(rounded - value) <= 0.0500001 + std::fabs(value) * 1e-15);
    const QString frequency = m47::link::format_freq(m47::link::plain_text(value));
    const bool satellite_if = value >= 900 && value <= 2150;
    HOLDS(frequency.contains(u'.') == satellite_if);
    HOLDS(frequency.size() >= 5);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString reply = fuzzing::Input(data, size).text();
    check_level(reply);
    check_display(reply);
    check_noise(reply);
    check_formats(m47::link::meter_value(reply));
    return 0;
}
