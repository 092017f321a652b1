// SPDX-License-Identifier: GPL-3.0-or-later
#include "page_store.h"

#include <algorithm>

#include "measurement_line.h"

namespace m47::measurement {
namespace {

constexpr char kTab = '\t';
constexpr std::size_t kTabs = PageStore::kColumns - 1;

char stored(QChar character) {
    const char16_t code = character.unicode();
    if (code == u'\t' || code == u'\r' || code == u'\n') return ' ';
    return code > 0xFF ? '?' : static_cast<char>(code);
}

/// Where field number `field` of `line` begins; `line` has that many TABs at least.
std::size_t field_start(std::string_view line, std::size_t field) {
    std::size_t start = 0;
    for (; field > 0; --field) start = line.find(kTab, start) + 1;
    return start;
}

}  // namespace

int PageStore::rows() const {
    if (chunks_.empty()) return 0;
    return static_cast<int>((chunks_.size() - 1) * kChunkRows + chunks_.back()->rows);
}

void PageStore::append(const QStringList& cells) {
    Chunk& chunk = open_chunk();
    for (qsizetype column = 0; column < kColumns; ++column) {
        if (column > 0) chunk.bytes.push_back(kTab);
        if (column < cells.size())
            for (const QChar character : cells[column]) chunk.bytes.push_back(stored(character));
    }
    end_row(chunk);
}

void PageStore::append(const QStringList& cells, const Measurement& measurement) {
    append(cells);
    Chunk& chunk = *chunks_.back();
    chunk.records.resize(chunk.rows);
    chunk.records.back() = records_.pack(measurement);
    if (chunk.rows == kChunkRows) chunk.records.shrink_to_fit();
}

Measurement PageStore::measurement(int row, std::optional<LevelUnit> unit) const {
    const MeasurementRecord* record = record_of(row);
    Measurement made = record ? records_.unpack(*record) : measurement_of_line(line(row));
    if (record) made.instant = instant_of_line(line(row));
    if (!made.unit) made.unit = unit;
    return made;
}

const MeasurementRecord* PageStore::record_of(int row) const {
    const auto number = static_cast<std::size_t>(row);
    const std::vector<MeasurementRecord>& records = chunks_[number / kChunkRows]->records;
    const std::size_t place = number % kChunkRows;
    return place < records.size() && records[place].known ? &records[place] : nullptr;
}

bool PageStore::append_line(std::string_view line) {
    const auto tabs = static_cast<std::size_t>(std::count(line.begin(), line.end(), kTab));
    Chunk& chunk = open_chunk();
    if (tabs > kTabs) {
        chunk.bytes.append(line.substr(0, field_start(line, kColumns) - 1));
    } else {
        chunk.bytes.append(line);
        chunk.bytes.append(kTabs - tabs, kTab);
    }
    end_row(chunk);
    return tabs <= kTabs;
}

std::string_view PageStore::line(int row) const {
    Q_ASSERT(row >= 0 && row < rows());
    const auto number = static_cast<std::size_t>(row);
    const Chunk& chunk = *chunks_[number / kChunkRows];
    const std::size_t place = number % kChunkRows;
    const std::size_t start = place == 0 ? 0 : chunk.ends[place - 1];
    return std::string_view(chunk.bytes).substr(start, chunk.ends[place] - start);
}

std::string_view PageStore::cell(int row, int column) const {
    Q_ASSERT(column >= 0 && column < kColumns);
    const std::string_view text = line(row);
    const std::size_t start = field_start(text, static_cast<std::size_t>(column));
    return text.substr(start, text.find(kTab, start) - start);
}

void PageStore::clear() {
    *this = PageStore();
}

std::size_t PageStore::memory_bytes() const {
    std::size_t sum = chunks_.capacity() * sizeof(chunks_[0]);
    for (const auto& chunk : chunks_)
        sum += sizeof(Chunk) + chunk->bytes.capacity() +
               chunk->records.capacity() * sizeof(MeasurementRecord);
    return sum;
}

PageStore::Chunk& PageStore::open_chunk() {
    if (chunks_.empty() || chunks_.back()->rows == kChunkRows)
        chunks_.push_back(std::make_unique<Chunk>());
    return *chunks_.back();
}

void PageStore::end_row(Chunk& chunk) {
    chunk.ends[chunk.rows++] = chunk.bytes.size();
    if (chunk.rows == kChunkRows) chunk.bytes.shrink_to_fit();
}

}  // namespace m47::measurement
