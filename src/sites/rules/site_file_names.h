// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The members of a file of sites; docs/site-file.md says what stands in them.
namespace m47::sites::member {

inline constexpr const char* kFormat = "format";
inline constexpr const char* kVersion = "version";
inline constexpr const char* kSites = "sites";
inline constexpr const char* kId = "id";
inline constexpr const char* kName = "name";
inline constexpr const char* kAddress = "address";
inline constexpr const char* kCustomer = "customer";
inline constexpr const char* kRemarks = "remarks";
inline constexpr const char* kVisits = "visits";
inline constexpr const char* kBegun = "begun";
inline constexpr const char* kEnded = "ended";
inline constexpr const char* kUtc = "utc";
inline constexpr const char* kOffset = "offset";
inline constexpr const char* kTechnician = "technician";
inline constexpr const char* kInstrument = "instrument";
inline constexpr const char* kLogo = "logo";
inline constexpr const char* kPlan = "plan";
inline constexpr const char* kMeasurements = "measurements";
inline constexpr const char* kInstant = "instant";
inline constexpr const char* kProgram = "program";
inline constexpr const char* kMode = "mode";
inline constexpr const char* kFrequency = "frequency";
inline constexpr const char* kOscillator = "oscillator";
inline constexpr const char* kUnit = "unit";
inline constexpr const char* kReadings = "readings";
inline constexpr const char* kValue = "value";
inline constexpr const char* kMark = "mark";
inline constexpr const char* kLimits = "limits";
inline constexpr const char* kMinimum = "minimum";
inline constexpr const char* kMaximum = "maximum";
inline constexpr const char* kVerdict = "verdict";

/// What the file says of itself.
inline constexpr const char* kSiteFormat = "m47-sites";
inline constexpr int kSiteVersion = 1;

}  // namespace m47::sites::member
