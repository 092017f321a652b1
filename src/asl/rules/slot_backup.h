// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "satellite_lists.h"

namespace m47::asl {

/// The ending of a file that keeps the meter's slots as S-records.
inline const QString kBackupSuffix = QStringLiteral("s19");

/// Keeps all slots of the meter in one text file of S-records and writes such a file back.
class SlotBackup {
  public:
    SlotBackup(SatelliteLists& lists, link::Link& link, ProgramState& program,
               AslQuestions& questions);

    /// Reads all slots and saves them. A slot that does not arrive whole is left out, and only when
    /// the user agrees.
    void cmdsaveall_Click();

    /// Writes the slots of a file that differ from the meter's, after a preview; saves the present
    /// state beside the file first and compares afterwards.
    void cmdrestoreall_Click();

    /// What the meter's last copy holds, each slot under the name that the list shows.
    SlotTable present_slots() const;

  private:
    bool read_meter();
    bool agree_to_damage(const QList<int>& damaged, const Bilingual& question);
    bool save(const QString& path, const SlotTable& table);
    SlotTable slots_in_file(const QString& path);
    QString name_beside(const QString& path) const;
    void restore(const RestorePlan& plan, const QString& before, link::Work& work);
    void write_slot(int slot, const SlotPlan& plan);
    void report(const RestorePlan& plan, const QString& before);
    void warn(const QString& text);

    SatelliteLists& lists_;
    link::Link& link_;
    ProgramState& program_;
    AslQuestions& questions_;
};

}  // namespace m47::asl
