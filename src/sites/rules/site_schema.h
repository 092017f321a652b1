// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <cstdint>
#include <span>

namespace m47::sites {

/// What tells a file of sites from other files of the engine: "M47S".
inline constexpr std::uint32_t kApplicationId = 0x4D343753;

/// The statements that lead from one version of the tables to the next.
using Migration = std::span<const char* const>;

/// Step k leads from version k to version k + 1; all of them make a new file. A step that has been
/// published is never changed: another one comes behind it.
std::span<const Migration> migrations();

/// The version of the tables that this program works on.
std::uint32_t current_version();

/// Takes the steps that the file lacks, all or none of them. An error is an EngineFault.
void bring_up_to_date(const QSqlDatabase& database, std::span<const Migration> steps);

/// Makes the tables in the empty file behind `database`.
void make_tables(const QSqlDatabase& database);

}  // namespace m47::sites
