// SPDX-License-Identifier: GPL-3.0-or-later
#include "slot_backup.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "asl_texts.h"
#include "fault.h"
#include "numbers.h"
#include "save_file.h"

namespace m47::asl {
namespace {

/// Far more than a file of 20 slots; whatever is longer is none.
constexpr qint64 kLongestFile = qint64{1024} * 1024;
const QString kLineEnd = QStringLiteral("\r\n");

constexpr Bilingual kNotSaved{"no slot was saved", "nessuna posizione è stata salvata"};
constexpr Bilingual kAllSaved{"slots saved in %2: %1", "posizioni salvate in %2: %1"};
constexpr Bilingual kReadingAll{"Reading all satellite slots", "Lettura di tutte le posizioni"};
constexpr Bilingual kRestoring{"Restoring slot %1 of %2", "Ripristino della posizione %1 di %2"};
constexpr Bilingual kNoneWritten{"the restore had written no slot",
                                 "il ripristino non aveva scritto nessuna posizione"};
constexpr Bilingual kWritten{
    "slots written by the restore: %1 of %2, what was there before is in %3",
    "posizioni scritte dal ripristino: %1 su %2, lo stato precedente è in %3"};

QList<int> missing_slots(const SlotTable& table) {
    QList<int> missing;
    for (int slot = 0; slot < kSlots; ++slot)
        if (!table[static_cast<std::size_t>(slot)]) missing += slot;
    return missing;
}

QString slot_list(const QList<int>& slots_named) {
    QStringList numbers;
    for (const int slot : slots_named) numbers += link::format_number(slot, "00");
    return numbers.join(QStringLiteral(", "));
}

}  // namespace

SlotBackup::SlotBackup(SatelliteLists& lists, link::Link& link, ProgramState& program,
                       AslQuestions& questions)
    : lists_(lists), link_(link), program_(program), questions_(questions) {}

void SlotBackup::cmdsaveall_Click() {
    const QString path = questions_.file_to_save();
    if (path.isEmpty()) return;
    link::Work work(link_, kNotSaved);
    work.doing(kReadingAll);
    if (!read_meter()) return;
    const SlotTable table = present_slots();
    const QList<int> damaged = missing_slots(table);
    if (!agree_to_damage(damaged, asl_text::kSaveWithoutDamaged) || !save(path, table)) return;
    work.at(kAllSaved, {QString::number(kSlots - damaged.size()), path});
    program_.saved(path);
    questions_.inform(
        QString::fromLatin1(asl_text::kTitle),
        program_.texts.pick(asl_text::kSaved)
            .arg(QString::number(kSlots - damaged.size()), QDir::toNativeSeparators(path)));
}

void SlotBackup::cmdrestoreall_Click() {
    const QString path = questions_.file_to_restore();
    if (path.isEmpty()) return;
    const SlotTable file = slots_in_file(path);
    if (missing_slots(file).size() == kSlots) {
        warn(program_.texts.pick(asl_text::kNoSlotsInFile).arg(QDir::toNativeSeparators(path)));
        return;
    }
    link::Work work(link_, kNoneWritten);
    work.doing(kReadingAll);
    if (!read_meter()) return;
    const RestorePlan plan = restore_plan(present_slots(), file);
    if (!questions_.preview(plan) || !changes_any(plan)) return;
    if (!agree_to_damage(overwritten_unread(plan), asl_text::kOverwriteUnread)) return;
    const QString before = name_beside(path);
    if (!save(before, present_slots())) return;
    restore(plan, before, work);
    report(plan, before);
}

SlotTable SlotBackup::present_slots() const {
    SlotTable table = parse_slots(program_.master_copy);
    const QStringList& names = lists_.panel.listastr;
    for (int slot = 0; slot < names.size(); ++slot) {
        auto& block = table[static_cast<std::size_t>(slot)];
        if (block) block = block->renamed(names[slot]);
    }
    return table;
}

/// False, with a message, when the meter tells nothing of its slots.
bool SlotBackup::read_meter() {
    lists_.visualizza_listastr();
    const bool read = lists_.panel.listastr.size() == kSlots &&
                      missing_slots(parse_slots(program_.master_copy)).size() < kSlots;
    if (!read) warn(program_.texts.pick(asl_text::kNothingRead));
    return read;
}

bool SlotBackup::agree_to_damage(const QList<int>& damaged, const Bilingual& question) {
    return damaged.isEmpty() ||
           questions_.confirm(QString::fromLatin1(asl_text::kTitle),
                              program_.texts.pick(question).arg(slot_list(damaged)));
}

/// Whole or not at all; false, with a message, when it cannot be written.
bool SlotBackup::save(const QString& path, const SlotTable& table) {
    const QString reason = write_whole_file(path, slots_text(table, kLineEnd).toLatin1());
    if (reason.isEmpty()) return true;
    warn(program_.texts.pick(asl_text::kCannotWrite).arg(QDir::toNativeSeparators(path), reason));
    return false;
}

SlotTable SlotBackup::slots_in_file(const QString& path) {
    const platform::FileReading reading = platform::read_plain_file(path, kLongestFile);
    if (reading.fault != platform::FileFault::none) return {};
    return parse_slots(QString::fromLatin1(reading.bytes));
}

/// A name in the folder of `path` that no file has yet.
QString SlotBackup::name_beside(const QString& path) const {
    const QFileInfo about(path);
    const QString stem =
        about.absolutePath() + u'/' + about.completeBaseName() +
        link_.clock().date_time().toString(QStringLiteral("'-before-'yyyyMMdd-HHmmss"));
    QString name = stem;
    for (int number = 2; QFileInfo::exists(name + u'.' + kBackupSuffix); ++number)
        name = stem + u'-' + QString::number(number);
    return name + u'.' + kBackupSuffix;
}

void SlotBackup::restore(const RestorePlan& plan, const QString& before, link::Work& work) {
    const auto changes = [](const SlotPlan& slot) {
        return slot.fate == SlotFate::emptied || slot.fate == SlotFate::written;
    };
    const auto count = static_cast<int>(std::ranges::count_if(plan, changes));
    const QString all = QString::number(count);
    int written = 0;
    for (int slot = 0; slot < kSlots && link_.port_connected; ++slot) {
        const SlotPlan& one = plan[static_cast<std::size_t>(slot)];
        if (changes(one)) work.doing(kRestoring, {QString::number(written + 1), all});
        work.reached(written, count);
        try {
            write_slot(slot, one);
        } catch (const Interrupted&) {
            // The lists still show what was there before.
            lists_.forget_slots();
            throw;
        }
        if (changes(one) && link_.port_connected)
            work.at(kWritten, {QString::number(++written), all, before});
    }
    lists_.visualizza_listastr();
}

void SlotBackup::write_slot(int slot, const SlotPlan& plan) {
    if (plan.fate == SlotFate::emptied) lists_.empty_slot(slot);
    if (plan.fate != SlotFate::written) return;
    // A name that is no satellite's came with the block; the meter takes none of these by command,
    // nor one with a control character, which would be a command of its own.
    const QString name = plan.file->name();
    if (!name.isEmpty() && name != kNoSatellite && fits_the_line(name))
        lists_.send_named(slot, plan.file->text(), name);
    else
        lists_.send_slot(slot, plan.file->text());
}

void SlotBackup::report(const RestorePlan& plan, const QString& before) {
    const QString kept = QDir::toNativeSeparators(before);
    const SlotTable now = present_slots();
    const QList<int> differing = slots_that_differ(plan, now);
    if (missing_slots(now).size() == kSlots)
        warn(program_.texts.pick(asl_text::kNotReadBack).arg(kept));
    else if (!differing.isEmpty())
        warn(program_.texts.pick(asl_text::kDifferent).arg(slot_list(differing), kept));
    else
        questions_.inform(QString::fromLatin1(asl_text::kTitle),
                          program_.texts.pick(asl_text::kRestored).arg(kept));
}

void SlotBackup::warn(const QString& text) {
    questions_.warn(QString::fromLatin1(asl_text::kTitle), text);
}

}  // namespace m47::asl
