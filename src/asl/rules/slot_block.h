// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>

#include "stored_names.h"

namespace m47::asl {

/// The satellite slots of the meter.
inline constexpr int kSlots = 20;

/// What one satellite slot holds: 48 bytes of tuning data, whose meaning the meter alone knows, and
/// a name of ten characters. It is always whole: there is no way to a slot block that lacks a byte.
class SlotBlock {
  public:
    static constexpr qsizetype kTuningBytes = 48;
    static constexpr qsizetype kNameLength = kLongestName;
    static constexpr qsizetype kBytes = kTuningBytes + kNameLength;

    /// The empty slot: no tuning data, the name ten asterisks.
    SlotBlock();

    /// `tuning` cut or filled with zeros to 48 bytes, `name` cut or filled with blanks to ten
    /// Latin-1 characters.
    static SlotBlock of(const QByteArray& tuning, const QString& name);

    /// The block whose text() is exactly `text`; nothing for any other text: a record missing, cut
    /// or out of place, a wrong count or checksum.
    static std::optional<SlotBlock> parse(const QString& text);

    /// The five S-records, joined by CR: three of 16 tuning bytes, the name, the end record.
    QString text() const;

    /// The tuning data and behind them the name.
    const QByteArray& bytes() const { return bytes_; }
    QByteArray tuning() const { return bytes_.first(kTuningBytes); }
    /// Without the blanks (or NULs) that fill it up.
    QString name() const;
    bool holds_no_satellite() const { return name() == kNoSatellite; }

    /// The same tuning data under another name; the very same block where that is its name already.
    SlotBlock renamed(const QString& name) const;

    bool operator==(const SlotBlock& other) const = default;

  private:
    explicit SlotBlock(const QByteArray& bytes) : bytes_(bytes) {}

    QByteArray bytes_;
};

/// What was found for each slot in a copy of them all; nothing for a slot that is missing, damaged
/// or there twice.
using SlotTable = std::array<std::optional<SlotBlock>, kSlots>;

/// The header record before the block of slot `slot` (0 to 999).
QString slot_header(int slot);

/// The slots in `copy`: headers and records, each on a line ended by CR, LF or both. Lines that
/// belong to no slot are passed over.
SlotTable parse_slots(const QString& copy);

/// The slots of `table` that are there, header and block each, every record ended by `line_end`.
QString slots_text(const SlotTable& table, const QString& line_end);

/// What the meter's rule for a single slot cuts out of `master_copy`: behind the header of `slot`,
/// as long as the first block of the copy is. May be anything where the copy is not whole; only
/// SlotBlock::parse tells. Empty without an end record.
QString block_in_copy(const QString& master_copy, int slot);

/// True when `master_copy` holds the header of `slot`.
bool header_in_copy(const QString& master_copy, int slot);

/// `master_copy` with `block` (header line and block) written over it from where that header
/// stands: as long as before, and unchanged where it holds no such header.
QString patched_copy(const QString& master_copy, const QString& block);

/// The names in the answer to the query for them, the slot being the place in the list: what
/// follows the first TAB of a line, without blanks around it. Shorter where the answer ends early.
QStringList slot_names(const QString& answer);

/// True when the line carries every character of `name` as it is: printable Latin-1 and no other.
bool fits_the_line(const QString& name);

}  // namespace m47::asl
