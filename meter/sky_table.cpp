// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>

#include "sky.h"

namespace meter {

namespace {

// IF MHz, level dBuV, bandwidth MHz, symbol rate kS/s (0 analog), link C/N dB, drift MHz
constexpr std::array kVerticalLow{
    Carrier{948.0, 62.0, 27.0, 0, 14.2, 0.2},      Carrier{1000.0, 66.0, 33.0, 27500, 13.2, 0.3},
    Carrier{1097.5, 64.5, 26.4, 22000, 12.6, 0.3}, Carrier{1190.0, 58.0, 27.0, 0, 12.8, 0.2},
    Carrier{1275.5, 68.0, 33.0, 27500, 13.6, 0.3}, Carrier{1362.0, 70.5, 36.0, 30000, 12.1, 0.4},
    Carrier{1450.5, 55.0, 7.3, 6111, 11.4, 0.4},   Carrier{1538.0, 72.0, 27.0, 0, 15.1, 0.3},
    Carrier{1625.0, 61.0, 33.0, 27500, 10.7, 0.4}, Carrier{1718.5, 49.0, 26.4, 22000, 7.9, 0.4},
    Carrier{1810.0, 74.0, 33.0, 27500, 13.9, 0.3}, Carrier{1904.0, 45.0, 27.0, 0, 8.8, 0.4},
    Carrier{1988.0, 52.0, 5.2, 4340, 11.9, 0.5},   Carrier{2085.0, 57.5, 33.0, 27500, 9.6, 0.5},
};

constexpr std::array kVerticalHigh{
    Carrier{962.0, 63.0, 33.0, 27500, 12.9, 0.2},  Carrier{1041.5, 67.5, 33.0, 27500, 13.4, 0.2},
    Carrier{1119.0, 59.0, 27.0, 0, 13.0, 0.3},     Carrier{1197.5, 71.0, 33.0, 27500, 14.0, 0.3},
    Carrier{1276.0, 65.0, 36.0, 30000, 11.6, 0.3}, Carrier{1368.5, 60.0, 26.4, 22000, 10.2, 0.3},
    Carrier{1459.0, 76.5, 27.0, 0, 15.6, 0.4},     Carrier{1560.0, 62.5, 33.0, 27500, 12.2, 0.4},
    Carrier{1654.5, 53.0, 7.3, 6111, 9.9, 0.4},    Carrier{1733.0, 69.0, 33.0, 27500, 13.1, 0.4},
    Carrier{1842.0, 47.5, 33.0, 27500, 7.2, 0.4},  Carrier{1975.5, 64.0, 26.4, 22000, 12.4, 0.5},
    Carrier{2103.0, 56.0, 27.0, 0, 11.2, 0.5},
};

constexpr std::array kHorizontalLow{
    Carrier{934.5, 60.5, 26.4, 22000, 11.8, -0.2},  Carrier{1018.0, 69.5, 33.0, 27500, 13.7, -0.2},
    Carrier{1110.0, 73.0, 27.0, 0, 15.3, -0.2},     Carrier{1204.0, 66.5, 33.0, 27500, 12.7, -0.3},
    Carrier{1291.5, 54.0, 5.2, 4340, 10.4, -0.3},   Carrier{1377.0, 78.0, 33.0, 27500, 14.2, -0.3},
    Carrier{1466.0, 57.0, 27.0, 0, 11.9, -0.3},     Carrier{1582.5, 63.5, 36.0, 30000, 11.3, -0.3},
    Carrier{1671.0, 67.0, 33.0, 27500, 13.3, -0.4}, Carrier{1789.5, 50.0, 26.4, 22000, 8.4, -0.4},
    Carrier{1893.0, 61.5, 27.0, 0, 13.5, -0.4},     Carrier{2021.0, 65.5, 33.0, 27500, 12.5, -0.4},
};

constexpr std::array kHorizontalHigh{
    Carrier{953.5, 72.5, 33.0, 27500, 13.8, 0.6},  Carrier{1034.0, 58.5, 27.0, 0, 12.3, 0.6},
    Carrier{1127.0, 85.0, 33.0, 27500, 14.4, 0.6}, Carrier{1222.5, 64.0, 26.4, 22000, 12.0, 0.6},
    Carrier{1318.0, 61.0, 33.0, 27500, 11.1, 0.7}, Carrier{1405.5, 55.5, 7.3, 6111, 10.8, 0.7},
    Carrier{1493.0, 68.5, 27.0, 0, 14.7, 0.7},     Carrier{1603.5, 70.0, 33.0, 27500, 13.5, 0.7},
    Carrier{1699.0, 66.0, 36.0, 30000, 12.3, 0.8}, Carrier{1826.5, 48.5, 33.0, 27500, 7.6, 0.8},
    Carrier{1941.0, 63.0, 27.0, 0, 13.9, 0.8},     Carrier{2064.0, 59.5, 33.0, 27500, 10.0, 0.8},
    Carrier{2126.0, 51.0, 5.2, 4340, 9.3, 0.8},
};

constexpr Spectrum kSpectra[2][2] = {
    {{"13 V, tone off", kVerticalLow, 22.0, -2.5}, {"13 V, tone on", kVerticalHigh, 22.5, -2.0}},
    {{"18 V, tone off", kHorizontalLow, 21.5, -3.0},
     {"18 V, tone on", kHorizontalHigh, 22.0, -2.0}},
};

constexpr Spectrum kTerrestrial{"terrestrial, no aerial", {}, 8.0, 0.0};

}  // namespace

const Spectrum& satellite_spectrum(bool high_voltage, bool tone) {
    return kSpectra[high_voltage ? 1 : 0][tone ? 1 : 0];
}

const Spectrum& terrestrial_spectrum() {
    return kTerrestrial;
}

}  // namespace meter
