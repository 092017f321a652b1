// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace meter {

/// Full width at -3 dB of a dish's beam: 70 wavelengths over the diameter, degrees.
double beam_width(double diameter_cm, double mhz);

/// Change of the gain so many degrees off the axis, dB, at most 0: a Gaussian beam.
double beam_loss(double degrees, double width_degrees);

/// Gain of the dish on its axis, dBi, at the usual efficiency.
double dish_gain(double diameter_cm, double mhz);

/// C/N (dB, in the bandwidth of the symbol rate in MS/s) of a link in clear sky, on the axis.
double link_cn(double eirp_dbw, double diameter_cm, double mhz, double symbol_mhz);

/// The shorter way from one position of the arc to another, degrees, east positive.
double arc_between(double from_east, double to_east);

}  // namespace meter
