// SPDX-License-Identifier: GPL-3.0-or-later
#include "satellites.h"

#include <algorithm>
#include <cmath>

#include "srecord.h"
#include "text.h"

namespace meter {

namespace {

constexpr std::size_t kRecordBytes = 16;
constexpr std::string_view kHeaderWord = "ASL ";

void put_number(SatelliteSlot& slot, std::size_t at, unsigned value) {
    for (std::size_t i = 0; i < 4; ++i)
        slot.tuning.at(at + i) = static_cast<std::uint8_t>((value >> (24 - 8 * i)) & 0xFF);
}

Settings factory_tuning(double if_mhz, int lnb_volt, bool tone, int symbol_rate) {
    Settings settings;
    settings.if_mhz = if_mhz;
    settings.oscillator = {tone ? 2 : 1, 'A', tone ? 10600 : 9750};
    settings.lnb_on = true;
    settings.lnb_volt = lnb_volt;
    settings.tone_on = tone;
    settings.symbol_rate = symbol_rate;
    settings.digital = true;
    return settings;
}

}  // namespace

bool SatelliteSlot::empty() const {
    return name == std::string(kSatelliteNameLength, '*');
}

std::string slot_block(int slot, const SatelliteSlot& content) {
    const std::string title = std::string(kHeaderWord) + zero_filled(slot, 3);
    std::string block = format_srecord({0, 0, {title.begin(), title.end()}}) + '\r';
    for (std::size_t at = 0; at < kSatelliteTuningBytes; at += kRecordBytes) {
        const auto* first = content.tuning.data() + at;
        block +=
            format_srecord({1, static_cast<unsigned>(at), {first, first + kRecordBytes}}) + '\r';
    }
    const std::string name = blank_filled(content.name, kSatelliteNameLength);
    block += format_srecord({1, kSatelliteTuningBytes, {name.begin(), name.end()}}) + '\r';
    return block + format_srecord({9, 0, {}}) + '\r';
}

SatelliteSlot learnt_slot(const Settings& settings, std::string_view name) {
    SatelliteSlot slot;
    put_number(slot, 0, static_cast<unsigned>(std::lround(settings.if_mhz * 1000.0)));
    put_number(slot, 4, static_cast<unsigned>(settings.oscillator.mhz));
    put_number(slot, 8, static_cast<unsigned>(settings.symbol_rate));
    slot.tuning[12] = static_cast<std::uint8_t>(settings.lnb_on ? settings.lnb_volt : 0);
    slot.tuning[13] = settings.tone_on ? 1 : 0;
    slot.tuning[14] = settings.digital ? 1 : 0;
    slot.tuning[15] = static_cast<std::uint8_t>(settings.diseqc);
    slot.name = blank_filled(name, kSatelliteNameLength);
    return slot;
}

SatelliteTable::SatelliteTable() {
    put(0, learnt_slot(factory_tuning(1000.0, 13, false, 27500), "AURORA 13E"));
    put(1, learnt_slot(factory_tuning(1362.0, 13, false, 30000), "BOREAL 19E"));
    put(2, learnt_slot(factory_tuning(1041.5, 13, true, 27500), "CIRRUS 9E"));
    put(4, learnt_slot(factory_tuning(1204.0, 18, false, 27500), "MERIDIO 5W"));
    put(5, learnt_slot(factory_tuning(1127.0, 18, true, 27500), "ORIENT 42E"));
    put(8, learnt_slot(factory_tuning(1733.0, 13, true, 27500), "PONENT 30W"));
    put(11, learnt_slot(factory_tuning(1603.5, 18, true, 27500), "ZENIT 28E"));
}

const SatelliteSlot& SatelliteTable::at(int slot) const {
    return slots_.at(static_cast<std::size_t>(slot));
}

void SatelliteTable::put(int slot, const SatelliteSlot& content) {
    slots_.at(static_cast<std::size_t>(slot)) = content;
}

void SatelliteTable::clear(int slot) {
    put(slot, SatelliteSlot{});
}

void SatelliteTable::rename(int slot, std::string_view name) {
    slots_.at(static_cast<std::size_t>(slot)).name = blank_filled(name, kSatelliteNameLength);
}

BlockReceiver::Result BlockReceiver::take(std::string_view line) {
    const auto record = parse_srecord(line);
    if (!record) {
        open_ = false;
        return Result::refused;
    }
    if (record->type == 0) {
        return take_header(
            {reinterpret_cast<const char*>(record->data.data()), record->data.size()});
    }
    if (!open_) return Result::refused;
    if (record->type == 1)
        return take_data(record->address, record->data.data(), record->data.size());
    return finish();
}

BlockReceiver::Result BlockReceiver::take_header(std::string_view text) {
    open_ = false;
    if (!text.starts_with(kHeaderWord)) return Result::refused;
    const auto slot = whole_number(text.substr(kHeaderWord.size()), 0, kSatelliteSlots - 1);
    if (!slot) return Result::refused;
    open_ = true;
    slot_ = *slot;
    filled_.fill(false);
    return Result::accepted;
}

BlockReceiver::Result BlockReceiver::take_data(unsigned address, const std::uint8_t* data,
                                               std::size_t count) {
    if (address > size || count > size - address) {
        open_ = false;
        return Result::refused;
    }
    for (std::size_t i = 0; i < count; ++i) {
        bytes_.at(address + i) = data[i];
        filled_.at(address + i) = true;
    }
    return Result::accepted;
}

BlockReceiver::Result BlockReceiver::finish() {
    open_ = false;
    if (!std::all_of(filled_.begin(), filled_.end(), [](bool filled) { return filled; }))
        return Result::refused;
    const auto name_start = bytes_.begin() + kSatelliteTuningBytes;
    std::copy(bytes_.begin(), name_start, content_.tuning.begin());
    content_.name.assign(name_start, bytes_.end());
    return Result::complete;
}

}  // namespace meter
