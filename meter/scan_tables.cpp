// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan_tables.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "carrier_shape.h"
#include "text.h"

namespace meter {

namespace {

/// The entries of one block; what is missing is 0.
struct Block {
    double khz = 0.0;
    double symbols = 0.0;
    ListedTransponder transponder;
};

InnerCode code_of(std::string_view text) {
    if (text == "1/2") return InnerCode::r1_2;
    if (text == "2/3") return InnerCode::r2_3;
    if (text == "5/6") return InnerCode::r5_6;
    if (text == "7/8") return InnerCode::r7_8;
    // What a table leaves open is taken for the most usual one.
    return InnerCode::r3_4;
}

void take_entry(Block& block, const std::string& key, const std::string& value) {
    if (key == "FREQUENCY") block.khz = decimal_number(value).value_or(0.0);
    if (key == "SYMBOL_RATE") block.symbols = decimal_number(value).value_or(0.0);
    if (key == "POLARIZATION" && !value.empty()) block.transponder.polarisation = value.front();
    if (key == "INNER_FEC") block.transponder.code = code_of(value);
    if (key == "DELIVERY_SYSTEM") block.transponder.second_generation = value == "DVBS2";
}

void finish(Block& block, std::vector<ListedTransponder>& into) {
    block.transponder.mhz = block.khz / 1000.0;
    block.transponder.symbol_rate = static_cast<int>(std::lround(block.symbols / 1000.0));
    if (block.khz > 0.0 && block.transponder.symbol_rate > 0) into.push_back(block.transponder);
    block = {};
}

void take_line(std::string_view line, Block& block, std::vector<ListedTransponder>& into) {
    if (line.starts_with('[')) return finish(block, into);
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return;
    take_entry(block, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
}

std::string content_of(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The part of a file's name that says where its satellite stands.
bool position_of_name(const std::string& name, double& east) {
    auto start = name.find_last_not_of("0123456789.EW");
    start = start == std::string::npos ? 0 : start + 1;
    return parse_position(std::string_view(name).substr(start), east);
}

int tenths(const ListedPosition& position) {
    return static_cast<int>(std::lround(position.east * 10.0));
}

}  // namespace

double ListedTransponder::width_mhz() const {
    return symbol_rate / 1000.0 * (1.0 + kRollOff);
}

std::vector<ListedTransponder> transponders_of(std::string_view table) {
    std::vector<ListedTransponder> result;
    Block block;
    while (!table.empty()) {
        const auto end = table.find('\n');
        std::string_view line = table.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        take_line(trimmed(line), block, result);
        table.remove_prefix(end == std::string_view::npos ? table.size() : end + 1);
    }
    finish(block, result);
    return result;
}

bool parse_position(std::string_view text, double& east) {
    constexpr double half_circle = 180.0;
    if (text.size() < 2 || (text.back() != 'E' && text.back() != 'W')) return false;
    const auto degrees = decimal_number(text.substr(0, text.size() - 1));
    if (!degrees || *degrees > half_circle) return false;
    east = text.back() == 'E' ? *degrees : -*degrees;
    return true;
}

ScanTables::ScanTables(std::vector<ListedPosition> positions) {
    std::stable_sort(positions.begin(), positions.end(),
                     [](const auto& a, const auto& b) { return tenths(a) < tenths(b); });
    for (ListedPosition& next : positions) {
        if (positions_.empty() || tenths(positions_.back()) != tenths(next)) {
            positions_.push_back(std::move(next));
            continue;
        }
        ListedPosition& same = positions_.back();
        same.names.insert(same.names.end(), next.names.begin(), next.names.end());
        same.transponders.insert(same.transponders.end(), next.transponders.begin(),
                                 next.transponders.end());
    }
}

ScanTables ScanTables::read(const std::string& directory) {
    std::vector<ListedPosition> positions;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        ListedPosition position;
        const std::string name = entry.path().filename().string();
        if (!position_of_name(name, position.east)) continue;
        position.names = {name};
        position.transponders = transponders_of(content_of(entry.path()));
        if (!position.transponders.empty()) positions.push_back(std::move(position));
    }
    if (positions.empty()) throw std::runtime_error("no scan tables in " + directory);
    // The order of a directory is not the same on every machine.
    std::sort(positions.begin(), positions.end(),
              [](const auto& a, const auto& b) { return a.names < b.names; });
    return ScanTables(std::move(positions));
}

}  // namespace meter
