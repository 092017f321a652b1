// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "settings.h"

namespace meter {

constexpr int kSatelliteSlots = 20;
constexpr std::size_t kSatelliteTuningBytes = 48;
constexpr std::size_t kSatelliteNameLength = 10;

/// One slot of the satellite locator: tuning data and a name of ten characters.
struct SatelliteSlot {
    std::array<std::uint8_t, kSatelliteTuningBytes> tuning{};
    std::string name = std::string(kSatelliteNameLength, '*');

    /// True when the slot holds no satellite (its name is all asterisks).
    bool empty() const;
};

/// The slot's S-records S0, S1 (four), S9, each ended by CR.
std::string slot_block(int slot, const SatelliteSlot& content);

/// The slot that the meter makes of its present tuning.
SatelliteSlot learnt_slot(const Settings& settings, std::string_view name);

/// The 20 slots of the locator.
class SatelliteTable {
  public:
    /// A table with some satellites already learnt.
    SatelliteTable();

    const SatelliteSlot& at(int slot) const;
    void put(int slot, const SatelliteSlot& content);
    void clear(int slot);

    /// Gives the slot a name, cut or filled with blanks to ten characters.
    void rename(int slot, std::string_view name);

  private:
    std::array<SatelliteSlot, kSatelliteSlots> slots_;
};

/// Collects the S-records of one block; a bad record spoils the block that it belongs to.
class BlockReceiver {
  public:
    enum class Result { accepted, refused, complete };

    /// Takes the next line of a block. After `complete` the slot and its content can be read.
    Result take(std::string_view line);

    int slot() const { return slot_; }
    const SatelliteSlot& content() const { return content_; }

  private:
    static constexpr std::size_t size = kSatelliteTuningBytes + kSatelliteNameLength;

    Result take_header(std::string_view text);
    Result take_data(unsigned address, const std::uint8_t* data, std::size_t count);
    Result finish();

    bool open_ = false;
    int slot_ = 0;
    std::array<std::uint8_t, size> bytes_{};
    std::array<bool, size> filled_{};
    SatelliteSlot content_;
};

}  // namespace meter
