// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "measurement_record.h"

namespace m47::measurement {

/// The rows of the measurement page as the bytes of a log line, 11 cells in Latin-1 joined by TAB,
/// and beside a row that was measured here what was measured.
/// A page that is left running for weeks holds a million rows, so a row costs little more than its
/// characters, and nothing that is already stored is copied when the page grows.
class PageStore {
  public:
    static constexpr int kColumns = 11;

    int rows() const;

    /// Adds one row. Missing cells are empty, cells past the 11th are left out. A TAB, CR or LF
    /// within a cell becomes a blank, so that a row is always one line of 11 fields; a character
    /// that Latin-1 lacks becomes "?".
    void append(const QStringList& cells);

    /// The same of a row whose measurement is known: `cells` are what the page shows of it.
    void append(const QStringList& cells, const Measurement& measurement);

    /// Adds the fields of one line (without its line end) as a row. False when the line holds more
    /// than 11: the first 11 have then been added.
    bool append_line(std::string_view line);

    /// Row `row` (0 to rows() - 1): 11 fields, 10 TABs, no line end. Valid until the next change.
    std::string_view line(int row) const;

    /// One cell, `column` 0 to 10. Valid until the next change.
    std::string_view cell(int row, int column) const;

    /// What was measured in row `row`; of a row that came as text only what that says. Where it
    /// does not tell its unit, it is in `unit`.
    Measurement measurement(int row, std::optional<LevelUnit> unit = {}) const;

    void clear();

    /// Bytes of memory the rows hold, those set aside included.
    std::size_t memory_bytes() const;

  private:
    static constexpr std::size_t kChunkRows = 1024;
    struct Chunk {
        std::string bytes;
        std::array<std::size_t, kChunkRows> ends;
        std::size_t rows = 0;
        /// Of the rows up to the last one whose measurement is known; empty for a log.
        std::vector<MeasurementRecord> records;
    };

    const MeasurementRecord* record_of(int row) const;
    Chunk& open_chunk();
    static void end_row(Chunk& chunk);

    std::vector<std::unique_ptr<Chunk>> chunks_;
    MeasurementRecords records_;
};

}  // namespace m47::measurement
