// SPDX-License-Identifier: GPL-3.0-or-later
// Slot blocks as S-records, one and all of them: whole or not there.
#include "fuzzing.h"
#include "slot_block.h"
#include "srecord.h"

namespace {

void check_block(const QString& text) {
    const auto block = m47::asl::SlotBlock::parse(text);
    if (!block) return;
    HOLDS(block->text() == text);
    HOLDS(block->bytes().size() == m47::asl::SlotBlock::kBytes);
    HOLDS(block->tuning().size() == m47::asl::SlotBlock::kTuningBytes);
    HOLDS(block->renamed(block->name()) == *block);
    // Not a byte less makes a block.
    for (qsizetype cut = 1; cut <= 4; ++cut) HOLDS(!m47::asl::SlotBlock::parse(text.chopped(cut)));
}

/// Any bytes under any name become a text that is read back as the very same block; a changed
/// character makes it none.
void check_inverse(const QByteArray& bytes) {
    const m47::asl::SlotBlock block =
        m47::asl::SlotBlock::of(bytes, QString::fromLatin1(bytes.right(10)));
    const QString text = block.text();
    HOLDS(m47::asl::SlotBlock::parse(text) == block);
    if (bytes.isEmpty()) return;
    QString changed = text;
    const qsizetype at = bytes.size() * 7 % changed.size();
    changed[at] = changed[at] == u'0' ? u'1' : u'0';
    HOLDS(!m47::asl::SlotBlock::parse(changed));
}

void check_table(const QString& copy) {
    const m47::asl::SlotTable table = m47::asl::parse_slots(copy);
    for (const char* end : {"\r", "\n", "\r\n"})
        HOLDS(m47::asl::parse_slots(m47::asl::slots_text(table, QString::fromLatin1(end))) ==
              table);
    for (const auto& block : table)
        if (block) HOLDS(block->bytes().size() == m47::asl::SlotBlock::kBytes);
}

void check_header(const QString& text) {
    const QString body = m47::link::srecord_body(text.left(20));
    HOLDS(body.size() >= 6);
    HOLDS(m47::link::srecord_checksum(body).size() >= 2 ||
          m47::link::srecord_checksum(body) == u"0");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzzing::Input input(data, size);
    const QString text = input.text();
    check_block(text);
    check_inverse(input.byte_array());
    check_table(text);
    check_header(text);
    return 0;
}
