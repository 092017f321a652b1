// SPDX-License-Identifier: GPL-3.0-or-later
#include "slot_block.h"

#include <QStringList>
#include <algorithm>

#include "blanks.h"
#include "srecord.h"

namespace m47::asl {
namespace {

constexpr qsizetype kRecordBytes = 16;

/// A name without the blanks or NULs that fill it up.
QString without_filling(const QString& name) {
    qsizetype length = name.size();
    while (length > 0 && (name[length - 1] == u'\0' || name[length - 1] == u' ')) --length;
    return without_blanks(name.left(length));
}

/// A data record: the bytes of the slot from `address` on.
QString data_record(const QByteArray& bytes, qsizetype address) {
    const qsizetype length = std::min(kRecordBytes, bytes.size() - address);
    QByteArray record;
    record += static_cast<char>(length + 3);
    record += static_cast<char>(address >> 8);
    record += static_cast<char>(address & 0xFF);
    record += bytes.mid(address, length);
    unsigned sum = 0;
    for (const char byte : record) sum += static_cast<unsigned char>(byte);
    record += static_cast<char>(~sum & 0xFF);
    return QStringLiteral("S1") + QString::fromLatin1(record.toHex().toUpper());
}

/// The data of a record line: what stands between type, count and address and the checksum.
QByteArray record_bytes(const QString& line) {
    constexpr qsizetype kTypeCountAddress = 8;
    constexpr qsizetype kChecksum = 2;
    const qsizetype digits = line.size() - kTypeCountAddress - kChecksum;
    return QByteArray::fromHex(line.mid(kTypeCountAddress, digits).toLatin1());
}

QStringList lines_of(const QString& text) {
    return QString(text).replace(u'\n', u'\r').split(u'\r', Qt::SkipEmptyParts);
}

int slot_of_header(const QString& line) {
    static const QStringList kHeaders = [] {
        QStringList headers;
        for (int slot = 0; slot < kSlots; ++slot) headers += slot_header(slot);
        return headers;
    }();
    return static_cast<int>(kHeaders.indexOf(line));
}

}  // namespace

SlotBlock::SlotBlock() : bytes_(of({}, kNoSatellite).bytes_) {}

SlotBlock SlotBlock::of(const QByteArray& tuning, const QString& name) {
    return SlotBlock(tuning.leftJustified(kTuningBytes, '\0', true) +
                     name.toLatin1().leftJustified(kNameLength, ' ', true));
}

std::optional<SlotBlock> SlotBlock::parse(const QString& text) {
    const QStringList lines = text.split(u'\r');
    constexpr qsizetype kLines = 5;
    if (lines.size() != kLines) return std::nullopt;
    QByteArray bytes;
    for (const QString& line : lines.first(kLines - 1)) bytes += record_bytes(line);
    if (bytes.size() != kBytes) return std::nullopt;
    // One form and no other: what is built from the bytes must be the very text, so that counts,
    // addresses and checksums need no second set of rules.
    const SlotBlock block(bytes);
    if (block.text() != text) return std::nullopt;
    return block;
}

QString SlotBlock::text() const {
    QStringList lines;
    for (qsizetype address = 0; address <= kTuningBytes; address += kRecordBytes)
        lines += data_record(bytes_, address);
    lines += kSatelliteEnd;
    return lines.join(u'\r');
}

QString SlotBlock::name() const {
    return without_filling(QString::fromLatin1(bytes_.mid(kTuningBytes)));
}

SlotBlock SlotBlock::renamed(const QString& name) const {
    return name == this->name() ? *this : of(tuning(), name);
}

QString slot_header(int slot) {
    return link::srecord_header(slot);
}

SlotTable parse_slots(const QString& copy) {
    const QStringList lines = lines_of(copy);
    constexpr qsizetype kLines = 5;
    SlotTable table;
    std::array<int, kSlots> seen{};
    for (qsizetype at = 0; at < lines.size(); ++at) {
        const int slot = slot_of_header(lines[at]);
        if (slot < 0) continue;
        const auto place = static_cast<std::size_t>(slot);
        table[place] = SlotBlock::parse(lines.mid(at + 1, kLines).join(u'\r'));
        // Two blocks for one slot: nobody can say which one holds.
        if (++seen[place] > 1) table[place].reset();
    }
    return table;
}

QString slots_text(const SlotTable& table, const QString& line_end) {
    QString text;
    for (int slot = 0; slot < kSlots; ++slot) {
        const auto& block = table[static_cast<std::size_t>(slot)];
        if (!block) continue;
        const QString lines = slot_header(slot) + u'\r' + block->text() + u'\r';
        text += QString(lines).replace(QStringLiteral("\r"), line_end);
    }
    return text;
}

QString block_in_copy(const QString& master_copy, int slot) {
    // Positions are counted from 1 and are 0 for what is not there.
    const QString header = slot_header(slot);
    const qsizetype header_at = master_copy.indexOf(header) + 1;
    const qsizetype end_at = master_copy.indexOf(kSatelliteEnd) + 1;
    const qsizetype length = end_at - header.size() + 8;
    if (length <= 0) return {};
    return master_copy.mid(header_at + header.size(), length);
}

bool header_in_copy(const QString& master_copy, int slot) {
    return master_copy.contains(slot_header(slot));
}

QString patched_copy(const QString& master_copy, const QString& block) {
    const QString header = block.left(block.indexOf(u'\r'));
    const qsizetype at = master_copy.indexOf(header);
    if (header.isEmpty() || at < 0) return master_copy;
    const qsizetype length = std::min(block.size(), master_copy.size() - at);
    return QString(master_copy).replace(at, length, block.left(length));
}

QStringList slot_names(const QString& answer) {
    QStringList names;
    QString rest = answer;
    while (names.size() < kSlots && rest.contains(u'\t')) {
        const qsizetype end = rest.indexOf(u'\r');
        const bool last = end < 0 || names.size() == kSlots - 1;
        const QString line = last ? rest : rest.left(end);
        const qsizetype tab = last ? line.lastIndexOf(u'\t') : line.indexOf(u'\t');
        // The place in the list is the slot: a line without a name ends the list.
        if (tab < 0) break;
        names += without_filling(line.mid(tab + 1));
        rest = last ? QString() : rest.mid(end + 1);
    }
    return names;
}

bool fits_the_line(const QString& name) {
    constexpr char16_t kLastLatin1 = 0xFF;
    return std::all_of(name.begin(), name.end(), [](QChar character) {
        return character.isPrint() && character.unicode() <= kLastLatin1;
    });
}

}  // namespace m47::asl
