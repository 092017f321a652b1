// SPDX-License-Identifier: GPL-3.0-or-later
#include "box_numbers.h"

#include <QRegularExpression>

#include "numbers.h"

namespace m47::programme {

bool is_number(const QString& text) {
    static const QRegularExpression kNumber(
        QStringLiteral("^\\s*[-+]?(\\d+[.,]?\\d*|[.,]\\d+)([eE][-+]?\\d+)?\\s*$"));
    return kNumber.match(text).hasMatch();
}

double box_value(const QString& text) {
    return link::meter_value(QString(text).replace(u',', u'.'));
}

QString number_text(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return {};
    return is_number(trimmed) ? QString(trimmed).replace(u',', u'.')
                              : link::plain_text(box_value(trimmed));
}

QString frequency_box_text(double mhz, bool direct) {
    return link::format_number(mhz, direct ? "0.0" : "0");
}

QString bandwidth_box_text(double mhz) {
    return link::format_number(mhz, "00");
}

}  // namespace m47::programme
