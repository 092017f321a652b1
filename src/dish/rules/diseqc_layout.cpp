// SPDX-License-Identifier: GPL-3.0-or-later
#include "diseqc_layout.h"

#include "twips.h"

namespace m47::dish {
namespace {

QSize size_of_twips(int width, int height) {
    return {pixels_of(width), pixels_of(height)};
}

}  // namespace

DiseqcLayout diseqc_layout(DiseqcState state) {
    switch (state) {
        case DiseqcState::commands:
            return {.diseqc = size_of_twips(3680, 975),
                    .sat_opt = size_of_twips(5775, 3015),
                    .dsq11opt = true};
        case DiseqcState::motor:
            return {.diseqc = size_of_twips(3680, 4150),
                    .sat_opt = size_of_twips(5775, 5500),
                    .dsq12opt = true};
        case DiseqcState::folded:
            break;
    }
    return {.diseqc = size_of_twips(1395, 735), .sat_opt = size_of_twips(4215, 3015)};
}

DiseqcState opened_state(bool protocol_1_2) {
    return protocol_1_2 ? DiseqcState::motor : DiseqcState::commands;
}

}  // namespace m47::dish
