// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qpsk_waterfall.h"

namespace meter {

/// A transponder as a scan table lists it.
struct ListedTransponder {
    double mhz = 0.0;
    int symbol_rate = 0;  ///< kS/s
    InnerCode code = InnerCode::r3_4;
    char polarisation = 'V';         ///< H, V, L or R
    bool second_generation = false;  ///< DVB-S2

    bool circular() const { return polarisation == 'L' || polarisation == 'R'; }

    /// The width that its carrier takes, MHz.
    double width_mhz() const;
};

/// All that is listed at one position of the arc.
struct ListedPosition {
    double east = 0.0;  ///< degrees, west negative
    std::vector<std::string> names;
    std::vector<ListedTransponder> transponders;
};

/// The transponders in the text of a DVB scan table; blocks that lack a number are left out.
std::vector<ListedTransponder> transponders_of(std::string_view table);

/// The position in the form 13.0E or 5W; false for any other text.
bool parse_position(std::string_view text, double& east);

/// The tables of all satellites, by position from west to east.
class ScanTables {
  public:
    ScanTables() = default;

    /// Positions in any order; those of the same tenth of a degree become one.
    explicit ScanTables(std::vector<ListedPosition> positions);

    /// Reads each file of the directory whose name ends with a position, as Hotbird-13.0E does.
    /// Throws std::runtime_error where there is none.
    static ScanTables read(const std::string& directory);

    const std::vector<ListedPosition>& positions() const { return positions_; }

  private:
    std::vector<ListedPosition> positions_;
};

}  // namespace meter
