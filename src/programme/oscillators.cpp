// SPDX-License-Identifier: GPL-3.0-or-later
#include "oscillators.h"

#include <algorithm>
#include <numeric>

#include "numbers.h"

namespace m47::programme {

Oscillators read_oscillators(const db::Recordset& configurazione) {
    Oscillators oscillators;
    for (std::size_t index = 0; index < oscillators.size(); ++index) {
        const QString stored = configurazione.text(db::field::kOscillators[index]);
        if (!stored.trimmed().isEmpty())
            oscillators[index] = link::plain_text(link::typed_value(stored));
    }
    return oscillators;
}

void write_oscillator(db::Recordset& configurazione, int index, const QString& text) {
    configurazione.set(db::field::kOscillators[static_cast<std::size_t>(index)],
                       text.trimmed().isEmpty() ? QVariant() : QVariant(link::typed_value(text)));
}

std::optional<int> place_oscillator(Oscillators& oscillators, int preferred, const QString& mhz) {
    std::array<std::size_t, db::field::kOscillators.size()> order{};
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (preferred >= 0 && preferred < static_cast<int>(order.size())) {
        const auto first = order.begin() + preferred;
        std::rotate(order.begin(), first, first + 1);
    }
    const auto same = [&](std::size_t k) {
        return link::typed_value(oscillators[k]) == link::typed_value(mhz);
    };
    const auto free = [&](std::size_t k) { return oscillators[k].trimmed().isEmpty(); };
    auto place = std::ranges::find_if(order, same);
    if (place == order.end()) place = std::ranges::find_if(order, free);
    if (place == order.end()) return std::nullopt;
    if (free(*place)) oscillators[*place] = mhz;
    return static_cast<int>(*place);
}

}  // namespace m47::programme
