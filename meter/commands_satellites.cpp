// SPDX-License-Identifier: GPL-3.0-or-later
#include "interpreter.h"
#include "text.h"

namespace meter {

namespace {

// MASTERCOPY copies memory areas by number; this one is the satellite table.
constexpr char kSatelliteArea[] = "6?";

std::optional<int> slot_number(const std::string& text) {
    return whole_number(text, 0, kSatelliteSlots - 1);
}

}  // namespace

Reply Interpreter::set_satellite_name(const std::string& argument) {
    const auto blank = argument.find(' ');
    const auto slot = slot_number(argument.substr(0, blank));
    if (!slot || blank == std::string::npos) return Reply::done_if(false);
    state_.satellites.rename(*slot, trimmed(std::string_view(argument).substr(blank)));
    return {};
}

Reply Interpreter::get_satellite_names(const std::string&) {
    std::string text;
    for (int slot = 0; slot < kSatelliteSlots; ++slot) {
        text += slot == 0 ? "" : "\r";
        text += zero_filled(slot, 2) + "\t" + state_.satellites.at(slot).name;
    }
    return Reply::value_of(text);
}

Reply Interpreter::learn_satellite(const std::string& argument) {
    const auto slot = slot_number(argument);
    if (!slot) return Reply::done_if(false);
    const SatelliteSlot& before = state_.satellites.at(*slot);
    const std::string name = before.empty() ? "LEARNED " + zero_filled(*slot, 2) : before.name;
    state_.satellites.put(*slot, learnt_slot(state_.settings, name));
    return {};
}

Reply Interpreter::delete_satellite(const std::string& argument) {
    const auto slot = slot_number(argument);
    if (slot) state_.satellites.clear(*slot);
    return Reply::done_if(slot.has_value());
}

Reply Interpreter::copy_satellites(const std::string& argument) {
    if (!argument.ends_with('?')) return Reply::done_if(false);
    if (argument != kSatelliteArea) return {Reply::Kind::invalid, {}};
    std::string text;
    for (int slot = 0; slot < kSatelliteSlots; ++slot)
        text += slot_block(slot, state_.satellites.at(slot));
    return {Reply::Kind::lines, text};
}

}  // namespace meter
