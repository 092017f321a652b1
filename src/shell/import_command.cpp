// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_command.h"

#include <QFileDialog>
#include <algorithm>
#include <cstdio>

#include "clash_dialog.h"
#include "end_signals.h"
#include "end_told.h"
#include "fault.h"
#include "fields.h"
#include "file_question.h"
#include "import_apply.h"
#include "import_report.h"
#include "message_box.h"
#include "old_reader.h"
#include "report_dialog.h"
#include "say_on_stderr.h"
#include "unattended.h"
#include "work.h"

namespace m47::shell {
namespace {

constexpr Bilingual kImportTitle{"Import old database", "Importa vecchio database"};
constexpr Bilingual kFileKinds{"Old databases (*.mdb *.MDB);;All files (*)",
                               "Vecchi database (*.mdb *.MDB);;Tutti i file (*)"};

constexpr Bilingual kNothingImported{"nothing had been imported", "non era stato importato nulla"};
constexpr Bilingual kImported{"imported, each whole: plans %1, satellites %2",
                              "importati, ognuno intero: piani %1, satelliti %2"};

/// How many of `items` have come, under whatever name.
template <class Items>
int arrived(const Items& items) {
    const auto came = [](const olddb::ImportItem& item) {
        return item.arrival != olddb::Arrival::open && item.arrival != olddb::Arrival::kept;
    };
    return static_cast<int>(std::ranges::count_if(items, came));
}

QStringList arrivals(const olddb::ImportPlan& plan) {
    return {QString::number(arrived(plan.plans)), QString::number(arrived(plan.satellites))};
}

/// Reads the shared sets anew; the plan that the screens step on from stays the same.
void refresh_sets(db::Database& database) {
    db::Recordset& plans = database.gruppo();
    const bool on_plan = !plans.begin_of_set() && !plans.end_of_set();
    const QString plan = on_plan ? plans.text(db::field::kNome) : QString();
    for (db::Recordset* set :
         {&plans, &database.programmi(), &database.configurazione(), &database.asl()})
        set->requery();
    if (on_plan) plans.find_first(db::field::kNome, plan);
}

bool anything_clashes(const olddb::ImportPlan& plan) {
    const auto clashes = [](const olddb::ImportItem& item) { return item.clashes; };
    return std::ranges::any_of(plan.plans, clashes) ||
           std::ranges::any_of(plan.satellites, clashes);
}

}  // namespace

ImportCommand::ImportCommand(db::Database& database, link::Link& link, const ProgramState& program,
                             QWidget& window)
    : database_(database), link_(link), program_(program), texts_(program.texts), window_(window) {}

void ImportCommand::cmdimportdb_Click() {
    QFileDialog dialog(&window_, texts_.pick(kImportTitle), QString(), texts_.pick(kFileKinds));
    dialog.setFileMode(QFileDialog::ExistingFile);
    const QString path = ask_for_file(dialog, program_, FilePurpose::old_database);
    if (!path.isEmpty()) import_file(path);
}

void ImportCommand::import_file(const QString& path) {
    link::Work work(link_, kNothingImported);
    olddb::OldFileError error;
    const auto old = olddb::read_old_database(path, error, [this] { pump(); });
    if (!old) {
        show_message_box(&window_, QMessageBox::Critical, texts_.pick(kImportTitle),
                         olddb::old_file_error_text(error, texts_));
        return;
    }
    olddb::ImportPlan plan = olddb::import_plan_of(*old);
    olddb::mark_clashes(plan, database_);
    if (anything_clashes(plan) && !olddb::ClashDialog(plan, texts_, &window_).ask()) return;
    const QString stopped = olddb::apply_import(plan, database_, texts_, link_.interrupted);
    work.at(kImported, arrivals(plan));
    refresh_sets(database_);
    olddb::ReportDialog(texts_.pick(kImportTitle),
                        olddb::import_report(plan, path, stopped, texts_), texts_, &window_)
        .exec();
}

/// The reader can take its time, and whoever wants to end the program does not wait for it.
void ImportCommand::pump() {
    link_.view().pump();
    if (link_.interrupted && link_.interrupted()) throw Interrupted();
}

int import_unattended(db::Database& database, const QString& path, const Texts& texts) try {
    const auto told = [] { return platform::times_told_to_end() > 0; };
    olddb::OldFileError error;
    const auto old = olddb::read_old_database(path, error, [&] {
        if (told()) throw Interrupted();
    });
    if (!old) {
        unattended::say_on_stderr(olddb::old_file_error_text(error, texts),
                                  unattended::Subsystem::kFiles);
        return unattended::kOldFileUnreadable;
    }
    const QString remark = olddb::reader_remark(*old, texts);
    if (!remark.isEmpty()) unattended::say_on_stderr(remark, unattended::Subsystem::kFiles);
    olddb::ImportPlan plan = olddb::import_plan_of(*old);
    const QString stopped = olddb::apply_import(plan, database, texts, told);
    const QByteArray report = olddb::import_report(plan, path, stopped, texts).toUtf8();
    const bool printed = std::fputs(report.constData(), stdout) >= 0 && std::fflush(stdout) == 0;
    if (!stopped.isEmpty() && told()) {
        tell_end({kImported, arrivals(plan)}, texts);
        return platform::end_signal_status();
    }
    if (!stopped.isEmpty()) {
        unattended::say_on_stderr(olddb::stopped_text(stopped, texts),
                                  unattended::Subsystem::kFiles);
        return unattended::kDatabase;
    }
    return printed ? unattended::kGood : unattended::kOutputLost;
} catch (const Interrupted&) {
    tell_end({kNothingImported, {}}, texts);
    return platform::end_signal_status();
}

}  // namespace m47::shell
