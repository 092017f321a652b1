// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

/// The names of the fields of the database file. What each holds stands in the schema.
namespace m47::db::field {

/// The plan's name, in each of its tables, and the satellite's in that of the satellites.
inline constexpr const char* kNome = "nome";

// Of `configurazione`.
inline constexpr std::array kOscillators{"loc_osc1", "loc_osc2", "loc_osc3", "loc_osc4"};
inline constexpr std::array kUserSwitches{"user_sc0", "user_sc1", "user_sc2", "user_sc3"};

// Of `programmi`.
inline constexpr const char* kPgNum = "pg_num";
inline constexpr const char* kFrequenza = "frequenza";
inline constexpr const char* kLocOsc = "loc_osc";
inline constexpr const char* kLocOsc0 = "loc_osc0";
inline constexpr const char* kSatAd = "sat_ad";
inline constexpr const char* kQpskSymbolrate = "qpsk_symbolrate";
inline constexpr const char* kSatchbw = "satchbw";
inline constexpr const char* kDiseqcCmd = "diseqc_cmd";
inline constexpr const char* kDiseqcCmd2 = "diseqc_cmd2";
inline constexpr const char* kLnbVolt = "lnb_volt";
inline constexpr const char* kK22 = "K22";
inline constexpr const char* kLoggerPos = "logger_pos";
inline constexpr const char* kLoggerState = "logger_state";
inline constexpr const char* kMonitorState = "monitor_state";
inline constexpr const char* kLevMin = "lev_min";
inline constexpr const char* kLevMax = "lev_max";
inline constexpr const char* kNoiseMin = "noise_min";
inline constexpr const char* kNoiseMax = "noise_max";
inline constexpr const char* kChberMin = "chber_min";
inline constexpr const char* kChberMax = "chber_max";
inline constexpr const char* kMerMin = "mer_min";
inline constexpr const char* kMerMax = "mer_max";

// Of `asl`.
inline constexpr const char* kDati = "dati";

}  // namespace m47::db::field
