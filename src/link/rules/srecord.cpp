// SPDX-License-Identifier: GPL-3.0-or-later
#include "srecord.h"

#include "numbers.h"

namespace m47::link {

QString srecord_text(int slot) {
    return QStringLiteral("ASL ") + format_number(slot, "000");
}

QString srecord_body(const QString& text) {
    constexpr int kAddressAndChecksum = 3;
    QString body = hex_byte(text.size() + kAddressAndChecksum) + QStringLiteral("0000");
    for (const char character : text.toLatin1())
        body += num_to_hex(static_cast<unsigned char>(character), 16);
    return body;
}

QString srecord_checksum(const QString& body) {
    long sum = 0;
    for (qsizetype at = 0; at < body.size(); at += 2)
        sum += static_cast<long>(meter_value(hex_to_num(body.mid(at, 2), 16)));
    // At least once, and down to below 255: that is how the meter's tables have always been made.
    // Every header has a sum above 256, for which this is the usual ones' complement.
    do {
        sum -= 256;
    } while (sum >= 255);
    return hex_byte(255 - sum);
}

QString srecord_header(int slot) {
    const QString body = srecord_body(srecord_text(slot));
    return QStringLiteral("S0") + body + srecord_checksum(body);
}

}  // namespace m47::link
