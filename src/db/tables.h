// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The names of the tables of the database file.
namespace m47::db::table {

inline constexpr const char* kProgrammi = "programmi";
inline constexpr const char* kConfigurazione = "configurazione";
inline constexpr const char* kGruppo = "gruppo";
inline constexpr const char* kAsl = "asl";

}  // namespace m47::db::table
