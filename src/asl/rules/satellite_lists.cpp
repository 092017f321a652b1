// SPDX-License-Identifier: GPL-3.0-or-later
#include "satellite_lists.h"

#include <QDir>
#include <algorithm>
#include <optional>

#include "asl_texts.h"
#include "blanks.h"
#include "commands.h"
#include "database_transaction.h"
#include "engine.h"
#include "fault.h"
#include "fields.h"
#include "kept_copy.h"
#include "numbers.h"
#include "work.h"

namespace m47::asl {
namespace {

constexpr int kNoPlace = -1;

constexpr Bilingual kOnlyRead{"the satellites were being read, nothing was changed",
                              "lettura dei satelliti in corso, nulla è stato modificato"};
constexpr Bilingual kSlotNotSent{"slot %1 was not sent, it is as before",
                                 "la posizione %1 non è stata inviata, è come prima"};
constexpr Bilingual kSelectSlot{
    "Nothing was done: select a satellite of the M47 in its list first.",
    "Nulla è stato fatto: selezionare prima un satellite dell'M47 "
    "nella sua lista."};
constexpr Bilingual kSelectPc{"Nothing was done: select a satellite of the PC in its list first.",
                              "Nulla è stato fatto: selezionare prima un satellite del PC nella "
                              "sua lista."};
constexpr Bilingual kEmptySlot{
    "Nothing was done: this slot of the M47 is empty. Select one with a satellite.",
    "Nulla è stato fatto: questa posizione dell'M47 è vuota. Selezionarne una con un satellite."};
constexpr Bilingual kEmptyEntry{
    "Nothing was done: this entry of the PC names no satellite. Select another one.",
    "Nulla è stato fatto: questa voce del PC non nomina alcun satellite. Selezionarne un'altra."};
constexpr Bilingual kLastOfPc{
    "Nothing was deleted: the last satellite of the PC stays. Add another one first.",
    "Nulla è stato cancellato: l'ultimo satellite del PC resta. Aggiungerne prima un altro."};
constexpr Bilingual kNoFreeSlot{
    "Nothing was sent: no slot of the M47 is empty. Delete a satellite there first.",
    "Nulla è stato inviato: nessuna posizione dell'M47 è vuota. Cancellarvi prima un satellite."};
constexpr Bilingual kNoSlotsRead{
    "Nothing was sent: the slots of the M47 have not been read. Connect it, then open this screen "
    "again.",
    "Nulla è stato inviato: le posizioni dell'M47 non sono state lette. Collegarlo e riaprire "
    "questa schermata."};
constexpr Bilingual kReading{"Reading the satellites of the meter",
                             "Lettura dei satelliti dello strumento"};
constexpr Bilingual kWriting{"Writing satellite slot %1", "Scrittura della posizione %1"};
constexpr Bilingual kSlotSent{"slot %1 was sent whole",
                              "la posizione %1 è stata inviata per intero"};

QString entry(const QStringList& list, int place) {
    return place >= 0 && place < list.size() ? list[place] : QString();
}

bool is_place(const QStringList& list, int place) {
    return place >= 0 && place < list.size();
}

/// The meter takes the slot in one digit when it is programmed or emptied, in two when it learns.
QString programmed_slot(int slot) {
    return link::format_number(slot, " 0");
}
QString learnt_slot(int slot) {
    return link::format_number(slot, " 00");
}

}  // namespace

SatelliteLists::SatelliteLists(link::Link& link, ProgramState& program, db::Recordset& asl,
                               AslQuestions& questions)
    : link_(link), program_(program), asl_(asl), questions_(questions) {}

void SatelliteLists::Form_Load() {
    visualizza_listastr();
    visualizza_listadb();
}

void SatelliteLists::visualizza_listastr(Modo modo, const QString& quale) {
    link::Work work(link_, kOnlyRead);
    work.doing(kReading);
    try {
        read_slots(modo, quale);
    } catch (const Interrupted&) {
        // Half a look leaves nothing that could be taken for what the meter has now.
        forget_slots();
        throw;
    }
}

void SatelliteLists::read_slots(Modo modo, const QString& quale) {
    const std::optional<QString> names = link_.ask(link::command::query(link::command::kSlotName));
    panel.listastr = names ? slot_names(*names) : QStringList();
    panel.listastr_place = kNoPlace;
    if (modo == Modo::patch) {
        program_.master_copy = patched_copy(program_.master_copy, quale);
        return;
    }
    // An answer to something else must not become slots.
    program_.master_copy = link_.ask(link::command::kCopySlots).value_or(QString());
}

void SatelliteLists::forget_slots() {
    panel.listastr.clear();
    panel.listastr_place = kNoPlace;
    program_.master_copy.clear();
}

void SatelliteLists::visualizza_listadb() {
    panel.listadb.clear();
    panel.listadb_place = kNoPlace;
    records_.clear();
    data_.clear();
    try {
        if (asl_.empty()) return;
        asl_.move_last();
        for (asl_.move_first(); !asl_.end_of_set(); asl_.move_next()) {
            panel.listadb += asl_.text(db::field::kNome);
            records_.push_back(asl_.bookmark());
            data_ += asl_.text(db::field::kDati);
        }
    } catch (const db::EngineFault&) {
        // The list shows what could be read; that there is more must not go unsaid.
        throw;
    } catch (const Fault&) {
        // A table without rows yields a list without entries.
    }
}

void SatelliteLists::refresh_listadb() {
    const std::optional<db::Bookmark> selected = is_place(panel.listadb, panel.listadb_place)
                                                     ? std::optional(record_at(panel.listadb_place))
                                                     : std::nullopt;
    asl_.requery();
    visualizza_listadb();
    const auto found = std::ranges::find(records_, selected);
    if (found != records_.end()) panel.listadb_place = static_cast<int>(found - records_.begin());
}

db::Bookmark SatelliteLists::record_at(int place) const {
    return records_.at(static_cast<std::size_t>(place));
}

void SatelliteLists::cmdlearn_Click() {
    const int slot = panel.listastr_place;
    if (!is_place(panel.listastr, slot)) return program_.costs.tell_each(kSelectSlot);
    if (!confirm(asl_text::kTitle, kLearnSatellite, QString())) return;
    const QString typed =
        questions_.input(QString::fromLatin1(asl_text::kNameTitle),
                         program_.texts.message(kSatelliteName), panel.listastr[slot]);
    const QString name = without_blanks(typed.left(SlotBlock::kNameLength));
    if (name == kNoSatellite || !fits_the_line(name))
        questions_.warn(QString::fromLatin1(asl_text::kTitle),
                        program_.texts.message(kInvalidSatelliteName));
    else if (!name.isEmpty())
        learn(slot, name);
    // Whatever came of it, the meter goes back to measuring.
    link_.send(link::command::kMeasure);
}

void SatelliteLists::learn(int slot, const QString& name) {
    link::Work work = begin_slot(slot);
    work.doing(kWriting, {link::format_number(slot, "00")});
    {
        const link::Undivided whole(link_);
        link_.send(link::command::kMeasure);
        link_.send(link::command::kLearnSlot + learnt_slot(slot));
        link_.send(link::command::kSlotName + learnt_slot(slot) + u' ' + name);
    }
    tell_sent(work, slot);
    visualizza_listastr();
}

void SatelliteLists::cmdsave_Click() {
    const int place = panel.listadb_place;
    if (!is_place(panel.listadb, place)) return program_.costs.tell_each(kSelectPc);
    if (selected_pc_name() == kNoSatellite) return program_.costs.tell_each(kEmptyEntry);
    asl_.go_to(record_at(place));
    if (!can_be_sent()) return;
    const int slot = slot_to_program(selected_pc_name());
    if (slot < 0) return;
    panel.listastr[slot] = panel.listadb[place];
    link::Work work = begin_slot(slot);
    work.doing(kWriting, {link::format_number(slot, "00")});
    const QString block =
        send_named(slot, asl_.text(db::field::kDati), asl_.text(db::field::kNome));
    tell_sent(work, slot);
    visualizza_listastr(Modo::patch, block);
}

/// False, with a message, where the current record would reach the meter as something else.
bool SatelliteLists::can_be_sent() {
    const bool name_fits = fits_the_line(asl_.text(db::field::kNome));
    const bool has_data = !without_blanks(asl_.text(db::field::kDati)).isEmpty();
    if (!name_fits)
        questions_.warn(QString::fromLatin1(asl_text::kTitle),
                        program_.texts.message(kInvalidSatelliteName));
    else if (!has_data)
        questions_.warn(QString::fromLatin1(asl_text::kTitle),
                        program_.texts.pick(asl_text::kNoData));
    return name_fits && has_data;
}

int SatelliteLists::slot_to_program(const QString& name) {
    for (int slot = 0; slot < panel.listastr.size(); ++slot) {
        if (without_blanks(panel.listastr[slot]) != name) continue;
        const QString rest = u' ' + name;
        return confirm(asl_text::kTitle, kSatelliteExistsReprogram, rest) ? slot : kNoPlace;
    }
    const auto free = static_cast<int>(panel.listastr.indexOf(kNoSatellite));
    if (free < 0) program_.costs.tell_each(panel.listastr.isEmpty() ? kNoSlotsRead : kNoFreeSlot);
    return free;
}

void SatelliteLists::cmdaddindb_Click() {
    const int slot = panel.listastr_place;
    const QString name = selected_slot_name();
    if (!is_place(panel.listastr, slot)) return program_.costs.tell_each(kSelectSlot);
    if (name == kNoSatellite) return program_.costs.tell_each(kEmptySlot);
    // Others may have stored it meanwhile: it is not to come in twice unasked.
    asl_.requery();
    const bool known = asl_.find_first(db::field::kNome, name);
    if (known && !confirm(asl_text::kTitle, kSatelliteExistsRestore, u' ' + name)) return;
    const QString block = block_in_copy(program_.master_copy, slot);
    if (!header_in_copy(program_.master_copy, slot) || !SlotBlock::parse(block)) {
        questions_.warn(QString::fromLatin1(asl_text::kTitle),
                        program_.texts.pick(asl_text::kIncompleteCopy));
        return;
    }
    // What is the same already is no loss, whoever has stored it.
    unless_changed({.name = name, .own = block},
                   [&](bool there) { write_satellite(there, name, block); });
    visualizza_listadb();
}

/// The data of the satellite `name`, the current record, as they were when the list was made;
/// nothing where it was not in it.
std::optional<QString> SatelliteLists::seen_data() const {
    const auto found = std::ranges::find(records_, asl_.bookmark());
    if (found == records_.end()) return std::nullopt;
    return data_.at(found - records_.begin());
}

/// Does `body` in one transaction with the look at the satellite that `change` names, which is the
/// current record then where it is `known`. Where another program has stored it since it was shown,
/// the user is asked first.
void SatelliteLists::unless_changed(ChangedSatellite change,
                                    const std::function<void(bool known)>& body) {
    std::optional<QString> seen;
    for (bool asked = false;; asked = true) {
        {
            db::DatabaseTransaction transaction(asl_.database());
            asl_.requery();
            const bool known = asl_.find_first(db::field::kNome, change.name);
            change.stored = known ? asl_.text(db::field::kDati) : QString();
            if (!asked && known) seen = seen_data();
            if (!known || seen == change.stored ||
                (!change.deletes && change.own == change.stored)) {
                body(known);
                transaction.commit();
                return;
            }
        }
        if (change.deletes) change.own = seen.value_or(QString());
        if (!questions_.overwrite(change)) return;
        seen = change.stored;
    }
}

void SatelliteLists::write_satellite(bool known, const QString& name, const QString& block) {
    if (known) {
        asl_.edit();
    } else {
        if (!asl_.empty()) asl_.move_last();
        asl_.add_new();
    }
    asl_.set(db::field::kNome, name);
    asl_.set(db::field::kDati, block);
    asl_.update();
}

void SatelliteLists::cmddelpc_Click() {
    const QString name = entry(panel.listadb, panel.listadb_place);
    if (!is_place(panel.listadb, panel.listadb_place)) return program_.costs.tell_each(kSelectPc);
    if (selected_pc_name() == kNoSatellite) return program_.costs.tell_each(kEmptyEntry);
    // The last satellite of the PC stays, as the file holds them now.
    asl_.requery();
    if (asl_.count() <= 1) return program_.costs.tell_each(kLastOfPc);
    if (!confirm(asl_text::kDeleteTitle, kDeleteSatellite, name)) return;
    unless_changed({.name = name, .deletes = true}, [&](bool known) {
        if (known && asl_.count() > 1) asl_.remove();
    });
    asl_.requery();
    visualizza_listadb();
}

void SatelliteLists::cmddelstr_Click() {
    const int slot = panel.listastr_place;
    if (!is_place(panel.listastr, slot)) return program_.costs.tell_each(kSelectSlot);
    if (selected_slot_name() == kNoSatellite) return program_.costs.tell_each(kEmptySlot);
    if (!may_erase(slot)) return;
    link::Work work = begin_slot(slot);
    work.doing(kWriting, {link::format_number(slot, "00")});
    empty_slot(slot);
    tell_sent(work, slot);
    visualizza_listastr();
}

bool SatelliteLists::may_erase(int slot) {
    if (!program_.corrected.keep_copy || !link_.can_send()) return true;
    const QString name = panel.listastr[slot];
    const QString kept = keep_slots(slot);
    // Another name than the user saw is another satellite.
    if (!link_.port_connected) return false;
    if (entry(panel.listastr, slot) != name) {
        questions_.warn(
            QString::fromLatin1(asl_text::kTitle),
            program_.texts.pick(asl_text::kOtherSatellite).arg(link::format_number(slot, "00")));
        return false;
    }
    panel.listastr_place = slot;
    return questions_.erase(QString::fromLatin1(asl_text::kDeleteTitle),
                            program_.texts.message(kDeleteSatellite) + name,
                            kept.isEmpty() ? program_.texts.pick(asl_text::kSlotNotKept)
                                           : program_.texts.pick(asl_text::kSlotsKept).arg(kept));
}

/// Reads all slots and files them: the path, empty where `slot` did not come whole.
QString SatelliteLists::keep_slots(int slot) {
    visualizza_listastr();
    const SlotTable table = parse_slots(program_.master_copy);
    if (!table[static_cast<std::size_t>(slot)]) return {};
    const QString text = slots_text(table, QStringLiteral("\r\n"));
    return QDir::toNativeSeparators(
        keep_copy(program_.base_dir, kSlotCopy, text.toLatin1(), link_.clock().date_time()));
}

link::Work SatelliteLists::begin_slot(int slot) {
    return link::Work(link_, kSlotNotSent, {link::format_number(slot, "00")});
}

void SatelliteLists::tell_sent(link::Work& work, int slot) const {
    if (link_.port_connected) work.at(kSlotSent, {link::format_number(slot, "00")});
}

QString SatelliteLists::send_slot(int slot, const QString& block) {
    const QString text = link_.make_srecord(slot) + u'\r' + block;
    link_.send_block(text);
    return text;
}

QString SatelliteLists::send_named(int slot, const QString& block, const QString& name) {
    const link::Undivided whole(link_);
    const QString text = send_slot(slot, block);
    link_.send(link::command::kSlotName + programmed_slot(slot) + u' ' + name);
    return text;
}

void SatelliteLists::empty_slot(int slot) {
    const link::Undivided whole(link_);
    link_.send(link::command::kDeleteSlot + programmed_slot(slot));
    send_slot(slot, SlotBlock().text());
}

QStringList SatelliteLists::stored_blocks() {
    QStringList blocks;
    for (const db::Bookmark record : records_) {
        asl_.go_to(record);
        blocks += asl_.text(db::field::kDati);
    }
    return blocks;
}

QString SatelliteLists::selected_slot_name() const {
    return without_blanks(entry(panel.listastr, panel.listastr_place));
}

QString SatelliteLists::selected_pc_name() const {
    return without_blanks(entry(panel.listadb, panel.listadb_place));
}

bool SatelliteLists::confirm(const char* title, int message, const QString& rest) {
    return questions_.confirm(QString::fromLatin1(title), program_.texts.message(message) + rest);
}

}  // namespace m47::asl
