// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <vector>

#include "measurement.h"

namespace m47::measurement {

/// What a page keeps of a measurement beside its text, but for the time, which the text holds: 48
/// bytes. Programs and limits, which come again with every pass, stand in MeasurementRecords once.
struct MeasurementRecord {
    std::array<float, kAllQuantities> values{};
    float frequency = 0;   ///< no number where there is none
    float oscillator = 0;  ///< the same
    std::uint32_t program = 0;
    std::uint32_t limits = 0;
    std::uint16_t marks = 0;  ///< two bits a quantity
    std::int8_t unit = -1;    ///< negative where it is not known
    MeasureMode mode : 4 = MeasureMode::none;
    Verdict verdict : 3 = Verdict::none;
    bool known : 1 = false;  ///< false for a row of which only the text is known
};
static_assert(sizeof(MeasurementRecord) == 48);

/// Packs measurements into records and back. Each program and each set of limits is kept once, for
/// as long as the page.
class MeasurementRecords {
  public:
    MeasurementRecord pack(const Measurement& measurement);
    /// Everything but the instant.
    Measurement unpack(const MeasurementRecord& record) const;

  private:
    std::uint32_t place_of(const ProgramIdentity& program);
    std::uint32_t place_of(const LimitsInForce& limits);

    std::vector<ProgramIdentity> programs_;
    QHash<std::pair<QString, QString>, std::uint32_t> program_places_;
    std::vector<LimitsInForce> limits_;
    QHash<QByteArray, std::uint32_t> limit_places_;
};

}  // namespace m47::measurement
