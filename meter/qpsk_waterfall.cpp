// SPDX-License-Identifier: GPL-3.0-or-later
#include "qpsk_waterfall.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "decibel.h"

namespace meter {

namespace {

// What a receiver loses against theory, as the standard reckons with it.
constexpr double kImplementationLossDb = 0.8;
constexpr double kOuterCodeRate = 188.0 / 204.0;
constexpr double kBerAtRequired = 2.0e-4;
// So far below the required Eb/N0 the decoder still synchronises.
constexpr double kLockMarginDb = 1.0;

/// One punctured code: its rate, what the standard asks for, its free distance and how many bits
/// are wrong, on average, in all error events of that distance.
struct CodeData {
    double rate;
    double required_db;
    int free_distance;
    double wrong_bits;
};

constexpr std::array kCodes{CodeData{1.0 / 2.0, 4.5, 10, 36.0}, CodeData{2.0 / 3.0, 5.0, 6, 1.5},
                            CodeData{3.0 / 4.0, 5.5, 5, 14.0}, CodeData{5.0 / 6.0, 6.0, 4, 18.4},
                            CodeData{7.0 / 8.0, 6.4, 3, 9.0 / 7.0}};

const CodeData& data_of(InnerCode code) {
    return kCodes.at(static_cast<std::size_t>(code));
}

/// The first term of the union bound, the one that counts where errors are rare.
double union_bound(double ebn0_db, const CodeData& code) {
    return code.wrong_bits * 0.5 *
           std::erfc(std::sqrt(code.free_distance * code.rate * linear(ebn0_db)));
}

/// By how many dB the bound has to be moved so that it meets the point of the standard.
double shift_of(const CodeData& code) {
    double low = -10.0;
    double high = 20.0;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (union_bound(middle, code) > kBerAtRequired ? low : high) = middle;
    }
    return code.required_db - low;
}

std::array<double, kCodes.size()> all_shifts() {
    std::array<double, kCodes.size()> shifts{};
    std::transform(kCodes.begin(), kCodes.end(), shifts.begin(), shift_of);
    return shifts;
}

double bits_per_symbol_db(InnerCode code) {
    return decibel(2.0 * code_rate(code) * kOuterCodeRate);
}

}  // namespace

double code_rate(InnerCode code) {
    return data_of(code).rate;
}

double required_ebn0(InnerCode code) {
    return data_of(code).required_db;
}

double ebn0_of_cn(double cn_db, InnerCode code) {
    return cn_db - bits_per_symbol_db(code);
}

double cn_of_ebn0(double ebn0_db, InnerCode code) {
    return ebn0_db + bits_per_symbol_db(code);
}

double ber_of_channel(double cn_db) {
    return 0.5 * std::erfc(std::sqrt(linear(cn_db - kImplementationLossDb) / 2.0));
}

double ber_behind_viterbi(double cn_db, InnerCode code) {
    static const auto shifts = all_shifts();
    const double shift = shifts.at(static_cast<std::size_t>(code));
    const double ber = union_bound(ebn0_of_cn(cn_db, code) - shift, data_of(code));
    // A decoder that is lost has every other bit wrong at most.
    return std::min(ber, 0.5);
}

double lowest_lock_cn(InnerCode code) {
    return cn_of_ebn0(required_ebn0(code) - kLockMarginDb, code);
}

}  // namespace meter
