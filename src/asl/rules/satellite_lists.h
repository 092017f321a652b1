// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "asl_questions.h"
#include "link.h"
#include "program_state.h"
#include "recordset.h"
#include "slot_block.h"
#include "work.h"

namespace m47::asl {

/// What the two lists of the satellite screen show. A place is counted from 0, -1 for none.
struct AslPanel {
    QStringList listadb;
    int listadb_place = -1;
    QStringList listastr;
    int listastr_place = -1;
};

/// The satellites kept on the PC and the slots of the meter, and what moves between them. Replies
/// are not examined: where the link is lost, the status line says so.
class SatelliteLists {
  public:
    SatelliteLists(link::Link& link, ProgramState& program, db::Recordset& asl,
                   AslQuestions& questions);

    AslPanel panel;

    /// Fills both lists.
    void Form_Load();

    /// What follows the names in visualizza_listastr: the copy of all slots is asked for, or one
    /// block that was just programmed is put into the copy that is there.
    enum class Modo { full = 0, patch = 1 };

    /// Asks the meter for the names of its slots and brings `master_copy` up to date; `quale` is
    /// the block just sent, its header line included.
    void visualizza_listastr(Modo modo = Modo::full, const QString& quale = {});
    /// The slots are those of a meter that is gone: none of them is shown or kept any more.
    void forget_slots();
    /// Reads the PC's satellites anew. Where the database cannot be read, the list shows what came
    /// and an EngineFault tells why.
    void visualizza_listadb();

    /// The same where others have changed them; the selected one stays selected where it is still
    /// there.
    void refresh_listadb();

    /// Copies the selected slot to the PC.
    void cmdaddindb_Click();
    /// Programs the selected satellite of the PC into the meter.
    void cmdsave_Click();
    /// Deletes the selected satellite from the PC.
    void cmddelpc_Click();
    /// Empties the selected slot; by the user's choice once all slots are filed and he agrees.
    void cmddelstr_Click();
    /// Lets the meter learn what it is tuned to into the selected slot.
    void cmdlearn_Click();

    /// Sends `block` into `slot`. Returns the text that was sent, header included.
    QString send_slot(int slot, const QString& block);
    /// The same, then gives the slot its name.
    QString send_named(int slot, const QString& block, const QString& name);
    /// Deletes the satellite of `slot` and overwrites it with the empty slot.
    void empty_slot(int slot);

    /// The data of the PC's satellites in the order of `panel.listadb`.
    QStringList stored_blocks();

  private:
    QString selected_slot_name() const;
    QString selected_pc_name() const;
    db::Bookmark record_at(int place) const;
    bool can_be_sent();
    bool may_erase(int slot);
    QString keep_slots(int slot);
    std::optional<QString> seen_data() const;
    void unless_changed(ChangedSatellite change, const std::function<void(bool known)>& body);
    void write_satellite(bool known, const QString& name, const QString& block);
    int slot_to_program(const QString& name);
    void learn(int slot, const QString& name);
    void read_slots(Modo modo, const QString& quale);
    link::Work begin_slot(int slot);
    void tell_sent(link::Work& work, int slot) const;
    bool confirm(const char* title, int message, const QString& rest);

    link::Link& link_;
    ProgramState& program_;
    db::Recordset& asl_;
    AslQuestions& questions_;
    /// The records behind the entries of `panel.listadb`.
    std::vector<db::Bookmark> records_;
    /// The data of those records as they were read.
    QStringList data_;
};

}  // namespace m47::asl
