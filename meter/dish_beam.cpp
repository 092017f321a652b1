// SPDX-License-Identifier: GPL-3.0-or-later
#include "dish_beam.h"

#include <cmath>
#include <numbers>

#include "decibel.h"

namespace meter {

namespace {

constexpr double kLightMetresMhz = 299.792458;
constexpr double kEfficiency = 0.65;
constexpr double kSystemKelvin = 150.0;
constexpr double kBoltzmannDb = -228.6;
constexpr double kDistanceMetres = 38.5e6;

double wavelength(double mhz) {
    return kLightMetresMhz / mhz;
}

}  // namespace

double beam_width(double diameter_cm, double mhz) {
    return 70.0 * wavelength(mhz) / (diameter_cm / 100.0);
}

double beam_loss(double degrees, double width_degrees) {
    const double widths = degrees / width_degrees;
    // Half a width off the axis makes 3 dB.
    return -12.0 * widths * widths;
}

double dish_gain(double diameter_cm, double mhz) {
    const double circumference = std::numbers::pi * (diameter_cm / 100.0) / wavelength(mhz);
    return decibel(kEfficiency * circumference * circumference);
}

double link_cn(double eirp_dbw, double diameter_cm, double mhz, double symbol_mhz) {
    const double path = 2.0 * decibel(4.0 * std::numbers::pi * kDistanceMetres / wavelength(mhz));
    const double noise = kBoltzmannDb + decibel(kSystemKelvin) + decibel(symbol_mhz * 1.0e6);
    return eirp_dbw - path + dish_gain(diameter_cm, mhz) - noise;
}

double arc_between(double from_east, double to_east) {
    return std::remainder(to_east - from_east, 360.0);
}

}  // namespace meter
