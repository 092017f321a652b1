// SPDX-License-Identifier: GPL-3.0-or-later
#include "quantity_words.h"

#include <QStringList>

namespace m47::sites {
namespace {

using measurement::Quantity;

constexpr Bilingual kLevelName{"Level", "Livello"};

QString number_text(Quantity quantity, double value) {
    return measurement::is_error_rate(quantity) ? QString::number(value, 'E', 1)
                                                : QString::number(value);
}

QString sides_text(Quantity quantity, const measurement::Limits& limits) {
    const auto [minimum, maximum] = limits;
    if (minimum && maximum)
        return number_text(quantity, *minimum) + u'–' + number_text(quantity, *maximum);
    if (minimum) return QStringLiteral("> ") + number_text(quantity, *minimum);
    return maximum ? QStringLiteral("< ") + number_text(quantity, *maximum) : QString();
}

}  // namespace

QString quantity_text(Quantity quantity, const Texts& texts) {
    switch (quantity) {
        case Quantity::level:
            return texts.pick(kLevelName);
        case Quantity::cn:
            return QStringLiteral("C/N");
        case Quantity::mer:
            return QStringLiteral("MER");
        case Quantity::ber:
            return QStringLiteral("BER");
        case Quantity::pvber:
            return QStringLiteral("PVBER");
        case Quantity::cfo:
            return QStringLiteral("CFO");
        default:
            return QStringLiteral("N");
    }
}

QString limits_text(const measurement::LimitsInForce& limits, const Texts& texts) {
    QStringList said;
    for (std::size_t k = 0; k < limits.size(); ++k) {
        const auto quantity = static_cast<Quantity>(k);
        const QString sides = limits[k] ? sides_text(quantity, *limits[k]) : QString();
        if (!sides.isEmpty()) said += quantity_text(quantity, texts) + u' ' + sides;
    }
    return said.join(QStringLiteral(", "));
}

}  // namespace m47::sites
