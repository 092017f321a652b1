// SPDX-License-Identifier: GPL-3.0-or-later
// The list of satellite names and the copy of all slots: what is cut out of it for one slot, and
// what becomes of it when a slot is written over. The input's first byte chooses the slot and
// whether names made of the text are sent and read back as well.
#include "fuzzing.h"
#include "slot_block.h"

namespace {

void check_names(const QString& answer) {
    const QStringList names = m47::asl::slot_names(answer);
    HOLDS(names.size() <= m47::asl::kSlots);
    HOLDS(names.size() <= answer.count(u'\t'));
    for (const QString& name : names) {
        HOLDS(answer.contains(name));
        HOLDS(!name.startsWith(u' ') && !name.endsWith(u' '));
    }
}

void check_cut(const QString& copy, int slot) {
    const QString block = m47::asl::block_in_copy(copy, slot);
    HOLDS(copy.contains(block));
    const auto parsed = m47::asl::SlotBlock::parse(block.mid(1));
    if (parsed) HOLDS(parsed->text() == block.mid(1));
}

void check_patch(const QString& copy, int slot) {
    const m47::asl::SlotBlock block =
        m47::asl::SlotBlock::of("\x01\x02\x03", QStringLiteral("FUZZ 13E"));
    const QString text = m47::asl::slot_header(slot) + u'\r' + block.text();
    const QString patched = m47::asl::patched_copy(copy, text);
    HOLDS(patched.size() == copy.size());
    if (!m47::asl::header_in_copy(copy, slot)) HOLDS(patched == copy);
    const qsizetype at = copy.indexOf(m47::asl::slot_header(slot));
    if (at < 0) return;
    HOLDS(patched.left(at) == copy.left(at));
    HOLDS(patched.mid(at).startsWith(text.left(copy.size() - at)));
    HOLDS(patched.mid(at + text.size()) == copy.mid(at + text.size()));
}

/// Names sent as the meter sends them come back.
void check_inverse(const QString& text) {
    QString answer;
    QStringList names;
    for (int slot = 0; slot < m47::asl::kSlots; ++slot) {
        QString name = text.mid(slot * 10, 10);
        name.remove(u'\t').remove(u'\r');
        while (name.startsWith(u' ')) name.remove(0, 1);
        while (name.endsWith(u' ') || name.endsWith(u'\0')) name.chop(1);
        names += name;
        answer += QString::number(slot) + u'\t' + name +
                  (slot == m47::asl::kSlots - 1 ? QString() : QStringLiteral("\r"));
    }
    HOLDS(m47::asl::slot_names(answer) == names);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const unsigned choice = input.byte();
    const int slot = static_cast<int>(choice % m47::asl::kSlots);
    const QString text = input.text();
    check_names(text);
    check_cut(text, slot);
    check_patch(text, slot);
    if (choice >= 0xE0) check_inverse(text);
    return 0;
}
