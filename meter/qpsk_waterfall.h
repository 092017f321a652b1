// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace meter {

/// Rates of the inner convolutional code of DVB-S.
enum class InnerCode { r1_2, r2_3, r3_4, r5_6, r7_8 };

/// Share of the bits behind the inner code that are in front of it.
double code_rate(InnerCode code);

/// Eb/N0 (dB, of the bits of the transport stream) that EN 300 421 asks of a receiver for a BER of
/// 2E-4 behind the Viterbi decoder.
double required_ebn0(InnerCode code);

/// Eb/N0 of a C/N in the bandwidth of the symbol rate, both dB; and back.
double ebn0_of_cn(double cn_db, InnerCode code);
double cn_of_ebn0(double ebn0_db, InnerCode code);

/// BER of the channel, in front of the Viterbi decoder, at a C/N.
double ber_of_channel(double cn_db);

/// BER behind the Viterbi decoder at a C/N.
double ber_behind_viterbi(double cn_db, InnerCode code);

/// The lowest C/N at which the demodulator holds its lock, dB.
double lowest_lock_cn(InnerCode code);

}  // namespace meter
