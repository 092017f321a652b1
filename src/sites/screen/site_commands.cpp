// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_commands.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>

#include "export_sites_dialog.h"
#include "file_question.h"
#include "import_log_dialog.h"
#include "merge_dialog.h"
#include "message_box.h"
#include "plain_file.h"
#include "save_file.h"

namespace m47::sites {
namespace {

constexpr Bilingual kAskLogTitle{"Import log", "Importa log"};
constexpr Bilingual kLogs{"Logs (*.log *.LOG);;All files (*)",
                          "Log (*.log *.LOG);;Tutti i file (*)"};
constexpr Bilingual kAskImportTitle{"Import sites", "Importa siti"};
constexpr Bilingual kAskExportTitle{"Export sites", "Esporta siti"};
constexpr Bilingual kSiteFiles{"Files of sites (*.json);;All files (*)",
                               "File di siti (*.json);;Tutti i file (*)"};
constexpr Bilingual kNotRead{"'%1' cannot be read: %2", "'%1' non può essere letto: %2"};
constexpr Bilingual kNotPlain{"it is no plain file", "non è un file normale"};
constexpr Bilingual kTooLong{"it is too long", "è troppo lungo"};
constexpr Bilingual kRefused{"'%1' was not imported: %2", "'%1' non è stato importato: %2"};
constexpr Bilingual kNothingRead{
    "No line of '%1' is a measurement: nothing can be imported. Lines not read: %2.",
    "Nessuna riga di '%1' è una misura: non c'è nulla da importare. Righe non lette: %2."};
constexpr Bilingual kAllHere{"All that is in '%1' is here already: nothing was changed.",
                             "Tutto ciò che è in '%1' è già presente: nulla è stato cambiato."};
constexpr Bilingual kImported{"Imported from '%1': %2 sites, %3 visits, %4 measurements.",
                              "Importati da '%1': %2 siti, %3 visite, %4 misure."};
constexpr Bilingual kNothingToExport{
    "There are no sites yet: they come with the first visit, or with an import.",
    "Non ci sono ancora siti: vengono con la prima visita, o con un'importazione."};
constexpr Bilingual kNotWritten{"The sites were not exported to '%1': %2",
                                "I siti non sono stati esportati in '%1': %2"};

/// Shows that it takes some time.
class Busy {
  public:
    Busy() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Busy() { QGuiApplication::restoreOverrideCursor(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
};

/// The dialogs of one command, and what they work on.
class Command {
  public:
    Command(QWidget* parent, OpenSites& sites, const ProgramState& program, const Bilingual& title)
        : parent_(parent), sites_(sites), program_(program), title_(program.texts.pick(title)) {}

    QString title() const { return title_; }
    const Texts& texts() const { return program_.texts; }

    void tell(QMessageBox::Icon icon, const Said& said) const {
        show_message_box(parent_, icon, title_, said.in(texts()));
    }

    /// The bytes of a file that the user chooses; nothing, told, where they cannot be read.
    std::optional<QByteArray> ask_bytes(const Bilingual& kinds, FilePurpose purpose,
                                        qsizetype most) {
        QFileDialog dialog(parent_, title_, QString(), texts().pick(kinds));
        dialog.setFileMode(QFileDialog::ExistingFile);
        const QString path = ask_for_file(dialog, program_, purpose);
        if (path.isEmpty()) return std::nullopt;
        name_ = QFileInfo(path).fileName();
        platform::FileReading reading = platform::read_plain_file(path, most);
        if (reading.fault == platform::FileFault::none) return std::move(reading.bytes);
        tell(QMessageBox::Warning, {kNotRead, {name_, why(reading)}});
        return std::nullopt;
    }
    /// Of the file that was chosen.
    const QString& name() const { return name_; }

    /// Shows what `file` changes, where there is something to choose or `always`, and writes it.
    void merge(const SiteFile& file, bool always) {
        const std::shared_ptr<SiteStore> store = sites_.open();
        SiteMerge merge = planned(file, *store);
        if (!merge.changes_anything() && merge.conflicts.empty())
            return tell(QMessageBox::Information, {kAllHere, {name_}});
        if (always || !merge.conflicts.empty()) {
            MergeDialog dialog(std::move(merge), title_, texts(), parent_);
            if (dialog.exec() != QDialog::Accepted) return;
            merge = dialog.merge();
        }
        if (!merge.changes_anything()) return tell(QMessageBox::Information, {kAllHere, {name_}});
        apply(file, merge, *store);
        sites_.changed();
        tell(QMessageBox::Information,
             {kImported,
              {name_, QString::number(merge.new_sites), QString::number(merge.new_visits),
               QString::number(merge.new_rows)}});
    }

  private:
    QString why(const platform::FileReading& reading) const {
        if (reading.fault == platform::FileFault::not_plain) return texts().pick(kNotPlain);
        if (reading.fault == platform::FileFault::too_long) return texts().pick(kTooLong);
        return reading.reason;
    }
    static SiteMerge planned(const SiteFile& file, const SiteStore& store) {
        const Busy busy;
        return plan_merge(file, store);
    }
    static void apply(const SiteFile& file, const SiteMerge& merge, SiteStore& store) {
        const Busy busy;
        apply_merge(file, merge, store);
    }

    QWidget* parent_;
    OpenSites& sites_;
    const ProgramState& program_;
    QString title_;
    QString name_;
};

LogPreview read_here(const QByteArray& bytes, const QString& name, const Site& site) {
    const Busy busy;
    return read_log(bytes, name, site, QTimeZone::systemTimeZone());
}

}  // namespace

void import_log(QWidget* parent, OpenSites& sites, const ProgramState& program,
                const QUuid& proposed) {
    Command command(parent, sites, program, kAskLogTitle);
    const auto bytes = command.ask_bytes(kLogs, FilePurpose::log, kMostLog);
    if (!bytes) return;
    // For looking at it any site will do.
    LogPreview log = read_here(*bytes, command.name(), {.id = QUuid::createUuid(), .name = {}});
    if (log.refused)
        return command.tell(QMessageBox::Warning,
                            {kRefused, {command.name(), log.refused->in(program.texts)}});
    if (log.visits.empty())
        return command.tell(QMessageBox::Warning,
                            {kNothingRead, {command.name(), QString::number(log.unread.size())}});
    const std::shared_ptr<SiteStore> store = sites.look();
    ImportLogDialog dialog(std::move(log), command.name(), store.get(), program.texts, parent);
    dialog.choose(proposed);
    if (dialog.exec() != QDialog::Accepted) return;
    const Site site = dialog.site();
    command.merge(site_file_of(read_here(*bytes, command.name(), site), site), false);
}

void export_sites(QWidget* parent, OpenSites& sites, const ProgramState& program,
                  const QList<QUuid>& chosen) {
    const Command command(parent, sites, program, kAskExportTitle);
    const std::shared_ptr<SiteStore> store = sites.look();
    if (!store || store->sites().empty())
        return command.tell(QMessageBox::Information, {kNothingToExport, {}});
    ExportSitesDialog dialog(*store, chosen, program.texts, parent);
    if (dialog.exec() != QDialog::Accepted) return;
    QFileDialog file(parent, command.title(), QString(), program.texts.pick(kSiteFiles));
    file.setAcceptMode(QFileDialog::AcceptSave);
    file.setDefaultSuffix(QStringLiteral("json"));
    file.selectFile(proposed_name(QStringLiteral("sites"), QStringLiteral("json")));
    const QString path = ask_for_file(file, program, FilePurpose::sites);
    if (path.isEmpty()) return;
    const QByteArray bytes = [&] {
        const Busy busy;
        return site_file_bytes(sites_of(*store, dialog.chosen()));
    }();
    const QString reason = write_whole_file(path, bytes);
    if (reason.isEmpty()) return program.saved(path);
    command.tell(QMessageBox::Critical, {kNotWritten, {path, reason}});
}

void import_sites(QWidget* parent, OpenSites& sites, const ProgramState& program) {
    Command command(parent, sites, program, kAskImportTitle);
    const auto bytes = command.ask_bytes(kSiteFiles, FilePurpose::sites, kMostSiteFile);
    if (!bytes) return;
    const SiteFileRead read = [&] {
        const Busy busy;
        return read_site_file(*bytes);
    }();
    if (read.refused)
        return command.tell(QMessageBox::Warning,
                            {kRefused, {command.name(), read.refused->in(program.texts)}});
    command.merge(read.sites, true);
}

}  // namespace m47::sites
